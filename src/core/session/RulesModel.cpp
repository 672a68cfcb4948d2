#include "RulesModel.h"

#include "core/document/LineBreaks.h"

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

void RulesModel::setRows(const QStringList& fieldNames)
{
    beginResetModel();
    m_names = fieldNames;
    m_rules = QList<QString>(fieldNames.size(), QStringLiteral(" "));
    endResetModel();
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
    (column == 0 ? m_names : m_rules)[row] = column == 1 ? CrLfText(text) : text;
    Q_EMIT dataChanged(index(row, column), index(row, column));
}

void RulesModel::clearRules()
{
    if (m_rules.isEmpty())
        return;
    for (QString& r : m_rules)
        r.clear();
    Q_EMIT dataChanged(index(0, 1), index(int(m_rules.size()) - 1, 1));
}

} // namespace fb
