// The "Mapping Object" tab as a whole: the Tab keys of the two script boxes,
// and a person's session on the klmno001 sample from the first key press to
// the document the host reads back.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

class MappingObjectTabTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    // In both script boxes Tab with a modifier is swallowed: Ctrl alone moves
    // the focus forwards, Shift alone backwards, any other combination
    // nowhere. Tab alone is the box's own. The rule does not look at the
    // mode: a locked box keeps it too.
    void tabKeys_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<QString>("editor");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("focus");
        QTest::addColumn<bool>("tabInserted");
        const int tab = Qt::Key_Tab;
        const int backtab = Qt::Key_Backtab; // Shift+Tab as a keyboard delivers it
        const QString pre = u"txtPreCondition"_s;
        const QString mq = u"txtMainQuery"_s;
        QTest::newRow("precondition, Ctrl+Tab") << true << pre << tab << int(Qt::ControlModifier)
                                                << u"CmdSelectSource"_s << false;
        QTest::newRow("precondition, Shift+Tab") << true << pre << backtab << int(Qt::ShiftModifier)
                                                 << u"lstSourceTables"_s << false;
        QTest::newRow("precondition, Alt+Tab") << true << pre << tab << int(Qt::AltModifier) << pre << false;
        QTest::newRow("precondition, Ctrl+Shift+Tab")
            << true << pre << backtab << int(Qt::ControlModifier | Qt::ShiftModifier) << pre << false;
        QTest::newRow("precondition, Tab alone") << true << pre << tab << int(Qt::NoModifier) << pre << true;
        QTest::newRow("main query, Ctrl+Tab") << true << mq << tab << int(Qt::ControlModifier) << u"cmdBuildMQ"_s
                                              << false;
        QTest::newRow("main query, Shift+Tab") << true << mq << backtab << int(Qt::ShiftModifier)
                                               << u"lstMigrateSource"_s << false;
        QTest::newRow("read-only precondition, Shift+Tab")
            << false << pre << backtab << int(Qt::ShiftModifier) << u"lstSourceTables"_s << false;
        QTest::newRow("read-only main query, Shift+Tab")
            << false << mq << backtab << int(Qt::ShiftModifier) << u"lstMigrateSource"_s << false;
    }
    void tabKeys()
    {
        QFETCH(bool, edit);
        QFETCH(QString, editor);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, focus);
        QFETCH(bool, tabInserted);
        QVERIFY(host->open(u"klmno001"_s,
                          klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                                        "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"_s,
                                        {u"PQRST002"_s, u"UVWXY003"_s}),
                          edit));
        host->clickInto(editor);
        QVERIFY(host->focusIn(editor));
        keyToFocus(Qt::Key_End, Qt::ControlModifier);
        const QString before = host->text(editor);
        keyToFocus(Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QVERIFY2(host->focusIn(focus), qPrintable(focusName()));
        QCOMPARE(host->text(editor), tabInserted ? before + u'\t' : before);
    }

    // A person's session on the sample: two source tables removed, a
    // precondition naming them written (each store adds one, "Define Dumps"
    // becomes available once both are there), a main query written for each,
    // dumps referenced from them and from the functions, which are kept with
    // OK, and a variables edit dropped with Cancel; the host then reads
    // everything back and shows it again.
    void sessionOnTheSample()
    {
        const QString sample = readSample(u"klmno001.xml"_s);
        const XmlElement original = parseXml(sample);
        const QString originalVariables = original.child(u"VAR"_s).text;
        QVERIFY(originalVariables.contains(u"~|~"_s));
        const QStringList allTables{u"pqrst002"_s, u"uvwxy003"_s, u"abcde004"_s};
        const QStringList migrateRows{u"migrate uvwxy003"_s, {}, u"migrate abcde004"_s, {}};

        QVERIFY(host->open(u"klmno001"_s, sample));
        QSignalSpy saveDisabled(host->ctl, SIGNAL(SaveDoneDisabled()));
        QSignalSpy saveEnabled(host->ctl, SIGNAL(SaveDoneEnabled()));
        for (int i = 0; i < 2; ++i) {
            host->clickRow(u"lstSourceTables"_s, 1);
            keyToFocus(Qt::Key_Delete);
        }
        QCOMPARE(host->ctl->property("SourceTables").toString(), u"pqrst002"_s);

        const QString precondition =
            u"| addresses and order statistics\nmigrate uvwxy003\nmigrate abcde004\nif not exists(\"uvwxy003\") "
            "then\n\tabort(\"no addresses\")\nendif\ndump 1 Customers"_s;
        host->replaceText(u"txtPreCondition"_s, precondition);
        const QList<bool> enabledAfterStore{false, false, true};
        for (int store = 0; store < 3; ++store) {
            if (store > 0)
                host->clickInto(u"txtPreCondition"_s);
            host->clickBelowRows(u"lstSourceTables"_s);
            QCOMPARE(host->tabs()->isTabEnabled(1), enabledAfterStore[store]);
        }
        QCOMPARE(host->rows(u"lstSourceTables"_s), allTables);
        QCOMPARE(host->rows(u"lstMigrateSource"_s), migrateRows);
        // pqrst002 is no longer migrated: the box shows the first migrate table's query.
        QCOMPARE(host->text(u"txtMainQuery"_s), original.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).text);

        const QString addresses = u"select uvwxy003.*\nfrom uvwxy003\nselectdo\n\tdump 4 Addresses\nendselect"_s;
        const QString statistics = u"select abcde004.*\nfrom abcde004\ndump 5 Statistics"_s;
        host->replaceText(u"txtMainQuery"_s, addresses);
        host->clickRow(u"lstMigrateSource"_s, 2);
        QCOMPARE(host->text(u"txtMainQuery"_s), QString());
        host->replaceText(u"txtMainQuery"_s, statistics);
        host->clickBelowRows(u"lstSourceTables"_s);
        host->clickRow(u"lstMigrateSource"_s, 0);
        QCOMPARE(host->text(u"txtMainQuery"_s), addresses);

        const QString functions = u"function extern long one()\n{\n\tdump 6 Helpers\n\treturn 1\n}"_s;
        host->click(u"CmdFunction"_s);
        host->replaceText(u"txtFunctions"_s, functions);
        host->click(u"CmdOk"_s);
        host->click(u"CmdVariables"_s);
        QCOMPARE(host->text(u"txtVariables"_s),
                 QString(originalVariables).replace(u"~|~"_s, u"\t"_s).replace(u"~^~"_s, u"\n"_s));
        host->replaceText(u"txtVariables"_s, u"nothing = 0"_s);
        host->click(u"CmdCancel"_s);
        QCOMPARE(saveDisabled.count(), 2);
        QCOMPARE(saveEnabled.count(), 2);

        const QString xml = host->xml();
        const XmlElement root = parseXml(xml);
        QCOMPARE(root.name, u"klmno001"_s);
        QCOMPARE(root.child(u"SRCTBL"_s).text, allTables.join(u','));
        QCOMPARE(root.child(u"PREC"_s).text, precondition);
        QCOMPARE(root.child(u"PREC"_s).attribute(u"TEXT"_s), u"12"_s);
        QCOMPARE(root.attributeValues(u"QUERY"_s, u"ST"_s).size(), 2);
        const XmlElement addressQuery = root.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s);
        QCOMPARE(addressQuery.text, addresses);
        QCOMPARE(addressQuery.attribute(u"TEXT"_s),
                 original.child(u"QUERY"_s, u"ST"_s, u"uvwxy003"_s).attribute(u"TEXT"_s));
        QCOMPARE(root.child(u"QUERY"_s, u"ST"_s, u"abcde004"_s).text, statistics);
        QStringList dumps = root.attributeValues(u"DUMP"_s, u"No"_s);
        dumps.sort();
        QCOMPARE(dumps, (QStringList{u"1"_s, u"4"_s, u"5"_s, u"6"_s}));
        // Dump 1 is still referenced and keeps its rules.
        QCOMPARE(root.dump(1).child(u"CUSTNO"_s).text, u"pqrst002.custno"_s);
        QCOMPARE(root.child(u"FUNCTIONS"_s).text, functions);
        QCOMPARE(root.child(u"VAR"_s).text, originalVariables);

        Host again;
        QVERIFY(again.open(u"klmno001"_s, xml));
        QCOMPARE(again.text(u"txtPreCondition"_s), precondition);
        QCOMPARE(again.rows(u"lstSourceTables"_s), allTables);
        QCOMPARE(again.rows(u"lstMigrateSource"_s), migrateRows);
        QCOMPARE(again.text(u"txtMainQuery"_s), addresses);
        QVERIFY(again.tabs()->isTabEnabled(1));
    }
};

QTEST_MAIN(MappingObjectTabTest)
#include "tst_mappingobjecttab.moc"
