// The control under a person's hands: typing into the precondition and
// leaving it, the messages that storing raises, the layout at any size, and
// the Alt shortcuts.

#include "ControlHarness.h"

#include <QMap>
#include <QSignalSpy>

using namespace fbtest;

namespace {

// Pixels for a length in twips on this widget's screen.
double px(int twips, const QWidget* w)
{
    return twips * w->logicalDpiX() / 1440.0;
}

bool near(double actual, double expected)
{
    return qAbs(actual - expected) <= 1.0;
}

QString describeNear(const char* what, double actual, double expected)
{
    return QStringLiteral("%1: %2 px, expected %3 px").arg(QString::fromLatin1(what)).arg(actual).arg(expected);
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
        if (!near(actual, expected))
            errors.append(describeNear(what, actual, expected));
    };
    ctlFieldbridge* ctl = host.ctl;
    QTabWidget* tabs = host.tabs();
    if (tabs->geometry() != QRect(0, 0, ctl->width(), ctl->height()))
        errors.append(QStringLiteral("MainTab does not fill the control"));

    const bool mapping = tabs->currentIndex() == 0;
    QWidget* frame = host.find(mapping ? QStringLiteral("FrmCondition") : QStringLiteral("FrmRules"));
    expectNear("frame left in MainTab", leftIn(frame, tabs), px(45, ctl));
    expectNear("frame width", frame->width(), tabs->width() - px(95, ctl));

    if (mapping) {
        QWidget* list = host.find(QStringLiteral("lstSourceTables"));
        QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
        QWidget* mq = host.find(QStringLiteral("txtMainQuery"));
        const int listRight = leftIn(list, frame) + list->width();
        const int preLeft = leftIn(pre, frame);
        expectNear("txtPreCondition left", preLeft, listRight + px(105, ctl));
        expectNear("txtPreCondition right", preLeft + pre->width(), frame->width() - px(120, ctl));
        expectNear("txtMainQuery left", leftIn(mq, frame), preLeft);
        expectNear("txtMainQuery width", mq->width(), pre->width());
    } else {
        QWidget* source = host.find(QStringLiteral("lstSourceFields"));
        QWidget* target = host.find(QStringLiteral("lstTargetFields"));
        QWidget* details = host.find(QStringLiteral("Details"));
        const double half = (frame->width() - px(480, ctl)) / 2.0;
        expectNear("lstSourceFields width", source->width(), half);
        expectNear("lstTargetFields width", target->width(), half);
        expectNear("gap between the field lists",
                   leftIn(target, frame) - (leftIn(source, frame) + source->width()), px(240, ctl));
        expectNear("Details left", leftIn(details, frame), px(120, ctl));
    }
    return errors.join(QStringLiteral("; "));
}

// Types text into the focused editor; "\n" is the Return key.
void typeLines(const QString& text)
{
    const QStringList parts = text.split(u'\n');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            keyToFocus(Qt::Key_Return);
        if (!parts[i].isEmpty())
            QTest::keyClicks(QApplication::focusWidget(), parts[i]);
    }
}

} // namespace

class InteractionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void typedPreconditionIsStoredOnLeaving_data();
    void typedPreconditionIsStoredOnLeaving();
    void storingThePreconditionWarnsOnce_data();
    void storingThePreconditionWarnsOnce();

    void layoutFollowsTheSize_data();
    void layoutFollowsTheSize();
    void extremeSizes();
    void enlargingAndRestoringTheMainQueryTwice();

    void altShortcutsOnMappingObject_data();
    void altShortcutsOnMappingObject();
    void altUOnMappingObjectLeavesTheDumpSelector();
    void altShortcutsOnDefineDumps_data();
    void altShortcutsOnDefineDumps();
    void altPOnDefineDumpsPressesMap();
    void altShortcutsWithTheMainQueryEnlarged_data();
    void altShortcutsWithTheMainQueryEnlarged();
};

void InteractionTest::initTestCase()
{
    installMessageFilter();
    QVERIFY2(!readSample(QStringLiteral("klmno001.xml")).isEmpty(), "FIELDBRIDGE_EXAMPLES");
}

// ---------------------------------------------------------------------------
// Precondition

void InteractionTest::typedPreconditionIsStoredOnLeaving_data()
{
    QTest::addColumn<QString>("typed"); // "\n" is the Return key
    QTest::addColumn<QStringList>("migrateRows");
    QTest::addColumn<QStringList>("queries"); // ST of the QUERY elements handed back
    QTest::addColumn<QStringList>("dumps");   // No of the DUMP elements handed back
    QTest::addColumn<QString>("sourceTables");
    QTest::addColumn<bool>("defineDumpsEnabled");

    const QString sources = QStringLiteral("pqrst002,uvwxy003,abcde004");
    QTest::newRow("one migrate source")
        << QStringLiteral("migrate pqrst002")
        << QStringList{QStringLiteral("migrate pqrst002"), QString()} << QStringList{QStringLiteral("pqrst002")}
        << QStringList{QStringLiteral("3")} << sources << true;
    QTest::newRow("two lines, keyword in capitals")
        << QStringLiteral("MIGRATE abcde004\nmigrate pqrst002")
        << QStringList{QStringLiteral("migrate abcde004"), QString(), QStringLiteral("migrate pqrst002"), QString()}
        << QStringList{QStringLiteral("pqrst002")} << QStringList{QStringLiteral("3")} << sources << true;
    QTest::newRow("dump referenced by the precondition")
        << QStringLiteral("migrate uvwxy003 dump 2 Addresses")
        << QStringList{QStringLiteral("migrate uvwxy003"), QString()} << QStringList{QStringLiteral("uvwxy003")}
        << QStringList{QStringLiteral("2")} << sources << true;
    QTest::newRow("a new table becomes a source table")
        << QStringLiteral("migrate zzzzz009")
        << QStringList{QStringLiteral("migrate zzzzz009"), QString()} << QStringList{} << QStringList{}
        << sources + QStringLiteral(",zzzzz009") << false;
}

void InteractionTest::typedPreconditionIsStoredOnLeaving()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, migrateRows);
    QFETCH(QStringList, queries);
    QFETCH(QStringList, dumps);
    QFETCH(QString, sourceTables);
    QFETCH(bool, defineDumpsEnabled);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
    auto* sourceList = host.find<QAbstractItemView>(QStringLiteral("lstSourceTables"));
    auto* migrateList = host.find<QAbstractItemView>(QStringLiteral("lstMigrateSource"));

    clickInto(pre);
    QVERIFY2(isWithin(QApplication::focusWidget(), pre), qPrintable(focusName()));
    keyToFocus(Qt::Key_A, Qt::ControlModifier); // select all, then type over it
    typeLines(typed);
    QCOMPARE(plainText(pre), typed);
    // Nothing is stored while the editor keeps the focus.
    QCOMPARE(migrateList->model()->rowCount(), 4);

    clickInto(sourceList);
    QVERIFY2(isWithin(QApplication::focusWidget(), sourceList), qPrintable(focusName()));

    QCOMPARE(columnTexts(migrateList), migrateRows);
    QCOMPARE(host.ctl->property("SourceTables").toString(), sourceTables);
    QCOMPARE(columnTexts(sourceList), sourceTables.split(u','));
    QCOMPARE(host.tabs()->isTabEnabled(1), defineDumpsEnabled);

    const XmlElement root = parseXml(host.readXml());
    QVERIFY(!root.isNull());
    QCOMPARE(lines(root.first(QStringLiteral("PREC")).text), typed);
    QStringList queryTables;
    for (const XmlElement& q : root.all(QStringLiteral("QUERY")))
        queryTables.append(q.attribute(QStringLiteral("ST")));
    QCOMPARE(queryTables, queries);
    QStringList dumpNumbers;
    for (const XmlElement& d : root.all(QStringLiteral("DUMP")))
        dumpNumbers.append(d.attribute(QStringLiteral("No")));
    QCOMPARE(dumpNumbers, dumps);
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::storingThePreconditionWarnsOnce_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("focusBack");

    QTest::newRow("name too short") << QStringLiteral("migrate KLM") << QStringLiteral("Table Name not Valid") << true;
    QTest::newRow("digit among the first five")
        << QStringLiteral("migrate 1LMNO001") << QStringLiteral("Invalid table name '1LMNO001'") << true;
    QTest::newRow("letters among the last three")
        << QStringLiteral("migrate KLMNOXYZ") << QStringLiteral("Invalid table name 'KLMNOXYZ'") << true;
    QTest::newRow("keyword at the end")
        << QStringLiteral("migrate") << QStringLiteral("Migrate Keyword Has to be followed by a TableName") << false;
    QTest::newRow("keyword and one blank at the end")
        << QStringLiteral("migrate ") << QStringLiteral("Migrate Keyword Has to be followed by a TableName") << false;
}

void InteractionTest::storingThePreconditionWarnsOnce()
{
    QFETCH(QString, typed);
    QFETCH(QString, message);
    QFETCH(bool, focusBack);

    ModalAnswerer answerer;
    answerer.expect(ModalAnswerer::press(QMessageBox::Ok));
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
    auto* sourceList = host.find<QAbstractItemView>(QStringLiteral("lstSourceTables"));
    auto* migrateList = host.find<QAbstractItemView>(QStringLiteral("lstMigrateSource"));

    clickInto(pre);
    QVERIFY2(isWithin(QApplication::focusWidget(), pre), qPrintable(focusName()));
    keyToFocus(Qt::Key_A, Qt::ControlModifier);
    typeLines(typed);
    QCOMPARE(plainText(pre), typed);

    clickInto(sourceList);
    QTRY_COMPARE(answerer.count(), 1);
    const ModalRecord box = answerer.records().first();
    QCOMPARE(box.text, message);
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QTRY_VERIFY(!QApplication::activeModalWidget());

    // The text was stored before it was checked: no migrate source is left.
    QCOMPARE(migrateList->model()->rowCount(), 0);

    if (focusBack)
        QVERIFY2(isWithin(host.window->focusWidget(), pre),
                 qPrintable(host.window->focusWidget() ? host.window->focusWidget()->objectName()
                                                       : QStringLiteral("(none)")));
    QVERIFY(host.activate());
    if (focusBack)
        QTRY_VERIFY2(isWithin(QApplication::focusWidget(), pre), qPrintable(focusName()));
    QTest::qWait(100);
    QVERIFY2(answerer.count() == 1, qPrintable(answerer.describe()));
}

// ---------------------------------------------------------------------------
// Layout

void InteractionTest::layoutFollowsTheSize_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("as created") << QSize(960, 660);
    QTest::newRow("wide") << QSize(1600, 1000);
    QTest::newRow("narrow") << QSize(640, 480);
    QTest::newRow("tall") << QSize(760, 1200);
}

void InteractionTest::layoutFollowsTheSize()
{
    QFETCH(QSize, size);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    host.window->resize(size + QSize(40, 40));
    QVERIFY(host.activate());

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
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::extremeSizes()
{
    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    const QSize normal(960, 660);
    host.ctl->resize(normal);
    QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
    QWidget* sourceFields = host.find(QStringLiteral("lstSourceFields"));
    QWidget* targetFields = host.find(QStringLiteral("lstTargetFields"));
    const int preWidth = pre->width();
    QVERIFY(preWidth > 0);

    // Far below the fixed margins: widths that would be negative are refused
    // and the controls keep their previous ones.
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
    QCOMPARE(host.find<QAbstractItemView>(QStringLiteral("RulesGrid"))->model()->rowCount(), 25);
    const XmlElement root = parseXml(host.readXml());
    QCOMPARE(root.name, QStringLiteral("klmno001"));
    QCOMPARE(root.with(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("1")).children.size(), 16);
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::enlargingAndRestoringTheMainQueryTwice()
{
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    const QStringList names{QStringLiteral("txtPreCondition"), QStringLiteral("txtMainQuery"),
                            QStringLiteral("PicMQResize"),     QStringLiteral("PicPreResize"),
                            QStringLiteral("CmdBuildPre"),     QStringLiteral("CmdPreEditor"),
                            QStringLiteral("CmdPreDoc"),       QStringLiteral("cmdBuildMQ"),
                            QStringLiteral("CmdMqEditor"),     QStringLiteral("CmdMQDoc"),
                            QStringLiteral("CmdOk"),           QStringLiteral("CmdCancel")};
    QMap<QString, QRect> before;
    for (const QString& n : names) {
        QWidget* w = host.find(n);
        QVERIFY2(w, qPrintable(n));
        before.insert(n, w->geometry());
    }
    QWidget* pre = host.find(QStringLiteral("txtPreCondition"));
    QWidget* mq = host.find(QStringLiteral("txtMainQuery"));
    auto* picMQ = host.find<QAbstractButton>(QStringLiteral("PicMQResize"));
    auto* picPre = host.find<QAbstractButton>(QStringLiteral("PicPreResize"));
    auto* label = host.find<QLabel>(QStringLiteral("lblPreCondition"));
    QVERIFY(picMQ && picPre && label);
    QVERIFY(pre->isVisible());
    QVERIFY(picPre->isVisible());

    for (int round = 1; round <= 2; ++round) {
        QTest::mouseClick(picMQ, Qt::LeftButton);
        // Enlarged: the main query takes the precondition's place.
        QVERIFY(!pre->isVisible());
        QVERIFY(!picPre->isVisible());
        QVERIFY(!picPre->isEnabled());
        QCOMPARE(mq->y(), before.value(QStringLiteral("txtPreCondition")).y());
        QVERIFY(mq->height() > before.value(QStringLiteral("txtMainQuery")).height());
        QVERIFY(mq->geometry().bottom() < before.value(QStringLiteral("CmdOk")).top());
        QCOMPARE(picMQ->geometry(), before.value(QStringLiteral("PicPreResize")));
        QCOMPARE(label->text(), QStringLiteral("Main Query"));

        QTest::mouseClick(picMQ, Qt::LeftButton);
        // Restored: everything back where it was.
        QVERIFY(pre->isVisible());
        QVERIFY(picPre->isVisible());
        QVERIFY(picPre->isEnabled());
        QCOMPARE(label->text(), QStringLiteral("PreCondition"));
        for (const QString& n : names)
            QVERIFY2(host.find(n)->geometry() == before.value(n), qPrintable(QStringLiteral("round %1: %2").arg(round).arg(n)));
    }
}

// ---------------------------------------------------------------------------
// Alt shortcuts

void InteractionTest::altShortcutsOnMappingObject_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("focus");

    const int alt = int(Qt::AltModifier);
    const QString sources = QStringLiteral("lstSourceTables");
    const QString pre = QStringLiteral("txtPreCondition");
    const QString mq = QStringLiteral("txtMainQuery");
    const QString migrate = QStringLiteral("lstMigrateSource");
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

void InteractionTest::altShortcutsOnMappingObject()
{
    QFETCH(bool, edit);
    QFETCH(QString, start);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, focus);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), edit));
    QVERIFY(host.activate());
    QWidget* from = host.find(start);
    QWidget* to = host.find(focus);
    QVERIFY(from && to);
    clickInto(from);
    QVERIFY2(isWithin(QApplication::focusWidget(), from), qPrintable(focusName()));

    QVERIFY(keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers)));
    QTRY_VERIFY2(isWithin(QApplication::focusWidget(), to), qPrintable(focusName()));
    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::altUOnMappingObjectLeavesTheDumpSelector()
{
    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    QWidget* sources = host.find(QStringLiteral("lstSourceTables"));
    clickInto(sources);
    QVERIFY(isWithin(QApplication::focusWidget(), sources));

    QVERIFY(keyToFocus(Qt::Key_U, Qt::AltModifier));
    QTest::qWait(50);
    QVERIFY2(!isWithin(QApplication::focusWidget(), host.find(QStringLiteral("CmbDump"))), qPrintable(focusName()));
    QCOMPARE(host.tabs()->currentIndex(), 0);
    QVERIFY(!host.find(QStringLiteral("FrmRules"))->isEnabled());
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::altShortcutsOnDefineDumps_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("focus");

    const int alt = int(Qt::AltModifier);
    const QString targets = QStringLiteral("lstTargetFields");
    const QString grid = QStringLiteral("RulesGrid");
    const QString dump = QStringLiteral("CmbDump");
    QTest::newRow("Alt+U from the target fields") << targets << int(Qt::Key_U) << alt << dump;
    QTest::newRow("Alt+U from the rules grid") << grid << int(Qt::Key_U) << alt << dump;
    QTest::newRow("Alt+U from the source fields") << QStringLiteral("lstSourceFields") << int(Qt::Key_U) << alt
                                                  << dump;
    QTest::newRow("Alt+M does nothing") << targets << int(Qt::Key_M) << alt << targets;
    QTest::newRow("Alt+Q does nothing") << targets << int(Qt::Key_Q) << alt << targets;
    QTest::newRow("Ctrl+Alt+U does nothing")
        << targets << int(Qt::Key_U) << int(Qt::ControlModifier | Qt::AltModifier) << targets;
}

void InteractionTest::altShortcutsOnDefineDumps()
{
    QFETCH(QString, start);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, focus);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    host.clickTab(1);
    QCOMPARE(host.tabs()->currentIndex(), 1);
    QWidget* from = host.find(start);
    QWidget* to = host.find(focus);
    QVERIFY(from && to);
    clickInto(from);
    QVERIFY2(isWithin(QApplication::focusWidget(), from), qPrintable(focusName()));

    QVERIFY(keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers)));
    QTest::qWait(50);
    QTRY_VERIFY2(isWithin(QApplication::focusWidget(), to), qPrintable(focusName()));
    QCOMPARE(host.tabs()->currentIndex(), 1);
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

void InteractionTest::altPOnDefineDumpsPressesMap()
{
    ModalAnswerer answerer; // whatever Map may say is answered and ignored here
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    host.clickTab(1);
    QCOMPARE(host.tabs()->currentIndex(), 1);
    auto* map = host.find<QAbstractButton>(QStringLiteral("CmdMap"));
    QVERIFY(map);
    QVERIFY(map->isEnabled());
    QSignalSpy clicked(map, &QAbstractButton::clicked);
    QWidget* targets = host.find(QStringLiteral("lstTargetFields"));
    clickInto(targets);
    QVERIFY(isWithin(QApplication::focusWidget(), targets));

    QVERIFY(keyToFocus(Qt::Key_P, Qt::AltModifier));
    QTRY_COMPARE(clicked.count(), 1);
    QCOMPARE(host.tabs()->currentIndex(), 1);
    QVERIFY(!isWithin(QApplication::focusWidget(), host.find(QStringLiteral("txtPreCondition"))));
}

void InteractionTest::altShortcutsWithTheMainQueryEnlarged_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("focus");

    // Each of the first two rows tests the other box's visibility: with the
    // precondition hidden, the way into the main query is switched off.
    QTest::newRow("Alt+M is switched off") << int(Qt::Key_M) << QStringLiteral("lstSourceTables");
    QTest::newRow("Alt+Q still works") << int(Qt::Key_Q) << QStringLiteral("lstMigrateSource");
}

void InteractionTest::altShortcutsWithTheMainQueryEnlarged()
{
    QFETCH(int, key);
    QFETCH(QString, focus);

    ModalAnswerer answerer;
    Host host;
    QVERIFY(host.loadSample(QStringLiteral("klmno001.xml"), QStringLiteral("klmno001"), true));
    QVERIFY(host.activate());
    QTest::mouseClick(host.find(QStringLiteral("PicMQResize")), Qt::LeftButton);
    QVERIFY(!host.find(QStringLiteral("txtPreCondition"))->isVisible());
    QVERIFY(host.find(QStringLiteral("txtMainQuery"))->isVisible());

    QWidget* sources = host.find(QStringLiteral("lstSourceTables"));
    clickInto(sources);
    QVERIFY(isWithin(QApplication::focusWidget(), sources));
    QVERIFY(keyToFocus(Qt::Key(key), Qt::AltModifier));
    QTest::qWait(50);
    QTRY_VERIFY2(isWithin(QApplication::focusWidget(), host.find(focus)), qPrintable(focusName()));
    QVERIFY2(answerer.count() == 0, qPrintable(answerer.describe()));
}

QTEST_MAIN(InteractionTest)
#include "tst_interaction.moc"
