#include "FieldFilterModel.h"

namespace fb {

FieldFilterModel::FieldFilterModel(QList<int> searchedColumns, QObject* parent)
    : QSortFilterProxyModel(parent), m_columns(std::move(searchedColumns))
{
    // Rows move (a sort) or are replaced (a new dump): the searched texts are
    // read again. The filter itself follows the list's own signals.
    connect(this, &QAbstractProxyModel::sourceModelChanged, this, [this] {
        const auto drop = [this] { m_haystacksValid = false; };
        connect(sourceModel(), &QAbstractItemModel::modelAboutToBeReset, this, drop);
        connect(sourceModel(), &QAbstractItemModel::layoutAboutToBeChanged, this, drop);
        connect(sourceModel(), &QAbstractItemModel::rowsAboutToBeInserted, this, drop);
        connect(sourceModel(), &QAbstractItemModel::rowsAboutToBeRemoved, this, drop);
        connect(sourceModel(), &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
                    if (!roles.isEmpty() && !roles.contains(Qt::DisplayRole))
                        return; // a tick or a mark: no searched text changed
                    for (const int c : m_columns)
                        if (c >= from.column() && c <= to.column())
                            m_haystacksValid = false;
                });
        drop();
    });
}

void FieldFilterModel::setFilterWords(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    const QStringList words = text.toCaseFolded().split(QChar(u' '), Qt::SkipEmptyParts);
    QStringList cleaned;
    for (const QString& w : words)
        if (!w.trimmed().isEmpty())
            cleaned.append(w.trimmed());
    m_words = cleaned;
    invalidateRowsFilter();
}

void FieldFilterModel::setRowTest(std::function<bool(int sourceRow)> test)
{
    m_test = std::move(test);
    invalidateRowsFilter();
}

void FieldFilterModel::retest()
{
    if (m_test)
        invalidateRowsFilter();
}

bool FieldFilterModel::hasWords(int sourceRow) const
{
    if (m_words.isEmpty())
        return true;
    const QAbstractItemModel* model = sourceModel();
    if (!m_haystacksValid) {
        const int rows = model->rowCount();
        m_haystacks.clear();
        m_haystacks.reserve(rows);
        for (int r = 0; r < rows; ++r) {
            QString text;
            for (const int c : m_columns)
                text += model->index(r, c).data().toString().toCaseFolded() + u'\n';
            m_haystacks.append(text);
        }
        m_haystacksValid = true;
    }
    const QString& hay = m_haystacks.at(sourceRow);
    for (const QString& w : m_words)
        if (!hay.contains(w))
            return false;
    return true;
}

bool FieldFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (sourceParent.isValid())
        return false;
    return hasWords(sourceRow) && (!m_test || m_test(sourceRow));
}

int FieldFilterModel::hiddenCheckedCount() const
{
    const QAbstractItemModel* model = sourceModel();
    if (!model || !isFiltering())
        return 0;
    int hidden = 0;
    for (int r = 0; r < model->rowCount(); ++r)
        if (model->index(r, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked && !filterAcceptsRow(r, {}))
            ++hidden;
    return hidden;
}

} // namespace fb
