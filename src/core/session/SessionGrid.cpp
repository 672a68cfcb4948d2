// The rules grid: its rows, the current cell, editing in place through the
// overlay box, and the commands that write rules into it (Ma&p, &Guess, the
// function builder, the external editor).

#include "DumpChange_p.h"
#include "core/document/LineBreaks.h"
#include "core/document/TextRules.h"
#include "core/rules/RuleGuess.h"

namespace fb {

void MappingSession::LayoutGrid(const Node& table)
{
    QStringList names;
    QList<bool> mandatory;
    for (const TargetField& f : TargetFieldsOf(table)) {
        names.append(f.name);
        mandatory.append(f.mandatory());
    }
    closeOverlay();
    m_syncFieldList = false;
    m_rules.setRows(names, mandatory);
    m_gridRow = m_gridColumn = -1;
    Q_EMIT gridCurrentChanged(false);
    m_syncFieldList = true;
    m_dumpToolTip = m_doc.KnownDumps().value(str::ToInteger(m_tag).value_or(0));
    Q_EMIT detailsChanged();
}

int MappingSession::GetRowNumber(const QString& fieldName) const
{
    return m_rules.rowOf(fieldName); // the first row of that name
}

void MappingSession::SetRuleInGrid(const QString& fieldName, const QString& rule)
{
    // The builders name a field by its part from the tenth character on.
    for (int r = 0; r < m_rules.rowCount(); ++r) {
        if (FieldPartOf(m_rules.text(r, 0)) == fieldName) {
            m_rules.setText(r, 1, rule);
            return;
        }
    }
}

void MappingSession::SelectGridRowOfField(const QString& fieldName)
{
    const int row = GetRowNumber(fieldName);
    if (row < 0) {
        Q_EMIT gridScrollToTop();
        return;
    }
    m_syncFieldList = false; // the list already shows this field
    moveGridCurrent(row, std::max(m_gridColumn, 0), true);
    m_syncFieldList = true;
}

QString MappingSession::FieldMapping() const
{
    return QString::number(std::max(m_gridRow, 0));
}

void MappingSession::setFieldMapping(const QString& rule)
{
    const DumpChange change(*this, DumpAction::FunctionBuilder);
    // The rule goes into the rule cell of the current row: the field-name
    // column is never edited.
    if (m_gridRow >= 0)
        m_rules.setText(m_gridRow, 1, rule);
    enable(Command::CmdFuncBuild, true);
}

// ---- the current cell ----------------------------------------------------------

void MappingSession::setGridCurrent(int row, int column)
{
    const bool valid = row >= 0 && row < m_rules.rowCount() && column >= 0 && column <= 1;
    if (!m_overlayOpen) {
        moveGridCurrent(valid ? row : -1, valid ? column : -1);
        return;
    }
    const DumpChange change(*this, DumpAction::Edit); // leaving the cell commits its edit
    moveGridCurrent(valid ? row : -1, valid ? column : -1);
}

void MappingSession::moveGridCurrent(int row, int column, bool scrollToTopIfHidden)
{
    Q_ASSERT(row >= -1 && row < m_rules.rowCount() && column >= -1 && column <= 1);
    if (row == m_gridRow && column == m_gridColumn)
        return;
    const int previous = m_gridRow;
    m_gridRow = row;
    m_gridColumn = column;
    Q_EMIT gridCurrentChanged(scrollToTopIfHidden);
    if (m_overlayOpen && previous >= 0) {
        // Leaving the cell commits the edit and stores the dump at once.
        if (m_edit)
            m_rules.setText(previous, 1, boxText(Box::Overlay));
        closeOverlay();
        StoreDumpRules(m_tag);
    }
    if (m_syncFieldList && row >= 0) {
        const int item = GetListItemNumber(m_rules.text(row, 0));
        if (item > 0) {
            m_targetSelected = item - 1;
            Q_EMIT targetFieldRequested(item - 1);
        }
    }
}

void MappingSession::MoveToNextRow()
{
    if (m_gridRow < 0 || m_gridRow + 1 >= m_rules.rowCount())
        return;
    moveGridCurrent(m_gridRow + 1, m_gridColumn, true);
}

// ---- editing in place ------------------------------------------------------------

void MappingSession::GridEdit(short keyAscii)
{
    // A blank, Enter or another control key opens the rule for change;
    // another key starts a new rule with its character.
    const bool startsNew = !(keyAscii >= 0 && keyAscii <= 32);
    openOverlay(startsNew ? QString(QChar(char16_t(keyAscii))) : QString());
}

void MappingSession::openOverlay(const QString& typed)
{
    Q_ASSERT(!m_overlayOpen || m_gridRow >= 0);
    if (m_gridRow < 0) {
        if (m_rules.rowCount() == 0)
            return;
        moveGridCurrent(0, 1);
    }
    if (m_gridColumn == 0)
        moveGridCurrent(m_gridRow, 1);
    // The overlay is locked in read-only mode: what is typed there never
    // replaces the rule.
    setBox(Box::Overlay, typed.isEmpty() || !m_edit ? m_rules.text(m_gridRow, 1) : typed);
    m_overlayOpen = true;
    Q_EMIT overlayChanged();
    requestFocus(Focus::Overlay);
}

void MappingSession::closeOverlay()
{
    if (!m_overlayOpen)
        return;
    m_overlayOpen = false;
    Q_EMIT overlayChanged();
}

void MappingSession::GridDoubleClicked()
{
    if (m_gridColumn == 0)
        moveGridCurrent(m_gridRow, 1);
    openOverlay(QString());
}

bool MappingSession::GridKeyPress(const QString& text, int key, bool commandModifiers)
{
    // Ctrl and Alt combinations are commands and access keys, never text.
    if (commandModifiers)
        return false;
    if (key == Qt::Key_Tab) {
        if (m_gridColumn == 0)
            moveGridCurrent(m_gridRow, 1);
        MoveToNextRow();
        return true;
    }
    if (text.isEmpty())
        return false; // navigation keys stay with the grid
    if (m_gridRow >= 0 && m_gridColumn == 0)
        moveGridCurrent(m_gridRow, 1);
    // The whole typed text: a character outside the basic plane is two code
    // units, and half of one is no character at all.
    if (text.size() == 1 && text[0].unicode() <= 32)
        openOverlay(QString());
    else
        openOverlay(text);
    return true;
}

void MappingSession::GridGotFocus()
{
    if (m_overlayOpen && m_gridRow >= 0) {
        const DumpChange change(*this, DumpAction::Edit);
        if (m_edit)
            m_rules.setText(m_gridRow, 1, boxText(Box::Overlay));
        closeOverlay();
    }
}

bool MappingSession::OverlayKey(int key)
{
    if (key == Qt::Key_Escape) {
        closeOverlay(); // the cell keeps its old text
        requestFocus(Focus::Grid);
        return true;
    }
    if (key == Qt::Key_Tab) {
        // As the focus moving on commits it: written, one row on, stored.
        CommitOpenEdit();
        requestFocus(Focus::Grid);
        return true;
    }
    return false;
}

void MappingSession::OverlayLostFocus()
{
    CommitOpenEdit();
}

void MappingSession::CommitOpenEdit()
{
    if (!m_overlayOpen)
        return;
    const DumpChange change(*this, DumpAction::Edit);
    if (m_gridRow >= 0 && m_edit) // a locked overlay holds nothing typed
        m_rules.setText(m_gridRow, 1, boxText(Box::Overlay));
    MoveToNextRow();
    closeOverlay();
}

// ---- commands that write rules ---------------------------------------------------

void MappingSession::clickCmdMap()
{
    DumpChange change(*this, DumpAction::Map);
    CommitOpenEdit();
    if (m_targetSelected < 0)
        return;
    QList<FieldEntry> ticked;
    for (int r = 0; r < m_sourceFields.rowCount(); ++r)
        if (m_sourceFields.isChecked(r))
            ticked.append({m_sourceFields.cellText(r, 2), m_sourceFields.cellText(r, 3)});
    const QString rule = BuildMappedRule(ticked, m_targetFields.cellText(m_targetSelected, 4));
    if (!rule.isEmpty())
        SetRuleInGrid(FieldPartOf(m_targetFields.cellText(m_targetSelected, 3)), rule);
    else
        m_ui.MsgBox(QStringLiteral("Please choose a source field to map"), MsgButtons::Ok, MsgIcon::None);
    m_sourceFields.clearChecks();
}

void MappingSession::clickCmdGuess()
{
    const DumpChange change(*this, DumpAction::Guess);
    CommitOpenEdit();
    if (m_sourceFields.rowCount() == 0 || m_targetFields.rowCount() == 0)
        return;
    for (int r = 0; r < m_rules.rowCount(); ++r) {
        if (m_rules.text(r, 1).isEmpty())
            continue;
        const QString prompt = QStringLiteral("You may lose some/all Data of ") + m_details +
                               QStringLiteral("\r\n Press 'Yes' to Proceed; 'No' to Cancel ");
        const QString title =
            QStringLiteral("Guessing rules for dump : ") + QString::number(SelectedDumpNumber());
        if (m_ui.MsgBox(prompt, MsgButtons::YesNo, MsgIcon::Critical, title) != MsgAnswer::Yes)
            return;
        break;
    }
    QList<FieldEntry> sources;
    sources.reserve(m_sourceFields.rowCount());
    for (int r = 0; r < m_sourceFields.rowCount(); ++r)
        sources.append({m_sourceFields.cellText(r, 2), m_sourceFields.cellText(r, 3)});
    QList<FieldEntry> targets;
    targets.reserve(m_targetFields.rowCount());
    for (int r = 0; r < m_targetFields.rowCount(); ++r)
        targets.append({m_targetFields.cellText(r, 3), m_targetFields.cellText(r, 4)});
    // Each rule goes where SetRuleInGrid puts it (the first row of the
    // field), all of them in one change of the grid.
    QHash<QString, int> rowOfField;
    for (int r = m_rules.rowCount() - 1; r >= 0; --r)
        rowOfField.insert(FieldPartOf(m_rules.text(r, 0)), r);
    QList<std::pair<int, QString>> texts;
    for (const GuessedRule& g : GuessRules(sources, targets))
        if (const auto row = rowOfField.constFind(g.fieldName); row != rowOfField.cend())
            texts.append({*row, g.rule});
    m_rules.setRuleTexts(texts);
    StoreDumpRules(m_tag);
}

void MappingSession::clickCmdFuncBuild()
{
    CommitOpenEdit();
    if (selectedDumpText().isEmpty())
        return;
    Q_EMIT ShowFunctionBuilderPopUp(m_rules.text(m_gridRow, 1), m_doc.GetSourceTablesText());
}

void MappingSession::clickCmdEditRule()
{
    const DumpChange change(*this, DumpAction::Edit);
    CommitOpenEdit();
    enable(Command::CmdEditRule, false);
    QString text = m_rules.text(m_gridRow, 1);
    if (editExternally(QStringLiteral("Rule.qbx"), text) && m_gridRow >= 0)
        m_rules.setText(m_gridRow, 1, text); // reaches the dump when the grid is stored
    enable(Command::CmdEditRule, true);
    requestFocus(Focus::Grid);
}

} // namespace fb
