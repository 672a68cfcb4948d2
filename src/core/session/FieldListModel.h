#pragma once

#include "core/dictionary/FieldRules.h"

#include <QAbstractTableModel>
#include <QList>
#include <functional>

namespace fb {

// The rows of a field list: the nine cells of each field, behind one empty
// leading column in the target list. The source list carries a check box in
// its first column. Sorting compares cell texts, so numbers sort as text.
class FieldListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum class Kind { Source, Target };
    explicit FieldListModel(Kind kind, QObject* parent = nullptr);

    Kind kind() const { return m_kind; }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

    // Replaces every row (ticks cleared).
    void setRows(const QList<FieldRow>& rows);
    const QList<FieldRow>& rows() const { return m_rows; }
    // A click on a column header: sorts by that column, ascending on the
    // first click and reversing the order on every further one.
    void sortByHeaderClick(int column);

    // The text of a cell by the list's own column numbers.
    QString cellText(int row, int column) const;
    bool isChecked(int row) const;
    void setChecked(int row, bool checked);
    void clearChecks();

    // Where the first column's field mark (kFieldMarkRole) comes from, and
    // telling the views that the marks changed.
    void setMarkSource(std::function<int(const FieldRow&)> mark) { m_mark = std::move(mark); }
    void marksChanged();

    // Column widths in twips, by column.
    static QList<int> ColumnWidths(Kind kind);

private:
    int offset() const { return m_kind == Kind::Target ? 1 : 0; }
    QString cell(const FieldRow& row, int field) const;

    Kind m_kind;
    QList<FieldRow> m_rows;
    QList<bool> m_checked;
    bool m_lastAscending = false;
    std::function<int(const FieldRow&)> m_mark;
};

} // namespace fb
