// The "Mapping Object" tab as a whole: the Tab keys of the two script boxes,
// and a person's session on the klmno001 sample from the first key press to
// the document the host reads back.

#include "ScriptsHarness.h"

#include <QSignalSpy>

using namespace scripts_test;

namespace {

QString document()
{
    return mappingObject(
        QStringLiteral("<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                       "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"),
        {QStringLiteral("PQRST002"), QStringLiteral("UVWXY003")});
}

} // namespace

class MappingObjectTabTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void tabKeys_data();
    void tabKeys();
    void sessionOnTheSample();
};

// In both script boxes Tab with a modifier is swallowed: Ctrl alone moves the
// focus forwards, Shift alone backwards, any other combination nowhere. Tab
// alone is the box's own.
void MappingObjectTabTest::tabKeys_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("editor");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("focus");
    QTest::addColumn<bool>("tabInserted");

    const int tab = Qt::Key_Tab;
    const int backtab = Qt::Key_Backtab; // Shift+Tab as a keyboard delivers it
    const QString pre = QStringLiteral("txtPreCondition");
    const QString mq = QStringLiteral("txtMainQuery");
    QTest::newRow("precondition, Ctrl+Tab")
        << true << pre << tab << int(Qt::ControlModifier) << QStringLiteral("CmdSelectSource") << false;
    QTest::newRow("precondition, Shift+Tab")
        << true << pre << backtab << int(Qt::ShiftModifier) << QStringLiteral("lstSourceTables") << false;
    QTest::newRow("precondition, Alt+Tab") << true << pre << tab << int(Qt::AltModifier) << pre << false;
    QTest::newRow("precondition, Ctrl+Shift+Tab")
        << true << pre << backtab << int(Qt::ControlModifier | Qt::ShiftModifier) << pre << false;
    QTest::newRow("precondition, Tab alone") << true << pre << tab << int(Qt::NoModifier) << pre << true;
    QTest::newRow("main query, Ctrl+Tab")
        << true << mq << tab << int(Qt::ControlModifier) << QStringLiteral("cmdBuildMQ") << false;
    QTest::newRow("main query, Shift+Tab")
        << true << mq << backtab << int(Qt::ShiftModifier) << QStringLiteral("lstMigrateSource") << false;
    QTest::newRow("main query, Alt+Tab") << true << mq << tab << int(Qt::AltModifier) << mq << false;
    QTest::newRow("main query, Ctrl+Shift+Tab")
        << true << mq << backtab << int(Qt::ControlModifier | Qt::ShiftModifier) << mq << false;
    QTest::newRow("main query, Tab alone") << true << mq << tab << int(Qt::NoModifier) << mq << true;
    // The rule does not look at the mode: a locked box keeps it too.
    QTest::newRow("read-only precondition, Shift+Tab")
        << false << pre << backtab << int(Qt::ShiftModifier) << QStringLiteral("lstSourceTables") << false;
    QTest::newRow("read-only main query, Shift+Tab")
        << false << mq << backtab << int(Qt::ShiftModifier) << QStringLiteral("lstMigrateSource") << false;
}

void MappingObjectTabTest::tabKeys()
{
    QFETCH(bool, edit);
    QFETCH(QString, editor);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, focus);
    QFETCH(bool, tabInserted);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), edit));
    host.clickInto(editor);
    QVERIFY(host.focusIn(editor));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End, Qt::ControlModifier);
    const QString before = host.text(editor);

    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QVERIFY2(host.focusIn(focus), QApplication::focusWidget()
                                      ? qPrintable(QApplication::focusWidget()->objectName())
                                      : "no focus");
    QCOMPARE(host.text(editor), tabInserted ? before + u'\t' : before);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// A person's session on the sample: two source tables removed, a precondition
// naming them written (each store adds one, "Define Dumps" becomes available
// once both are there), a main query written for each, dumps referenced from
// them and from the functions, which are kept with OK, and a variables edit
// dropped with Cancel; the host then reads everything back.
void MappingObjectTabTest::sessionOnTheSample()
{
    const QString sample = readExample(QStringLiteral("klmno001.xml"));
    const XmlElement original = parseXml(sample);
    QVERIFY(!original.isNull());
    const QString originalVariables = original.child(QStringLiteral("VAR")).text;
    QVERIFY(originalVariables.contains(QStringLiteral("~|~")));

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(sample, true));
    QSignalSpy saveDisabled(host.control.get(), SIGNAL(SaveDoneDisabled()));
    QSignalSpy saveEnabled(host.control.get(), SIGNAL(SaveDoneEnabled()));
    QCOMPARE(
        host.rows(QStringLiteral("lstSourceTables")),
        (QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"), QStringLiteral("abcde004")}));
    QVERIFY(host.tabs()->isTabEnabled(1));

    // Two source tables removed with the Delete key.
    for (int i = 0; i < 2; ++i) {
        host.clickRow(QStringLiteral("lstSourceTables"), 1);
        QTest::keyClick(host.view(QStringLiteral("lstSourceTables")), Qt::Key_Delete);
    }
    QCOMPARE(host.control->property("SourceTables").toString(), QStringLiteral("pqrst002"));

    // A precondition naming both again.
    const QString precondition = QStringLiteral(
        "| addresses and order statistics\nmigrate uvwxy003\nmigrate abcde004\nif not exists(\"uvwxy003\") "
        "then\n\tabort(\"no addresses\")\nendif\ndump 1 Customers");
    host.replaceText(QStringLiteral("txtPreCondition"), precondition);
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), precondition);

    const QStringList afterStore{QStringLiteral("pqrst002,uvwxy003"),
                                 QStringLiteral("pqrst002,uvwxy003,abcde004"),
                                 QStringLiteral("pqrst002,uvwxy003,abcde004")};
    const QList<bool> enabledAfterStore{false, false, true};
    for (int store = 0; store < afterStore.size(); ++store) {
        if (store > 0) host.clickInto(QStringLiteral("txtPreCondition"));
        host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
        QCOMPARE(host.control->property("SourceTables").toString(), afterStore[store]);
        QCOMPARE(host.tabs()->isTabEnabled(1), enabledAfterStore[store]);
    }
    QCOMPARE(
        host.rows(QStringLiteral("lstSourceTables")),
        (QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"), QStringLiteral("abcde004")}));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")),
             (QStringList{QStringLiteral("migrate uvwxy003"), QString(), QStringLiteral("migrate abcde004"),
                          QString()}));
    // pqrst002 is no longer migrated: the box shows the first migrate table's query.
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")),
             original.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003")).text);

    // A main query for each migrate table, each referencing a dump.
    const QString addresses =
        QStringLiteral("select uvwxy003.*\nfrom uvwxy003\nselectdo\n\tdump 4 Addresses\nendselect");
    const QString statistics = QStringLiteral("select abcde004.*\nfrom abcde004\ndump 5 Statistics");
    host.replaceText(QStringLiteral("txtMainQuery"), addresses);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), addresses);
    host.clickRow(QStringLiteral("lstMigrateSource"), 2);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), QString());
    host.replaceText(QStringLiteral("txtMainQuery"), statistics);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), statistics);
    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    host.clickRow(QStringLiteral("lstMigrateSource"), 0);
    QCOMPARE(host.text(QStringLiteral("txtMainQuery")), addresses);

    // Functions edited and kept with OK.
    const QString functions =
        QStringLiteral("function extern long one()\n{\n\tdump 6 Helpers\n\treturn 1\n}");
    host.click(QStringLiteral("CmdFunction"));
    QCOMPARE(saveDisabled.count(), 1);
    host.replaceText(QStringLiteral("txtFunctions"), functions);
    host.click(QStringLiteral("CmdOk"));
    QCOMPARE(saveEnabled.count(), 1);

    // Variables shown decoded, edited, and the edit dropped with Cancel.
    host.click(QStringLiteral("CmdVariables"));
    QCOMPARE(saveDisabled.count(), 2);
    QCOMPARE(host.text(QStringLiteral("txtVariables")),
             QString(originalVariables)
                 .replace(QStringLiteral("~|~"), QStringLiteral("\t"))
                 .replace(QStringLiteral("~^~"), QStringLiteral("\n")));
    host.replaceText(QStringLiteral("txtVariables"), QStringLiteral("nothing = 0"));
    host.click(QStringLiteral("CmdCancel"));
    QCOMPARE(saveEnabled.count(), 2);
    QVERIFY(host.focusIn(QStringLiteral("txtPreCondition")));

    // Everything read back.
    const QString xml = host.control->property("MappingObjectXML").toString();
    const XmlElement root = parseXml(xml);
    QVERIFY(!root.isNull());
    QCOMPARE(root.name, QStringLiteral("klmno001"));
    QCOMPARE(root.child(QStringLiteral("SRCTBL")).text, QStringLiteral("pqrst002,uvwxy003,abcde004"));
    QCOMPARE(lf(root.child(QStringLiteral("PREC")).text), precondition);
    QCOMPARE(root.child(QStringLiteral("PREC")).attribute(QStringLiteral("TEXT")), QStringLiteral("12"));

    QStringList queries;
    for (const XmlElement& q : root.all(QStringLiteral("QUERY")))
        queries.append(q.attribute(QStringLiteral("ST")));
    queries.sort();
    QCOMPARE(queries, (QStringList{QStringLiteral("abcde004"), QStringLiteral("uvwxy003")}));
    const XmlElement addressQuery =
        root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003"));
    QCOMPARE(lf(addressQuery.text), addresses);
    QCOMPARE(addressQuery.attribute(QStringLiteral("TEXT")),
             original.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("uvwxy003"))
                 .attribute(QStringLiteral("TEXT")));
    QCOMPARE(lf(root.child(QStringLiteral("QUERY"), QStringLiteral("ST"), QStringLiteral("abcde004")).text),
             statistics);

    QStringList dumps;
    for (const XmlElement& d : root.all(QStringLiteral("DUMP")))
        dumps.append(d.attribute(QStringLiteral("No")));
    dumps.sort();
    QCOMPARE(dumps, (QStringList{QStringLiteral("1"), QStringLiteral("4"), QStringLiteral("5"),
                                 QStringLiteral("6")}));
    // Dump 1 is still referenced and keeps its rules.
    QCOMPARE(root.child(QStringLiteral("DUMP"), QStringLiteral("No"), QStringLiteral("1"))
                 .child(QStringLiteral("CUSTNO"))
                 .text,
             QStringLiteral("pqrst002.custno"));

    QCOMPARE(lf(root.child(QStringLiteral("FUNCTIONS")).text), functions);
    QCOMPARE(root.child(QStringLiteral("VAR")).text, originalVariables);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));

    // The host shows the document again: the session's work is there.
    Host again;
    QVERIFY(again.show(xml, true));
    QCOMPARE(again.text(QStringLiteral("txtPreCondition")), precondition);
    QCOMPARE(
        again.rows(QStringLiteral("lstSourceTables")),
        (QStringList{QStringLiteral("pqrst002"), QStringLiteral("uvwxy003"), QStringLiteral("abcde004")}));
    QCOMPARE(again.rows(QStringLiteral("lstMigrateSource")),
             (QStringList{QStringLiteral("migrate uvwxy003"), QString(), QStringLiteral("migrate abcde004"),
                          QString()}));
    QCOMPARE(again.text(QStringLiteral("txtMainQuery")), addresses);
    QVERIFY(again.tabs()->isTabEnabled(1));
}

QTEST_MAIN(MappingObjectTabTest)
#include "tst_mappingobjecttab.moc"
