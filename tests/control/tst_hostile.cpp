// Hostile input that only the widgets can show: a character of two code
// units as the first key into the grid, edits that must survive whatever way
// the grid is left, read-only mode that must change nothing, and commands that
// must not run inside each other. Texts, file names and sections are tested
// at the core and the session.

#include "WidgetHarness.h"

using namespace fbtest;

class HostileTest : public HostTest {
    Q_OBJECT

    bool showRules(bool edit = true)
    {
        return host->open(u"rules001"_s, rulesDocument(), edit) &&
               (host->clickTab(1), host->rules() == firstDumpRules());
    }

private Q_SLOTS:
    // A character outside the basic plane typed as the first key of a rule is
    // two code units: the edit starts with both.
    void firstKeyOutsideTheBasicPlane()
    {
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        QTest::sendKeyEvent(QTest::KeyAction::Click, host->grid(), Qt::Key_unknown, u"😀"_s, {});
        QCOMPARE(plainText(host->overlay()), u"😀"_s);
        QTest::keyClicks(host->overlay(), u"x"_s);
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->document().dump(1).child(u"NAME"_s).text, u"😀x"_s);
    }

    // An open edit is committed whatever way the grid is left.
    void openEditSurvivesLeavingTheGrid_data()
    {
        QTest::addColumn<bool>("byTab");
        QTest::newRow("click on the Mapping Object tab") << true;
        QTest::newRow("access key of Ma&p") << false;
    }
    void openEditSurvivesLeavingTheGrid()
    {
        QFETCH(bool, byTab);
        QVERIFY(showRules());
        clickCell(host->grid(), 1, 1);
        QTest::keyClick(host->grid(), Qt::Key_T);
        QTest::keyClicks(host->overlay(), u"yped.rule"_s);
        QVERIFY(host->overlay()->isVisible());
        if (byTab) {
            host->clickTab(0);
            QCOMPARE(host->tabs()->currentIndex(), 0);
            host->clickTab(1);
        } else {
            // Nothing ticked: Ma&p says so, and the typed rule is in the grid first.
            host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
            QTest::keyClick(host->overlay(), Qt::Key_P, Qt::AltModifier);
            QTRY_COMPARE(host->modals.count(), 1);
        }
        QCOMPARE(host->rule(1), u"typed.rule"_s);
        QCOMPARE(host->document().dump(1).child(u"NAME"_s).text, u"typed.rule"_s);
    }

    // Read-only, keys typed into the grid change nothing.
    void readOnlyTypingChangesNothing_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<bool>("alt");
        QTest::newRow("a letter") << QList<int>{Qt::Key_Q} << false;
        QTest::newRow("Alt and the letter of a disabled button") << QList<int>{Qt::Key_G} << true;
        QTest::newRow("a letter, then Enter") << QList<int>{Qt::Key_Q, Qt::Key_Return} << false;
    }
    void readOnlyTypingChangesNothing()
    {
        QFETCH(QList<int>, keys);
        QFETCH(bool, alt);
        QVERIFY(showRules(false));
        const QString before = host->xml();
        clickCell(host->grid(), 1, 1);
        for (int key : keys)
            QVERIFY(keyToFocus(Qt::Key(key), alt ? Qt::AltModifier : Qt::NoModifier));
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->rule(1), QString());
        QCOMPARE(host->xml(), before);
    }

    // Replacing the text of the locked main query box must not lock it half way.
    void readOnlySecondMigrateSourceShowsItsQuery()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s, false));
        QVERIFY(host->text(u"txtMainQuery"_s).startsWith(u"select pqrst002.*"_s));
        host->clickRow(u"lstMigrateSource"_s, 2);
        QVERIFY(host->text(u"txtMainQuery"_s).startsWith(u"select uvwxy003.*"_s));
        QVERIFY(host->readOnly(u"txtMainQuery"_s));
    }

    // The main query's documentation key pressed while the precondition's
    // dialog is still opening must not open a second dialog inside the first.
    void oneDocumentationDialogAtATime()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        // Access keys press their buttons a moment later: Alt+T and Alt+X are
        // both pressed before either dialog opens.
        QWidget* focus = host->find(u"txtPreCondition"_s);
        host->modals.expect(ModalAnswerer::document(true, u"precondition text"_s));
        QTest::keyClick(focus, Qt::Key_T, Qt::AltModifier);
        QTest::keyClick(focus, Qt::Key_X, Qt::AltModifier);
        QVERIFY(host->button(u"CmdMQDoc"_s)->isDown());
        QTRY_VERIFY(!host->button(u"CmdMQDoc"_s)->isDown() && host->modals.count() > 0);
        QCOMPARE(host->modals.count(), 1);
        const XmlElement doc = host->document();
        QCOMPARE(doc.child(u"PREC"_s).attribute(u"TEXT"_s), u"precondition text"_s);
        QCOMPARE(doc.child(u"QUERY"_s).attribute(u"TEXT"_s), QString());
    }
};

QTEST_MAIN(HostileTest)
#include "tst_hostile.moc"
