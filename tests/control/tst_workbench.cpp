// The workbench on the "Define Dumps" page, as a person uses it: find boxes
// narrowing the lists while every described command still sees every row,
// "unmapped only", the coverage label, the problems list leading to the
// rule, and undo and redo from the keyboard and from the host's stack.

#include "WidgetHarness.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTreeWidget>
#include <QUndoStack>

using namespace fbtest;

class WorkbenchTest : public HostTest {
    Q_OBJECT

    // rules001 with its first dump's rule of a field replaced.
    bool openRules(const QString& field = QString(), const QString& rule = QString())
    {
        QString xml = rulesDocument();
        if (!field.isEmpty())
            xml.replace(QRegularExpression(u"<"_s + field + u"( [^>]*)>[^<]*</"_s + field + u'>'),
                        u"<"_s + field + u"\\1>"_s + rule + u"</"_s + field + u'>');
        if (!host->open(u"rules001"_s, xml))
            return false;
        host->clickTab(1);
        return !field.isEmpty() || host->rules() == firstDumpRules();
    }
    QLineEdit* box(const QString& name) const { return host->find<QLineEdit>(name); }
    // Typing over a grid cell: the first key opens the overlay, which takes
    // the rest; a click on another cell commits it.
    void typeRule(int row, const QString& text, int thenRow)
    {
        clickCell(host->grid(), row, 1);
        QTest::keyClicks(host->grid(), text.left(1));
        typeText(host->overlay(), text.mid(1));
        clickCell(host->grid(), thenRow, 1);
    }

private Q_SLOTS:
    void findNarrowsAndEscapeClears()
    {
        QVERIFY(openRules());
        clickCheckBox(host->sourceFields(), 7); // srcbb002.custno
        host->clickInto(u"txtFindSource"_s);
        typeText(box(u"txtFindSource"_s), u"SRCAA001 n"_s);
        QCOMPARE(fbtest::rows(host->sourceFields(), 2),
                 (QStringList{u"srcaa001.custno"_s, u"srcaa001.name"_s, u"srcaa001.born"_s,
                              u"srcaa001.note(2)"_s}));
        QVERIFY(host->find<QLabel>(u"lblSourceHidden"_s)->isVisible());
        QCOMPARE(host->find<QLabel>(u"lblSourceHidden"_s)->text(), u"1 ticked field hidden by the find"_s);
        // The hidden tick still counts for Ma&p, and the list still answers
        // by its own rows.
        clickCell(host->targetFields(), 1, 3);
        host->click(u"CmdMap"_s);
        QCOMPARE(host->rule(1), u"srcbb002.custno"_s);
        QCOMPARE(host->ctl->GetListItemNumber(u"rules001.zip"_s), 10);
        QTest::keyClick(box(u"txtFindSource"_s), Qt::Key_Escape);
        QCOMPARE(box(u"txtFindSource"_s)->text(), QString());
        QCOMPARE(host->sourceFields()->model()->rowCount(), 11);
    }

    void ctrlFGoesToTheListsFindBox_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("box");
        QTest::newRow("source list") << u"lstSourceFields"_s << u"txtFindSource"_s;
        QTest::newRow("grid") << u"RulesGrid"_s << u"txtFindTarget"_s;
        QTest::newRow("target list") << u"lstTargetFields"_s << u"txtFindTarget"_s;
    }
    void ctrlFGoesToTheListsFindBox()
    {
        QFETCH(QString, from);
        QFETCH(QString, box);
        QVERIFY(openRules());
        host->find(from)->setFocus();
        QVERIFY(keyToFocus(Qt::Key_F, Qt::ControlModifier));
        QVERIFY(host->focusIn(box));
    }

    void unmappedOnlyAndCoverage()
    {
        QVERIFY(openRules());
        auto* coverage = host->find<QLabel>(u"lblCoverage"_s);
        QCOMPARE(coverage->text(), u"Dump 1: 3 of 10 fields have a rule"_s);
        QTest::mouseClick(host->find<QCheckBox>(u"chkUnmappedOnly"_s), Qt::LeftButton);
        QCOMPARE(host->grid()->model()->rowCount(), 7);
        QCOMPARE(host->targetFields()->model()->rowCount(), 7);
        // A rule typed into a shown row: the coverage follows, and the row
        // leaves the list once the user has moved on.
        typeRule(0, u"srcaa001.name"_s, 3);
        QCOMPARE(coverage->text(), u"Dump 1: 4 of 10 fields have a rule"_s);
        QCOMPARE(host->grid()->model()->rowCount(), 6);
    }

    void undoAndRedoByKeys()
    {
        QVERIFY(openRules());
        const QStringList before = host->rules();
        typeRule(1, u"srcaa001.name"_s, 3);
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
        QCOMPARE(host->ctl->undoStack()->undoText(), u"Edit: rules001.name in dump 1"_s);
        // In a text box Ctrl+Z is the box's own.
        host->clickInto(u"txtFindTarget"_s);
        QTest::keyClick(box(u"txtFindTarget"_s), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
        host->grid()->setFocus();
        QVERIFY(keyToFocus(Qt::Key_Z, Qt::ControlModifier));
        QCOMPARE(host->rules(), before);
        QVERIFY(keyToFocus(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier));
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
        QVERIFY(keyToFocus(Qt::Key_Z, Qt::ControlModifier));
        QVERIFY(keyToFocus(Qt::Key_Y, Qt::ControlModifier));
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
    }

    void guessUndoneFromTheHostsStack()
    {
        QVERIFY(openRules());
        const QString before = host->xml();
        host->modals.expect(ModalAnswerer::press(QMessageBox::Yes));
        host->click(u"CmdGuess"_s);
        QUndoStack* stack = host->ctl->undoStack();
        QVERIFY2(stack->undoText().startsWith(u"Guess: "_s) &&
                     stack->undoText().endsWith(u" rules in dump 1"_s),
                 qPrintable(stack->undoText()));
        stack->undo();
        QCOMPARE(host->rules(), firstDumpRules());
        QCOMPARE(host->xml(), before);
        // A new document starts a new history.
        host->load(u"rules001"_s, rulesDocument());
        QVERIFY(!stack->canUndo() && !stack->canRedo());
    }

    // The review dialog as a person uses it: it opens on the dump's fields
    // with the clear winners ticked; a double-click on another candidate
    // takes it; OK writes the ticked rules as one undoable step.
    void suggestionsReviewedAndWritten()
    {
        QVERIFY(openRules());
        QStringList seen;
        host->modals.expect([&seen](QWidget* dialog) {
            auto* list = dialog->findChild<QTreeWidget*>(u"lstSuggestions"_s);
            QVERIFY(list && list->topLevelItemCount() == 10);
            for (int i = 0; i < list->topLevelItemCount(); ++i)
                if (list->topLevelItem(i)->checkState(0) == Qt::Checked)
                    seen.append(list->topLevelItem(i)->text(0));
            QTreeWidgetItem* born = list->topLevelItem(3);
            born->setExpanded(true);
            QTreeWidgetItem* other = born->child(born->childCount() - 1);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(other).center());
            QCOMPARE(born->text(2), other->text(2));
            // Enter on a candidate takes it and leaves the dialog open.
            QTreeWidgetItem* two = nullptr;
            for (int i = 0; i < list->topLevelItemCount() && !two; ++i)
                if (list->topLevelItem(i)->childCount() >= 2)
                    two = list->topLevelItem(i);
            QVERIFY(two);
            two->setExpanded(true);
            list->setFocus();
            list->setCurrentItem(two->child(0));
            QTest::keyClick(list, Qt::Key_Down);
            QTest::keyClick(list, Qt::Key_Return);
            QTest::keyClick(list, Qt::Key_Return); // a second press, or a key held down
            QVERIFY(dialog->isVisible());
            QCOMPARE(two->text(2), two->child(1)->text(2));
            QCOMPARE(two->checkState(0), Qt::Checked);
            auto* buttons = dialog->findChild<QDialogButtonBox*>(u"buttons"_s);
            QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        });
        host->click(u"CmdSuggest"_s);
        QCOMPARE(host->modals.records().value(0).className, u"fb::FrmSuggest"_s);
        // Rows with a rule (custno, city, zip) never come ticked.
        QVERIFY2(!seen.contains(u"rules001.custno"_s) && seen.contains(u"rules001.name"_s),
                 qPrintable(seen.join(u' ')));
        QVERIFY(!host->rule(3).isEmpty());
        QVERIFY2(host->ctl->undoStack()->undoText().startsWith(u"Suggestions: "_s),
                 qPrintable(host->ctl->undoStack()->undoText()));
        host->ctl->undoStack()->undo();
        QCOMPARE(host->rules(), firstDumpRules());
    }

    void problemLeadsToItsRule()
    {
        QVERIFY(openRules(u"CITY"_s, u"srcxx001.city"_s));
        const QStringList problems = host->ctl->CheckMapping();
        QVERIFY2(
            problems.contains(
                u"Error  dump 1  rules001.city: srcxx001 is not a listed source table (srcxx001.city)"_s),
            qPrintable(problems.join(u'\n')));
        QCOMPARE(host->ctl->CheckErrorCount(), 1);
        auto* list = host->find<QListView>(u"lstProblems"_s);
        const int row = int(problems.indexOf(QRegularExpression(u"^Error.*"_s)));
        clickCell(list, row);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                           list->visualRect(list->model()->index(row, 0)).center());
        QCOMPARE(host->grid()->currentIndex().row(), 2);
        QVERIFY(host->focusIn(u"RulesGrid"_s));
    }
};

QTEST_MAIN(WorkbenchTest)
#include "tst_workbench.moc"
