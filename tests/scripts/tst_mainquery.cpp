// The migrate sources and the main query box: one query per migrate table,
// chosen by clicking its row, stored when the focus leaves the box or another
// row is clicked, its dump references collected (with their messages), the
// host's query builder and its answer through MainQuery, and the
// documentation dialog of a query.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

namespace {

const QStringList kDefined{u"PQRST002"_s, u"UVWXY003"_s};
const QStringList kTwoTableRows{u"migrate pqrst002"_s, QString(),
                                u"migrate uvwxy003"_s, QString()};

// Two migrate tables, each with its query; the second query holds an entity
// of an entity, shown decoded.
QString document(const QString& firstQueryText = QString(), const QString& precondition = QString())
{
    return klmnoDocument(
        u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"\">"_s +
            (precondition.isNull() ? u"migrate pqrst002\nmigrate uvwxy003"_s : precondition) +
            u"</PREC><QUERY ST=\"pqrst002\" TEXT=\""_s + firstQueryText +
            u"\">select pqrst002.*</QUERY>"
                           "<QUERY ST=\"uvwxy003\" TEXT=\"\">select uvwxy003.*\nwhere a &amp;lt; b</QUERY>"_s,
        kDefined);
}

// The QUERY text of the klmno001 sample for a table, as the XML holds it.
QString sampleQuery(const QString& table)
{
    return parseXml(readSample(u"klmno001.xml"_s))
        .child(u"QUERY"_s, u"ST"_s, table)
        .text;
}

QStringList dumpNumbers(const XmlElement& root)
{
    QStringList numbers;
    for (const XmlElement& dump : root.all(u"DUMP"_s))
        numbers.append(dump.attribute(u"No"_s));
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

    QTest::newRow("sample klmno001") << readSample(u"klmno001.xml"_s) << kTwoTableRows
                                     << sampleQuery(u"pqrst002"_s);
    QTest::newRow("two tables") << document() << kTwoTableRows << u"select pqrst002.*"_s;
    QTest::newRow("second table shown first")
        << document(QString(), u"migrate uvwxy003\nmigrate pqrst002"_s)
        << QStringList{u"migrate uvwxy003"_s, QString(), u"migrate pqrst002"_s,
                       QString()}
        << u"select uvwxy003.*\nwhere a < b"_s;
    QTest::newRow("migrate table without a query")
        << klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"_s, kDefined)
        << QStringList{u"migrate pqrst002"_s, QString()} << QString();
    QTest::newRow("no migrate table")
        << document(QString(), u"x = 1"_s) << QStringList() << QString();
}

void MainQueryTest::migrateSourceRows()
{
    QFETCH(QString, xml);
    QFETCH(QStringList, rows);
    QFETCH(QString, shown);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, xml, true));
    QCOMPARE(host.rows(u"lstMigrateSource"_s), rows);
    QCOMPARE(host.text(u"txtMainQuery"_s), shown);
    // The host reads the box's text with the CR LF line breaks of every box.
    QCOMPARE(host.ctl->property("MainQuery").toString(),
             QString(shown).replace(u'\n', u"\r\n"_s));
}

// A click on a table's row first stores the box's text under the table the
// box belonged to, then shows the clicked table's query; empty rows are
// ignored.
void MainQueryTest::rowClickStoresThenShows()
{
    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), true));
    host.replaceText(u"txtMainQuery"_s, u"select 1"_s);
    QCOMPARE(host.text(u"txtMainQuery"_s), u"select 1"_s);

    host.clickRow(u"lstMigrateSource"_s, 2);
    QCOMPARE(host.text(u"txtMainQuery"_s), u"select uvwxy003.*\nwhere a < b"_s);

    // The focus is in the list now: the next click stores by itself. What it
    // stores is the box's text as shown, so the entity of an entity is gone.
    QVERIFY(host.focusIn(u"lstMigrateSource"_s));
    host.clickRow(u"lstMigrateSource"_s, 0);
    QCOMPARE(host.text(u"txtMainQuery"_s), u"select 1"_s);

    host.clickRow(u"lstMigrateSource"_s, 1); // the empty row
    QCOMPARE(host.text(u"txtMainQuery"_s), u"select 1"_s);
    host.clickRow(u"lstMigrateSource"_s, 3); // the empty row
    QCOMPARE(host.text(u"txtMainQuery"_s), u"select 1"_s);

    const XmlElement root = host.document();
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text,
             u"select 1"_s);
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).text,
             u"select uvwxy003.*\nwhere a < b"_s);
    QCOMPARE(root.all(u"QUERY"_s).size(), 2);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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
        << u"select *\ndump 7 Orders"_s << true << u"select *\ndump 7 Orders"_s
        << QStringList{u"7"_s};
    QTest::newRow("emptied query: QUERY as it was")
        << QString() << false << u"select pqrst002.*"_s << QStringList();
}

void MainQueryTest::storedWhenTheFocusLeaves()
{
    QFETCH(QString, typed);
    QFETCH(bool, emptyAfterwards);
    QFETCH(QString, stored);
    QFETCH(QStringList, dumps);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), true));
    host.replaceText(u"txtMainQuery"_s, typed);
    QCOMPARE(host.text(u"txtMainQuery"_s), typed);
    host.clickBelowRows(u"lstSourceTables"_s);
    QVERIFY(host.focusIn(u"lstSourceTables"_s));

    if (emptyAfterwards) {
        // Reading the document stores the box too, but an empty box stores
        // nothing: what the document holds now was stored on leaving.
        host.replaceText(u"txtMainQuery"_s, QString());
        QCOMPARE(host.text(u"txtMainQuery"_s), QString());
    }
    const XmlElement root = host.document();
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text,
             stored);
    QCOMPARE(dumpNumbers(root), dumps);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
}

// The dump references are collected when the box is left, so a "dump"
// keyword that ends the text is reported then: critical at the very start of
// the text, information after a separator, nothing at the tail of a word.
void MainQueryTest::dumpKeywordMessages_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QList<int>>("icons"); // one QMessageBox::Icon per message

    QTest::newRow("dump ends the text after a line break")
        << u"select *\ndump"_s << QList<int>{int(QMessageBox::Information)};
    QTest::newRow("dump and one blank end the text")
        << u"select * dump "_s << QList<int>{int(QMessageBox::Information)};
    QTest::newRow("dump is the whole text")
        << u"dump"_s << QList<int>{int(QMessageBox::Critical)};
    QTest::newRow("dump with its number") << u"select *\ndump 12"_s << QList<int>();
    QTest::newRow("tail of a longer word") << u"select *\nxdump"_s << QList<int>();
}

void MainQueryTest::dumpKeywordMessages()
{
    QFETCH(QString, typed);
    QFETCH(QList<int>, icons);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), true));
    host.replaceText(u"txtMainQuery"_s, typed);
    QCOMPARE(host.text(u"txtMainQuery"_s), typed);
    QVERIFY(host.modals.records().isEmpty());
    for (qsizetype i = 0; i < icons.size(); ++i)
        host.modals.expect(ModalAnswerer::press(QMessageBox::Ok));
    host.clickBelowRows(u"lstSourceTables"_s);
    QCOMPARE(host.modals.records().size(), icons.size());
    QVERIFY(host.modals.unexpected().isEmpty());
    for (int i = 0; i < icons.size(); ++i) {
        const ModalRecord& box = host.modals.records().at(i);
        QCOMPARE(box.className, u"QMessageBox"_s);
        QCOMPARE(box.text, u"Dump Keyword Must be Followed by a Dump Number"_s);
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

    const QString two = u"migrate pqrst002\nmigrate uvwxy003"_s;
    const QString pqrst = u"pqrst002"_s;
    QTest::newRow("click") << true << two << -1 << u"click"_s << 1 << pqrst;
    QTest::newRow("access key while typing")
        << true << two << -1 << u"access key"_s << 1 << pqrst;
    QTest::newRow("the table of the box, after a row click")
        << true << two << 2 << u"click"_s << 1 << u"uvwxy003"_s;
    QTest::newRow("no migrate table: nothing raised")
        << true << u"x = 1"_s << -1 << u"click"_s << 0 << QString();
    QTest::newRow("read-only: the button is disabled")
        << false << two << -1 << u"click"_s << 0 << QString();
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
    QVERIFY(host.open(u"klmno001"_s, document(QString(), precondition), edit));
    ctlFieldbridge* control = host.ctl;
    QSignalSpy spy(control, SIGNAL(ShowQueryBuilderPopUp(QString, QString)));
    QVERIFY(spy.isValid());
    // The host's builder answers at once, with the CR LF line breaks of a box.
    const QString built = u"select built.*\nfrom pqrst002"_s;
    QObject::connect(control, &ctlFieldbridge::ShowQueryBuilderPopUp, control,
                     [control, built](const QString&, const QString&) {
                         control->setProperty("MainQuery",
                                              QString(built).replace(u'\n', u"\r\n"_s));
                     });

    if (row >= 0) host.clickRow(u"lstMigrateSource"_s, row);
    if (raised) {
        host.replaceText(u"txtMainQuery"_s, u"select 2"_s);
        QCOMPARE(host.text(u"txtMainQuery"_s), u"select 2"_s);
    }
    if (how == QLatin1String("click")) {
        host.click(u"cmdBuildMQ"_s);
    } else {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_L, Qt::AltModifier);
        QTRY_COMPARE(spy.count(), 1);
        QVERIFY(host.focusIn(u"txtMainQuery"_s));
    }
    QTest::qWait(20);
    QCOMPARE(spy.count(), raised);
    if (!raised) return;
    QCOMPARE(spy.first().at(0).toString(), u"select 2"_s);
    QCOMPARE(spy.first().at(1).toString(), table);

    // The answer: put into the box as it is, stored under the box's table.
    QCOMPARE(host.text(u"txtMainQuery"_s), built);
    QCOMPARE(host.ctl->property("MainQuery").toString(),
             QString(built).replace(u'\n', u"\r\n"_s));
    QVERIFY(host.button(u"cmdBuildMQ"_s)->isEnabled());
    const XmlElement root = host.document();
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, table).text, built);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
}

// Storing the precondition keeps the box on its table while that is still a
// migrate table, and shows the first migrate table's query otherwise.
void MainQueryTest::preconditionStoreKeepsTheShownTable_data()
{
    QTest::addColumn<QString>("precondition");
    QTest::addColumn<QString>("shown");

    QTest::newRow("still migrated") << u"x = 1\nmigrate pqrst002\nmigrate uvwxy003"_s
                                    << u"select 2"_s;
    QTest::newRow("no longer migrated")
        << u"migrate pqrst002"_s << u"select pqrst002.*"_s;
}

void MainQueryTest::preconditionStoreKeepsTheShownTable()
{
    QFETCH(QString, precondition);
    QFETCH(QString, shown);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), true));
    host.clickRow(u"lstMigrateSource"_s, 2);
    host.replaceText(u"txtMainQuery"_s, u"select 2"_s);
    host.replaceText(u"txtPreCondition"_s, precondition); // leaving the main query stores it
    host.clickBelowRows(u"lstSourceTables"_s);
    QCOMPARE(host.text(u"txtMainQuery"_s), shown);

    host.replaceText(u"txtMainQuery"_s, u"select 3"_s);
    const XmlElement root = host.document();
    const bool stillMigrated = precondition.contains(u"uvwxy003"_s);
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).text,
             stillMigrated ? u"select 3"_s : QString());
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text,
             stillMigrated ? u"select pqrst002.*"_s : u"select 3"_s);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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

    QTest::newRow("OK with a new text") << true << QString() << true << u"Reads the customers"_s
                                        << QString() << u"Reads the customers"_s;
    QTest::newRow("Cancel keeps the text")
        << true << u"Old note"_s << false << u"zzz"_s << u"Old note"_s
        << u"Old note"_s;
    QTest::newRow("entities decoded for display")
        << true << u"a &amp;lt; b"_s << true << QString() << u"a < b"_s
        << u"a < b"_s;
    QTest::newRow("read-only: locked, OK disabled")
        << false << u"Old note"_s << true << QString() << u"Old note"_s
        << u"Old note"_s;
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
    QVERIFY(host.open(u"klmno001"_s, document(textAttribute), edit));
    QVERIFY(host.button(u"CmdMQDoc"_s)->isEnabled());
    host.modals.expect(ModalAnswerer::document(ok, typed.isEmpty() ? QString() : typed));
    host.click(u"CmdMQDoc"_s);

    QCOMPARE(host.modals.records().size(), 1);
    const ModalRecord dialog = host.modals.records().first();
    QCOMPARE(dialog.objectName, u"FrmTxtDoc"_s);
    QCOMPARE(dialog.title, u"Text for Migrate:klmno001"_s);
    QCOMPARE(dialog.text, shown);
    QCOMPARE(dialog.textReadOnly, !edit);
    QCOMPARE(dialog.okEnabled, edit);

    const XmlElement root = host.document();
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s)
                 .attribute(u"TEXT"_s),
             stored);
    QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s)
                 .attribute(u"TEXT"_s),
             QString());
}

// Without a QUERY element for the box's table the button does nothing.
void MainQueryTest::documentationWithoutQuery()
{
    Host host;
    QVERIFY(host.open(u"klmno001"_s, 
        klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"_s, kDefined),
        true));
    QCOMPARE(host.rows(u"lstMigrateSource"_s).size(), 2);
    host.click(u"CmdMQDoc"_s);
    QTest::qWait(100);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    QVERIFY(host.document().child(u"QUERY"_s).isNull());
}

// In view mode "Text" is enabled exactly when the shown query has a
// documentation text; edit mode leaves it enabled.
void MainQueryTest::documentationButtonInViewMode_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("xml");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("view mode, with a text") << false << document(u"Note"_s) << true;
    QTest::newRow("view mode, without a text") << false << document() << false;
    QTest::newRow("view mode, without a QUERY")
        << false
        << klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"_s, kDefined)
        << false;
    QTest::newRow("edit mode, without a text") << true << document() << true;
}

void MainQueryTest::documentationButtonInViewMode()
{
    QFETCH(bool, edit);
    QFETCH(QString, xml);
    QFETCH(bool, enabled);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, xml, edit));
    QCOMPARE(host.button(u"CmdMQDoc"_s)->isEnabled(), enabled);
}

// The box is writable only in edit mode and while there are migrate sources.
void MainQueryTest::lock_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("precondition");
    QTest::addColumn<bool>("readOnly");

    QTest::newRow("edit mode with migrate sources")
        << true << u"migrate pqrst002\nmigrate uvwxy003"_s << false;
    QTest::newRow("edit mode without migrate sources") << true << u"x = 1"_s << true;
    QTest::newRow("read-only mode") << false << u"migrate pqrst002\nmigrate uvwxy003"_s << true;
}

void MainQueryTest::lock()
{
    QFETCH(bool, edit);
    QFETCH(QString, precondition);
    QFETCH(bool, readOnly);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(QString(), precondition), edit));
    QCOMPARE(host.readOnly(u"txtMainQuery"_s), readOnly);
    const QString before = host.text(u"txtMainQuery"_s);
    host.clickInto(u"txtMainQuery"_s);
    QTest::keyClick(host.find(u"txtMainQuery"_s), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(host.find(u"txtMainQuery"_s), u" x"_s);
    QCOMPARE(host.text(u"txtMainQuery"_s), readOnly ? before : before + u" x"_s);
}

QTEST_MAIN(MainQueryTest)
#include "tst_mainquery.moc"
