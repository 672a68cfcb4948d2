// Suggestions for the dump in the grid: the engine ranks the listed source
// fields for each target field, the user reviews them, and what is taken is
// written into the grid as Ma&p would write it.

#include "DumpChange_p.h"
#include "core/rules/RuleGuess.h"
#include "core/rules/SuggestDocument.h"

namespace fb {

void MappingSession::clickCmdSuggest()
{
    CommitOpenEdit();
    const qint16 number = str::ToInteger(m_tag).value_or(0);
    if (number <= 0 || m_dialogOpen)
        return;
    if (m_rules.rowCount() == 0) {
        m_ui.MsgBox(
            QStringLiteral("Dump ") + QString::number(number) +
                QStringLiteral(" has no target field to suggest a rule for: its target table has no fields."),
            MsgButtons::Ok, MsgIcon::Information, QStringLiteral("Suggestions"));
        return;
    }
    SuggestOptions options;
    options.top = 5;
    const DocumentSuggestions all = SuggestForDocument(m_doc, number, options);
    if (all.dumps.isEmpty())
        return;
    const DumpSuggestions& dump = all.dumps.first();
    // The engine lists the target table's fields in table order, as the
    // grid's rows stand.
    QList<SuggestionRow> rows;
    for (qsizetype k = 0; k < dump.targets.size() && k < m_rules.rowCount(); ++k) {
        SuggestionRow row{int(k), m_rules.text(int(k), 0), m_rules.text(int(k), 1), {}};
        for (const SuggestedSource& c : dump.candidates[k])
            row.candidates.append({all.sources[c.source].qualifiedName(), c.score, c.reasons});
        rows.append(row);
    }
    m_dialogOpen = true;
    const quint64 loads = m_documentLoads;
    const QString tag = m_tag;
    const QList<AcceptedSuggestion> taken = m_ui.ReviewSuggestions(
        QStringLiteral("Suggestions for dump ") + QString::number(number), rows, kSuggestThreshold);
    m_dialogOpen = false;
    if (taken.isEmpty())
        return;
    // The host may have assigned another document, shown another dump or
    // locked the control while the review was open: the rules taken belong
    // to what is gone, and the user is told rather than left to wonder.
    if (!m_edit || loads != m_documentLoads || tag != m_tag) {
        m_ui.MsgBox(QStringLiteral("Nothing was written: the mapping object changed or was locked while the "
                                   "suggestions were reviewed."),
                    MsgButtons::Ok, MsgIcon::Exclamation, QStringLiteral("Suggestions"));
        return;
    }

    // The type descriptions the conversions need, as the field lists show them.
    QHash<QString, QString> sourceTypes;
    for (const FieldRow& f : listedSourceFields())
        sourceTypes.insert(f.name, f.type);
    const QList<FieldRow> targets = FieldRowsOf(m_doc.GetTargetTableNode(number));
    const DumpChange change(*this, DumpAction::Suggest);
    QList<std::pair<int, QString>> texts;
    for (const AcceptedSuggestion& a : taken) {
        if (a.row < 0 || a.row >= m_rules.rowCount() || !sourceTypes.contains(a.source))
            continue;
        const QString targetType = a.row < targets.size() ? targets[a.row].type : QString();
        texts.append({a.row, BuildMappedRule({{a.source, sourceTypes.value(a.source)}}, targetType)});
    }
    m_rules.setRuleTexts(texts);
    // Into the dump at once, as Guess does: what asks before rules are
    // discarded (Cha&nge...) looks at the dump, not at the grid.
    StoreDumpRules(m_tag);
}

} // namespace fb
