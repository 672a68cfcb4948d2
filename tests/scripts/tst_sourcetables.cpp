// The source-table list of the "Mapping Object" tab: the SRCTBL text shown as
// rows, the host's picker and its answer, the Delete key, and the
// reconciliation with the tables that the precondition migrates from.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

namespace {

QString document(const QString& sourceTables, const QStringList& defined = {u"PQRST002"_s})
{
    return klmnoDocument(u"<SRCTBL>"_s + sourceTables + u"</SRCTBL><PREC TEXT=\"\"></PREC>"_s, defined);
}

} // namespace

class SourceTablesTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    // ShowControl empties the list and fills it from SRCTBL: a row for every
    // piece, empty pieces included, line breaks removed inside each piece.
    void loadedIntoEmptyList_data()
    {
        QTest::addColumn<QString>("srctbl"); // as written in the XML
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("sourceTables");
        QTest::newRow("two tables, their case kept")
            << u"pqrst002,UVWXY003"_s << QStringList{u"pqrst002"_s, u"UVWXY003"_s} << u"pqrst002,UVWXY003"_s;
        QTest::newRow("empty piece gets its row") << u"A,,B"_s << QStringList{u"A"_s, {}, u"B"_s} << u"A,,B"_s;
        QTest::newRow("line break inside the first piece")
            << u"KLMNO001&#13;\n,PQRST002"_s << QStringList{u"KLMNO001"_s, u"PQRST002"_s} << u"KLMNO001,PQRST002"_s;
        QTest::newRow("empty text gives no row") << QString() << QStringList() << QString();
    }
    void loadedIntoEmptyList()
    {
        QFETCH(QString, srctbl);
        QFETCH(QStringList, rows);
        QFETCH(QString, sourceTables);
        QVERIFY(host->open(u"klmno001"_s, document(srctbl)));
        QCOMPARE(host->rows(u"lstSourceTables"_s), rows);
        QCOMPARE(host->ctl->property("SourceTables").toString(), sourceTables);
        QCOMPARE(host->document().child(u"SRCTBL"_s).text, sourceTables);
    }

    // The host's answer merges into a list that has rows: new names are
    // appended, rows are never removed, and SRCTBL is written from the rows.
    void assignedIntoFilledList_data()
    {
        QTest::addColumn<QString>("loaded");
        QTest::addColumn<QString>("assigned");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("empty piece not merged") << u"A"_s << u"A,,B"_s << QStringList{u"A"_s, u"B"_s};
        QTest::newRow("blank piece not merged") << u"A"_s << u" ,B"_s << QStringList{u"A"_s, u"B"_s};
        QTest::newRow("line break removed before comparing")
            << u"KLMNO001"_s << u"KLMNO001\r\n,PQRST002"_s << QStringList{u"KLMNO001"_s, u"PQRST002"_s};
        QTest::newRow("rows never removed, order kept") << u"A,B"_s << u"C,A"_s << QStringList{u"A"_s, u"B"_s, u"C"_s};
        QTest::newRow("empty assignment keeps the rows") << u"A,B"_s << QString() << QStringList{u"A"_s, u"B"_s};
        QTest::newRow("names compared case-sensitively") << u"A"_s << u"a"_s << QStringList{u"A"_s, u"a"_s};
        QTest::newRow("blanks kept inside a merged name") << u"A"_s << u"A, B"_s << QStringList{u"A"_s, u" B"_s};
        QTest::newRow("a name repeated in the answer merged once") << u"A"_s << u"B,B"_s << QStringList{u"A"_s, u"B"_s};
    }
    void assignedIntoFilledList()
    {
        QFETCH(QString, loaded);
        QFETCH(QString, assigned);
        QFETCH(QStringList, rows);
        QVERIFY(host->open(u"klmno001"_s, document(loaded)));
        host->ctl->setProperty("SourceTables", assigned);
        QCOMPARE(host->rows(u"lstSourceTables"_s), rows);
        QCOMPARE(host->ctl->property("SourceTables").toString(), rows.join(u','));
        QCOMPARE(host->document().child(u"SRCTBL"_s).text, rows.join(u','));
    }

    // After the only row has been deleted the list is empty, so the next
    // answer of the host takes the path of an empty list: every piece gets
    // a row. The text is then written from the rows, each row's text joining
    // the text so far only once that is no longer empty: a leading empty row
    // leaves no comma.
    void assignedAfterTheOnlyRowWasDeleted()
    {
        QVERIFY(host->open(u"klmno001"_s, document(u"pqrst002"_s)));
        host->clickRow(u"lstSourceTables"_s, 0);
        QTest::keyClick(host->view(u"lstSourceTables"_s), Qt::Key_Delete);
        QCOMPARE(host->rows(u"lstSourceTables"_s), QStringList());
        QCOMPARE(host->ctl->property("SourceTables").toString(), QString());
        host->ctl->setProperty("SourceTables", u",B,,C"_s);
        QCOMPARE(host->rows(u"lstSourceTables"_s), (QStringList{{}, u"B"_s, {}, u"C"_s}));
        QCOMPARE(host->ctl->property("SourceTables").toString(), u"B,,C"_s);
    }

    void assignCreatesTheMissingSection()
    {
        QVERIFY(host->open(u"klmno001"_s, klmnoDocument(u"<PREC TEXT=\"\"></PREC>"_s)));
        QCOMPARE(host->rows(u"lstSourceTables"_s), QStringList());
        host->ctl->setProperty("SourceTables", u"pqrst002,uvwxy003"_s);
        QCOMPARE(host->rows(u"lstSourceTables"_s), (QStringList{u"pqrst002"_s, u"uvwxy003"_s}));
        const XmlElement root = host->document();
        QCOMPARE(root.all(u"SRCTBL"_s).size(), 1);
        QCOMPARE(root.child(u"SRCTBL"_s).text, u"pqrst002,uvwxy003"_s);
    }

    // The Delete key on a selected row removes it and stores the remaining
    // rows, whatever modifier is held; read-only mode removes nothing; no
    // selection or another key does nothing.
    void deleteKey_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<int>("rowClicked"); // -1: a click below the rows
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QStringList>("rows");
        const QStringList all{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s};
        const QStringList withoutMiddle{u"pqrst002"_s, u"abcde004"_s};
        const int del = Qt::Key_Delete;
        QTest::newRow("edit mode, middle row") << true << 1 << del << int(Qt::NoModifier) << withoutMiddle;
        QTest::newRow("edit mode, last row") << true << 2 << del << int(Qt::NoModifier)
                                             << QStringList{u"pqrst002"_s, u"uvwxy003"_s};
        QTest::newRow("Delete of the keypad") << true << 1 << del << int(Qt::KeypadModifier) << withoutMiddle;
        QTest::newRow("Shift+Delete") << true << 1 << del << int(Qt::ShiftModifier) << withoutMiddle;
        QTest::newRow("Ctrl+Delete") << true << 1 << del << int(Qt::ControlModifier) << withoutMiddle;
        QTest::newRow("read-only mode removes nothing") << false << 1 << del << int(Qt::NoModifier) << all;
        QTest::newRow("no row selected") << true << -1 << del << int(Qt::NoModifier) << all;
        QTest::newRow("another key") << true << 1 << int(Qt::Key_Backspace) << int(Qt::NoModifier) << all;
    }
    void deleteKey()
    {
        QFETCH(bool, edit);
        QFETCH(int, rowClicked);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QStringList, rows);
        QVERIFY(host->open(u"klmno001"_s, document(u"pqrst002,uvwxy003,abcde004"_s), edit));
        if (rowClicked >= 0)
            host->clickRow(u"lstSourceTables"_s, rowClicked);
        else
            host->clickBelowRows(u"lstSourceTables"_s);
        QVERIFY(host->focusIn(u"lstSourceTables"_s));
        keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(host->rows(u"lstSourceTables"_s), rows);
        QCOMPARE(host->document().child(u"SRCTBL"_s).text, rows.join(u','));
    }

    // "Select..." hands the SRCTBL text to the host's picker; the host
    // answers by assigning SourceTables, which merges into the list.
    void selectButtonAsksTheHost()
    {
        QVERIFY(host->open(u"klmno001"_s, document(u"pqrst002,uvwxy003"_s)));
        ctlFieldbridge* ctl = host->ctl;
        QSignalSpy spy(ctl, SIGNAL(ShowSourceTablesPopUp(QString)));
        QVERIFY(spy.isValid());
        connect(ctl, &ctlFieldbridge::ShowSourceTablesPopUp, ctl,
                [ctl](const QString&) { ctl->setProperty("SourceTables", u"pqrst002,uvwxy003,abcde004"_s); });
        host->click(u"CmdSelectSource"_s);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().first().toString(), u"pqrst002,uvwxy003"_s);
        QCOMPARE(host->rows(u"lstSourceTables"_s), (QStringList{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s}));
        QCOMPARE(host->document().child(u"SRCTBL"_s).text, u"pqrst002,uvwxy003,abcde004"_s);
    }

    // Storing the precondition (the focus leaving its box) adds the FIRST
    // migrate table that is not a source table, per store; "Define Dumps"
    // (tab 1) is enabled only when every migrate table is a source table
    // with field definitions under SRCTAB, as found by a store that added
    // nothing.
    void migrateTablesReconciled_data()
    {
        QTest::addColumn<QString>("srctbl");
        QTest::addColumn<QStringList>("defined");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("textAfterStore"); // SourceTables after the 1st, 2nd, ... store
        QTest::addColumn<QList<bool>>("enabledAfterStore");
        QTest::addColumn<QStringList>("migrateRows");
        const QStringList klmRows{u"migrate KLMNO001"_s, {}};
        const QString klm = u"migrate KLMNO001"_s;
        QTest::newRow("missing and defined: enabled from the next store")
            << u"pqrst002"_s << QStringList{u"PQRST002"_s, u"KLMNO001"_s} << klm
            << QStringList{u"pqrst002,KLMNO001"_s, u"pqrst002,KLMNO001"_s} << QList<bool>{false, true} << klmRows;
        QTest::newRow("missing and not defined") << u"pqrst002"_s << QStringList{u"PQRST002"_s} << klm
                                                 << QStringList{u"pqrst002,KLMNO001"_s, u"pqrst002,KLMNO001"_s}
                                                 << QList<bool>{false, false} << klmRows;
        QTest::newRow("empty source list takes the name alone")
            << QString() << QStringList{u"KLMNO001"_s} << klm << QStringList{u"KLMNO001"_s, u"KLMNO001"_s}
            << QList<bool>{false, true} << klmRows;
        QTest::newRow("two missing tables, one per store")
            << u"abcde004"_s << QStringList{u"ABCDE004"_s, u"KLMNO001"_s, u"PQRST002"_s}
            << u"migrate KLMNO001\nmigrate PQRST002"_s
            << QStringList{u"abcde004,KLMNO001"_s, u"abcde004,KLMNO001,PQRST002"_s, u"abcde004,KLMNO001,PQRST002"_s}
            << QList<bool>{false, false, true} << (klmRows + QStringList{u"migrate PQRST002"_s, {}});
        QTest::newRow("source names compared case-sensitively")
            << u"klmno001"_s << QStringList{u"KLMNO001"_s} << klm
            << QStringList{u"klmno001,KLMNO001"_s, u"klmno001,KLMNO001"_s} << QList<bool>{false, true} << klmRows;
        QTest::newRow("definitions looked up in upper case")
            << u"klmno001"_s << QStringList{u"KLMNO001"_s} << u"migrate klmno001"_s << QStringList{u"klmno001"_s}
            << QList<bool>{true} << QStringList{u"migrate klmno001"_s, {}};
    }
    void migrateTablesReconciled()
    {
        QFETCH(QString, srctbl);
        QFETCH(QStringList, defined);
        QFETCH(QString, typed);
        QFETCH(QStringList, textAfterStore);
        QFETCH(QList<bool>, enabledAfterStore);
        QFETCH(QStringList, migrateRows);
        QVERIFY(host->open(u"klmno001"_s, document(srctbl, defined)));
        host->replaceText(u"txtPreCondition"_s, typed);
        for (int store = 0; store < textAfterStore.size(); ++store) {
            if (store > 0)
                host->clickInto(u"txtPreCondition"_s);
            QVERIFY(host->focusIn(u"txtPreCondition"_s));
            host->clickBelowRows(u"lstSourceTables"_s); // the focus leaves the box
            QVERIFY(host->focusIn(u"lstSourceTables"_s));
            QCOMPARE(host->ctl->property("SourceTables").toString(), textAfterStore[store]);
            QCOMPARE(host->tabs()->isTabEnabled(1), enabledAfterStore[store]);
        }
        QCOMPARE(host->rows(u"lstMigrateSource"_s), migrateRows);
        QCOMPARE(host->rows(u"lstSourceTables"_s), textAfterStore.last().split(u','));
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"PREC"_s).text, typed);
        QCOMPARE(root.child(u"SRCTBL"_s).text, textAfterStore.last());
    }

    // A precondition without "migrate" empties the main query and leaves the
    // state of "Define Dumps" as it was.
    void noMigrateStatementKeepsTheTabState_data()
    {
        QTest::addColumn<QStringList>("defined");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("enabled stays enabled") << QStringList{u"PQRST002"_s} << true;
        QTest::newRow("disabled stays disabled") << QStringList{u"ABCDE004"_s} << false;
    }
    void noMigrateStatementKeepsTheTabState()
    {
        QFETCH(QStringList, defined);
        QFETCH(bool, enabled);
        QVERIFY(host->open(u"klmno001"_s,
                          klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                                        "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"_s,
                                        defined)));
        QCOMPARE(host->tabs()->isTabEnabled(1), enabled);
        QCOMPARE(host->text(u"txtMainQuery"_s), u"select 1"_s);
        host->replaceText(u"txtPreCondition"_s, u"x = 1"_s);
        host->clickBelowRows(u"lstSourceTables"_s);
        QCOMPARE(host->text(u"txtMainQuery"_s), QString());
        QVERIFY(host->readOnly(u"txtMainQuery"_s));
        QCOMPARE(host->rows(u"lstMigrateSource"_s), QStringList());
        QCOMPARE(host->tabs()->isTabEnabled(1), enabled);
        QCOMPARE(host->ctl->property("SourceTables").toString(), u"pqrst002"_s);
    }
};

QTEST_MAIN(SourceTablesTest)
#include "tst_sourcetables.moc"
