#include "RulesModel.h"

#include "FieldMarks.h"
#include "core/document/LineBreaks.h"
#include "core/rules/Coverage.h"

namespace fb {

int RulesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

int RulesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant RulesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_names.size())
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return text(index.row(), index.column());
    if (role == Qt::ToolTipRole && index.column() == 1)
        return LfText(m_rules[index.row()]);
    if (role == kFieldMarkRole && index.column() == 0)
        return int(hasRule(index.row())       ? FieldMark::Mapped
                   : isMandatory(index.row()) ? FieldMark::MandatoryOpen
                                              : FieldMark::None);
    return QVariant();
}

QVariant RulesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (orientation == Qt::Vertical)
        return section + 1;
    return section == 0 ? QStringLiteral("Target Field") : QStringLiteral("Rule");
}

void RulesModel::setRows(const QStringList& fieldNames, const QList<bool>& mandatory)
{
    beginResetModel();
    m_names = fieldNames;
    m_rules = QList<QString>(fieldNames.size(), QStringLiteral(" "));
    m_mandatory = mandatory;
    m_rowOf.clear();
    for (int r = int(m_names.size()) - 1; r >= 0; --r)
        m_rowOf.insert(m_names[r], r);
    endResetModel();
}

bool RulesModel::hasRule(int row) const
{
    return row >= 0 && row < m_rules.size() && HasRule(m_rules[row]);
}

void RulesModel::setRules(const QList<QString>& rules)
{
    if (rules.size() != m_rules.size() || rules == m_rules)
        return;
    m_rules = rules;
    Q_EMIT dataChanged(index(0, 0), index(int(m_rules.size()) - 1, 1));
}

QString RulesModel::text(int row, int column) const
{
    if (row < 0 || row >= m_names.size())
        return QString();
    return column == 0 ? m_names[row] : column == 1 ? m_rules[row] : QString();
}

void RulesModel::setText(int row, int column, const QString& text)
{
    if (row < 0 || row >= m_names.size() || column < 0 || column > 1)
        return;
    // A rule cell holds its line breaks as CR LF, whatever form they came
    // in (a stored CR LF that the display decoding turned into CR CR LF, a
    // lone CR), so that each break is stored back as exactly one.
    if (column == 0) {
        m_names[row] = text;
        m_rowOf.clear();
        for (int r = int(m_names.size()) - 1; r >= 0; --r)
            m_rowOf.insert(m_names[r], r);
    } else {
        m_rules[row] = CrLfText(text);
    }
    // The field's mark in the first column follows its rule.
    Q_EMIT dataChanged(index(row, 0), index(row, column));
}

void RulesModel::setRuleTexts(const QList<std::pair<int, QString>>& texts)
{
    int first = int(m_rules.size());
    int last = -1;
    for (const auto& [row, text] : texts) {
        if (row < 0 || row >= m_rules.size())
            continue;
        m_rules[row] = CrLfText(text);
        first = std::min(first, row);
        last = std::max(last, row);
    }
    if (last >= 0)
        Q_EMIT dataChanged(index(first, 0), index(last, 1));
}

void RulesModel::clearRules()
{
    if (m_rules.isEmpty())
        return;
    for (QString& r : m_rules)
        r.clear();
    Q_EMIT dataChanged(index(0, 0), index(int(m_rules.size()) - 1, 1));
}

} // namespace fb
