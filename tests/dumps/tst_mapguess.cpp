// The two rule builders of the "Define Dumps" tab: Ma&p (ticked source
// fields become the rule of the selected target field) and &Guess (rules
// from matching field names, after a question when rules exist, stored into
// the dump at the end).

#include "DumpsHarness.h"

using namespace dumpstest;

namespace {

const QStringList kFirstDumpRules{u"srcaa001.custno"_s, {}, u"srcbb002.city"_s, {}, {}, {}, {}, {}, {},
                                  u"srcaa001.zip"_s};

// What guessing gives for the rules document (see DumpsHarness.h for its
// rows): custno occurs in both source tables, the later one wins; note(1)
// takes the plain source field note; note(2) matches srcaa001.note(2)
// exactly but the later srcbb002.note replaces it; remark and lang have no
// source field of their name.
const QStringList kGuessedRules{u"srcbb002.custno"_s,
                                u"srcaa001.name"_s,
                                u"srcbb002.city"_s,
                                u"utc(srcaa001.born,0,2)"_s,
                                u"utc.utc(srcbb002.stamp)"_s,
                                u"srcbb002.note"_s,
                                u"srcbb002.note"_s,
                                {},
                                {},
                                u"srcaa001.zip"_s};

QString guessQuestion(const QString& caption)
{
    return u"You may lose some/all Data of "_s + caption + u"\n Press 'Yes' to Proceed; 'No' to Cancel "_s;
}

} // namespace

class MapGuessTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<Host> host;

    bool show(const QString& root, const QString& xml)
    {
        if (!host->open(root, xml))
            return false;
        host->enterDefineDumps();
        return host->grid()->model()->rowCount() > 0;
    }
    bool showRules() { return show(QStringLiteral("rules001"), rulesDocument()) && host->rules() == kFirstDumpRules; }

    void selectTarget(const QString& name)
    {
        const int row = Host::rowOf(host->targetList(), 3, name);
        QVERIFY2(row >= 0, qPrintable(name));
        Host::clickCell(host->targetList(), row, 3);
        QVERIFY(host->targetList()->selectionModel()->isRowSelected(row, QModelIndex()));
    }

    QList<int> tickedRows() const
    {
        QList<int> out;
        for (int r = 0; r < host->sourceList()->model()->rowCount(); ++r)
            if (Host::ticked(host->sourceList(), r))
                out.append(r);
        return out;
    }

    void clickMap() { QTest::mouseClick(host->button("CmdMap"), Qt::LeftButton); }
    void clickGuess() { QTest::mouseClick(host->button("CmdGuess"), Qt::LeftButton); }

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }
    void init() { host = std::make_unique<Host>(); }
    void cleanup()
    {
        QCOMPARE(host->modals.unexpected(), 0);
        QCOMPARE(host->modals.pending(), 0);
        host.reset();
    }

    // ---- Ma&p --------------------------------------------------------------

    void mapWithoutSelectedTargetDoesNothing()
    {
        QVERIFY(showRules());
        QTreeView* targets = host->targetList();
        // Nothing selected in the target list (a Ctrl+click takes away a selection).
        const QModelIndexList selected = targets->selectionModel()->selectedRows();
        if (!selected.isEmpty())
            Host::clickCell(targets, selected.first().row(), 3, Qt::ControlModifier);
        QVERIFY(targets->selectionModel()->selectedRows().isEmpty());
        Host::clickCheckBox(host->sourceList(), 0);
        Host::clickCheckBox(host->sourceList(), 6);
        QCOMPARE(tickedRows(), (QList<int>{0, 6}));
        clickMap();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), kFirstDumpRules);
        QCOMPARE(tickedRows(), (QList<int>{0, 6}));
    }

    void mapWithNothingTickedShowsMessage()
    {
        QVERIFY(showRules());
        selectTarget(u"rules001.name"_s);
        host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        clickMap();
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& box = host->modals.records().first();
        QCOMPARE(box.text, u"Please choose a source field to map"_s);
        QCOMPARE(box.title, QString());
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(host->rules(), kFirstDumpRules);
    }

    void mapTickedFields_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QList<int>>("ticks"); // source rows, in the order ticked
        QTest::addColumn<QString>("rule");
        QTest::newRow("one String onto a String") << QStringLiteral("rules001.name") << QList<int>{1}
                                                  << QStringLiteral("srcaa001.name");
        QTest::newRow("three in list order, ticked last first")
            << QStringLiteral("rules001.city") << QList<int>{6, 0, 1}
            << QStringLiteral("srcaa001.custno,srcaa001.name,srcaa001.zip");
        QTest::newRow("across source tables, in list order")
            << QStringLiteral("rules001.city") << QList<int>{8, 0} << QStringLiteral("srcaa001.custno,srcbb002.city");
        QTest::newRow("Date onto UTC") << QStringLiteral("rules001.stamp") << QList<int>{2}
                                       << QStringLiteral("utc(srcaa001.born,0)");
        QTest::newRow("Date onto Date") << QStringLiteral("rules001.born") << QList<int>{3}
                                        << QStringLiteral("utc(srcaa001.created,0,2)");
        QTest::newRow("UTC onto Date stays as it is") << QStringLiteral("rules001.born") << QList<int>{9}
                                                      << QStringLiteral("srcbb002.stamp");
        QTest::newRow("UTC onto UTC") << QStringLiteral("rules001.stamp") << QList<int>{9}
                                      << QStringLiteral("utc.utc(srcbb002.stamp)");
        QTest::newRow("two Dates onto UTC, each converted")
            << QStringLiteral("rules001.stamp") << QList<int>{3, 2}
            << QStringLiteral("utc(srcaa001.born,0),utc(srcaa001.created,0)");
        QTest::newRow("String array element onto a String")
            << QStringLiteral("rules001.name") << QList<int>{4} << QStringLiteral("srcaa001.note(1,2)");
        QTest::newRow("String array element onto a Multi-Byte String")
            << QStringLiteral("rules001.lang") << QList<int>{4} << QStringLiteral("srcaa001.note(1,2)");
        QTest::newRow("String array element onto a String array element")
            << QStringLiteral("rules001.note(1)") << QList<int>{4} << QStringLiteral("srcaa001.note(1,2)");
        QTest::newRow("String array element onto a Long stays as it is")
            << QStringLiteral("rules001.custno") << QList<int>{4} << QStringLiteral("srcaa001.note(2)");
        QTest::newRow("Text onto a String stays as it is")
            << QStringLiteral("rules001.name") << QList<int>{5} << QStringLiteral("srcaa001.memo");
        QTest::newRow("an existing rule is replaced, not added to")
            << QStringLiteral("rules001.city") << QList<int>{6} << QStringLiteral("srcaa001.zip");
    }
    void mapTickedFields()
    {
        QFETCH(QString, target);
        QFETCH(QList<int>, ticks);
        QFETCH(QString, rule);
        QVERIFY(showRules());
        selectTarget(target);
        for (int r : ticks)
            Host::clickCheckBox(host->sourceList(), r);
        QCOMPARE(tickedRows().size(), ticks.size());
        clickMap();
        QCOMPARE(host->modals.count(), 0);
        int row = -1;
        QVERIFY(QMetaObject::invokeMethod(host->control, "GetRowNumber", Q_RETURN_ARG(int, row),
                                          Q_ARG(QString, target)));
        QStringList expected = kFirstDumpRules;
        expected[row] = rule;
        QCOMPARE(host->rules(), expected);
        QCOMPARE(tickedRows(), QList<int>());
    }

    // The source list is walked in the order it shows, also after sorting.
    void mapFollowsTheSortedSourceList()
    {
        QVERIFY(showRules());
        QTreeView* source = host->sourceList();
        Host::clickHeader(source, 2);
        Host::clickHeader(source, 2); // descending by name
        selectTarget(u"rules001.city"_s);
        Host::clickCheckBox(source, Host::rowOf(source, 2, u"srcaa001.custno"_s));
        Host::clickCheckBox(source, Host::rowOf(source, 2, u"srcaa001.zip"_s));
        Host::clickCheckBox(source, Host::rowOf(source, 2, u"srcbb002.city"_s));
        clickMap();
        QCOMPARE(host->rule(2), u"srcbb002.city,srcaa001.zip,srcaa001.custno"_s);
    }

    // Alt+P reaches the "Ma&p" button on this tab.
    void altPPressesMap()
    {
        QVERIFY(showRules());
        QCOMPARE(host->button("CmdMap")->text(), u"Ma&p"_s);
        selectTarget(u"rules001.zip"_s);
        Host::clickCheckBox(host->sourceList(), 10);
        QCOMPARE(QApplication::focusWidget(), host->sourceList());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
        // An access key presses its button the way a click does, a moment later.
        QTRY_COMPARE(host->rule(9), u"srcbb002.note"_s);
        QCOMPARE(tickedRows(), QList<int>());
    }

    // Ma&p writes the grid only; the dump follows at the next store.
    void mapWritesIntoTheGridOnly()
    {
        QVERIFY(showRules());
        selectTarget(u"rules001.name"_s);
        Host::clickCheckBox(host->sourceList(), 1);
        clickMap();
        QCOMPARE(host->rule(1), u"srcaa001.name"_s);
        // NAME has no element yet: the host's text number creates one with TEXT only.
        host->setRuleTextNumber(1, u"name"_s, 7);
        const XmlElement doc = host->document();
        const XmlElement* name = doc.dump(1)->child(u"NAME"_s);
        QVERIFY(name);
        QVERIFY(!name->hasAttribute(u"No"_s));
        QCOMPARE(name->attribute(u"TEXT"_s), u"7"_s);
        QCOMPARE(name->text, u"srcaa001.name"_s); // stored by the read
        QCOMPARE(name->attribute(u"TYPE"_s), u"0"_s);
    }

    // ---- &Guess ------------------------------------------------------------

    void guessOnEmptyGridAsksNothing()
    {
        QVERIFY(showRules());
        host->chooseDump(3);
        QCOMPARE(host->rules(), QStringList(10, QString()));
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), kGuessedRules);
    }

    // The guessed rules are written into the dump when guessing ends.
    void guessStoresTheDump()
    {
        QVERIFY(showRules());
        host->chooseDump(3);
        clickGuess();
        // Had ZIP not been written yet, this would create it without No.
        host->setRuleTextNumber(3, u"zip"_s, 9);
        const XmlElement doc = host->document();
        const XmlElement* dump3 = doc.dump(3);
        QVERIFY(dump3);
        QCOMPARE(dump3->child(u"ZIP"_s)->attribute(u"No"_s), u"10"_s);
        QCOMPARE(dump3->child(u"ZIP"_s)->attribute(u"TEXT"_s), u"9"_s);
        QCOMPARE(dump3->childNames(), (QStringList{u"CUSTNO"_s, u"NAME"_s, u"CITY"_s, u"BORN"_s, u"STAMP"_s,
                                                   u"NOTE__1"_s, u"NOTE__2"_s, u"ZIP"_s}));
        const XmlElement* note1 = dump3->child(u"NOTE__1"_s);
        QCOMPARE(note1->text, u"srcbb002.note"_s);
        QCOMPARE(note1->attribute(u"No"_s), u"6"_s);
        QCOMPARE(note1->attribute(u"TYPE"_s), u"0"_s);
        QCOMPARE(dump3->child(u"BORN"_s)->text, u"utc(srcaa001.born,0,2)"_s);
    }

    void guessAsksWhenAnyRuleExists_data()
    {
        QTest::addColumn<QString>("dumps");
        QTest::addColumn<QString>("references");
        QTest::addColumn<int>("dump");
        QTest::addColumn<QString>("caption");
        QTest::newRow("a rule in row 0 only")
            << QStringLiteral("<DUMP No=\"1\" TXT=\"First\"><CUSTNO No=\"1\" TYPE=\"0\" TEXT=\"\">x</CUSTNO></DUMP>")
            << QStringLiteral("dump 1 First") << 1 << QStringLiteral("F&ields of Dump: 1:First");
        QTest::newRow("a rule in the last row only")
            << QStringLiteral("<DUMP No=\"1\" TXT=\"First\"><ZIP No=\"10\" TYPE=\"0\" TEXT=\"\">x</ZIP></DUMP>")
            << QStringLiteral("dump 1 First") << 1 << QStringLiteral("F&ields of Dump: 1:First");
        QTest::newRow("the second dump") << rulesDumps() << QStringLiteral("dump 1 First\ndump 2 Second") << 2
                                         << QStringLiteral("F&ields of Dump: 2:Second");
        QTest::newRow("dump 5: the title has no leading zero")
            << QStringLiteral("<DUMP No=\"5\" TXT=\"Fifth\"><NAME No=\"2\" TYPE=\"0\" TEXT=\"\">x</NAME></DUMP>")
            << QStringLiteral("dump 5 Fifth") << 5 << QStringLiteral("F&ields of Dump: 5:Fifth");
    }
    void guessAsksWhenAnyRuleExists()
    {
        QFETCH(QString, dumps);
        QFETCH(QString, references);
        QFETCH(int, dump);
        QFETCH(QString, caption);
        QVERIFY(show(QStringLiteral("rules001"),
                     mappingObject(QStringLiteral("rules001"), rulesTargetFields(), rulesSourceTables(), dumps,
                                   references)));
        if (host->cmbDump()->currentData().toInt() != dump)
            host->chooseDump(dump);
        QCOMPARE(host->details()->title(), caption);
        host->activate();
        host->modals.expect(ModalAnswerer::press(QMessageBox::Yes));
        clickGuess();
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord& box = host->modals.records().first();
        QCOMPARE(box.text, guessQuestion(caption));
        QCOMPARE(box.title, u"Guessing rules for dump : "_s + QString::number(dump));
        QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box.icon, QMessageBox::Critical);
        // "Yes": every field with a source field of its name gets its rule.
        QStringList expected = kGuessedRules;
        if (dump == 2)
            expected[7] = u"line one\r\nline two"_s; // REMARK has no source field of its name
        QCOMPARE(host->rules(), expected);
    }

    void guessAnsweredNoChangesNothing()
    {
        QVERIFY(showRules());
        const QString before = host->xml();
        host->modals.expect(ModalAnswerer::press(QMessageBox::No));
        clickGuess();
        QCOMPARE(host->modals.count(), 1);
        QCOMPARE(host->rules(), kFirstDumpRules);
        QCOMPARE(host->xml(), before);
    }

    void guessKeepsRulesOfUnmatchedFields()
    {
        const QString dumps = QStringLiteral(R"(<DUMP No="1" TXT="First">
<REMARK No="8" TYPE="0" TEXT="">keep.me</REMARK>
<LANG No="9" TYPE="0" TEXT="">keep.too</LANG>
<NAME No="2" TYPE="0" TEXT="">replace.me</NAME>
</DUMP>)");
        QVERIFY(show(QStringLiteral("rules001"), rulesDocument(dumps)));
        host->modals.expect(ModalAnswerer::press(QMessageBox::Yes));
        clickGuess();
        QStringList expected = kGuessedRules;
        expected[7] = u"keep.me"_s;
        expected[8] = u"keep.too"_s;
        QCOMPARE(host->rules(), expected);
    }

    // Without source fields guessing ends at once: no question either.
    void guessWithoutSourceFieldsDoesNothing()
    {
        QVERIFY(show(QStringLiteral("rules001"),
                     mappingObject(QStringLiteral("rules001"), rulesTargetFields(), {{u"srcaa001"_s, QString()}},
                                   rulesDumps(), QStringLiteral("dump 1 First"))));
        QCOMPARE(host->sourceList()->model()->rowCount(), 0);
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), kFirstDumpRules);
    }

    // Among source fields of the same name, one of a table named like the
    // target table wins and ends the search; otherwise the last one wins.
    void guessTieBreak_data()
    {
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<QString>("rule");
        QTest::newRow("the last of two other tables")
            << QStringList{u"srcaa001"_s, u"srcbb002"_s} << QStringLiteral("srcbb002.name");
        QTest::newRow("the last of three other tables")
            << QStringList{u"srcaa001"_s, u"srcbb002"_s, u"srccc003"_s} << QStringLiteral("srccc003.name");
        QTest::newRow("the target's own name first, another table later")
            << QStringList{u"tgtab001"_s, u"srcbb002"_s} << QStringLiteral("tgtab001.name");
        QTest::newRow("the target's own name in the middle")
            << QStringList{u"srcaa001"_s, u"tgtab001"_s, u"srcbb002"_s} << QStringLiteral("tgtab001.name");
        QTest::newRow("the target's own name last")
            << QStringList{u"srcaa001"_s, u"tgtab001"_s} << QStringLiteral("tgtab001.name");
    }
    void guessTieBreak()
    {
        QFETCH(QStringList, tables);
        QFETCH(QString, rule);
        QList<SourceTable> sources;
        for (const QString& t : tables)
            sources.append({t, QStringLiteral(R"(<NAME No="1" TYPE="S" LENG="30"/><OTHER No="2" TYPE="S"/>)")});
        const QString xml = mappingObject(QStringLiteral("tgtab001"),
                                          QStringLiteral(R"(<NAME No="1" TYPE="S" LENG="30"/><CODE No="2" TYPE="S"/>)"),
                                          sources, QStringLiteral("<DUMP No=\"1\" TXT=\"Tie\"/>"),
                                          QStringLiteral("dump 1 Tie"));
        QVERIFY(show(QStringLiteral("tgtab001"), xml));
        QCOMPARE(host->sourceList()->model()->rowCount(), 2 * tables.size());
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), (QStringList{rule, QString()}));
    }

    // Field names are taken from the tenth character on, whatever the length
    // of the table name: with the seven-letter target table short01 the
    // field part of short01.name is "ame", which srcaa01.xame matches and
    // srcaa001.name does not.
    void guessTakesFieldNamesFromTheTenthCharacter()
    {
        const QString xml = QStringLiteral(R"(<multi001><SRCTBL>srcaa001,srcaa01</SRCTBL><PREC TEXT="">migrate srcaa001
dump 1 Short
end of precondition</PREC><DUMP No="1" TT="SHORT01" TXT="Short"/><MSCRIPT><SHORT01/></MSCRIPT>
<TARTAB><SHORT01><NAME No="1" TYPE="S" LENG="30"/><CODE No="2" TYPE="S" LENG="30"/></SHORT01></TARTAB>
<SRCTAB><SRCAA001><NAME No="1" TYPE="S" LENG="30"/></SRCAA001><SRCAA01><XAME No="1" TYPE="S" LENG="30"/></SRCAA01></SRCTAB>
</multi001>)");
        QVERIFY(show(QStringLiteral("multi001"), xml));
        QCOMPARE(Host::column(host->grid(), 0), (QStringList{u"short01.name"_s, u"short01.code"_s}));
        QCOMPARE(Host::column(host->sourceList(), 2), (QStringList{u"srcaa001.name"_s, u"srcaa01.xame"_s}));
        clickGuess();
        QCOMPARE(host->modals.count(), 0);
        QCOMPARE(host->rules(), (QStringList{u"srcaa01.xame"_s, QString()}));

        // Ma&p names the grid row the same way.
        selectTarget(u"short01.code"_s);
        Host::clickCheckBox(host->sourceList(), 0);
        clickMap();
        QCOMPARE(host->rules(), (QStringList{u"srcaa01.xame"_s, u"srcaa001.name"_s}));
    }

    // Every element of an array target field takes a plain source field of
    // the array's name; a source field of the element's own name matches
    // exactly, and the later of the two wins.
    void guessArrayElements()
    {
        const QString target = QStringLiteral(R"(
<QTY__1 No="1" TYPE="L" DIGB="9"/><QTY__2 No="2" TYPE="L" DIGB="9"/><QTY__3 No="3" TYPE="L" DIGB="9"/>
<NOTE__1 No="4" TYPE="S" LENG="20"/><NOTE__2 No="5" TYPE="S" LENG="20"/>)");
        const QList<SourceTable> sources{
            {u"srcaa001"_s, QStringLiteral(R"(<QTY No="1" TYPE="L" DIGB="9"/><NOTE No="2" TYPE="S" LENG="20"/>)")},
            {u"srcbb002"_s, QStringLiteral(R"(<QTY__3 No="1" TYPE="L" DIGB="9"/><NOTE__2 No="2" TYPE="S"/>)")}};
        QVERIFY(show(QStringLiteral("array001"),
                     mappingObject(QStringLiteral("array001"), target, sources,
                                   QStringLiteral("<DUMP No=\"1\" TXT=\"Arrays\"/>"), QStringLiteral("dump 1 Arrays"))));
        QCOMPARE(Host::column(host->grid(), 0),
                 (QStringList{u"array001.qty(1)"_s, u"array001.qty(2)"_s, u"array001.qty(3)"_s, u"array001.note(1)"_s,
                              u"array001.note(2)"_s}));
        clickGuess();
        QCOMPARE(host->rules(), (QStringList{u"srcaa001.qty"_s, u"srcaa001.qty"_s, u"srcbb002.qty(3)"_s,
                                             u"srcaa001.note"_s, u"srcbb002.note(1,2)"_s}));
    }
};

QTEST_MAIN(MapGuessTest)
#include "tst_mapguess.moc"
