// The two field lists of the "Define Dumps" tab (and the headers of the
// source-table list): what each column shows, alignment, check boxes,
// sorting by header clicks, GetListItemNumber,
// a click on a target field selecting its grid row, and the source list
// showing its selection when it gets the focus.

#include "WidgetHarness.h"

#include <QScrollBar>
#include <QSet>
#include <QTableView>

#include <algorithm>

using namespace fbtest;

namespace {

// One table's fields, used both as the target table LISTS001 and as the
// source table SRCAA001, so that both lists show the same cells.
const QString kFields = uR"(
<CUSTNO No="1" FNo="7" TYPE="L" DIGB="8" DSCA="Customer number" ADJU="R" CASE="N" DOMAIN="custno" MAN="Y"/>
<NAME No="2" FNo="42" TYPE="S" LENG="35" DSCA="Customer name" ADJU="L" CASE="U" MAN="y"/>
<CITY No="3" FNo="123" TYPE="M" LENG="40" ADJU="C" CASE="L"/>
<QTY__2 No="4" FNo="x1" TYPE="F" DIGB="8" ADJU="X" CASE=""/>
<BORN No="5" FNo="9" TYPE="T" LENG="6"/>
<STAMP No="6" FNo="10" TYPE="K"/>
<NOTE No="7" FNo="99" TYPE="U"/>
<FLAGS No="8" FNo="100" TYPE="P" LENG="8"/>
<RATE No="9" FNo="5.0" TYPE="D" DIGB="15" DIGA="2"/>
<KIND No="10" FNo="11" TYPE="s" LENG="3"/>
<EMPTY/>
)"_s;

QString listsDocument()
{
    return dumpsDocument(u"lists001"_s, kFields, {{u"srcaa001"_s, kFields}}, u"<DUMP No=\"1\" TXT=\"Lists\"/>"_s,
                         u"dump 1 Lists"_s);
}

// "targets" target fields and "sources" source fields named f00000 and up,
// with field numbers and positions in document order; the source fields
// stand scrambled, so that sorting moves nearly every row.
QString manyFieldsDocument(int targets, int sources)
{
    const auto fields = [](int count, bool scrambled) {
        QString out;
        for (int i = 0; i < count; ++i) {
            const int n = scrambled ? (i * 7919) % count : i;
            out += u"<F%1 No=\"%2\" FNo=\"%3\" TYPE=\"S\" LENG=\"10\"/>"_s.arg(QString::number(n).rightJustified(5, u'0'))
                       .arg(i + 1)
                       .arg(n);
        }
        return out;
    };
    return dumpsDocument(u"manyf001"_s, fields(targets, false), {{u"srcaa001"_s, fields(sources, true)}},
                         u"<DUMP No=\"1\" TXT=\"Many\"/>"_s, u"dump 1 Many"_s);
}

QStringList reversed(QStringList list)
{
    std::reverse(list.begin(), list.end());
    return list;
}

} // namespace

class FieldListsTest : public HostTest {
    Q_OBJECT

    bool showLists()
    {
        if (!host->open(u"lists001"_s, listsDocument()))
            return false;
        host->clickTab(1);
        return host->sourceFields()->model()->rowCount() == 11 && host->targetFields()->model()->rowCount() == 11;
    }
    int listItemNumber(const QString& name)
    {
        int result = 0;
        QMetaObject::invokeMethod(host->ctl, "GetListItemNumber", Q_RETURN_ARG(int, result), Q_ARG(QString, name));
        return result;
    }

private Q_SLOTS:
    void headerTexts_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("headers");
        QTest::newRow("source tables: one column") << u"lstSourceTables"_s << QStringList{u"Source Tables"_s};
        QTest::newRow("source fields: nine columns")
            << u"lstSourceFields"_s
            << QStringList{{}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s, u"Alignment"_s,
                           u"Case"_s, u"Domain"_s};
        QTest::newRow("target fields: an empty leading column, then the same nine")
            << u"lstTargetFields"_s
            << QStringList{{}, {}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s,
                           u"Alignment"_s, u"Case"_s, u"Domain"_s};
    }
    void headerTexts()
    {
        QFETCH(QString, list);
        QFETCH(QStringList, headers);
        QVERIFY(showLists());
        QCOMPARE(fbtest::headerTexts(host->view(list)), headers);
        QVERIFY(!host->find<QTreeView>(list)->isHeaderHidden());
    }

    void alignment_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("right");
        QTest::newRow("source Length is right-aligned") << u"lstSourceFields"_s << 4 << true;
        QTest::newRow("source No is left-aligned") << u"lstSourceFields"_s << 1 << false;
        QTest::newRow("target No is right-aligned") << u"lstTargetFields"_s << 2 << true;
        QTest::newRow("target Field Name is left-aligned") << u"lstTargetFields"_s << 3 << false;
    }
    void alignment()
    {
        QFETCH(QString, list);
        QFETCH(int, column);
        QFETCH(bool, right);
        QVERIFY(showLists());
        const QAbstractItemModel* model = host->view(list)->model();
        for (int r = 0; r < model->rowCount(); ++r) {
            const int align = model->index(r, column).data(Qt::TextAlignmentRole).toInt() & Qt::AlignHorizontal_Mask;
            QVERIFY2(right ? (align & Qt::AlignRight) : !(align & (Qt::AlignRight | Qt::AlignHCenter)),
                     qPrintable(u"row %1"_s.arg(r)));
        }
    }

    // The cells of a field row (their texts are the core's) in their
    // columns, the same in both lists.
    void cellRules_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("cells"); // mark, No, field part of the name, type, length,
                                                // description, alignment, case, domain
        QTest::newRow("FNo 7 shows 007; MAN Y marks; ADJU R; CASE N; L is Long")
            << 0 << QStringList{u"*"_s, u"007"_s, u"custno"_s, u"Long"_s, u"8"_s, u"Customer number"_s, u"Right"_s,
                                u"No"_s, u"custno"_s};
        QTest::newRow("non-numeric FNo x1 shows 000; qty__2 shows qty(2); ADJU X and empty CASE show No; "
                      "Float without DIGA shows 8,")
            << 3 << QStringList{{}, u"000"_s, u"qty(2)"_s, u"Float"_s, u"8,"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("a field without attributes still gives a row")
            << 10 << QStringList{{}, u"000"_s, u"empty"_s, {}, {}, {}, u"No"_s, u"No"_s, {}};
    }
    void cellRules()
    {
        QFETCH(int, row);
        QFETCH(QStringList, cells);
        QVERIFY(showLists());
        // The same cells in both lists; the target list has an empty leading column.
        for (const auto& [list, table] :
             {std::pair{host->sourceFields(), u"srcaa001."_s}, std::pair{host->targetFields(), u"lists001."_s}}) {
            QStringList expected = cells;
            expected[2] = table + cells[2];
            if (list == host->targetFields())
                expected.prepend(QString());
            QCOMPARE(rowTexts(list, row), expected);
        }
    }

    void checkBoxesOnSourceListOnly()
    {
        QVERIFY(showLists());
        QTreeView* source = host->sourceFields();
        QTreeView* target = host->targetFields();
        for (int r = 0; r < source->model()->rowCount(); ++r) {
            const QModelIndex first = source->model()->index(r, 0);
            QVERIFY(first.flags() & Qt::ItemIsUserCheckable);
            QCOMPARE(first.data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
            for (int c = 1; c < source->model()->columnCount(); ++c)
                QVERIFY(!source->model()->index(r, c).data(Qt::CheckStateRole).isValid());
        }
        for (int r = 0; r < target->model()->rowCount(); ++r)
            for (int c = 0; c < target->model()->columnCount(); ++c) {
                QVERIFY(!target->model()->index(r, c).data(Qt::CheckStateRole).isValid());
                QVERIFY(!(target->model()->index(r, c).flags() & Qt::ItemIsUserCheckable));
            }
        // A person ticks and unticks a field.
        clickCheckBox(source, 2);
        QVERIFY(ticked(source, 2));
        QVERIFY(!ticked(source, 1));
        QVERIFY(!ticked(source, 3));
        clickCheckBox(source, 2);
        QVERIFY(!ticked(source, 2));
    }

    void headerClicksSortAscendingThenDescending_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<int>("column");
        QTest::addColumn<QStringList>("ascending");
        // Numbers sort as text: 00123 comes before 007.
        const QStringList numbers{u"000"_s, u"000"_s, u"00100"_s, u"00123"_s, u"005.0"_s, u"007"_s,
                                  u"009"_s, u"010"_s, u"011"_s,   u"042"_s,   u"099"_s};
        const QStringList names{u"born"_s, u"city"_s, u"custno"_s, u"empty"_s, u"flags"_s, u"kind"_s,
                                u"name"_s, u"note"_s, u"qty(2)"_s, u"rate"_s,  u"stamp"_s};
        const auto qualified = [&names](const QString& table) {
            QStringList out;
            for (const QString& n : names)
                out.append(table + n);
            return out;
        };
        QTest::newRow("source list by No") << u"lstSourceFields"_s << 1 << numbers;
        QTest::newRow("source list by Field Name") << u"lstSourceFields"_s << 2 << qualified(u"srcaa001."_s);
        QTest::newRow("target list by No") << u"lstTargetFields"_s << 2 << numbers;
        QTest::newRow("target list by Field Name") << u"lstTargetFields"_s << 3 << qualified(u"lists001."_s);
    }
    void headerClicksSortAscendingThenDescending()
    {
        QFETCH(QString, list);
        QFETCH(int, column);
        QFETCH(QStringList, ascending);
        QVERIFY(showLists());
        auto* view = host->find<QTreeView>(list);
        const int nameColumn = list == u"lstSourceFields"_s ? 2 : 3;
        // Whole rows move: remember which number belongs to which name.
        QHash<QString, QString> numberOf;
        for (int r = 0; r < view->model()->rowCount(); ++r)
            numberOf.insert(cell(view, r, nameColumn), cell(view, r, nameColumn - 1));
        for (const QStringList& expected : {ascending, reversed(ascending)}) {
            clickHeader(view, column);
            QCOMPARE(rows(view, column), expected);
            for (int r = 0; r < view->model()->rowCount(); ++r)
                QCOMPARE(cell(view, r, nameColumn - 1), numberOf.value(cell(view, r, nameColumn)));
        }
    }

    // The order flips on every click of the list's headers, whichever
    // column is clicked.
    void everyHeaderClickFlipsTheOrder()
    {
        QVERIFY(showLists());
        QTreeView* view = host->sourceFields();
        clickHeader(view, 2); // ascending by name
        QCOMPARE(cell(view, 0, 2), u"srcaa001.born"_s);
        clickHeader(view, 1); // descending by number
        QCOMPARE(rows(view, 1), (QStringList{u"099"_s, u"042"_s, u"011"_s, u"010"_s, u"009"_s, u"007"_s, u"005.0"_s,
                                             u"00123"_s, u"00100"_s, u"000"_s, u"000"_s}));
    }

    void getListItemNumber_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("number");
        QTest::newRow("first row is number 1") << u"lists001.custno"_s << 1;
        QTest::newRow("array element by its shown name") << u"lists001.qty(2)"_s << 4;
        QTest::newRow("last row") << u"lists001.empty"_s << 11;
        QTest::newRow("one letter's case differs") << u"lists001.Custno"_s << -1;
        QTest::newRow("field part alone") << u"custno"_s << -1;
        QTest::newRow("stored array form") << u"lists001.qty__2"_s << -1;
        QTest::newRow("a source field is not a target row") << u"srcaa001.custno"_s << -1;
        QTest::newRow("trailing blank") << u"lists001.custno "_s << -1;
    }
    void getListItemNumber()
    {
        QFETCH(QString, name);
        QFETCH(int, number);
        QVERIFY(showLists());
        QCOMPARE(listItemNumber(name), number);
    }

    // ShowControl fills the target list already, before "Define Dumps" is
    // entered: with the root's table, or in a multi-target document with the
    // table of the first referenced dump.
    void showControlFillsTheTargetList_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("xml");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("last");
        QTest::newRow("single target") << u"lists001"_s << listsDocument() << 11 << u"lists001.empty"_s;
        QTest::newRow("multi-target sample") << u"fghij100"_s << readSample(u"fghij100.xml"_s) << 23
                                             << u"fghij100.origin"_s;
    }
    void showControlFillsTheTargetList()
    {
        QFETCH(QString, root);
        QFETCH(QString, xml);
        QFETCH(int, rows);
        QFETCH(QString, last);
        QVERIFY(host->open(root, xml));
        QCOMPARE(host->tabs()->currentIndex(), 0);
        QCOMPARE(host->targetFields()->model()->rowCount(), rows);
        QCOMPARE(listItemNumber(last), rows);
    }

    // The number is the row as the list shows it now.
    void getListItemNumberFollowsTheShownOrder()
    {
        QVERIFY(showLists());
        clickHeader(host->targetFields(), 3); // ascending by name: born, city, custno, ...
        QCOMPARE(listItemNumber(u"lists001.born"_s), 1);
        QCOMPARE(listItemNumber(u"lists001.custno"_s), 3);
    }

    void targetRowClickSelectsGridRow_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("gridRow");
        // The list is sorted by name first, so that list rows and grid rows differ.
        QTest::newRow("custno, field No 1") << u"lists001.custno"_s << 0;
        QTest::newRow("qty(2), field No 4") << u"lists001.qty(2)"_s << 3;
    }
    void targetRowClickSelectsGridRow()
    {
        QFETCH(QString, field);
        QFETCH(int, gridRow);
        QVERIFY(showLists());
        QTreeView* list = host->targetFields();
        clickHeader(list, 3);
        const int listRow = rowOf(list, 3, field);
        QVERIFY(listRow >= 0);
        QVERIFY(listRow != gridRow);
        clickCell(list, listRow, 3);
        QCOMPARE(host->grid()->currentIndex().row(), gridRow);
        QCOMPARE(cell(host->grid(), gridRow, 0), field);
    }

    // In a long table the grid scrolls so that the clicked field's row is
    // the top row when it was not visible; a visible row does not scroll it.
    void targetRowClickScrollsGridOnlyWhenNeeded_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("top");
        QTest::newRow("a row far below becomes the top row") << 250 << 250;
        QTest::newRow("a visible row leaves the grid where it is") << 3 << 0;
    }
    void targetRowClickScrollsGridOnlyWhenNeeded()
    {
        QFETCH(int, row);
        QFETCH(int, top);
        QVERIFY(host->open(u"manyf001"_s, manyFieldsDocument(300, 300)));
        host->clickTab(1);
        auto* grid = qobject_cast<QTableView*>(host->grid());
        QCOMPARE(grid->model()->rowCount(), 300);
        QCOMPARE(grid->rowAt(0), 0);
        const bool visible = grid->viewport()->rect().contains(grid->visualRect(grid->model()->index(row, 0)));
        QCOMPARE(visible, top == 0);
        clickCell(host->targetFields(), row, 3);
        QCOMPARE(grid->currentIndex().row(), row);
        QCOMPARE(cell(grid, row, 0), u"manyf001.f"_s + QString::number(row).rightJustified(5, u'0'));
        QVERIFY(grid->viewport()->rect().intersects(grid->visualRect(grid->currentIndex())));
        QCOMPARE(grid->rowAt(0), top);
    }

    // When the source list gets the focus, its selected row is scrolled into view.
    void sourceListFocusShowsSelectedRow()
    {
        QVERIFY(host->open(u"manyf001"_s, manyFieldsDocument(20, 300)));
        host->clickTab(1);
        QTreeView* source = host->sourceFields();
        clickCell(source, 280, 2);
        QVERIFY(source->selectionModel()->isRowSelected(280, QModelIndex()));
        source->verticalScrollBar()->setValue(0);
        QVERIFY(!source->viewport()->rect().intersects(source->visualRect(source->model()->index(280, 2))));
        clickCell(host->targetFields(), 3, 3);
        QCOMPARE(QApplication::focusWidget(), host->targetFields());
        QTest::keyClick(host->targetFields(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), source);
        QVERIFY(source->selectionModel()->isRowSelected(280, QModelIndex()));
        QVERIFY(source->viewport()->rect().intersects(source->visualRect(source->model()->index(280, 2))));
    }

    // Not a timing test: a source table of 10,000 fields fills the list
    // completely and sorts correctly both ways.
    void tenThousandSourceFields()
    {
        QVERIFY(host->open(u"manyf001"_s, manyFieldsDocument(3, 10000)));
        host->clickTab(1);
        QTreeView* source = host->sourceFields();
        const QStringList names = rows(source, 2);
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 10000);
        QVERIFY(names.contains(u"srcaa001.f00000"_s));
        QVERIFY(names.contains(u"srcaa001.f09999"_s));

        clickHeader(source, 2);
        QStringList sorted = rows(source, 2);
        QCOMPARE(sorted.size(), 10000);
        QCOMPARE(sorted.first(), u"srcaa001.f00000"_s);
        QVERIFY(std::is_sorted(sorted.begin(), sorted.end()));
        // Row 4711 of the sorted list is field f04711 with its own number.
        QCOMPARE(cell(source, 4711, 1), u"004711"_s);

        clickHeader(source, 2);
        sorted = rows(source, 2);
        QCOMPARE(sorted.first(), u"srcaa001.f09999"_s);
        QVERIFY(std::is_sorted(sorted.rbegin(), sorted.rend()));
    }
};

QTEST_MAIN(FieldListsTest)
#include "tst_fieldlists.moc"
