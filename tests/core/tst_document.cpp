// The mapping document: what it loads and what it refuses, stored text and
// its line breaks, the node access layer, the section writers, rule elements,
// dumps, target tables, text numbers and the decoding of text for display.

#include "CoreTestSupport.h"
#include "core/rules/DumpStore.h"
#include "core/scripts/ScriptScanner.h"

#include <QRandomGenerator>

using namespace fbtest;
using fb::MappingDocument;
using fb::Node;

namespace {

const QString kDoc = wrapped(u"<PREC TEXT=\"12\">migrate pqrst002</PREC>"
                             "<QUERY ST=\"pqrst002\" TEXT=\"\">first query</QUERY>"
                             "<QUERY ST=\"uvwxy003\" TEXT=\"7\">second query</QUERY>"
                             "<DUMP No=\"1\" TXT=\"Customers\"><CUSTNO No=\"1\">a.custno</CUSTNO></DUMP>"_s);

void prune(MappingDocument& doc)
{
    RecordingInteraction ui;
    fb::ScriptScanner(doc, ui).PruneSections();
}

} // namespace

class DocumentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    // ---- loading -------------------------------------------------------------

    // Refused text records error 1 and leaves an empty document that answers
    // every read with nothing and takes no write, until good text comes.
    void refusesTextThatIsNotWellFormed_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::newRow("empty text") << QString();
        QTest::newRow("unclosed root") << u"<klmno001><PREC>x</PREC>"_s;
        QTest::newRow("two roots") << u"<klmno001/><klmno001/>"_s;
        QTest::newRow("text before the root") << u"abc<klmno001/>"_s;
        QTest::newRow("text after the root") << u"<klmno001/>abc"_s;
        QTest::newRow("CDATA outside the root") << u"<![CDATA[x]]><klmno001/>"_s;
        QTest::newRow("unknown entity") << wrapped(u"<PREC>&foo;</PREC>"_s);
        QTest::newRow("bare ampersand") << wrapped(u"<PREC>a & b</PREC>"_s);
        QTest::newRow("reference to U+0000") << wrapped(u"<PREC>x&#0;y</PREC>"_s);
        QTest::newRow("reference with a bad digit") << wrapped(u"<PREC>&#x12g;</PREC>"_s);
        QTest::newRow("reference with a digit of another script")
            << wrapped(u"<PREC>&#x\u0664\u0661;</PREC>"_s);
        QTest::newRow("reference beyond U+10FFFF") << wrapped(u"<PREC>&#x0110000;</PREC>"_s);
        QTest::newRow("reference that overflows") << wrapped(u"<PREC>&#x100000041;</PREC>"_s);
        QTest::newRow("< in an attribute value") << wrapped(u"<PREC TEXT=\"a<b\"/>"_s);
        QTest::newRow("& alone in an attribute value") << wrapped(u"<PREC TEXT=\"a&b\"/>"_s);
        QTest::newRow("]]> in text") << wrapped(u"<PREC>a]]>b</PREC>"_s);
        QTest::newRow("-- inside a comment") << wrapped(u"<!-- a -- b -->"_s);
        QTest::newRow("comment ending in -") << wrapped(u"<!-- a --->"_s);
        QTest::newRow("control character") << wrapped(u"<PREC>a\u0001b</PREC>"_s);
        QTest::newRow("lone surrogate") << wrapped(u"<PREC>a"_s + QChar(0xD800) + u"b</PREC>"_s);
        QTest::newRow("repeated attribute") << wrapped(u"<PREC TEXT=\"1\" TEXT=\"2\">p</PREC>"_s);
        QTest::newRow("repeated attribute, apart and deep")
            << wrapped(u"<DUMP No=\"1\"><A No=\"1\" TYPE=\"0\" No=\"2\"/></DUMP>"_s);
    }
    void refusesTextThatIsNotWellFormed()
    {
        QFETCH(QString, xml);
        MappingDocument doc;
        QVERIFY(load(doc, kDoc));
        QVERIFY(!doc.LoadXml(xml));
        QCOMPARE(doc.LastError().code, 1);
        QCOMPARE(doc.LastError().text, u"The Loaded XML was not a Valid XML. Please refresh"_s);
        QCOMPARE(doc.GetPreconditionText(), QString());
        QVERIFY(!doc.SetFunctionsText(u"f"_s));
        QVERIFY(!doc.CreateDumpNode(2, u"x"_s));
        prune(doc);
        QVERIFY(doc.IsEmpty());
        QVERIFY(doc.LoadXml(kDoc));
        QCOMPARE(doc.GetQueryText(u"uvwxy003"_s), u"second query"_s);
    }

    void acceptsWhatXmlAllows_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("text");      // of PREC
        QTest::addColumn<QString>("attribute"); // PREC's TEXT
        QTest::newRow("the five entities and character references")
            << wrapped(u"<PREC TEXT=\"&lt;&#10;&#x263A;&apos;\">&lt;&gt;&amp;&quot;&apos;&#65;</PREC>"_s)
            << u"<>&\"'A"_s << u"<\n\u263A'"_s;
        QTest::newRow("character references with leading zeros")
            << wrapped(u"<PREC TEXT=\"&#x000000000263A;\">&#00000000065;</PREC>"_s) << u"A"_s << u"\u263A"_s;
        QTest::newRow("markup characters in comments, instructions and CDATA")
            << wrapped(u"<!-- a & b < c --><?pi a & b?><PREC>x<![CDATA[ & y ]] < z]]>]</PREC>"_s)
            << u"x & y ]] < z]"_s << QString();
        QTest::newRow("blanks and line breaks around the root")
            << u"\n  "_s + wrapped(u"<PREC>p</PREC>"_s) + u"\r\n\t"_s << u"p"_s << QString();
    }
    void acceptsWhatXmlAllows()
    {
        QFETCH(QString, xml);
        MappingDocument doc;
        QVERIFY(load(doc, xml));
        QTEST(doc.GetPreconditionText(), "text");
        QTEST(MappingDocument::DocText(doc.GetPreconditionNode()), "attribute");
        QCOMPARE(doc.LastError().code, 0);
    }

    // Removing or copying a subtree walks it recursively, so nesting deeper
    // than the limit is refused as a whole; up to it, the subtree can go.
    void nestingLimit_data()
    {
        QTest::addColumn<int>("depth"); // inside <klmno001><DUMP>
        QTest::addColumn<bool>("loads");
        QTest::newRow("998 levels load") << 998 << true;
        QTest::newRow("999 levels are refused") << 999 << false;
        QTest::newRow("200,000 levels are refused") << 200000 << false;
    }
    void nestingLimit()
    {
        QFETCH(int, depth);
        QFETCH(bool, loads);
        const QString nested = u"<a>"_s.repeated(depth) + u'x' + u"</a>"_s.repeated(depth);
        MappingDocument doc;
        QCOMPARE(load(doc, wrapped(u"<PREC>none</PREC><DUMP No=\"5\">"_s + nested + u"</DUMP>"_s)), loads);
        prune(doc); // the unreferenced dump goes, subtree and all
        QCOMPARE(doc.Serialize(), loads ? wrapped(u"<PREC>none</PREC>"_s) : QString());
    }

    // Markup before the root is the document's first child, where new
    // sections would be appended: they are not created. SRCTBL goes to the
    // root itself.
    void markupBeforeTheRoot()
    {
        MappingDocument doc;
        QVERIFY(load(doc, u"<?xml version=\"1.0\"?>\r\n"_s + wrapped(u"<PREC>dump 4 Four</PREC>"_s)));
        QCOMPARE(doc.GetPreconditionText(), u"dump 4 Four"_s);
        const QString before = doc.Serialize();
        QVERIFY(!doc.SetFunctionsText(u"f"_s));
        QVERIFY(!doc.SaveQueryText(u"pqrst002"_s, u"q"_s));
        prune(doc);
        QCOMPARE(doc.Serialize(), before);
        QVERIFY(doc.SetSourceTablesText(u"pqrst002"_s));
        QCOMPARE(doc.GetSourceTablesText(), u"pqrst002"_s);
    }

    // ---- stored text -----------------------------------------------------------

    // Every line break is stored as one LF however it came; every other
    // character, U+FEFF at the start included, is kept; a save and a load
    // change nothing more.
    void storedText_data()
    {
        QTest::addColumn<QString>("how"); // "load", "text" or "attribute"
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("stored");
        QTest::newRow("loaded CR LF") << u"load"_s << u"a\r\nb"_s << u"a\nb"_s;
        QTest::newRow("loaded lone CR") << u"load"_s << u"a\rb"_s << u"a\nb"_s;
        QTest::newRow("loaded &#13;&#10;") << u"load"_s << u"a&#13;&#10;b&#13;&#10;"_s << u"a\nb\n"_s;
        QTest::newRow("loaded &#13; alone") << u"load"_s << u"a&#13;b"_s << u"a\nb"_s;
        QTest::newRow("loaded &#13;&#13;&#10;") << u"load"_s << u"a&#13;&#13;&#10;b"_s << u"a\n\nb"_s;
        QTest::newRow("written CR LF") << u"text"_s << u"a\r\nb"_s << u"a\nb"_s;
        QTest::newRow("written lone CR") << u"text"_s << u"a\rb"_s << u"a\nb"_s;
        QTest::newRow("written mixed") << u"text"_s << u"a\r\n\r\nb\rc\n"_s << u"a\n\nb\nc\n"_s;
        QTest::newRow("attribute CR LF") << u"attribute"_s << u"a\r\nb"_s << u"a\nb"_s;
        QTest::newRow("leading U+FEFF twice") << u"text"_s << u"\uFEFF\uFEFFx"_s << u"\uFEFF\uFEFFx"_s;
        QTest::newRow("U+FEFF alone in an attribute") << u"attribute"_s << u"\uFEFF"_s << u"\uFEFF"_s;
        QTest::newRow("every script")
            << u"text"_s << u"Ελληνικά Имя اسم 客户 📦𝄞"_s << u"Ελληνικά Имя اسم 客户 📦𝄞"_s;
    }
    void storedText()
    {
        QFETCH(QString, how);
        QFETCH(QString, given);
        MappingDocument doc;
        QVERIFY(load(doc, wrapped(u"<PREC>"_s + (how == u"load" ? given : QString()) + u"</PREC>"_s)));
        if (how == u"text")
            QVERIFY(doc.SetPreconditionText(given));
        if (how == u"attribute")
            QVERIFY(doc.SetDocText(doc.GetPreconditionNode(), given));
        const auto read = [&](MappingDocument& d) {
            return how == u"attribute" ? MappingDocument::DocText(d.GetPreconditionNode())
                                       : d.GetPreconditionText();
        };
        QTEST(read(doc), "stored");
        MappingDocument reloaded;
        QVERIFY(load(reloaded, doc.Serialize()));
        QTEST(read(reloaded), "stored");
    }

    // Text is shown with each stored break as CR LF, decoded once more in a
    // fixed order (<, >, &, "): text that held entity names shows them
    // decoded one level.
    void shownText_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("entity names in any case") << u"a&LT;b&Gt;c&AMP;d&quot;e"_s << u"a<b>c&d\"e"_s;
        QTest::newRow("&amp;lt; decodes one level") << u"x&amp;lt;y"_s << u"x&lt;y"_s;
        QTest::newRow("&amp;amp; decodes one level") << u"&amp;amp;"_s << u"&amp;"_s;
        QTest::newRow("&apos; and references stay") << u"it&apos;s &#60;"_s << u"it&apos;s &#60;"_s;
        QTest::newRow("each break as CR LF") << u"a\nb\r\nc\rd\n"_s << u"a\r\nb\r\nc\r\nd\r\n"_s;
    }
    void shownText()
    {
        QFETCH(QString, stored);
        QTEST(MappingDocument::DisplayText(stored), "shown");
    }

    // ---- node access ------------------------------------------------------------

    void getNode_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("attrName");
        QTest::addColumn<QString>("attrValue");
        QTest::addColumn<QString>("text"); // of the node found; "" for none
        QTest::addColumn<int>("error");
        const QString q = u"/klmno001/QUERY"_s;
        const QString st = u"ST"_s;
        const QString none;
        QTest::newRow("plain path") << u"/klmno001/PREC"_s << none << none << u"migrate pqrst002"_s << 0;
        // An XPath engine skips blanks between steps; the layer must not.
        QTest::newRow("blanks after the root") << u"/klmno001   /PREC"_s << none << none << none << 0;
        QTest::newRow("tab after the root") << u"/klmno001\t/PREC"_s << none << none << none << 0;
        QTest::newRow("trailing slash") << u"/klmno001/"_s << none << none << none << 2001;
        QTest::newRow("value selects") << q << st << u"uvwxy003"_s << u"second query"_s << 0;
        QTest::newRow("value is case-sensitive") << q << st << u"UVWXY003"_s << none << 0;
        QTest::newRow("empty value, empty attribute") << q << u"TEXT"_s << none << u"first query"_s << 0;
        QTest::newRow("empty value, no attribute") << q << u"uvwxy003"_s << none << none << 0;
        QTest::newRow("no attribute name: value ignored")
            << q << none << u"uvwxy003"_s << u"first query"_s << 0;
        QTest::newRow("quotation mark in the value") << q << st << u"a\"b"_s << none << 0;
        QTest::newRow("apostrophe in the value") << q << st << u"o'brien"_s << none << 2001;
        // Put into the expression unquoted, this one would match every QUERY.
        QTest::newRow("apostrophe value that would parse") << q << st << u"x' or 'a'='a"_s << none << 2001;
        QTest::newRow("blank in the attribute name") << q << u"my key"_s << none << none << 2001;
    }
    void getNode()
    {
        QFETCH(QString, path);
        QFETCH(QString, attrName);
        QFETCH(QString, attrValue);
        QFETCH(QString, text);
        MappingDocument doc;
        QVERIFY(load(doc, kDoc));
        QCOMPARE(doc.GetNode(path, attrName, attrValue).text(), text);
        QTEST(int(doc.LastError().code), "error");
        QCOMPARE(doc.SetNodeText(path, u"new"_s, attrName, attrValue), !text.isEmpty());
        QCOMPARE(doc.Serialize() == kDoc, text.isEmpty());
    }

    // Paths start with the 8-character table name, blanks and all.
    void tableName_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("reachable");
        QTest::newRow("eight characters") << u"klmno001"_s << u"klmno001"_s << true;
        QTest::newRow("short root: the padded name finds nothing") << u"klmno"_s << u"klmno"_s << false;
        QTest::newRow("long name cut to eight") << u"klmno001"_s << u"klmno001extra"_s << true;
    }
    void tableName()
    {
        QFETCH(QString, root);
        QFETCH(QString, name);
        MappingDocument doc;
        QVERIFY(load(doc, u'<' + root + u"><PREC>text</PREC><MSCRIPT/></"_s + root + u'>', name));
        QTEST(doc.HasMscript(), "reachable");
        QTEST(doc.GetPreconditionText() == u"text", "reachable");
        QCOMPARE(doc.LastError().code, 0);
    }

    // ---- sections ---------------------------------------------------------------

    void sectionWriters_data()
    {
        QTest::addColumn<QString>("before");  // the root's content
        QTest::addColumn<QString>("section"); // PREC, FUNCTIONS, VAR, QUERY <table> or DUMP <n>
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("after");
        const QString query = u"<QUERY ST=\"pqrst002\" TEXT=\"5\">one</QUERY>"_s;
        QTest::newRow("functions appended")
            << query << u"FUNCTIONS"_s << u"f"_s << true << query + u"<FUNCTIONS>f</FUNCTIONS>"_s;
        QTest::newRow("variables replaced, not repeated")
            << u"<VAR>old</VAR><PREC/>"_s << u"VAR"_s << u"v"_s << true << u"<VAR>v</VAR><PREC/>"_s;
        QTest::newRow("precondition never created") << query << u"PREC"_s << u"x"_s << false << query;
        QTest::newRow("query of a new table appended") << query << u"QUERY uvwxy003"_s << u"two"_s << true
                                                       << query + u"<QUERY ST=\"uvwxy003\">two</QUERY>"_s;
        QTest::newRow("query replaced in place") << query << u"QUERY pqrst002"_s << u"2"_s << true
                                                 << u"<QUERY ST=\"pqrst002\" TEXT=\"5\">2</QUERY>"_s;
        QTest::newRow("empty query writes nothing")
            << query << u"QUERY pqrst002"_s << QString() << false << query;
        QTest::newRow("dump appended with its text")
            << query << u"DUMP 12"_s << u"Orders"_s << true << query + u"<DUMP No=\"12\" TXT=\"Orders\"/>"_s;
    }
    void sectionWriters()
    {
        QFETCH(QString, before);
        QFETCH(QString, section);
        QFETCH(QString, text);
        MappingDocument doc;
        QVERIFY(load(doc, wrapped(before)));
        const QString key = section.section(u' ', 1);
        bool written = false;
        if (section == u"PREC")
            written = doc.SetPreconditionText(text);
        else if (section == u"FUNCTIONS")
            written = doc.SetFunctionsText(text);
        else if (section == u"VAR")
            written = doc.SetVariablesText(text);
        else if (section.startsWith(u"QUERY"))
            written = doc.SaveQueryText(key, text);
        else
            written = bool(doc.CreateDumpNode(qint16(key.toShort()), text));
        QTEST(written, "written");
        QFETCH(QString, after);
        QCOMPARE(doc.Serialize(), wrapped(after));
    }

    // A table name with an apostrophe cannot be looked up, so its query is
    // never shown; saving it must still replace what it saved before.
    void apostropheInATableName()
    {
        MappingDocument doc;
        QVERIFY(load(doc, u"<klmno001/>"_s));
        for (const QString& text : {u"q1"_s, u"q2"_s, u"q3"_s})
            QVERIFY(doc.SaveQueryText(u"ab'cd001"_s, text));
        QCOMPARE(doc.LastError().code, 2001);
        QCOMPARE(doc.LastError().text, u"Error Getting Node (GetNode)"_s);
        QCOMPARE(doc.GetQueryText(u"ab'cd001"_s), QString());
        QCOMPARE(doc.Serialize(), wrapped(u"<QUERY ST=\"ab'cd001\">q3</QUERY>"_s));
    }

    // ---- rule elements and dumps --------------------------------------------------

    // Whoever made the element, once it holds a rule it carries its field's
    // No; TYPE is 1 exactly when the text as stored holds a line break.
    void ruleElements_data()
    {
        QTest::addColumn<QString>("before"); // the dump's content
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("after");
        QTest::newRow("new element") << QString() << u"a.b"_s
                                     << u"<NAME No=\"4\" TEXT=\"\" TYPE=\"0\">a.b</NAME>"_s;
        QTest::newRow("element of a text number gets the No")
            << u"<NAME TEXT=\"7\"/>"_s << u"a.b"_s << u"<NAME TEXT=\"7\" No=\"4\" TYPE=\"0\">a.b</NAME>"_s;
        QTest::newRow("stale No corrected") << u"<NAME No=\"9\" TEXT=\"\" TYPE=\"1\">x</NAME>"_s << u"y"_s
                                            << u"<NAME No=\"4\" TEXT=\"\" TYPE=\"0\">y</NAME>"_s;
        QTest::newRow("CR LF is one break")
            << QString() << u"a\r\nb"_s << u"<NAME No=\"4\" TEXT=\"\" TYPE=\"1\">a\nb</NAME>"_s;
        QTest::newRow("lone CR is a break")
            << QString() << u"a\rb"_s << u"<NAME No=\"4\" TEXT=\"\" TYPE=\"1\">a\nb</NAME>"_s;
    }
    void ruleElements()
    {
        QFETCH(QString, before);
        QFETCH(QString, rule);
        const QString table = u"<TARTAB><KLMNO001><NAME No=\"4\"/></KLMNO001></TARTAB>"_s;
        MappingDocument doc;
        QVERIFY(load(doc, wrapped(u"<DUMP No=\"1\">"_s + before + u"</DUMP>"_s + table)));
        const Node field = doc.GetTargetTableDefinition(u"klmno001"_s).firstChildElement();
        const Node dump = doc.GetDumpNode(1);
        QVERIFY(doc.WriteRuleElement(dump, field, rule, dump.childElement(field.name())));
        QFETCH(QString, after);
        QCOMPARE(doc.Serialize(), wrapped(u"<DUMP No=\"1\">"_s + after + u"</DUMP>"_s + table));
    }

    // Storing a grid's rules keeps the dump's elements of each name in step
    // with its writes and removals: on generated dumps (names repeated in
    // the dump and in the table, rules and blanks) it leaves exactly what the
    // plain walk leaves, which looks each field's element up in the dump.
    void storeRulesMatchesThePlainWalk()
    {
        QRandomGenerator random(20261123);
        const QStringList names{u"A"_s, u"B"_s, u"C"_s, u"D"_s};
        for (int round = 0; round < 300; ++round) {
            QString dump;
            for (int i = int(random.bounded(6)); i > 0; --i)
                dump += u"<%1 No=\"9\">old</%1>"_s.arg(names[int(random.bounded(3))]);
            QString table;
            QStringList rules;
            for (int row = 0; row < 6; ++row) {
                table += u"<%1 No=\"%2\"/>"_s.arg(names[int(random.bounded(4))]).arg(row + 1);
                rules.append(random.bounded(2) ? u"r%1"_s.arg(row) : QString());
            }
            const QString xml = wrapped(u"<DUMP No=\"1\">"_s + dump + u"</DUMP><TARTAB><KLMNO001>"_s + table +
                                        u"</KLMNO001></TARTAB>"_s);
            MappingDocument stored;
            MappingDocument walked;
            QVERIFY(load(stored, xml) && load(walked, xml));
            const auto ruleOf = [&](int row) { return rules[row]; };
            fb::StoreRules(stored, stored.GetDumpNode(1), stored.GetTargetTableNode(1), 6, ruleOf);
            const Node dumpNode = walked.GetDumpNode(1);
            for (Node f = walked.GetTargetTableNode(1).firstChildElement(); f; f = f.nextSiblingElement()) {
                const QString rule = rules[*MappingDocument::ElementNo(f) - 1];
                if (!rule.isEmpty())
                    walked.WriteRuleElement(dumpNode, f, rule, dumpNode.childElement(f.name()));
                else if (const Node child = dumpNode.childElement(f.name()))
                    walked.RemoveChild(dumpNode, child);
            }
            QCOMPARE(stored.Serialize(), walked.Serialize());
        }
    }

    // Which table's fields are mapped: without MSCRIPT the root's own; with
    // it the TT of the dump given, of the selector's tag, or of the first
    // referenced dump.
    void targetTable_data()
    {
        QTest::addColumn<bool>("mscript");
        QTest::addColumn<int>("dump");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QList<int>>("references");
        QTest::addColumn<QString>("table"); // "" for none
        const QList<int> none;
        QTest::newRow("no MSCRIPT: the root's table") << false << 2 << u"2"_s << none << u"FGHIJ100"_s;
        QTest::newRow("dump given, TT upper-cased") << true << 2 << u"1"_s << QList<int>{1} << u"QWERT200"_s;
        QTest::newRow("dump without TT") << true << 3 << QString() << none << QString();
        QTest::newRow("selector tag") << true << 0 << u"2"_s << QList<int>{1} << u"QWERT200"_s;
        QTest::newRow("first referenced dump") << true << 0 << QString() << QList<int>{2, 1} << u"QWERT200"_s;
        QTest::newRow("nothing known: the root's table") << true << 0 << QString() << none << u"FGHIJ100"_s;
    }
    void targetTable()
    {
        QFETCH(bool, mscript);
        QFETCH(int, dump);
        QFETCH(QString, tag);
        QFETCH(QList<int>, references);
        MappingDocument doc;
        QVERIFY(load(
            doc,
            u"<fghij100><DUMP No=\"1\" TT=\"FGHIJ100\"/><DUMP No=\"2\" TT=\"qwert200\"/><DUMP No=\"3\"/>"_s +
                (mscript ? u"<MSCRIPT/>"_s : QString()) +
                u"<TARTAB><FGHIJ100/><QWERT200/></TARTAB></fghij100>"_s,
            u"fghij100"_s));
        for (int n : references)
            doc.AddDumpReference(qint16(n), QString());
        QTEST(doc.GetTargetTableNode(qint16(dump), tag).name(), "table");
    }

    // Documentation text numbers that the host sets: for a query the key
    // names an attribute that must be empty (not the table); for a rule the
    // key is the dump and the shown field name.
    void textNumbers_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key1");
        QTest::addColumn<QString>("key2");
        QTest::addColumn<QString>("from"); // the change to the document; "" for none
        QTest::addColumn<QString>("to");
        const QString none;
        QTest::newRow("query key names an empty attribute")
            << u"M"_s << u"TEXT"_s << none << u"r\" TEXT=\"\""_s << u"r\" TEXT=\"42\""_s;
        QTest::newRow("missing rule element made with TEXT alone")
            << u"D"_s << u"2"_s << u"qty(2)"_s << u"</CUSTNO>"_s << u"</CUSTNO><QTY__2 TEXT=\"42\"/>"_s;
        QTest::newRow("missing dump") << u"D"_s << u"5"_s << u"custno"_s << none << none;
        QTest::newRow("field name that is no element name") << u"D"_s << u"2"_s << u"a b"_s << none << none;
    }
    void textNumbers()
    {
        QFETCH(QString, type);
        QFETCH(QString, key1);
        QFETCH(QString, key2);
        QFETCH(QString, from);
        QFETCH(QString, to);
        const QString xml = wrapped(u"<QUERY ST=\"q\" TEXT=\"3\">q</QUERY>"
                                    "<QUERY ST=\"r\" TEXT=\"\">r</QUERY>"
                                    "<DUMP No=\"2\"><CUSTNO No=\"1\" TEXT=\"\">a</CUSTNO></DUMP>"_s);
        MappingDocument doc;
        QVERIFY(load(doc, xml));
        doc.SetTextNumber(type, 42, key1, key2);
        QCOMPARE(doc.Serialize(), QString(xml).replace(from, to));
    }
};

QTEST_APPLESS_MAIN(DocumentTest)
#include "tst_document.moc"
