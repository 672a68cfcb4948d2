#include "FrmSuggest.h"

#include "Widgets.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace fb {

namespace {

enum Column { Field, Rule, Source, Score, Why };
constexpr int kRowRole = Qt::UserRole + 1;    // a field's grid row, on its item
constexpr int kChoiceRole = Qt::UserRole + 2; // a candidate's place in its field's list

QString scoreText(double score)
{
    return QString::number(score, 'f', 2);
}

void showCandidate(QTreeWidgetItem* item, const SuggestionCandidate& c)
{
    item->setText(Source, c.source);
    item->setText(Score, scoreText(c.score));
    item->setText(Why, c.reasons.join(QStringLiteral("; ")));
    item->setToolTip(Why, c.reasons.join(u'\n'));
}

} // namespace

FrmSuggest::FrmSuggest(const QString& title, const QList<SuggestionRow>& rows, double threshold,
                       QWidget* parent)
    : QDialog(parent), m_rows(rows)
{
    setObjectName(QStringLiteral("FrmSuggest"));
    setWindowTitle(title);
    setModal(true);
    resize(1000, 600);

    auto* intro = new QLabel(
        QStringLiteral("Tick the suggestions to take; a double-click or Enter on another "
                       "candidate takes it instead. Fields that have a rule are never ticked for you."),
        this);
    intro->setWordWrap(true);
    m_threshold = MakeChild<QDoubleSpinBox>(this, QStringLiteral("spnThreshold"));
    m_threshold->setRange(0.05, 1.0);
    m_threshold->setSingleStep(0.05);
    m_threshold->setDecimals(2);
    m_threshold->setValue(threshold);
    auto* thresholdLabel = new QLabel(QStringLiteral("&Tick fields without a rule from score"), this);
    thresholdLabel->setBuddy(m_threshold);
    m_count = MakeChild<QLabel>(this, QStringLiteral("lblTicked"));

    m_list = MakeChild<QTreeWidget>(this, QStringLiteral("lstSuggestions"));
    m_list->setHeaderLabels({QStringLiteral("Target field"), QStringLiteral("Rule now"),
                             QStringLiteral("Suggestion"), QStringLiteral("Score"), QStringLiteral("Why")});
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    for (const SuggestionRow& row : m_rows) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(Field, row.field);
        item->setText(Rule, row.currentRule.trimmed());
        item->setData(Field, kRowRole, row.row);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Field, Qt::Unchecked);
        if (row.candidates.isEmpty()) {
            item->setText(Source, QStringLiteral("(no candidate)"));
            item->setFlags(item->flags() & ~Qt::ItemIsUserCheckable);
            item->setData(Field, Qt::CheckStateRole, QVariant());
            continue;
        }
        item->setData(Source, kChoiceRole, 0);
        showCandidate(item, row.candidates.first());
        for (int k = 0; k < row.candidates.size(); ++k) {
            auto* child = new QTreeWidgetItem(item);
            child->setData(Source, kChoiceRole, k);
            showCandidate(child, row.candidates[k]);
        }
    }
    m_list->header()->resizeSection(Field, 200);
    m_list->header()->resizeSection(Rule, 180);
    m_list->header()->resizeSection(Source, 220);
    m_list->header()->resizeSection(Score, 50);
    connect(m_list, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { take(item); });
    m_list->installEventFilter(this);
    connect(m_list, &QTreeWidget::itemChanged, this, &FrmSuggest::showCount);
    connect(m_threshold, &QDoubleSpinBox::valueChanged, this, &FrmSuggest::tickFromThreshold);

    auto* buttons = MakeChild<QDialogButtonBox>(this, QStringLiteral("buttons"));
    buttons->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Write ticked rules"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* top = new QHBoxLayout;
    top->addWidget(thresholdLabel);
    top->addWidget(m_threshold);
    top->addStretch();
    top->addWidget(m_count);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addLayout(top);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    tickFromThreshold();
}

// Enter on a candidate takes it, as a double-click does. The list would
// pass the key on after taking it, and the dialog's default button would
// then write every ticked rule: the key ends here.
bool FrmSuggest::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        QTreeWidgetItem* current = m_list->currentItem();
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && current && current->parent()) {
            take(current);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FrmSuggest::tickFromThreshold()
{
    const QSignalBlocker quiet(m_list);
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_list->topLevelItem(i);
        const SuggestionRow& row = m_rows[i];
        if (row.candidates.isEmpty())
            continue;
        const bool ruled = !row.currentRule.trimmed().isEmpty();
        const double score = row.candidates[item->data(Source, kChoiceRole).toInt()].score;
        item->setCheckState(Field, !ruled && score >= m_threshold->value() ? Qt::Checked : Qt::Unchecked);
    }
    showCount();
}

void FrmSuggest::take(QTreeWidgetItem* candidate)
{
    QTreeWidgetItem* field = candidate->parent();
    if (!field)
        return;
    const int k = candidate->data(Source, kChoiceRole).toInt();
    field->setData(Source, kChoiceRole, k);
    showCandidate(field, m_rows[m_list->indexOfTopLevelItem(field)].candidates[k]);
    field->setCheckState(Field, Qt::Checked);
    // The selection stays on the candidate: a second Enter takes it again
    // rather than reaching the dialog's default button.
}

void FrmSuggest::showCount()
{
    const int n = int(accepted().size());
    m_count->setText(n == 1 ? QStringLiteral("1 rule to write") : QStringLiteral("%1 rules to write").arg(n));
}

QList<AcceptedSuggestion> FrmSuggest::accepted() const
{
    QList<AcceptedSuggestion> out;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_list->topLevelItem(i);
        if (item->checkState(Field) == Qt::Checked)
            out.append({item->data(Field, kRowRole).toInt(),
                        m_rows[i].candidates[item->data(Source, kChoiceRole).toInt()].source});
    }
    return out;
}

} // namespace fb
