// The mapping report in each format, read back by a reader of that
// format: what a customer reads must be what the document holds, whatever
// characters the names, rules and texts carry. And the listing of the checks.

#include "CoreTestSupport.h"
#include "core/report/CheckListing.h"
#include "core/report/Report.h"
#include "core/report/ReportRenderers_p.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamReader>

using namespace fbtest;

namespace {

QString rulesDocument()
{
    QFile file(QStringLiteral(FIELDBRIDGE_TEST_DOCUMENTS "/rules001.xml"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// rules001 with text no format may pass on as markup: dumps referenced and
// held out of number order, the first with markup in its text; a
// documentation text with markup, a quote, a comma and a line break; a
// host's text number; a rule of markup and Markdown; a field whose name is
// not Latin and holds a letter without a single upper-case partner (ß); an
// unreferenced dump and a query whose table name holds a tab and a line
// break.
const QString kDumpText = uR"(Fïrst <b>& "quoted" | 'x', 名前 ##)"_s;
const QString kDoc = u"Signed: <i>Ann</i> & Bo | \"ok\", x\nsecond line"_s;
const QString kRule = uR"(srcaa001.zip & "<a href='x'>|</a>, \*_[]~$`")"_s;

QString hostileDocument(const QString& zipRule = kRule)
{
    QString xml = rulesDocument();
    xml.replace(u"dump 1 First\ndump 2 Second\ndump 3 Third"_s,
                u"dump 3 Third\ndump 1 "_s + kDumpText.toHtmlEscaped() + u"\ndump 2 Second"_s);
    xml.replace(u"TEXT=\"\">srcaa001.custno"_s,
                u"TEXT=\""_s + kDoc.toHtmlEscaped().replace(u"\n"_s, u"&#10;"_s) + u"\">srcaa001.custno"_s);
    xml.replace(u"<DUMP No=\"1\""_s,
                u"<DUMP No=\"3\"/><DUMP No=\"1\""_s); // document order is not number order
    xml.replace(u"TEXT=\"\">srcbb002.city"_s, u"TEXT=\"17\">srcbb002.city"_s);
    xml.replace(u">srcaa001.zip<"_s, u'>' + zipRule.toHtmlEscaped() + u'<');
    xml.replace(u"ADJU=\"L\""_s, u"DSCA=\"Name, &lt;first&gt; &amp; &quot;last&quot;\""_s);
    xml.replace(u"</RULES001></TARTAB>"_s,
                u"<ÜBERß名 No=\"11\" FNo=\"10\" TYPE=\"S\" LENG=\"40\"/></RULES001></TARTAB>"_s);
    xml.replace(u"</DUMP>\n<DUMP No=\"2\""_s,
                u"<ÜBERß名 No=\"11\" TEXT=\"ß\">\"€ 😀\"</ÜBERß名></DUMP>\n<DUMP No=\"2\""_s);
    xml.replace(u"<TARTAB>"_s,
                u"<DUMP No=\"7\"><ZIP No=\"10\">x</ZIP></DUMP><QUERY ST=\"ab&#9;c&#10;d&quot;e\">"
                u"select</QUERY><TARTAB>"_s);
    return xml;
}

bool loadDocument(fb::MappingDocument& doc, const QString& xml)
{
    const bool loaded = doc.LoadXml(xml);
    doc.SetTableName(doc.DocumentElement().name());
    return loaded;
}

// What a report says, whatever its format. A field row: number, name,
// description, type, length, mandatory, rule, sources, documentation,
// problems; a dump of the overview: number, text, target table, coverage.
struct Read {
    QList<QStringList> overview;
    QMap<int, QList<QStringList>> fields;
    QStringList outside;
};

// RFC 4180, records ending in CR LF; every record has all 14 columns.
void readCsv(QString text, Read& r)
{
    QVERIFY(text.startsWith(QChar(0xFEFF)));
    text.remove(0, 1);
    QList<QStringList> records;
    QStringList record;
    QString cell;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (quoted && c == u'"' && QStringView(text).mid(i + 1, 1) == u"\"")
            cell += text[++i];
        else if (c == u'"')
            quoted = !quoted;
        else if (!quoted && c == u',')
            record.append(std::exchange(cell, QString()));
        else if (!quoted && c == u'\r' && QStringView(text).mid(i + 1, 1) == u"\n" && ++i)
            records.append(std::exchange(record, QStringList()) << std::exchange(cell, QString()));
        else if (quoted || (c != u'\n' && c != u'\r'))
            cell += c;
        else
            QFAIL("a line break outside quotes");
    }
    QVERIFY(record.isEmpty() && cell.isEmpty() && !quoted);
    QCOMPARE(records.value(0).value(5), u"Field"_s);
    for (const QStringList& rec : records.mid(1)) {
        QCOMPARE(rec.size(), 14);
        if (rec[4].isEmpty()) {
            r.outside.append(rec[13]);
            continue;
        }
        if (!r.fields.contains(rec[0].toInt()))
            r.overview.append(rec.mid(0, 4));
        r.fields[rec[0].toInt()].append(rec.mid(4));
    }
}

// Cells split at "|" that no backslash escapes; <br> is a line break.
QStringList markdownCells(const QString& line)
{
    QStringList cells;
    QString cell;
    for (qsizetype i = 1; i < line.size(); ++i) {
        if (line[i] == u'\\')
            cell += line.mid(++i, 1);
        else if (line[i] == u'|')
            cells.append(std::exchange(cell, QString()).mid(1).chopped(1));
        else if (line.mid(i, 4) == u"<br>" && (i += 3))
            cell += u'\n';
        else
            cell += line[i];
    }
    return cells;
}

void readMarkdown(const QString& text, Read& r)
{
    int dump = 0;
    bool outside = false;
    for (const QString& line : text.split(u'\n')) {
        if (line.startsWith(u"## Dump "_s))
            dump = line.section(u' ', 2, 2).toInt();
        // A heading's closing run of "#" is not part of its text.
        QVERIFY2(!line.startsWith(u'#') || !line.endsWith(u'#') || line.endsWith(u"\\#"_s), qPrintable(line));
        outside = line.startsWith(u"### "_s) || (outside && !line.startsWith(u'#'));
        if (outside && line.startsWith(u"- "_s))
            r.outside.append(markdownCells(u"| "_s + line.mid(2) + u" |"_s).value(0));
        if (!line.startsWith(u"| "_s) || line.startsWith(u"| Dump |"_s) || line.startsWith(u"| No. |"_s) ||
            line.startsWith(u"| --"_s))
            continue;
        const QStringList cells = markdownCells(line);
        if (dump == 0)
            r.overview.append(cells.mid(0, 4));
        else
            r.fields[dump].append(cells);
    }
}

// As XML: unescaped markup breaks the reading. A cell's blocks are lines.
void readHtml(const QString& text, Read& r)
{
    QXmlStreamReader xml(text);
    int dump = 0;
    bool inCell = false;
    bool inItem = false;
    QString cell;
    QStringList row;
    while (!xml.atEnd()) {
        xml.readNext();
        const QStringView name = xml.name();
        if (xml.isStartElement()) {
            if (name == u"section")
                dump = xml.attributes().value(u"id"_s).mid(5).toInt();
            inItem = inItem || (!inCell && name == u"li");
            if (name == u"td")
                inCell = true;
            if (inCell && (name == u"div" || name == u"li") && !cell.isEmpty())
                cell += u'\n';
        } else if (xml.isCharacters() && (inCell || inItem)) {
            cell += xml.text();
        } else if (xml.isEndElement() && name == u"td") {
            row.append(std::exchange(cell, QString()));
            inCell = false;
        } else if (xml.isEndElement() && name == u"li" && inItem && !inCell) {
            r.outside.append(std::exchange(cell, QString()));
            inItem = false;
        } else if (xml.isEndElement() && name == u"tr" && !row.isEmpty()) {
            if (dump == 0) {
                r.overview.append(row.mid(0, 4));
            } else {
                const QString field = row.takeAt(1);
                r.fields[dump].append(
                    QStringList{row[0], field.section(u'\n', 0, 0), field.section(u'\n', 1)} + row.mid(1));
            }
            row.clear();
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
}

void read(const QString& format, const QString& text, Read& r)
{
    if (format == u"csv")
        readCsv(text, r);
    else if (format == u"md")
        readMarkdown(text, r);
    else
        readHtml(text, r);
}

QString render(const QString& xml, const QString& format)
{
    fb::MappingDocument doc;
    return loadDocument(doc, xml) ? fb::RenderReport(doc, *fb::ReportFormatFromName(format)) : QString();
}

} // namespace

class ReportTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    void readsBackInEveryFormat_data()
    {
        QTest::addColumn<QString>("format");
        for (const char* format : {"html", "md", "csv"})
            QTest::newRow(format) << QString::fromLatin1(format);
    }
    void readsBackInEveryFormat()
    {
        QFETCH(QString, format);
        fb::MappingDocument doc;
        QVERIFY(loadDocument(doc, hostileDocument()));
        doc.MigrateTables() = QStringList{u"kept"_s};
        Read r;
        read(format, fb::RenderReport(doc, *fb::ReportFormatFromName(format)), r);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(doc.MigrateTables(), QStringList{u"kept"_s}); // the session's lists stay as they were

        // The referenced dumps by number; the overview gives the coverage.
        const QList<QStringList> overview{{u"1"_s, kDumpText, u"RULES001"_s, u"4 of 11"_s},
                                          {u"2"_s, u"Second"_s, u"RULES001"_s, u"2 of 11"_s},
                                          {u"3"_s, u"Third"_s, u"RULES001"_s, u"0 of 11"_s}};
        QCOMPARE(r.overview.size(), overview.size());
        for (int i = 0; i < overview.size(); ++i) {
            QCOMPARE(r.overview[i].mid(0, 3), overview[i].mid(0, 3));
            QVERIFY2(r.overview[i].value(3).startsWith(overview[i][3]), qPrintable(r.overview[i].value(3)));
        }
        QCOMPARE(r.fields.keys(), (QList<int>{1, 2, 3}));
        for (const QList<QStringList>& rows : std::as_const(r.fields))
            QCOMPARE(rows.size(), 11);

        const QString open = u"Warning: Mandatory field without a rule"_s;
        const QList<std::tuple<int, int, QStringList>> expected{
            {1,
             0,
             {u"001"_s, u"rules001.custno"_s, u"Customer number"_s, u"Long"_s, u"8"_s, u"Yes"_s,
              u"srcaa001.custno"_s, u"srcaa001.custno"_s, kDoc, QString()}},
            {1,
             1,
             {u"002"_s, u"rules001.name"_s, u"Name, <first> & \"last\""_s, u"String"_s, u"30"_s, QString(),
              QString(), QString(), QString(), QString()}},
            {1,
             2,
             {u"003"_s, u"rules001.city"_s, QString(), u"String"_s, u"30"_s, QString(), u"srcbb002.city"_s,
              u"srcbb002.city"_s, u"Text no. 17 (kept by the host)"_s, QString()}},
            {1,
             9,
             {u"009"_s, u"rules001.zip"_s, QString(), u"String"_s, u"10"_s, QString(), kRule,
              u"srcaa001.zip"_s, QString(), QString()}},
            {1,
             10,
             {u"010"_s, u"rules001.überß名"_s, QString(), u"String"_s, u"40"_s, QString(), u"\"€ 😀\""_s,
              QString(), u"ß"_s, QString()}},
            {2,
             0,
             {u"001"_s, u"rules001.custno"_s, u"Customer number"_s, u"Long"_s, u"8"_s, u"Yes"_s, QString(),
              QString(), QString(), open}},
            {2,
             7,
             {u"007"_s, u"rules001.remark"_s, QString(), u"Text"_s, QString(), QString(),
              u"line one\nline two"_s, QString(), QString(), QString()}},
        };
        for (const auto& [dump, row, cells] : expected)
            QCOMPARE(r.fields[dump][row], cells);

        // The unreferenced dump and the query of a table no longer migrated.
        QCOMPARE(r.outside.size(), 2);
        QVERIFY(r.outside[0].startsWith(u"Error: The main query of ab\tc"_s) &&
                r.outside[0].contains(u"d\"e"_s));
        QVERIFY(r.outside[1].startsWith(u"Error: Dump 7 holds rules"_s));
    }

    // Written in pieces, a report is the same text as made whole: a large
    // document's report is never held in one piece.
    void piecesMakeTheWhole_data() { readsBackInEveryFormat_data(); }
    void piecesMakeTheWhole()
    {
        QFETCH(QString, format);
        QString rule = u"\""_s;
        for (int i = 0; i < 60000; ++i)
            rule += u"😀<&|,é"_s;
        fb::MappingDocument doc;
        QVERIFY(loadDocument(doc, hostileDocument(rule + u'"')));
        const fb::ReportFormat f = *fb::ReportFormatFromName(format);
        const fb::MappingReport report = fb::BuildReport(doc);
        QByteArray joined;
        int pieces = 0;
        QVERIFY(fb::WriteReport(report, f, [&](QByteArrayView piece) {
            joined += piece;
            return ++pieces > 0;
        }));
        QVERIFY2(pieces >= 2, qPrintable(QString::number(pieces)));
        QCOMPARE(joined, fb::RenderReport(report, f).toUtf8());
        // A sink that refuses stops the writing and says so.
        int offered = 0;
        QVERIFY(!fb::WriteReport(report, f, [&](QByteArrayView) {
            ++offered;
            return false;
        }));
        QCOMPARE(offered, 1);
    }

    // A character whose two halves meet at the end of a piece is not cut
    // in two: every piece is whole UTF-8.
    void piecesKeepCharactersWhole()
    {
        QList<QByteArray> pieces;
        const fb::ReportSink sink = [&](QByteArrayView piece) {
            pieces.append(piece.toByteArray());
            return true;
        };
        fb::detail::ReportOut out(&sink);
        const QString emoji = u"😀"_s;
        out += QString(fb::detail::ReportOut::kPiece - 1, u'a') + emoji.at(0);
        out += QString(emoji.at(1)) + u"b"_s;
        QVERIFY(out.flush(true));
        QCOMPARE(pieces.size(), 2);
        QCOMPARE(pieces.join(), (QString(fb::detail::ReportOut::kPiece - 1, u'a') + emoji + u"b"_s).toUtf8());
        for (const QByteArray& piece : pieces)
            QCOMPARE(QString::fromUtf8(piece).toUtf8(), piece);
    }

    // A cell that starts like a formula must not become one in a spreadsheet.
    void csvGuardsFormulas_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("cell");
        const QString link = u"=HYPERLINK(\"http://x\",\"y\")"_s;
        QTest::newRow("equals") << link << u'\'' + link;
        QTest::newRow("plus") << u"+1"_s << u"'+1"_s;
        QTest::newRow("minus") << u"-srcaa001.zip"_s << u"'-srcaa001.zip"_s;
        QTest::newRow("at") << u"@SUM(A1)"_s << u"'@SUM(A1)"_s;
        QTest::newRow("tab") << u"\t=1"_s << u"'\t=1"_s;
        QTest::newRow("later in the cell") << u"srcaa001.zip & \"=1\""_s << u"srcaa001.zip & \"=1\""_s;
    }
    void csvGuardsFormulas()
    {
        QFETCH(QString, rule);
        QFETCH(QString, cell);
        Read r;
        readCsv(render(hostileDocument(rule), u"csv"_s), r);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(r.fields[1].value(9).value(6), cell);
    }

    // Nothing in the page reaches outside it: no script, no image, no link
    // but to its own sections, although rules and texts name all of them.
    void htmlIsSelfContained()
    {
        const QString rule =
            u"<script src=\"http://x/y.js\"></script><img src=file:///etc/x><link href=\"y.css\">"_s;
        QXmlStreamReader xml(render(hostileDocument(rule), u"html"_s));
        static const QStringList allowed = u"html head meta title style body header p h1 h2 h3 dl dt dd div "
                                           u"section table colgroup col thead "
                                           u"tbody tr th td a ul li b span footer wbr"_s.split(u' ');
        static const QRegularExpression width(u"^width:\\d+%$"_s);
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement()) {
                QVERIFY2(allowed.contains(xml.name()), qPrintable(xml.name().toString()));
                for (const QXmlStreamAttribute& a : xml.attributes()) {
                    QVERIFY(a.name() != u"src");
                    QVERIFY2(a.name() != u"href" || a.value().startsWith(u'#'),
                             qPrintable(a.value().toString()));
                    QVERIFY2(a.name() != u"style" || width.match(a.value()).hasMatch(),
                             qPrintable(a.value().toString()));
                }
            }
            if (xml.isCharacters() && xml.name().isEmpty())
                QVERIFY(!xml.text().contains(u"url("_s) && !xml.text().contains(u"@import"_s));
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    }

    void checkListing_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<int>("status");
        QTest::newRow("warnings only") << rulesDocument() << 0;
        QTest::newRow("errors, names with tabs and line breaks") << hostileDocument() << 1;
    }
    void checkListing()
    {
        QFETCH(QString, xml);
        QFETCH(int, status);
        fb::MappingDocument doc;
        QVERIFY(loadDocument(doc, xml));
        const QList<fb::Problem> problems = fb::CheckMapping(doc);
        QVERIFY(!problems.isEmpty());
        QCOMPARE(fb::CheckExitStatus(problems), status);
        const QStringList lines =
            fb::RenderCheckListing(problems, fb::ListingFormat::Text).split(u'\n', Qt::SkipEmptyParts);
        QJsonParseError error;
        const QJsonArray json =
            QJsonDocument::fromJson(fb::RenderCheckListing(problems, fb::ListingFormat::Json).toUtf8(),
                                    &error)
                .array();
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(lines.size(), problems.size());
        QCOMPARE(json.size(), problems.size());
        for (int i = 0; i < problems.size(); ++i) {
            const fb::Problem& p = problems[i];
            const QStringList columns = lines[i].split(u'\t');
            QCOMPARE(columns.size(), 4);
            QCOMPARE(columns[0], fb::SeverityText(p.severity));
            QCOMPARE(columns[1], p.dump > 0 ? QString::number(p.dump) : u"-"_s);
            const QJsonObject o = json[i].toObject();
            QCOMPARE(o[u"severity"_s].toString(), columns[0].toLower());
            QCOMPARE(o[u"dump"_s].toInt(), int(p.dump));
            QCOMPARE(o[u"field"_s].isNull(), p.field.isEmpty());
            QCOMPARE(o[u"field"_s].toString(), p.field);
            QCOMPARE(o[u"message"_s].toString(), p.message);
        }
    }
};

QTEST_GUILESS_MAIN(ReportTest)
#include "tst_report.moc"
