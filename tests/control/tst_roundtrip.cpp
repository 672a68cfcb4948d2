// Generated mapping objects round-trip through a whole session (assign,
// ShowControl, both tabs, every dump shown, the documentation dialogs and
// the functions and variables editors closed with OK, a read): every text is
// what the control's rules make of it and nothing else; texts nobody showed
// come back untouched; a second read and a reload change nothing.
//
// FIELDBRIDGE_ROUNDTRIP_SEED and FIELDBRIDGE_ROUNDTRIP_DOCS choose the run; a
// failure names the seed of its document.

#include "WidgetHarness.h"

#include <QRandomGenerator>

using namespace fbtest;

namespace {

QString oneBreakEach(QString s)
{
    return s.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

// What a text shown in a box or a cell and stored back becomes: one break
// each, then decoded once more as the control does it.
QString shownAndStored(const QString& stored)
{
    QString s = oneBreakEach(stored);
    for (const auto& [entity, character] : {std::pair{u"&lt;"_s, u"<"_s}, std::pair{u"&gt;"_s, u">"_s},
                                            std::pair{u"&amp;"_s, u"&"_s}, std::pair{u"&quot;"_s, u"\""_s}})
        s.replace(entity, character, Qt::CaseInsensitive);
    return s;
}

// The parser drops text that is only blanks and line breaks.
QString asParsed(const QString& text)
{
    return QString(text).remove(u' ').remove(u'\t').remove(u'\r').remove(u'\n').isEmpty() ? QString() : text;
}

QString escapeXml(const QString& text, bool attribute)
{
    QString out = QString(text).replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
    out.replace(u'\r', u"&#13;"_s);
    if (attribute)
        out.replace(u'"', u"&quot;"_s).replace(u'\n', u"&#10;"_s).replace(u'\t', u"&#9;"_s);
    return out;
}

// Pieces of text the generator joins: letters that cannot spell a keyword
// (no m, no d), every kind of line break, markup characters, entity-like
// sequences that the second decoding turns into characters, and characters
// from far planes.
const QStringList kPieces{
    u"a"_s,      u"B"_s,   u"x y"_s,    u"\t"_s,     u"\n"_s, u"\r\n"_s, u"\r"_s,
    u"&"_s,      u"<"_s,   u">"_s,      u"\""_s,     u"'"_s,  u"&lt;"_s, u"&AMP;"_s,
    u"&quot;"_s, u"&gt"_s, u"\uFEFF"_s, u"\u00A0"_s, u"é"_s,  u"Ж"_s,    u"中"_s,
    u"😀"_s,      u"𝄞"_s,   u"~|~"_s,    u"~^~"_s,    u"  "_s, u"()"_s,   u"srcaa001.name"_s};

const QStringList kFields{u"CUSTNO"_s,  u"NAME"_s,    u"CITY"_s,   u"BORN"_s, u"STAMP"_s,
                          u"NOTE__1"_s, u"NOTE__2"_s, u"REMARK"_s, u"LANG"_s, u"ZIP"_s};

struct Rule {
    QString field, no, text, type, doc;
};

struct Generated {
    QString prec, precDoc, shownQuery, hiddenQuery, functions, variables;
    QList<Rule> rules[2]; // dump 1 and dump 2
    QString xml;
};

Generated generate(quint32 seed)
{
    QRandomGenerator random(seed);
    const auto text = [&random](bool nonBlank) {
        QString t;
        for (int i = 0, n = 1 + int(random.bounded(8)); i < n; ++i)
            t += kPieces[random.bounded(int(kPieces.size()))];
        return nonBlank && asParsed(t).isEmpty() ? t + u'z' : t;
    };
    Generated g;
    g.prec = text(true) + u"\nmigrate srcaa001\nmigrate srcbb002\ndump 1 First\ndump 2 Second"_s;
    g.precDoc = text(false);
    g.shownQuery = text(true);
    g.hiddenQuery = text(true);
    g.functions = text(true);
    g.variables = text(true);
    QString dumps;
    for (int d = 0; d < 2; ++d) {
        dumps += u"<DUMP No=\"%1\" TXT=\"%2\">"_s.arg(d + 1).arg(d == 0 ? u"First"_s : u"Second"_s);
        for (int f = 0; f < kFields.size(); ++f) {
            if (random.bounded(3) == 0)
                continue;
            const QString ruleText = text(true), type = QString::number(random.bounded(2));
            g.rules[d].append({kFields[f], QString::number(f + 1), ruleText, type,
                               random.bounded(2) ? text(false) : QString()});
            dumps += u"<%1 No=\"%2\" TYPE=\"%3\" TEXT=\"%4\">%5</%1>"_s.arg(
                kFields[f], QString::number(f + 1), type, escapeXml(g.rules[d].last().doc, true),
                escapeXml(ruleText, false));
        }
        dumps += u"</DUMP>"_s;
    }
    // The target and source tables of the session tests' rules001.xml.
    const QString rules = rulesDocument();
    g.xml = u"<rules001><SRCTBL>srcaa001,srcbb002</SRCTBL><PREC TEXT=\"%1\">%2</PREC>"
            "<QUERY ST=\"srcaa001\">%3</QUERY><QUERY ST=\"srcbb002\">%4</QUERY>"
            "<FUNCTIONS>%5</FUNCTIONS><VAR>%6</VAR>%7"_s.arg(
                escapeXml(g.precDoc, true), escapeXml(g.prec, false), escapeXml(g.shownQuery, false),
                escapeXml(g.hiddenQuery, false), escapeXml(g.functions, false), escapeXml(g.variables, false),
                dumps) +
            rules.mid(rules.indexOf(u"<TARTAB>"_s));
    return g;
}

// The same document once parsed: element by element, attributes and texts
// alike, a text of only blanks and breaks being no text.
bool sameDocument(const XmlElement& a, const XmlElement& b)
{
    if (a.name != b.name || a.attributes != b.attributes || asParsed(a.text) != asParsed(b.text) ||
        a.children.size() != b.children.size())
        return false;
    for (qsizetype i = 0; i < a.children.size(); ++i)
        if (!sameDocument(a.children[i], b.children[i]))
            return false;
    return true;
}

quint32 envNumber(const char* name, quint32 fallback)
{
    bool ok = false;
    const quint32 value = qEnvironmentVariable(name).toUInt(&ok);
    return ok ? value : fallback;
}

// What a documentation text becomes after its dialog closed with OK; the
// rule's template, untouched, is no text.
QString docAfterDialog(const QString& stored, bool templateWhenEmpty)
{
    const QString shownTemplate = u"Field Mapping:\n\n\n\n\n\n\nTechnical Notes:"_s;
    const QString shown = shownAndStored(stored.isEmpty() && templateWhenEmpty ? shownTemplate : stored);
    return templateWhenEmpty && shown == shownTemplate ? QString() : shown;
}

} // namespace

class RoundTripTest : public HostTest {
    Q_OBJECT

    // A whole session on the document; false when a step did not happen.
    bool session(const Generated& g)
    {
        if (!host->open(u"rules001"_s, g.xml))
            return false;
        host->clickTab(1);
        host->chooseDump(2);
        host->chooseDump(1);
        // The documentation of the first rule of dump 1, kept unchanged.
        clickCell(host->grid(), g.rules[0].isEmpty() ? 0 : g.rules[0].first().no.toInt() - 1, 1);
        if (!g.rules[0].isEmpty()) {
            host->modals.expect(ModalAnswerer::document(true));
            host->click(u"CmdDumpText"_s);
        }
        host->clickTab(0);
        if (!host->activate())
            return false;
        host->modals.expect(ModalAnswerer::document(true));
        host->click(u"CmdPreDoc"_s);
        for (const QString& button : {u"CmdFunction"_s, u"CmdOk"_s, u"CmdVariables"_s, u"CmdOk"_s})
            host->click(button);
        return host->modals.pending() == 0;
    }

private Q_SLOTS:
    void everyTextIsWhatTheRulesMakeOfIt()
    {
        const quint32 first = envNumber("FIELDBRIDGE_ROUNDTRIP_SEED", 1);
        const quint32 count = envNumber("FIELDBRIDGE_ROUNDTRIP_DOCS", 200);
        for (quint32 seed = first; seed < first + count; ++seed) {
            const Generated g = generate(seed);
            const QString at = u"seed %1"_s.arg(seed);
            host = std::make_unique<Host>();
            QVERIFY2(session(g), qPrintable(at + u": "_s + host->modals.describe()));
            const QString xml = host->xml();
            const XmlElement doc = parseXml(xml, true);
            QVERIFY2(!doc.isNull(), qPrintable(at));
            const auto check = [&at](const QString& what, const QString& actual, const QString& expected) {
                QVERIFY2(actual == expected,
                         qPrintable(u"%1, %2:\n  actual   %3\n  expected %4"_s.arg(
                             at, what, escapeXml(actual, true), escapeXml(expected, true))));
            };
            QString variables = g.variables;
            variables.replace(u"~|~"_s, u"\t"_s).replace(u"~^~"_s, u"\r\n"_s);
            check(u"PREC"_s, doc.child(u"PREC"_s).text, shownAndStored(g.prec));
            check(u"PREC TEXT"_s, doc.child(u"PREC"_s).attribute(u"TEXT"_s),
                  docAfterDialog(g.precDoc, false));
            check(u"shown QUERY"_s, doc.child(u"QUERY"_s, u"ST"_s, u"srcaa001"_s).text,
                  shownAndStored(g.shownQuery));
            // Untouched: a CR that a reference put into the text reads back as
            // the line break any parser makes of it.
            check(u"hidden QUERY"_s, doc.child(u"QUERY"_s, u"ST"_s, u"srcbb002"_s).text,
                  oneBreakEach(g.hiddenQuery));
            check(u"FUNCTIONS"_s, doc.child(u"FUNCTIONS"_s).text, shownAndStored(g.functions));
            check(u"VAR"_s, doc.child(u"VAR"_s).text, asParsed(shownAndStored(variables)));
            for (int d = 0; d < 2; ++d) {
                const XmlElement dump = doc.dump(d + 1);
                QStringList kept, names;
                for (const XmlElement& e : dump.children)
                    names.append(e.name);
                for (const Rule& r : g.rules[d]) {
                    const QString text = shownAndStored(asParsed(r.text));
                    const XmlElement e = dump.child(r.field);
                    const QString what = u"dump %1 %2"_s.arg(d + 1).arg(r.field);
                    if (text.isEmpty())
                        continue; // an empty rule's element goes
                    kept.append(r.field);
                    check(what, e.text, text);
                    check(what + u" TYPE"_s, e.attribute(u"TYPE"_s), text.contains(u'\n') ? u"1"_s : u"0"_s);
                    check(what + u" No"_s, e.attribute(u"No"_s), r.no);
                    const bool documented = d == 0 && &r == &g.rules[0].first();
                    check(what + u" TEXT"_s, e.attribute(u"TEXT"_s),
                          documented ? docAfterDialog(r.doc, true) : r.doc);
                }
                check(u"dump %1 rules"_s.arg(d + 1), names.join(u','), kept.join(u','));
            }
            check(u"a second read"_s, host->xml(), xml);
            // A reload changes nothing but what the parser drops (a text of
            // only blanks), and from then on nothing at all.
            host->load(u"rules001"_s, xml);
            const QString reloaded = host->xml();
            QVERIFY2(sameDocument(parseXml(reloaded, true), doc), qPrintable(at + u": a reload"_s));
            host->load(u"rules001"_s, reloaded);
            check(u"a second reload"_s, host->xml(), reloaded);
            QVERIFY2(host->modals.unexpected().isEmpty(), qPrintable(at + u": "_s + host->modals.describe()));
        }
    }
};

QTEST_MAIN(RoundTripTest)
#include "tst_roundtrip.moc"
