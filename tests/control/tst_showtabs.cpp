// ShowControl on the samples, the target-table controls of multi-target
// documents, and the hand-over between the two tabs: the refusal without
// dumps, a migrate table not yet listed, and the first dump shown.

#include "WidgetHarness.h"

using namespace fbtest;

namespace {

// A single-target document whose one migrate source is fully defined, with
// the given precondition (already escaped for XML).
QString documentWithPrecondition(const QString& precondition)
{
    return klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">"_s + precondition +
                         u"</PREC><QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"_s);
}

} // namespace

class ShowAndTabsTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    void showControlFillsTheMappingObjectTab_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("preconditionStart");
        QTest::addColumn<QString>("preconditionPart");
        QTest::addColumn<QStringList>("sourceTables");
        QTest::addColumn<QStringList>("migrateRows");
        QTest::addColumn<QString>("queryStart");
        QTest::newRow("single target")
            << u"klmno001.xml"_s
            << u"| Customer master: old customers together with their addresses\nmigrate pqrst002\n"_s
            << u"\tabort(\"old customer table is empty\")\nendif\n"_s
            << QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s}
            << QStringList{u"migrate pqrst002"_s, {}, u"migrate uvwxy003"_s, {}}
            << u"select pqrst002.*\nfrom pqrst002\nwhere pqrst002.status <> \"D\"\nand pqrst002.custno > 0\n"_s;
        QTest::newRow("multi target")
            << u"fghij100.xml"_s << u"| Item master with warehouse data\nmigrate lmnop010\nmigrate rstuv020\n"_s
            << u"item.count = 0\n"_s << QStringList{u"lmnop010"_s, u"rstuv020"_s, u"hijkl030"_s}
            << QStringList{u"migrate lmnop010"_s, {}, u"migrate rstuv020"_s, {}}
            << u"select lmnop010.*\nfrom lmnop010\nwhere lmnop010.stat <> \"X\"\n"_s;
    }
    void showControlFillsTheMappingObjectTab()
    {
        QFETCH(QString, file);
        QFETCH(QString, preconditionStart);
        QFETCH(QString, preconditionPart);
        QFETCH(QStringList, sourceTables);
        QFETCH(QStringList, migrateRows);
        QFETCH(QString, queryStart);
        QVERIFY(host->openSample(file));
        const QString pre = host->text(u"txtPreCondition"_s);
        QVERIFY2(pre.startsWith(preconditionStart), qPrintable(pre));
        QVERIFY2(pre.contains(preconditionPart), qPrintable(pre));
        QVERIFY2(!pre.contains(u'\r'), "the box shows \\n line breaks");
        QCOMPARE(host->rows(u"lstSourceTables"_s), sourceTables);
        QCOMPARE(host->rows(u"lstMigrateSource"_s), migrateRows);
        QVERIFY2(host->text(u"txtMainQuery"_s).startsWith(queryStart), qPrintable(host->text(u"txtMainQuery"_s)));
        QCOMPARE(host->tabs()->currentIndex(), 0);
        QVERIFY(host->tabs()->isTabEnabled(1));
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
        if (!earlierFile.isEmpty())
            QVERIFY(host->openSample(earlierFile));
        host->load(root, document);
        for (const QString& name : {u"lblTargetTable"_s, u"CmbTargetTable"_s, u"CmdChange"_s})
            QVERIFY2(host->find(name)->isVisibleTo(host->find(u"FrmRules"_s)) == shown, qPrintable(name));
        if (shown)
            QCOMPARE(comboTexts(host->find<QComboBox>(u"CmbTargetTable"_s)), tables);
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
        QVERIFY(host->open(u"klmno001"_s, documentWithPrecondition(precondition)));
        QVERIFY(host->tabs()->isTabEnabled(1));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->clickTab(1);

        QTRY_COMPARE(host->modals.count(), 1);
        const ModalRecord box = host->modals.records().first();
        QCOMPARE(box.text, u"Define Dumps"_s);
        QCOMPARE(box.title, u"Mapping Object"_s);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(host->tabs()->currentIndex(), 0);
        QVERIFY(host->find(u"FrmCondition"_s)->isEnabled());
        QVERIFY(!host->find(u"FrmRules"_s)->isEnabled());
        QCOMPARE(host->find<QComboBox>(u"CmbDump"_s)->count(), 0);
        QTest::qWait(50);
        QCOMPARE(host->modals.count(), 1);
        QVERIFY(host->modals.unexpected().isEmpty());
    }

    void enteringDefineDumpsWithAnUnlistedMigrateTableStays()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        QVERIFY(host->tabs()->isTabEnabled(1));
        // The precondition names a table that is no source table yet, and
        // the user goes straight to the other tab.
        host->replaceText(u"txtPreCondition"_s, u"migrate zzzzz009 dump 1 Customers"_s);
        host->clickTab(1);

        QCOMPARE(host->tabs()->currentIndex(), 0);
        QVERIFY(!host->tabs()->isTabEnabled(1));
        QCOMPARE(host->ctl->property("SourceTables").toString(), u"pqrst002,uvwxy003,abcde004,zzzzz009"_s);
        // Only the current tab's frame is enabled: the user can go on editing.
        const bool conditionEnabled = host->find(u"FrmCondition"_s)->isEnabled();
        const bool rulesEnabled = host->find(u"FrmRules"_s)->isEnabled();
        QVERIFY2(conditionEnabled && !rulesEnabled,
                 qPrintable(u"FrmCondition enabled: %1, FrmRules enabled: %2"_s.arg(conditionEnabled).arg(rulesEnabled)));
        QCOMPARE(host->find<QComboBox>(u"CmbDump"_s)->count(), 0);
        QTest::qWait(50);
    }

    void enteringDefineDumpsShowsTheFirstDump()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        QWidget* frmCondition = host->find(u"FrmCondition"_s);
        QWidget* frmRules = host->find(u"FrmRules"_s);
        QVERIFY(frmCondition->isEnabled());
        QVERIFY(!frmRules->isEnabled());

        host->clickTab(1);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        QVERIFY(frmRules->isEnabled());
        QVERIFY(!frmCondition->isEnabled());
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:Customers"_s);
        // The fields of every source table.
        QCOMPARE(host->rows(u"lstSourceFields"_s).size(), 17 + 14 + 12);
        QCOMPARE(cell(host->view(u"lstSourceFields"_s), 0, 2), u"pqrst002.custno"_s);

        // Back: only the first frame is enabled again, and the dump keeps its rules.
        host->clickTab(0);
        QCOMPARE(host->tabs()->currentIndex(), 0);
        QVERIFY(frmCondition->isEnabled());
        QVERIFY(!frmRules->isEnabled());
        const XmlElement dump1 = host->document().dump(1);
        QCOMPARE(dump1.children.size(), 16);
        QCOMPARE(dump1.child(u"CUSTNO"_s).text, u"pqrst002.custno"_s);
        QVERIFY(!dump1.hasAttribute(u"TT"_s));
    }
};

QTEST_MAIN(ShowAndTabsTest)
#include "tst_showtabs.moc"
