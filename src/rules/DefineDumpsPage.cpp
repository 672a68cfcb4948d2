#include "DefineDumpsPage.h"

#include "RulesGridModel.h"
#include "control/Twips.h"
#include "control/Widgets.h"
#include "dictionary/FieldListModel.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
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

QTreeView* makeFieldList(QWidget* parent, const QString& name, FieldListModel* model, const QString& family)
{
    auto* view = MakeChild<QTreeView>(parent, name);
    view->setModel(model);
    view->setRootIsDecorated(false);
    view->setItemsExpandable(false);
    view->setUniformRowHeights(true);
    view->setAllColumnsShowFocus(true);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    QFont f = view->font();
    f.setFamily(family);
    view->setFont(f);
    view->header()->setSectionsClickable(true);
    view->header()->setSortIndicatorShown(false);
    view->header()->setStretchLastSection(false);
    const QList<int> widths = FieldListModel::ColumnWidths(model->kind());
    for (int c = 0; c < widths.size(); ++c)
        view->header()->resizeSection(c, TwipsToPixelsX(widths[c], parent));
    return view;
}
} // namespace

DefineDumpsPage::DefineDumpsPage(QWidget* parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("FrmRules"));

    lblDump = makeLabel(this, QStringLiteral("lblDump"), QStringLiteral("D&ump No."), 900);
    CmbDump = MakeChild<QComboBox>(this, QStringLiteral("CmbDump"));
    CmbDump->resize(TwipsToPixelsX(2895, this), TwipsToPixelsY(kRowHeight, this));
    lblDump->setBuddy(CmbDump);
    Command1 = makeButton(this, QStringLiteral("Command1"), QStringLiteral("Sho&w"), 855);
    lblTargetTable = makeLabel(this, QStringLiteral("lblTargetTable"), QStringLiteral("For Target Table:"), 1455);
    CmbTargetTable = MakeChild<QComboBox>(this, QStringLiteral("CmbTargetTable"));
    CmbTargetTable->resize(TwipsToPixelsX(1935, this), TwipsToPixelsY(kRowHeight, this));
    LBLTargetTableName = makeLabel(this, QStringLiteral("LBLTargetTableName"), QString(), 1455);
    CmdChange = makeButton(this, QStringLiteral("CmdChange"), QStringLiteral("Cha&nge..."), 1095);

    lblSourceFields = makeLabel(this, QStringLiteral("lblSourceFields"), QStringLiteral("Source Fields"), 2000);
    sourceFields = new FieldListModel(FieldListModel::Kind::Source, this);
    lstSourceFields =
        makeFieldList(this, QStringLiteral("lstSourceFields"), sourceFields, QStringLiteral("Microsoft Sans Serif"));
    lblTargetFields = makeLabel(this, QStringLiteral("lblTargetFields"), QStringLiteral("Target Fields"), 2000);
    targetFields = new FieldListModel(FieldListModel::Kind::Target, this);
    lstTargetFields =
        makeFieldList(this, QStringLiteral("lstTargetFields"), targetFields, QStringLiteral("MS Sans Serif"));

    CmdMap = makeButton(this, QStringLiteral("CmdMap"), QStringLiteral("Ma&p"), 975);
    CmdGuess = makeButton(this, QStringLiteral("CmdGuess"), QStringLiteral("&Guess"), 975);
    CmdCopyDump = makeButton(this, QStringLiteral("CmdCopyDump"), QStringLiteral("Cop&y from dump.."), 1695);
    CmdEditRule = makeButton(this, QStringLiteral("CmdEditRule"), QStringLiteral("Edit &Rule"), 1095);
    CmdDumpText = makeButton(this, QStringLiteral("CmdDumpText"), QStringLiteral("Te&xt"), 975);
    CmdFuncBuild = makeButton(this, QStringLiteral("CmdFuncBuild"), QStringLiteral("&Build"), 975);

    Details = MakeChild<QGroupBox>(this, QStringLiteral("Details"));
    Details->setTitle(QStringLiteral("F&ields of Dump: "));
    rules = new RulesGridModel(this);
    RulesGrid = MakeChild<QTableView>(Details, QStringLiteral("RulesGrid"));
    RulesGrid->setModel(rules);
    RulesGrid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    RulesGrid->setSelectionMode(QAbstractItemView::SingleSelection);
    RulesGrid->setSelectionBehavior(QAbstractItemView::SelectItems);
    RulesGrid->setWordWrap(false);
    RulesGrid->setTabKeyNavigation(false);
    RulesGrid->verticalHeader()->setDefaultSectionSize(TwipsToPixelsY(300, this));
    RulesGrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    RulesGrid->horizontalHeader()->resizeSection(0, TwipsToPixelsX(3400, this));
    RulesGrid->horizontalHeader()->setStretchLastSection(true);
    txtgrdline = MakeChild<QPlainTextEdit>(Details, QStringLiteral("txtgrdline"));
    txtgrdline->setTabChangesFocus(true);
    txtgrdline->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtgrdline->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtgrdline->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtgrdline->hide();
    Details->setFocusProxy(nullptr);
}

void DefineDumpsPage::LayoutChildren()
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
    for (QWidget* c : std::initializer_list<QWidget*>{lblDump, CmbDump, Command1, lblTargetTable, CmbTargetTable,
                                                      LBLTargetTableName, CmdChange}) {
        Place(c, x, top, c->width(), rowH);
        x += c->width() + small;
    }

    // The two field lists share the frame width less 480 in equal halves.
    const int half = (w - 4 * margin) / 2;
    const int labelsTop = top + rowH + py(kGap) / 2;
    const int listsTop = labelsTop + rowH;
    const int below = h - listsTop - py(kMargin);
    const int listH = below * 45 / 100 - rowH - py(kGap);
    Place(lblSourceFields, margin, labelsTop, half, rowH);
    Place(lstSourceFields, margin, listsTop, half, listH);
    Place(lblTargetFields, margin + half + gap, labelsTop, half, rowH);
    Place(lstTargetFields, margin + half + gap, listsTop, half, listH);

    // Commands between the lists and the grid.
    const int commandsTop = listsTop + std::max(listH, 0) + py(kSmallGap) * 2;
    x = margin;
    for (QPushButton* b : {CmdMap, CmdGuess, CmdCopyDump, CmdEditRule, CmdDumpText, CmdFuncBuild}) {
        Place(b, x, commandsTop, b->width(), rowH);
        x += b->width() + small;
    }

    // The grid's frame below, from left 120 to the frame's right margin.
    const int detailsTop = commandsTop + rowH + py(kGap) / 2;
    Place(Details, margin, detailsTop, w - 2 * margin, h - detailsTop - py(kMargin));
    const int inner = px(kMargin);
    const int titleH = Details->fontMetrics().height() + py(60);
    Place(RulesGrid, inner, titleH, Details->width() - 2 * inner, Details->height() - titleH - inner);
}

} // namespace fb
