#pragma once

#include <QStyledItemDelegate>

namespace fb {

// Draws what a row's status roles say beside its text: a field's mark
// (mapped, or mandatory without a rule) and a problem's severity, each as a
// tint of the cell, an icon and a tool tip. The cell's text stays as it is.
class StatusMarks : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace fb
