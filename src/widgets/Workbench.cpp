#include "Workbench.h"

#include "StatusMarks.h"
#include "Widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QStandardItemModel>
#include <QTreeView>

namespace fb {

namespace {

// The dump selector's entries, whose tool tips tell each dump's coverage:
// worked out when one is asked for, not for every dump in advance.
class DumpEntries : public QStandardItemModel {
public:
    DumpEntries(MappingSession& session, QObject* parent) : QStandardItemModel(parent), m_session(session) {}
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == Qt::ToolTipRole && index.isValid())
            return m_session.dumpCoverageToolTip(index.row());
        return QStandardItemModel::data(index, role);
    }

private:
    MappingSession& m_session;
};

QLineEdit* makeFindBox(QWidget* page, const QString& name, const QString& placeholder)
{
    auto* box = MakeChild<QLineEdit>(page, name);
    box->setPlaceholderText(placeholder);
    box->setClearButtonEnabled(true);
    return box;
}

QString hiddenText(int count)
{
    if (count == 0)
        return QString();
    return count == 1 ? QStringLiteral("1 ticked field hidden by the find")
                      : QStringLiteral("%1 ticked fields hidden by the find").arg(count);
}

} // namespace

Workbench::Workbench(MappingSession& session, QWidget* page, const Lists& lists)
    : QObject(page), m_session(session), m_lists(lists)
{
    m_findSource = makeFindBox(page, QStringLiteral("txtFindSource"),
                               QStringLiteral("Find source fields by name or description"));
    m_findTarget = makeFindBox(page, QStringLiteral("txtFindTarget"),
                               QStringLiteral("Find target fields by name or description"));
    m_sourceHidden = MakeChild<QLabel>(page, QStringLiteral("lblSourceHidden"));
    m_unmappedOnly = MakeChild<QCheckBox>(page, QStringLiteral("chkUnmappedOnly"));
    m_unmappedOnly->setText(QStringLiteral("Unmapped only"));
    m_unmappedOnly->setToolTip(QStringLiteral("Show only the target fields and grid rows without a rule"));
    m_coverage = MakeChild<QLabel>(page, QStringLiteral("lblCoverage"));
    m_problems = MakeChild<QListView>(page, QStringLiteral("lstProblems"));
    m_problems->setModel(session.problems());
    m_problems->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_problems->setUniformItemSizes(true);
    m_problems->setToolTip(QString());

    auto* marks = new StatusMarks(this);
    m_problems->setItemDelegate(marks);
    lists.target->setItemDelegateForColumn(0, marks);
    lists.grid->setItemDelegateForColumn(0, marks);
    lists.dumps->setModel(new DumpEntries(session, lists.dumps));

    connect(m_findSource, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_session.shownSourceFields()->setFilterWords(text);
        showHiddenTicks();
    });
    connect(m_findTarget, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_session.shownTargetFields()->setFilterWords(text); });
    connect(session.sourceFields(), &QAbstractItemModel::dataChanged, this, &Workbench::showHiddenTicks);
    connect(session.sourceFields(), &QAbstractItemModel::modelReset, this, &Workbench::showHiddenTicks);
    connect(m_unmappedOnly, &QCheckBox::toggled, &session, &MappingSession::setUnmappedOnly);
    connect(&session, &MappingSession::coverageChanged, this,
            [this] { m_coverage->setText(m_session.coverageText()); });
    connect(m_problems, &QListView::activated, this,
            [this](const QModelIndex& i) { m_session.ShowProblem(i.row()); });
    for (QLineEdit* box : {m_findSource, m_findTarget})
        box->installEventFilter(this);
    showHiddenTicks();
}

void Workbench::showHiddenTicks()
{
    const int hidden = m_session.shownSourceFields()->hiddenCheckedCount();
    m_sourceHidden->setText(hiddenText(hidden));
    m_sourceHidden->setVisible(hidden > 0);
}

QLineEdit* Workbench::findBoxFor(const QWidget* focus) const
{
    for (const QWidget* w = focus; w; w = w->parentWidget())
        if (w == m_lists.source || w == m_findSource)
            return m_findSource;
    return m_findTarget;
}

bool Workbench::eventFilter(QObject* watched, QEvent* event)
{
    // Escape empties a find box (and so shows the whole list again).
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        if (auto* box = qobject_cast<QLineEdit*>(watched); box && !box->text().isEmpty()) {
            box->clear();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace fb
