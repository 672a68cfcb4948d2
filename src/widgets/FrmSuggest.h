#pragma once

#include "core/document/Interaction.h"

#include <QDialog>

class QDoubleSpinBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace fb {

// The review of suggestions for one dump: a row per target field with its
// rule now, the candidate taken for it (its score and why) and a tick to
// accept it; the other candidates below each row, a double-click or Enter
// taking one instead. Rows whose best candidate reaches the threshold and that have
// no rule come ticked; changing the threshold ticks them anew.
class FrmSuggest : public QDialog {
    Q_OBJECT
public:
    FrmSuggest(const QString& title, const QList<SuggestionRow>& rows, double threshold, QWidget* parent);

    // The ticked rows with the candidate each has taken.
    QList<AcceptedSuggestion> accepted() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void tickFromThreshold();
    void take(QTreeWidgetItem* candidate);
    void showCount();

    QList<SuggestionRow> m_rows;
    QDoubleSpinBox* m_threshold;
    QTreeWidget* m_list;
    QLabel* m_count;
};

} // namespace fb
