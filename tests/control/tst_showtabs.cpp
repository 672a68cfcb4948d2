// ShowControl on the samples, the target-table controls of multi-target
// documents, and the hand-over between the two tabs: the refusal without
// dumps, the first dump shown, and the binding of a dump without a target
// table through the target-table dialog.

#include "WidgetHarness.h"

#include <QGroupBox>

using namespace fbtest;

namespace {

// A single-target document whose one migrate source is fully defined, with
// the given precondition (already escaped for XML).
QString documentWithPrecondition(const QString& precondition)
{
    return mappingObject(u"klmno001"_s,
                         u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">"_s + precondition +
                             u"</PREC><QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"_s,
                         u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"8\"/>"_s,
                         {{u"pqrst002"_s, u"<CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"6\"/>"_s}});
}

} // namespace

class ShowAndTabsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void showControlFillsTheMappingObjectTab_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("preconditionStart");
        QTest::addColumn<QString>("preconditionPart");
        QTest::addColumn<QStringList>("sourceTables");
        QTest::addColumn<QStringList>("migrateRows");
        QTest::addColumn<QString>("queryStart");
        QTest::addColumn<int>("targetFields");
        QTest::addColumn<QStringList>("firstTargetRow");
        QTest::newRow("single target")
            << u"klmno001.xml"_s
            << u"| Customer master: old customers together with their addresses\nmigrate pqrst002\n"_s
            << u"\tabort(\"old customer table is empty\")\nendif\n"_s
            << QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s}
            << QStringList{u"migrate pqrst002"_s, {}, u"migrate uvwxy003"_s, {}}
            << u"select pqrst002.*\nfrom pqrst002\nwhere pqrst002.status <> \"D\"\nand pqrst002.custno > 0\n"_s << 25
            << QStringList{{}, u"*"_s, u"001"_s, u"klmno001.custno"_s, u"Long"_s, u"8"_s, u"Customer number"_s,
                           u"Right"_s, u"No"_s, u"custno"_s};
        QTest::newRow("multi target")
            << u"fghij100.xml"_s << u"| Item master with warehouse data\nmigrate lmnop010\nmigrate rstuv020\n"_s
            << u"item.count = 0\n"_s << QStringList{u"lmnop010"_s, u"rstuv020"_s, u"hijkl030"_s}
            << QStringList{u"migrate lmnop010"_s, {}, u"migrate rstuv020"_s, {}}
            << u"select lmnop010.*\nfrom lmnop010\nwhere lmnop010.stat <> \"X\"\n"_s << 23
            << QStringList{{}, u"*"_s, u"001"_s, u"fghij100.item"_s, u"String"_s, u"16"_s, u"Item code"_s,
                           u"Left"_s, u"Upper"_s, u"item"_s};
    }
    void showControlFillsTheMappingObjectTab()
    {
        QFETCH(QString, file);
        QFETCH(QString, preconditionStart);
        QFETCH(QString, preconditionPart);
        QFETCH(QStringList, sourceTables);
        QFETCH(QStringList, migrateRows);
        QFETCH(QString, queryStart);
        QFETCH(int, targetFields);
        QFETCH(QStringList, firstTargetRow);
        Host host;
        QVERIFY(host.openSample(file));
        const QString pre = host.text(u"txtPreCondition"_s);
        QVERIFY2(pre.startsWith(preconditionStart), qPrintable(pre));
        QVERIFY2(pre.contains(preconditionPart), qPrintable(pre));
        QVERIFY2(!pre.contains(u'\r'), "the box shows \\n line breaks");
        QCOMPARE(host.rows(u"lstSourceTables"_s), sourceTables);
        QCOMPARE(host.rows(u"lstMigrateSource"_s), migrateRows);
        QVERIFY2(host.text(u"txtMainQuery"_s).startsWith(queryStart), qPrintable(host.text(u"txtMainQuery"_s)));
        QCOMPARE(host.rows(u"lstTargetFields"_s).size(), targetFields);
        QCOMPARE(rowTexts(host.view(u"lstTargetFields"_s), 0), firstTargetRow);
        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY(host.tabs()->isTabEnabled(1));
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void preconditionIsShownDecoded_data()
    {
        QTest::addColumn<QString>("stored"); // the element's content in the XML text
        QTest::addColumn<QString>("shown");
        QTest::newRow("an escaped entity is decoded once more") << u"a &amp;lt; b"_s << u"a < b"_s;
        QTest::newRow("ampersand decoded after lt, one level only") << u"x&amp;amp;lt;y"_s << u"x&lt;y"_s;
        QTest::newRow("letter case of entities ignored")
            << u"&amp;LT;t&amp;Gt; &amp;QUOT;q&amp;quot; R&amp;AMP;D"_s << u"<t> \"q\" R&D"_s;
        QTest::newRow("line feeds") << u"one&#10;two&#10;three"_s << u"one\ntwo\nthree"_s;
    }
    void preconditionIsShownDecoded()
    {
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        Host host;
        host.load(u"klmno001"_s, u"<klmno001><PREC TEXT=\"\">%1</PREC></klmno001>"_s.arg(stored));
        QCOMPARE(host.text(u"txtPreCondition"_s), shown);
    }

    void targetTableControlsFollowMscript_data()
    {
        QTest::addColumn<QString>("earlierFile"); // shown first, when given
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("document");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<QStringList>("tables");
        const QString single = readSample(u"klmno001.xml"_s);
        const QString emptyMscript = QString(single).replace(u"</klmno001>"_s, u"<MSCRIPT/></klmno001>"_s);
        QTest::newRow("without MSCRIPT") << QString() << u"klmno001"_s << single << false << QStringList{};
        QTest::newRow("with MSCRIPT") << QString() << u"fghij100"_s << readSample(u"fghij100.xml"_s) << true
                                      << QStringList{u"FGHIJ100"_s, u"QWERT200"_s};
        QTest::newRow("with an empty MSCRIPT") << QString() << u"klmno001"_s << emptyMscript << true << QStringList{};
        QTest::newRow("without MSCRIPT after one with it")
            << u"fghij100.xml"_s << u"klmno001"_s << single << false << QStringList{};
    }
    void targetTableControlsFollowMscript()
    {
        QFETCH(QString, earlierFile);
        QFETCH(QString, root);
        QFETCH(QString, document);
        QFETCH(bool, shown);
        QFETCH(QStringList, tables);
        Host host;
        if (!earlierFile.isEmpty())
            QVERIFY(host.openSample(earlierFile));
        host.load(root, document);
        for (const QString& name : {u"lblTargetTable"_s, u"CmbTargetTable"_s, u"CmdChange"_s})
            QVERIFY2(host.find(name)->isVisibleTo(host.find(u"FrmRules"_s)) == shown, qPrintable(name));
        if (shown)
            QCOMPARE(comboTexts(host.find<QComboBox>(u"CmbTargetTable"_s)), tables);
    }

    void enteringDefineDumpsWithoutDumpsIsRefused_data()
    {
        QTest::addColumn<QString>("precondition");
        QTest::newRow("no dump keyword") << u"migrate pqrst002"_s;
        QTest::newRow("dump number of 1000") << u"migrate pqrst002&#10;dump 1000 Too big"_s;
        QTest::newRow("dumpster is not the keyword") << u"migrate pqrst002&#10;dumpster 5 boxes"_s;
        QTest::newRow("dump followed by a word") << u"migrate pqrst002&#10;dump xyz again"_s;
    }
    void enteringDefineDumpsWithoutDumpsIsRefused()
    {
        QFETCH(QString, precondition);
        Host host;
        QVERIFY(host.open(u"klmno001"_s, documentWithPrecondition(precondition)));
        QVERIFY(host.tabs()->isTabEnabled(1));
        host.modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host.clickTab(1);

        QTRY_COMPARE(host.modals.count(), 1);
        const ModalRecord box = host.modals.records().first();
        QCOMPARE(box.text, u"Define Dumps"_s);
        QCOMPARE(box.title, u"Mapping Object"_s);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY(host.find(u"FrmCondition"_s)->isEnabled());
        QVERIFY(!host.find(u"FrmRules"_s)->isEnabled());
        QCOMPARE(host.find<QComboBox>(u"CmbDump"_s)->count(), 0);
        QTest::qWait(50);
        QCOMPARE(host.modals.count(), 1);
        QVERIFY(host.modals.unexpected().isEmpty());
    }

    void enteringDefineDumpsWithAnUnlistedMigrateTableStays()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        QVERIFY(host.tabs()->isTabEnabled(1));
        // The precondition names a table that is no source table yet, and
        // the user goes straight to the other tab.
        host.replaceText(u"txtPreCondition"_s, u"migrate zzzzz009 dump 1 Customers"_s);
        host.clickTab(1);

        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY(!host.tabs()->isTabEnabled(1));
        QCOMPARE(host.ctl->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004,zzzzz009"_s);
        // Only the current tab's frame is enabled: the user can go on editing.
        const bool conditionEnabled = host.find(u"FrmCondition"_s)->isEnabled();
        const bool rulesEnabled = host.find(u"FrmRules"_s)->isEnabled();
        QVERIFY2(conditionEnabled && !rulesEnabled,
                 qPrintable(u"FrmCondition enabled: %1, FrmRules enabled: %2"_s.arg(conditionEnabled).arg(rulesEnabled)));
        QCOMPARE(host.find<QComboBox>(u"CmbDump"_s)->count(), 0);
        QTest::qWait(50);
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void enteringDefineDumpsShowsTheFirstDump()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        QWidget* frmCondition = host.find(u"FrmCondition"_s);
        QWidget* frmRules = host.find(u"FrmRules"_s);
        QVERIFY(frmCondition->isEnabled());
        QVERIFY(!frmRules->isEnabled());

        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QVERIFY(frmRules->isEnabled());
        QVERIFY(!frmCondition->isEnabled());
        QCOMPARE(comboTexts(host.find<QComboBox>(u"CmbDump"_s)),
                 (QStringList{u"01--Customers"_s, u"02--Addresses"_s, u"03--Order statistics"_s}));
        QCOMPARE(host.dumpCaption(), u"F&ields of Dump: 1:Customers"_s);
        QCOMPARE(rowTexts(host.view(u"RulesGrid"_s), 16),
                 (QStringList{u"klmno001.note(1)"_s, u"pqrst002.note(1,1)"_s}));
        QCOMPARE(host.rows(u"lstSourceFields"_s).size(), 17 + 14 + 12);
        QCOMPARE(cell(host.view(u"lstSourceFields"_s), 0, 2), u"pqrst002.custno"_s);

        // Back: only the first frame is enabled again, and the dump keeps its rules.
        host.clickTab(0);
        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY(frmCondition->isEnabled());
        QVERIFY(!frmRules->isEnabled());
        const XmlElement dump1 = host.document().dump(1);
        QCOMPARE(dump1.children.size(), 16);
        QCOMPARE(dump1.child(u"CUSTNO"_s).text, u"pqrst002.custno"_s);
        QVERIFY(!dump1.hasAttribute(u"TT"_s));
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void enteringDefineDumpsBindsADumpWithoutTargetTable_data()
    {
        QTest::addColumn<QString>("choice"); // the table chosen in the dialog; empty keeps the preset
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("table");
        QTest::newRow("OK on the preselected table") << QString() << true << u"FGHIJ100"_s;
        QTest::newRow("OK after choosing the second table") << u"QWERT200"_s << true << u"QWERT200"_s;
        QTest::newRow("Cancel binds the first table") << u"QWERT200"_s << false << u"FGHIJ100"_s;
    }
    void enteringDefineDumpsBindsADumpWithoutTargetTable()
    {
        QFETCH(QString, choice);
        QFETCH(bool, ok);
        QFETCH(QString, table);
        Host host;
        QVERIFY(host.openSample(u"fghij100.xml"_s));
        host.modals.expect(ModalAnswerer::chooseTable(choice, ok));
        host.clickTab(1);

        QTRY_COMPARE(host.modals.count(), 1);
        const ModalRecord dialog = host.modals.records().first();
        QCOMPARE(dialog.objectName, u"FrmTxtDoc"_s);
        QCOMPARE(dialog.title, u"Choose Target for Dump No:  4"_s);
        QCOMPARE(dialog.entries, (QStringList{u"FGHIJ100"_s, u"QWERT200"_s}));
        QCOMPARE(dialog.selected, u"FGHIJ100"_s);
        QVERIFY(!dialog.textVisible);
        QVERIFY(host.modals.unexpected().isEmpty());

        QCOMPARE(host.tabs()->currentIndex(), 1);
        QVERIFY(host.find(u"FrmRules"_s)->isEnabled());
        QVERIFY(!host.find(u"FrmCondition"_s)->isEnabled());
        // The selector lists the dumps in the order the scripts reference
        // them: precondition, functions, then the main queries in migrate order.
        QCOMPARE(comboTexts(host.find<QComboBox>(u"CmbDump"_s)),
                 (QStringList{u"01--Items"_s, u"04--Price history"_s, u"03--Item texts"_s, u"02--Warehouse data"_s}));
        QCOMPARE(host.dumpCaption(), u"F&ields of Dump: 1:Items"_s);

        const XmlElement root = host.document();
        const XmlElement dump4 = root.dump(4);
        QCOMPARE(dump4.attribute(u"TT"_s), table);
        QCOMPARE(dump4.childNames(), QStringList{u"ITEM"_s});
        const XmlElement rule = dump4.child(u"ITEM"_s);
        QCOMPARE(rule.text, u"default()"_s);
        QCOMPARE(rule.attribute(u"TYPE"_s), u"0"_s);
        QVERIFY(rule.hasAttribute(u"TEXT"_s));
        QCOMPARE(rule.attribute(u"TEXT"_s), QString());
        QCOMPARE(rule.attribute(u"No"_s), u"1"_s);
        // The other dumps keep their tables.
        QCOMPARE((QStringList{root.dump(1).attribute(u"TT"_s), root.dump(2).attribute(u"TT"_s),
                              root.dump(3).attribute(u"TT"_s)}),
                 (QStringList{u"FGHIJ100"_s, u"QWERT200"_s, u"FGHIJ100"_s}));

        // Bound once: leaving and entering again asks nothing.
        QVERIFY(host.activate());
        host.clickTab(0);
        QCOMPARE(host.tabs()->currentIndex(), 0);
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QTest::qWait(50);
        QVERIFY2(host.modals.count() == 1, qPrintable(host.modals.describe()));
    }
};

QTEST_MAIN(ShowAndTabsTest)
#include "tst_showtabs.moc"
