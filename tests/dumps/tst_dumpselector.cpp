// The dump selector and the dump's target table: entries, the Details
// caption, choosing a dump (the shown dump is stored first, the chosen one
// shows when the selector loses the focus), "Sho&w", a dump without rules,
// the multi-target document (binding on entry, TT written from the
// target-table selector, the message when none is chosen), and the function
// builder button.

#include "WidgetHarness.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTableView>

using namespace fbtest;

class DumpSelectorTest : public HostTest {
    Q_OBJECT

    bool showRules()
    {
        if (!host->open(u"rules001"_s, rulesDocument()))
            return false;
        host->clickTab(1);
        return host->rules() == firstDumpRules();
    }
    bool showSample()
    {
        if (!host->openSample(u"klmno001.xml"_s))
            return false;
        host->clickTab(1);
        return host->tabs()->currentIndex() == 1;
    }
    // The multi-target sample; entering the tab asks once for dump 4's table.
    bool showMultiTarget(const QString& tableForDump4 = u"QWERT200"_s, bool ok = true)
    {
        if (!host->openSample(u"fghij100.xml"_s))
            return false;
        host->modals.expect(ModalAnswerer::chooseTable(tableForDump4, ok));
        host->clickTab(1);
        return host->activate();
    }
    QString targetTableName() const { return host->find<QLabel>(u"LBLTargetTableName"_s)->text(); }
    QComboBox* targetTables() const { return host->combo(u"CmbTargetTable"_s); }
    // The host answers a function-builder request, or a test puts a rule
    // into the current grid row the way the host does.
    void assignFieldMapping(const QString& rule) { host->ctl->setProperty("FieldMapping", rule); }

private Q_SLOTS:
    // The selector lists the referenced dumps and shows the first; the grid
    // shows its rules, each in the row of its field's No, fields without a
    // rule empty, a rule of several lines whole.
    void firstDumpOfTheSample()
    {
        QVERIFY(showSample());
        QComboBox* cmb = host->combo(u"CmbDump"_s);
        QCOMPARE(comboTexts(cmb), (QStringList{u"01--Customers"_s, u"02--Addresses"_s, u"03--Order statistics"_s}));
        QCOMPARE((QList<int>{cmb->itemData(0).toInt(), cmb->itemData(1).toInt(), cmb->itemData(2).toInt()}),
                 (QList<int>{1, 2, 3}));
        QCOMPARE(cmb->currentIndex(), 0);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:Customers"_s);
        QCOMPARE(cmb->toolTip(), u"F&ields of Dump: 1:Customers"_s);
        QAbstractItemView* grid = host->grid();
        QCOMPARE(grid->model()->rowCount(), 25);
        QCOMPARE(grid->model()->columnCount(), 2);
        QCOMPARE(cell(grid, 0, 0), u"klmno001.custno"_s);
        QCOMPARE(cell(grid, 13, 0), u"klmno001.qty(1)"_s);
        QCOMPARE(host->rule(0), u"pqrst002.custno"_s);
        QCOMPARE(host->rule(7), QString()); // DISC: no rule in dump 1
        QCOMPARE(host->rule(8),
                 u"if pqrst002.status < \"5\" & pqrst002.branch > 0 then\r\n\treturn 1\r\nelse\r\n\treturn 0\r\nendif"_s);
        QCOMPARE(host->rule(13), QString()); // QTY__1: no rule in dump 1
        QCOMPARE(host->rule(16), u"pqrst002.note(1,1)"_s);
        QCOMPARE(host->rule(24), u"\"legacy\""_s);
    }

    // A dump is shown from the grid's first row.
    void shownDumpStartsAtTheFirstRow()
    {
        QVERIFY(showSample());
        auto* grid = qobject_cast<QTableView*>(host->grid());
        clickCell(grid, 24, 1);
        QVERIFY(grid->rowAt(0) > 0);
        host->chooseDump(2);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Addresses"_s);
        QCOMPARE(grid->rowAt(0), 0);
        QCOMPARE(host->rule(18), u"uvwxy003.street"_s);
    }

    // A click on another dump stores the grid into the dump shown so far
    // before the chosen dump replaces the grid.
    void choosingAnotherDumpStoresTheShownDumpFirst()
    {
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        assignFieldMapping(u"clean(srcaa001.name)"_s); // into the grid only
        host->chooseDump(2);
        const XmlElement doc = host->document();
        const XmlElement dump1 = doc.dump(1);
        QCOMPARE(dump1.childNames(), (QStringList{u"ZIP"_s, u"CUSTNO"_s, u"CITY"_s, u"NAME"_s}));
        const XmlElement name = dump1.child(u"NAME"_s);
        QCOMPARE(name.text, u"clean(srcaa001.name)"_s);
        QCOMPARE(name.attribute(u"No"_s), u"2"_s);
        QCOMPARE(name.attribute(u"TYPE"_s), u"0"_s);
        QVERIFY(name.hasAttribute(u"TEXT"_s));
        QCOMPARE(name.attribute(u"TEXT"_s), QString());
        // Dump 2 did not receive dump 1's rules, nor dump 1 dump 2's.
        QCOMPARE(doc.dump(2).child(u"NAME"_s).text, u"srcaa001.name"_s);
        QCOMPARE(doc.dump(2).childNames(), (QStringList{u"NAME"_s, u"REMARK"_s}));
    }

    void chosenDumpShowsWhenSelectorLosesFocus()
    {
        QVERIFY(showRules());
        host->chooseDump(2);
        // Choosing moves the focus on to the target fields, so dump 2 shows.
        QCOMPARE(QApplication::focusWidget(), host->targetFields());
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Second"_s);
        QCOMPARE(host->combo(u"CmbDump"_s)->toolTip(), u"F&ields of Dump: 2:Second"_s);
        QCOMPARE(host->rules(), (QStringList{{}, u"srcaa001.name"_s, {}, {}, {}, {}, {}, u"line one\r\nline two"_s, {}, {}}));
        QCOMPARE(host->targetFields()->model()->rowCount(), 10);
        QCOMPARE(host->sourceFields()->model()->rowCount(), 11);
        host->chooseDump(1);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:First"_s);
        QCOMPARE(host->rules(), firstDumpRules());
    }

    // Leaving the selector while it still names the shown dump shows nothing
    // anew: a rule not yet stored stays in the grid.
    void leavingSelectorOnTheShownDumpKeepsTheGrid()
    {
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        assignFieldMapping(u"kept(srcaa001.name)"_s);
        keyToFocus(Qt::Key_U, Qt::AltModifier);
        QCOMPARE(QApplication::focusWidget(), host->combo(u"CmbDump"_s));
        clickCell(host->sourceFields(), 0, 2);
        QCOMPARE(QApplication::focusWidget(), host->sourceFields());
        QCOMPARE(host->rule(1), u"kept(srcaa001.name)"_s);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:First"_s);
    }

    // "Sho&w" stores the shown dump and changes nothing on screen.
    void showButtonStoresTheShownDump()
    {
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        assignFieldMapping(u"shown(srcaa001.name)"_s);
        host->click(u"Command1"_s);
        // Had the rule not been stored yet, this would create NAME without No.
        host->setRuleTextNumber(1, u"name"_s, 7);
        const XmlElement name = host->document().dump(1).child(u"NAME"_s);
        QCOMPARE(name.attribute(u"No"_s), u"2"_s);
        QCOMPARE(name.attribute(u"TEXT"_s), u"7"_s);
        QCOMPARE(name.text, u"shown(srcaa001.name)"_s);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 1:First"_s);
        QCOMPARE(host->rule(1), u"shown(srcaa001.name)"_s);
    }

    void dumpWithoutRulesShowsEmptyCells()
    {
        QVERIFY(showRules());
        host->chooseDump(3);
        QCOMPARE(host->combo(u"CmbDump"_s)->currentData().toInt(), 3);
        QCOMPARE(cell(host->grid(), 9, 0), u"rules001.zip"_s);
        QCOMPARE(host->rules(), QStringList(10, QString()));
        const XmlElement dump3 = host->document().dump(3);
        QVERIFY(!dump3.isNull());
        QVERIFY(dump3.children.isEmpty());
    }

    // ---- the multi-target document ------------------------------------

    // Entering "Define Dumps" binds the dump without TT through the
    // target-table dialog, once: the chosen table, or the first on Cancel.
    void enteringBindsTheUnboundDump_data()
    {
        QTest::addColumn<QString>("choice"); // empty: the preset entry
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("bound");
        QTest::newRow("OK on the preselected table") << QString() << true << u"FGHIJ100"_s;
        QTest::newRow("OK on the second table") << u"QWERT200"_s << true << u"QWERT200"_s;
        QTest::newRow("Cancel binds the first table") << u"QWERT200"_s << false << u"FGHIJ100"_s;
    }
    void enteringBindsTheUnboundDump()
    {
        QFETCH(QString, choice);
        QFETCH(bool, ok);
        QFETCH(QString, bound);
        QVERIFY(showMultiTarget(choice, ok));
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& box = host->modals.records().first();
        QCOMPARE(box.objectName, u"FrmTxtDoc"_s);
        QCOMPARE(box.title, u"Choose Target for Dump No:  4"_s);
        QCOMPARE(box.entries, (QStringList{u"FGHIJ100"_s, u"QWERT200"_s}));
        QCOMPARE(box.selected, u"FGHIJ100"_s);
        QVERIFY(!box.textVisible);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        QVERIFY(host->find(u"FrmRules"_s)->isEnabled());
        QVERIFY(!host->find(u"FrmCondition"_s)->isEnabled());

        const XmlElement doc = host->document();
        const XmlElement dump4 = doc.dump(4);
        QCOMPARE(dump4.attribute(u"TT"_s), bound);
        QCOMPARE(dump4.childNames(), QStringList{u"ITEM"_s});
        const XmlElement rule = dump4.child(u"ITEM"_s);
        QCOMPARE(rule.text, u"default()"_s);
        QCOMPARE(rule.attribute(u"TYPE"_s), u"0"_s);
        QVERIFY(rule.hasAttribute(u"TEXT"_s));
        QCOMPARE(rule.attribute(u"TEXT"_s), QString());
        QCOMPARE(rule.attribute(u"No"_s), u"1"_s);
        // The bound dumps keep their tables.
        QCOMPARE(doc.dump(1).attribute(u"TT"_s), u"FGHIJ100"_s);
        QCOMPARE(doc.dump(2).attribute(u"TT"_s), u"QWERT200"_s);
        QCOMPARE(doc.dump(3).attribute(u"TT"_s), u"FGHIJ100"_s);

        // Bound once: leaving and entering again asks nothing.
        host->clickTab(0);
        QCOMPARE(host->tabs()->currentIndex(), 0);
        host->clickTab(1);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        QTest::qWait(50);
        QCOMPARE(host->modals.count(), 1);
    }

    void chosenDumpShowsItsTargetTable()
    {
        QVERIFY(showMultiTarget());
        // Dumps in the order the scripts reference them: precondition,
        // functions, then the main queries of the migrate tables.
        QCOMPARE(comboTexts(host->combo(u"CmbDump"_s)),
                 (QStringList{u"01--Items"_s, u"04--Price history"_s, u"03--Item texts"_s, u"02--Warehouse data"_s}));
        QCOMPARE(targetTableName(), u"FGHIJ100"_s);
        QCOMPARE(targetTables()->currentText(), u"FGHIJ100"_s);
        host->chooseDump(2);
        QCOMPARE(targetTableName(), u"QWERT200"_s);
        QCOMPARE(targetTables()->currentText(), u"QWERT200"_s);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Warehouse data"_s);
        QCOMPARE(host->targetFields()->model()->rowCount(), 14);
        QCOMPARE(cell(host->targetFields(), 0, 3), u"qwert200.item"_s);
        QCOMPARE(host->rules().size(), 14);
        QCOMPARE(host->rule(1), u"rstuv020.ware"_s);
        // Dump 4 was bound on entry: its default() rule shows in row 0.
        host->chooseDump(4);
        QCOMPARE(targetTableName(), u"QWERT200"_s);
        QCOMPARE(host->rule(0), u"default()"_s);
    }

    void storingWritesTheSelectedTargetTable()
    {
        QVERIFY(showMultiTarget());
        pickInCombo(targetTables(), 1);
        QCOMPARE(targetTables()->currentText(), u"QWERT200"_s);
        QCOMPARE(host->document().dump(1).attribute(u"TT"_s), u"QWERT200"_s);
        QCOMPARE(host->modals.count(), 1); // only the binding dialog
    }

    void emptyTargetTableSelectorWarnsAndStillWritesRules()
    {
        QVERIFY(showMultiTarget());
        clickCell(host->grid(), 7, 1); // SEQN, No 8: no rule in dump 1
        assignFieldMapping(u"seqn.rule"_s);
        targetTables()->setCurrentIndex(-1); // nothing chosen
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        const XmlElement doc = host->document();
        QCOMPARE(host->modals.count(), 2);
        const ModalRecord& box = host->modals.records().last();
        QCOMPARE(box.text, u"TargetTable for the Dump Not chosen. Please Choose One Now"_s);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        const XmlElement dump1 = doc.dump(1);
        QCOMPARE(dump1.attribute(u"TT"_s), u"FGHIJ100"_s);
        const XmlElement seqn = dump1.child(u"SEQN"_s);
        QCOMPARE(seqn.text, u"seqn.rule"_s);
        QCOMPARE(seqn.attribute(u"No"_s), u"8"_s);
        QCOMPARE(seqn.attribute(u"TYPE"_s), u"0"_s);
        QCOMPARE(dump1.child(u"ITEM"_s).text, u"lmnop010.item"_s);
        // The user is sent to the target-table selector on "Define Dumps".
        QCOMPARE(host->tabs()->currentIndex(), 1);
        QCOMPARE(host->window->focusWidget(), targetTables());
    }

    // Leaving "Define Dumps" stores the dump; without a chosen target table
    // the message brings the user back to "Define Dumps", and the rules in
    // the grid are still written.
    void leavingTheTabWithoutTargetTableKeepsTheRules()
    {
        QVERIFY(showMultiTarget());
        clickCell(host->grid(), 7, 1); // SEQN, No 8: no rule in dump 1
        assignFieldMapping(u"seqn.rule"_s);
        targetTables()->setCurrentIndex(-1);
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->clickTab(0);
        QTRY_COMPARE(host->modals.count(), 2);
        QCOMPARE(host->modals.records().last().text, u"TargetTable for the Dump Not chosen. Please Choose One Now"_s);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        QCOMPARE(host->window->focusWidget(), targetTables());
        // Had SEQN not been written, this would create it without No.
        host->setRuleTextNumber(1, u"seqn"_s, 5);

        QVERIFY(host->activate());
        pickInCombo(targetTables(), 0); // the user chooses one now
        const XmlElement doc = host->document();
        QCOMPARE(host->modals.count(), 2);
        const XmlElement seqn = doc.dump(1).child(u"SEQN"_s);
        QVERIFY2(!seqn.isNull(), "the rule in the grid was lost");
        QCOMPARE(seqn.attribute(u"No"_s), u"8"_s);
        QCOMPARE(seqn.text, u"seqn.rule"_s);
        QCOMPARE(doc.dump(1).attribute(u"TT"_s), u"FGHIJ100"_s);
    }

    // ---- the function builder ----------------------------------------------

    void functionBuilderGetsRuleAndSourceTables_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("condition");
        QTest::newRow("row with a rule") << 2 << u"srcbb002.city"_s;
        QTest::newRow("row without a rule") << 1 << QString();
    }
    void functionBuilderGetsRuleAndSourceTables()
    {
        QFETCH(int, row);
        QFETCH(QString, condition);
        QVERIFY(showRules());
        QSignalSpy spy(host->ctl, SIGNAL(ShowFunctionBuilderPopUp(QString, QString)));
        clickCell(host->grid(), row, 1);
        host->click(u"CmdFuncBuild"_s);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().at(0).toString(), condition);
        QCOMPARE(spy.first().at(1).toString(), u"srcaa001,srcbb002"_s);
    }

    void hostAnswersFunctionBuilderThroughFieldMapping()
    {
        QVERIFY(showRules());
        QStringList asked;
        ctlFieldbridge* ctl = host->ctl;
        connect(ctl, &ctlFieldbridge::ShowFunctionBuilderPopUp, ctl, [&asked, ctl](const QString& rule, const QString& tables) {
            asked << rule << tables;
            ctl->setProperty("FieldMapping", QString(u"built("_s + rule + u')'));
        });
        clickCell(host->grid(), 2, 1);
        host->click(u"CmdFuncBuild"_s);
        QCOMPARE(asked, (QStringList{u"srcbb002.city"_s, u"srcaa001,srcbb002"_s}));
        QCOMPARE(host->rule(2), u"built(srcbb002.city)"_s);
        QCOMPARE(host->ctl->property("FieldMapping").toString(), u"2"_s);
        QVERIFY(host->button(u"CmdFuncBuild"_s)->isEnabled());
        QCOMPARE(host->document().dump(1).child(u"CITY"_s).text, u"built(srcbb002.city)"_s);
    }

    void functionBuilderWithoutDumpRaisesNothing()
    {
        QVERIFY(showRules());
        // The host shows another document while "Define Dumps" is current.
        host->ctl->setProperty("MappingObjectXML", rulesDocument());
        QMetaObject::invokeMethod(host->ctl, "ShowControl");
        QCOMPARE(host->combo(u"CmbDump"_s)->currentText(), QString());
        QSignalSpy spy(host->ctl, SIGNAL(ShowFunctionBuilderPopUp(QString, QString)));
        QVERIFY(host->button(u"CmdFuncBuild"_s)->isEnabled());
        host->click(u"CmdFuncBuild"_s);
        QCOMPARE(spy.count(), 0);
    }
};

QTEST_MAIN(DumpSelectorTest)
#include "tst_dumpselector.moc"
