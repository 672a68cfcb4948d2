// ShowControl on the samples, the target-table controls of multi-target
// documents, and the hand-over between the two tabs: the refusal without
// dumps, the first dump shown, and the binding of a dump without a target
// table through the target-table dialog.

#include "ControlHarness.h"

using namespace fbtest;

namespace {

// A single-target document whose one migrate source is fully defined, with
// the given precondition (already escaped for XML).
QString documentWithPrecondition(const QString& precondition)
{
    return QStringLiteral("<klmno001><SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">%1</PREC>"
                          "<QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"
                          "<TARTAB><KLMNO001><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"8\"/></KLMNO001></TARTAB>"
                          "<SRCTAB><PQRST002><CUSTNO No=\"1\" FNo=\"1\" TYPE=\"L\" DIGB=\"6\"/></PQRST002></SRCTAB>"
                          "</klmno001>")
        .arg(precondition);
}

QStringList childNames(const XmlElement& e)
{
    QStringList out;
    for (const XmlElement& c : e.children)
        out.append(c.name);
    return out;
}

} // namespace

class ShowAndTabsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void showControlFillsTheMappingObjectTab_data();
    void showControlFillsTheMappingObjectTab();
    void preconditionIsShownDecoded_data();
    void preconditionIsShownDecoded();
    void targetTableControlsFollowMscript_data();
    void targetTableControlsFollowMscript();

    void enteringDefineDumpsWithoutDumpsIsRefused_data();
    void enteringDefineDumpsWithoutDumpsIsRefused();
    void enteringDefineDumpsWithAnUnlistedMigrateTableStays();
    void enteringDefineDumpsShowsTheFirstDump();
    void enteringDefineDumpsBindsADumpWithoutTargetTable_data();
    void enteringDefineDumpsBindsADumpWithoutTargetTable();
};

void ShowAndTabsTest::initTestCase()
{
    installMessageFilter();
    QVERIFY2(!readSample(QStringLiteral("klmno001.xml")).isEmpty(), "FIELDBRIDGE_EXAMPLES");
    QVERIFY2(!readSample(QStringLiteral("fghij100.xml")).isEmpty(), "FIELDBRIDGE_EXAMPLES");
}

// ---------------------------------------------------------------------------
// ShowControl

void ShowAndTabsTest::showControlFillsTheMappingObjectTab_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("preconditionStart");
    QTest::addColumn<QString>("preconditionPart");
    QTest::addColumn<QStringList>("sourceTables");
    QTest::addColumn<QStringList>("migrateRows");
    QTest::addColumn<QString>("queryStart");
    QTest::addColumn<int>("targetFields");
    QTest::addColumn<QStringList>("firstTargetRow");

    QTest::newRow("single target")
        << QStringLiteral("klmno001.xml") << QStringLiteral("klmno001")
        << QStringLiteral("| Customer master: old customers together with their addresses\nmigrate pqrst002\n")
        << QStringLiteral("\tabort(\"old customer table is empty\")\nendif\n")
        << QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"), QStringLiteral("abcde004")}
        << QStringList{QStringLiteral("migrate pqrst002"), QString(), QStringLiteral("migrate uvwxy003"), QString()}
        << QStringLiteral("select pqrst002.*\nfrom pqrst002\nwhere pqrst002.status <> \"D\"\nand pqrst002.custno > 0\n")
        << 25
        << QStringList{QString(), QStringLiteral("*"), QStringLiteral("001"), QStringLiteral("klmno001.custno"),
                       QStringLiteral("Long"), QStringLiteral("8"), QStringLiteral("Customer number"),
                       QStringLiteral("Right"), QStringLiteral("No"), QStringLiteral("custno")};
    QTest::newRow("multi target")
        << QStringLiteral("fghij100.xml") << QStringLiteral("fghij100")
        << QStringLiteral("| Item master with warehouse data\nmigrate lmnop010\nmigrate rstuv020\n")
        << QStringLiteral("item.count = 0\n")
        << QStringList{QStringLiteral("lmnop010"), QStringLiteral("rstuv020"), QStringLiteral("hijkl030")}
        << QStringList{QStringLiteral("migrate lmnop010"), QString(), QStringLiteral("migrate rstuv020"), QString()}
        << QStringLiteral("select lmnop010.*\nfrom lmnop010\nwhere lmnop010.stat <> \"X\"\n") << 23
        << QStringList{QString(), QStringLiteral("*"), QStringLiteral("001"), QStringLiteral("fghij100.item"),
                       QStringLiteral("String"), QStringLiteral("16"), QStringLiteral("Item code"),
                       QStringLiteral("Left"), QStringLiteral("Upper"), QStringLiteral("item")};
}

void ShowAndTabsTest::showControlFillsTheMappingObjectTab()
{
    QFETCH(QString, file);
    QFETCH(QString, root);
    QFETCH(QString, preconditionStart);
    QFETCH(QString, preconditionPart);
    QFETCH(QStringList, sourceTables);
    QFETCH(QStringList, migrateRows);
    QFETCH(QString, queryStart);
    QFETCH(int, targetFields);
    QFETCH(QStringList, firstTargetRow);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(file, root, true));

    const QString pre = plainText(host.find(QStringLiteral("txtPreCondition")));
    QVERIFY2(pre.startsWith(preconditionStart), qPrintable(pre));
    QVERIFY2(pre.contains(preconditionPart), qPrintable(pre));
    QVERIFY2(!pre.contains(u'\r'), "the box shows \\n line breaks");

    QCOMPARE(columnTexts(host.find<QAbstractItemView>(QStringLiteral("lstSourceTables"))), sourceTables);
    QCOMPARE(columnTexts(host.find<QAbstractItemView>(QStringLiteral("lstMigrateSource"))), migrateRows);

    const QString query = plainText(host.find(QStringLiteral("txtMainQuery")));
    QVERIFY2(query.startsWith(queryStart), qPrintable(query));

    auto* target = host.find<QAbstractItemView>(QStringLiteral("lstTargetFields"));
    QCOMPARE(target->model()->rowCount(), targetFields);
    QCOMPARE(rowTexts(target, 0), firstTargetRow);

    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY(host.tabs()->isTabEnabled(1));
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void ShowAndTabsTest::preconditionIsShownDecoded_data()
{
    QTest::addColumn<QString>("stored"); // the element's content in the XML text
    QTest::addColumn<QString>("shown");

    QTest::newRow("an escaped entity is decoded once more") << QStringLiteral("a &amp;lt; b") << QStringLiteral("a < b");
    QTest::newRow("ampersand decoded after lt, one level only")
        << QStringLiteral("x&amp;amp;lt;y") << QStringLiteral("x&lt;y");
    QTest::newRow("letter case of entities ignored")
        << QStringLiteral("&amp;LT;t&amp;Gt; &amp;QUOT;q&amp;quot; R&amp;AMP;D")
        << QStringLiteral("<t> \"q\" R&D");
    QTest::newRow("line feeds") << QStringLiteral("one&#10;two&#10;three") << QStringLiteral("one\ntwo\nthree");
}

void ShowAndTabsTest::preconditionIsShownDecoded()
{
    QFETCH(QString, stored);
    QFETCH(QString, shown);

    Host host;
    host.load(QStringLiteral("klmno001"), QStringLiteral("<klmno001><PREC TEXT=\"\">%1</PREC></klmno001>").arg(stored),
              true);
    QCOMPARE(plainText(host.find(QStringLiteral("txtPreCondition"))), shown);
}

void ShowAndTabsTest::targetTableControlsFollowMscript_data()
{
    QTest::addColumn<QString>("earlierFile"); // shown first, when given
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("document");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<QStringList>("tables");

    const QString single = readSample(QStringLiteral("klmno001.xml"));
    const QString multi = readSample(QStringLiteral("fghij100.xml"));
    QString emptyMscript = single;
    emptyMscript.replace(QStringLiteral("</klmno001>"), QStringLiteral("<MSCRIPT/></klmno001>"));

    QTest::newRow("without MSCRIPT") << QString() << QStringLiteral("klmno001") << single << false << QStringList{};
    QTest::newRow("with MSCRIPT") << QString() << QStringLiteral("fghij100") << multi << true
                                  << QStringList{QStringLiteral("FGHIJ100"), QStringLiteral("QWERT200")};
    QTest::newRow("with an empty MSCRIPT") << QString() << QStringLiteral("klmno001") << emptyMscript << true
                                           << QStringList{};
    QTest::newRow("without MSCRIPT after one with it")
        << QStringLiteral("fghij100.xml") << QStringLiteral("klmno001") << single << false << QStringList{};
}

void ShowAndTabsTest::targetTableControlsFollowMscript()
{
    QFETCH(QString, earlierFile);
    QFETCH(QString, root);
    QFETCH(QString, document);
    QFETCH(bool, shown);
    QFETCH(QStringList, tables);

    Host host;
    if (!earlierFile.isEmpty())
        QVERIFY(host.loadSample(earlierFile, QString(earlierFile).remove(QStringLiteral(".xml")), true));
    host.load(root, document, true);

    auto* frmRules = host.find(QStringLiteral("FrmRules"));
    QVERIFY(frmRules);
    for (const char* name : {"lblTargetTable", "CmbTargetTable", "CmdChange"}) {
        QWidget* w = host.find(QString::fromLatin1(name));
        QVERIFY2(w, name);
        QVERIFY2(w->isVisibleTo(frmRules) == shown, name);
    }
    if (shown)
        QCOMPARE(comboTexts(host.find<QComboBox>(QStringLiteral("CmbTargetTable"))), tables);
}

// ---------------------------------------------------------------------------
// Tabs

void ShowAndTabsTest::enteringDefineDumpsWithoutDumpsIsRefused_data()
{
    QTest::addColumn<QString>("precondition");

    QTest::newRow("no dump keyword") << QStringLiteral("migrate pqrst002");
    QTest::newRow("dump number of 1000") << QStringLiteral("migrate pqrst002&#10;dump 1000 Too big");
    QTest::newRow("dumpster is not the keyword") << QStringLiteral("migrate pqrst002&#10;dumpster 5 boxes");
    QTest::newRow("dump followed by a word") << QStringLiteral("migrate pqrst002&#10;dump xyz again");
}

void ShowAndTabsTest::enteringDefineDumpsWithoutDumpsIsRefused()
{
    QFETCH(QString, precondition);

    ModalAnswerer answerer;
    answerer.expect(ModalAnswerer::press(QMessageBox::Ok));
    Host host;
    host.load(QStringLiteral("klmno001"), documentWithPrecondition(precondition), true);
    QVERIFY(host.activate());
    QVERIFY(host.tabs()->isTabEnabled(1));

    host.clickTab(1);

    QTRY_COMPARE(answerer.count(), 1);
    const ModalRecord box = answerer.records().first();
    QCOMPARE(box.text, QStringLiteral("Define Dumps"));
    QCOMPARE(box.title, QStringLiteral("Mapping Object"));
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(answerer.pending(), 0);

    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY(host.find(QStringLiteral("FrmCondition"))->isEnabled());
    QVERIFY(!host.find(QStringLiteral("FrmRules"))->isEnabled());
    QCOMPARE(host.find<QComboBox>(QStringLiteral("CmbDump"))->count(), 0);
    QTest::qWait(50);
    QCOMPARE(answerer.count(), 1);
}

void ShowAndTabsTest::enteringDefineDumpsWithAnUnlistedMigrateTableStays()
{
    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    QVERIFY(host.tabs()->isTabEnabled(1));

    // The precondition names a table that is no source table yet, and the
    // user goes straight to the other tab.
    QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
    clickInto(pre);
    QVERIFY2(isWithin(QApplication::focusWidget(), pre), qPrintable(focusName()));
    keyToFocus(Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("migrate zzzzz009 dump 1 Customers"));
    host.clickTab(1);

    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY(!host.tabs()->isTabEnabled(1));
    QCOMPARE(host.ctl->property("SourceTables").toString(), QStringLiteral("pqrst002,uvwxy003,abcde004,zzzzz009"));
    // Only the current tab's frame is enabled: the user can go on editing.
    const bool conditionEnabled = host.find(QStringLiteral("FrmCondition"))->isEnabled();
    const bool rulesEnabled = host.find(QStringLiteral("FrmRules"))->isEnabled();
    QVERIFY2(conditionEnabled && !rulesEnabled,
             qPrintable(QStringLiteral("FrmCondition enabled: %1, FrmRules enabled: %2")
                            .arg(conditionEnabled)
                            .arg(rulesEnabled)));
    QCOMPARE(host.find<QComboBox>(QStringLiteral("CmbDump"))->count(), 0);
    QTest::qWait(50);
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void ShowAndTabsTest::enteringDefineDumpsShowsTheFirstDump()
{
    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    auto* frmCondition = host.find(QStringLiteral("FrmCondition"));
    auto* frmRules = host.find(QStringLiteral("FrmRules"));
    QVERIFY(frmCondition->isEnabled());
    QVERIFY(!frmRules->isEnabled());

    host.clickTab(1);

    QCOMPARE(host.tabs()->currentIndex(), 1);
    QVERIFY(frmRules->isEnabled());
    QVERIFY(!frmCondition->isEnabled());

    auto* dumps = host.find<QComboBox>(QStringLiteral("CmbDump"));
    QCOMPARE(comboTexts(dumps),
             (QStringList{QStringLiteral("01--Customers"), QStringLiteral("02--Addresses"),
                          QStringLiteral("03--Order statistics")}));
    QCOMPARE(dumps->currentIndex(), 0);
    QCOMPARE(host.find<QGroupBox>(QStringLiteral("Details"))->title(), QStringLiteral("F&ields of Dump: 1:Customers"));

    auto* grid = host.find<QAbstractItemView>(QStringLiteral("RulesGrid"));
    QCOMPARE(grid->model()->columnCount(), 2);
    QCOMPARE(grid->model()->rowCount(), 25);
    QCOMPARE(rowTexts(grid, 0), (QStringList{QStringLiteral("klmno001.custno"), QStringLiteral("pqrst002.custno")}));
    QCOMPARE(rowTexts(grid, 7), (QStringList{QStringLiteral("klmno001.disc"), QString()}));
    QCOMPARE(rowTexts(grid, 16),
             (QStringList{QStringLiteral("klmno001.note(1)"), QStringLiteral("pqrst002.note(1,1)")}));

    QCOMPARE(host.find<QAbstractItemView>(QStringLiteral("lstTargetFields"))->model()->rowCount(), 25);
    auto* sources = host.find<QAbstractItemView>(QStringLiteral("lstSourceFields"));
    QCOMPARE(sources->model()->rowCount(), 17 + 14 + 12);
    QCOMPARE(sources->model()->index(0, 2).data().toString(), QStringLiteral("pqrst002.custno"));
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));

    // Back: only the first frame is enabled again, and the dump keeps its rules.
    host.clickTab(0);
    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY(frmCondition->isEnabled());
    QVERIFY(!frmRules->isEnabled());
    const XmlElement dump1 =
        parseXml(host.readXml()).with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("1"));
    QCOMPARE(dump1.children.size(), 16);
    QCOMPARE(dump1.first(QStringLiteral("CUSTNO")).text, QStringLiteral("pqrst002.custno"));
    QVERIFY(!dump1.hasAttribute(QStringLiteral("TT")));
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void ShowAndTabsTest::enteringDefineDumpsBindsADumpWithoutTargetTable_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("table");

    QTest::newRow("OK on the preselected table") << QStringLiteral("ok") << QStringLiteral("FGHIJ100");
    QTest::newRow("OK after choosing the second table") << QStringLiteral("down+ok") << QStringLiteral("QWERT200");
    QTest::newRow("Cancel binds the first table") << QStringLiteral("cancel") << QStringLiteral("FGHIJ100");
}

void ShowAndTabsTest::enteringDefineDumpsBindsADumpWithoutTargetTable()
{
    QFETCH(QString, answer);
    QFETCH(QString, table);

    struct Seen {
        bool isDialog = false;
        QStringList entries;
        int current = -2;
        bool txtDocVisible = true;
        bool lblTargetVisible = false;
        bool hasOk = false;
        bool hasCancel = false;
    } seen;

    ModalAnswerer answerer;
    answerer.expect([&seen, answer](QWidget* w) {
        seen.isDialog = qobject_cast<QDialog*>(w) != nullptr;
        auto* combo = w->findChild<QComboBox*>(QStringLiteral("CmbTargetTable"));
        auto* txt = w->findChild<QWidget*>(QStringLiteral("TxtDoc"));
        auto* lbl = w->findChild<QLabel*>(QStringLiteral("LBLTARGET"));
        auto* ok = w->findChild<QAbstractButton*>(QStringLiteral("CmdOk"));
        auto* cancel = w->findChild<QAbstractButton*>(QStringLiteral("CmdCancel"));
        seen.hasOk = ok;
        seen.hasCancel = cancel;
        if (combo) {
            seen.entries = comboTexts(combo);
            seen.current = combo->currentIndex();
        }
        seen.txtDocVisible = txt && txt->isVisible();
        seen.lblTargetVisible = lbl && lbl->isVisible();
        if (answer == QStringLiteral("down+ok") && combo)
            QTest::keyClick(combo, Qt::Key_Down);
        QAbstractButton* press = answer == QStringLiteral("cancel") ? cancel : ok;
        if (press)
            QTest::mouseClick(press, Qt::LeftButton);
        else
            ModalAnswerer::closeBox(w);
    });

    Host host;
    QVERIFY(host.loadSample(QStringLiteral("fghij100.xml"), QStringLiteral("fghij100"), true));
    QVERIFY(host.activate());
    host.clickTab(1);

    QTRY_COMPARE(answerer.count(), 1);
    const ModalRecord dialog = answerer.records().first();
    QCOMPARE(dialog.objectName, QStringLiteral("FrmTxtDoc"));
    QVERIFY(seen.isDialog);
    QCOMPARE(dialog.title, QStringLiteral("Choose Target for Dump No:  4"));
    QCOMPARE(seen.entries, (QStringList{QStringLiteral("FGHIJ100"), QStringLiteral("QWERT200")}));
    QCOMPARE(seen.current, 0);
    QVERIFY(!seen.txtDocVisible);
    QVERIFY(seen.lblTargetVisible);
    QVERIFY(seen.hasOk);
    QVERIFY(seen.hasCancel);
    QCOMPARE(answerer.pending(), 0);

    QCOMPARE(host.tabs()->currentIndex(), 1);
    QVERIFY(host.find(QStringLiteral("FrmRules"))->isEnabled());
    QVERIFY(!host.find(QStringLiteral("FrmCondition"))->isEnabled());
    // The selector lists the dumps in the order the scripts reference them:
    // precondition, functions, then the main queries in migrate order.
    QCOMPARE(comboTexts(host.find<QComboBox>(QStringLiteral("CmbDump"))),
             (QStringList{QStringLiteral("01--Items"), QStringLiteral("04--Price history"),
                          QStringLiteral("03--Item texts"), QStringLiteral("02--Warehouse data")}));
    QCOMPARE(host.find<QGroupBox>(QStringLiteral("Details"))->title(), QStringLiteral("F&ields of Dump: 1:Items"));

    const XmlElement root = parseXml(host.readXml());
    QVERIFY(!root.isNull());
    const XmlElement dump4 = root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("4"));
    QVERIFY(!dump4.isNull());
    QCOMPARE(dump4.attribute(QStringLiteral("TT")), table);
    QCOMPARE(childNames(dump4), QStringList{QStringLiteral("ITEM")});
    const XmlElement rule = dump4.children.first();
    QCOMPARE(rule.text, QStringLiteral("default()"));
    QCOMPARE(rule.attribute(QStringLiteral("TYPE")), QStringLiteral("0"));
    QVERIFY(rule.hasAttribute(QStringLiteral("TEXT")));
    QCOMPARE(rule.attribute(QStringLiteral("TEXT")), QString());
    QCOMPARE(rule.attribute(QStringLiteral("No")), QStringLiteral("1"));
    // The other dumps keep their tables.
    QCOMPARE(root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("1")).attribute(QStringLiteral("TT")),
             QStringLiteral("FGHIJ100"));
    QCOMPARE(root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("2")).attribute(QStringLiteral("TT")),
             QStringLiteral("QWERT200"));
    QCOMPARE(root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("3")).attribute(QStringLiteral("TT")),
             QStringLiteral("FGHIJ100"));

    // Bound once: leaving and entering again asks nothing.
    QVERIFY(host.activate());
    host.clickTab(0);
    QCOMPARE(host.tabs()->currentIndex(), 0);
    host.clickTab(1);
    QCOMPARE(host.tabs()->currentIndex(), 1);
    QTest::qWait(50);
    QVERIFY2(answerer.count() == 1, qPrintable(answerer.describe()));
}

QTEST_MAIN(ShowAndTabsTest)
#include "tst_showtabs.moc"
