// The migrate sources and the main query box: one query per migrate table,
// chosen by clicking its row, stored when the focus leaves the box or another
// row is clicked, its dump references collected (with their messages), the
// host's query builder and its answer through MainQuery, and the box's lock.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

namespace {

const QStringList kTwoTableRows{u"migrate pqrst002"_s, {}, u"migrate uvwxy003"_s, {}};

// Two migrate tables, each with its query; the second query holds an entity
// of an entity, shown decoded.
QString document(const QString& precondition = u"migrate pqrst002\nmigrate uvwxy003"_s)
{
    return klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"\">"_s + precondition +
                             u"</PREC><QUERY ST=\"pqrst002\" TEXT=\"\">select pqrst002.*</QUERY>"
                             "<QUERY ST=\"uvwxy003\" TEXT=\"\">select uvwxy003.*\nwhere a &amp;lt; b</QUERY>"_s,
                         {u"PQRST002"_s, u"UVWXY003"_s});
}

} // namespace

class MainQueryTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    // One "migrate <table>" row and one empty row per migrate table; the box
    // shows the first table's query, decoded, and MainQuery reads it with
    // the CR LF line breaks of every box.
    void migrateSourceRows_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("shown");
        QTest::newRow("two tables") << document() << kTwoTableRows << u"select pqrst002.*"_s;
        QTest::newRow("second table shown first")
            << document(u"migrate uvwxy003\nmigrate pqrst002"_s)
            << QStringList{u"migrate uvwxy003"_s, {}, u"migrate pqrst002"_s, {}} << u"select uvwxy003.*\nwhere a < b"_s;
        QTest::newRow("migrate table without a query")
            << klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"_s)
            << QStringList{u"migrate pqrst002"_s, {}} << QString();
        QTest::newRow("no migrate table") << document(u"x = 1"_s) << QStringList() << QString();
    }
    void migrateSourceRows()
    {
        QFETCH(QString, xml);
        QFETCH(QStringList, rows);
        QFETCH(QString, shown);
        QVERIFY(host->open(u"klmno001"_s, xml));
        QCOMPARE(host->rows(u"lstMigrateSource"_s), rows);
        QCOMPARE(host->text(u"txtMainQuery"_s), shown);
        QCOMPARE(host->ctl->property("MainQuery").toString(), crlf(shown));
    }

    // A click on a table's row first stores the box's text under the table
    // the box belonged to, then shows the clicked table's query; empty rows
    // are ignored.
    void rowClickStoresThenShows()
    {
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->replaceText(u"txtMainQuery"_s, u"select 1"_s);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"select 1"_s);
        host->clickRow(u"lstMigrateSource"_s, 2);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"select uvwxy003.*\nwhere a < b"_s);
        // The focus is in the list now: the next click stores by itself. What
        // it stores is the box's text as shown, so the entity of an entity is gone.
        QVERIFY(host->focusIn(u"lstMigrateSource"_s));
        host->clickRow(u"lstMigrateSource"_s, 0);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"select 1"_s);
        for (int emptyRow : {1, 3}) {
            host->clickRow(u"lstMigrateSource"_s, emptyRow);
            QCOMPARE(host->text(u"txtMainQuery"_s), u"select 1"_s);
        }
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text, u"select 1"_s);
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).text, u"select uvwxy003.*\nwhere a < b"_s);
        QCOMPARE(root.all(u"QUERY"_s).size(), 2);
    }

    // Leaving the box stores its text for its table and collects the dump
    // references again; an emptied box stores nothing.
    void storedWhenTheFocusLeaves_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("emptyAfterwards"); // empty the box again without leaving it
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("dumps");
        QTest::newRow("a query referencing a dump")
            << u"select *\ndump 7 Orders"_s << true << u"select *\ndump 7 Orders"_s << QStringList{u"7"_s};
        QTest::newRow("emptied query: QUERY as it was") << QString() << false << u"select pqrst002.*"_s << QStringList();
    }
    void storedWhenTheFocusLeaves()
    {
        QFETCH(QString, typed);
        QFETCH(bool, emptyAfterwards);
        QFETCH(QString, stored);
        QFETCH(QStringList, dumps);
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->replaceText(u"txtMainQuery"_s, typed);
        QCOMPARE(host->text(u"txtMainQuery"_s), typed);
        host->clickBelowRows(u"lstSourceTables"_s);
        QVERIFY(host->focusIn(u"lstSourceTables"_s));
        if (emptyAfterwards) {
            // Reading the document stores the box too, but an empty box
            // stores nothing: what the document holds was stored on leaving.
            host->replaceText(u"txtMainQuery"_s, QString());
            QCOMPARE(host->text(u"txtMainQuery"_s), QString());
        }
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text, stored);
        QCOMPARE(root.attributeValues(u"DUMP"_s, u"No"_s), dumps);
    }

    // The dump references are collected when the box is left, so a "dump"
    // keyword that ends the text is reported then: critical at the very
    // start of the text, information after a separator, nothing at the tail
    // of a word.
    void dumpKeywordMessages_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QList<int>>("icons"); // one QMessageBox::Icon per message
        QTest::newRow("dump ends the text after a line break") << u"select *\ndump"_s
                                                               << QList<int>{int(QMessageBox::Information)};
        QTest::newRow("dump and one blank end the text") << u"select * dump "_s
                                                         << QList<int>{int(QMessageBox::Information)};
        QTest::newRow("dump is the whole text") << u"dump"_s << QList<int>{int(QMessageBox::Critical)};
        QTest::newRow("dump with its number") << u"select *\ndump 12"_s << QList<int>();
        QTest::newRow("tail of a longer word") << u"select *\nxdump"_s << QList<int>();
    }
    void dumpKeywordMessages()
    {
        QFETCH(QString, typed);
        QFETCH(QList<int>, icons);
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->replaceText(u"txtMainQuery"_s, typed);
        QCOMPARE(host->text(u"txtMainQuery"_s), typed);
        for (qsizetype i = 0; i < icons.size(); ++i)
            host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->clickBelowRows(u"lstSourceTables"_s);
        QCOMPARE(host->modals.count(), icons.size());
        QVERIFY(host->modals.unexpected().isEmpty());
        for (qsizetype i = 0; i < icons.size(); ++i) {
            const ModalRecord& box = host->modals.records().at(i);
            QCOMPARE(box.text, u"Dump Keyword Must be Followed by a Dump Number"_s);
            QCOMPARE(int(box.icon), icons.at(i));
            QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        }
    }

    // "Build" hands the box's text (not the stored one) and the box's table
    // to the host's query builder; the host answers through MainQuery.
    void queryBuilder_data()
    {
        QTest::addColumn<QString>("precondition");
        QTest::addColumn<int>("row");  // the row of lstMigrateSource clicked first; -1 none
        QTest::addColumn<bool>("click"); // else the access key while typing
        QTest::addColumn<QString>("table"); // empty: nothing raised
        const QString two = u"migrate pqrst002\nmigrate uvwxy003"_s;
        QTest::newRow("click") << two << -1 << true << u"pqrst002"_s;
        QTest::newRow("access key while typing") << two << -1 << false << u"pqrst002"_s;
        QTest::newRow("the table of the box, after a row click") << two << 2 << true << u"uvwxy003"_s;
        QTest::newRow("no migrate table: nothing raised") << u"x = 1"_s << -1 << true << QString();
    }
    void queryBuilder()
    {
        QFETCH(QString, precondition);
        QFETCH(int, row);
        QFETCH(bool, click);
        QFETCH(QString, table);
        QVERIFY(host->open(u"klmno001"_s, document(precondition)));
        ctlFieldbridge* ctl = host->ctl;
        QSignalSpy spy(ctl, SIGNAL(ShowQueryBuilderPopUp(QString, QString)));
        QVERIFY(spy.isValid());
        // The host's builder answers at once, with the CR LF line breaks of a box.
        const QString built = u"select built.*\nfrom pqrst002"_s;
        connect(ctl, &ctlFieldbridge::ShowQueryBuilderPopUp, ctl,
                [ctl, built](const QString&, const QString&) { ctl->setProperty("MainQuery", crlf(built)); });
        if (row >= 0)
            host->clickRow(u"lstMigrateSource"_s, row);
        if (!table.isEmpty())
            host->replaceText(u"txtMainQuery"_s, u"select 2"_s);
        if (click) {
            host->click(u"cmdBuildMQ"_s);
        } else {
            keyToFocus(Qt::Key_L, Qt::AltModifier);
            QTRY_COMPARE(spy.count(), 1);
            QVERIFY(host->focusIn(u"txtMainQuery"_s));
        }
        QTest::qWait(20);
        QCOMPARE(spy.count(), table.isEmpty() ? 0 : 1);
        if (table.isEmpty())
            return;
        QCOMPARE(spy.first().at(0).toString(), u"select 2"_s);
        QCOMPARE(spy.first().at(1).toString(), table);
        // The answer: put into the box as it is, stored under the box's table.
        QCOMPARE(host->text(u"txtMainQuery"_s), built);
        QCOMPARE(host->ctl->property("MainQuery").toString(), crlf(built));
        QCOMPARE(host->document().child(u"QUERY"_s, u"ST"_s, table).text, built);
    }

    // Storing the precondition keeps the box on its table while that is
    // still a migrate table, and shows the first migrate table's query
    // otherwise.
    void preconditionStoreKeepsTheShownTable_data()
    {
        QTest::addColumn<QString>("precondition");
        QTest::addColumn<bool>("stillMigrated");
        QTest::newRow("still migrated") << u"x = 1\nmigrate pqrst002\nmigrate uvwxy003"_s << true;
        QTest::newRow("no longer migrated") << u"migrate pqrst002"_s << false;
    }
    void preconditionStoreKeepsTheShownTable()
    {
        QFETCH(QString, precondition);
        QFETCH(bool, stillMigrated);
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->clickRow(u"lstMigrateSource"_s, 2);
        host->replaceText(u"txtMainQuery"_s, u"select 2"_s);
        host->replaceText(u"txtPreCondition"_s, precondition); // leaving the main query stores it
        host->clickBelowRows(u"lstSourceTables"_s);
        QCOMPARE(host->text(u"txtMainQuery"_s), stillMigrated ? u"select 2"_s : u"select pqrst002.*"_s);
        host->replaceText(u"txtMainQuery"_s, u"select 3"_s);
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).text, stillMigrated ? u"select 3"_s : QString());
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s).text,
                 stillMigrated ? u"select pqrst002.*"_s : u"select 3"_s);
    }

    // In edit mode the box is writable only while there are migrate sources.
    void lock_data()
    {
        QTest::addColumn<QString>("precondition");
        QTest::addColumn<bool>("readOnly");
        QTest::newRow("with migrate sources") << u"migrate pqrst002\nmigrate uvwxy003"_s << false;
        QTest::newRow("without migrate sources") << u"x = 1"_s << true;
    }
    void lock()
    {
        QFETCH(QString, precondition);
        QFETCH(bool, readOnly);
        QVERIFY(host->open(u"klmno001"_s, document(precondition)));
        QCOMPARE(host->readOnly(u"txtMainQuery"_s), readOnly);
        const QString before = host->text(u"txtMainQuery"_s);
        host->clickInto(u"txtMainQuery"_s);
        QTest::keyClick(host->find(u"txtMainQuery"_s), Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(host->find(u"txtMainQuery"_s), u" x"_s);
        QCOMPARE(host->text(u"txtMainQuery"_s), readOnly ? before : before + u" x"_s);
    }
};

QTEST_MAIN(MainQueryTest)
#include "tst_mainquery.moc"
