// The functions and variables editors: they take the precondition's place
// when "Functions" or "Variables / Includes" is pressed, OK keeps the edits,
// Cancel drops them, and the host is told to lock its save command meanwhile.

#include "ScriptsHarness.h"

#include <QSignalSpy>

using namespace scripts_test;

namespace {

// The functions hold an entity of an entity (shown decoded); the variables
// hold the markers for a tab and a line break.
QString document(const QString& functionsAndVariables = QStringLiteral(
                     "<FUNCTIONS>function f()\n{\n\tif a &amp;lt; b\n}</FUNCTIONS><VAR>a~|~b~^~c</VAR>"))
{
    return mappingObject(QStringLiteral("<SRCTBL>pqrst002</SRCTBL><PREC TEXT=\"\">migrate pqrst002</PREC>"
                                        "<QUERY ST=\"pqrst002\" TEXT=\"\">select 1</QUERY>") +
                             functionsAndVariables,
                         {QStringLiteral("PQRST002")});
}

const QString kStoredFunctions = QStringLiteral("function f()\n{\n\tif a &lt; b\n}");
const QString kShownFunctions = QStringLiteral("function f()\n{\n\tif a < b\n}");
const QString kStoredVariables = QStringLiteral("a~|~b~^~c");

// The widgets of the precondition and main-query groups, and of the OK/Cancel
// group.
const QStringList kScriptGroups{
    QStringLiteral("txtPreCondition"), QStringLiteral("CmdBuildPre"),  QStringLiteral("CmdPreDoc"),
    QStringLiteral("CmdPreEditor"),    QStringLiteral("PicPreResize"), QStringLiteral("txtMainQuery"),
    QStringLiteral("cmdBuildMQ"),      QStringLiteral("CmdMQDoc"),     QStringLiteral("CmdMqEditor"),
    QStringLiteral("PicMQResize"),     QStringLiteral("CmdFunction"),  QStringLiteral("CmdVariables")};
const QStringList kOkCancelGroup{QStringLiteral("CmdOk"), QStringLiteral("CmdCancel"),
                                 QStringLiteral("CmdFuncEditor")};

QString visibilityProblems(const Host& host, const QStringList& names, bool visible)
{
    QStringList wrong;
    for (const QString& name : names) {
        QWidget* w = host.widget<QWidget>(name);
        if (!w || w->isVisible() != visible) wrong.append(name);
    }
    return wrong.join(u',');
}

} // namespace

class FunctionsVariablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageFilter(); }

    void panelOpens_data();
    void panelOpens();
    void panelCloses_data();
    void panelCloses();
    void missingSectionsCreated_data();
    void missingSectionsCreated();
    void functionsWhileVariablesOpenDropsTheVariables();
    void dumpsReferencedByFunctionsNotVariables();
    void saveDoneEvents_data();
    void saveDoneEvents();
};

void FunctionsVariablesTest::panelOpens_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("editor");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("label");

    QTest::newRow("functions, decoded")
        << document() << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions")
        << QStringLiteral("txtVariables") << kShownFunctions << QStringLiteral("Functions");
    QTest::newRow("variables, markers as tab and line break")
        << document() << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables")
        << QStringLiteral("txtFunctions") << QStringLiteral("a\tb\nc")
        << QStringLiteral("Variables / Includes ");
    QTest::newRow("variables, markers then entities")
        << document(QStringLiteral("<VAR>include a.inc~^~s~|~= &amp;quot;q&amp;quot;</VAR>"))
        << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables") << QStringLiteral("txtFunctions")
        << QStringLiteral("include a.inc\ns\t= \"q\"") << QStringLiteral("Variables / Includes ");
    QTest::newRow("functions keep the markers")
        << document(QStringLiteral("<FUNCTIONS>a~|~b~^~c</FUNCTIONS>")) << QStringLiteral("CmdFunction")
        << QStringLiteral("txtFunctions") << QStringLiteral("txtVariables") << QStringLiteral("a~|~b~^~c")
        << QStringLiteral("Functions");
}

void FunctionsVariablesTest::panelOpens()
{
    QFETCH(QString, xml);
    QFETCH(QString, button);
    QFETCH(QString, editor);
    QFETCH(QString, other);
    QFETCH(QString, shown);
    QFETCH(QString, label);

    Host host;
    QVERIFY(host.show(xml, true));
    QCOMPARE(host.labelText(QStringLiteral("lblPreCondition")), QStringLiteral("PreCondition"));
    QVERIFY(!host.editor(editor)->isVisible());
    QCOMPARE(visibilityProblems(host, kOkCancelGroup, false), QString());

    host.click(button);
    QVERIFY(host.editor(editor)->isVisible());
    QVERIFY(!host.editor(other)->isVisible());
    QCOMPARE(host.text(editor), shown);
    QCOMPARE(host.labelText(QStringLiteral("lblPreCondition")), label);
    QVERIFY(host.focusIn(editor));
    QCOMPARE(visibilityProblems(host, kScriptGroups, false), QString());
    QCOMPARE(visibilityProblems(host, kOkCancelGroup, true), QString());
}

// OK stores the editor's text (variables with real tabs and line breaks, no
// markers again); Cancel writes the stored text back unchanged. Both bring
// the precondition back; Cancel gives it the focus.
void FunctionsVariablesTest::panelCloses_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("editor");
    QTest::addColumn<QString>("typed"); // a null string types nothing
    QTest::addColumn<QString>("closer");
    QTest::addColumn<QString>("functions");
    QTest::addColumn<QString>("variables");

    QTest::newRow("functions edited, OK") << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions")
                                          << QStringLiteral("function g()\n{\n}") << QStringLiteral("CmdOk")
                                          << QStringLiteral("function g()\n{\n}") << kStoredVariables;
    QTest::newRow("functions edited, Cancel")
        << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions")
        << QStringLiteral("function g()\n{\n}") << QStringLiteral("CmdCancel") << kStoredFunctions
        << kStoredVariables;
    QTest::newRow("functions unchanged, OK: stored as shown")
        << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions") << QString()
        << QStringLiteral("CmdOk") << kShownFunctions << kStoredVariables;
    QTest::newRow("variables unchanged, OK: real tab and line break")
        << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables") << QString()
        << QStringLiteral("CmdOk") << kStoredFunctions << QStringLiteral("a\tb\nc");
    QTest::newRow("variables unchanged, Cancel: markers kept")
        << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables") << QString()
        << QStringLiteral("CmdCancel") << kStoredFunctions << kStoredVariables;
    QTest::newRow("variables edited, OK")
        << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables") << QStringLiteral("x\ty\nz")
        << QStringLiteral("CmdOk") << kStoredFunctions << QStringLiteral("x\ty\nz");
    QTest::newRow("variables edited, Cancel")
        << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables") << QStringLiteral("x\ty\nz")
        << QStringLiteral("CmdCancel") << kStoredFunctions << kStoredVariables;
}

void FunctionsVariablesTest::panelCloses()
{
    QFETCH(QString, button);
    QFETCH(QString, editor);
    QFETCH(QString, typed);
    QFETCH(QString, closer);
    QFETCH(QString, functions);
    QFETCH(QString, variables);

    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.click(button);
    if (!typed.isNull()) {
        host.replaceText(editor, typed);
        QCOMPARE(host.text(editor), typed);
    }
    host.click(closer);

    QCOMPARE(host.labelText(QStringLiteral("lblPreCondition")), QStringLiteral("PreCondition"));
    QVERIFY(!host.editor(editor)->isVisible());
    QCOMPARE(visibilityProblems(host, kScriptGroups, true), QString());
    QCOMPARE(visibilityProblems(host, kOkCancelGroup, false), QString());
    if (closer == QLatin1String("CmdCancel")) QVERIFY(host.focusIn(QStringLiteral("txtPreCondition")));

    const XmlElement root = host.read();
    QCOMPARE(lf(root.child(QStringLiteral("FUNCTIONS")).text), functions);
    QCOMPARE(lf(root.child(QStringLiteral("VAR")).text), variables);
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// FUNCTIONS and VAR are created when first saved; closing always writes the
// section (Cancel writes the stored text, "" for a missing one).
void FunctionsVariablesTest::missingSectionsCreated_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("editor");
    QTest::addColumn<QString>("closer");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("stored");

    QTest::newRow("functions, OK") << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions")
                                   << QStringLiteral("CmdOk") << QStringLiteral("FUNCTIONS")
                                   << QStringLiteral("function h()");
    QTest::newRow("variables, OK") << QStringLiteral("CmdVariables") << QStringLiteral("txtVariables")
                                   << QStringLiteral("CmdOk") << QStringLiteral("VAR")
                                   << QStringLiteral("function h()");
    QTest::newRow("functions, Cancel")
        << QStringLiteral("CmdFunction") << QStringLiteral("txtFunctions") << QStringLiteral("CmdCancel")
        << QStringLiteral("FUNCTIONS") << QString();
}

void FunctionsVariablesTest::missingSectionsCreated()
{
    QFETCH(QString, button);
    QFETCH(QString, editor);
    QFETCH(QString, closer);
    QFETCH(QString, section);
    QFETCH(QString, stored);

    Host host;
    QVERIFY(host.show(document(QString()), true));
    host.click(button);
    QCOMPARE(host.text(editor), QString());
    host.replaceText(editor, QStringLiteral("function h()"));
    host.click(closer);

    const XmlElement root = host.read();
    QCOMPARE(root.all(section).size(), 1);
    QCOMPARE(root.child(section).text, stored);
}

// Opening the functions closes the variables editor without keeping its
// edits. While either editor is open the two buttons are hidden, so the
// press comes from the program, not from a click.
void FunctionsVariablesTest::functionsWhileVariablesOpenDropsTheVariables()
{
    Host host;
    QVERIFY(host.show(document(), true));
    host.click(QStringLiteral("CmdVariables"));
    host.replaceText(QStringLiteral("txtVariables"), QStringLiteral("changed"));
    QCOMPARE(host.text(QStringLiteral("txtVariables")), QStringLiteral("changed"));
    QAbstractButton* functions = host.button(QStringLiteral("CmdFunction"));
    QVERIFY(!functions->isVisible());

    functions->click();
    QVERIFY(host.editor(QStringLiteral("txtFunctions"))->isVisible());
    QVERIFY(!host.editor(QStringLiteral("txtVariables"))->isVisible());
    QCOMPARE(host.labelText(QStringLiteral("lblPreCondition")), QStringLiteral("Functions"));
    QCOMPARE(host.text(QStringLiteral("txtFunctions")), kShownFunctions);
    host.click(QStringLiteral("CmdCancel"));

    const XmlElement root = host.read();
    QCOMPARE(root.child(QStringLiteral("VAR")).text, kStoredVariables);
    QCOMPARE(lf(root.child(QStringLiteral("FUNCTIONS")).text), kStoredFunctions);
}

// The functions are among the scripts whose "dump" references keep a DUMP;
// the variables are not.
void FunctionsVariablesTest::dumpsReferencedByFunctionsNotVariables()
{
    Host host;
    BoxAnswerer boxes;
    QVERIFY(host.show(document(), true));
    host.click(QStringLiteral("CmdFunction"));
    host.replaceText(QStringLiteral("txtFunctions"), QStringLiteral("function f()\n{\n\tdump 8 Helpers\n}"));
    host.click(QStringLiteral("CmdOk"));
    host.click(QStringLiteral("CmdVariables"));
    host.replaceText(QStringLiteral("txtVariables"), QStringLiteral("dump 9 Variables"));
    host.click(QStringLiteral("CmdOk"));

    const XmlElement root = host.read();
    QCOMPARE(root.child(QStringLiteral("VAR")).text, QStringLiteral("dump 9 Variables"));
    const QList<XmlElement> dumps = root.all(QStringLiteral("DUMP"));
    QCOMPARE(dumps.size(), 1);
    QCOMPARE(dumps.first().attribute(QStringLiteral("No")), QStringLiteral("8"));
    QVERIFY2(boxes.seen().isEmpty(), qPrintable(boxes.texts().join(u'|')));
}

// SaveDoneDisabled when an editor opens, SaveDoneEnabled when it closes with
// OK or Cancel, in edit mode only. Read-only mode locks the editors and
// disables OK.
void FunctionsVariablesTest::saveDoneEvents_data()
{
    QTest::addColumn<bool>("edit");
    QTest::addColumn<QStringList>("clicks");
    QTest::addColumn<QList<int>>("disabledCounts"); // after each click
    QTest::addColumn<QList<int>>("enabledCounts");
    QTest::addColumn<QList<bool>>("panelOpen");

    const QStringList clicks{QStringLiteral("CmdFunction"), QStringLiteral("CmdOk"),
                             QStringLiteral("CmdVariables"), QStringLiteral("CmdCancel")};
    QTest::newRow("edit mode") << true << clicks << QList<int>{1, 1, 2, 2} << QList<int>{0, 1, 1, 2}
                               << QList<bool>{true, false, true, false};
    QTest::newRow("read-only mode: no events, OK disabled")
        << false
        << QStringList{QStringLiteral("CmdFunction"), QStringLiteral("CmdOk"), QStringLiteral("CmdCancel"),
                       QStringLiteral("CmdVariables"), QStringLiteral("CmdCancel")}
        << QList<int>{0, 0, 0, 0, 0} << QList<int>{0, 0, 0, 0, 0}
        << QList<bool>{true, true, false, true, false};
}

void FunctionsVariablesTest::saveDoneEvents()
{
    QFETCH(bool, edit);
    QFETCH(QStringList, clicks);
    QFETCH(QList<int>, disabledCounts);
    QFETCH(QList<int>, enabledCounts);
    QFETCH(QList<bool>, panelOpen);

    Host host;
    QVERIFY(host.show(document(), edit));
    QSignalSpy disabled(host.control.get(), SIGNAL(SaveDoneDisabled()));
    QSignalSpy enabled(host.control.get(), SIGNAL(SaveDoneEnabled()));
    QVERIFY(disabled.isValid() && enabled.isValid());
    QCOMPARE(host.button(QStringLiteral("CmdOk"))->isEnabled(), edit);

    for (int i = 0; i < clicks.size(); ++i) {
        host.click(clicks[i]);
        QCOMPARE(disabled.count(), disabledCounts[i]);
        QCOMPARE(enabled.count(), enabledCounts[i]);
        QCOMPARE(host.button(QStringLiteral("CmdCancel"))->isVisible(), panelOpen[i]);
        if (clicks[i] == QLatin1String("CmdFunction"))
            QCOMPARE(host.readOnly(QStringLiteral("txtFunctions")), !edit);
        if (clicks[i] == QLatin1String("CmdVariables"))
            QCOMPARE(host.readOnly(QStringLiteral("txtVariables")), !edit);
    }
}

QTEST_MAIN(FunctionsVariablesTest)
#include "tst_functionsvariables.moc"
