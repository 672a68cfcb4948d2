#pragma once

#include <QSortFilterProxyModel>
#include <QStringList>
#include <functional>

namespace fb {

// What a field list or the rules grid shows while the user narrows it: the
// rows whose searched columns hold every typed word, without regard to case,
// and that a further test (rows without a rule) lets through. The rows stay
// in the order of the list underneath; its rows, ticks and sorting are its
// own, so everything that works on the list works on every row, shown or not.
class FieldFilterModel : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit FieldFilterModel(QList<int> searchedColumns, QObject* parent = nullptr);

    // The words typed into the find box.
    void setFilterWords(const QString& text);
    QString filterWords() const { return m_text; }
    // A further test of a row of the list underneath; none lets every row through.
    void setRowTest(std::function<bool(int sourceRow)> test);
    bool hasRowTest() const { return bool(m_test); }
    // The test's answers have changed: the rows are worked out anew.
    void retest();
    bool isFiltering() const { return !m_words.isEmpty() || m_test; }
    // Rows of the list underneath ticked (check state) but not shown.
    int hiddenCheckedCount() const;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    bool hasWords(int sourceRow) const;

    QList<int> m_columns;
    QString m_text;
    QStringList m_words;
    std::function<bool(int)> m_test;
    // The searched text of each row, folded, built when first needed after
    // the rows changed.
    mutable QStringList m_haystacks;
    mutable bool m_haystacksValid = false;
};

} // namespace fb
