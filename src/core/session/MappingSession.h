#pragma once

#include "FieldFilterModel.h"
#include "FieldListModel.h"
#include "ProblemsModel.h"
#include "RulesModel.h"
#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"
#include "core/rules/Coverage.h"
#include "core/scripts/ScriptScanner.h"

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <array>
#include <functional>
#include <memory>
#include <optional>

namespace fb {

// One editing session of a mapping object: the state and the behaviour of
// the whole control, without a single widget. The views turn what the user
// does into calls of this class and its signals into widget state; the
// control's public face forwards the host's properties, methods and events.
//
// Texts held for the boxes use CR LF line breaks, as the boxes hand them
// over. Rows and columns count from 0.
class MappingSession : public QObject {
    Q_OBJECT

public:
    // The script boxes of the "Mapping Object" tab and the grid's overlay box.
    enum class Box { PreCondition, MainQuery, Functions, Variables, Overlay };
    // The commands whose enabled state the session decides, and the
    // target-table selector (a choice there is written into the dump).
    enum class Command {
        CmdSelectSource,
        CmdBuildPre,
        CmdPreDoc,
        CmdPreEditor,
        cmdBuildMQ,
        CmdMQDoc,
        CmdMqEditor,
        CmdOk,
        CmdFuncEditor,
        CmdFuncBuild,
        CmdEditRule,
        CmdMap,
        CmdGuess,
        CmdCopyDump,
        CmdChange,
        CmdSuggest,
        CmbTargetTable
    };
    static constexpr size_t kCommands = size_t(Command::CmbTargetTable) + 1;
    // What the shared script area of the "Mapping Object" tab shows.
    enum class ScriptView { PreCondition, Functions, Variables };
    // Where the session sends the keyboard focus.
    enum class Focus {
        PreCondition,
        MainQuery,
        Functions,
        Variables,
        SourceTables,
        CmdSelectSource,
        MigrateSource,
        cmdBuildMQ,
        DumpSelector,
        TargetTableSelector,
        TargetFields,
        Grid,
        Overlay
    };
    Q_ENUM(Box)
    Q_ENUM(Command)
    Q_ENUM(ScriptView)
    Q_ENUM(Focus)

    explicit MappingSession(Interaction& ui, QObject* parent = nullptr);
    ~MappingSession() override;

    // ---- the host's properties and methods ---------------------------------
    void setMappingObjectXML(const QString& text);
    QString MappingObjectXML(); // stores pending edits, prunes, exports, returns
    void setEditor(const QString& path) { m_editorPath = path; }
    QString Editor() const { return m_editorPath; }
    void setTargetTable(const QString& name);
    QString TargetTable() const { return m_targetTableAssigned; }
    void setEdit(bool on);
    bool Edit() const { return m_edit; }
    void setSourceTables(const QString& tables);
    QString SourceTables();
    void setPreCondition(const QString& text);
    QString PreCondition() const { return m_preConditionAssigned; }
    void setMainQuery(const QString& text);
    QString MainQuery() const { return boxText(Box::MainQuery); }
    QString FieldMapping() const;
    void setFieldMapping(const QString& rule);
    int GetListItemNumber(const QString& fieldName) const;
    void ShowControl();
    void SetTextNumber(const QString& type, int number, const QString& key1, const QString& key2);
    int GetRowNumber(const QString& fieldName) const;
    void GridEdit(short keyAscii);
    // Setfocus: the precondition box takes the focus when it is shown.
    void Setfocus();

    // ---- state the views show ------------------------------------------------
    MappingDocument& document() { return m_doc; }
    const MappingDocument& document() const { return m_doc; }
    QString boxText(Box box) const { return m_boxes[index(box)].text; }
    bool boxLocked(Box box) const { return m_boxes[index(box)].locked; }
    bool commandEnabled(Command command) const { return m_enabled[size_t(command)]; }
    int currentTab() const { return m_tab; }
    bool tabEnabled(int tab) const { return tab != 1 || m_definedDumpsEnabled; }
    ScriptView scriptView() const { return m_scriptView; }
    bool mainQueryEnlarged() const { return m_enlarged; }
    bool multiTarget() const { return m_multiTarget; }
    const QStringList& sourceTableRows() const { return m_sourceTableRows; }
    const QStringList& migrateRows() const { return m_migrateRows; }
    QStringList dumpEntries() const;
    qint16 dumpNumber(int entry) const { return m_dumpNumbers.value(entry); }
    int dumpIndex() const { return m_dumpIndex; }
    QString dumpToolTip() const { return m_dumpToolTip; }
    QString detailsCaption() const { return m_details; }
    const QStringList& targetTables() const { return m_targetTables; }
    int targetTableIndex() const { return m_targetTableIndex; }
    QString targetTableName() const { return m_targetTableName; }
    FieldListModel* sourceFields() { return &m_sourceFields; }
    FieldListModel* targetFields() { return &m_targetFields; }
    RulesModel* rules() { return &m_rules; }
    // The qualified names of the listed source tables' fields, sorted without
    // regard to case: what the script boxes offer for completion.
    QStringList sourceFieldNames();
    int gridRow() const { return m_gridRow; }
    int gridColumn() const { return m_gridColumn; }
    bool overlayOpen() const { return m_overlayOpen; }
    bool editorBusy() const { return m_editorBusy; }

    // ---- what the user does: "Mapping Object" -------------------------------
    void TabChanged(int tab);
    void setBoxText(Box box, const QString& text); // the user edited a box
    void BoxLostFocus(Box box);                    // focus moved to another part of the control
    void ControlLostFocus();                       // focus left the control
    void ControlGotFocus();
    // Tab held with modifiers in a script box (the key never reaches it).
    void TabWithModifiers(Box box, bool ctrlAlone, bool shiftAlone);
    // An Alt+letter: true when it is one of the control's shortcuts (then the
    // key belongs to the control, and act moves the focus).
    bool AltShortcut(QChar letter, bool act);
    void DeleteSourceTable(int row);
    void MigrateSourceClicked(int row);
    void clickCmdSelectSource();
    void clickCmdBuildPre();
    void clickCmdBuildMQ();
    void clickCmdPreDoc();
    void clickCmdMQDoc();
    void clickCmdFunction();
    void clickCmdVariables();
    void clickCmdOk();
    void clickCmdCancel();
    void clickCmdPreEditor();
    void clickCmdMqEditor();
    void clickCmdFuncEditor();
    void ToggleMainQuerySize();

    // ---- what the user does: "Define Dumps" ---------------------------------
    void setDumpIndex(int index); // the selector's selection moved
    void DumpChosen(int index);   // an entry was chosen
    void DumpSelectorLostFocus();
    void clickCommand1();
    void setTargetTableIndex(int index);
    void setTargetFieldSelected(int row); // -1: none
    void TargetFieldClicked(int row);
    void setGridCurrent(int row, int column);
    void GridDoubleClicked();
    // A key pressed in the grid while the overlay is closed; true when used.
    bool GridKeyPress(const QString& text, int key, bool commandModifiers);
    void GridGotFocus();
    // A key in the overlay box; true when used.
    bool OverlayKey(int key);
    void OverlayLostFocus();
    void clickCmdMap();
    void clickCmdGuess();
    void clickCmdCopyDump();
    void clickCmdChange();
    void clickCmdDumpText();
    void clickCmdEditRule();
    void clickCmdFuncBuild();
    // Suggestions for the dump in the grid, reviewed by the user; what is
    // taken is written into the grid as one step, through the conversion
    // expressions that Ma&p writes.
    void clickCmdSuggest();
    static constexpr double kSuggestThreshold = 0.5;

    // ---- the workbench: finding, coverage, checks --------------------------
    // What the two field lists and the grid show: the lists above, narrowed
    // by the find boxes and by "unmapped only".
    FieldFilterModel* shownSourceFields() { return &m_sourceFilter; }
    FieldFilterModel* shownTargetFields() { return &m_targetFilter; }
    FieldFilterModel* shownRules() { return &m_rulesFilter; }
    void setUnmappedOnly(bool on);
    bool unmappedOnly() const { return m_unmappedOnly; }
    // The coverage of the dump the grid holds, and of a selector entry's dump.
    Coverage coverage() const;
    QString coverageText() const;
    QString dumpCoverageToolTip(int entry);
    // The problems, kept up to date as the user works (checked a little at a
    // time, never all at once while typing).
    ProblemsModel* problems() { return &m_problems; }
    // Finishes any checking still to do; the problems of the whole mapping.
    QList<Problem> CheckMapping();
    // Shows the dump and the grid row of a problem (its row in problems()).
    void ShowProblem(int index);
    // What reading the document would remove with content: dumps holding
    // rules that no script references, main queries with text for tables no
    // longer migrated. The script boxes' pending edits are stored first, as a
    // read stores them; nothing is removed.
    QList<Problem> PendingRemovals();

    // ---- undo and redo ------------------------------------------------------
    // Every change of the mapping made through the control is one step; the
    // history survives switching dumps and tabs, and starts afresh with each
    // new document.
    bool canUndo() const { return m_edit && m_historyAt > 0; }
    bool canRedo() const { return m_edit && m_historyAt < m_history.size(); }
    QString undoText() const;
    QString redoText() const;
    void Undo();
    void Redo();
    static constexpr int kHistoryLimit = 200;

    // ---- the behaviour by its own names -----------------------------------
    void StorePrecondition();
    void StoreMainQuery();
    void StoreDumpRules(const QString& dumpNumber);
    void ShowDump(qint16 number);
    void CommitOpenEdit();
    QString SelectorTag() const { return m_tag; }

Q_SIGNALS:
    // The host's events.
    void ShowSourceTablesPopUp(const QString& i_SourceTables);
    void ShowConditionBuilderPopUp(const QString& i_ConditionString, const QString& i_SourceTables);
    void ShowQueryBuilderPopUp(const QString& i_QueryString, const QString& i_SourceTables);
    void ShowFunctionBuilderPopUp(const QString& StrCondition, const QString& StrSourceTables);
    void SaveDoneDisabled();
    void SaveDoneEnabled();

    // Emitted to tell the views what changed.
    void boxTextChanged(fb::MappingSession::Box box);
    void boxLockChanged(fb::MappingSession::Box box);
    void commandEnabledChanged(fb::MappingSession::Command command);
    void tabsChanged();         // current tab or the availability of "Define Dumps"
    void scriptViewChanged();   // which script panel shows, the main query enlarged
    void multiTargetChanged();  // the target-table selector shows or hides
    void sourceTablesChanged(); // the rows of the source-table list
    void migrateRowsChanged();
    void dumpsChanged();        // the selector's entries or its selection
    void detailsChanged();      // the Details caption or the selector's tool tip
    void targetTablesChanged(); // the target-table selector or the dump's table name
    void gridCurrentChanged(bool scrollToTopIfHidden);
    void gridScrollToTop();
    void targetFieldRequested(int row); // select and show the row of the target list
    void overlayChanged();              // opened, closed or its text replaced
    void focusRequested(fb::MappingSession::Focus target);
    void coverageChanged();
    // A step was recorded on top of the history (what was undone is gone).
    void stepRecorded(const QString& text);
    void historyCleared();

private:
    class DumpChange;
    // A dump as it stood: its element and the grid's rules (the grid holds
    // the rules of the dump being edited until they are stored).
    struct DumpState {
        qint16 number = 0;
        SectionCopy element;
        QList<QString> grid;
        bool operator==(const DumpState& o) const
        {
            return number == o.number && grid == o.grid && element == o.element;
        }
    };
    // A documentation text (TEXT) of PREC or a QUERY: whether there was one, and which.
    struct DocTextState {
        bool present = false;
        QString text;
    };
    // One step of the history: what it changed, before and after.
    struct Step {
        enum class Kind { Dump, Section, DocText } kind = Kind::Dump;
        QString text;
        DumpState dumpBefore, dumpAfter;
        QString section, attrValue; // a section (and a QUERY's table) by name
        SectionCopy sectionBefore, sectionAfter;
        DocTextState docBefore, docAfter;
    };
    enum class DumpAction { Edit, Map, Guess, Suggest, FunctionBuilder, Copy, Bind, Documentation };
    struct BoxState {
        QString text;
        bool locked = false;
    };
    class ScannerHooks;

    static size_t index(Box box) { return size_t(box); }
    void setBox(Box box, const QString& text);
    void setBoxLock(Box box, bool locked);
    void enable(Command command, bool on);
    void EnableEditing();
    void setTab(int tab);
    void setDefineDumpsEnabled(bool on);
    void requestFocus(Focus target) { Q_EMIT focusRequested(target); }
    QString shownText(const QString& stored) const;

    // "Mapping Object"
    void ShowPrecondition();
    void RefreshSourceTableList();
    void ReconcileSourceTables();
    void FillMigrateSourceList();
    void ShowMigrateQuery(const QString& table);
    void ApplyMainQueryLock();
    bool HasQueryText();
    bool HasPreconditionText();
    void SwitchScriptView(bool showPrecondition, bool keepEdits);
    void openScriptPanel(ScriptView view, const QString& text);
    bool editExternally(const QString& fileName, QString& text);
    std::optional<QString> editDocText(const QString& title, const QString& text);

    // "Define Dumps"
    void ClearDumps();
    void FillDumpSelector();
    void FillTargetTableSelector();
    void LoadDumpRules(qint16 number);
    void LayoutGrid(const Node& table);
    void SelectDumpTargetTable(qint16 number);
    void RefreshTargetFields();
    void BindUnboundDumps();
    QString TableListOfSelector() const;
    qint16 SelectedDumpNumber() const;
    QString selectedDumpText() const;
    void SetRuleInGrid(const QString& fieldName, const QString& rule);
    void SelectGridRowOfField(const QString& fieldName);
    void moveGridCurrent(int row, int column, bool scrollToTopIfHidden = false);
    void MoveToNextRow();
    void openOverlay(const QString& typed);
    void closeOverlay();
    Node CurrentRuleElement(QString* fieldLabel);
    void refillSourceFields();
    const QList<FieldRow>& listedSourceFields();

    // the workbench
    void setUpWorkbench();
    void rulesChanged();
    // What has to be checked again: the scripts' sections (and so which
    // dumps are checked at all), every dump, or one dump.
    enum class CheckScope { Sections, Everything };
    void scheduleChecks(CheckScope scope);
    void scheduleDumpCheck(qint16 number, int delayMs = 0);
    void checkSome();
    const QList<TargetField>& targetFieldsOf(qint16 dump);
    void publishProblems();
    const SourceCatalogue& sourceCatalogue();

    // history
    DumpState captureDump(qint16 number) const;
    void record(Step step);
    void clearHistory();
    void applyDumpState(const DumpState& state);
    void apply(const Step& step, bool forward);
    QString describe(DumpAction action, const DumpState& before, const DumpState& after,
                     const QString& detail) const;
    void recordSection(const QString& name, const SectionCopy& before, const QString& text);
    void recordDocText(const QString& section, const QString& attrValue, const Node& before,
                       const QString& text, const std::function<void()>& change);

    MappingDocument m_doc;
    Interaction& m_ui;
    std::unique_ptr<ScannerHooks> m_hooks;
    std::unique_ptr<ScriptScanner> m_scanner;

    bool m_edit = false;
    bool m_multiTarget = false;
    bool m_editorBusy = false;
    bool m_dialogOpen = false;
    quint64 m_documentLoads = 0; // documents assigned so far: a dialog sees whether its document stayed
    QString m_editorPath;
    QString m_targetTableAssigned;
    QString m_preConditionAssigned;

    int m_tab = 0;
    bool m_definedDumpsEnabled = true;
    std::array<BoxState, 5> m_boxes;
    std::array<bool, kCommands> m_enabled;
    ScriptView m_scriptView = ScriptView::PreCondition;
    bool m_enlarged = false;

    QStringList m_sourceTableRows;
    QStringList m_migrateRows;
    QString m_mainQueryTable; // the migrate table whose query the main query box shows

    QList<qint16> m_dumpNumbers; // the selector's entries
    QStringList m_dumpTexts;
    int m_dumpIndex = -1;
    QString m_tag; // the dump whose rules the grid holds; "" for none
    QString m_details;
    QString m_dumpToolTip;
    QStringList m_targetTables;
    int m_targetTableIndex = -1;
    QString m_targetTableName;
    QList<FieldRow> m_sourceFieldRows; // the source list's rows, built once per list of tables
    QStringList m_sourceFieldNames;    // their names, sorted
    QString m_sourceFieldsOf;          // the SRCTBL text they were built from
    bool m_sourceFieldsKnown = false;

    FieldListModel m_sourceFields{FieldListModel::Kind::Source};
    FieldListModel m_targetFields{FieldListModel::Kind::Target};
    int m_targetSelected = -1;
    RulesModel m_rules;
    int m_gridRow = -1;
    int m_gridColumn = -1;
    bool m_overlayOpen = false;
    bool m_syncFieldList = true;

    FieldFilterModel m_sourceFilter{{2, 5}};
    FieldFilterModel m_targetFilter{{3, 6}};
    FieldFilterModel m_rulesFilter{{0}};
    bool m_unmappedOnly = false;

    ProblemsModel m_problems;
    QList<Problem> m_sectionProblems;
    QHash<qint16, QList<Problem>> m_dumpProblems;
    QList<qint16> m_checkQueue; // dumps still to check
    QList<qint16> m_checkedDumps;
    bool m_checkSections = false;
    bool m_checkEverything = false;
    QHash<QString, QList<TargetField>> m_targetFieldsCache; // by table element; a document's tables stay
    QTimer m_checkTimer;
    std::optional<SourceCatalogue> m_catalogue;
    QString m_catalogueOf; // the SRCTBL text it was built from

    std::vector<Step> m_history;
    size_t m_historyAt = 0; // steps below are done, from here on undone
    int m_changeDepth = 0;  // nested DumpChange scopes: only the outermost records
    bool m_restoring = false;
};

} // namespace fb
