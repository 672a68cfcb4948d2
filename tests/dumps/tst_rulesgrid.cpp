// The rules grid and its overlay box: starting an edit by typing, Enter,
// Space and double click, committing by leaving the cell (and the dump
// element following at once), Escape, rules of two lines, clearing a rule,
// Tab, the overlay's place and size, and the host's GridEdit, GetRowNumber
// and FieldMapping.

#include "WidgetHarness.h"

#include <QMap>

using namespace fbtest;

class RulesGridTest : public HostTest {
    Q_OBJECT

    bool showRules(bool edit = true)
    {
        if (!host->open(u"rules001"_s, rulesDocument(), edit))
            return false;
        host->clickTab(1);
        return host->rules() == firstDumpRules();
    }
    // A person clicks a cell and types: the first key opens the overlay, the
    // rest goes into it.
    void typeOver(int row, int column, const QString& text)
    {
        clickCell(host->grid(), row, column);
        QTest::keyClick(host->grid(), text.at(0).toLatin1());
        QTest::keyClicks(host->overlay(), text.mid(1));
    }
    // Click a cell, Enter opens its rule in the overlay.
    void openRule(int row)
    {
        clickCell(host->grid(), row, 1);
        QTest::keyClick(host->grid(), Qt::Key_Return);
    }
    int gridRow() const { return host->grid()->currentIndex().row(); }
    int gridColumn() const { return host->grid()->currentIndex().column(); }
    QString overlayText() const { return plainText(host->overlay()); }

private Q_SLOTS:
    void startingAnEdit_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("overlay");
        // Row 2 holds the rule "srcbb002.city".
        const QString rule = u"srcbb002.city"_s;
        QTest::newRow("a letter typed over the rule starts a new rule with it") << 1 << u"key q"_s << u"q"_s;
        QTest::newRow("a letter typed over the field name starts the rule") << 0 << u"key q"_s << u"q"_s;
        QTest::newRow("Enter opens the rule unchanged") << 1 << u"enter"_s << rule;
        QTest::newRow("Enter on the field name opens the rule") << 0 << u"enter"_s << rule;
        QTest::newRow("Space opens the rule unchanged") << 1 << u"space"_s << rule;
        QTest::newRow("Backspace opens the rule unchanged") << 1 << u"backspace"_s << rule;
        QTest::newRow("double click opens the rule unchanged") << 1 << u"double click"_s << rule;
    }
    void startingAnEdit()
    {
        QFETCH(int, column);
        QFETCH(QString, action);
        QFETCH(QString, overlay);
        QVERIFY(showRules());
        QAbstractItemView* grid = host->grid();
        if (action == u"double click"_s) {
            doubleClickCell(grid, 2, column);
        } else {
            clickCell(grid, 2, column);
            QCOMPARE(gridColumn(), column);
            const QMap<QString, Qt::Key> keys{
                {u"enter"_s, Qt::Key_Return}, {u"space"_s, Qt::Key_Space}, {u"backspace"_s, Qt::Key_Backspace}};
            if (keys.contains(action))
                QTest::keyClick(grid, keys.value(action));
            else
                QTest::keyClick(grid, action.back().toLatin1());
        }
        QVERIFY(host->overlay()->isVisible());
        QCOMPARE(QApplication::focusWidget(), host->overlay());
        QCOMPARE(overlayText(), overlay);
        QCOMPARE(gridRow(), 2);
        QCOMPARE(gridColumn(), 1);
        // Nothing is written before the edit is committed.
        QCOMPARE(host->rule(2), u"srcbb002.city"_s);
        QCOMPARE(cell(grid, 2, 0), u"rules001.city"_s);
    }

    // Leaving an edited cell writes the rule element into the dump at once.
    void leavingTheCellStoresTheDump()
    {
        QVERIFY(showRules());
        typeOver(1, 1, u"left(srcaa001.name, 10)"_s);
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->rule(1), u"left(srcaa001.name, 10)"_s);
        // Had NAME not been written yet, this would create it without No.
        host->setRuleTextNumber(1, u"name"_s, 41);
        XmlElement doc = host->document();
        const XmlElement name = doc.dump(1).child(u"NAME"_s);
        QCOMPARE(name.attribute(u"No"_s), u"2"_s);
        QCOMPARE(name.attribute(u"TYPE"_s), u"0"_s);
        QCOMPARE(name.text, u"left(srcaa001.name, 10)"_s);

        // The element as the store creates it.
        typeOver(3, 1, u"utc(srcaa001.born,0,2)"_s);
        clickCell(host->grid(), 6, 1);
        doc = host->document();
        const XmlElement born = doc.dump(1).child(u"BORN"_s);
        QCOMPARE(born.attribute(u"No"_s), u"4"_s);
        QCOMPARE(born.attribute(u"TYPE"_s), u"0"_s);
        QVERIFY(born.hasAttribute(u"TEXT"_s));
        QCOMPARE(born.attribute(u"TEXT"_s), QString());
        QCOMPARE(born.text, u"utc(srcaa001.born,0,2)"_s);
        // Rules of other fields are untouched; a single-target dump gets no TT.
        QCOMPARE(doc.dump(1).child(u"CITY"_s).text, u"srcbb002.city"_s);
        QVERIFY(!doc.dump(1).hasAttribute(u"TT"_s));
        QCOMPARE(doc.dump(2).childNames(), (QStringList{u"NAME"_s, u"REMARK"_s}));
    }

    void escapeLeavesTheCellAsItWas_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("typed");
        QTest::newRow("typed over a rule") << 2 << u"z"_s << u"zz"_s;
        QTest::newRow("added to a rule opened with Enter") << 2 << u"enter"_s << u" + 1"_s;
    }
    void escapeLeavesTheCellAsItWas()
    {
        QFETCH(int, row);
        QFETCH(QString, start);
        QFETCH(QString, typed);
        QVERIFY(showRules());
        const QString before = host->rule(row);
        if (start == u"enter"_s) {
            openRule(row);
            QTest::keyClicks(host->overlay(), typed);
        } else {
            typeOver(row, 1, start + typed);
        }
        QVERIFY(overlayText() != before);
        QTest::keyClick(host->overlay(), Qt::Key_Escape);
        QVERIFY(!host->overlay()->isVisible());
        QCOMPARE(QApplication::focusWidget(), host->grid());
        QCOMPARE(host->rule(row), before);
        // Leaving the cell afterwards writes nothing either.
        clickCell(host->grid(), 8, 1);
        QCOMPARE(host->rules(), firstDumpRules());
        const XmlElement dump1 = host->document().dump(1);
        QCOMPARE(dump1.childNames(), (QStringList{u"ZIP"_s, u"CUSTNO"_s, u"CITY"_s}));
        QCOMPARE(dump1.child(u"CITY"_s).text, u"srcbb002.city"_s);
    }

    void ruleOfTwoLines()
    {
        QVERIFY(showRules());
        openRule(7);
        typeText(host->overlay(), u"if srcaa001.memo then\nreturn 1"_s);
        QCOMPARE(overlayText(), u"if srcaa001.memo then\nreturn 1"_s);
        clickCell(host->grid(), 0, 1);
        QCOMPARE(host->rule(7), u"if srcaa001.memo then\r\nreturn 1"_s);
        const XmlElement remark = host->document().dump(1).child(u"REMARK"_s);
        QCOMPARE(remark.attribute(u"TYPE"_s), u"1"_s);
        QCOMPARE(remark.attribute(u"No"_s), u"8"_s);
        QCOMPARE(remark.text, u"if srcaa001.memo then\nreturn 1"_s);
        // Away to dump 2 and back: the rule shows as two lines again.
        host->chooseDump(2);
        QCOMPARE(host->rule(7), u"line one\r\nline two"_s);
        host->chooseDump(1);
        QCOMPARE(host->rule(7), u"if srcaa001.memo then\r\nreturn 1"_s);
        openRule(7);
        QCOMPARE(overlayText(), u"if srcaa001.memo then\nreturn 1"_s);
        // A rule that loses its line break is stored with TYPE "0" again.
        QTest::keyClick(host->overlay(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(host->overlay(), u"one line"_s);
        clickCell(host->grid(), 0, 1);
        const XmlElement oneLine = host->document().dump(1).child(u"REMARK"_s);
        QCOMPARE(oneLine.text, u"one line"_s);
        QCOMPARE(oneLine.attribute(u"TYPE"_s), u"0"_s);
    }

    // A rule's text is decoded once more when it is shown: the characters
    // "&lt;" typed into a rule come back as "<" after the dump is shown again.
    void ruleTextIsDecodedWhenShown()
    {
        const QString dumps = uR"(<DUMP No="1" TXT="First">
<NAME No="2" TYPE="0" TEXT="">a &amp;lt; b &amp;amp;&amp;amp; c &gt; d</NAME>
</DUMP><DUMP No="2" TXT="Second"/>)"_s;
        QVERIFY(host->open(u"rules001"_s, rulesDocument(dumps)));
        host->clickTab(1);
        QCOMPARE(host->rule(1), u"a < b && c > d"_s);
        typeOver(2, 1, u"x &lt; y &amp; z"_s);
        clickCell(host->grid(), 0, 1);
        QCOMPARE(host->rule(2), u"x &lt; y &amp; z"_s);
        QCOMPARE(host->document().dump(1).child(u"CITY"_s).text, u"x &lt; y &amp; z"_s);
        host->chooseDump(2);
        host->chooseDump(1);
        QCOMPARE(host->rule(2), u"x < y & z"_s);
    }

    void clearingARuleRemovesItsElement()
    {
        QVERIFY(showRules());
        openRule(2);
        QTest::keyClick(host->overlay(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(host->overlay(), Qt::Key_Delete);
        QCOMPARE(overlayText(), QString());
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->rule(2), QString());
        QCOMPARE(host->document().dump(1).childNames(), (QStringList{u"ZIP"_s, u"CUSTNO"_s}));
    }

    // Committing by moving the focus away moves on to the row below, but
    // stays on the last row.
    void committingMovesToTheRowBelow_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("after");
        QTest::newRow("a middle row") << 4 << 5;
        QTest::newRow("the last row stays current") << 9 << 9;
    }
    void committingMovesToTheRowBelow()
    {
        QFETCH(int, row);
        QFETCH(int, after);
        QVERIFY(showRules());
        typeOver(row, 1, u"w"_s);
        clickCell(host->sourceFields(), 0, 2);
        QCOMPARE(QApplication::focusWidget(), host->sourceFields());
        QVERIFY(!host->overlay()->isVisible());
        QCOMPARE(host->rule(row), u"w"_s);
        QCOMPARE(gridRow(), after);
    }

    // An edit still open when another dump is chosen goes into the dump it
    // was typed in.
    void openEditIsKeptWhenAnotherDumpIsChosen_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("element");
        QTest::newRow("a middle row") << 1 << u"NAME"_s;
        QTest::newRow("the last row") << 9 << u"ZIP"_s;
    }
    void openEditIsKeptWhenAnotherDumpIsChosen()
    {
        QFETCH(int, row);
        QFETCH(QString, element);
        QVERIFY(showRules());
        typeOver(row, 1, u"pending"_s);
        host->chooseDump(2);
        QCOMPARE(host->dumpCaption(), u"F&ields of Dump: 2:Second"_s);
        QVERIFY(!host->overlay()->isVisible());
        const XmlElement doc = host->document();
        QCOMPARE(doc.dump(1).child(element).text, u"pending"_s);
        QVERIFY(doc.dump(2).child(u"ZIP"_s).isNull());
        QCOMPARE(doc.dump(2).child(u"NAME"_s).text, u"srcaa001.name"_s);
        host->chooseDump(1);
        QCOMPARE(host->rule(row), u"pending"_s);
    }

    // In read-only mode the overlay is locked: typing changes no rule.
    void overlayIsLockedInReadOnlyMode()
    {
        QVERIFY(showRules(false));
        openRule(2);
        QVERIFY(host->overlay()->isVisible());
        QVERIFY(host->readOnly(u"txtgrdline"_s));
        QTest::keyClicks(host->overlay(), u"abc"_s);
        QCOMPARE(overlayText(), u"srcbb002.city"_s);
        clickCell(host->grid(), 5, 1);
        QCOMPARE(host->rules(), firstDumpRules());
    }

    void tabInTheGrid_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("after");
        QTest::newRow("from the field name to the rule below") << 3 << 0 << 4;
        QTest::newRow("the last row stays") << 9 << 1 << 9;
    }
    void tabInTheGrid()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(int, after);
        QVERIFY(showRules());
        clickCell(host->grid(), row, column);
        QTest::keyClick(host->grid(), Qt::Key_Tab);
        QCOMPARE(gridRow(), after);
        QCOMPARE(gridColumn(), 1);
        QCOMPARE(QApplication::focusWidget(), host->grid());
        QVERIFY(!host->overlay()->isVisible());
        QCOMPARE(host->rules(), firstDumpRules());
    }

    void tabInTheOverlayCommits()
    {
        QVERIFY(showRules());
        typeOver(3, 1, u"x"_s);
        QTest::keyClick(host->overlay(), Qt::Key_Tab);
        QVERIFY(!host->overlay()->isVisible());
        QCOMPARE(QApplication::focusWidget(), host->grid());
        QCOMPARE(host->rule(3), u"x"_s);
        QVERIFY(gridRow() > 3);
    }

    // The overlay covers the current cell, 70 twips narrower than it, in the
    // cell's font.
    void overlayCoversTheCell_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("first row") << 0;
        QTest::newRow("last row") << 9;
    }
    void overlayCoversTheCell()
    {
        QFETCH(int, row);
        QVERIFY(showRules());
        QAbstractItemView* grid = host->grid();
        QWidget* overlay = host->overlay();
        openRule(row);
        QVERIFY(overlay->isVisible());
        const QRect cell = grid->visualRect(grid->currentIndex());
        QCOMPARE(overlay->mapToGlobal(QPoint(0, 0)), grid->viewport()->mapToGlobal(cell.topLeft()));
        QCOMPARE(overlay->height(), cell.height());
        const double narrower = 70.0 * grid->logicalDpiX() / 1440.0; // about 5 px at 96 DPI
        QVERIFY2(qAbs(cell.width() - overlay->width() - narrower) < 1.0,
                 qPrintable(u"cell %1 px, overlay %2 px"_s.arg(cell.width()).arg(overlay->width())));
        QCOMPARE(overlay->font().family(), grid->font().family());
        QCOMPARE(overlay->font().pointSizeF(), grid->font().pointSizeF());
    }

    // The host's GridEdit opens the current rule for a key code up to 32
    // and starts a new rule with the character of a higher one.
    void gridEditFromTheHost_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("overlay");
        QTest::newRow("code 13 on the rule") << 1 << 13 << u"srcaa001.zip"_s;
        QTest::newRow("code 0 on the field name") << 0 << 0 << u"srcaa001.zip"_s;
        QTest::newRow("code 113 starts a rule with q") << 1 << 113 << u"q"_s;
    }
    void gridEditFromTheHost()
    {
        QFETCH(int, column);
        QFETCH(int, key);
        QFETCH(QString, overlay);
        QVERIFY(showRules());
        clickCell(host->grid(), 9, column);
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "GridEdit", Q_ARG(short, short(key))));
        QVERIFY(host->overlay()->isVisible());
        QCOMPARE(QApplication::focusWidget(), host->overlay());
        QCOMPARE(overlayText(), overlay);
        QCOMPARE(gridRow(), 9);
        QCOMPARE(gridColumn(), 1);
        // The host's edit commits like a typed one.
        QTest::keyClick(host->overlay(), Qt::Key_End);
        QTest::keyClicks(host->overlay(), u"_2"_s);
        clickCell(host->grid(), 0, 1);
        QCOMPARE(host->rule(9), overlay + u"_2"_s);
        QCOMPARE(cell(host->grid(), 9, 0), u"rules001.zip"_s);
    }

    void getRowNumber_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("row");
        QTest::newRow("first row is 0") << u"rules001.custno"_s << 0;
        QTest::newRow("array element") << u"rules001.note(2)"_s << 6;
        QTest::newRow("last row") << u"rules001.zip"_s << 9;
        QTest::newRow("field part alone") << u"city"_s << -1;
        QTest::newRow("stored array form") << u"rules001.note__2"_s << -1;
        QTest::newRow("a prefix of a name") << u"rules001.cit"_s << -1;
    }
    void getRowNumber()
    {
        QFETCH(QString, name);
        QFETCH(int, row);
        QVERIFY(showRules());
        int result = -2;
        QVERIFY(QMetaObject::invokeMethod(host->ctl, "GetRowNumber", Q_RETURN_ARG(int, result), Q_ARG(QString, name)));
        QCOMPARE(result, row);
    }

    void fieldMapping_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("rule");
        QTest::newRow("a row without a rule") << 4 << 1 << u"utc.utc(srcbb002.stamp)"_s;
        QTest::newRow("field name current: the rule cell takes it") << 6 << 0 << u"g()"_s;
        QTest::newRow("last row, two lines") << 9 << 1 << u"a\r\nb"_s;
    }
    void fieldMapping()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(QString, rule);
        QVERIFY(showRules());
        clickCell(host->grid(), row, column);
        QCOMPARE(host->ctl->property("FieldMapping").toString(), QString::number(row));
        const QString name = cell(host->grid(), row, 0);
        host->ctl->setProperty("FieldMapping", rule);
        QStringList expected = firstDumpRules();
        expected[row] = rule;
        QCOMPARE(host->rules(), expected);
        QCOMPARE(cell(host->grid(), row, 0), name);
        // Reading gives the row number, not the text assigned.
        QCOMPARE(host->ctl->property("FieldMapping").toString(), QString::number(row));
    }

    // Entering a grid cell selects that field in the target list, wherever
    // the list shows it.
    void enteringACellSelectsTheTargetField()
    {
        QVERIFY(showRules());
        QTreeView* list = host->targetFields();
        clickHeader(list, 3);
        clickHeader(list, 3); // descending by name
        QCOMPARE(cell(list, 0, 3), u"rules001.zip"_s);
        clickCell(host->grid(), 4, 1);
        QCOMPARE(cell(list, list->currentIndex().row(), 3), u"rules001.stamp"_s);
        QVERIFY(list->selectionModel()->isRowSelected(list->currentIndex().row(), QModelIndex()));
        QTest::keyClick(host->grid(), Qt::Key_Down);
        QCOMPARE(gridRow(), 5);
        QCOMPARE(cell(list, list->currentIndex().row(), 3), u"rules001.note(1)"_s);
        QVERIFY(list->selectionModel()->isRowSelected(list->currentIndex().row(), QModelIndex()));
        QVERIFY(!host->overlay()->isVisible());
    }
};

QTEST_MAIN(RulesGridTest)
#include "tst_rulesgrid.moc"
