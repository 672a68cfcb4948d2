// The functions and variables editors: they take the precondition's place
// when "Functions" or "Variables / Includes" is pressed, OK keeps the edits,
// Cancel drops them, and the host is told to lock its save command meanwhile.

#include "WidgetHarness.h"

#include <QLabel>
#include <QSignalSpy>

using namespace fbtest;

namespace {

// The functions hold an entity of an entity (shown decoded); the variables
// hold the markers for a tab and a line break.
QString document(const QString& functionsAndVariables =
                     u"<FUNCTIONS>function f()\n{\n\tif a &amp;lt; b\n}</FUNCTIONS><VAR>a~|~b~^~c</VAR>"_s)
{
    return klmnoDocument(u"<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                         "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>"_s +
                         functionsAndVariables);
}

const QString kStoredFunctions = u"function f()\n{\n\tif a &lt; b\n}"_s;
const QString kShownFunctions = u"function f()\n{\n\tif a < b\n}"_s;
const QString kStoredVariables = u"a~|~b~^~c"_s;

// The widgets of the precondition and main-query groups, and of the
// OK/Cancel group.
const QStringList kScriptGroups{u"txtPreCondition"_s, u"CmdBuildPre"_s, u"CmdPreDoc"_s,   u"CmdPreEditor"_s,
                                u"PicPreResize"_s,    u"txtMainQuery"_s, u"cmdBuildMQ"_s,  u"CmdMQDoc"_s,
                                u"CmdMqEditor"_s,     u"PicMQResize"_s,  u"CmdFunction"_s, u"CmdVariables"_s};
const QStringList kOkCancelGroup{u"CmdOk"_s, u"CmdCancel"_s, u"CmdFuncEditor"_s};

QString visibilityProblems(const Host& host, const QStringList& names, bool visible)
{
    QStringList wrong;
    for (const QString& name : names)
        if (host.find(name)->isVisible() != visible)
            wrong.append(name);
    return wrong.join(u',');
}

QString caption(const Host& host)
{
    return host.find<QLabel>(u"lblPreCondition"_s)->text();
}

} // namespace

class FunctionsVariablesTest : public HostTest {
    Q_OBJECT

private Q_SLOTS:
    void panelOpens_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("editor");
        QTest::addColumn<QString>("other");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("label");
        const QString variables = u"Variables / Includes "_s;
        QTest::newRow("functions, decoded") << document() << u"CmdFunction"_s << u"txtFunctions"_s << u"txtVariables"_s
                                            << kShownFunctions << u"Functions"_s;
        QTest::newRow("variables, markers as tab and line break")
            << document() << u"CmdVariables"_s << u"txtVariables"_s << u"txtFunctions"_s << u"a\tb\nc"_s << variables;
        QTest::newRow("variables, markers then entities")
            << document(u"<VAR>include a.inc~^~s~|~= &amp;quot;q&amp;quot;</VAR>"_s) << u"CmdVariables"_s
            << u"txtVariables"_s << u"txtFunctions"_s << u"include a.inc\ns\t= \"q\""_s << variables;
        QTest::newRow("functions keep the markers")
            << document(u"<FUNCTIONS>a~|~b~^~c</FUNCTIONS>"_s) << u"CmdFunction"_s << u"txtFunctions"_s
            << u"txtVariables"_s << u"a~|~b~^~c"_s << u"Functions"_s;
    }
    void panelOpens()
    {
        QFETCH(QString, xml);
        QFETCH(QString, button);
        QFETCH(QString, editor);
        QFETCH(QString, other);
        QFETCH(QString, shown);
        QFETCH(QString, label);
        QVERIFY(host->open(u"klmno001"_s, xml));
        QCOMPARE(caption(*host), u"PreCondition"_s);
        QVERIFY(!host->find(editor)->isVisible());
        QCOMPARE(visibilityProblems(*host, kOkCancelGroup, false), QString());
        host->click(button);
        QVERIFY(host->find(editor)->isVisible());
        QVERIFY(!host->find(other)->isVisible());
        QCOMPARE(host->text(editor), shown);
        QCOMPARE(caption(*host), label);
        QVERIFY(host->focusIn(editor));
        QCOMPARE(visibilityProblems(*host, kScriptGroups, false), QString());
        QCOMPARE(visibilityProblems(*host, kOkCancelGroup, true), QString());
    }

    // OK stores the editor's text (variables with real tabs and line breaks,
    // no markers again); Cancel writes the stored text back unchanged. Both
    // bring the precondition back; Cancel gives it the focus.
    void panelCloses_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("typed"); // a null string types nothing
        QTest::addColumn<QString>("closer");
        QTest::addColumn<QString>("functions");
        QTest::addColumn<QString>("variables");
        const QString f = u"CmdFunction"_s;
        const QString v = u"CmdVariables"_s;
        const QString newFunction = u"function g()\n{\n}"_s;
        QTest::newRow("functions edited, OK") << f << newFunction << u"CmdOk"_s << newFunction << kStoredVariables;
        QTest::newRow("functions edited, Cancel")
            << f << newFunction << u"CmdCancel"_s << kStoredFunctions << kStoredVariables;
        QTest::newRow("functions unchanged, OK: stored as shown")
            << f << QString() << u"CmdOk"_s << kShownFunctions << kStoredVariables;
        QTest::newRow("variables unchanged, OK: real tab and line break")
            << v << QString() << u"CmdOk"_s << kStoredFunctions << u"a\tb\nc"_s;
        QTest::newRow("variables unchanged, Cancel: markers kept")
            << v << QString() << u"CmdCancel"_s << kStoredFunctions << kStoredVariables;
        QTest::newRow("variables edited, OK") << v << u"x\ty\nz"_s << u"CmdOk"_s << kStoredFunctions << u"x\ty\nz"_s;
    }
    void panelCloses()
    {
        QFETCH(QString, button);
        QFETCH(QString, typed);
        QFETCH(QString, closer);
        QFETCH(QString, functions);
        QFETCH(QString, variables);
        const QString editor = button == u"CmdFunction"_s ? u"txtFunctions"_s : u"txtVariables"_s;
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->click(button);
        if (!typed.isNull()) {
            host->replaceText(editor, typed);
            QCOMPARE(host->text(editor), typed);
        }
        host->click(closer);
        QCOMPARE(caption(*host), u"PreCondition"_s);
        QVERIFY(!host->find(editor)->isVisible());
        QCOMPARE(visibilityProblems(*host, kScriptGroups, true), QString());
        QCOMPARE(visibilityProblems(*host, kOkCancelGroup, false), QString());
        if (closer == u"CmdCancel"_s)
            QVERIFY(host->focusIn(u"txtPreCondition"_s));
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"FUNCTIONS"_s).text, functions);
        QCOMPARE(root.child(u"VAR"_s).text, variables);
    }

    // FUNCTIONS and VAR are created when first saved with OK.


    void missingSectionsCreated_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("closer");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("stored");
        QTest::newRow("functions, OK") << u"CmdFunction"_s << u"CmdOk"_s << u"FUNCTIONS"_s << u"function h()"_s;
        QTest::newRow("variables, OK") << u"CmdVariables"_s << u"CmdOk"_s << u"VAR"_s << u"function h()"_s;
    }
    // OK keeps the typed text, creating the missing section.
    void missingSectionsCreated()
    {
        QFETCH(QString, button);
        QFETCH(QString, closer);
        QFETCH(QString, section);
        QFETCH(QString, stored);
        const QString editor = button == u"CmdFunction"_s ? u"txtFunctions"_s : u"txtVariables"_s;
        QVERIFY(host->open(u"klmno001"_s, document(QString())));
        host->click(button);
        QCOMPARE(host->text(editor), QString());
        host->replaceText(editor, u"function h()"_s);
        host->click(closer);
        const XmlElement root = host->document();
        QCOMPARE(root.all(section).size(), 1);
        QCOMPARE(root.child(section).text, stored);
    }

    // Opening the functions closes the variables editor without keeping its
    // edits. While either editor is open the two buttons are hidden, so the
    // press comes from the program, not from a click.
    void functionsWhileVariablesOpenDropsTheVariables()
    {
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->click(u"CmdVariables"_s);
        host->replaceText(u"txtVariables"_s, u"changed"_s);
        QAbstractButton* functions = host->button(u"CmdFunction"_s);
        QVERIFY(!functions->isVisible());
        functions->click();
        QVERIFY(host->find(u"txtFunctions"_s)->isVisible());
        QVERIFY(!host->find(u"txtVariables"_s)->isVisible());
        QCOMPARE(caption(*host), u"Functions"_s);
        QCOMPARE(host->text(u"txtFunctions"_s), kShownFunctions);
        host->click(u"CmdCancel"_s);
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"VAR"_s).text, kStoredVariables);
        QCOMPARE(root.child(u"FUNCTIONS"_s).text, kStoredFunctions);
    }

    // The functions are among the scripts whose "dump" references keep a
    // DUMP; the variables are not.
    void dumpsReferencedByFunctionsNotVariables()
    {
        QVERIFY(host->open(u"klmno001"_s, document()));
        host->click(u"CmdFunction"_s);
        host->replaceText(u"txtFunctions"_s, u"function f()\n{\n\tdump 8 Helpers\n}"_s);
        host->click(u"CmdOk"_s);
        host->click(u"CmdVariables"_s);
        host->replaceText(u"txtVariables"_s, u"dump 9 Variables"_s);
        host->click(u"CmdOk"_s);
        const XmlElement root = host->document();
        QCOMPARE(root.child(u"VAR"_s).text, u"dump 9 Variables"_s);
        QCOMPARE(root.attributeValues(u"DUMP"_s, u"No"_s), QStringList{u"8"_s});
    }

    // SaveDoneDisabled when an editor opens, SaveDoneEnabled when it closes
    // with OK or Cancel, in edit mode only. Read-only mode locks the editors
    // and disables OK.
    void saveDoneEvents_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QList<int>>("disabledCounts"); // after each click
        QTest::addColumn<QList<int>>("enabledCounts");
        QTest::addColumn<QList<bool>>("panelOpen");
        QTest::newRow("edit mode") << true
                                   << QStringList{u"CmdFunction"_s, u"CmdOk"_s, u"CmdVariables"_s, u"CmdCancel"_s}
                                   << QList<int>{1, 1, 2, 2} << QList<int>{0, 1, 1, 2}
                                   << QList<bool>{true, false, true, false};
        QTest::newRow("read-only mode: no events, OK disabled")
            << false << QStringList{u"CmdFunction"_s, u"CmdOk"_s, u"CmdCancel"_s, u"CmdVariables"_s, u"CmdCancel"_s}
            << QList<int>{0, 0, 0, 0, 0} << QList<int>{0, 0, 0, 0, 0} << QList<bool>{true, true, false, true, false};
    }
    void saveDoneEvents()
    {
        QFETCH(bool, edit);
        QFETCH(QStringList, clicks);
        QFETCH(QList<int>, disabledCounts);
        QFETCH(QList<int>, enabledCounts);
        QFETCH(QList<bool>, panelOpen);
        QVERIFY(host->open(u"klmno001"_s, document(), edit));
        QSignalSpy disabled(host->ctl, SIGNAL(SaveDoneDisabled()));
        QSignalSpy enabled(host->ctl, SIGNAL(SaveDoneEnabled()));
        QVERIFY(disabled.isValid() && enabled.isValid());
        QCOMPARE(host->button(u"CmdOk"_s)->isEnabled(), edit);
        for (qsizetype i = 0; i < clicks.size(); ++i) {
            host->click(clicks[i]);
            QCOMPARE(disabled.count(), disabledCounts[i]);
            QCOMPARE(enabled.count(), enabledCounts[i]);
            QCOMPARE(host->button(u"CmdCancel"_s)->isVisible(), panelOpen[i]);
            if (clicks[i] == u"CmdFunction"_s)
                QCOMPARE(host->readOnly(u"txtFunctions"_s), !edit);
            if (clicks[i] == u"CmdVariables"_s)
                QCOMPARE(host->readOnly(u"txtVariables"_s), !edit);
        }
    }
};

QTEST_MAIN(FunctionsVariablesTest)
#include "tst_functionsvariables.moc"
