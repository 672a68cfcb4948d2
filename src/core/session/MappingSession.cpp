// The session's shell: the host's properties and methods, ShowControl, the
// two tabs handing over to each other, edit mode, focus and the Alt
// shortcuts, and reading the document back.

#include "MappingSession.h"

#include "core/document/LineBreaks.h"
#include "core/document/TextCodec.h"
#include "core/document/TextFile.h"
#include "core/document/TextRules.h"

#include <QLoggingCategory>

namespace fb {

Q_LOGGING_CATEGORY(lcExport, "fieldbridge.export")

// The scanner reports to the session: its message boxes go to the user, a
// refused "migrate" statement sends the focus to the precondition, and a new
// list of migrate tables refills the migrate sources.
class MappingSession::ScannerHooks : public Interaction {
public:
    explicit ScannerHooks(MappingSession& s) : m_s(s) {}
    MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon, const QString& title) override
    {
        return m_s.m_ui.MsgBox(prompt, buttons, icon, title);
    }
    QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override
    {
        return m_s.m_ui.InputBox(prompt, title, defaultText);
    }
    void FocusPreconditionEditor() override { m_s.requestFocus(Focus::PreCondition); }
    void MigrateTablesChanged() override { m_s.FillMigrateSourceList(); }

private:
    MappingSession& m_s;
};

MappingSession::MappingSession(Interaction& ui, QObject* parent)
    : QObject(parent), m_ui(ui), m_hooks(std::make_unique<ScannerHooks>(*this)),
      m_scanner(std::make_unique<ScriptScanner>(m_doc, *m_hooks))
{
    m_enabled.fill(true);
    setUpWorkbench();
}

MappingSession::~MappingSession() = default;

// ---- small state setters: each tells the views ------------------------------

void MappingSession::setBox(Box box, const QString& text)
{
    BoxState& b = m_boxes[index(box)];
    if (b.text == text)
        return;
    b.text = text;
    Q_EMIT boxTextChanged(box);
    // Rules that follow every change of a box's text: in view mode the
    // precondition's documentation button follows the text that exists, and
    // the main query box re-applies its lock.
    if (box == Box::PreCondition && !m_edit)
        enable(Command::CmdPreDoc, HasPreconditionText());
    else if (box == Box::MainQuery)
        ApplyMainQueryLock();
}

void MappingSession::setBoxLock(Box box, bool locked)
{
    BoxState& b = m_boxes[index(box)];
    if (b.locked == locked)
        return;
    b.locked = locked;
    Q_EMIT boxLockChanged(box);
}

void MappingSession::enable(Command command, bool on)
{
    if (m_enabled[size_t(command)] == on)
        return;
    m_enabled[size_t(command)] = on;
    Q_EMIT commandEnabledChanged(command);
}

QString MappingSession::shownText(const QString& stored) const
{
    return CrLfText(MappingDocument::DisplayText(stored));
}

// ---- the host's properties and methods --------------------------------------

void MappingSession::setMappingObjectXML(const QString& text)
{
    m_doc.LoadXml(text);
    ++m_documentLoads;
    m_sourceFieldsKnown = false;
    // Nothing of the previous document is undone into this one or checked.
    clearHistory();
    m_catalogue.reset();
    m_checkTimer.stop();
    m_checkQueue.clear();
    m_checkedDumps.clear();
    m_dumpProblems.clear();
    m_targetFieldsCache.clear();
    m_sectionProblems.clear();
    publishProblems();
}

QString MappingSession::MappingObjectXML()
{
    StorePrecondition();
    StoreMainQuery();
    if (m_dumpIndex >= 0)
        StoreDumpRules(QString::number(m_dumpNumbers[m_dumpIndex]));
    m_scanner->PruneSections();
    // A property read cannot fail towards the host; a lost export is logged
    // and the document is still handed back.
    bool written = false;
    QString error;
    QString text =
        m_doc.SerializeToFile(TempFilePath(m_doc.TableName(), QStringLiteral(".xml")), &written, &error);
    if (!written)
        qCWarning(lcExport, "the temporary export could not be written: %s", qPrintable(error));
    return text;
}

void MappingSession::setTargetTable(const QString& name)
{
    m_targetTableAssigned = name;
    m_doc.SetTableName(name);
    m_sourceFieldsKnown = false;
}

void MappingSession::setEdit(bool on)
{
    m_edit = on;
    EnableEditing();
}

void MappingSession::setSourceTables(const QString& tables)
{
    m_doc.SetSourceTablesText(tables);
    RefreshSourceTableList();
    scheduleChecks(CheckScope::Everything);
}

QString MappingSession::SourceTables()
{
    return m_doc.GetSourceTablesText();
}

void MappingSession::setPreCondition(const QString& text)
{
    m_preConditionAssigned = text;
    setBox(Box::PreCondition, shownText(text));
    StorePrecondition();
    enable(Command::CmdBuildPre, true);
}

void MappingSession::setMainQuery(const QString& text)
{
    setBox(Box::MainQuery, CrLfText(text));
    StoreMainQuery();
    enable(Command::cmdBuildMQ, true);
}

void MappingSession::SetTextNumber(const QString& type, int number, const QString& key1, const QString& key2)
{
    m_doc.SetTextNumber(type, number, key1, key2);
}

void MappingSession::Setfocus()
{
    if (m_tab == 0 && m_scriptView == ScriptView::PreCondition && !m_enlarged)
        requestFocus(Focus::PreCondition);
}

void MappingSession::ShowControl()
{
    // A new document: nothing of the previous one stays selected.
    ClearDumps();
    m_mainQueryTable.clear();

    ShowPrecondition();
    m_sourceTableRows.clear();
    RefreshSourceTableList();
    ReconcileSourceTables();
    ShowMigrateQuery(m_doc.MigrateTables().first());
    m_targetFields.setRows(FieldRowsOf(m_doc.GetTargetTableNode(0, m_tag)));
    EnableEditing();

    m_multiTarget = m_scanner->CheckMscripts();
    Q_EMIT multiTargetChanged();
    if (m_multiTarget)
        FillTargetTableSelector();
    scheduleChecks(CheckScope::Everything);
}

void MappingSession::EnableEditing()
{
    if (m_edit)
        return;
    // One way: nothing unlocks these again when Edit later becomes true.
    for (Box box : {Box::PreCondition, Box::MainQuery, Box::Functions, Box::Variables, Box::Overlay})
        setBoxLock(box, true);
    for (Command c : {Command::CmdEditRule, Command::CmdPreEditor, Command::CmdMqEditor, Command::CmdGuess,
                      Command::CmdMap, Command::CmdOk, Command::CmdSelectSource, Command::cmdBuildMQ,
                      Command::CmdBuildPre, Command::CmdFuncBuild, Command::CmdCopyDump, Command::CmdChange,
                      Command::CmdSuggest})
        enable(c, false);
    // The choice of a dump's target table is written into the dump when it
    // is stored: in read-only mode it stays with the dump's own table.
    enable(Command::CmbTargetTable, false);
    // Nothing is undone or redone once the document may not change.
    clearHistory();
}

// ---- tabs --------------------------------------------------------------------

void MappingSession::setTab(int tab)
{
    if (m_tab == tab)
        return;
    m_tab = tab;
    Q_EMIT tabsChanged();
}

void MappingSession::setDefineDumpsEnabled(bool on)
{
    if (m_definedDumpsEnabled == on)
        return;
    m_definedDumpsEnabled = on;
    Q_EMIT tabsChanged();
    // A tab strip leaves a page that becomes unavailable while it is shown.
    if (!on && m_tab == 1)
        TabChanged(0);
}

void MappingSession::TabChanged(int tab)
{
    if (tab == m_tab)
        return;
    const int previous = m_tab;
    setTab(tab);
    if (tab == 0) {
        if (previous == 1) {
            CommitOpenEdit();
            StoreDumpRules(m_tag);
        }
        return;
    }
    StorePrecondition();
    if (!m_definedDumpsEnabled) {
        setTab(0);
        return;
    }
    StoreMainQuery();
    if (m_doc.ReferencedDumps().numbers.first() < 1) {
        setTab(0);
        m_ui.MsgBox(QStringLiteral("Define Dumps"), MsgButtons::Ok, MsgIcon::Critical,
                    QStringLiteral("Mapping Object"));
        return;
    }
    const QString tag = m_tag;
    FillDumpSelector();
    BindUnboundDumps();
    if (!m_dumpNumbers.isEmpty()) {
        const qint16 kept = str::ToInteger(tag).value_or(0);
        const int keep = tag.isEmpty() ? -1 : int(m_dumpNumbers.indexOf(kept));
        setDumpIndex(keep >= 0 ? keep : 0);
        ShowDump(m_dumpNumbers[m_dumpIndex]);
    }
    scheduleChecks(CheckScope::Sections);
}

// ---- focus and keys ----------------------------------------------------------

void MappingSession::BoxLostFocus(Box box)
{
    switch (box) {
    case Box::PreCondition:
        StorePrecondition();
        break;
    case Box::MainQuery:
        StoreMainQuery();
        break;
    case Box::Overlay:
        OverlayLostFocus();
        break;
    case Box::Functions:
    case Box::Variables:
        break;
    }
}

void MappingSession::ControlLostFocus()
{
    if (!m_editorBusy)
        m_doc.SaveQueryText(m_mainQueryTable, boxText(Box::MainQuery));
}

void MappingSession::ControlGotFocus()
{
    if (m_editorBusy)
        ControlLostFocus(); // with the editor open this stores nothing
}

void MappingSession::TabWithModifiers(Box box, bool ctrlAlone, bool shiftAlone)
{
    // The key is swallowed; Ctrl alone and Shift alone move the focus on.
    if (!ctrlAlone && !shiftAlone)
        return;
    if (box == Box::PreCondition)
        requestFocus(ctrlAlone ? Focus::CmdSelectSource : Focus::SourceTables);
    else if (box == Box::MainQuery)
        requestFocus(ctrlAlone ? Focus::cmdBuildMQ : Focus::MigrateSource);
}

bool MappingSession::AltShortcut(QChar letter, bool act)
{
    // What is visible: the boxes of the shown panel on "Mapping Object", the
    // frame of "Define Dumps" on its tab. The visibility tests of M and P are
    // crossed on purpose: each tests the other box.
    const bool scripts = m_tab == 0 && m_scriptView == ScriptView::PreCondition;
    const bool preconditionShown = scripts && !m_enlarged;
    struct Row {
        char16_t key;
        bool visible;
        bool frameEnabled;
        Focus target;
    };
    const Row rows[] = {
        {u'M', preconditionShown, m_tab == 0, Focus::MainQuery},
        {u'P', scripts, m_tab == 0, Focus::PreCondition},
        {u'Q', scripts, m_tab == 0, Focus::MigrateSource},
        {u'U', m_tab == 1, m_tab == 1, Focus::DumpSelector},
    };
    for (const Row& row : rows) {
        if (row.key != letter.toUpper() || !row.visible)
            continue;
        if (act && row.frameEnabled)
            requestFocus(row.target);
        return true;
    }
    return false;
}

} // namespace fb
