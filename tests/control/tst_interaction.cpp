// The control under a person's hands: the layout at any size, the main query
// enlarged and restored, and the Alt shortcuts.

#include "WidgetHarness.h"

#include <QLabel>
#include <QMap>

using namespace fbtest;

namespace {

// Pixels for a length in twips on this widget's screen.
double px(int twips, const QWidget* w)
{
    return twips * w->logicalDpiX() / 1440.0;
}

// x of the widget's left edge in the coordinates of an ancestor.
int leftIn(const QWidget* w, const QWidget* ancestor)
{
    return w->mapTo(ancestor, QPoint(0, 0)).x();
}

// Checks the resize rules of the current tab; returns what is wrong, or "".
QString checkLayout(const Host& host)
{
    QStringList errors;
    const auto expectNear = [&errors](const char* what, double actual, double expected) {
        if (qAbs(actual - expected) > 1.0)
            errors.append(u"%1: %2 px, expected %3 px"_s.arg(QString::fromLatin1(what)).arg(actual).arg(expected));
    };
    const ctlFieldbridge* ctl = host.ctl;
    QTabWidget* tabs = host.tabs();
    if (tabs->geometry() != QRect(0, 0, ctl->width(), ctl->height()))
        errors.append(u"MainTab does not fill the control"_s);

    const bool mapping = tabs->currentIndex() == 0;
    QWidget* frame = host.find(mapping ? u"FrmCondition"_s : u"FrmRules"_s);
    expectNear("frame left in MainTab", leftIn(frame, tabs), px(45, ctl));
    expectNear("frame width", frame->width(), tabs->width() - px(95, ctl));
    if (mapping) {
        QWidget* list = host.find(u"lstSourceTables"_s);
        QWidget* pre = host.find(u"txtPreCondition"_s);
        QWidget* mq = host.find(u"txtMainQuery"_s);
        const int preLeft = leftIn(pre, frame);
        expectNear("txtPreCondition left", preLeft, leftIn(list, frame) + list->width() + px(105, ctl));
        expectNear("txtPreCondition right", preLeft + pre->width(), frame->width() - px(120, ctl));
        expectNear("txtMainQuery left", leftIn(mq, frame), preLeft);
        expectNear("txtMainQuery width", mq->width(), pre->width());
    } else {
        QWidget* source = host.find(u"lstSourceFields"_s);
        QWidget* target = host.find(u"lstTargetFields"_s);
        const double half = (frame->width() - px(480, ctl)) / 2.0;
        expectNear("lstSourceFields width", source->width(), half);
        expectNear("lstTargetFields width", target->width(), half);
        expectNear("gap between the field lists",
                   leftIn(target, frame) - (leftIn(source, frame) + source->width()), px(240, ctl));
        expectNear("Details left", leftIn(host.find(u"Details"_s), frame), px(120, ctl));
    }
    return errors.join(u"; "_s);
}

} // namespace

class InteractionTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    void layoutFollowsTheSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("as created") << QSize(960, 660);
        QTest::newRow("wide") << QSize(1600, 1000);
        QTest::newRow("narrow") << QSize(640, 480);
    }
    void layoutFollowsTheSize()
    {
        QFETCH(QSize, size);
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        host->window->resize(size + QSize(40, 40));
        host->ctl->resize(size);
        QCOMPARE(host->ctl->size(), size);
        QString errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host->clickTab(1);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        // Resized while on the second tab, then back to the first.
        host->ctl->resize(size + QSize(120, 80));
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host->clickTab(0);
        QCOMPARE(host->tabs()->currentIndex(), 0);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
    }

    void extremeSizes()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        const QSize normal(960, 660);
        host->ctl->resize(normal);
        QWidget* pre = host->find(u"txtPreCondition"_s);
        QWidget* sourceFields = host->find(u"lstSourceFields"_s);
        QWidget* targetFields = host->find(u"lstTargetFields"_s);
        const int preWidth = pre->width();
        QVERIFY(preWidth > 0);
        // Far below the fixed margins: widths that would be negative are
        // refused and the controls keep their previous ones.
        host->ctl->resize(10, 10);
        QCOMPARE(host->ctl->size(), QSize(10, 10));
        QCOMPARE(pre->width(), preWidth);
        host->ctl->resize(3000, 2000);
        QString errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host->ctl->resize(normal);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        QCOMPARE(pre->width(), preWidth);

        // The same on the second tab.
        host->clickTab(1);
        QCOMPARE(host->tabs()->currentIndex(), 1);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        const int sourceWidth = sourceFields->width();
        const int targetWidth = targetFields->width();
        host->ctl->resize(10, 10);
        QCOMPARE(sourceFields->width(), sourceWidth);
        QCOMPARE(targetFields->width(), targetWidth);
        host->ctl->resize(3000, 2000);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host->ctl->resize(normal);
        errors = checkLayout(*host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));

    }

    void enlargingAndRestoringTheMainQueryTwice()
    {
        QVERIFY(host->openSample(u"klmno001.xml"_s));
        const QStringList names{u"txtPreCondition"_s, u"txtMainQuery"_s, u"PicMQResize"_s, u"PicPreResize"_s,
                                u"CmdBuildPre"_s,     u"CmdPreEditor"_s, u"CmdPreDoc"_s,   u"cmdBuildMQ"_s,
                                u"CmdMqEditor"_s,     u"CmdMQDoc"_s,     u"CmdOk"_s,       u"CmdCancel"_s};
        QMap<QString, QRect> before;
        for (const QString& n : names)
            before.insert(n, host->find(n)->geometry());
        QWidget* pre = host->find(u"txtPreCondition"_s);
        QWidget* mq = host->find(u"txtMainQuery"_s);
        QWidget* picMQ = host->find(u"PicMQResize"_s);
        QWidget* picPre = host->find(u"PicPreResize"_s);
        auto* label = host->find<QLabel>(u"lblPreCondition"_s);
        QVERIFY(pre->isVisible());
        QVERIFY(picPre->isVisible());

        for (int round = 1; round <= 2; ++round) {
            QTest::mouseClick(picMQ, Qt::LeftButton);
            // Enlarged: the main query takes the precondition's place.
            QVERIFY(!pre->isVisible());
            QVERIFY(!picPre->isVisible());
            QVERIFY(!picPre->isEnabled());
            QCOMPARE(mq->y(), before.value(u"txtPreCondition"_s).y());
            QVERIFY(mq->height() > before.value(u"txtMainQuery"_s).height());
            QVERIFY(mq->geometry().bottom() < before.value(u"CmdOk"_s).top());
            QCOMPARE(picMQ->geometry(), before.value(u"PicPreResize"_s));
            QCOMPARE(label->text(), u"Main Query"_s);

            QTest::mouseClick(picMQ, Qt::LeftButton);
            // Restored: everything back where it was.
            QVERIFY(pre->isVisible());
            QVERIFY(picPre->isVisible());
            QVERIFY(picPre->isEnabled());
            QCOMPARE(label->text(), u"PreCondition"_s);
            for (const QString& n : names)
                QVERIFY2(host->find(n)->geometry() == before.value(n), qPrintable(u"round %1: %2"_s.arg(round).arg(n)));
        }
    }

    // Alt+M, Alt+P and Alt+Q on "Mapping Object", Alt+U on "Define Dumps",
    // each only when the box its row tests is visible, and only with Alt
    // alone. The first two rows test each other's box: with the main query
    // enlarged (the precondition hidden) the way into the main query is off.
    void altShortcuts_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<bool>("enlarged");
        QTest::addColumn<bool>("edit");
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("focus");
        const int alt = int(Qt::AltModifier);
        const int ctrlAlt = int(Qt::ControlModifier | Qt::AltModifier);
        const QString sources = u"lstSourceTables"_s;
        const QString pre = u"txtPreCondition"_s;
        const QString mq = u"txtMainQuery"_s;
        const QString migrate = u"lstMigrateSource"_s;
        const QString targets = u"lstTargetFields"_s;
        QTest::newRow("Alt+M from the source tables") << 0 << false << true << sources << int(Qt::Key_M) << alt << mq;
        QTest::newRow("Alt+P from the main query") << 0 << false << true << mq << int(Qt::Key_P) << alt << pre;
        QTest::newRow("Alt+Q from the precondition") << 0 << false << true << pre << int(Qt::Key_Q) << alt << migrate;
        QTest::newRow("Alt+M in read-only mode") << 0 << false << false << sources << int(Qt::Key_M) << alt << mq;
        QTest::newRow("Ctrl+Alt+M does nothing") << 0 << false << true << sources << int(Qt::Key_M) << ctrlAlt << sources;
        QTest::newRow("Shift+Alt+P does nothing")
            << 0 << false << true << sources << int(Qt::Key_P) << int(Qt::ShiftModifier | Qt::AltModifier) << sources;
        QTest::newRow("Alt+U does nothing on Mapping Object")
            << 0 << false << true << sources << int(Qt::Key_U) << alt << sources;
        QTest::newRow("enlarged: Alt+M is switched off") << 0 << true << true << sources << int(Qt::Key_M) << alt << sources;
        QTest::newRow("enlarged: Alt+Q still works") << 0 << true << true << sources << int(Qt::Key_Q) << alt << migrate;
        QTest::newRow("Alt+U from the target fields") << 1 << false << true << targets << int(Qt::Key_U) << alt << u"CmbDump"_s;
        QTest::newRow("Alt+U from the rules grid") << 1 << false << true << u"RulesGrid"_s << int(Qt::Key_U) << alt
                                                   << u"CmbDump"_s;
        QTest::newRow("Alt+M does nothing on Define Dumps") << 1 << false << true << targets << int(Qt::Key_M) << alt
                                                            << targets;
        QTest::newRow("Ctrl+Alt+U does nothing") << 1 << false << true << targets << int(Qt::Key_U) << ctrlAlt << targets;
    }
    void altShortcuts()
    {
        QFETCH(int, tab);
        QFETCH(bool, enlarged);
        QFETCH(bool, edit);
        QFETCH(QString, start);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, focus);
        QVERIFY(host->openSample(u"klmno001.xml"_s, edit));
        if (enlarged)
            host->click(u"PicMQResize"_s);
        host->clickTab(tab);
        QCOMPARE(host->tabs()->currentIndex(), tab);
        host->clickInto(start);
        QVERIFY2(host->focusIn(start), qPrintable(focusName()));
        QVERIFY(keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers)));
        QTest::qWait(50);
        QTRY_VERIFY2(host->focusIn(focus), qPrintable(focusName()));
        QCOMPARE(host->tabs()->currentIndex(), tab);
    }
};

QTEST_MAIN(InteractionTest)
#include "tst_interaction.moc"
