// Ctrl+Space in a script box completes the word before the cursor with a
// field of the listed source tables: a unique match is written at once,
// several are offered in a list, and a locked box is left alone.

#include "WidgetHarness.h"

#include <QListWidget>
#include <QScreen>

using namespace fbtest;

class CompletionTest : public HostTest {
    Q_OBJECT

    // Types the text at the end of the box, then asks for completion.
    void typeAndComplete(const QString& box, const QString& typed)
    {
        QWidget* editor = host->find(box);
        clickInto(editor);
        QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::keyClicks(editor, typed);
        QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
    }

private Q_SLOTS:
    void uniqueMatchIsWritten_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("completed");
        QTest::newRow("precondition") << u"txtPreCondition"_s << u"x = pqrst002.cus"_s << u"x = pqrst002.custno"_s;
        QTest::newRow("main query, any case") << u"txtMainQuery"_s << u"where UVWXY003.STR"_s
                                              << u"where uvwxy003.street"_s;
    }
    void uniqueMatchIsWritten()
    {
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        typeAndComplete(box, typed);
        QTEST(host->text(box).section(u'\n', -1), "completed");
    }

    static QListWidget* offeredList() { return qobject_cast<QListWidget*>(QApplication::activePopupWidget()); }

    // Several fields match: the box keeps what was typed and a list of them
    // is offered, on the editor's screen even where the caret lies beyond
    // its edge (a window wider than the screen); Return takes the first.
    void severalMatchesAreOffered_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("column");
        QTest::newRow("precondition") << u"txtPreCondition"_s << 0;
        QTest::newRow("precondition, caret beyond the screen") << u"txtPreCondition"_s << 130;
        QTest::newRow("main query, caret beyond the screen") << u"txtMainQuery"_s << 130;
    }
    void severalMatchesAreOffered()
    {
        QFETCH(QString, box);
        QFETCH(int, column);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        host->window->resize(screen.width() + 400, 600);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        const QString typed = QString(column, u' ') + u"y = "_s;
        typeAndComplete(box, typed);
        QListWidget* list = offeredList();
        QVERIFY(list);
        QVERIFY(list->count() > 1);
        QVERIFY(screen.contains(list->geometry()));
        QCOMPARE(host->text(box).section(u'\n', -1), typed);
        const QString first = list->item(0)->text();
        QTest::keyClick(list, Qt::Key_Return);
        QTRY_VERIFY(!offeredList());
        QCOMPARE(host->text(box).section(u'\n', -1), typed + first);
    }

    void aLockedBoxIsLeftAlone()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s, false));
        const QString before = host->text(u"txtPreCondition"_s);
        QWidget* editor = host->find(u"txtPreCondition"_s);
        clickInto(editor);
        QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(!offeredList());
        QCOMPARE(host->text(u"txtPreCondition"_s), before);
    }
};

QTEST_MAIN(CompletionTest)
#include "tst_completion.moc"
