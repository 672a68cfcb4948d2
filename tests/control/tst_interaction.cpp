// The control under a person's hands: typing into the precondition and
// leaving it, the messages that storing raises, the layout at any size, and
// the Alt shortcuts.

#include "WidgetHarness.h"

#include <QLabel>
#include <QMap>
#include <QSignalSpy>

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

class InteractionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void typedPreconditionIsStoredOnLeaving_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("migrateRows");
        QTest::addColumn<QStringList>("queries"); // ST of the QUERY elements handed back
        QTest::addColumn<QStringList>("dumps");   // No of the DUMP elements handed back
        QTest::addColumn<QString>("sourceTables");
        QTest::addColumn<bool>("defineDumpsEnabled");
        const QString sources = u"pqrst002,uvwxy003,abcde004"_s;
        QTest::newRow("one migrate source")
            << u"migrate pqrst002"_s << QStringList{u"migrate pqrst002"_s, {}} << QStringList{u"pqrst002"_s}
            << QStringList{u"3"_s} << sources << true;
        QTest::newRow("two lines, keyword in capitals")
            << u"MIGRATE abcde004\nmigrate pqrst002"_s
            << QStringList{u"migrate abcde004"_s, {}, u"migrate pqrst002"_s, {}} << QStringList{u"pqrst002"_s}
            << QStringList{u"3"_s} << sources << true;
        QTest::newRow("dump referenced by the precondition")
            << u"migrate uvwxy003 dump 2 Addresses"_s << QStringList{u"migrate uvwxy003"_s, {}}
            << QStringList{u"uvwxy003"_s} << QStringList{u"2"_s} << sources << true;
        QTest::newRow("a new table becomes a source table")
            << u"migrate zzzzz009"_s << QStringList{u"migrate zzzzz009"_s, {}} << QStringList{} << QStringList{}
            << sources + u",zzzzz009"_s << false;
    }
    void typedPreconditionIsStoredOnLeaving()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, migrateRows);
        QFETCH(QStringList, queries);
        QFETCH(QStringList, dumps);
        QFETCH(QString, sourceTables);
        QFETCH(bool, defineDumpsEnabled);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.replaceText(u"txtPreCondition"_s, typed);
        QCOMPARE(host.text(u"txtPreCondition"_s), typed);
        // Nothing is stored while the editor keeps the focus.
        QCOMPARE(host.rows(u"lstMigrateSource"_s).size(), 4);

        host.clickInto(u"lstSourceTables"_s);
        QVERIFY2(host.focusIn(u"lstSourceTables"_s), qPrintable(focusName()));
        QCOMPARE(host.rows(u"lstMigrateSource"_s), migrateRows);
        QCOMPARE(host.ctl->property("SourceTables").toString(), sourceTables);
        QCOMPARE(host.rows(u"lstSourceTables"_s), sourceTables.split(u','));
        QCOMPARE(host.tabs()->isTabEnabled(1), defineDumpsEnabled);
        const XmlElement root = host.document();
        QCOMPARE(root.child(u"PREC"_s).text, typed);
        QCOMPARE(root.attributeValues(u"QUERY"_s, u"ST"_s), queries);
        QCOMPARE(root.attributeValues(u"DUMP"_s, u"No"_s), dumps);
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void storingThePreconditionWarnsOnce_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("focusBack");
        QTest::newRow("name too short") << u"migrate KLM"_s << u"Table Name not Valid"_s << true;
        QTest::newRow("digit among the first five")
            << u"migrate 1LMNO001"_s << u"Invalid table name '1LMNO001'"_s << true;
        QTest::newRow("letters among the last three")
            << u"migrate KLMNOXYZ"_s << u"Invalid table name 'KLMNOXYZ'"_s << true;
        QTest::newRow("keyword at the end")
            << u"migrate"_s << u"Migrate Keyword Has to be followed by a TableName"_s << false;
        QTest::newRow("keyword and one blank at the end")
            << u"migrate "_s << u"Migrate Keyword Has to be followed by a TableName"_s << false;
    }
    void storingThePreconditionWarnsOnce()
    {
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(bool, focusBack);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.replaceText(u"txtPreCondition"_s, typed);
        QCOMPARE(host.text(u"txtPreCondition"_s), typed);
        host.modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host.clickInto(u"lstSourceTables"_s);
        QTRY_COMPARE(host.modals.count(), 1);
        const ModalRecord box = host.modals.records().first();
        QCOMPARE(box.text, message);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QTRY_VERIFY(!QApplication::activeModalWidget());
        // The text was stored before it was checked: no migrate source is left.
        QCOMPARE(host.rows(u"lstMigrateSource"_s).size(), 0);
        QWidget* pre = host.find(u"txtPreCondition"_s);
        const QWidget* windowFocus = host.window->focusWidget();
        if (focusBack)
            QVERIFY(windowFocus && (windowFocus == pre || pre->isAncestorOf(windowFocus)));
        QVERIFY(host.activate());
        if (focusBack)
            QTRY_VERIFY2(host.focusIn(u"txtPreCondition"_s), qPrintable(focusName()));
        QTest::qWait(100);
        QVERIFY2(host.modals.count() == 1, qPrintable(host.modals.describe()));
    }

    void layoutFollowsTheSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("as created") << QSize(960, 660);
        QTest::newRow("wide") << QSize(1600, 1000);
        QTest::newRow("narrow") << QSize(640, 480);
        QTest::newRow("tall") << QSize(760, 1200);
    }
    void layoutFollowsTheSize()
    {
        QFETCH(QSize, size);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.window->resize(size + QSize(40, 40));
        host.ctl->resize(size);
        QCOMPARE(host.ctl->size(), size);
        QString errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        // Resized while on the second tab, then back to the first.
        host.ctl->resize(size + QSize(120, 80));
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host.clickTab(0);
        QCOMPARE(host.tabs()->currentIndex(), 0);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void extremeSizes()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        const QSize normal(960, 660);
        host.ctl->resize(normal);
        QWidget* pre = host.find(u"txtPreCondition"_s);
        QWidget* sourceFields = host.find(u"lstSourceFields"_s);
        QWidget* targetFields = host.find(u"lstTargetFields"_s);
        const int preWidth = pre->width();
        QVERIFY(preWidth > 0);
        // Far below the fixed margins: widths that would be negative are
        // refused and the controls keep their previous ones.
        host.ctl->resize(10, 10);
        QCOMPARE(host.ctl->size(), QSize(10, 10));
        QCOMPARE(pre->width(), preWidth);
        host.ctl->resize(3000, 2000);
        QString errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host.ctl->resize(normal);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        QCOMPARE(pre->width(), preWidth);

        // The same on the second tab.
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        const int sourceWidth = sourceFields->width();
        const int targetWidth = targetFields->width();
        host.ctl->resize(10, 10);
        QCOMPARE(sourceFields->width(), sourceWidth);
        QCOMPARE(targetFields->width(), targetWidth);
        host.ctl->resize(3000, 2000);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        host.ctl->resize(normal);
        errors = checkLayout(host);
        QVERIFY2(errors.isEmpty(), qPrintable(errors));

        // Still at work: tabs switch, the dump is shown, the document comes back.
        host.clickTab(0);
        QCOMPARE(host.tabs()->currentIndex(), 0);
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QCOMPARE(host.rules().size(), 25);
        const XmlElement root = host.document();
        QCOMPARE(root.name, u"klmno001"_s);
        QCOMPARE(root.dump(1).children.size(), 16);
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void enlargingAndRestoringTheMainQueryTwice()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        const QStringList names{u"txtPreCondition"_s, u"txtMainQuery"_s, u"PicMQResize"_s, u"PicPreResize"_s,
                                u"CmdBuildPre"_s,     u"CmdPreEditor"_s, u"CmdPreDoc"_s,   u"cmdBuildMQ"_s,
                                u"CmdMqEditor"_s,     u"CmdMQDoc"_s,     u"CmdOk"_s,       u"CmdCancel"_s};
        QMap<QString, QRect> before;
        for (const QString& n : names)
            before.insert(n, host.find(n)->geometry());
        QWidget* pre = host.find(u"txtPreCondition"_s);
        QWidget* mq = host.find(u"txtMainQuery"_s);
        QWidget* picMQ = host.find(u"PicMQResize"_s);
        QWidget* picPre = host.find(u"PicPreResize"_s);
        auto* label = host.find<QLabel>(u"lblPreCondition"_s);
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
                QVERIFY2(host.find(n)->geometry() == before.value(n), qPrintable(u"round %1: %2"_s.arg(round).arg(n)));
        }
    }

    void altShortcutsOnMappingObject_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("focus");
        const int alt = int(Qt::AltModifier);
        const QString sources = u"lstSourceTables"_s;
        const QString pre = u"txtPreCondition"_s;
        const QString mq = u"txtMainQuery"_s;
        const QString migrate = u"lstMigrateSource"_s;
        QTest::newRow("Alt+M from the source tables") << true << sources << int(Qt::Key_M) << alt << mq;
        QTest::newRow("Alt+P from the source tables") << true << sources << int(Qt::Key_P) << alt << pre;
        QTest::newRow("Alt+Q from the source tables") << true << sources << int(Qt::Key_Q) << alt << migrate;
        QTest::newRow("Alt+M from the precondition") << true << pre << int(Qt::Key_M) << alt << mq;
        QTest::newRow("Alt+Q from the precondition") << true << pre << int(Qt::Key_Q) << alt << migrate;
        QTest::newRow("Alt+P from the main query") << true << mq << int(Qt::Key_P) << alt << pre;
        QTest::newRow("Alt+M in read-only mode") << false << sources << int(Qt::Key_M) << alt << mq;
        QTest::newRow("Ctrl+Alt+M does nothing")
            << true << sources << int(Qt::Key_M) << int(Qt::ControlModifier | Qt::AltModifier) << sources;
        QTest::newRow("Shift+Alt+P does nothing")
            << true << sources << int(Qt::Key_P) << int(Qt::ShiftModifier | Qt::AltModifier) << sources;
        QTest::newRow("Ctrl+Alt+Q in the precondition does nothing")
            << true << pre << int(Qt::Key_Q) << int(Qt::ControlModifier | Qt::AltModifier) << pre;
    }
    void altShortcutsOnMappingObject()
    {
        QFETCH(bool, edit);
        QFETCH(QString, start);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, focus);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s, edit));
        host.clickInto(start);
        QVERIFY2(host.focusIn(start), qPrintable(focusName()));
        QVERIFY(keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers)));
        QTRY_VERIFY2(host.focusIn(focus), qPrintable(focusName()));
        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void altUOnMappingObjectLeavesTheDumpSelector()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.clickInto(u"lstSourceTables"_s);
        QVERIFY(host.focusIn(u"lstSourceTables"_s));
        QVERIFY(keyToFocus(Qt::Key_U, Qt::AltModifier));
        QTest::qWait(50);
        QVERIFY2(!host.focusIn(u"CmbDump"_s), qPrintable(focusName()));
        QCOMPARE(host.tabs()->currentIndex(), 0);
        QVERIFY(!host.find(u"FrmRules"_s)->isEnabled());
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void altShortcutsOnDefineDumps_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("focus");
        const int alt = int(Qt::AltModifier);
        const QString targets = u"lstTargetFields"_s;
        const QString dump = u"CmbDump"_s;
        QTest::newRow("Alt+U from the target fields") << targets << int(Qt::Key_U) << alt << dump;
        QTest::newRow("Alt+U from the rules grid") << u"RulesGrid"_s << int(Qt::Key_U) << alt << dump;
        QTest::newRow("Alt+U from the source fields") << u"lstSourceFields"_s << int(Qt::Key_U) << alt << dump;
        QTest::newRow("Alt+M does nothing") << targets << int(Qt::Key_M) << alt << targets;
        QTest::newRow("Alt+Q does nothing") << targets << int(Qt::Key_Q) << alt << targets;
        QTest::newRow("Ctrl+Alt+U does nothing")
            << targets << int(Qt::Key_U) << int(Qt::ControlModifier | Qt::AltModifier) << targets;
    }
    void altShortcutsOnDefineDumps()
    {
        QFETCH(QString, start);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, focus);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        host.clickInto(start);
        QVERIFY2(host.focusIn(start), qPrintable(focusName()));
        QVERIFY(keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers)));
        QTest::qWait(50);
        QTRY_VERIFY2(host.focusIn(focus), qPrintable(focusName()));
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }

    void altPOnDefineDumpsPressesMap()
    {
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.clickTab(1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QAbstractButton* map = host.button(u"CmdMap"_s);
        QVERIFY(map->isEnabled());
        QSignalSpy clicked(map, &QAbstractButton::clicked);
        host.clickInto(u"lstTargetFields"_s);
        QVERIFY(host.focusIn(u"lstTargetFields"_s));
        host.modals.expect(ModalAnswerer::press(QMessageBox::Ok)); // whatever Map may say
        QVERIFY(keyToFocus(Qt::Key_P, Qt::AltModifier));
        QTRY_COMPARE(clicked.count(), 1);
        QCOMPARE(host.tabs()->currentIndex(), 1);
        QVERIFY(!host.focusIn(u"txtPreCondition"_s));
    }

    void altShortcutsWithTheMainQueryEnlarged_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("focus");
        // Each of the first two rows tests the other box's visibility: with
        // the precondition hidden, the way into the main query is switched off.
        QTest::newRow("Alt+M is switched off") << int(Qt::Key_M) << u"lstSourceTables"_s;
        QTest::newRow("Alt+Q still works") << int(Qt::Key_Q) << u"lstMigrateSource"_s;
    }
    void altShortcutsWithTheMainQueryEnlarged()
    {
        QFETCH(int, key);
        QFETCH(QString, focus);
        Host host;
        QVERIFY(host.openSample(u"klmno001.xml"_s));
        host.click(u"PicMQResize"_s);
        QVERIFY(!host.find(u"txtPreCondition"_s)->isVisible());
        QVERIFY(host.find(u"txtMainQuery"_s)->isVisible());
        host.clickInto(u"lstSourceTables"_s);
        QVERIFY(host.focusIn(u"lstSourceTables"_s));
        QVERIFY(keyToFocus(Qt::Key(key), Qt::AltModifier));
        QTest::qWait(50);
        QTRY_VERIFY2(host.focusIn(focus), qPrintable(focusName()));
        QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    }
};

QTEST_MAIN(InteractionTest)
#include "tst_interaction.moc"
