// The precondition box: stored when the focus leaves it, its "migrate"
// statements checked with their messages, the host's condition builder and
// its answer through PreCondition, and the documentation dialog.

#include "ScriptsHarness.h"

#include <QSignalSpy>

using namespace scripts_test;

namespace {

const QStringList kDefined{QStringLiteral("PQRST002"), QStringLiteral("UVWXY003")};

// Two source tables, the precondition migrating the first.
QString document(const QString& precondition = QStringLiteral("migrate pqrst002"),
                 const QString& preconditionText = QString())
{
    return mappingObject(QStringLiteral("<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\"") +
                             preconditionText + QStringLiteral("\">") + precondition +
                             QStringLiteral("</PREC><QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"),
                         kDefined);
}

QString documentWithoutPrecondition()
{
    return mappingObject(QStringLiteral("<SRCTBL>pqrst002,uvwxy003</SRCTBL>"), kDefined);
}

const QStringList kPqrstRows{QStringLiteral("migrate pqrst002"), QString()};
const QStringList kUvwxyRows{QStringLiteral("migrate uvwxy003"), QString()};

} // namespace

class PreconditionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void storedWhenTheFocusLeaves_data();
    void storedWhenTheFocusLeaves();
    void migrateStatementsChecked_data();
    void migrateStatementsChecked();
    void conditionBuilder_data();
    void conditionBuilder();
    void preConditionProperty_data();
    void preConditionProperty();
    void documentationDialog_data();
    void documentationDialog();
    void documentationButtonInViewMode_data();
    void documentationButtonInViewMode();
    void documentationWithoutPrecondition();
    void readingTheDocumentStoresThePendingText();
};

void PreconditionTest::storedWhenTheFocusLeaves_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QStringList>("rowsBefore");
    QTest::addColumn<QStringList>("rowsAfter");
    QTest::addColumn<bool>("stored");

    QTest::newRow("stored into PREC, then migrate sources worked out")
        << document(QStringLiteral("migrate pqrst002"), QStringLiteral("7")) << kPqrstRows << kUvwxyRows
        << true;
    QTest::newRow("no PREC: nothing kept")
        << documentWithoutPrecondition() << QStringList() << QStringList() << false;
}

void PreconditionTest::storedWhenTheFocusLeaves()
{
    QFETCH(QString, xml);
    QFETCH(QStringList, rowsBefore);
    QFETCH(QStringList, rowsAfter);
    QFETCH(bool, stored);

    const QString typed = QStringLiteral("migrate uvwxy003\nx = 1");
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(xml, true));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), rowsBefore);

    host.replaceText(QStringLiteral("txtPreCondition"), typed);
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), typed);
    // Typing alone stores nothing.
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), rowsBefore);

    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), rowsAfter);

    const XmlElement root = host.read();
    if (stored) {
        QCOMPARE(lf(root.child(QStringLiteral("PREC")).text), typed);
        QCOMPARE(root.child(QStringLiteral("PREC")).attribute(QStringLiteral("TEXT")), QStringLiteral("7"));
    } else {
        QVERIFY(root.child(QStringLiteral("PREC")).isNull());
    }
    QCOMPARE(root.child(QStringLiteral("SRCTBL")).text, QStringLiteral("pqrst002,uvwxy003"));
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// The "migrate" statements are parsed when the precondition is stored. Bad
// table names are reported (critical, OK only), skipped, and put the focus
// back into the precondition box; the text itself is stored first.
void PreconditionTest::migrateStatementsChecked_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<bool>("focusBack");
    QTest::addColumn<QStringList>("migrateRows");

    const QString tooShort = QStringLiteral("Table Name not Valid");
    const QString noName = QStringLiteral("Migrate Keyword Has to be followed by a TableName");
    QTest::newRow("name too short") << QStringLiteral("migrate KLM") << QStringList{tooShort} << true
                                    << QStringList();
    QTest::newRow("digit among the first five")
        << QStringLiteral("migrate 1LMNO001") << QStringList{QStringLiteral("Invalid table name '1LMNO001'")}
        << true << QStringList();
    QTest::newRow("letters among the last three")
        << QStringLiteral("migrate KLMNOXYZ") << QStringList{QStringLiteral("Invalid table name 'KLMNOXYZ'")}
        << true << QStringList();
    QTest::newRow("bad name skipped, scan goes on")
        << QStringLiteral("migrate pqrst002\nmigrate KLM\nmigrate uvwxy003") << QStringList{tooShort} << true
        << (kPqrstRows + kUvwxyRows);
    QTest::newRow("two bad names, two messages")
        << QStringLiteral("migrate KLM\nmigrate 1LMNO001")
        << QStringList{tooShort, QStringLiteral("Invalid table name '1LMNO001'")} << true << QStringList();
    QTest::newRow("keyword ends the text")
        << QStringLiteral("migrate pqrst002\nmigrate") << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("keyword and one blank end the text")
        << QStringLiteral("migrate pqrst002\nmigrate ") << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("a word ending in migrate ends the text")
        << QStringLiteral("migrate pqrst002 premigrate") << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("not a whole word")
        << QStringLiteral("xmigrate pqrst002") << QStringList() << false << QStringList();
    QTest::newRow("same table twice, silently once")
        << QStringLiteral("migrate pqrst002 migrate pqrst002") << QStringList() << false << kPqrstRows;
    QTest::newRow("the same name in other letters counts twice")
        << QStringLiteral("migrate pqrst002 migrate PQRST002") << QStringList() << false
        << (kPqrstRows + QStringList{QStringLiteral("migrate PQRST002"), QString()});
    QTest::newRow("capitals, tab and line break") << QStringLiteral("MIGRATE\tuvwxy003\nmigrate pqrst002")
                                                  << QStringList() << false << (kUvwxyRows + kPqrstRows);
}

void PreconditionTest::migrateStatementsChecked()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, messages);
    QFETCH(bool, focusBack);
    QFETCH(QStringList, migrateRows);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(QString()), true));
    host.replaceText(QStringLiteral("txtPreCondition"), typed);
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), typed);
    QVERIFY(boxes.seen().isEmpty());

    host.clickEmptyPartOf(QStringLiteral("lstSourceTables"));
    QCOMPARE(boxes.texts(), messages);
    for (const SeenBox& box : boxes.seen()) {
        QCOMPARE(box.kind, QStringLiteral("message"));
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    }
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), migrateRows);
    if (focusBack) {
        QVERIFY(host.activate());
        QVERIFY(host.focusIn(QStringLiteral("txtPreCondition")));
    }

    boxes.clear();
    QCOMPARE(lf(host.read().child(QStringLiteral("PREC")).text), typed);
}

// "Build" hands the precondition AS STORED and the source tables to the
// host's condition builder; the host answers through PreCondition.
void PreconditionTest::conditionBuilder_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("how"); // click | access key
    QTest::addColumn<int>("raised");
    QTest::addColumn<QString>("condition");

    QTest::newRow("click: leaving the box stores it first")
        << true << QStringLiteral("click") << 1 << QStringLiteral("migrate pqrst002\ny = 2");
    QTest::newRow("access key without leaving: the stored text")
        << true << QStringLiteral("access key") << 1 << QStringLiteral("migrate pqrst002");
    QTest::newRow("read-only: the button is disabled") << false << QStringLiteral("click") << 0 << QString();
}

void PreconditionTest::conditionBuilder()
{
    QFETCH(bool, edit);
    QFETCH(QString, how);
    QFETCH(int, raised);
    QFETCH(QString, condition);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), edit));
    ctlFieldbridge* control = host.control.get();
    QSignalSpy spy(control, SIGNAL(ShowConditionBuilderPopUp(QString, QString)));
    QVERIFY(spy.isValid());
    // The host's builder answers at once.
    QObject::connect(control, &ctlFieldbridge::ShowConditionBuilderPopUp, control,
                     [control](const QString&, const QString&) {
                         control->setProperty("PreCondition",
                                              QStringLiteral("migrate uvwxy003\nif a &lt; b"));
                     });

    if (edit) {
        host.replaceText(QStringLiteral("txtPreCondition"), QStringLiteral("migrate pqrst002\ny = 2"));
        QCOMPARE(host.text(QStringLiteral("txtPreCondition")), QStringLiteral("migrate pqrst002\ny = 2"));
    }
    if (how == QLatin1String("click")) {
        host.click(QStringLiteral("CmdBuildPre"));
    } else {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_B, Qt::AltModifier);
        QTRY_COMPARE(spy.count(), 1);
        QVERIFY(host.focusIn(QStringLiteral("txtPreCondition"))); // the box was never left
    }
    QCOMPARE(spy.count(), raised);
    if (!raised) {
        QCOMPARE(host.text(QStringLiteral("txtPreCondition")), QStringLiteral("migrate pqrst002"));
        return;
    }
    QCOMPARE(lf(spy.first().at(0).toString()), condition);
    QCOMPARE(spy.first().at(1).toString(), QStringLiteral("pqrst002,uvwxy003"));

    // The answer: decoded into the box, stored, migrate sources worked out.
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), QStringLiteral("migrate uvwxy003\nif a < b"));
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), kUvwxyRows);
    QVERIFY(host.button(QStringLiteral("CmdBuildPre"))->isEnabled());
    QCOMPARE(lf(host.read().child(QStringLiteral("PREC")).text),
             QStringLiteral("migrate uvwxy003\nif a < b"));
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// PreCondition: the text is decoded (the four entities, in any letter case),
// put into the box, stored, and the build button enabled in any mode. Stored
// text is decoded once more whenever it is shown again.
void PreconditionTest::preConditionProperty_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("assigned");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("shownAgain"); // after the read-back text is shown by a new control

    const QString m = QStringLiteral("migrate uvwxy003\n");
    QTest::newRow("less-than") << true << m + QStringLiteral("if a &lt; b") << m + QStringLiteral("if a < b")
                               << m + QStringLiteral("if a < b");
    QTest::newRow("an entity of an entity: decoded once more when shown again")
        << true << m + QStringLiteral("x&amp;lt;y") << m + QStringLiteral("x&lt;y")
        << m + QStringLiteral("x<y");
    QTest::newRow("entities in any letter case")
        << true << m + QStringLiteral("a&LT;b&Gt;c") << m + QStringLiteral("a<b>c")
        << m + QStringLiteral("a<b>c");
    QTest::newRow("quotation marks and ampersand")
        << true << m + QStringLiteral("s = &quot;D&quot; &amp; t") << m + QStringLiteral("s = \"D\" & t")
        << m + QStringLiteral("s = \"D\" & t");
    QTest::newRow("read-only host") << false << m + QStringLiteral("if a &gt; b")
                                    << m + QStringLiteral("if a > b") << m + QStringLiteral("if a > b");
}

void PreconditionTest::preConditionProperty()
{
    QFETCH(bool, edit);
    QFETCH(QString, assigned);
    QFETCH(QString, shown);
    QFETCH(QString, shownAgain);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), edit));
    QCOMPARE(host.button(QStringLiteral("CmdBuildPre"))->isEnabled(), edit);

    host.control->setProperty("PreCondition", assigned);
    QCOMPARE(host.text(QStringLiteral("txtPreCondition")), shown);
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), kUvwxyRows); // stored and parsed at once
    QVERIFY(host.button(QStringLiteral("CmdBuildPre"))->isEnabled());

    const QString xml = host.control->property("MappingObjectXML").toString();
    QCOMPARE(lf(parseXml(xml).child(QStringLiteral("PREC")).text), shown);

    Host again;
    QVERIFY(again.show(xml, edit));
    QCOMPARE(again.text(QStringLiteral("txtPreCondition")), shownAgain);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// "Text" opens the documentation dialog on PREC's TEXT attribute, decoded;
// what the dialog hands back is written into TEXT.
void PreconditionTest::documentationDialog_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("textAttribute"); // as written in the XML
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("typed"); // "" types nothing
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("stored");

    QTest::newRow("OK with a new text")
        << true << QStringLiteral("12") << true << QStringLiteral("Checks the customers")
        << QStringLiteral("12") << QStringLiteral("Checks the customers");
    QTest::newRow("Cancel keeps the text") << true << QStringLiteral("12") << false << QStringLiteral("zzz")
                                           << QStringLiteral("12") << QStringLiteral("12");
    QTest::newRow("entities decoded for display")
        << true << QStringLiteral("a &amp;lt; b") << true << QString() << QStringLiteral("a < b")
        << QStringLiteral("a < b");
    QTest::newRow("read-only: locked, OK disabled")
        << false << QStringLiteral("12") << true << QString() << QStringLiteral("12") << QStringLiteral("12");
    QTest::newRow("two lines kept") << true << QStringLiteral("line 1&#10;line 2") << true << QString()
                                    << QStringLiteral("line 1\nline 2") << QStringLiteral("line 1\nline 2");
}

void PreconditionTest::documentationDialog()
{
    QFETCH(bool, edit);
    QFETCH(QString, textAttribute);
    QFETCH(bool, ok);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, stored);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(QStringLiteral("migrate pqrst002"), textAttribute), edit));
    QVERIFY(host.button(QStringLiteral("CmdPreDoc"))->isEnabled());
    boxes.queue(BoxAnswerer::documentation(ok, typed, !typed.isEmpty()));
    host.click(QStringLiteral("CmdPreDoc"));

    QCOMPARE(boxes.seen().size(), 1);
    const SeenBox dialog = boxes.seen().first();
    QCOMPARE(dialog.kind, QStringLiteral("FrmTxtDoc"));
    QCOMPARE(dialog.title, QStringLiteral("Precondition Text"));
    QCOMPARE(dialog.text, shown);
    QCOMPARE(dialog.textReadOnly, !edit);
    QCOMPARE(dialog.okEnabled, edit);

    QCOMPARE(lf(host.read().child(QStringLiteral("PREC")).attribute(QStringLiteral("TEXT"))), stored);
}

// In view mode "Text" is enabled exactly when the precondition has a
// documentation text; edit mode leaves it enabled.
void PreconditionTest::documentationButtonInViewMode_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("textAttribute");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("view mode, with a text") << false << QStringLiteral("12") << true;
    QTest::newRow("view mode, without a text") << false << QString() << false;
    QTest::newRow("edit mode, without a text") << true << QString() << true;
}

void PreconditionTest::documentationButtonInViewMode()
{
    QFETCH(bool, edit);
    QFETCH(QString, textAttribute);
    QFETCH(bool, enabled);

    Host host;
    QVERIFY(host.show(document(QStringLiteral("migrate pqrst002"), textAttribute), edit));
    QCOMPARE(host.button(QStringLiteral("CmdPreDoc"))->isEnabled(), enabled);
}

void PreconditionTest::documentationWithoutPrecondition()
{
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(documentWithoutPrecondition(), true));
    host.click(QStringLiteral("CmdPreDoc"));
    QTest::qWait(100);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
    QVERIFY(host.read().child(QStringLiteral("PREC")).isNull());
}

// A host reading the document while the person is still typing gets the
// precondition as it stands in the box, with its consequences: the migrate
// sources worked out again and the queries of tables no longer migrated gone.
void PreconditionTest::readingTheDocumentStoresThePendingText()
{
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.replaceText(QStringLiteral("txtPreCondition"), QStringLiteral("migrate uvwxy003"));
    QVERIFY(host.focusIn(QStringLiteral("txtPreCondition")));

    const XmlElement root = host.read();
    QCOMPARE(root.child(QStringLiteral("PREC")).text, QStringLiteral("migrate uvwxy003"));
    QVERIFY(root.child(QStringLiteral("QUERY")).isNull());
    QCOMPARE(host.rows(QStringLiteral("lstMigrateSource")), kUvwxyRows);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

QTEST_MAIN(PreconditionTest)
#include "tst_precondition.moc"
