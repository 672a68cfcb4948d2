#include "FieldListModel.h"

#include "FieldMarks.h"

#include <algorithm>
#include <numeric>

namespace fb {

namespace {
const char16_t* const kHeaders[] = {u"",          u"No",   u"Field Name", u"Type", u"Length", u"Description",
                                    u"Alignment", u"Case", u"Domain"};
constexpr int kFields = 9;
} // namespace

FieldListModel::FieldListModel(Kind kind, QObject* parent) : QAbstractTableModel(parent), m_kind(kind) {}

int FieldListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int FieldListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kFields + offset();
}

QString FieldListModel::cell(const FieldRow& row, int field) const
{
    switch (field) {
    case 0:
        return row.mandatory;
    case 1:
        return row.number;
    case 2:
        return row.name;
    case 3:
        return row.type;
    case 4:
        return row.length;
    case 5:
        return row.description;
    case 6:
        return row.alignment;
    case 7:
        return row.letterCase;
    case 8:
        return row.domain;
    default:
        return QString();
    }
}

QString FieldListModel::cellText(int row, int column) const
{
    if (row < 0 || row >= m_rows.size())
        return QString();
    const int field = column - offset();
    return field < 0 ? QString() : cell(m_rows[row], field);
}

QVariant FieldListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return QVariant();
    const int field = index.column() - offset();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return field < 0 ? QString() : cell(m_rows[index.row()], field);
    case Qt::CheckStateRole:
        if (m_kind == Kind::Source && index.column() == 0)
            return m_checked[index.row()] ? Qt::Checked : Qt::Unchecked;
        return QVariant();
    case Qt::TextAlignmentRole:
        if (field == 4 || (field == 1 && m_kind == Kind::Target))
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    case kFieldMarkRole:
        return index.column() == 0 && m_mark ? QVariant(m_mark(m_rows[index.row()])) : QVariant();
    default:
        return QVariant();
    }
}

void FieldListModel::marksChanged()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_rows.size()) - 1, 0), {kFieldMarkRole});
}

bool FieldListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || m_kind != Kind::Source || !index.isValid() || index.column() != 0)
        return false;
    m_checked[index.row()] = value.toInt() == Qt::Checked;
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    return true;
}

Qt::ItemFlags FieldListModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (m_kind == Kind::Source && index.column() == 0)
        f |= Qt::ItemIsUserCheckable;
    return f;
}

QVariant FieldListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return QVariant();
    const int field = section - offset();
    if (role == Qt::DisplayRole)
        return field < 0 || field >= kFields ? QString() : QString::fromUtf16(kHeaders[field]);
    if (role == Qt::TextAlignmentRole && (field == 4 || (field == 1 && m_kind == Kind::Target)))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return QVariant();
}

void FieldListModel::sort(int column, Qt::SortOrder order)
{
    const int field = column - offset();
    if (field < 0 || field >= kFields)
        return;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QList<int> perm(m_rows.size());
    std::iota(perm.begin(), perm.end(), 0);
    std::stable_sort(perm.begin(), perm.end(), [&](int a, int b) {
        const int c = QString::compare(cell(m_rows[a], field), cell(m_rows[b], field), Qt::CaseInsensitive);
        return order == Qt::AscendingOrder ? c < 0 : c > 0;
    });
    QList<FieldRow> rows;
    QList<bool> checked;
    rows.reserve(perm.size());
    checked.reserve(perm.size());
    QList<int> newPos(perm.size());
    for (qsizetype i = 0; i < perm.size(); ++i) {
        rows.append(m_rows[perm[i]]);
        checked.append(m_checked[perm[i]]);
        newPos[perm[i]] = int(i);
    }
    m_rows = std::move(rows);
    m_checked = std::move(checked);
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& idx : before)
        after.append(index(newPos[idx.row()], idx.column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void FieldListModel::setRows(const QList<FieldRow>& rows)
{
    if (rows.isEmpty() && m_rows.isEmpty())
        return;
    beginResetModel();
    m_rows = rows;
    m_checked = QList<bool>(rows.size(), false);
    endResetModel();
}

void FieldListModel::sortByHeaderClick(int column)
{
    m_lastAscending = !m_lastAscending;
    sort(column, m_lastAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

bool FieldListModel::isChecked(int row) const
{
    return row >= 0 && row < m_checked.size() && m_checked[row];
}

void FieldListModel::setChecked(int row, bool checked)
{
    if (m_kind == Kind::Source)
        setData(index(row, 0), checked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
}

void FieldListModel::clearChecks()
{
    for (qsizetype i = 0; i < m_checked.size(); ++i) {
        if (m_checked[i]) {
            m_checked[i] = false;
            Q_EMIT dataChanged(index(int(i), 0), index(int(i), 0), {Qt::CheckStateRole});
        }
    }
}

QList<int> FieldListModel::ColumnWidths(Kind kind)
{
    if (kind == Kind::Source)
        return {706, 882, 2381, 1093, 882, 2187, 882, 882, 2540};
    return {441, 706, 882, 2293, 1093, 882, 2187, 882, 882, 2540};
}

} // namespace fb
