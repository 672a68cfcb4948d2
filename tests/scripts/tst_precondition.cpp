// The precondition box: stored when the focus leaves it, its "migrate"
// statements checked with their messages, the host's condition builder and
// its answer through PreCondition, and the documentation dialog.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

namespace {

const QStringList kDefined{u"PQRST002"_s, u"UVWXY003"_s};

// Two source tables, the precondition migrating the first.
QString document(const QString& precondition = u"migrate pqrst002"_s,
                 const QString& preconditionText = QString())
{
    return klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\""_s +
                             preconditionText + u"\">"_s + precondition +
                             u"</PREC><QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"_s,
                         kDefined);
}

QString documentWithoutPrecondition()
{
    return klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL>"_s, kDefined);
}

const QStringList kPqrstRows{u"migrate pqrst002"_s, QString()};
const QStringList kUvwxyRows{u"migrate uvwxy003"_s, QString()};

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
        << document(u"migrate pqrst002"_s, u"7"_s) << kPqrstRows << kUvwxyRows
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

    const QString typed = u"migrate uvwxy003\nx = 1"_s;
    Host host;
    QVERIFY(host.open(u"klmno001"_s, xml, true));
    QCOMPARE(host.rows(u"lstMigrateSource"_s), rowsBefore);

    host.replaceText(u"txtPreCondition"_s, typed);
    QCOMPARE(host.text(u"txtPreCondition"_s), typed);
    // Typing alone stores nothing.
    QCOMPARE(host.rows(u"lstMigrateSource"_s), rowsBefore);

    host.clickBelowRows(u"lstSourceTables"_s);
    QCOMPARE(host.rows(u"lstMigrateSource"_s), rowsAfter);

    const XmlElement root = host.document();
    if (stored) {
        QCOMPARE(root.child(u"PREC"_s).text, typed);
        QCOMPARE(root.child(u"PREC"_s).attribute(u"TEXT"_s), u"7"_s);
    } else {
        QVERIFY(root.child(u"PREC"_s).isNull());
    }
    QCOMPARE(root.child(u"SRCTBL"_s).text, u"pqrst002,uvwxy003"_s);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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

    const QString tooShort = u"Table Name not Valid"_s;
    const QString noName = u"Migrate Keyword Has to be followed by a TableName"_s;
    QTest::newRow("name too short") << u"migrate KLM"_s << QStringList{tooShort} << true
                                    << QStringList();
    QTest::newRow("digit among the first five")
        << u"migrate 1LMNO001"_s << QStringList{u"Invalid table name '1LMNO001'"_s}
        << true << QStringList();
    QTest::newRow("letters among the last three")
        << u"migrate KLMNOXYZ"_s << QStringList{u"Invalid table name 'KLMNOXYZ'"_s}
        << true << QStringList();
    QTest::newRow("bad name skipped, scan goes on")
        << u"migrate pqrst002\nmigrate KLM\nmigrate uvwxy003"_s << QStringList{tooShort} << true
        << (kPqrstRows + kUvwxyRows);
    QTest::newRow("two bad names, two messages")
        << u"migrate KLM\nmigrate 1LMNO001"_s
        << QStringList{tooShort, u"Invalid table name '1LMNO001'"_s} << true << QStringList();
    QTest::newRow("keyword ends the text")
        << u"migrate pqrst002\nmigrate"_s << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("keyword and one blank end the text")
        << u"migrate pqrst002\nmigrate "_s << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("a word ending in migrate ends the text")
        << u"migrate pqrst002 premigrate"_s << QStringList{noName} << false << kPqrstRows;
    QTest::newRow("not a whole word")
        << u"xmigrate pqrst002"_s << QStringList() << false << QStringList();
    QTest::newRow("same table twice, silently once")
        << u"migrate pqrst002 migrate pqrst002"_s << QStringList() << false << kPqrstRows;
    QTest::newRow("the same name in other letters counts twice")
        << u"migrate pqrst002 migrate PQRST002"_s << QStringList() << false
        << (kPqrstRows + QStringList{u"migrate PQRST002"_s, QString()});
    QTest::newRow("capitals, tab and line break") << u"MIGRATE\tuvwxy003\nmigrate pqrst002"_s
                                                  << QStringList() << false << (kUvwxyRows + kPqrstRows);
}

void PreconditionTest::migrateStatementsChecked()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, messages);
    QFETCH(bool, focusBack);
    QFETCH(QStringList, migrateRows);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(QString()), true));
    host.replaceText(u"txtPreCondition"_s, typed);
    QCOMPARE(host.text(u"txtPreCondition"_s), typed);
    QVERIFY(host.modals.records().isEmpty());
    for (qsizetype i = 0; i < messages.size(); ++i)
        host.modals.expect(ModalAnswerer::press(QMessageBox::Ok));
    host.clickBelowRows(u"lstSourceTables"_s);
    QCOMPARE(host.modals.texts(), messages);
    for (const ModalRecord& box : host.modals.records()) {
        QCOMPARE(box.className, u"QMessageBox"_s);
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    }
    QCOMPARE(host.rows(u"lstMigrateSource"_s), migrateRows);
    if (focusBack) {
        QVERIFY(host.activate());
        QVERIFY(host.focusIn(u"txtPreCondition"_s));
    }

    QVERIFY(host.modals.unexpected().isEmpty());
    host.modals.clear();
    QCOMPARE(host.document().child(u"PREC"_s).text, typed);
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
        << true << u"click"_s << 1 << u"migrate pqrst002\ny = 2"_s;
    QTest::newRow("access key without leaving: the stored text")
        << true << u"access key"_s << 1 << u"migrate pqrst002"_s;
    QTest::newRow("read-only: the button is disabled") << false << u"click"_s << 0 << QString();
}

void PreconditionTest::conditionBuilder()
{
    QFETCH(bool, edit);
    QFETCH(QString, how);
    QFETCH(int, raised);
    QFETCH(QString, condition);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), edit));
    ctlFieldbridge* control = host.ctl;
    QSignalSpy spy(control, SIGNAL(ShowConditionBuilderPopUp(QString, QString)));
    QVERIFY(spy.isValid());
    // The host's builder answers at once.
    QObject::connect(control, &ctlFieldbridge::ShowConditionBuilderPopUp, control,
                     [control](const QString&, const QString&) {
                         control->setProperty("PreCondition",
                                              u"migrate uvwxy003\nif a &lt; b"_s);
                     });

    if (edit) {
        host.replaceText(u"txtPreCondition"_s, u"migrate pqrst002\ny = 2"_s);
        QCOMPARE(host.text(u"txtPreCondition"_s), u"migrate pqrst002\ny = 2"_s);
    }
    if (how == QLatin1String("click")) {
        host.click(u"CmdBuildPre"_s);
    } else {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_B, Qt::AltModifier);
        QTRY_COMPARE(spy.count(), 1);
        QVERIFY(host.focusIn(u"txtPreCondition"_s)); // the box was never left
    }
    QCOMPARE(spy.count(), raised);
    if (!raised) {
        QCOMPARE(host.text(u"txtPreCondition"_s), u"migrate pqrst002"_s);
        return;
    }
    QCOMPARE(lf(spy.first().at(0).toString()), condition);
    QCOMPARE(spy.first().at(1).toString(), u"pqrst002,uvwxy003"_s);

    // The answer: decoded into the box, stored, migrate sources worked out.
    QCOMPARE(host.text(u"txtPreCondition"_s), u"migrate uvwxy003\nif a < b"_s);
    QCOMPARE(host.rows(u"lstMigrateSource"_s), kUvwxyRows);
    QVERIFY(host.button(u"CmdBuildPre"_s)->isEnabled());
    QCOMPARE(host.document().child(u"PREC"_s).text,
             u"migrate uvwxy003\nif a < b"_s);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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

    const QString m = u"migrate uvwxy003\n"_s;
    QTest::newRow("less-than") << true << m + u"if a &lt; b"_s << m + u"if a < b"_s
                               << m + u"if a < b"_s;
    QTest::newRow("an entity of an entity: decoded once more when shown again")
        << true << m + u"x&amp;lt;y"_s << m + u"x&lt;y"_s
        << m + u"x<y"_s;
    QTest::newRow("entities in any letter case")
        << true << m + u"a&LT;b&Gt;c"_s << m + u"a<b>c"_s
        << m + u"a<b>c"_s;
    QTest::newRow("quotation marks and ampersand")
        << true << m + u"s = &quot;D&quot; &amp; t"_s << m + u"s = \"D\" & t"_s
        << m + u"s = \"D\" & t"_s;
    QTest::newRow("read-only host") << false << m + u"if a &gt; b"_s
                                    << m + u"if a > b"_s << m + u"if a > b"_s;
}

void PreconditionTest::preConditionProperty()
{
    QFETCH(bool, edit);
    QFETCH(QString, assigned);
    QFETCH(QString, shown);
    QFETCH(QString, shownAgain);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), edit));
    QCOMPARE(host.button(u"CmdBuildPre"_s)->isEnabled(), edit);

    host.ctl->setProperty("PreCondition", assigned);
    QCOMPARE(host.text(u"txtPreCondition"_s), shown);
    QCOMPARE(host.rows(u"lstMigrateSource"_s), kUvwxyRows); // stored and parsed at once
    QVERIFY(host.button(u"CmdBuildPre"_s)->isEnabled());

    const QString xml = host.ctl->property("MappingObjectXML").toString();
    QCOMPARE(parseXml(xml).child(u"PREC"_s).text, shown);

    Host again;
    QVERIFY(again.open(u"klmno001"_s, xml, edit));
    QCOMPARE(again.text(u"txtPreCondition"_s), shownAgain);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
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
        << true << u"12"_s << true << u"Checks the customers"_s
        << u"12"_s << u"Checks the customers"_s;
    QTest::newRow("Cancel keeps the text") << true << u"12"_s << false << u"zzz"_s
                                           << u"12"_s << u"12"_s;
    QTest::newRow("entities decoded for display")
        << true << u"a &amp;lt; b"_s << true << QString() << u"a < b"_s
        << u"a < b"_s;
    QTest::newRow("read-only: locked, OK disabled")
        << false << u"12"_s << true << QString() << u"12"_s << u"12"_s;
    QTest::newRow("two lines kept") << true << u"line 1&#10;line 2"_s << true << QString()
                                    << u"line 1\nline 2"_s << u"line 1\nline 2"_s;
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
    QVERIFY(host.open(u"klmno001"_s, document(u"migrate pqrst002"_s, textAttribute), edit));
    QVERIFY(host.button(u"CmdPreDoc"_s)->isEnabled());
    host.modals.expect(ModalAnswerer::document(ok, typed.isEmpty() ? QString() : typed));
    host.click(u"CmdPreDoc"_s);

    QCOMPARE(host.modals.records().size(), 1);
    const ModalRecord dialog = host.modals.records().first();
    QCOMPARE(dialog.objectName, u"FrmTxtDoc"_s);
    QCOMPARE(dialog.title, u"Precondition Text"_s);
    QCOMPARE(dialog.text, shown);
    QCOMPARE(dialog.textReadOnly, !edit);
    QCOMPARE(dialog.okEnabled, edit);

    QCOMPARE(host.document().child(u"PREC"_s).attribute(u"TEXT"_s), stored);
}

// In view mode "Text" is enabled exactly when the precondition has a
// documentation text; edit mode leaves it enabled.
void PreconditionTest::documentationButtonInViewMode_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QString>("textAttribute");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("view mode, with a text") << false << u"12"_s << true;
    QTest::newRow("view mode, without a text") << false << QString() << false;
    QTest::newRow("edit mode, without a text") << true << QString() << true;
}

void PreconditionTest::documentationButtonInViewMode()
{
    QFETCH(bool, edit);
    QFETCH(QString, textAttribute);
    QFETCH(bool, enabled);

    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(u"migrate pqrst002"_s, textAttribute), edit));
    QCOMPARE(host.button(u"CmdPreDoc"_s)->isEnabled(), enabled);
}

void PreconditionTest::documentationWithoutPrecondition()
{
    Host host;
    QVERIFY(host.open(u"klmno001"_s, documentWithoutPrecondition(), true));
    host.click(u"CmdPreDoc"_s);
    QTest::qWait(100);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
    QVERIFY(host.document().child(u"PREC"_s).isNull());
}

// A host reading the document while the person is still typing gets the
// precondition as it stands in the box, with its consequences: the migrate
// sources worked out again and the queries of tables no longer migrated gone.
void PreconditionTest::readingTheDocumentStoresThePendingText()
{
    Host host;
    QVERIFY(host.open(u"klmno001"_s, document(), true));
    host.replaceText(u"txtPreCondition"_s, u"migrate uvwxy003"_s);
    QVERIFY(host.focusIn(u"txtPreCondition"_s));

    const XmlElement root = host.document();
    QCOMPARE(root.child(u"PREC"_s).text, u"migrate uvwxy003"_s);
    QVERIFY(root.child(u"QUERY"_s).isNull());
    QCOMPARE(host.rows(u"lstMigrateSource"_s), kUvwxyRows);
    QVERIFY2(host.modals.count() == 0, qPrintable(host.modals.describe()));
}

QTEST_MAIN(PreconditionTest)
#include "tst_precondition.moc"
