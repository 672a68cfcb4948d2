// Ctrl+Space in a script box completes the word before the cursor with a
// field of the listed source tables: a unique match is written at once,
// several are offered in a list, and a locked box is left alone.

#include "WidgetHarness.h"

#include <Qsci/qsciscintilla.h>

using namespace fbtest;

class CompletionTest : public HostTest {
    Q_OBJECT

    // Types the text at the end of the box, then asks for completion.
    void typeAndComplete(const QString& box, const QString& typed)
    {
        auto* editor = host->find<QsciScintilla>(box);
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

    // Three tables have a custno: the box keeps what was typed and a list
    // of the three is offered.
    void severalMatchesAreOffered()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        typeAndComplete(u"txtPreCondition"_s, u"y = "_s);
        auto* editor = host->find<QsciScintilla>(u"txtPreCondition"_s);
        QVERIFY(editor->isListActive());
        QCOMPARE(host->text(u"txtPreCondition"_s).section(u'\n', -1), u"y = "_s);
    }

    void aLockedBoxIsLeftAlone()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s, false));
        const QString before = host->text(u"txtPreCondition"_s);
        auto* editor = host->find<QsciScintilla>(u"txtPreCondition"_s);
        clickInto(editor);
        QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
        QVERIFY(!editor->isListActive());
        QCOMPARE(host->text(u"txtPreCondition"_s), before);
    }
};

QTEST_MAIN(CompletionTest)
#include "tst_completion.moc"
