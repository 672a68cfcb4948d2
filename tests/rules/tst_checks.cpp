// The checks of a mapping and the coverage of a dump: what a rule names,
// what its types lose, what stays open and what the next read removes.

#include "CoreTestSupport.h"
#include "core/rules/Checks.h"
#include "core/rules/SuggestDocument.h"

using namespace fbtest;

namespace {

// One source table and one target table; dump 1 is referenced, the rule of
// the target field given by the test goes into it.
const QString kTables = uR"(<SRCTBL>srcaa001</SRCTBL>
<TARTAB><KLMNO001>
<CODE No="1" TYPE="S" LENG="10" MAN="Y"/><QTY No="2" TYPE="I" DIGB="5"/><PRICE No="3" TYPE="D" DIGB="8" DIGA="2"/>
<NOTE__2 No="4" TYPE="S" LENG="20"/><LONGNAME No="5" TYPE="M" LENG="80"/>
</KLMNO001></TARTAB>
<SRCTAB><SRCAA001>
<CODE TYPE="S" LENG="10"/><NAME TYPE="S" LENG="60"/><AMOUNT TYPE="F" DIGB="8" DIGA="2"/><BORN TYPE="K"/>
<COUNT TYPE="L" DIGB="9"/><MEMO TYPE="U"/><NOTE__2 TYPE="S" LENG="20"/>
</SRCAA001></SRCTAB>)"_s;

QStringList messages(const QList<fb::Problem>& problems)
{
    QStringList out;
    for (const fb::Problem& p : problems)
        out.append(fb::SeverityText(p.severity) + u' ' + QString::number(p.dump) + u' ' + p.field + u": "_s +
                   p.message);
    return out;
}

} // namespace

class ChecksTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    void references_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("plain") << u"srcaa001.code"_s << QStringList{u"srcaa001.code"_s};
        QTest::newRow("upper case") << u"SRCAA001.Code"_s << QStringList{u"srcaa001.code"_s};
        QTest::newRow("array") << u"srcaa001.note(2)"_s << QStringList{u"srcaa001.note(2)"_s};
        QTest::newRow("string position form")
            << u"srcaa001.note(1,2)"_s << QStringList{u"srcaa001.note(2)"_s};
        QTest::newRow("in a call, twice")
            << u"trim(srcaa001.a)&srcbb002.b"_s << QStringList{u"srcaa001.a"_s, u"srcbb002.b"_s};
        QTest::newRow("quoted text") << u"\"srcaa001.a\" & srcaa001.b"_s << QStringList{u"srcaa001.b"_s};
        QTest::newRow("not a table name")
            << u"utc.utc(x) + abc.def + 12345678.x + srcaa0011.x"_s << QStringList{};
        QTest::newRow("member of something") << u"x.srcaa001.code"_s << QStringList{};
    }
    void references()
    {
        QFETCH(QString, rule);
        QFETCH(QStringList, found);
        QStringList got;
        for (const fb::FieldReference& r : fb::FieldReferences(rule)) {
            got.append(r.table + u'.' + r.field);
            QCOMPARE(rule.mid(r.position, r.length).toLower().replace(u"(1,"_s, u"("_s), got.last());
        }
        QCOMPARE(got, found);
    }

    // One rule in one target field (row), and the problems of the dump.
    void rules_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QStringList>("problems");
        const QString open = u"Warning 1 klmno001.code: Mandatory field without a rule"_s;
        QTest::newRow("same type") << 0 << u"srcaa001.code"_s << QStringList{};
        QTest::newRow("blank rule") << 0 << u"  \r\n"_s << QStringList{open};
        QTest::newRow("unlisted table")
            << 1 << u"srcbb002.count"_s
            << QStringList{open, u"Error 1 klmno001.qty: srcbb002 is not a listed source "
                                 u"table (srcbb002.count)"_s};
        QTest::newRow("missing field")
            << 1 << u"srcaa001.cnt"_s
            << QStringList{open, u"Error 1 klmno001.qty: Source table srcaa001 has no "
                                 u"field cnt"_s};
        QTest::newRow("longer string")
            << 0 << u"srcaa001.name"_s
            << QStringList{u"Warning 1 klmno001.code: srcaa001.name: String(60) into "
                           u"String(10) may lose data"_s};
        QTest::newRow("shorter string into multi-byte") << 4 << u"srcaa001.code"_s << QStringList{open};
        QTest::newRow("date into number")
            << 1 << u"srcaa001.born"_s
            << QStringList{open, u"Warning 1 klmno001.qty: srcaa001.born: UTC(15) "
                                 u"into Integer(5) may lose data"_s};
        QTest::newRow("float into integer")
            << 1 << u"srcaa001.amount"_s
            << QStringList{open, u"Warning 1 klmno001.qty: srcaa001.amount: "
                                 u"Float(8,2) into Integer(5) may lose data"_s};
        QTest::newRow("float into double") << 2 << u"srcaa001.amount"_s << QStringList{open};
        QTest::newRow("integer into double") << 2 << u"srcaa001.count"_s << QStringList{open};
        QTest::newRow("text into number")
            << 2 << u"srcaa001.memo"_s
            << QStringList{open, u"Warning 1 klmno001.price: srcaa001.memo: Text into "
                                 u"Double(8,2) may lose data"_s};
        QTest::newRow("converted by a function") << 1 << u"val(srcaa001.memo)"_s << QStringList{open};
        QTest::newRow("through the map conversion")
            << 1 << u"utc(srcaa001.born,0)"_s
            << QStringList{open, u"Warning 1 klmno001.qty: srcaa001.born: "
                                 u"UTC(15) into Integer(5) may lose data"_s};
        QTest::newRow("array element") << 3 << u"srcaa001.note(1,2)"_s << QStringList{open};
        QTest::newRow("array as a whole") << 3 << u"srcaa001.note"_s << QStringList{open};
    }
    void rules()
    {
        QFETCH(int, row);
        QFETCH(QString, rule);
        QFETCH(QStringList, problems);
        RecordingInteraction ui;
        fb::MappingDocument doc;
        QVERIFY(load(doc, wrapped(u"<PREC>dump 1 x</PREC>"_s + kTables)));
        const QList<fb::TargetField> fields = fb::TargetFieldsOf(doc.GetTargetTableNode(1));
        QList<QString> byRow(fields.size());
        byRow[row] = rule;
        QCOMPARE(messages(fb::CheckDumpRules(1, fields, byRow, fb::SourceCatalogue(doc))), problems);

        // The stored form of the same rule gives the same problems.
        QVERIFY(doc.WriteRuleElement(doc.CreateDumpNode(1), doc.GetTargetTableNode(1).childElements()[row],
                                     rule, fb::Node()));
        QCOMPARE(messages(fb::CheckMapping(doc)), problems);
    }

    void sections_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QStringList>("problems");
        QTest::newRow("referenced dump, migrated query")
            << u"<PREC>migrate srcaa001 dump 1 x</PREC><QUERY ST=\"srcaa001\">q</QUERY><DUMP No=\"1\"><CODE "
               u"No=\"1\">"
               u"srcaa001.code</CODE></DUMP>"_s
            << QStringList{};
        QTest::newRow("dump no script names")
            << u"<PREC>dump 1 x</PREC><DUMP No=\"1\"><CODE No=\"1\">srcaa001.code</CODE></DUMP><DUMP "
               u"No=\"7\">"
               u"<QTY No=\"2\">srcaa001.nothing</QTY></DUMP>"_s
            << QStringList{u"Error 7 : Dump 7 holds rules, but no script references it: reading the document "
                           u"removes it with its rules"_s};
        QTest::newRow("empty unreferenced dump")
            << u"<PREC>dump 1 x</PREC><DUMP No=\"1\"><CODE No=\"1\">srcaa001.code</CODE></DUMP><DUMP No=\"7\"/>"_s
            << QStringList{};
        QTest::newRow("dump named by a main query")
            << u"<PREC>migrate srcaa001 dump 1 x</PREC><QUERY ST=\"srcaa001\">dump 2 y</QUERY><DUMP No=\"1\">"
               u"<CODE No=\"1\">srcaa001.code</CODE></DUMP><DUMP No=\"2\"><CODE No=\"1\">srcaa001.code</CODE></DUMP>"_s
            << QStringList{};
        QTest::newRow("query of a table no longer migrated")
            << u"<PREC>dump 1 x</PREC><QUERY ST=\"srcaa001\">dump 2 y</QUERY><DUMP No=\"1\"><CODE No=\"1\">"
               u"srcaa001.code</CODE></DUMP><DUMP No=\"2\"><CODE No=\"1\">x</CODE></DUMP>"_s
            << QStringList{
                   u"Error 0 srcaa001: The main query of srcaa001 holds text, but no migrate statement "
                   u"names the table: reading the document removes it"_s,
                   u"Error 2 : Dump 2 holds rules, but no script references it: reading the document "
                   u"removes it with its rules"_s};
    }
    void sections()
    {
        QFETCH(QString, content);
        QFETCH(QStringList, problems);
        fb::MappingDocument doc;
        QVERIFY(load(doc, wrapped(content + kTables)));
        doc.MigrateTables() = QStringList{u"kept"_s};
        const QString before = doc.Serialize();
        QCOMPARE(messages(fb::CheckSections(doc)), problems);
        QCOMPARE(doc.Serialize(), before);                     // looking creates no element
        QCOMPARE(doc.MigrateTables(), QStringList{u"kept"_s}); // the session's lists stay as they were
    }

    // The dumps that the checks, the report and the suggestions cover are the
    // ones the dump selector offers.
    void coveredDumps_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QList<qint16>>("numbers");
        QTest::newRow("referenced, in document order")
            << u"<PREC>dump 2 y dump 1 x</PREC><DUMP No=\"1\"/><DUMP No=\"2\"/>"_s << QList<qint16>{1, 2};
        QTest::newRow("an element twice counts once")
            << u"<PREC>dump 1 x</PREC><DUMP No=\"1\"/><DUMP No=\"1\"/>"_s << QList<qint16>{1};
        QTest::newRow("unreferenced")
            << u"<PREC>dump 1 x</PREC><DUMP No=\"1\"/><DUMP No=\"7\"/>"_s << QList<qint16>{1};
        QTest::newRow("no reference: 0 stands for none")
            << u"<PREC>none</PREC><DUMP No=\"0\"><CODE No=\"1\">srcaa001.code</CODE></DUMP>"_s
            << QList<qint16>{};
        QTest::newRow("1000 is no reference")
            << u"<PREC>dump 1000 x</PREC><DUMP No=\"1000\"/>"_s << QList<qint16>{};
    }
    void coveredDumps()
    {
        QFETCH(QString, content);
        QFETCH(QList<qint16>, numbers);
        fb::MappingDocument doc;
        QVERIFY(load(doc, wrapped(content + kTables)));
        QCOMPARE(fb::CheckedDumps(doc), numbers);
        QList<qint16> suggested;
        for (const fb::DumpTargetFields& d : fb::DumpTargets(doc))
            suggested.append(d.dump);
        QCOMPARE(suggested, numbers);
    }

    void coverage_data()
    {
        QTest::addColumn<QStringList>("rules");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QStringList{} << u"0 of 5 fields have a rule; 1 mandatory field has none"_s;
        QTest::newRow("blank is none")
            << QStringList{u" "_s, u"x"_s} << u"1 of 5 fields have a rule; 1 mandatory field has none"_s;
        QTest::newRow("mandatory covered")
            << QStringList{u"a"_s, u""_s, u"b"_s} << u"2 of 5 fields have a rule"_s;
    }
    void coverage()
    {
        QFETCH(QStringList, rules);
        QFETCH(QString, text);
        fb::MappingDocument doc;
        QVERIFY(load(doc, wrapped(kTables)));
        QCOMPARE(fb::CoverageText(fb::CoverageOf(fb::TargetFieldsOf(doc.GetTargetTableNode()), rules)), text);
    }
};

QTEST_GUILESS_MAIN(ChecksTest)
#include "tst_checks.moc"
