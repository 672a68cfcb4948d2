#include "DefineDumpsView.h"

#include "BoxText.h"
#include "Twips.h"
#include "Widgets.h"
#include "Workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTreeView>

namespace fb {

namespace {
constexpr int kMargin = 120;
constexpr int kGap = 240;
constexpr int kRowHeight = 375;
constexpr int kSmallGap = 60;

QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption, int widthTwips)
{
    auto* b = MakeChild<QPushButton>(parent, name);
    b->setText(caption);
    b->setAutoDefault(false);
    b->resize(TwipsToPixelsX(widthTwips, parent), TwipsToPixelsY(kRowHeight, parent));
    return b;
}

QLabel* makeLabel(QWidget* parent, const QString& name, const QString& caption, int widthTwips)
{
    auto* l = MakeChild<QLabel>(parent, name);
    l->setText(caption);
    l->resize(TwipsToPixelsX(widthTwips, parent), TwipsToPixelsY(kRowHeight, parent));
    return l;
}

QTreeView* makeFieldList(QWidget* parent, const QString& name, FieldFilterModel* shown, FieldListModel* model)
{
    auto* view = MakeChild<QTreeView>(parent, name);
    view->setModel(shown);
    view->setRootIsDecorated(false);
    view->setItemsExpandable(false);
    view->setUniformRowHeights(true);
    view->setAllColumnsShowFocus(true);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->header()->setSectionsClickable(true);
    view->header()->setSortIndicatorShown(false);
    view->header()->setStretchLastSection(false);
    const QList<int> widths = FieldListModel::ColumnWidths(model->kind());
    for (int c = 0; c < widths.size(); ++c)
        view->header()->resizeSection(c, TwipsToPixelsX(widths[c], parent));
    return view;
}
} // namespace

DefineDumpsView::DefineDumpsView(MappingSession& session, QWidget* parent)
    : QGroupBox(parent), m_session(session)
{
    setObjectName(QStringLiteral("FrmRules"));

    m_lblDump = makeLabel(this, QStringLiteral("lblDump"), QStringLiteral("D&ump No."), 900);
    m_cmbDump = MakeChild<QComboBox>(this, QStringLiteral("CmbDump"));
    m_cmbDump->resize(TwipsToPixelsX(2895, this), TwipsToPixelsY(kRowHeight, this));
    m_lblDump->setBuddy(m_cmbDump);
    m_command1 = makeButton(this, QStringLiteral("Command1"), QStringLiteral("Sho&w"), 855);
    m_lblTargetTable =
        makeLabel(this, QStringLiteral("lblTargetTable"), QStringLiteral("For Target Table:"), 1455);
    m_cmbTargetTable = MakeChild<QComboBox>(this, QStringLiteral("CmbTargetTable"));
    m_cmbTargetTable->resize(TwipsToPixelsX(1935, this), TwipsToPixelsY(kRowHeight, this));
    m_lblTargetTableName = makeLabel(this, QStringLiteral("LBLTargetTableName"), QString(), 1455);
    m_cmdChange = makeButton(this, QStringLiteral("CmdChange"), QStringLiteral("Cha&nge..."), 1095);

    m_lblSourceFields =
        makeLabel(this, QStringLiteral("lblSourceFields"), QStringLiteral("Source Fields"), 2000);
    m_lstSourceFields = makeFieldList(this, QStringLiteral("lstSourceFields"), session.shownSourceFields(),
                                      session.sourceFields());
    m_lblTargetFields =
        makeLabel(this, QStringLiteral("lblTargetFields"), QStringLiteral("Target Fields"), 2000);
    m_lstTargetFields = makeFieldList(this, QStringLiteral("lstTargetFields"), session.shownTargetFields(),
                                      session.targetFields());

    m_cmdMap = makeButton(this, QStringLiteral("CmdMap"), QStringLiteral("Ma&p"), 975);
    m_cmdGuess = makeButton(this, QStringLiteral("CmdGuess"), QStringLiteral("&Guess"), 975);
    m_cmdCopyDump =
        makeButton(this, QStringLiteral("CmdCopyDump"), QStringLiteral("Cop&y from dump.."), 1695);
    m_cmdEditRule = makeButton(this, QStringLiteral("CmdEditRule"), QStringLiteral("Edit &Rule"), 1095);
    m_cmdDumpText = makeButton(this, QStringLiteral("CmdDumpText"), QStringLiteral("Te&xt"), 975);
    m_cmdFuncBuild = makeButton(this, QStringLiteral("CmdFuncBuild"), QStringLiteral("&Build"), 975);
    m_cmdSuggest = makeButton(this, QStringLiteral("CmdSuggest"), QStringLiteral("Suggest..."), 1095);
    m_cmdSuggest->setToolTip(
        QStringLiteral("Suggest source fields for the target fields, with their reasons"));

    m_details = MakeChild<QGroupBox>(this, QStringLiteral("Details"));
    m_details->setTitle(QStringLiteral("F&ields of Dump: "));
    m_rulesGrid = MakeChild<QTableView>(m_details, QStringLiteral("RulesGrid"));
    m_rulesGrid->setModel(session.shownRules());
    m_rulesGrid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_rulesGrid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_rulesGrid->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_rulesGrid->setWordWrap(false);
    m_rulesGrid->setTabKeyNavigation(false);
    m_rulesGrid->verticalHeader()->setDefaultSectionSize(TwipsToPixelsY(300, this));
    m_rulesGrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_rulesGrid->horizontalHeader()->resizeSection(0, TwipsToPixelsX(3400, this));
    m_rulesGrid->horizontalHeader()->setStretchLastSection(true);
    m_txtgrdline = MakeChild<QPlainTextEdit>(m_details, QStringLiteral("txtgrdline"));
    m_txtgrdline->setTabChangesFocus(true);
    m_txtgrdline->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_txtgrdline->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_txtgrdline->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_txtgrdline->hide();
    m_details->setFocusProxy(nullptr);
    m_workbench =
        new Workbench(session, this, {m_lstSourceFields, m_lstTargetFields, m_rulesGrid, m_cmbDump});
    connectSession();
}

void DefineDumpsView::LayoutChildren()
{
    const auto px = [this](int t) { return TwipsToPixelsX(t, this); };
    const auto py = [this](int t) { return TwipsToPixelsY(t, this); };
    const int w = width();
    const int h = height();
    const int margin = px(kMargin);
    const int gap = px(kGap);
    const int small = px(kSmallGap);
    const int rowH = py(kRowHeight);

    // Top row: dump selector, target table.
    int x = margin;
    const int top = py(300);
    for (QWidget* c : std::initializer_list<QWidget*>{m_lblDump, m_cmbDump, m_command1, m_lblTargetTable,
                                                      m_cmbTargetTable, m_lblTargetTableName, m_cmdChange}) {
        Place(c, x, top, c->width(), rowH);
        x += c->width() + small;
    }

    // The two field lists share the frame width less 480 in equal halves.
    const int half = (w - 4 * margin) / 2;
    const int labelsTop = top + rowH + py(kGap) / 2;
    const int listsTop = labelsTop + rowH;
    const int below = h - listsTop - py(kMargin);
    const int listH = below * 45 / 100 - rowH - py(kGap);
    // Each list's caption, and its find box beside it, above the list.
    const int captionW = m_lblSourceFields->sizeHint().width() + small;
    for (const auto& [label, find, list, left] :
         {std::tuple{m_lblSourceFields, m_workbench->findSource(), m_lstSourceFields, margin},
          std::tuple{m_lblTargetFields, m_workbench->findTarget(), m_lstTargetFields, margin + half + gap}}) {
        Place(label, left, labelsTop, captionW, rowH);
        Place(find, left + captionW, labelsTop, std::min(half - captionW, px(4200)), rowH - py(30));
        Place(list, left, listsTop, half, listH);
    }
    QLabel* hidden = m_workbench->sourceHidden();
    const int findRight = m_workbench->findSource()->geometry().right() + small;
    Place(hidden, findRight, labelsTop, std::max(margin + half - findRight, 0), rowH);

    // Commands between the lists and the grid.
    const int commandsTop = listsTop + std::max(listH, 0) + py(kSmallGap) * 2;
    x = margin;
    for (QPushButton* b :
         {m_cmdMap, m_cmdGuess, m_cmdCopyDump, m_cmdEditRule, m_cmdDumpText, m_cmdFuncBuild, m_cmdSuggest}) {
        Place(b, x, commandsTop, b->width(), rowH);
        x += b->width() + small;
    }
    QWidget* unmapped = m_workbench->unmappedOnly();
    Place(unmapped, x + gap, commandsTop, unmapped->sizeHint().width(), rowH);
    const int coverageLeft = unmapped->geometry().right() + gap;
    Place(m_workbench->coverage(), coverageLeft, commandsTop, std::max(w - margin - coverageLeft, 0), rowH);

    // The grid's frame below, from left 120 to the frame's right margin, and
    // the problems under it.
    const int detailsTop = commandsTop + rowH + py(kGap) / 2;
    const int problemsH = std::max((h - detailsTop) / 5, rowH * 2);
    const int detailsH = h - detailsTop - py(kMargin) - problemsH - small;
    Place(m_details, margin, detailsTop, w - 2 * margin, detailsH);
    Place(m_workbench->problems(), margin, detailsTop + std::max(detailsH, 0) + small, w - 2 * margin,
          problemsH);
    const int inner = px(kMargin);
    const int titleH = m_details->fontMetrics().height() + py(60);
    Place(m_rulesGrid, inner, titleH, m_details->width() - 2 * inner, m_details->height() - titleH - inner);
}

// ---- the session's state on screen, and what the user does ------------------

QPushButton* DefineDumpsView::buttonOf(MappingSession::Command command) const
{
    using C = MappingSession::Command;
    switch (command) {
    case C::CmdFuncBuild:
        return m_cmdFuncBuild;
    case C::CmdEditRule:
        return m_cmdEditRule;
    case C::CmdMap:
        return m_cmdMap;
    case C::CmdGuess:
        return m_cmdGuess;
    case C::CmdCopyDump:
        return m_cmdCopyDump;
    case C::CmdChange:
        return m_cmdChange;
    case C::CmdSuggest:
        return m_cmdSuggest;
    default:
        return nullptr;
    }
}

void DefineDumpsView::showDumps()
{
    const QStringList entries = m_session.dumpEntries();
    m_showing = true;
    QStringList shown;
    for (int i = 0; i < m_cmbDump->count(); ++i)
        shown.append(m_cmbDump->itemText(i));
    if (shown != entries) {
        m_cmbDump->clear();
        for (int i = 0; i < entries.size(); ++i)
            m_cmbDump->addItem(entries[i], int(m_session.dumpNumber(i)));
    }
    m_cmbDump->setCurrentIndex(m_session.dumpIndex());
    m_showing = false;
}

void DefineDumpsView::showTargetTables()
{
    m_showing = true;
    QStringList shown;
    for (int i = 0; i < m_cmbTargetTable->count(); ++i)
        shown.append(m_cmbTargetTable->itemText(i));
    if (shown != m_session.targetTables()) {
        m_cmbTargetTable->clear();
        m_cmbTargetTable->addItems(m_session.targetTables());
    }
    m_cmbTargetTable->setCurrentIndex(m_session.targetTableIndex());
    m_lblTargetTableName->setText(m_session.targetTableName());
    m_showing = false;
}

QModelIndex DefineDumpsView::shownGridIndex(int row, int column) const
{
    return m_session.shownRules()->mapFromSource(m_session.rules()->index(row, column));
}

int DefineDumpsView::targetRowOf(const QModelIndex& shown) const
{
    return m_session.shownTargetFields()->mapToSource(shown).row();
}

void DefineDumpsView::showGridCurrent(bool scrollToTopIfHidden)
{
    const QModelIndex index = shownGridIndex(m_session.gridRow(), m_session.gridColumn());
    if (index == m_rulesGrid->currentIndex())
        return;
    // Whether the row was in sight before the grid scrolls to it on its own.
    const bool hidden =
        index.isValid() && !m_rulesGrid->viewport()->rect().contains(m_rulesGrid->visualRect(index));
    m_showing = true;
    if (index.isValid())
        m_rulesGrid->setCurrentIndex(index);
    else
        m_rulesGrid->selectionModel()->clearCurrentIndex();
    m_showing = false;
    if (scrollToTopIfHidden && hidden)
        m_rulesGrid->scrollTo(index, QAbstractItemView::PositionAtTop);
}

void DefineDumpsView::showOverlay()
{
    if (!m_session.overlayOpen()) {
        m_txtgrdline->hide();
        return;
    }
    // Over the current cell, with its font, 70 twips narrower than it.
    const QModelIndex current = shownGridIndex(m_session.gridRow(), m_session.gridColumn());
    const QRect cellRect = m_rulesGrid->visualRect(current);
    const QPoint topLeft = m_rulesGrid->viewport()->mapTo(m_details, cellRect.topLeft());
    m_txtgrdline->setFont(m_rulesGrid->font());
    m_txtgrdline->setGeometry(topLeft.x(), topLeft.y(), cellRect.width() - TwipsToPixelsX(70, m_rulesGrid),
                              cellRect.height());
    m_txtgrdline->show();
    m_txtgrdline->raise();
    m_txtgrdline->moveCursor(QTextCursor::End);
}

// Every connection of the tab in one list, so that what reaches the session
// and what comes back can be read together.
void DefineDumpsView::connectSession()
{
    using Box = MappingSession::Box;
    MappingSession* s = &m_session;
    connect(s, &MappingSession::dumpsChanged, this, &DefineDumpsView::showDumps);
    connect(s, &MappingSession::detailsChanged, this, [this] {
        m_details->setTitle(m_session.detailsCaption());
        m_cmbDump->setToolTip(m_session.dumpToolTip());
    });
    connect(s, &MappingSession::targetTablesChanged, this, &DefineDumpsView::showTargetTables);
    connect(s, &MappingSession::multiTargetChanged, this, [this] {
        for (QWidget* w : {static_cast<QWidget*>(m_lblTargetTable), static_cast<QWidget*>(m_cmbTargetTable),
                           static_cast<QWidget*>(m_cmdChange)})
            w->setVisible(m_session.multiTarget());
    });
    connect(s, &MappingSession::commandEnabledChanged, this, [this](MappingSession::Command c) {
        if (QPushButton* b = buttonOf(c))
            b->setEnabled(m_session.commandEnabled(c));
        else if (c == MappingSession::Command::CmbTargetTable)
            m_cmbTargetTable->setEnabled(m_session.commandEnabled(c));
    });
    connect(s, &MappingSession::gridCurrentChanged, this, &DefineDumpsView::showGridCurrent);
    connect(s, &MappingSession::gridScrollToTop, m_rulesGrid, &QTableView::scrollToTop);
    connect(s, &MappingSession::targetFieldRequested, this, [this](int row) {
        const QModelIndex index =
            m_session.shownTargetFields()->mapFromSource(m_session.targetFields()->index(row, 0));
        if (!index.isValid()) { // the find hides it: the session keeps it selected all the same
            m_showing = true;
            m_lstTargetFields->clearSelection();
            m_showing = false;
            return;
        }
        m_lstTargetFields->scrollTo(index);
        m_lstTargetFields->setCurrentIndex(index);
    });
    connect(s, &MappingSession::overlayChanged, this, &DefineDumpsView::showOverlay);
    connect(s, &MappingSession::boxTextChanged, this, [this](Box box) {
        if (box != Box::Overlay)
            return;
        m_showing = true;
        SetBoxText(m_txtgrdline, m_session.boxText(Box::Overlay));
        m_showing = false;
    });
    connect(s, &MappingSession::boxLockChanged, this, [this](Box box) {
        if (box == Box::Overlay)
            m_txtgrdline->setReadOnly(m_session.boxLocked(box));
    });
    connect(m_txtgrdline, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_showing)
            m_session.setBoxText(Box::Overlay, BoxText(m_txtgrdline));
    });

    connect(m_cmbDump, &QComboBox::activated, s, &MappingSession::DumpChosen);
    connect(m_cmbDump, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!m_showing)
            m_session.setDumpIndex(i);
    });
    connect(m_cmbTargetTable, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (!m_showing)
            m_session.setTargetTableIndex(i);
    });
    connect(m_lstTargetFields, &QTreeView::clicked, this,
            [this](const QModelIndex& i) { m_session.TargetFieldClicked(targetRowOf(i)); });
    connect(m_lstTargetFields->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (m_showing)
            return;
        const QModelIndex current = m_lstTargetFields->currentIndex();
        const bool selected = current.isValid() && m_lstTargetFields->selectionModel()->isRowSelected(
                                                       current.row(), QModelIndex());
        m_session.setTargetFieldSelected(selected ? targetRowOf(current) : -1);
    });
    connect(m_rulesGrid, &QTableView::doubleClicked, s, &MappingSession::GridDoubleClicked);
    connect(m_rulesGrid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (!m_showing) {
                    const QModelIndex cell = m_session.shownRules()->mapToSource(current);
                    m_session.setGridCurrent(cell.row(), cell.column());
                }
            });
    for (FieldFilterModel* shown : {s->shownSourceFields(), s->shownTargetFields()}) {
        QTreeView* list = shown == s->shownSourceFields() ? m_lstSourceFields : m_lstTargetFields;
        connect(list->header(), &QHeaderView::sectionClicked, shown, [shown](int column) {
            static_cast<FieldListModel*>(shown->sourceModel())->sortByHeaderClick(column);
        });
    }
    // A grid of new rows is laid out at once, so that it can be scrolled to
    // a row before the event loop runs again.
    connect(s->rules(), &QAbstractItemModel::modelReset, m_rulesGrid, &QTableView::doItemsLayout);
    m_rulesGrid->installEventFilter(this);
    m_txtgrdline->installEventFilter(this);

    const auto click = [this](QAbstractButton* b, void (MappingSession::*command)()) {
        connect(b, &QAbstractButton::clicked, &m_session, command);
    };
    click(m_command1, &MappingSession::clickCommand1);
    click(m_cmdMap, &MappingSession::clickCmdMap);
    click(m_cmdGuess, &MappingSession::clickCmdGuess);
    click(m_cmdFuncBuild, &MappingSession::clickCmdFuncBuild);
    click(m_cmdCopyDump, &MappingSession::clickCmdCopyDump);
    click(m_cmdChange, &MappingSession::clickCmdChange);
    click(m_cmdDumpText, &MappingSession::clickCmdDumpText);
    click(m_cmdEditRule, &MappingSession::clickCmdEditRule);
    click(m_cmdSuggest, &MappingSession::clickCmdSuggest);
}

bool DefineDumpsView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (watched == m_rulesGrid && m_txtgrdline->isHidden()) {
            const bool command =
                key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
            if (m_session.GridKeyPress(key->text(), key->key(), command))
                return true;
        } else if (watched == m_txtgrdline && m_session.OverlayKey(key->key())) {
            return true;
        }
    }
    return QGroupBox::eventFilter(watched, event);
}

QWidget* DefineDumpsView::widgetFor(MappingSession::Focus target) const
{
    using F = MappingSession::Focus;
    switch (target) {
    case F::DumpSelector:
        return m_cmbDump;
    case F::TargetTableSelector:
        return m_cmbTargetTable;
    case F::TargetFields:
        return m_lstTargetFields;
    case F::Grid:
        return m_rulesGrid;
    case F::Overlay:
        return m_txtgrdline;
    default:
        return nullptr;
    }
}

DefineDumpsView::Part DefineDumpsView::partOf(const QWidget* w) const
{
    for (const QWidget* cur = w; cur; cur = cur->parentWidget()) {
        if (cur == m_cmbDump)
            return Part::DumpSelector;
        if (cur == m_txtgrdline)
            return Part::Overlay;
        if (cur == m_rulesGrid)
            return Part::Grid;
        if (cur == m_lstSourceFields)
            return Part::SourceFields;
    }
    return Part::None;
}

void DefineDumpsView::showSourceSelection()
{
    if (m_session.sourceFields()->rowCount() > 0 && m_lstSourceFields->currentIndex().isValid())
        m_lstSourceFields->scrollTo(m_lstSourceFields->currentIndex());
}

} // namespace fb
