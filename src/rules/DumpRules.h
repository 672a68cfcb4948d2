#pragma once

#include "core/document/Node.h"

#include <QString>
#include <Qt>

class QModelIndex;

namespace fb {

struct ControlState;

// The behaviour of the "Define Dumps" tab: the dump selector, the target
// table of a dump, the field lists and the rules grid.
class DumpRules {
public:
    explicit DumpRules(ControlState& s);
    void Connect();

    // ---- field lists ----
    void FillSourceFields();
    void ShowTargetFields();
    int GetListItemNumber(const QString& fieldName) const;

    // ---- dumps ----
    void ClearDumps(); // a new document: no dump selected, empty grid
    void FillDumpSelector();
    void FillTargetTableSelector();
    void StoreDumpRules(const QString& dumpNumber);
    void LoadDumpRules(qint16 dump);
    void ShowDump(qint16 dump);
    QString GetDumpTargetTable(qint16 dump);
    QString GetSelectedTargetTable() const;
    void SelectDumpTargetTable(qint16 dump);
    void RefreshTargetFields();
    void BindDumpToTable(const Node& dump, const QString& table);
    // Entering the tab: every dump without a target table gets one.
    void BindUnboundDumps();
    // The number of the shown dump from the Details caption; 0 for none.
    qint16 DetailsDumpNumber() const;
    qint16 SelectedDumpNumber() const;
    QString SelectorTag() const { return m_tag; }

    // ---- rules grid ----
    void LayoutGrid(const Node& table);
    int GetRowNumber(const QString& fieldName) const;
    void SetRuleInGrid(const QString& fieldName, const QString& rule);
    void SelectGridRowOfField(const QString& fieldName);
    QString FieldMapping() const;
    void SetFieldMapping(const QString& rule);

    // Leaving the dump selector: shows the chosen dump.
    void DumpSelectorLostFocus();

    // ---- in-place editing ----
    void GridEdit(qint16 keyAscii, bool typed);
    // Opens the overlay over the current cell, holding the typed text when
    // there is one, else the cell's rule.
    void OpenOverlay(const QString& typed);
    // An edit still open in the overlay is written into its cell, as the
    // overlay losing the focus writes it: whatever way the user leaves the
    // grid, nothing typed there is lost.
    void CommitOpenEdit();
    void GridDoubleClicked();
    // A key pressed in the grid; true when it was used.
    bool GridKeyPress(const QString& text, int key, Qt::KeyboardModifiers modifiers);
    void GridCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    void GridGotFocus();
    // Keys of the overlay box; true when used.
    bool OverlayKeyDown(int key);
    void OverlayLostFocus();
    void SourceFieldsGotFocus();

    // ---- commands ----
    void Map();
    void Guess();
    void FuncBuild();
    void CopyDump();
    void ChangeTargetTable();
    void DumpText();
    void EditRule();
    bool DumpHasRules(qint16 dump);
    bool FieldHasText();

private:
    void onDumpChosen(int index);
    void onShow();
    void onTargetFieldClicked(int row);

    int RowOfFieldPart(const QString& fieldName) const;
    // The first field of the table gets the rule "default()".
    void AddDefaultRule(const Node& dump, const QString& table);
    QString TableListOfSelector() const;
    // The rule element of the field in the grid's current row, with its
    // stored name; no node when there is none.
    Node CurrentRuleElement(QString* fieldLabel);
    void CommitOverlay(int row);
    void MoveToNextRow();

    ControlState& s;
    QString m_tag;
    bool m_syncFieldList = true; // entering a cell selects the field in the target list // the number of the dump whose rules the grid holds; "" for none
};

} // namespace fb
