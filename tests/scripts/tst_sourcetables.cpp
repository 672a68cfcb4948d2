// The source-table list of the "Mapping Object" tab: the SRCTBL text shown as
// rows, the host's picker and its answer, the Delete key, and the
// reconciliation with the tables that the precondition migrates from.

#include "ScriptsHarness.h"

#include <QSignalSpy>

using namespace scripts_test;

namespace {

QString document(const QString& sourceTables, const QString& precondition = QString(),
                 const QStringList& defined = {QStringLiteral("PQRST002")})
{
    return mappingObject(QStringLiteral("<SRCTBL>") + sourceTables +
                             QStringLiteral("</SRCTBL><PREC TEXT=\"\">") + precondition +
                             QStringLiteral("</PREC>"),
                         defined);
}

} // namespace

class SourceTablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void loadedIntoEmptyList_data();
    void loadedIntoEmptyList();
    void assignedIntoFilledList_data();
    void assignedIntoFilledList();
    void assignedAfterTheOnlyRowWasDeleted();
    void assignCreatesTheMissingSection();
    void deleteKey_data();
    void deleteKey();
    void selectButtonAsksTheHost_data();
    void selectButtonAsksTheHost();
    void migrateTablesReconciled_data();
    void migrateTablesReconciled();
    void noMigrateStatementKeepsTheTabState_data();
    void noMigrateStatementKeepsTheTabState();
};

// ShowControl empties the list and fills it from SRCTBL: a row for every
// piece, empty pieces included, line breaks removed inside each piece.
void SourceTablesTest::loadedIntoEmptyList_data()
{
    QTest::addColumn<QString>("srctbl"); // as written in the XML
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("sourceTables");

    QTest::newRow("two tables") << QStringLiteral("pqrst002,uvwxy003")
                                << QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003")}
                                << QStringLiteral("pqrst002,uvwxy003");
    QTest::newRow("empty piece gets its row")
        << QStringLiteral("A,,B") << QStringList{QStringLiteral("A"), QString(), QStringLiteral("B")}
        << QStringLiteral("A,,B");
    QTest::newRow("line break inside the first piece")
        << QStringLiteral("KLMNO001&#13;\n,PQRST002")
        << QStringList{QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}
        << QStringLiteral("KLMNO001,PQRST002");
    QTest::newRow("names keep their case")
        << QStringLiteral("Pqrst002,UVWXY003")
        << QStringList{QStringLiteral("Pqrst002"), QStringLiteral("UVWXY003")}
        << QStringLiteral("Pqrst002,UVWXY003");
    QTest::newRow("empty text gives no row") << QString() << QStringList() << QString();
}

void SourceTablesTest::loadedIntoEmptyList()
{
    QFETCH(QString, srctbl);
    QFETCH(QStringList, rows);
    QFETCH(QString, sourceTables);

    Host host;
    QVERIFY(host.show(document(srctbl), true));
    QAbstractItemView* list = host.view(QStringLiteral("lstSourceTables"));
    QVERIFY(list);
    QCOMPARE(list->model()->columnCount(), 1);
    QCOMPARE(list->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Source Tables"));
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), rows);
    QCOMPARE(host.control->property("SourceTables").toString(), sourceTables);
    QCOMPARE(lf(host.read().child(QStringLiteral("SRCTBL")).text), sourceTables);
}

// The host's answer merges into a list that has rows: new names are
// appended, rows are never removed, and SRCTBL is written from the rows.
void SourceTablesTest::assignedIntoFilledList_data()
{
    QTest::addColumn<QString>("loaded");
    QTest::addColumn<QString>("assigned");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("sourceTables");

    QTest::newRow("empty piece not merged")
        << QStringLiteral("A") << QStringLiteral("A,,B")
        << QStringList{QStringLiteral("A"), QStringLiteral("B")} << QStringLiteral("A,B");
    QTest::newRow("line break removed before comparing")
        << QStringLiteral("KLMNO001") << QStringLiteral("KLMNO001\r\n,PQRST002")
        << QStringList{QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}
        << QStringLiteral("KLMNO001,PQRST002");
    QTest::newRow("rows never removed, order kept")
        << QStringLiteral("A,B") << QStringLiteral("C,A")
        << QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}
        << QStringLiteral("A,B,C");
    QTest::newRow("empty assignment keeps the rows")
        << QStringLiteral("A,B") << QString() << QStringList{QStringLiteral("A"), QStringLiteral("B")}
        << QStringLiteral("A,B");
    QTest::newRow("names compared case-sensitively")
        << QStringLiteral("A") << QStringLiteral("a") << QStringList{QStringLiteral("A"), QStringLiteral("a")}
        << QStringLiteral("A,a");
    QTest::newRow("blanks kept inside a merged name")
        << QStringLiteral("A") << QStringLiteral("A, B")
        << QStringList{QStringLiteral("A"), QStringLiteral(" B")} << QStringLiteral("A, B");
    QTest::newRow("a name repeated in the answer merged once")
        << QStringLiteral("A") << QStringLiteral("B,B")
        << QStringList{QStringLiteral("A"), QStringLiteral("B")} << QStringLiteral("A,B");
    QTest::newRow("blank piece not merged")
        << QStringLiteral("A") << QStringLiteral(" ,B")
        << QStringList{QStringLiteral("A"), QStringLiteral("B")} << QStringLiteral("A,B");
}

void SourceTablesTest::assignedIntoFilledList()
{
    QFETCH(QString, loaded);
    QFETCH(QString, assigned);
    QFETCH(QStringList, rows);
    QFETCH(QString, sourceTables);

    Host host;
    QVERIFY(host.show(document(loaded), true));
    host.control->setProperty("SourceTables", assigned);
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), rows);
    QCOMPARE(host.control->property("SourceTables").toString(), sourceTables);
    QCOMPARE(lf(host.read().child(QStringLiteral("SRCTBL")).text), sourceTables);
}

// After the only row has been deleted the list is empty, so the next answer
// of the host takes the path of an empty list: every piece gets a row. The
// text is then written from the rows, each row's text joining the text so far
// only once that is no longer empty: a leading empty row leaves no comma.
void SourceTablesTest::assignedAfterTheOnlyRowWasDeleted()
{
    Host host;
    QVERIFY(host.show(document(QStringLiteral("pqrst002")), true));
    host.clickRow(QStringLiteral("lstSourceTables"), 0);
    QTest::keyClick(host.view(QStringLiteral("lstSourceTables")), Qt::Key_Delete);
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), QStringList());
    QCOMPARE(host.control->property("SourceTables").toString(), QString());

    host.control->setProperty("SourceTables", QStringLiteral(",B,,C"));
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")),
             (QStringList{QString(), QStringLiteral("B"), QString(), QStringLiteral("C")}));
    QCOMPARE(host.control->property("SourceTables").toString(), QStringLiteral("B,,C"));
}

void SourceTablesTest::assignCreatesTheMissingSection()
{
    Host host;
    QVERIFY(host.show(mappingObject(QStringLiteral("<PREC TEXT=\"\"></PREC>"), {QStringLiteral("PQRST002")}),
                      true));
    QCOMPARE(host.control->property("SourceTables").toString(), QString());
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), QStringList());

    host.control->setProperty("SourceTables", QStringLiteral("pqrst002,uvwxy003"));
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")),
             (QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003")}));
    const XmlElement root = host.read();
    QCOMPARE(root.all(QStringLiteral("SRCTBL")).size(), 1);
    QCOMPARE(root.child(QStringLiteral("SRCTBL")).text, QStringLiteral("pqrst002,uvwxy003"));
}

// The Delete key on a selected row removes it and stores the remaining rows;
// read-only mode removes nothing; no selection or another key does nothing.
void SourceTablesTest::deleteKey_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<int>("rowClicked"); // -1: a click below the rows
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("sourceTables");

    const QStringList all{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"), QStringLiteral("abcde004")};
    const QString allText = QStringLiteral("pqrst002,uvwxy003,abcde004");
    const int none = Qt::NoModifier;
    const QStringList withoutMiddle{QStringLiteral("pqrst002"), QStringLiteral("abcde004")};
    QTest::newRow("edit mode, middle row")
        << true << 1 << int(Qt::Key_Delete) << none
        << QStringList{QStringLiteral("pqrst002"), QStringLiteral("abcde004")}
        << QStringLiteral("pqrst002,abcde004");
    QTest::newRow("edit mode, last row")
        << true << 2 << int(Qt::Key_Delete) << none
        << QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003")}
        << QStringLiteral("pqrst002,uvwxy003");
    // The key code alone decides, whatever the shift state: the Delete key of
    // the keypad and Delete with Shift or Ctrl held are the Delete key too.
    QTest::newRow("Delete of the keypad") << true << 1 << int(Qt::Key_Delete) << int(Qt::KeypadModifier)
                                          << withoutMiddle << QStringLiteral("pqrst002,abcde004");
    QTest::newRow("Shift+Delete") << true << 1 << int(Qt::Key_Delete) << int(Qt::ShiftModifier)
                                  << withoutMiddle << QStringLiteral("pqrst002,abcde004");
    QTest::newRow("Ctrl+Delete") << true << 1 << int(Qt::Key_Delete) << int(Qt::ControlModifier)
                                 << withoutMiddle << QStringLiteral("pqrst002,abcde004");
    QTest::newRow("read-only mode removes nothing")
        << false << 1 << int(Qt::Key_Delete) << none << all << allText;
    QTest::newRow("no row selected") << true << -1 << int(Qt::Key_Delete) << none << all << allText;
    QTest::newRow("another key") << true << 1 << int(Qt::Key_Backspace) << none << all << allText;
}

void SourceTablesTest::deleteKey()
{
    QFETCH(bool, edit);
    QFETCH(int, rowClicked);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QStringList, rows);
    QFETCH(QString, sourceTables);

    Host host;
    QVERIFY(host.show(document(QStringLiteral("pqrst002,uvwxy003,abcde004")), edit));
    if (rowClicked >= 0)
        host.clickRow(QStringLiteral("lstSourceTables"), rowClicked);
    else
        host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QVERIFY(host.focusIn(QStringLiteral("lstSourceTables")));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));

    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), rows);
    QCOMPARE(host.read().child(QStringLiteral("SRCTBL")).text, sourceTables);
}

// "Select..." hands the SRCTBL text to the host's picker; the host answers by
// assigning SourceTables, which merges into the list.
void SourceTablesTest::selectButtonAsksTheHost_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<int>("raised");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("edit mode") << true << 1
                               << QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"),
                                              QStringLiteral("abcde004")};
    QTest::newRow("read-only mode: the button is disabled")
        << false << 0 << QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003")};
}

void SourceTablesTest::selectButtonAsksTheHost()
{
    QFETCH(bool, edit);
    QFETCH(int, raised);
    QFETCH(QStringList, rows);

    Host host;
    QVERIFY(host.show(document(QStringLiteral("pqrst002,uvwxy003")), edit));
    QSignalSpy spy(host.control.get(), SIGNAL(ShowSourceTablesPopUp(QString)));
    QVERIFY(spy.isValid());
    // The host's picker answers at once with three tables.
    ctlFieldbridge* control = host.control.get();
    QObject::connect(control, &ctlFieldbridge::ShowSourceTablesPopUp, control, [control](const QString&) {
        control->setProperty("SourceTables", QStringLiteral("pqrst002,uvwxy003,abcde004"));
    });

    host.click(QStringLiteral("CmdSelectSource"));
    QCOMPARE(spy.count(), raised);
    if (raised) QCOMPARE(spy.first().first().toString(), QStringLiteral("pqrst002,uvwxy003"));
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), rows);
    QCOMPARE(host.read().child(QStringLiteral("SRCTBL")).text, rows.join(u','));
}

// Storing the precondition (the focus leaving its box) adds the FIRST migrate
// table that is not a source table, per store; "Define Dumps" (tab 1) is
// enabled only when every migrate table is a source table with field
// definitions under SRCTAB, as found by a store that added nothing.
void SourceTablesTest::migrateTablesReconciled_data()
{
    QTest::addColumn<QString>("srctbl");
    QTest::addColumn<QStringList>("defined");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("textAfterStore"); // SourceTables after the 1st, 2nd, ... store
    QTest::addColumn<QList<bool>>("enabledAfterStore");
    QTest::addColumn<QStringList>("migrateRows");

    const QStringList klmRows{QStringLiteral("migrate KLMNO001"), QString()};
    QTest::newRow("listed and defined")
        << QStringLiteral("pqrst002,KLMNO001")
        << QStringList{QStringLiteral("PQRST002"), QStringLiteral("KLMNO001")}
        << QStringLiteral("migrate KLMNO001") << QStringList{QStringLiteral("pqrst002,KLMNO001")}
        << QList<bool>{true} << klmRows;
    QTest::newRow("missing and defined: enabled from the next store")
        << QStringLiteral("pqrst002") << QStringList{QStringLiteral("PQRST002"), QStringLiteral("KLMNO001")}
        << QStringLiteral("migrate KLMNO001")
        << QStringList{QStringLiteral("pqrst002,KLMNO001"), QStringLiteral("pqrst002,KLMNO001")}
        << QList<bool>{false, true} << klmRows;
    QTest::newRow("missing and not defined")
        << QStringLiteral("pqrst002") << QStringList{QStringLiteral("PQRST002")}
        << QStringLiteral("migrate KLMNO001")
        << QStringList{QStringLiteral("pqrst002,KLMNO001"), QStringLiteral("pqrst002,KLMNO001")}
        << QList<bool>{false, false} << klmRows;
    QTest::newRow("empty source list takes the name alone")
        << QString() << QStringList{QStringLiteral("KLMNO001")} << QStringLiteral("migrate KLMNO001")
        << QStringList{QStringLiteral("KLMNO001"), QStringLiteral("KLMNO001")} << QList<bool>{false, true}
        << klmRows;
    QTest::newRow("two missing tables, one per store")
        << QStringLiteral("abcde004")
        << QStringList{QStringLiteral("ABCDE004"), QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}
        << QStringLiteral("migrate KLMNO001\nmigrate PQRST002")
        << QStringList{QStringLiteral("abcde004,KLMNO001"), QStringLiteral("abcde004,KLMNO001,PQRST002"),
                       QStringLiteral("abcde004,KLMNO001,PQRST002")}
        << QList<bool>{false, false, true}
        << QStringList{QStringLiteral("migrate KLMNO001"), QString(), QStringLiteral("migrate PQRST002"),
                       QString()};
    QTest::newRow("source names compared case-sensitively")
        << QStringLiteral("klmno001") << QStringList{QStringLiteral("KLMNO001")}
        << QStringLiteral("migrate KLMNO001")
        << QStringList{QStringLiteral("klmno001,KLMNO001"), QStringLiteral("klmno001,KLMNO001")}
        << QList<bool>{false, true} << klmRows;
    QTest::newRow("definitions looked up in upper case")
        << QStringLiteral("klmno001") << QStringList{QStringLiteral("KLMNO001")}
        << QStringLiteral("migrate klmno001") << QStringList{QStringLiteral("klmno001")} << QList<bool>{true}
        << QStringList{QStringLiteral("migrate klmno001"), QString()};
}

void SourceTablesTest::migrateTablesReconciled()
{
    QFETCH(QString, srctbl);
    QFETCH(QStringList, defined);
    QFETCH(QString, typed);
    QFETCH(QStringList, textAfterStore);
    QFETCH(QList<bool>, enabledAfterStore);
    QFETCH(QStringList, migrateRows);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(srctbl, QString(), defined), true));
    host.replaceText(QStringLiteral("txtPreCondition"), typed);
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), typed);

    for (int store = 0; store < textAfterStore.size(); ++store) {
        if (store > 0) host.clickInto(QStringLiteral("txtPreCondition"));
        QVERIFY(host.focusIn(QStringLiteral("txtPreCondition")));
        host.clickEmptyPartOf(QStringLiteral("lstSourceTables")); // the focus leaves the box
        QVERIFY(host.focusIn(QStringLiteral("lstSourceTables")));
        QCOMPARE(host.control->property("SourceTables").toString(), textAfterStore[store]);
        QCOMPARE(host.tabs()->isTabEnabled(1), enabledAfterStore[store]);
    }
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), migrateRows);
    QCOMPARE(host.rows(QStringLiteral("lstSourceTables")), textAfterStore.last().split(u','));

    const XmlElement root = host.read();
    QCOMPARE(lf(root.child(QStringLiteral("PREC")).text), typed);
    QCOMPARE(root.child(QStringLiteral("SRCTBL")).text, textAfterStore.last());
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// A precondition without "migrate" empties the main query and leaves the
// state of "Define Dumps" as it was.
void SourceTablesTest::noMigrateStatementKeepsTheTabState_data()
{
    QTest::addColumn<QStringList>("defined");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("enabled stays enabled") << QStringList{QStringLiteral("PQRST002")} << true;
    QTest::newRow("disabled stays disabled") << QStringList{QStringLiteral("ABCDE004")} << false;
}

void SourceTablesTest::noMigrateStatementKeepsTheTabState()
{
    QFETCH(QStringList, defined);
    QFETCH(bool, enabled);

    Host host;
    QVERIFY(host.show(
        mappingObject(QStringLiteral("<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                                     "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"),
                      defined),
        true));
    QCOMPARE(host.tabs()->isTabEnabled(1), enabled);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QStringLiteral("select 1"));

    host.replaceText(QStringLiteral("txtPreCondition"), QStringLiteral("x = 1"));
    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QString());
    QVERIFY(host.readOnly(QStringLiteral("txtMainQuery")));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), QStringList());
    QCOMPARE(host.tabs()->isTabEnabled(1), enabled);
    QCOMPARE(host.control->property("SourceTables").toString(), QStringLiteral("pqrst002"));
}

QTEST_MAIN(SourceTablesTest)
#include "tst_sourcetables.moc"
