// The two rule builders of the "Define Dumps" tab: Ma&p (ticked source
// fields become the rule of the selected target field) and &Guess (rules
// from matching field names, after a question when rules exist, stored into
// the dump at the end).

#include "WidgetHarness.h"

using namespace fbtest;

namespace {

// What guessing gives for the rules document (see WidgetHarness.h for
// its rows): custno occurs in both source tables, the later one wins; note(1)
// takes the plain source field note; note(2) matches srcaa001.note(2)
// exactly but the later srcbb002.note replaces it; remark and lang have no
// source field of their name.
const QStringList kGuessedRules{u"srcbb002.custno"_s,
                                u"srcaa001.name"_s,
                                u"srcbb002.city"_s,
                                u"utc(srcaa001.born,0,2)"_s,
                                u"utc.utc(srcbb002.stamp)"_s,
                                u"srcbb002.note"_s,
                                u"srcbb002.note"_s,
                                {},
                                {},
                                u"srcaa001.zip"_s};

QString guessQuestion(const QString& caption)
{
    return u"You may lose some/all Data of "_s + caption + u"\n Press 'Yes' to Proceed; 'No' to Cancel "_s;
}

} // namespace

class MapGuessTest : public HostTest {
    Q_OBJECT

    bool show(const QString& root, const QString& xml)
    {
        if (!host->open(root, xml))
            return false;
        host->clickTab(1);
        return host->grid()->model()->rowCount() > 0;
    }
    bool showRules() { return show(u"rules001"_s, rulesDocument()) && host->rules() == firstDumpRules(); }

    void selectTarget(const QString& name)
    {
        const int row = rowOf(host->targetFields(), 3, name);
        QVERIFY2(row >= 0, qPrintable(name));
        clickCell(host->targetFields(), row, 3);
        QVERIFY(host->targetFields()->selectionModel()->isRowSelected(row, QModelIndex()));
    }

    QList<int> tickedRows() const
    {
        QList<int> out;
        for (int r = 0; r < host->sourceFields()->model()->rowCount(); ++r)
            if (ticked(host->sourceFields(), r))
                out.append(r);
        return out;
    }

    void clickMap() { host->click(u"CmdMap"_s); }
    void clickGuess() { host->click(u"CmdGuess"_s); }

private Q_SLOTS:
    // ---- Ma&p --------------------------------------------------------------

    void mapWithoutSelectedTargetDoesNothing()
    {
        QVERIFY(showRules());
        QTreeView* targets = host->targetFields();
        // Nothing selected in the target list (a Ctrl+click takes away a selection).
        const QModelIndexList selected = targets->selectionModel()->selectedRows();
        if (!selected.isEmpty())
            clickCell(targets, selected.first().row(), 3, Qt::ControlModifier);
        QVERIFY(targets->selectionModel()->selectedRows().isEmpty());
        clickCheckBox(host->sourceFields(), 0);
        clickCheckBox(host->sourceFields(), 6);
        QCOMPARE(tickedRows(), (QList<int>{0, 6}));
        clickMap();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), firstDumpRules());
        QCOMPARE(tickedRows(), (QList<int>{0, 6}));
    }

    void mapWithNothingTickedShowsMessage()
    {
        QVERIFY(showRules());
        selectTarget(u"rules001.name"_s);
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        clickMap();
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& box = host->modals.records().first();
        QCOMPARE(box.text, u"Please choose a source field to map"_s);
        QCOMPARE(box.title, QString());
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(host->rules(), firstDumpRules());
    }

    void mapTickedFields_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QList<int>>("ticks"); // source rows, in the order ticked
        QTest::addColumn<QString>("rule");
        QTest::newRow("one String onto a String") << u"rules001.name"_s << QList<int>{1}
                                                  << u"srcaa001.name"_s;
        QTest::newRow("three in list order, ticked last first")
            << u"rules001.city"_s << QList<int>{6, 0, 1}
            << u"srcaa001.custno,srcaa001.name,srcaa001.zip"_s;
        QTest::newRow("across source tables, in list order")
            << u"rules001.city"_s << QList<int>{8, 0} << u"srcaa001.custno,srcbb002.city"_s;
        QTest::newRow("Date onto UTC") << u"rules001.stamp"_s << QList<int>{2}
                                       << u"utc(srcaa001.born,0)"_s;
        QTest::newRow("two Dates onto UTC, each converted")
            << u"rules001.stamp"_s << QList<int>{3, 2}
            << u"utc(srcaa001.born,0),utc(srcaa001.created,0)"_s;
        QTest::newRow("String array element onto a String")
            << u"rules001.name"_s << QList<int>{4} << u"srcaa001.note(1,2)"_s;
        QTest::newRow("an existing rule is replaced, not added to")
            << u"rules001.city"_s << QList<int>{6} << u"srcaa001.zip"_s;
    }
    void mapTickedFields()
    {
        QFETCH(QString, target);
        QFETCH(QList<int>, ticks);
        QFETCH(QString, rule);
        QVERIFY(showRules());
        selectTarget(target);
        for (int r : ticks)
            clickCheckBox(host->sourceFields(), r);
        QCOMPARE(tickedRows().size(), ticks.size());
        clickMap();
        QCOMPARE(host->modals.count(), 0);
        int row = -1;
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "GetRowNumber", Q_RETURN_ARG(int, row),
                                          Q_ARG(QString, target)));
        QStringList expected = firstDumpRules();
        expected[row] = rule;
        QCOMPARE(host->rules(), expected);
        QCOMPARE(tickedRows(), QList<int>());
    }

    // The source list is walked in the order it shows, also after sorting.
    void mapFollowsTheSortedSourceList()
    {
        QVERIFY(showRules());
        QTreeView* source = host->sourceFields();
        clickHeader(source, 2);
        clickHeader(source, 2); // descending by name
        selectTarget(u"rules001.city"_s);
        clickCheckBox(source, rowOf(source, 2, u"srcaa001.custno"_s));
        clickCheckBox(source, rowOf(source, 2, u"srcaa001.zip"_s));
        clickCheckBox(source, rowOf(source, 2, u"srcbb002.city"_s));
        clickMap();
        QCOMPARE(host->rule(2), u"srcbb002.city,srcaa001.zip,srcaa001.custno"_s);
    }

    // Alt+P reaches the "Ma&p" button on this tab.
    void altPPressesMap()
    {
        QVERIFY(showRules());
        selectTarget(u"rules001.zip"_s);
        clickCheckBox(host->sourceFields(), 10);
        QCOMPARE(QApplication::focusWidget(), host->sourceFields());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
        // An access key presses its button the way a click does, a moment later.
        QTRY_COMPARE(host->rule(9), u"srcbb002.note"_s);
        QCOMPARE(tickedRows(), QList<int>());
    }

    // Ma&p writes the grid only; the dump follows at the next store.
    void mapWritesIntoTheGridOnly()
    {
        QVERIFY(showRules());
        selectTarget(u"rules001.name"_s);
        clickCheckBox(host->sourceFields(), 1);
        clickMap();
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
        // NAME has no element yet: the host's text number creates one with
        // TEXT only; the store that fills it gives it the field's No.
        host->setRuleTextNumber(1, u"name"_s, 7);
        const XmlElement name = host->document().dump(1).child(u"NAME"_s);
        QCOMPARE(name.attribute(u"No"_s), u"2"_s);
        QCOMPARE(name.attribute(u"TEXT"_s), u"7"_s);
        QCOMPARE(name.text, u"srcaa001.name"_s); // stored by the read
        QCOMPARE(name.attribute(u"TYPE"_s), u"0"_s);
    }

    // ---- &Guess ------------------------------------------------------------

    // On a dump without rules guessing asks nothing; the guessed rules are
    // written into the dump when guessing ends.
    void guessOnAnEmptyDumpAsksNothingAndStores()
    {
        QVERIFY(showRules());
        host->chooseDump(3);
        QCOMPARE(host->rules(), QStringList(10, QString()));
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), kGuessedRules);
        // Had ZIP not been written yet, this would create it without No.
        host->setRuleTextNumber(3, u"zip"_s, 9);
        const XmlElement dump3 = host->document().dump(3);
        QCOMPARE(dump3.child(u"ZIP"_s).attribute(u"No"_s), u"10"_s);
        QCOMPARE(dump3.child(u"ZIP"_s).attribute(u"TEXT"_s), u"9"_s);
        QCOMPARE(dump3.childNames(), (QStringList{u"CUSTNO"_s, u"NAME"_s, u"CITY"_s, u"BORN"_s, u"STAMP"_s,
                                                   u"NOTE__1"_s, u"NOTE__2"_s, u"ZIP"_s}));
        const XmlElement note1 = dump3.child(u"NOTE__1"_s);
        QCOMPARE(note1.text, u"srcbb002.note"_s);
        QCOMPARE(note1.attribute(u"No"_s), u"6"_s);
        QCOMPARE(note1.attribute(u"TYPE"_s), u"0"_s);
    }

    void guessAsksWhenAnyRuleExists_data()
    {
        QTest::addColumn<QString>("dumps");
        QTest::addColumn<QString>("references");
        QTest::addColumn<int>("dump");
        QTest::addColumn<QString>("caption");
        QTest::newRow("a rule in row 0 only")
            << u"<DUMP No=\"1\" TXT=\"First\"><CUSTNO No=\"1\" TYPE=\"0\" TEXT=\"\">x</CUSTNO></DUMP>"_s
            << u"dump 1 First"_s << 1 << u"F&ields of Dump: 1:First"_s;
        QTest::newRow("a rule in the last row only")
            << u"<DUMP No=\"1\" TXT=\"First\"><ZIP No=\"10\" TYPE=\"0\" TEXT=\"\">x</ZIP></DUMP>"_s
            << u"dump 1 First"_s << 1 << u"F&ields of Dump: 1:First"_s;
        QTest::newRow("the second dump") << rulesDumps() << u"dump 1 First\ndump 2 Second"_s << 2
                                         << u"F&ields of Dump: 2:Second"_s;
        QTest::newRow("dump 5: the title has no leading zero")
            << u"<DUMP No=\"5\" TXT=\"Fifth\"><NAME No=\"2\" TYPE=\"0\" TEXT=\"\">x</NAME></DUMP>"_s
            << u"dump 5 Fifth"_s << 5 << u"F&ields of Dump: 5:Fifth"_s;
    }
    void guessAsksWhenAnyRuleExists()
    {
        QFETCH(QString, dumps);
        QFETCH(QString, references);
        QFETCH(int, dump);
        QFETCH(QString, caption);
        QVERIFY(show(u"rules001"_s,
                     dumpsDocument(u"rules001"_s, rulesTargetFields(), rulesSourceTables(), dumps,
                                   references)));
        if (host->combo(u"CmbDump"_s)->currentData().toInt() != dump)
            host->chooseDump(dump);
        QCOMPARE(host->dumpCaption(), caption);
        host->activate();
        host->modals.expect(ModalAnswerer::press(QMessageBox::Yes));
        clickGuess();
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& box = host->modals.records().first();
        QCOMPARE(box.text, guessQuestion(caption));
        QCOMPARE(box.title, u"Guessing rules for dump : "_s + QString::number(dump));
        QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box.icon, QMessageBox::Critical);
        // "Yes": every field with a source field of its name gets its rule.
        QStringList expected = kGuessedRules;
        if (dump == 2)
            expected[7] = u"line one\r\nline two"_s; // REMARK has no source field of its name
        QCOMPARE(host->rules(), expected);
    }

    void guessAnsweredNoChangesNothing()
    {
        QVERIFY(showRules());
        const QString before = host->xml();
        host->modals.expect(ModalAnswerer::press(QMessageBox::No));
        clickGuess();
        QCOMPARE(host->modals.count(), 1);
        QCOMPARE(host->rules(), firstDumpRules());
        QCOMPARE(host->xml(), before);
    }

    void guessKeepsRulesOfUnmatchedFields()
    {
        const QString dumps = uR"(<DUMP No="1" TXT="First">
<REMARK No="8" TYPE="0" TEXT="">keep.me</REMARK>
<LANG No="9" TYPE="0" TEXT="">keep.too</LANG>
<NAME No="2" TYPE="0" TEXT="">replace.me</NAME>
</DUMP>)"_s;
        QVERIFY(show(u"rules001"_s, rulesDocument(dumps)));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Yes));
        clickGuess();
        QStringList expected = kGuessedRules;
        expected[7] = u"keep.me"_s;
        expected[8] = u"keep.too"_s;
        QCOMPARE(host->rules(), expected);
    }

    // Without source fields guessing ends at once: no question either.
    void guessWithoutSourceFieldsDoesNothing()
    {
        QVERIFY(show(u"rules001"_s,
                     dumpsDocument(u"rules001"_s, rulesTargetFields(), {{u"srcaa001"_s, QString()}},
                                   rulesDumps(), u"dump 1 First"_s)));
        QCOMPARE(host->sourceFields()->model()->rowCount(), 0);
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), firstDumpRules());
    }

    // Among source fields of the same name, one of a table named like the
    // target table wins and ends the search; otherwise the last one wins.
    void guessTieBreak_data()
    {
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QString>("rule");
        QTest::newRow("the last of two other tables")
            << QStringList{u"srcaa001"_s, u"srcbb002"_s} << u"srcbb002.name"_s;
        QTest::newRow("the target's own name first, another table later")
            << QStringList{u"tgtab001"_s, u"srcbb002"_s} << u"tgtab001.name"_s;
        QTest::newRow("the target's own name in the middle")
            << QStringList{u"srcaa001"_s, u"tgtab001"_s, u"srcbb002"_s} << u"tgtab001.name"_s;
    }
    void guessTieBreak()
    {
        QFETCH(QStringList, tables);
        QFETCH(QString, rule);
        QList<SourceTable> sources;
        for (const QString& t : tables)
            sources.append({t, uR"(<NAME No="1" TYPE="S" LENG="30"/><OTHER No="2" TYPE="S"/>)"_s});
        const QString xml = dumpsDocument(u"tgtab001"_s,
                                          uR"(<NAME No="1" TYPE="S" LENG="30"/><CODE No="2" TYPE="S"/>)"_s,
                                          sources, u"<DUMP No=\"1\" TXT=\"Tie\"/>"_s,
                                          u"dump 1 Tie"_s);
        QVERIFY(show(u"tgtab001"_s, xml));
        QCOMPARE(host->sourceFields()->model()->rowCount(), 2 * tables.size());
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), (QStringList{rule, QString()}));
    }

    // Field names are taken from the tenth character on, whatever the length
    // of the table name: with the seven-letter target table short01 the
    // field part of short01.name is "ame", which srcaa01.xame matches and
    // srcaa001.name does not.
    void guessTakesFieldNamesFromTheTenthCharacter()
    {
        const QString xml = uR"(<multi001><SRCTBL>srcaa001,srcaa01</SRCTBL><PREC TEXT="">migrate srcaa001
dump 1 Short
end of precondition</PREC><DUMP No="1" TT="SHORT01" TXT="Short"/><MSCRIPT><SHORT01/></MSCRIPT>
<TARTAB><SHORT01><NAME No="1" TYPE="S" LENG="30"/><CODE No="2" TYPE="S" LENG="30"/></SHORT01></TARTAB>
<SRCTAB><SRCAA001><NAME No="1" TYPE="S" LENG="30"/></SRCAA001><SRCAA01><XAME No="1" TYPE="S" LENG="30"/></SRCAA01></SRCTAB>
</multi001>)"_s;
        QVERIFY(show(u"multi001"_s, xml));
        QCOMPARE(rows(host->grid(), 0), (QStringList{u"short01.name"_s, u"short01.code"_s}));
        QCOMPARE(rows(host->sourceFields(), 2), (QStringList{u"srcaa001.name"_s, u"srcaa01.xame"_s}));
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), (QStringList{u"srcaa01.xame"_s, QString()}));

        // Ma&p names the grid row the same way.
        selectTarget(u"short01.code"_s);
        clickCheckBox(host->sourceFields(), 0);
        clickMap();
        QCOMPARE(host->rules(), (QStringList{u"srcaa01.xame"_s, u"srcaa001.name"_s}));
    }
};

QTEST_MAIN(MapGuessTest)
#include "tst_mapguess.moc"
