#include "ProblemsModel.h"

namespace fb {

int ProblemsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_problems.size());
}

QString ProblemsModel::Line(const Problem& p)
{
    QString line = SeverityText(p.severity);
    if (p.dump != 0)
        line += QStringLiteral("  dump ") + QString::number(p.dump);
    if (!p.field.isEmpty())
        line += QStringLiteral("  ") + p.field;
    return line + QStringLiteral(": ") + p.message;
}

QVariant ProblemsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_problems.size())
        return QVariant();
    const Problem& p = m_problems[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return Line(p);
    case kSeverityRole:
        return int(p.severity);
    default:
        return QVariant();
    }
}

void ProblemsModel::setProblems(const QList<Problem>& problems)
{
    if (problems == m_problems)
        return;
    beginResetModel();
    m_problems = problems;
    endResetModel();
}

int ProblemsModel::errorCount() const
{
    return int(std::count_if(m_problems.cbegin(), m_problems.cend(),
                             [](const Problem& p) { return p.severity == Severity::Error; }));
}

} // namespace fb
