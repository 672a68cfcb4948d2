// The "Mapping Object" tab: source tables, migrate sources and main queries,
// the precondition, functions and variables, their documentation texts and
// the round trip of a script through an external editor.

#include "ExternalEditor.h"
#include "MappingSession.h"
#include "core/document/LineBreaks.h"
#include "core/document/TextFile.h"
#include "core/document/TextRules.h"

#include <QSet>

namespace fb {

// ---- source tables -----------------------------------------------------------

void MappingSession::RefreshSourceTableList()
{
    QStringList pieces = str::Split(m_doc.GetSourceTablesText(), u',');
    for (QString& p : pieces) {
        p.remove(u'\n');
        p.remove(u'\r');
    }
    if (m_sourceTableRows.isEmpty()) {
        m_sourceTableRows = pieces; // every piece gets a row, empty ones too
    } else {
        QSet<QString> present(m_sourceTableRows.cbegin(), m_sourceTableRows.cend());
        for (const QString& p : pieces) {
            if (!present.contains(p) && !str::Trim(p).isEmpty()) {
                m_sourceTableRows.append(p);
                present.insert(p);
            }
        }
    }
    if (!m_doc.GetSourceTablesNode())
        m_doc.SetSourceTablesText(m_doc.GetSourceTablesText());
    if (!m_sourceTableRows.isEmpty()) {
        // Each row joins the text only once the text is no longer empty, so
        // leading empty rows leave no separator behind.
        QString text;
        for (const QString& row : m_sourceTableRows)
            text = text.isEmpty() ? row : text + u',' + row;
        m_doc.SetSourceTablesText(text);
    }
    Q_EMIT sourceTablesChanged();
}

void MappingSession::DeleteSourceTable(int row)
{
    // The Delete key removes nothing in read-only mode.
    if (!m_edit || row < 0 || row >= m_sourceTableRows.size())
        return;
    m_sourceTableRows.removeAt(row);
    setSourceTables(m_sourceTableRows.join(u','));
    RefreshSourceTableList();
}

void MappingSession::ReconcileSourceTables()
{
    m_doc.MigrateTables() = QStringList{QString()};
    m_scanner->ParseMigrateTables(m_doc.GetPreconditionText());
    bool verdict = true;
    const QStringList sources = str::Split(m_doc.GetSourceTablesText(), u',');
    const QStringList migrate = m_doc.MigrateTables();
    if (str::Trim(migrate.first()).isEmpty()) {
        ShowMigrateQuery(QString());
        FillMigrateSourceList();
        return;
    }
    bool allListed = true;
    for (const QString& name : migrate) {
        if (!ListContains(sources, name)) {
            const QString text = m_doc.GetSourceTablesText();
            setSourceTables(text.isEmpty() ? name : text + u',' + name);
            verdict = false;
            allListed = false;
            break; // one missing table per run
        }
    }
    if (allListed) {
        for (const QString& name : migrate) {
            if (!m_doc.GetSourceTableNode(name)) {
                verdict = false;
                break;
            }
        }
    }
    setDefineDumpsEnabled(verdict);
    if (!m_doc.MigrateTables().contains(m_mainQueryTable))
        ShowMigrateQuery(m_doc.MigrateTables().first());
    FillMigrateSourceList();
}

// ---- migrate sources and the main query ---------------------------------------

void MappingSession::FillMigrateSourceList()
{
    m_migrateRows.clear();
    if (m_doc.HasMigrateTables()) {
        for (const QString& table : m_doc.MigrateTables())
            m_migrateRows << QStringLiteral("migrate ") + table << QString();
    }
    Q_EMIT migrateRowsChanged();
    ApplyMainQueryLock();
}

void MappingSession::ShowMigrateQuery(const QString& table)
{
    m_mainQueryTable = table;
    setBox(Box::MainQuery, table.isEmpty() ? QString() : shownText(m_doc.GetQueryText(table)));
    ApplyMainQueryLock();
}

void MappingSession::StoreMainQuery()
{
    m_doc.SaveQueryText(m_mainQueryTable, boxText(Box::MainQuery));
    m_scanner->CollectDumpReferences();
}

bool MappingSession::HasQueryText()
{
    return !MappingDocument::DocText(m_doc.GetQueryNode(m_mainQueryTable)).isEmpty();
}

void MappingSession::MigrateSourceClicked(int row)
{
    const QString text = m_migrateRows.value(row);
    if (text.isEmpty())
        return;
    if (!m_mainQueryTable.isEmpty())
        m_doc.SaveQueryText(m_mainQueryTable, boxText(Box::MainQuery));
    const int at = str::InStrText(text, QStringLiteral("migrate "));
    const QString table = str::Trim(str::Mid(text, at + 8));
    m_mainQueryTable = table;
    setBox(Box::MainQuery, shownText(m_doc.GetQueryText(table)));
    ApplyMainQueryLock();
}

void MappingSession::ApplyMainQueryLock()
{
    // The main query box has a lock rule of its own on every change: locked
    // without migrate sources or outside edit mode, writable otherwise.
    if (!m_edit)
        enable(Command::CmdMQDoc, HasQueryText());
    setBoxLock(Box::MainQuery, m_migrateRows.isEmpty() || !m_edit);
}

// ---- the precondition --------------------------------------------------------

void MappingSession::ShowPrecondition()
{
    setBox(Box::PreCondition, shownText(m_doc.GetPreconditionText()));
    if (!m_edit)
        enable(Command::CmdPreDoc, HasPreconditionText());
}

void MappingSession::StorePrecondition()
{
    if (!m_doc.GetPreconditionNode())
        return; // the element is never created here
    m_doc.SetPreconditionText(boxText(Box::PreCondition));
    ReconcileSourceTables();
}

bool MappingSession::HasPreconditionText()
{
    return !MappingDocument::DocText(m_doc.GetPreconditionNode()).isEmpty();
}

void MappingSession::setBoxText(Box box, const QString& text)
{
    setBox(box, CrLfText(text));
}

// ---- builders and documentation texts -------------------------------------

void MappingSession::clickCmdSelectSource()
{
    Q_EMIT ShowSourceTablesPopUp(m_doc.GetSourceTablesText());
}

void MappingSession::clickCmdBuildPre()
{
    Q_EMIT ShowConditionBuilderPopUp(m_doc.GetPreconditionText(), m_doc.GetSourceTablesText());
}

void MappingSession::clickCmdBuildMQ()
{
    if (!m_mainQueryTable.isEmpty())
        Q_EMIT ShowQueryBuilderPopUp(boxText(Box::MainQuery), m_mainQueryTable);
}

std::optional<QString> MappingSession::editDocText(const QString& title, const QString& text)
{
    // An access key presses its button a moment later: a second dialog asked
    // for while one is open is not shown.
    if (m_dialogOpen)
        return std::nullopt;
    m_dialogOpen = true;
    const QString result = m_ui.EditDocText(title, text, m_edit);
    m_dialogOpen = false;
    return result;
}

void MappingSession::clickCmdPreDoc()
{
    const Node prec = m_doc.GetPreconditionNode();
    if (!prec)
        return;
    const QString text = MappingDocument::DisplayText(MappingDocument::DocText(prec));
    if (const auto result = editDocText(QStringLiteral("Precondition Text"), text)) {
        const Node node = m_doc.GetPreconditionNode();
        recordDocText(QStringLiteral("PREC"), QString(), node, QStringLiteral("Documentation: precondition"),
                      [&] { m_doc.SetDocText(node, *result); });
    }
}

void MappingSession::clickCmdMQDoc()
{
    if (m_mainQueryTable.isEmpty() || !m_doc.GetQueryNode(m_mainQueryTable))
        return;
    const QString table = m_mainQueryTable;
    const QString text = MappingDocument::DisplayText(MappingDocument::DocText(m_doc.GetQueryNode(table)));
    if (const auto result = editDocText(QStringLiteral("Text for Migrate:") + m_doc.TableName(), text)) {
        const Node node = m_doc.GetQueryNode(table);
        recordDocText(QStringLiteral("QUERY"), MappingDocument::QuerySource(node), node,
                      QStringLiteral("Documentation: main query of ") + table,
                      [&] { m_doc.SetDocText(node, *result); });
    }
}

// ---- functions and variables ------------------------------------------------

void MappingSession::SwitchScriptView(bool showPrecondition, bool keepEdits)
{
    // Writing back the text as it is stored never creates a section that the
    // document did not have.
    if (m_scriptView == ScriptView::Functions) {
        const QString stored = m_doc.GetFunctionsText();
        const QString text = keepEdits ? boxText(Box::Functions) : stored;
        const SectionCopy before = m_doc.CopySection(m_doc.RootChild(QStringLiteral("FUNCTIONS")));
        if (text != stored || m_doc.HasFunctions())
            m_doc.SetFunctionsText(text);
        recordSection(QStringLiteral("FUNCTIONS"), before, QStringLiteral("Edit: functions"));
    } else if (m_scriptView == ScriptView::Variables) {
        const QString stored = m_doc.GetVariablesText();
        const QString text = keepEdits ? boxText(Box::Variables) : stored;
        const SectionCopy before = m_doc.CopySection(m_doc.RootChild(QStringLiteral("VAR")));
        if (text != stored || m_doc.HasVariables())
            m_doc.SetVariablesText(text);
        recordSection(QStringLiteral("VAR"), before, QStringLiteral("Edit: variables"));
    }
    if (showPrecondition)
        m_scriptView = ScriptView::PreCondition;
    Q_EMIT scriptViewChanged();
}

void MappingSession::openScriptPanel(ScriptView view, const QString& text)
{
    const Box box = view == ScriptView::Functions ? Box::Functions : Box::Variables;
    setBox(box, shownText(text));
    SwitchScriptView(false, false);
    m_scriptView = view;
    Q_EMIT scriptViewChanged();
    requestFocus(view == ScriptView::Functions ? Focus::Functions : Focus::Variables);
    if (m_edit)
        Q_EMIT SaveDoneDisabled();
}

void MappingSession::clickCmdFunction()
{
    openScriptPanel(ScriptView::Functions, m_doc.GetFunctionsText());
}

void MappingSession::clickCmdVariables()
{
    QString text = m_doc.GetVariablesText();
    text.replace(QStringLiteral("~|~"), QStringLiteral("\t"));
    text.replace(QStringLiteral("~^~"), QStringLiteral("\r\n"));
    openScriptPanel(ScriptView::Variables, text);
}

void MappingSession::clickCmdOk()
{
    SwitchScriptView(true, true);
    if (m_edit)
        Q_EMIT SaveDoneEnabled();
}

void MappingSession::clickCmdCancel()
{
    SwitchScriptView(true, false);
    requestFocus(Focus::PreCondition);
    if (m_edit)
        Q_EMIT SaveDoneEnabled();
}

void MappingSession::ToggleMainQuerySize()
{
    m_enlarged = !m_enlarged;
    Q_EMIT scriptViewChanged();
}

// ---- the external editor ------------------------------------------------------

bool MappingSession::editExternally(const QString& fileName, QString& text)
{
    const QString path = TempFilePath(m_doc.TableName(), fileName);
    if (!WriteTextFile(path, text)) {
        m_ui.MsgBox(QStringLiteral("Unable to open editor"), MsgButtons::Ok, MsgIcon::None);
        return false;
    }
    m_editorBusy = true;
    if (const auto exitCode = RunEditor(m_editorPath, path)) {
        m_editorBusy = false;
        if (*exitCode != 0)
            return false; // the edit is discarded
    } else {
        // The busy flag stays set until the next run that starts, and the
        // file just written is read back: the text is replaced by itself.
        m_ui.MsgBox(QStringLiteral("Unable to open editor"), MsgButtons::Ok, MsgIcon::None);
    }
    // A file that can no longer be read (replaced by a link, removed)
    // discards the edit rather than emptying the text.
    bool read = false;
    const QString edited = ReadTextFile(path, &read);
    if (read)
        text = CrLfText(edited);
    return read;
}

void MappingSession::clickCmdPreEditor()
{
    enable(Command::CmdPreEditor, false);
    QString text = boxText(Box::PreCondition);
    if (editExternally(QStringLiteral("Pre.qbx"), text)) {
        setBox(Box::PreCondition, text);
        StorePrecondition();
    }
    enable(Command::CmdPreEditor, true);
    requestFocus(Focus::PreCondition);
}

void MappingSession::clickCmdMqEditor()
{
    enable(Command::CmdMqEditor, false);
    QString text = boxText(Box::MainQuery);
    if (editExternally(QStringLiteral("MQ.qbx"), text))
        setBox(Box::MainQuery, text);
    enable(Command::CmdMqEditor, true);
}

void MappingSession::clickCmdFuncEditor()
{
    const bool functions = m_scriptView == ScriptView::Functions;
    const Box box = functions ? Box::Functions : Box::Variables;
    enable(Command::CmdFuncEditor, false);
    QString text = boxText(box);
    if (editExternally(functions ? QStringLiteral("func.qbx") : QStringLiteral("var.qbx"), text))
        setBox(box, text);
    enable(Command::CmdFuncEditor, true);
    requestFocus(functions ? Focus::Functions : Focus::Variables);
}

} // namespace fb
