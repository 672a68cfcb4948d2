// The two field lists of the "Define Dumps" tab: what each column shows,
// column layout, check boxes, sorting by header clicks, GetListItemNumber,
// a click on a target field selecting its grid row, and the source list
// showing its selection when it gets the focus.

#include "DumpsHarness.h"

#include <QSet>
#include <QSignalSpy>

using namespace dumpstest;

namespace {

// One table's fields, used both as the target table LISTS001 and as the
// source table SRCAA001, so that both lists show the same cells.
const char* const kFields = R"(
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
)";

QString listsDocument()
{
    return mappingObject(QStringLiteral("lists001"), QString::fromUtf8(kFields),
                         {{QStringLiteral("srcaa001"), QString::fromUtf8(kFields)}},
                         QStringLiteral("<DUMP No=\"1\" TXT=\"Lists\"/>"), QStringLiteral("dump 1 Lists"));
}

// Many fields: "count" target fields and "count" source fields, named
// f00000 and up, with field numbers and positions in document order.
QString manyFieldsDocument(int targets, int sources)
{
    const auto fields = [](int count, bool scrambled) {
        QString out;
        for (int i = 0; i < count; ++i) {
            // Scrambled order makes sorting move nearly every row.
            const int n = scrambled ? (i * 7919) % count : i;
            out += QStringLiteral("<F%1 No=\"%2\" FNo=\"%3\" TYPE=\"S\" LENG=\"10\"/>")
                       .arg(QString::number(n).rightJustified(5, u'0'))
                       .arg(i + 1)
                       .arg(n);
        }
        return out;
    };
    return mappingObject(QStringLiteral("manyf001"), fields(targets, false),
                         {{QStringLiteral("srcaa001"), fields(sources, true)}},
                         QStringLiteral("<DUMP No=\"1\" TXT=\"Many\"/>"), QStringLiteral("dump 1 Many"));
}

int twipsToPixels(int twips, const QWidget* w)
{
    return qRound(twips * w->logicalDpiX() / 1440.0);
}

QStringList reversed(QStringList list)
{
    std::reverse(list.begin(), list.end());
    return list;
}

} // namespace

class FieldListsTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<Host> host;

    bool showLists()
    {
        if (!host->open(QStringLiteral("lists001"), listsDocument()))
            return false;
        host->enterDefineDumps();
        return host->sourceList()->model()->rowCount() == 11 && host->targetList()->model()->rowCount() == 11;
    }

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }
    void init() { host = std::make_unique<Host>(); }
    void cleanup()
    {
        QCOMPARE(host->modals.unexpected(), 0);
        host.reset();
    }

    void headerTexts_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("headers");
        QTest::newRow("source fields: nine columns")
            << QStringLiteral("lstSourceFields")
            << QStringList{{}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s,
                           u"Alignment"_s, u"Case"_s, u"Domain"_s};
        QTest::newRow("target fields: an empty leading column, then the same nine")
            << QStringLiteral("lstTargetFields")
            << QStringList{{}, {}, u"No"_s, u"Field Name"_s, u"Type"_s, u"Length"_s, u"Description"_s,
                           u"Alignment"_s, u"Case"_s, u"Domain"_s};
    }
    void headerTexts()
    {
        QFETCH(QString, list);
        QFETCH(QStringList, headers);
        QVERIFY(showLists());
        auto* view = host->control->findChild<QTreeView*>(list);
        QVERIFY(view);
        QStringList shown;
        for (int c = 0; c < view->model()->columnCount(); ++c)
            shown.append(view->model()->headerData(c, Qt::Horizontal).toString());
        QCOMPARE(shown, headers);
    }

    void listFonts()
    {
        QVERIFY(showLists());
        QCOMPARE(host->sourceList()->font().family(), u"Microsoft Sans Serif"_s);
        QCOMPARE(host->targetList()->font().family(), u"MS Sans Serif"_s);
    }

    void columnWidths_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QList<int>>("twips");
        QTest::newRow("source fields") << QStringLiteral("lstSourceFields")
                                       << QList<int>{706, 882, 2381, 1093, 882, 2187, 882, 882, 2540};
        QTest::newRow("target fields") << QStringLiteral("lstTargetFields")
                                       << QList<int>{441, 706, 882, 2293, 1093, 882, 2187, 882, 882, 2540};
    }
    void columnWidths()
    {
        QFETCH(QString, list);
        QFETCH(QList<int>, twips);
        QVERIFY(showLists());
        auto* view = host->control->findChild<QTreeView*>(list);
        QVERIFY(view);
        QCOMPARE(view->header()->count(), twips.size());
        for (int c = 0; c < twips.size(); ++c) {
            const int expected = twipsToPixels(twips[c], view);
            const int actual = view->header()->sectionSize(c);
            QVERIFY2(qAbs(actual - expected) <= 1,
                     qPrintable(QStringLiteral("column %1: %2 px, expected %3 px (%4 twips)")
                                    .arg(c)
                                    .arg(actual)
                                    .arg(expected)
                                    .arg(twips[c])));
        }
    }

    void alignment_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("right");
        QTest::newRow("source Length is right-aligned") << QStringLiteral("lstSourceFields") << 4 << true;
        QTest::newRow("source No is left-aligned") << QStringLiteral("lstSourceFields") << 1 << false;
        QTest::newRow("source Field Name is left-aligned") << QStringLiteral("lstSourceFields") << 2 << false;
        QTest::newRow("source Domain is left-aligned") << QStringLiteral("lstSourceFields") << 8 << false;
        QTest::newRow("target Length is right-aligned") << QStringLiteral("lstTargetFields") << 5 << true;
        QTest::newRow("target No is right-aligned") << QStringLiteral("lstTargetFields") << 2 << true;
        QTest::newRow("target Field Name is left-aligned") << QStringLiteral("lstTargetFields") << 3 << false;
        QTest::newRow("target Type is left-aligned") << QStringLiteral("lstTargetFields") << 4 << false;
    }
    void alignment()
    {
        QFETCH(QString, list);
        QFETCH(int, column);
        QFETCH(bool, right);
        QVERIFY(showLists());
        auto* view = host->control->findChild<QTreeView*>(list);
        QVERIFY(view);
        for (int r = 0; r < view->model()->rowCount(); ++r) {
            const int align =
                view->model()->data(view->model()->index(r, column), Qt::TextAlignmentRole).toInt() &
                Qt::AlignHorizontal_Mask;
            if (right)
                QVERIFY2(align & Qt::AlignRight, qPrintable(QStringLiteral("row %1").arg(r)));
            else
                QVERIFY2(!(align & (Qt::AlignRight | Qt::AlignHCenter)), qPrintable(QStringLiteral("row %1").arg(r)));
        }
    }

    void cellRules_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("cells"); // mark, No, field part of the name, type, length, description,
                                                // alignment, case, domain
        QTest::newRow("FNo 7 shows 007; MAN Y marks; ADJU R; CASE N; L is Long")
            << 0 << QStringList{u"*"_s, u"007"_s, u"custno"_s, u"Long"_s, u"8"_s, u"Customer number"_s,
                                u"Right"_s, u"No"_s, u"custno"_s};
        QTest::newRow("FNo 42 shows 042; MAN y gives no mark; ADJU L; CASE U")
            << 1 << QStringList{{}, u"042"_s, u"name"_s, u"String"_s, u"35"_s, u"Customer name"_s, u"Left"_s,
                                u"Upper"_s, {}};
        QTest::newRow("FNo 123 shows 00123; ADJU C; CASE L; M is Multi-Byte String")
            << 2 << QStringList{{}, u"00123"_s, u"city"_s, u"Multi-Byte String"_s, u"40"_s, {}, u"Centre"_s,
                                u"Lower"_s, {}};
        QTest::newRow("non-numeric FNo x1 shows 000; qty__2 shows qty(2); ADJU X and empty CASE show No; "
                      "Float without DIGA shows 8,")
            << 3 << QStringList{{}, u"000"_s, u"qty(2)"_s, u"Float"_s, u"8,"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("FNo 9 shows 009; T is Date of length 10 whatever LENG says")
            << 4 << QStringList{{}, u"009"_s, u"born"_s, u"Date"_s, u"10"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("FNo 10 shows 010; K is UTC of length 15")
            << 5 << QStringList{{}, u"010"_s, u"stamp"_s, u"UTC"_s, u"15"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("FNo 99 shows 099; U is Text without length")
            << 6 << QStringList{{}, u"099"_s, u"note"_s, u"Text"_s, {}, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("FNo 100 shows 00100; P is Set")
            << 7 << QStringList{{}, u"00100"_s, u"flags"_s, u"Set"_s, u"8"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("FNo 5.0 pads the text: 005.0; D is Double 15,2")
            << 8 << QStringList{{}, u"005.0"_s, u"rate"_s, u"Double"_s, u"15,2"_s, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("lower-case type s has no type and no length")
            << 9 << QStringList{{}, u"011"_s, u"kind"_s, {}, {}, {}, u"No"_s, u"No"_s, {}};
        QTest::newRow("a field without attributes still gives a row")
            << 10 << QStringList{{}, u"000"_s, u"empty"_s, {}, {}, {}, u"No"_s, u"No"_s, {}};
    }
    void cellRules()
    {
        QFETCH(int, row);
        QFETCH(QStringList, cells);
        QVERIFY(showLists());
        const struct {
            QTreeView* view;
            int offset;
            QString table;
        } lists[] = {{host->sourceList(), 0, u"srcaa001."_s}, {host->targetList(), 1, u"lists001."_s}};
        for (const auto& list : lists) {
            QStringList expected = cells;
            expected[2] = list.table + cells[2];
            QStringList shown;
            for (int c = 0; c < 9; ++c)
                shown.append(Host::cell(list.view, row, c + list.offset));
            QCOMPARE(shown, expected);
        }
        // The target list's leading column is always empty.
        QCOMPARE(Host::cell(host->targetList(), row, 0), QString());
    }

    void checkBoxesOnSourceListOnly()
    {
        QVERIFY(showLists());
        QTreeView* source = host->sourceList();
        QTreeView* target = host->targetList();
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
        Host::clickCheckBox(source, 2);
        QVERIFY(Host::ticked(source, 2));
        QVERIFY(!Host::ticked(source, 1));
        QVERIFY(!Host::ticked(source, 3));
        Host::clickCheckBox(source, 2);
        QVERIFY(!Host::ticked(source, 2));
    }

    void headerClicksSortAscendingThenDescending_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<int>("column");
        QTest::addColumn<QStringList>("ascending");
        // Numbers sort as text: 00123 comes before 007.
        const QStringList numbers{u"000"_s,   u"000"_s, u"00100"_s, u"00123"_s, u"005.0"_s, u"007"_s,
                                  u"009"_s,   u"010"_s, u"011"_s,   u"042"_s,   u"099"_s};
        const QStringList names{u"born"_s, u"city"_s, u"custno"_s, u"empty"_s, u"flags"_s, u"kind"_s,
                                u"name"_s, u"note"_s, u"qty(2)"_s, u"rate"_s,  u"stamp"_s};
        const QStringList types{{},          {},           u"Date"_s, u"Double"_s, u"Float"_s, u"Long"_s,
                                u"Multi-Byte String"_s, u"Set"_s, u"String"_s, u"Text"_s, u"UTC"_s};
        const auto qualified = [&names](const QString& table) {
            QStringList out;
            for (const QString& n : names)
                out.append(table + n);
            return out;
        };
        QTest::newRow("source list by No") << QStringLiteral("lstSourceFields") << 1 << numbers;
        QTest::newRow("source list by Field Name")
            << QStringLiteral("lstSourceFields") << 2 << qualified(QStringLiteral("srcaa001."));
        QTest::newRow("source list by Type") << QStringLiteral("lstSourceFields") << 3 << types;
        QTest::newRow("target list by No") << QStringLiteral("lstTargetFields") << 2 << numbers;
        QTest::newRow("target list by Field Name")
            << QStringLiteral("lstTargetFields") << 3 << qualified(QStringLiteral("lists001."));
    }
    void headerClicksSortAscendingThenDescending()
    {
        QFETCH(QString, list);
        QFETCH(int, column);
        QFETCH(QStringList, ascending);
        QVERIFY(showLists());
        auto* view = host->control->findChild<QTreeView*>(list);
        QVERIFY(view);
        const int nameColumn = list == u"lstSourceFields" ? 2 : 3;
        // Whole rows move: remember which number belongs to which name.
        QHash<QString, QString> numberOf;
        for (int r = 0; r < view->model()->rowCount(); ++r)
            numberOf.insert(Host::cell(view, r, nameColumn), Host::cell(view, r, nameColumn - 1));

        Host::clickHeader(view, column);
        QCOMPARE(Host::column(view, column), ascending);
        for (int r = 0; r < view->model()->rowCount(); ++r)
            QCOMPARE(Host::cell(view, r, nameColumn - 1), numberOf.value(Host::cell(view, r, nameColumn)));

        Host::clickHeader(view, column);
        QCOMPARE(Host::column(view, column), reversed(ascending));
        for (int r = 0; r < view->model()->rowCount(); ++r)
            QCOMPARE(Host::cell(view, r, nameColumn - 1), numberOf.value(Host::cell(view, r, nameColumn)));
    }

    // The order flips on every click of the list's headers, whichever
    // column is clicked.
    void everyHeaderClickFlipsTheOrder()
    {
        QVERIFY(showLists());
        QTreeView* view = host->sourceList();
        Host::clickHeader(view, 2); // ascending by name
        QCOMPARE(Host::cell(view, 0, 2), u"srcaa001.born"_s);
        Host::clickHeader(view, 1); // descending by number
        QCOMPARE(Host::column(view, 1),
                 (QStringList{u"099"_s, u"042"_s, u"011"_s, u"010"_s, u"009"_s, u"007"_s, u"005.0"_s,
                              u"00123"_s, u"00100"_s, u"000"_s, u"000"_s}));
    }

    void getListItemNumber_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("number");
        QTest::newRow("first row is number 1") << QStringLiteral("lists001.custno") << 1;
        QTest::newRow("array element by its shown name") << QStringLiteral("lists001.qty(2)") << 4;
        QTest::newRow("last row") << QStringLiteral("lists001.empty") << 11;
        QTest::newRow("upper case differs") << QStringLiteral("LISTS001.CUSTNO") << -1;
        QTest::newRow("one letter's case differs") << QStringLiteral("lists001.Custno") << -1;
        QTest::newRow("field part alone") << QStringLiteral("custno") << -1;
        QTest::newRow("stored array form") << QStringLiteral("lists001.qty__2") << -1;
        QTest::newRow("a source field is not a target row") << QStringLiteral("srcaa001.custno") << -1;
        QTest::newRow("trailing blank") << QStringLiteral("lists001.custno ") << -1;
    }
    void getListItemNumber()
    {
        QFETCH(QString, name);
        QFETCH(int, number);
        QVERIFY(showLists());
        int result = 0;
        QVERIFY(QMetaObject::invokeMethod(host->control, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                          Q_ARG(QString, name)));
        QCOMPARE(result, number);
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
        QTest::newRow("single target") << QStringLiteral("lists001") << listsDocument() << 11
                                       << QStringLiteral("lists001.empty");
        QTest::newRow("multi-target sample") << QStringLiteral("fghij100") << readSample(u"fghij100.xml"_s) << 23
                                             << QStringLiteral("fghij100.origin");
    }
    void showControlFillsTheTargetList()
    {
        QFETCH(QString, root);
        QFETCH(QString, xml);
        QFETCH(int, rows);
        QFETCH(QString, last);
        QVERIFY(host->open(root, xml));
        QCOMPARE(host->find<QTabWidget>("MainTab")->currentIndex(), 0);
        QCOMPARE(host->targetList()->model()->rowCount(), rows);
        int result = 0;
        QVERIFY(QMetaObject::invokeMethod(host->control, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                          Q_ARG(QString, last)));
        QCOMPARE(result, rows);
    }

    // The number is the row as the list shows it now.
    void getListItemNumberFollowsTheShownOrder()
    {
        QVERIFY(showLists());
        Host::clickHeader(host->targetList(), 3); // ascending by name: born, city, custno, ...
        int result = 0;
        QVERIFY(QMetaObject::invokeMethod(host->control, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                          Q_ARG(QString, u"lists001.born"_s)));
        QCOMPARE(result, 1);
        QVERIFY(QMetaObject::invokeMethod(host->control, "GetListItemNumber", Q_RETURN_ARG(int, result),
                                          Q_ARG(QString, u"lists001.custno"_s)));
        QCOMPARE(result, 3);
    }

    void targetRowClickSelectsGridRow_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("gridRow");
        // The list is sorted by name first, so that list rows and grid rows differ.
        QTest::newRow("custno, field No 1") << QStringLiteral("lists001.custno") << 0;
        QTest::newRow("qty(2), field No 4") << QStringLiteral("lists001.qty(2)") << 3;
        QTest::newRow("rate, field No 9") << QStringLiteral("lists001.rate") << 8;
        QTest::newRow("born, field No 5") << QStringLiteral("lists001.born") << 4;
    }
    void targetRowClickSelectsGridRow()
    {
        QFETCH(QString, field);
        QFETCH(int, gridRow);
        QVERIFY(showLists());
        QTreeView* list = host->targetList();
        Host::clickHeader(list, 3);
        const int listRow = Host::rowOf(list, 3, field);
        QVERIFY(listRow >= 0);
        QVERIFY(listRow != gridRow);
        Host::clickCell(list, listRow, 3);
        QTableView* grid = host->grid();
        QCOMPARE(grid->currentIndex().row(), gridRow);
        QCOMPARE(Host::cell(grid, gridRow, 0), field);
    }

    // In a long table the grid scrolls so that the clicked field's row is the
    // top row when it was not visible; a visible row does not scroll the grid.
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
        QVERIFY(host->open(QStringLiteral("manyf001"), manyFieldsDocument(300, 300)));
        host->enterDefineDumps();
        QTableView* grid = host->grid();
        QCOMPARE(grid->model()->rowCount(), 300);
        QCOMPARE(grid->rowAt(0), 0);
        const QRect before = grid->visualRect(grid->model()->index(row, 0));
        const bool visible = grid->viewport()->rect().contains(before);
        QCOMPARE(visible, top == 0);

        Host::clickCell(host->targetList(), row, 3);
        QCOMPARE(grid->currentIndex().row(), row);
        QCOMPARE(Host::cell(grid, row, 0), u"manyf001.f"_s + QString::number(row).rightJustified(5, u'0'));
        QVERIFY(grid->viewport()->rect().intersects(grid->visualRect(grid->currentIndex())));
        QCOMPARE(grid->rowAt(0), top);
    }

    // When the source list gets the focus, its selected row is scrolled
    // into view.
    void sourceListFocusShowsSelectedRow()
    {
        QVERIFY(host->open(QStringLiteral("manyf001"), manyFieldsDocument(20, 300)));
        host->enterDefineDumps();
        QTreeView* source = host->sourceList();
        Host::clickCell(source, 280, 2);
        QVERIFY(source->selectionModel()->isRowSelected(280, QModelIndex()));
        source->verticalScrollBar()->setValue(0);
        QVERIFY(!source->viewport()->rect().intersects(source->visualRect(source->model()->index(280, 2))));

        Host::clickCell(host->targetList(), 3, 3);
        QCOMPARE(QApplication::focusWidget(), host->targetList());
        QTest::keyClick(host->targetList(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), source);
        QVERIFY(source->selectionModel()->isRowSelected(280, QModelIndex()));
        QVERIFY(source->viewport()->rect().intersects(source->visualRect(source->model()->index(280, 2))));
    }

    // Not a timing test: a source table of 10,000 fields fills the list
    // completely and sorts correctly both ways.
    void tenThousandSourceFields()
    {
        QVERIFY(host->open(QStringLiteral("manyf001"), manyFieldsDocument(3, 10000)));
        host->enterDefineDumps();
        QTreeView* source = host->sourceList();
        QCOMPARE(source->model()->rowCount(), 10000);
        QSet<QString> names;
        for (int r = 0; r < 10000; ++r)
            names.insert(Host::cell(source, r, 2));
        QCOMPARE(names.size(), 10000);
        QVERIFY(names.contains(u"srcaa001.f00000"_s));
        QVERIFY(names.contains(u"srcaa001.f09999"_s));

        Host::clickHeader(source, 2);
        QCOMPARE(source->model()->rowCount(), 10000);
        QCOMPARE(Host::cell(source, 0, 2), u"srcaa001.f00000"_s);
        QCOMPARE(Host::cell(source, 9999, 2), u"srcaa001.f09999"_s);
        for (int r = 1; r < 10000; ++r)
            QVERIFY2(Host::cell(source, r - 1, 2) < Host::cell(source, r, 2), qPrintable(QString::number(r)));
        // Row 4711 of the sorted list is field f04711 with its own number.
        QCOMPARE(Host::cell(source, 4711, 1), u"004711"_s);

        Host::clickHeader(source, 2);
        QCOMPARE(Host::cell(source, 0, 2), u"srcaa001.f09999"_s);
        QCOMPARE(Host::cell(source, 9999, 2), u"srcaa001.f00000"_s);
        for (int r = 1; r < 10000; ++r)
            QVERIFY2(Host::cell(source, r - 1, 2) > Host::cell(source, r, 2), qPrintable(QString::number(r)));
    }
};

QTEST_MAIN(FieldListsTest)
#include "tst_fieldlists.moc"
