// The migrate sources and the main query box: one query per migrate table,
// chosen by clicking its row, stored when the focus leaves the box or another
// row is clicked, its dump references collected (with their messages), the
// host's query builder and its answer through MainQuery, and the
// documentation dialog of a query.

#include "ScriptsHarness.h"

#include <QSignalSpy>

using namespace scripts_test;

namespace {

const QStringList kDefined{QStringLiteral("PQRST002"), QStringLiteral("UVWXY003")};
const QStringList kTwoTableRows{QStringLiteral("migrate pqrst002"), QString(),
                                QStringLiteral("migrate uvwxy003"), QString()};

// Two migrate tables, each with its query; the second query holds an entity
// of an entity, shown decoded.
QString document(const QString& firstQueryText = QString(), const QString& precondition = QString())
{
    return mappingObject(
        QStringLiteral("<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"\">") +
            (precondition.isNull() ? QStringLiteral("migrate pqrst002\nmigrate uvwxy003") : precondition) +
            QStringLiteral("</PREC><QUERY ST=\"pqrst002\" TEXT=\"") + firstQueryText +
            QStringLiteral("\">select pqrst002.*</QUERY>"
                           "<QUERY ST=\"uvwxy003\" TEXT=\"\">select uvwxy003.*\nwhere a &amp;lt; b</QUERY>"),
        kDefined);
}

// The QUERY text of the klmno001 sample for a table, as the XML holds it.
QString sampleQuery(const QString& table)
{
    return parseXml(readExample(QStringLiteral("klmno001.xml")))
        .child(QStringLiteral("QUERY"), QStringLiteral("ST"), table)
        .text;
}

QStringList dumpNumbers(const XmlElement& root)
{
    QStringList numbers;
    for (const XmlElement& dump : root.all(QStringLiteral("DUMP")))
        numbers.append(dump.attribute(QStringLiteral("No")));
    return numbers;
}

} // namespace

class MainQueryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void migrateSourceRows_data();
    void migrateSourceRows();
    void rowClickStoresThenShows();
    void storedWhenTheFocusLeaves_data();
    void storedWhenTheFocusLeaves();
    void dumpKeywordMessages_data();
    void dumpKeywordMessages();
    void queryBuilder_data();
    void queryBuilder();
    void preconditionStoreKeepsTheShownTable_data();
    void preconditionStoreKeepsTheShownTable();
    void documentationDialog_data();
    void documentationDialog();
    void documentationWithoutQuery();
    void documentationButtonInViewMode_data();
    void documentationButtonInViewMode();
    void lock_data();
    void lock();
};

// One "migrate <table>" row and one empty row per migrate table; the box
// shows the first table's query, decoded.
void MainQueryTest::migrateSourceRows_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("shown");

    QTest::newRow("sample klmno001") << readExample(QStringLiteral("klmno001.xml")) << kTwoTableRows
                                     << sampleQuery(QStringLiteral("pqrst002"));
    QTest::newRow("two tables") << document() << kTwoTableRows << QStringLiteral("select pqrst002.*");
    QTest::newRow("second table shown first")
        << document(QString(), QStringLiteral("migrate uvwxy003\nmigrate pqrst002"))
        << QStringList{QStringLiteral("migrate uvwxy003"), QString(), QStringLiteral("migrate pqrst002"),
                       QString()}
        << QStringLiteral("select uvwxy003.*\nwhere a < b");
    QTest::newRow("migrate table without a query")
        << mappingObject(QStringLiteral("<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"), kDefined)
        << QStringList{QStringLiteral("migrate pqrst002"), QString()} << QString();
    QTest::newRow("no migrate table")
        << document(QString(), QStringLiteral("x = 1")) << QStringList() << QString();
}

void MainQueryTest::migrateSourceRows()
{
    QFETCH(QString, xml);
    QFETCH(QStringList, rows);
    QFETCH(QString, shown);

    Host host;
    QVERIFY(host.show(xml, true));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), rows);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), shown);
    // The host reads the box's text with the CR LF line breaks of every box.
    QCOMPARE(host.control->property("MainQuery").toString(),
             QString(shown).replace(u'\n', QStringLiteral("\r\n")));
}

// A click on a table's row first stores the box's text under the table the
// box belonged to, then shows the clicked table's query; empty rows are
// ignored.
void MainQueryTest::rowClickStoresThenShows()
{
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.replaceText(QStringLiteral("txtMainQuery"), QStringLiteral("select 1"));
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 1"));

    host.clickRow(QStringLiteral("lstMigrateSource"), 2);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select uvwxy003.*\nwhere a < b"));

    // The focus is in the list now: the next click stores by itself. What it
    // stores is the box's text as shown, so the entity of an entity is gone.
    QVERIFY(host.focusIn(QStringLiteral("lstMigrateSource")));
    host.clickRow(QStringLiteral("lstMigrateSource"), 0);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 1"));

    host.clickRow(QStringLiteral("lstMigrateSource"), 1); // the empty row
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 1"));
    host.clickRow(QStringLiteral("lstMigrateSource"), 3); // the empty row
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 1"));

    const XmlElement root = host.read();
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002")).text,
             QStringLiteral("select 1"));
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003")).text,
             QStringLiteral("select uvwxy003.*\nwhere a < b"));
    QCOMPARE(root.all(QStringLiteral("QUERY")).size(), 2);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// Leaving the box stores its text for its table and collects the dump
// references again; an emptied box stores nothing.
void MainQueryTest::storedWhenTheFocusLeaves_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("emptyAfterwards"); // empty the box again without leaving it
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QStringList>("dumps");

    QTest::newRow("a query referencing a dump")
        << QStringLiteral("select *\ndump 7 Orders") << true << QStringLiteral("select *\ndump 7 Orders")
        << QStringList{QStringLiteral("7")};
    QTest::newRow("emptied query: QUERY as it was")
        << QString() << false << QStringLiteral("select pqrst002.*") << QStringList();
}

void MainQueryTest::storedWhenTheFocusLeaves()
{
    QFETCH(QString, typed);
    QFETCH(bool, emptyAfterwards);
    QFETCH(QString, stored);
    QFETCH(QStringList, dumps);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.replaceText(QStringLiteral("txtMainQuery"), typed);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), typed);
    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QVERIFY(host.focusIn(QStringLiteral("lstSourceTables")));

    if (emptyAfterwards) {
        // Reading the document stores the box too, but an empty box stores
        // nothing: what the document holds now was stored on leaving.
        host.replaceText(QStringLiteral("txtMainQuery"), QString());
        QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QString());
    }
    const XmlElement root = host.read();
    QCOMPARE(lf(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002")).text),
             stored);
    QCOMPARE(dumpNumbers(root), dumps);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// The dump references are collected when the box is left, so a "dump"
// keyword that ends the text is reported then: critical at the very start of
// the text, information after a separator, nothing at the tail of a word.
void MainQueryTest::dumpKeywordMessages_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QList<int>>("icons"); // one QMessageBox::Icon per message

    QTest::newRow("dump ends the text after a line break")
        << QStringLiteral("select *\ndump") << QList<int>{int(QMessageBox::Information)};
    QTest::newRow("dump and one blank end the text")
        << QStringLiteral("select * dump ") << QList<int>{int(QMessageBox::Information)};
    QTest::newRow("dump is the whole text")
        << QStringLiteral("dump") << QList<int>{int(QMessageBox::Critical)};
    QTest::newRow("dump with its number") << QStringLiteral("select *\ndump 12") << QList<int>();
    QTest::newRow("tail of a longer word") << QStringLiteral("select *\nxdump") << QList<int>();
}

void MainQueryTest::dumpKeywordMessages()
{
    QFETCH(QString, typed);
    QFETCH(QList<int>, icons);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.replaceText(QStringLiteral("txtMainQuery"), typed);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), typed);
    QVERIFY(boxes.seen().isEmpty());

    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QCOMPARE(boxes.seen().size(), icons.size());
    for (int i = 0; i < icons.size(); ++i) {
        const SeenBox& box = boxes.seen().at(i);
        QCOMPARE(box.kind, QStringLiteral("message"));
        QCOMPARE(box.text, QStringLiteral("Dump Keyword Must be Followed by a Dump Number"));
        QCOMPARE(int(box.icon), icons.at(i));
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    }
}

// "Build" hands the box's text (not the stored one) and the box's table to
// the host's query builder; the host answers through MainQuery.
void MainQueryTest::queryBuilder_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("precondition");
    QTest::addColumn<int>("row");     // the row of lstMigrateSource clicked first; -1 none
    QTest::addColumn<QString>("how"); // click | access key
    QTest::addColumn<int>("raised");
    QTest::addColumn<QString>("table");

    const QString two = QStringLiteral("migrate pqrst002\nmigrate uvwxy003");
    const QString pqrst = QStringLiteral("pqrst002");
    QTest::newRow("click") << true << two << -1 << QStringLiteral("click") << 1 << pqrst;
    QTest::newRow("access key while typing")
        << true << two << -1 << QStringLiteral("access key") << 1 << pqrst;
    QTest::newRow("the table of the box, after a row click")
        << true << two << 2 << QStringLiteral("click") << 1 << QStringLiteral("uvwxy003");
    QTest::newRow("no migrate table: nothing raised")
        << true << QStringLiteral("x = 1") << -1 << QStringLiteral("click") << 0 << QString();
    QTest::newRow("read-only: the button is disabled")
        << false << two << -1 << QStringLiteral("click") << 0 << QString();
}

void MainQueryTest::queryBuilder()
{
    QFETCH(bool, edit);
    QFETCH(QString, precondition);
    QFETCH(int, row);
    QFETCH(QString, how);
    QFETCH(int, raised);
    QFETCH(QString, table);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(QString(), precondition), edit));
    ctlFieldbridge* control = host.control.get();
    QSignalSpy spy(control, SIGNAL(ShowQueryBuilderPopUp(QString, QString)));
    QVERIFY(spy.isValid());
    // The host's builder answers at once, with the CR LF line breaks of a box.
    const QString built = QStringLiteral("select built.*\nfrom pqrst002");
    QObject::connect(control, &ctlFieldbridge::ShowQueryBuilderPopUp, control,
                     [control, built](const QString&, const QString&) {
                         control->setProperty("MainQuery",
                                              QString(built).replace(u'\n', QStringLiteral("\r\n")));
                     });

    if (row >= 0) host.clickRow(QStringLiteral("lstMigrateSource"), row);
    if (raised) {
        host.replaceText(QStringLiteral("txtMainQuery"), QStringLiteral("select 2"));
        QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 2"));
    }
    if (how == QLatin1String("click")) {
        host.click(QStringLiteral("cmdBuildMQ"));
    } else {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_L, Qt::AltModifier);
        QTRY_COMPARE(spy.count(), 1);
        QVERIFY(host.focusIn(QStringLiteral("txtMainQuery")));
    }
    QTest::qWait(20);
    QCOMPARE(spy.count(), raised);
    if (!raised) return;
    QCOMPARE(spy.first().at(0).toString(), QStringLiteral("select 2"));
    QCOMPARE(spy.first().at(1).toString(), table);

    // The answer: put into the box as it is, stored under the box's table.
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), built);
    QCOMPARE(host.control->property("MainQuery").toString(),
             QString(built).replace(u'\n', QStringLiteral("\r\n")));
    QVERIFY(host.button(QStringLiteral("cmdBuildMQ"))->isEnabled());
    const XmlElement root = host.read();
    QCOMPARE(lf(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), table).text), built);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// Storing the precondition keeps the box on its table while that is still a
// migrate table, and shows the first migrate table's query otherwise.
void MainQueryTest::preconditionStoreKeepsTheShownTable_data()
{
    QTest::addColumn<QString>("precondition");
    QTest::addColumn<QString>("shown");

    QTest::newRow("still migrated") << QStringLiteral("x = 1\nmigrate pqrst002\nmigrate uvwxy003")
                                    << QStringLiteral("select 2");
    QTest::newRow("no longer migrated")
        << QStringLiteral("migrate pqrst002") << QStringLiteral("select pqrst002.*");
}

void MainQueryTest::preconditionStoreKeepsTheShownTable()
{
    QFETCH(QString, precondition);
    QFETCH(QString, shown);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.clickRow(QStringLiteral("lstMigrateSource"), 2);
    host.replaceText(QStringLiteral("txtMainQuery"), QStringLiteral("select 2"));
    host.replaceText(QStringLiteral("txtPreCondition"), precondition); // leaving the main query stores it
    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), shown);

    host.replaceText(QStringLiteral("txtMainQuery"), QStringLiteral("select 3"));
    const XmlElement root = host.read();
    const bool stillMigrated = precondition.contains(QStringLiteral("uvwxy003"));
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003")).text,
             stillMigrated ? QStringLiteral("select 3") : QString());
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002")).text,
             stillMigrated ? QStringLiteral("select pqrst002.*") : QStringLiteral("select 3"));
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// "Text" opens the documentation dialog on the TEXT attribute of the box's
// QUERY, decoded, titled with the mapping object's table name; what the
// dialog hands back is written into TEXT.
void MainQueryTest::documentationDialog_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("textAttribute"); // as written in the XML
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("stored");

    QTest::newRow("OK with a new text") << true << QString() << true << QStringLiteral("Reads the customers")
                                        << QString() << QStringLiteral("Reads the customers");
    QTest::newRow("Cancel keeps the text")
        << true << QStringLiteral("Old note") << false << QStringLiteral("zzz") << QStringLiteral("Old note")
        << QStringLiteral("Old note");
    QTest::newRow("entities decoded for display")
        << true << QStringLiteral("a &amp;lt; b") << true << QString() << QStringLiteral("a < b")
        << QStringLiteral("a < b");
    QTest::newRow("read-only: locked, OK disabled")
        << false << QStringLiteral("Old note") << true << QString() << QStringLiteral("Old note")
        << QStringLiteral("Old note");
}

void MainQueryTest::documentationDialog()
{
    QFETCH(bool, edit);
    QFETCH(QString, textAttribute);
    QFETCH(bool, ok);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, stored);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(textAttribute), edit));
    QVERIFY(host.button(QStringLiteral("CmdMQDoc"))->isEnabled());
    boxes.queue(BoxAnswerer::documentation(ok, typed, !typed.isEmpty()));
    host.click(QStringLiteral("CmdMQDoc"));

    QCOMPARE(boxes.seen().size(), 1);
    const SeenBox dialog = boxes.seen().first();
    QCOMPARE(dialog.kind, QStringLiteral("FrmTxtDoc"));
    QCOMPARE(dialog.title, QStringLiteral("Text for Migrate:klmno001"));
    QCOMPARE(dialog.text, shown);
    QCOMPARE(dialog.textReadOnly, !edit);
    QCOMPARE(dialog.okEnabled, edit);

    const XmlElement root = host.read();
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("pqrst002"))
                 .attribute(QStringLiteral("TEXT")),
             stored);
    QCOMPARE(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003"))
                 .attribute(QStringLiteral("TEXT")),
             QString());
}

// Without a QUERY element for the box's table the button does nothing.
void MainQueryTest::documentationWithoutQuery()
{
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(
        mappingObject(QStringLiteral("<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"), kDefined),
        true));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")).size(), 2);
    host.click(QStringLiteral("CmdMQDoc"));
    QTest::qWait(100);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
    QVERIFY(host.read().child(QStringLiteral("QUERY")).isNull());
}

// In view mode "Text" is enabled exactly when the shown query has a
// documentation text; edit mode leaves it enabled.
void MainQueryTest::documentationButtonInViewMode_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("xml");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("view mode, with a text") << false << document(QStringLiteral("Note")) << true;
    QTest::newRow("view mode, without a text") << false << document() << false;
    QTest::newRow("view mode, without a QUERY")
        << false
        << mappingObject(QStringLiteral("<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"), kDefined)
        << false;
    QTest::newRow("edit mode, without a text") << true << document() << true;
}

void MainQueryTest::documentationButtonInViewMode()
{
    QFETCH(bool, edit);
    QFETCH(QString, xml);
    QFETCH(bool, enabled);

    Host host;
    QVERIFY(host.show(xml, edit));
    QCOMPARE(host.button(QStringLiteral("CmdMQDoc"))->isEnabled(), enabled);
}

// The box is writable only in edit mode and while there are migrate sources.
void MainQueryTest::lock_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("precondition");
    QTest::addColumn<bool>("readOnly");

    QTest::newRow("edit mode with migrate sources")
        << true << QStringLiteral("migrate pqrst002\nmigrate uvwxy003") << false;
    QTest::newRow("edit mode without migrate sources") << true << QStringLiteral("x = 1") << true;
    QTest::newRow("read-only mode") << false << QStringLiteral("migrate pqrst002\nmigrate uvwxy003") << true;
}

void MainQueryTest::lock()
{
    QFETCH(bool, edit);
    QFETCH(QString, precondition);
    QFETCH(bool, readOnly);

    Host host;
    QVERIFY(host.show(document(QString(), precondition), edit));
    QCOMPARE(host.readOnly(QStringLiteral("txtMainQuery")), readOnly);
    const QString before = host.text(QStringLiteral("txtMainQuery"));
    host.clickInto(QStringLiteral("txtMainQuery"));
    QTest::keyClick(host.editor(QStringLiteral("txtMainQuery")), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(host.editor(QStringLiteral("txtMainQuery")), QStringLiteral(" x"));
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), readOnly ? before : before + QStringLiteral(" x"));
}

QTEST_MAIN(MainQueryTest)
#include "tst_mainquery.moc"
