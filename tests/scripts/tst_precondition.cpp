// The precondition box: stored when the focus leaves it, its "migrate"
// statements checked with their messages, the host's condition builder and
// its answer through PreCondition; and the documentation dialog of the
// precondition and of the main query.

#include "WidgetHarness.h"

#include <QSignalSpy>

using namespace fbtest;

namespace {

const QStringList kDefined{u"PQRST002"_s, u"UVWXY003"_s};
const QStringList kPqrstRows{u"migrate pqrst002"_s, {}};
const QStringList kUvwxyRows{u"migrate uvwxy003"_s, {}};

// Two source tables, the precondition migrating the first; TEXT numbers of
// the precondition and of the first table's query as given.
QString document(const QString& precondition = u"migrate pqrst002"_s, const QString& precText = {},
                 const QString& queryText = {})
{
    return klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL><PREC TEXT=\""_s + precText + u"\">"_s + precondition +
                             u"</PREC><QUERY ST=\"pqrst002\" TEXT=\""_s + queryText + u"\">select 1</QUERY>"_s,
                         kDefined);
}

const QString kWithoutPrecondition = klmnoDocument(u"<SRCTBL>pqrst002,uvwxy003</SRCTBL>"_s, kDefined);

} // namespace

class PreconditionTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    // Leaving the box stores the text into PREC (its TEXT number kept), works
    // out the migrate sources again and drops the queries and dumps that no
    // script references any more.
    void storedWhenTheFocusLeaves_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("migrateRows");
        QTest::addColumn<QStringList>("queries"); // ST of the QUERY elements handed back
        QTest::addColumn<QStringList>("dumps");   // No of the DUMP elements handed back
        QTest::addColumn<QString>("precText");    // null: no PREC
        const QString sample = readSample(u"klmno001.xml"_s);
        QTest::newRow("sample, one migrate source")
            << sample << u"migrate pqrst002"_s << kPqrstRows << QStringList{u"pqrst002"_s} << QStringList{u"3"_s}
            << u"12"_s;
        QTest::newRow("sample, a dump referenced by the precondition")
            << sample << u"migrate uvwxy003 dump 2 Addresses"_s << kUvwxyRows << QStringList{u"uvwxy003"_s}
            << QStringList{u"2"_s} << u"12"_s;
        QTest::newRow("no PREC: nothing kept")
            << kWithoutPrecondition << u"migrate uvwxy003\nx = 1"_s << QStringList() << QStringList() << QStringList()
            << QString();
    }
    void storedWhenTheFocusLeaves()
    {
        QFETCH(QString, xml);
        QFETCH(QString, typed);
        QFETCH(QStringList, migrateRows);
        QFETCH(QStringList, queries);
        QFETCH(QStringList, dumps);
        QFETCH(QString, precText);
        QVERIFY(host->open(u"klmno001"_s, xml));
        const QStringList rowsBefore = host->rows(u"lstMigrateSource"_s);
        const QString sourceTables = host->ctl->property("SourceTables").toString();
        host->replaceText(u"txtPreCondition"_s, typed);
        QCOMPARE(host->text(u"txtPreCondition"_s), typed);
        // Typing alone stores nothing.
        QCOMPARE(host->rows(u"lstMigrateSource"_s), rowsBefore);

        host->clickBelowRows(u"lstSourceTables"_s);
        QVERIFY(host->focusIn(u"lstSourceTables"_s));
        QCOMPARE(host->rows(u"lstMigrateSource"_s), migrateRows);
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"PREC"_s).isNull(), precText.isNull());
        if (!precText.isNull()) {
            QCOMPARE(root.child(u"PREC"_s).text, typed);
            QCOMPARE(root.child(u"PREC"_s).attribute(u"TEXT"_s), precText);
        }
        QCOMPARE(root.attributeValues(u"QUERY"_s, u"ST"_s), queries);
        QCOMPARE(root.attributeValues(u"DUMP"_s, u"No"_s), dumps);
        QCOMPARE(host->ctl->property("SourceTables").toString(), sourceTables);
    }

    // The "migrate" statements are parsed when the precondition is stored.
    // Bad table names are reported (critical, OK only) once, skipped, and
    // put the focus back into the precondition box; the text itself is
    // stored first, so the migrate sources are those of the typed text.
    void migrateStatementsChecked_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("focusBack");
        QTest::addColumn<QStringList>("migrateRows");
        const QString tooShort = u"Table Name not Valid"_s;
        const QString noName = u"Migrate Keyword Has to be followed by a TableName"_s;
        QTest::newRow("name too short") << u"migrate KLM"_s << QStringList{tooShort} << true << QStringList();
        QTest::newRow("digit among the first five")
            << u"migrate 1LMNO001"_s << QStringList{u"Invalid table name '1LMNO001'"_s} << true << QStringList();
        QTest::newRow("letters among the last three")
            << u"migrate KLMNOXYZ"_s << QStringList{u"Invalid table name 'KLMNOXYZ'"_s} << true << QStringList();
        QTest::newRow("bad name skipped, scan goes on")
            << u"migrate pqrst002\nmigrate KLM\nmigrate uvwxy003"_s << QStringList{tooShort} << true
            << (kPqrstRows + kUvwxyRows);
        QTest::newRow("two bad names, two messages")
            << u"migrate KLM\nmigrate 1LMNO001"_s << QStringList{tooShort, u"Invalid table name '1LMNO001'"_s} << true
            << QStringList();
        QTest::newRow("keyword ends the text") << u"migrate pqrst002\nmigrate"_s << QStringList{noName} << false
                                               << kPqrstRows;
        QTest::newRow("keyword and one blank end the text")
            << u"migrate pqrst002\nmigrate "_s << QStringList{noName} << false << kPqrstRows;
        QTest::newRow("a word ending in migrate ends the text")
            << u"migrate pqrst002 premigrate"_s << QStringList{noName} << false << kPqrstRows;
        QTest::newRow("not a whole word") << u"xmigrate pqrst002"_s << QStringList() << false << QStringList();
        QTest::newRow("same table twice, silently once")
            << u"migrate pqrst002 migrate pqrst002"_s << QStringList() << false << kPqrstRows;
        QTest::newRow("the same name in other letters counts twice")
            << u"migrate pqrst002 migrate PQRST002"_s << QStringList() << false
            << (kPqrstRows + QStringList{u"migrate PQRST002"_s, {}});
        QTest::newRow("capitals, tab and line break")
            << u"MIGRATE\tuvwxy003\nmigrate pqrst002"_s << QStringList() << false << (kUvwxyRows + kPqrstRows);
    }
    void migrateStatementsChecked()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, messages);
        QFETCH(bool, focusBack);
        QFETCH(QStringList, migrateRows);
        QVERIFY(host->open(u"klmno001"_s, document(QString())));
        host->replaceText(u"txtPreCondition"_s, typed);
        QCOMPARE(host->text(u"txtPreCondition"_s), typed);
        for (qsizetype i = 0; i < messages.size(); ++i)
            host->modals.expect(ModalAnswerer::press(QMessageBox::Ok));
        host->clickBelowRows(u"lstSourceTables"_s);
        QCOMPARE(host->modals.texts(), messages);
        for (const ModalRecord& box : host->modals.records()) {
            QCOMPARE(box.icon, QMessageBox::Critical);
            QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        }
        QCOMPARE(host->rows(u"lstMigrateSource"_s), migrateRows);
        // Under offscreen no window is active after a box: once it is again,
        // the focus is back in the box, and no message comes a second time.
        QVERIFY(host->activate());
        if (focusBack)
            QTRY_VERIFY2(host->focusIn(u"txtPreCondition"_s), qPrintable(focusName()));
        QTest::qWait(100);
        QCOMPARE(host->modals.texts(), messages);
    }

    // "Build" hands the precondition AS STORED and the source tables to the
    // host's condition builder; the host answers through PreCondition.
    void conditionBuilder_data()
    {
        QTest::addColumn<bool>("click"); // else the access key, without leaving the box
        QTest::addColumn<QString>("condition");
        QTest::newRow("click: leaving the box stores it first") << true << u"migrate pqrst002\ny = 2"_s;
        QTest::newRow("access key without leaving: the stored text") << false << u"migrate pqrst002"_s;
    }
    void conditionBuilder()
    {
        QFETCH(bool, click);
        QFETCH(QString, condition);
        QVERIFY(host->open(u"klmno001"_s, document()));
        ctlFieldbridge* ctl = host->ctl;
        QSignalSpy spy(ctl, SIGNAL(ShowConditionBuilderPopUp(QString, QString)));
        QVERIFY(spy.isValid());
        // The host's builder answers at once.
        connect(ctl, &ctlFieldbridge::ShowConditionBuilderPopUp, ctl, [ctl](const QString&, const QString&) {
            ctl->setProperty("PreCondition", u"migrate uvwxy003\nif a &lt; b"_s);
        });
        host->replaceText(u"txtPreCondition"_s, u"migrate pqrst002\ny = 2"_s);
        if (click) {
            host->click(u"CmdBuildPre"_s);
        } else {
            keyToFocus(Qt::Key_B, Qt::AltModifier);
            QTRY_COMPARE(spy.count(), 1);
            QVERIFY(host->focusIn(u"txtPreCondition"_s)); // the box was never left
        }
        QCOMPARE(spy.count(), 1);
        QCOMPARE(lf(spy.first().at(0).toString()), condition);
        QCOMPARE(spy.first().at(1).toString(), u"pqrst002,uvwxy003"_s);
        // The answer: decoded into the box, stored, migrate sources worked out.
        QCOMPARE(host->text(u"txtPreCondition"_s), u"migrate uvwxy003\nif a < b"_s);
        QCOMPARE(host->rows(u"lstMigrateSource"_s), kUvwxyRows);
        QCOMPARE(host->document().child(u"PREC"_s).text, u"migrate uvwxy003\nif a < b"_s);
    }

    // PreCondition: the text is decoded (the four entities, in any letter
    // case), put into the box and stored. Stored text is decoded once more
    // whenever it is shown again.
    void preConditionProperty_data()
    {
        QTest::addColumn<QString>("assigned");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("shownAgain"); // the read-back text shown by a new control
        const QString m = u"migrate uvwxy003\n"_s;
        QTest::newRow("less-than") << m + u"if a &lt; b"_s << m + u"if a < b"_s << m + u"if a < b"_s;
        QTest::newRow("an entity of an entity: decoded once more when shown again")
            << m + u"x&amp;lt;y"_s << m + u"x&lt;y"_s << m + u"x<y"_s;
        QTest::newRow("entities in any letter case") << m + u"a&LT;b&Gt;c"_s << m + u"a<b>c"_s << m + u"a<b>c"_s;
        QTest::newRow("quotation marks and ampersand")
            << m + u"s = &quot;D&quot; &amp; t"_s << m + u"s = \"D\" & t"_s << m + u"s = \"D\" & t"_s;
    }
    void preConditionProperty()
    {
        QFETCH(QString, assigned);
        QFETCH(QString, shown);
        QFETCH(QString, shownAgain);
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->ctl->setProperty("PreCondition", assigned);
        QCOMPARE(host->text(u"txtPreCondition"_s), shown);
        QCOMPARE(host->rows(u"lstMigrateSource"_s), kUvwxyRows); // stored and parsed at once
        const QString xml = host->xml();
        QCOMPARE(parseXml(xml).child(u"PREC"_s).text, shown);
        Host again;
        QVERIFY(again.open(u"klmno001"_s, xml));
        QCOMPARE(again.text(u"txtPreCondition"_s), shownAgain);
    }

    // "Text" opens the documentation dialog on the TEXT attribute of PREC or
    // of the box's QUERY, decoded; what the dialog hands back is written
    // into TEXT.
    void documentationDialog_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("text"); // the attribute as written in the XML
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("typed"); // null: types nothing
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("stored");
        const QString pre = u"CmdPreDoc"_s;
        const QString mq = u"CmdMQDoc"_s;
        QTest::newRow("precondition, OK with a new text")
            << pre << u"12"_s << true << true << u"Checks the customers"_s << u"12"_s << u"Checks the customers"_s;
        QTest::newRow("precondition, Cancel keeps the text")
            << pre << u"12"_s << true << false << u"zzz"_s << u"12"_s << u"12"_s;
        QTest::newRow("precondition, entities decoded for display")
            << pre << u"a &amp;lt; b"_s << true << true << QString() << u"a < b"_s << u"a < b"_s;
        QTest::newRow("precondition, read-only: locked, OK disabled")
            << pre << u"12"_s << false << true << QString() << u"12"_s << u"12"_s;
        QTest::newRow("precondition, two lines kept")
            << pre << u"line 1&#10;line 2"_s << true << true << QString() << u"line 1\nline 2"_s << u"line 1\nline 2"_s;
        QTest::newRow("main query, OK with a new text")
            << mq << QString() << true << true << u"Reads the customers"_s << QString() << u"Reads the customers"_s;
        QTest::newRow("main query, Cancel keeps the text")
            << mq << u"Old note"_s << true << false << u"zzz"_s << u"Old note"_s << u"Old note"_s;
    }
    void documentationDialog()
    {
        QFETCH(QString, button);
        QFETCH(QString, text);
        QFETCH(bool, edit);
        QFETCH(bool, ok);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(QString, stored);
        const bool precondition = button == u"CmdPreDoc"_s;
        QVERIFY(host->open(u"klmno001"_s, precondition ? document(u"migrate pqrst002"_s, text)
                                                       : document(u"migrate pqrst002"_s, u"7"_s, text), edit));
        host->modals.expect(ModalAnswerer::document(ok, typed));
        host->click(button);
        QCOMPARE(host->modals.count(), 1);
        const ModalRecord dialog = host->modals.records().first();
        QCOMPARE(dialog.objectName, u"FrmTxtDoc"_s);
        QCOMPARE(dialog.title, precondition ? u"Precondition Text"_s : u"Text for Migrate:klmno001"_s);
        QCOMPARE(dialog.text, shown);
        QCOMPARE(dialog.textReadOnly, !edit);
        QCOMPARE(dialog.okEnabled, edit);
        const XmlElement root = host->document();
        const XmlElement prec = root.child(u"PREC"_s);
        const XmlElement query = root.child(u"QUERY"_s, u"ST"_s, u"pqrst002"_s);
        QCOMPARE(precondition ? prec.attribute(u"TEXT"_s) : query.attribute(u"TEXT"_s), stored);
        QCOMPARE(precondition ? query.attribute(u"TEXT"_s) : prec.attribute(u"TEXT"_s), precondition ? u""_s : u"7"_s);
    }

    // In view mode "Text" is enabled exactly when there is a documentation
    // text; edit mode leaves it enabled. Without the element it opens nothing.
    void documentationButton_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("xml");
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QString>("missing"); // the element to document, when the document lacks it
        const QString pre = u"CmdPreDoc"_s;
        const QString mq = u"CmdMQDoc"_s;
        const QString withoutQuery = klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC>migrate pqrst002</PREC>"_s, kDefined);
        QTest::newRow("precondition, view mode, with a text")
            << pre << document(u"migrate pqrst002"_s, u"12"_s) << false << true << QString();
        QTest::newRow("precondition, view mode, without a text") << pre << document() << false << false << QString();
        QTest::newRow("precondition, edit mode, without a text") << pre << document() << true << true << QString();
        QTest::newRow("precondition, edit mode, without PREC") << pre << kWithoutPrecondition << true << true << u"PREC"_s;
        QTest::newRow("main query, view mode, with a text")
            << mq << document(u"migrate pqrst002"_s, {}, u"Note"_s) << false << true << QString();
        QTest::newRow("main query, view mode, without a text") << mq << document() << false << false << QString();
        QTest::newRow("main query, view mode, without a QUERY") << mq << withoutQuery << false << false << QString();
        QTest::newRow("main query, edit mode, without a QUERY") << mq << withoutQuery << true << true << u"QUERY"_s;
    }
    void documentationButton()
    {
        QFETCH(QString, button);
        QFETCH(QString, xml);
        QFETCH(bool, edit);
        QFETCH(bool, enabled);
        QFETCH(QString, missing);
        QVERIFY(host->open(u"klmno001"_s, xml, edit));
        QCOMPARE(host->button(button)->isEnabled(), enabled);
        if (missing.isEmpty())
            return;
        host->click(button); // nothing to document: no dialog, no element
        QTest::qWait(100);
        QVERIFY(host->document().child(missing).isNull());
    }

    // A host reading the document while the person is still typing gets the
    // precondition as it stands in the box, with its consequences: the
    // migrate sources worked out again and the queries of tables no longer
    // migrated gone.
    void readingTheDocumentStoresThePendingText()
    {
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->replaceText(u"txtPreCondition"_s, u"migrate uvwxy003"_s);
        QVERIFY(host->focusIn(u"txtPreCondition"_s));
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"PREC"_s).text, u"migrate uvwxy003"_s);
        QVERIFY(root.child(u"QUERY"_s).isNull());
        QCOMPARE(host->rows(u"lstMigrateSource"_s), kUvwxyRows);
    }
};

QTEST_MAIN(PreconditionTest)
#include "tst_precondition.moc"
