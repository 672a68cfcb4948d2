// The scanner of the scripts' two keywords: whole words, the word after a
// keyword, the "migrate" statements and their table names, the "dump"
// references, the spans a script editor colours, and the tidying of queries
// and dumps before the document is handed back.

#include "CoreTestSupport.h"
#include "core/scripts/ScriptScanner.h"

#include <memory>

using namespace fbtest;
using fb::MappingDocument;
using fb::ScriptScanner;

namespace {

const QString kNotValid = u"critical: Table Name not Valid"_s;
const QString kFocus = u"focus precondition"_s;
const QString kChanged = u"migrate tables changed"_s;
const QString kMigrateAtEnd = u"critical: Migrate Keyword Has to be followed by a TableName"_s;
const QString kDumpAtEnd = u"Dump Keyword Must be Followed by a Dump Number"_s;
const QStringList kNoTable{QString()};
const QStringList kNoReference{u"0="_s};

QString invalidName(const QString& name)
{
    return u"critical: Invalid table name '"_s + name + u'\'';
}

// The referenced dumps as "number=text".
QStringList references(const MappingDocument& doc)
{
    QStringList out;
    for (qsizetype i = 0; i < doc.ReferencedDumps().numbers.size(); ++i)
        out.append(QString::number(doc.ReferencedDumps().numbers[i]) + u'=' + doc.ReferencedDumps().texts[i]);
    return out;
}

QStringList querySources(MappingDocument& doc)
{
    QStringList out;
    for (const fb::Node& q : doc.QueryNodes())
        out.append(q.attribute(u"ST"_s));
    return out;
}

} // namespace

class ScannerTest : public QObject {
    Q_OBJECT

    std::unique_ptr<MappingDocument> doc;
    RecordingInteraction ui;

private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }
    void init()
    {
        doc = std::make_unique<MappingDocument>();
        QVERIFY(load(*doc, u"<klmno001/>"_s));
        ui.log.clear();
    }

    // The count grows by what the word and the control characters before it
    // take; blanks are not counted.
    void nextWord_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("count"); // from 10
        QTest::newRow("leading blanks not counted") << u"   abc def"_s << u"abc"_s << 13;
        QTest::newRow("control characters counted") << u"\t\r\nKLMNO001"_s << u"KLMNO001"_s << 21;
        QTest::newRow("blanks between controls not counted") << u" \n  \t  abc"_s << u"abc"_s << 15;
        QTest::newRow("punctuation belongs to the word") << u"a(1),b c"_s << u"a(1),b"_s << 16;
        QTest::newRow("controls only") << u"\r\n"_s << QString() << 12;
    }
    void nextWord()
    {
        QFETCH(QString, text);
        qint32 count = 10;
        QTEST(ScriptScanner(*doc, ui).NextWord(text, count), "word");
        QTEST(int(count), "count");
    }

    // A migrate table is 8 characters: 5 that are not numeric, 3 that are.
    void parseMigrateTables_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QStringList>("log");
        const QStringList none{kChanged};
        QTest::newRow("one table") << u"migrate KLMNO001"_s << QStringList{u"KLMNO001"_s} << none;
        QTest::newRow("any case, tab and LF")
            << u"MIGRATE\tKLMNO001\nmiGRate PQRST002"_s << QStringList{u"KLMNO001"_s, u"PQRST002"_s} << none;
        QTest::newRow("CR LF lines, breaks before the name")
            << u"x = 1\r\nMigrate\r\n\r\n  KLMNO001\r\n"_s << QStringList{u"KLMNO001"_s} << none;
        QTest::newRow("tail of a word is no keyword") << u"xmigrate KLMNO001"_s << kNoTable << none;
        QTest::newRow("short name") << u"migrate KLM"_s << kNoTable
                                    << QStringList{kNotValid, kFocus, kChanged};
        QTest::newRow("digit in the first five")
            << u"migrate KLMN5001"_s << kNoTable << QStringList{invalidName(u"KLMN5001"_s), kFocus, kChanged};
        QTest::newRow("letters in the last three")
            << u"migrate KLMNOXYZ"_s << kNoTable << QStringList{invalidName(u"KLMNOXYZ"_s), kFocus, kChanged};
        QTest::newRow("punctuation in the first five")
            << u"migrate K.MN_001"_s << QStringList{u"K.MN_001"_s} << none;
        QTest::newRow("sign and point are numeric")
            << u"migrate KLMNO1.5 migrate KLMNO-01"_s << QStringList{u"KLMNO1.5"_s, u"KLMNO-01"_s} << none;
        QTest::newRow("invalid names skipped")
            << u"migrate KLM\nmigrate PQRST002\nmigrate 1BCDE003"_s << QStringList{u"PQRST002"_s}
            << QStringList{kNotValid, kFocus, invalidName(u"1BCDE003"_s), kFocus, kChanged};
        QTest::newRow("duplicate kept once, silently")
            << u"migrate KLMNO001 migrate KLMNO001"_s << QStringList{u"KLMNO001"_s} << none;
        QTest::newRow("duplicates are case-sensitive")
            << u"migrate KLMNO001 migrate klmno001"_s << QStringList{u"KLMNO001"_s, u"klmno001"_s} << none;
        QTest::newRow("keyword ends the text") << u"migrate KLMNO001\nmigrate"_s << QStringList{u"KLMNO001"_s}
                                               << QStringList{kMigrateAtEnd, kChanged};
        QTest::newRow("one character after the keyword stops the scan")
            << u"migrate KLM\nmigrateX"_s << kNoTable
            << QStringList{kNotValid, kFocus, kMigrateAtEnd, kChanged};
        QTest::newRow("keyword and blanks only") << u"migrate   "_s << kNoTable << none;
    }
    void parseMigrateTables()
    {
        QFETCH(QString, text);
        doc->MigrateTables() = QStringList{u"OLDTB001"_s, u"OLDTB002"_s};
        QVERIFY(ScriptScanner(*doc, ui).ParseMigrateTables(text));
        QTEST(doc->MigrateTables(), "tables");
        QTEST(ui.log, "log");
    }

    void emptyPreconditionChangesNothing()
    {
        doc->MigrateTables() = QStringList{u"KLMNO001"_s};
        QVERIFY(!ScriptScanner(*doc, ui).ParseMigrateTables(QString()));
        QCOMPARE(doc->MigrateTables(), QStringList{u"KLMNO001"_s});
        QCOMPARE(ui.log, QStringList{});
    }

    // A reference is "dump", a number from 1 to 999 and, up to the line's
    // end or the next "dump", its text; a DUMP element is made for each new
    // number and keeps the text seen first.
    void scanDumpReferences_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("references");
        QTest::addColumn<QStringList>("dumps");
        QTest::addColumn<QStringList>("log");
        const QStringList none;
        QTest::newRow("number and text")
            << u"dump 3 Order statistics"_s << QStringList{u"3=Order statistics"_s}
            << QStringList{u"3=Order statistics"_s} << none;
        QTest::newRow("text trimmed, ends with the line")
            << u"\tDUMP 3 \t Orders \t\r\nDump 4 Lines\nx"_s << QStringList{u"3=Orders"_s, u"4=Lines"_s}
            << QStringList{u"3=Orders"_s, u"4=Lines"_s} << none;
        QTest::newRow("text stops before the next dump")
            << u"dump 1 A dump 2 B"_s << QStringList{u"1=A"_s, u"2=B"_s} << QStringList{u"1=A"_s, u"2=B"_s}
            << none;
        QTest::newRow("leading zero")
            << u"dump  07 Seven"_s << QStringList{u"7=Seven"_s} << QStringList{u"7=Seven"_s} << none;
        QTest::newRow("999 is the highest")
            << u"dump 999"_s << QStringList{u"999="_s} << QStringList{u"999="_s} << none;
        QTest::newRow("1000 is no dump") << u"dump 1000"_s << kNoReference << none << none;
        QTest::newRow("0 is no dump") << u"dump 0"_s << kNoReference << none << none;
        QTest::newRow("a word is no dump") << u"dump xyz"_s << kNoReference << none << none;
        QTest::newRow("tail of a word") << u"xdump 5"_s << kNoReference << none << none;
        QTest::newRow("same number twice: last text listed, first kept")
            << u"dump 5 First\ndump 5 Again"_s << QStringList{u"5=Again"_s} << QStringList{u"5=First"_s}
            << none;
        QTest::newRow("keyword alone")
            << u"dump"_s << kNoReference << none << QStringList{u"critical: "_s + kDumpAtEnd};
        QTest::newRow("keyword ends the text after LF")
            << u"x = 1\ndump"_s << kNoReference << none << QStringList{u"information: "_s + kDumpAtEnd};
        QTest::newRow("keyword ends the text after a dump")
            << u"dump 5 dump"_s << QStringList{u"5="_s} << QStringList{u"5="_s}
            << QStringList{u"information: "_s + kDumpAtEnd};
        QTest::newRow("word's tail ends the text") << u"x = 1\nxdump"_s << kNoReference << none << none;
        // The scan goes on right behind the previous keyword.
        QTest::newRow("keyword right behind a longer word")
            << u"dumpdump 7"_s << QStringList{u"7="_s} << QStringList{u"7="_s} << none;
    }
    void scanDumpReferences()
    {
        QFETCH(QString, text);
        ScriptScanner(*doc, ui).ScanDumpReferences(text);
        QTEST(references(*doc), "references");
        QTEST(dumpList(*doc), "dumps");
        QTEST(ui.log, "log");
    }

    // What a script editor colours: each whole keyword, the word after it
    // and whether the scanner takes that word.
    void keywordSpans_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("spans"); // keyword@start word@start ok|bad
        QTest::newRow("valid table name")
            << u"migrate KLMNO001"_s << QStringList{u"migrate@0 KLMNO001@8 ok"_s};
        QTest::newRow("invalid table name") << u"migrate KLM"_s << QStringList{u"migrate@0 KLM@8 bad"_s};
        QTest::newRow("dump numbers 1 to 999")
            << u"dump 999\ndump 1000"_s << QStringList{u"dump@0 999@5 ok"_s, u"dump@9 1000@14 bad"_s};
        QTest::newRow("text order, any case")
            << u"DUMP 3 x\nMigrate KLMNO001"_s
            << QStringList{u"DUMP@0 3@5 ok"_s, u"Migrate@9 KLMNO001@17 ok"_s};
        QTest::newRow("breaks before the word")
            << u"migrate\r\n  KLMNO001"_s << QStringList{u"migrate@0 KLMNO001@11 ok"_s};
        QTest::newRow("inside words: none") << u"xdump 3 dumpster 4 migrated x"_s << QStringList{};
        QTest::newRow("right behind a longer word") << u"dumpdump 7"_s << QStringList{u"dump@4 7@9 ok"_s};
        QTest::newRow("keyword ending the text: none") << u"x dump "_s << QStringList{};
    }
    void keywordSpans()
    {
        QFETCH(QString, text);
        QStringList spans;
        for (const fb::KeywordSpan& s : fb::KeywordSpans(text)) {
            QString span = text.mid(s.start, s.length) + u'@' + QString::number(s.start) + u' ';
            span += s.argumentStart < 0
                        ? u"-"_s
                        : text.mid(s.argumentStart, s.argumentLength) + u'@' +
                              QString::number(s.argumentStart) + (s.argumentValid ? u" ok"_s : u" bad"_s);
            spans.append(span);
        }
        QTEST(spans, "spans");
    }

    // ---- tidying ----------------------------------------------------------------

    void prune_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QStringList>("queries");
        QTest::addColumn<QStringList>("dumps");
        const QString queries = u"<QUERY ST=\"pqrst002\">q1</QUERY><QUERY ST=\"uvwxy003\">q2</QUERY>"_s;
        const QStringList none;
        QTest::newRow("no migrate: every query goes") << u"<PREC>x = 1</PREC>"_s + queries << none << none;
        QTest::newRow("no precondition: every query goes") << queries << none << none;
        QTest::newRow("query of a migrate table stays")
            << u"<PREC>migrate uvwxy003</PREC>"_s + queries << QStringList{u"uvwxy003"_s} << none;
        QTest::newRow("tables compared case-sensitively")
            << u"<PREC>migrate UVWXY003</PREC>"_s + queries << none << none;
        QTest::newRow("no empty query for a new table") << u"<PREC>migrate abcde004</PREC>"_s << none << none;
        QTest::newRow("unreferenced dump goes with its rules")
            << u"<PREC>dump 2 Kept</PREC><DUMP No=\"1\"><A No=\"1\">rule</A></DUMP><DUMP No=\"2\"/>"_s << none
            << QStringList{u"2"_s};
        QTest::newRow("dump whose No is no number goes")
            << u"<PREC>dump 1</PREC><DUMP No=\"x\"/><DUMP No=\"1\"/>"_s << none << QStringList{u"1"_s};
        QTest::newRow("referenced dump made with its text")
            << u"<PREC>dump 7 Seven</PREC>"_s << none << QStringList{u"7=Seven"_s};
        QTest::newRow("dump named in functions stays")
            << u"<FUNCTIONS>dump 3</FUNCTIONS><DUMP No=\"3\"/>"_s << none << QStringList{u"3"_s};
        QTest::newRow("dump named in variables only goes")
            << u"<VAR>dump 3</VAR><DUMP No=\"3\"/>"_s << none << none;
        QTest::newRow("dump in a dropped table's query goes")
            << u"<PREC>x</PREC><QUERY ST=\"pqrst002\">dump 4 Q</QUERY><DUMP No=\"4\"/>"_s << none << none;
        QTest::newRow("dumps made in scan order")
            << u"<PREC>migrate pqrst002\ndump 9</PREC><FUNCTIONS>dump 2</FUNCTIONS>"
               "<QUERY ST=\"pqrst002\">dump 5\ndump 9</QUERY>"_s
            << QStringList{u"pqrst002"_s} << QStringList{u"9="_s, u"2="_s, u"5="_s};
    }
    void prune()
    {
        QFETCH(QString, content);
        QVERIFY(load(*doc, wrapped(content)));
        ScriptScanner(*doc, ui).PruneSections();
        QTEST(querySources(*doc), "queries");
        QTEST(dumpList(*doc), "dumps");
        const QString once = doc->Serialize();
        ScriptScanner(*doc, ui).PruneSections();
        QCOMPARE(doc->Serialize(), once);
    }
};

QTEST_APPLESS_MAIN(ScannerTest)
#include "tst_scanner.moc"
