// The history of the changes made to the mapping: each step keeps what it
// changed as it stood before and after, so that undo and redo put back
// exactly that, whatever else happened in between (switching dumps, tabs).

#include "DumpChange_p.h"
#include "core/document/TextRules.h"
#include "core/rules/DumpStore.h"

namespace fb {

MappingSession::DumpState MappingSession::captureDump(qint16 number) const
{
    DumpState state;
    if (number <= 0)
        return state;
    state.number = number;
    state.element = m_doc.CopySection(m_doc.DumpSection(number));
    if (str::ToInteger(m_tag).value_or(0) == number)
        state.grid = m_rules.rules();
    return state;
}

QString MappingSession::describe(DumpAction action, const DumpState& before, const DumpState& after,
                                 const QString& detail) const
{
    QList<int> changed;
    for (int r = 0; r < after.grid.size(); ++r)
        if (r >= before.grid.size() || before.grid[r] != after.grid[r])
            changed.append(r);
    const QString dump = QStringLiteral(" in dump ") + QString::number(after.number);
    const QString what = changed.size() == 1 ? m_rules.text(changed.first(), 0)
                                             : QString::number(changed.size()) + QStringLiteral(" rules");
    switch (action) {
    case DumpAction::Edit:
        return QStringLiteral("Edit: ") + what + dump;
    case DumpAction::Map:
        return QStringLiteral("Map: ") + what + dump;
    case DumpAction::Guess:
        return QStringLiteral("Guess: ") + QString::number(changed.size()) + QStringLiteral(" rules") + dump;
    case DumpAction::Suggest:
        return QStringLiteral("Suggestions: ") + what + dump;
    case DumpAction::FunctionBuilder:
        return QStringLiteral("Function builder: ") + what + dump;
    case DumpAction::Copy:
        return QStringLiteral("Copy: dump ") + detail + QStringLiteral(" into dump ") +
               QString::number(after.number);
    case DumpAction::Bind:
        return QStringLiteral("Bind: dump ") + QString::number(after.number) + QStringLiteral(" to ") +
               detail;
    case DumpAction::Documentation:
        return QStringLiteral("Documentation: ") + detail + dump;
    }
    return QString();
}

void MappingSession::record(Step step)
{
    if (m_restoring)
        return;
    m_history.resize(m_historyAt);
    m_history.push_back(std::move(step));
    if (m_history.size() > size_t(kHistoryLimit))
        m_history.erase(m_history.begin());
    m_historyAt = m_history.size();
    Q_EMIT stepRecorded(m_history.back().text);
}

void MappingSession::clearHistory()
{
    m_history.clear();
    m_historyAt = 0;
    Q_EMIT historyCleared();
}

QString MappingSession::undoText() const
{
    return canUndo() ? m_history[m_historyAt - 1].text : QString();
}

QString MappingSession::redoText() const
{
    return canRedo() ? m_history[m_historyAt].text : QString();
}

void MappingSession::Undo()
{
    if (!canUndo())
        return;
    // An edit still open in the grid is no step of its own: undoing puts the
    // cell back as it was, as Escape would.
    closeOverlay();
    --m_historyAt;
    apply(m_history[m_historyAt], false);
}

void MappingSession::Redo()
{
    if (!canRedo())
        return;
    closeOverlay();
    apply(m_history[m_historyAt], true);
    ++m_historyAt;
}

void MappingSession::apply(const Step& step, bool forward)
{
    m_restoring = true;
    switch (step.kind) {
    case Step::Kind::Dump:
        applyDumpState(forward ? step.dumpAfter : step.dumpBefore);
        break;
    case Step::Kind::Section:
        m_doc.RestoreSection(forward ? step.sectionAfter : step.sectionBefore, m_doc.RootChild(step.section));
        break;
    case Step::Kind::DocText: {
        const Node node =
            step.attrValue.isNull() ? m_doc.RootChild(step.section) : m_doc.QuerySection(step.attrValue);
        const DocTextState& state = forward ? step.docAfter : step.docBefore;
        if (state.present)
            m_doc.SetDocText(node, state.text);
        else
            m_doc.RemoveDocText(node);
        break;
    }
    }
    m_restoring = false;
    scheduleChecks(CheckScope::Sections);
    if (step.kind == Step::Kind::Dump)
        scheduleDumpCheck(step.dumpBefore.number);
}

void MappingSession::applyDumpState(const DumpState& state)
{
    const Node dump = m_doc.RestoreSection(state.element, m_doc.DumpSection(state.number));
    if (str::ToInteger(m_tag).value_or(0) != state.number) {
        // The grid holds another dump now: the rules it held for this one go
        // where leaving the dump put them.
        if (dump && !state.grid.isEmpty())
            StoreRules(m_doc, dump, m_doc.GetTargetTableNode(state.number), int(state.grid.size()),
                       [&state](int row) { return state.grid[row]; });
        return;
    }
    const int row = m_gridRow;
    const int column = m_gridColumn;
    if (GridNamesOf(m_doc.GetTargetTableNode(state.number)) != m_rules.names()) {
        ShowDump(state.number); // bound to another table: its fields anew
    } else if (m_multiTarget) {
        SelectDumpTargetTable(state.number);
    }
    m_rules.setRules(state.grid);
    if (row >= 0 && row < m_rules.rowCount())
        moveGridCurrent(row, column);
}

void MappingSession::recordSection(const QString& name, const SectionCopy& before, const QString& text)
{
    SectionCopy after = m_doc.CopySection(m_doc.RootChild(name));
    if (after == before && after.exists() == before.exists())
        return;
    Step step;
    step.kind = Step::Kind::Section;
    step.text = text;
    step.section = name;
    step.sectionBefore = before;
    step.sectionAfter = std::move(after);
    record(std::move(step));
}

void MappingSession::recordDocText(const QString& section, const QString& attrValue, const Node& node,
                                   const QString& text, const std::function<void()>& change)
{
    const auto state = [&node] {
        return DocTextState{MappingDocument::HasDocText(node), MappingDocument::DocText(node)};
    };
    const DocTextState before = state();
    change();
    const DocTextState after = state();
    if (before.present == after.present && before.text == after.text)
        return;
    Step step;
    step.kind = Step::Kind::DocText;
    step.text = text;
    step.section = section;
    step.attrValue = attrValue;
    step.docBefore = before;
    step.docAfter = after;
    record(std::move(step));
}

} // namespace fb
