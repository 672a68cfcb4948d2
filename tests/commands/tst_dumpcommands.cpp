// Copying the rules of another dump, changing a dump's target table and the
// documentation text of a rule, driven through their buttons with every
// box answered as it appears.

#include "WidgetHarness.h"

#include <QLabel>

using namespace fbtest;

class DumpCommandsTest : public HostTest {
    Q_OBJECT

    // The multi-target sample on "Define Dumps": dumps 1 and 3 belong to
    // FGHIJ100, dump 2 to QWERT200; dump 4 is bound to FGHIJ100 on entry.
    bool showMultiTarget()
    {
        if (!host->openSample(u"fghij100.xml"_s))
            return false;
        host->modals.expect(ModalAnswerer::chooseTable(u"FGHIJ100"_s));
        host->clickTab(1);
        return host->activate() && host->tabs()->currentIndex() == 1;
    }
    QStringList ruleNames(int dump) const { return host->document().dump(dump).childNames(); }
    QString targetTableName() const { return host->find<QLabel>(u"LBLTargetTableName"_s)->text(); }

private Q_SLOTS:
    // ---- copying ----------------------------------------------------------

    void copyRefusals_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("icon");
        QTest::newRow("not a number") << u"abc"_s << u"Invalid Dump Number!"_s << u"Copying Dumps"_s
                                      << int(QMessageBox::Critical);
        QTest::newRow("no such dump") << u"77"_s << u"The entered dump number does not exists. "_s << u"Copy Dumps"_s
                                      << int(QMessageBox::Warning);
        QTest::newRow("another table, quoted as typed")
            << u"02"_s << u"Dump 02  is associated with table: QWERT200. So it is not possible to copy rules."_s
            << u"Copying Dumps "_s << int(QMessageBox::Warning);
    }
    void copyRefusals()
    {
        QFETCH(QString, answer);
        QFETCH(int, icon);
        QVERIFY(showMultiTarget());
        const QStringList before = ruleNames(1);
        host->modals.expect(ModalAnswerer::input(answer));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->click(u"CmdCopyDump"_s);
        QCOMPARE(host->modals.count(), 3); // the binding dialog, the input box, the refusal
        const ModalRecord& input = host->modals.records()[1];
        QCOMPARE(input.title, u"Copying rules to dump : 1"_s);
        QCOMPARE(input.text, u"Please enter the dump number to be copied from: "_s);
        const ModalRecord& refusal = host->modals.records()[2];
        QTEST(refusal.text, "message");
        QTEST(refusal.title, "title");
        QCOMPARE(int(refusal.icon), icon);
        QCOMPARE(refusal.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(ruleNames(1), before);
    }

    void cancellingTheInputBoxChangesNothing()
    {
        QVERIFY(showMultiTarget());
        const QString before = host->xml();
        host->modals.expect(ModalAnswerer::input(u"3"_s, false));
        host->click(u"CmdCopyDump"_s);
        QCOMPARE(host->modals.count(), 2);
        QCOMPARE(host->xml(), before);
    }

    // Dump 1 copied into dump 3 of the same table, the number typed with
    // leading zeros: quoted as typed, confirmed in sign-padded form.
    void copyReplacesTheRulesOfTheShownDump()
    {
        QVERIFY(showMultiTarget());
        const XmlElement source = host->document().dump(1);
        host->chooseDump(3);
        QVERIFY(host->activate());
        host->modals.expect(ModalAnswerer::input(u"001"_s));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->click(u"CmdCopyDump"_s);
        QCOMPARE(host->modals.count(), 4);
        const ModalRecord& confirm = host->modals.records()[2];
        QCOMPARE(confirm.text, u"Press 'OK' To Copy Dump  1 To Dump :  3"_s);
        QCOMPARE(confirm.title, u"Copy Dumps"_s);
        QCOMPARE(confirm.icon, QMessageBox::Information);
        QCOMPARE(confirm.buttons, QMessageBox::Ok | QMessageBox::Cancel);
        const ModalRecord& done = host->modals.records()[3];
        QCOMPARE(done.text, u"Copying Of Dump: '001' To Dump '3'  Was  Successful!!"_s);
        QCOMPARE(done.icon, QMessageBox::Information);

        const XmlElement copy = host->document().dump(3);
        QCOMPARE(copy.childNames(), source.childNames());
        for (int i = 0; i < source.children.size(); ++i) {
            QCOMPARE(copy.children[i].text, source.children[i].text);
            QCOMPARE(copy.children[i].attributes, source.children[i].attributes);
        }
        QCOMPARE(copy.attribute(u"TXT"_s), u"Item texts"_s); // the dump's own attributes stay
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 3:Item texts"_s);
        QCOMPARE(host->rule(0), crlf(source.child(u"ITEM"_s).text));
    }

    void cancellingTheConfirmationChangesNothing()
    {
        QVERIFY(showMultiTarget());
        const QStringList before = ruleNames(1);
        host->modals.expect(ModalAnswerer::input(u"3"_s));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Cancel));
        host->click(u"CmdCopyDump"_s);
        QCOMPARE(ruleNames(1), before);
    }

    // The destination's rules go first, so nothing is left to copy.
    void copyingADumpOntoItselfEmptiesIt()
    {
        QVERIFY(showMultiTarget());
        host->modals.expect(ModalAnswerer::input(u"1"_s));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->click(u"CmdCopyDump"_s);
        const ModalRecord& last = host->modals.records().last();
        QCOMPARE(last.text, u"Source Dump Not Maintained "_s);
        QCOMPARE(last.icon, QMessageBox::Critical);
        QCOMPARE(ruleNames(1), QStringList());
    }

    // ---- changing the target table ----------------------------------------

    void changingTheTableOfADumpWithRules_data()
    {
        QTest::addColumn<bool>("proceed");
        QTest::newRow("Yes rebinds") << true;
        QTest::newRow("No keeps everything") << false;
    }
    void changingTheTableOfADumpWithRules()
    {
        QFETCH(bool, proceed);
        QVERIFY(showMultiTarget());
        const QStringList before = ruleNames(1);
        host->modals.expect(ModalAnswerer::chooseTable(u"QWERT200"_s));
        host->modals.expect(ModalAnswerer::press(proceed ? QMessageBox::Yes : QMessageBox::No));
        host->click(u"CmdChange"_s);
        QCOMPARE(host->modals.count(), 3);
        const ModalRecord& dialog = host->modals.records()[1];
        QCOMPARE(dialog.title, u"Choose Target for Dump No:  1"_s);
        QCOMPARE(dialog.entries, (QStringList{u"FGHIJ100"_s, u"QWERT200"_s}));
        const ModalRecord& question = host->modals.records()[2];
        QCOMPARE(question.text, lf(u"You are changing the association of dump 1 from table : FGHIJ100 to QWERT200\r\n"
                                   u"You lose the maintained rules of dump 1 for target table FGHIJ100\r\n"
                                   u" Press 'Yes' to Proceed; 'No' to Cancel the Action"_s));
        QCOMPARE(question.title, QString());
        QCOMPARE(question.icon, QMessageBox::Critical);
        QCOMPARE(question.buttons, QMessageBox::Yes | QMessageBox::No);

        const XmlElement dump = host->document().dump(1);
        if (!proceed) {
            QCOMPARE(dump.attribute(u"TT"_s), u"FGHIJ100"_s);
            QCOMPARE(ruleNames(1), before);
            QCOMPARE(targetTableName(), u"FGHIJ100"_s);
            return;
        }
        // One rule: default() for the new table's first field, with its No.
        QCOMPARE(dump.attribute(u"TT"_s), u"QWERT200"_s);
        QCOMPARE(dump.children.size(), 1);
        const XmlElement rule = dump.children.first();
        QCOMPARE(rule.text, u"default()"_s);
        QCOMPARE(rule.attribute(u"TYPE"_s), u"0"_s);
        QCOMPARE(rule.attribute(u"TEXT"_s), QString());
        QCOMPARE(rule.attribute(u"No"_s), u"1"_s);
        QCOMPARE(targetTableName(), u"QWERT200"_s);
        QVERIFY(cell(host->grid(), 0, 0).startsWith(u"qwert200."_s));
        QCOMPARE(host->rule(0), u"default()"_s);
    }

    void choosingTheSameTableAsksNothing()
    {
        QVERIFY(showMultiTarget());
        const QStringList before = ruleNames(1);
        host->modals.expect(ModalAnswerer::chooseTable(u"FGHIJ100"_s));
        host->click(u"CmdChange"_s);
        QCOMPARE(host->modals.count(), 2);
        QCOMPARE(ruleNames(1), before);
    }

    // ---- documentation text of a rule -------------------------------------

    void textOfARule_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("a text") << u"Mapped from the item code"_s << u"Mapped from the item code"_s;
        QTest::newRow("the untouched template") << QString() << QString();
    }
    void textOfARule()
    {
        QFETCH(QString, typed);
        QVERIFY(showMultiTarget());
        // Row 7 of dump 1 is the field pack, whose rule has no text yet.
        clickCell(host->grid(), 6, 1);
        QCOMPARE(cell(host->grid(), 6, 0), u"fghij100.pack"_s);
        QCOMPARE(host->document().dump(1).child(u"PACK"_s).attribute(u"TEXT"_s), QString());
        host->modals.expect(ModalAnswerer::document(true, typed));
        host->click(u"CmdDumpText"_s);
        const ModalRecord& dialog = host->modals.records().last();
        QCOMPARE(dialog.title, u"Text For Field : 'pack'   Dump:1"_s);
        QCOMPARE(dialog.text, u"Field Mapping:\n\n\n\n\n\n\nTechnical Notes:"_s);
        QTEST(host->document().dump(1).child(u"PACK"_s).attribute(u"TEXT"_s), "stored");
    }

    void aFieldWithoutRuleCannotHaveText()
    {
        QVERIFY(showMultiTarget());
        clickCell(host->grid(), 7, 1); // seqn: no rule in dump 1
        QCOMPARE(host->rule(7), QString());
        const QString before = host->xml();
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->click(u"CmdDumpText"_s);
        const ModalRecord& info = host->modals.records().last();
        QCOMPARE(info.text, u"You Can Maintain Text, only to fields having a rule "_s);
        QCOMPARE(info.icon, QMessageBox::Information);
        QCOMPARE(info.title, QString());
        QCOMPARE(host->xml(), before);
    }

    // Read-only: the text is shown locked, OK is off, and Cancel writes the
    // text back unchanged in content.
    void readOnlyTextIsLocked()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s, false));
        host->clickTab(1);
        QVERIFY(host->activate());
        host->chooseDump(2); // the addresses, where the city's rule has a text
        QVERIFY(host->activate());
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Addresses"_s);
        const int row = rowOf(host->grid(), 0, u"klmno001.city"_s);
        QVERIFY(row >= 0);
        clickCell(host->grid(), row, 1);
        const QString before = host->document().dump(2).child(u"CITY"_s).attribute(u"TEXT"_s);
        QVERIFY(before.contains(u'\n'));
        host->modals.expect(ModalAnswerer::document(false));
        host->click(u"CmdDumpText"_s);
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& dialog = host->modals.records().last();
        QVERIFY(dialog.textReadOnly);
        QVERIFY(!dialog.okEnabled);
        QCOMPARE(host->document().dump(2).child(u"CITY"_s).attribute(u"TEXT"_s), before);
    }
};

QTEST_MAIN(DumpCommandsTest)
#include "tst_dumpcommands.moc"
