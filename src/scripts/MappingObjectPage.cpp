#include "MappingObjectPage.h"

#include "ScriptEditor.h"
#include "control/Twips.h"
#include "control/Widgets.h"

#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QToolButton>
#include <QTreeView>

namespace fb {

namespace {
// Design-time sizes, in twips.
constexpr int kMargin = 120;
constexpr int kListWidth = 2655;
constexpr int kLabelHeight = 255;
constexpr int kButtonHeight = 375;
constexpr int kGap = 60;
constexpr int kEditorGap = 105;

QTreeView* makeList(QWidget* parent, const QString& name, QStandardItemModel* model, bool header)
{
    auto* view = MakeChild<QTreeView>(parent, name);
    view->setModel(model);
    view->setRootIsDecorated(false);
    view->setItemsExpandable(false);
    view->setUniformRowHeights(true);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setHeaderHidden(!header);
    return view;
}

QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption, int widthTwips)
{
    auto* b = MakeChild<QPushButton>(parent, name);
    b->setText(caption);
    b->setAutoDefault(false);
    b->resize(TwipsToPixelsX(widthTwips, parent), TwipsToPixelsY(kButtonHeight, parent));
    return b;
}
} // namespace

MappingObjectPage::MappingObjectPage(QWidget* parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("FrmCondition"));
    setFlat(true); // the frame has no border
    setStyleSheet(QStringLiteral("QGroupBox#FrmCondition { border: none; margin: 0px; padding: 0px; }"));

    lblSourceTables = MakeChild<QLabel>(this, QStringLiteral("lblSourceTables"));
    lblSourceTables->setText(QStringLiteral("Source Tables"));
    sourceTablesModel = new QStandardItemModel(0, 1, this);
    sourceTablesModel->setHorizontalHeaderLabels({QStringLiteral("Source Tables")});
    lstSourceTables = makeList(this, QStringLiteral("lstSourceTables"), sourceTablesModel, true);
    CmdSelectSource = makeButton(this, QStringLiteral("CmdSelectSource"), QStringLiteral("Sele&ct..."), 1215);

    lblMigrateSource = MakeChild<QLabel>(this, QStringLiteral("lblMigrateSource"));
    lblMigrateSource->setText(QStringLiteral("Migrate Sources"));
    migrateSourceModel = new QStandardItemModel(0, 1, this);
    lstMigrateSource = makeList(this, QStringLiteral("lstMigrateSource"), migrateSourceModel, false);

    lblPreCondition = MakeChild<QLabel>(this, QStringLiteral("lblPreCondition"));
    lblPreCondition->setText(QStringLiteral("PreCondition"));
    txtPreCondition = MakeChild<ScriptEditor>(this, QStringLiteral("txtPreCondition"));
    CmdBuildPre = makeButton(this, QStringLiteral("CmdBuildPre"), QStringLiteral("&Build"), 975);
    CmdPreEditor = makeButton(this, QStringLiteral("CmdPreEditor"), QStringLiteral("&Editor"), 975);
    CmdPreDoc = makeButton(this, QStringLiteral("CmdPreDoc"), QStringLiteral("&Text"), 975);
    PicPreResize = MakeChild<QToolButton>(this, QStringLiteral("PicPreResize"));
    PicPreResize->setAutoRaise(true);
    PicPreResize->setToolTip(QStringLiteral("Enlarge the main query"));

    lblMainQuery = MakeChild<QLabel>(this, QStringLiteral("lblMainQuery"));
    lblMainQuery->setText(QStringLiteral("Main Query"));
    txtMainQuery = MakeChild<ScriptEditor>(this, QStringLiteral("txtMainQuery"));
    cmdBuildMQ = makeButton(this, QStringLiteral("cmdBuildMQ"), QStringLiteral("Bui&ld"), 975);
    CmdMqEditor = makeButton(this, QStringLiteral("CmdMqEditor"), QStringLiteral("E&ditor"), 975);
    CmdMQDoc = makeButton(this, QStringLiteral("CmdMQDoc"), QStringLiteral("Te&xt"), 975);
    PicMQResize = MakeChild<QToolButton>(this, QStringLiteral("PicMQResize"));
    PicMQResize->setAutoRaise(true);
    PicMQResize->setToolTip(QStringLiteral("Enlarge or restore the main query"));

    CmdFunction = makeButton(this, QStringLiteral("CmdFunction"), QStringLiteral("F&unctions"), 1215);
    CmdVariables = makeButton(this, QStringLiteral("CmdVariables"), QStringLiteral("Variable&s / Includes"), 2055);
    txtFunctions = MakeChild<ScriptEditor>(this, QStringLiteral("txtFunctions"));
    txtVariables = MakeChild<ScriptEditor>(this, QStringLiteral("txtVariables"));
    CmdOk = makeButton(this, QStringLiteral("CmdOk"), QStringLiteral("&OK"), 975);
    CmdCancel = makeButton(this, QStringLiteral("CmdCancel"), QStringLiteral("Cance&l"), 975);
    CmdFuncEditor = makeButton(this, QStringLiteral("CmdFuncEditor"), QStringLiteral("&Editor"), 975);

    PicPreResize->raise();
    PicMQResize->raise();
    SetResizeIcons(false, false);
}

void MappingObjectPage::SetResizeIcons(bool mainQueryEnlarged, bool preconditionEnlarged)
{
    // IMGMAX offers to enlarge, IMGMIN to restore.
    PicMQResize->setIcon(QIcon(mainQueryEnlarged ? QStringLiteral(":/fieldbridge/IMGMIN.xpm")
                                                 : QStringLiteral(":/fieldbridge/IMGMAX.xpm")));
    PicPreResize->setIcon(QIcon(preconditionEnlarged ? QStringLiteral(":/fieldbridge/IMGMIN.xpm")
                                                     : QStringLiteral(":/fieldbridge/IMGMAX.xpm")));
}

void MappingObjectPage::setMainQueryEnlarged(bool enlarged)
{
    m_enlarged = enlarged;
}

QList<QWidget*> MappingObjectPage::PreconditionGroup() const
{
    return {txtPreCondition, CmdBuildPre, CmdPreDoc, CmdPreEditor, PicPreResize, CmdFunction, CmdVariables};
}

QList<QWidget*> MappingObjectPage::MainQueryGroup() const
{
    return {txtMainQuery, cmdBuildMQ, CmdMQDoc, CmdMqEditor, PicMQResize, CmdFunction, CmdVariables, lblMainQuery};
}

QList<QWidget*> MappingObjectPage::OkCancelGroup() const
{
    return {CmdOk, CmdCancel, CmdFuncEditor};
}

void MappingObjectPage::ShowArrangement(bool showScripts)
{
    for (QWidget* w : OkCancelGroup())
        w->setVisible(!showScripts);
    for (QWidget* w : MainQueryGroup())
        w->setVisible(showScripts);
    // The precondition group last: it shares the functions and variables
    // buttons with the main-query group and hides them when enlarged.
    for (QWidget* w : PreconditionGroup())
        w->setVisible(showScripts && !m_enlarged);
    lblMainQuery->setVisible(showScripts && !m_enlarged);
    PicPreResize->setEnabled(!m_enlarged);
    if (showScripts)
        lblPreCondition->setText(m_enlarged ? QStringLiteral("Main Query") : QStringLiteral("PreCondition"));
    SetResizeIcons(m_enlarged, false);
    LayoutChildren();
}

void MappingObjectPage::PlaceScriptBoxes()
{
    LayoutChildren();
}

void MappingObjectPage::LayoutChildren()
{
    const auto px = [this](int t) { return TwipsToPixelsX(t, this); };
    const auto py = [this](int t) { return TwipsToPixelsY(t, this); };
    const int w = width();
    const int h = height();
    const int margin = px(kMargin);
    const int top = py(kMargin);
    const int labelH = py(kLabelHeight);
    const int buttonH = py(kButtonHeight);
    const int gap = px(kGap);
    const int vgap = py(kGap);

    // Left column: source tables over migrate sources.
    const int listW = px(kListWidth);
    const int listTop = top + labelH;
    const int okTop = h - py(kMargin) - buttonH;
    const int columnH = okTop + buttonH - listTop;
    const int sourceH = columnH * 45 / 100;
    Place(lblSourceTables, margin, top, listW, labelH);
    Place(lstSourceTables, margin, listTop, listW, sourceH - buttonH - vgap);
    Place(CmdSelectSource, margin, listTop + sourceH - buttonH, CmdSelectSource->width(), buttonH);
    const int migrateTop = listTop + sourceH + vgap;
    Place(lblMigrateSource, margin, migrateTop, listW, labelH);
    Place(lstMigrateSource, margin, migrateTop + labelH, listW, okTop + buttonH - migrateTop - labelH);

    // The editors: left of the list's right edge plus a gap, to 120 twips
    // short of the frame's right edge.
    const int left = lstSourceTables->x() + lstSourceTables->width() + px(kEditorGap);
    const int edW = w - left - px(kMargin);
    const int right = left + edW;
    Place(lblPreCondition, left, top, px(3000), labelH);

    const int editorsTop = top + labelH;
    const int editorsBottom = okTop - vgap;
    const int avail = editorsBottom - editorsTop - buttonH - 2 * vgap;
    const int preH = avail * 40 / 100;
    Place(txtPreCondition, left, editorsTop, edW, preH);

    // Precondition buttons, chained leftwards from the editor's right edge.
    const int preRowTop = editorsTop + preH + vgap;
    int x = right;
    for (QPushButton* b : {CmdBuildPre, CmdPreEditor, CmdPreDoc}) {
        x -= b->width();
        Place(b, x, preRowTop, b->width(), buttonH);
        x -= gap;
    }
    Place(lblMainQuery, left, preRowTop, px(2400), buttonH);

    // Main-query buttons take the lefts of the precondition buttons on the
    // bottom row; functions and variables are chained to their left.
    cmdBuildMQ->move(CmdBuildPre->x(), okTop);
    CmdMqEditor->move(CmdPreEditor->x(), okTop);
    CmdMQDoc->move(CmdPreDoc->x(), okTop);
    x = CmdMQDoc->x() - gap;
    for (QPushButton* b : {CmdFunction, CmdVariables}) {
        x -= b->width();
        Place(b, x, okTop, b->width(), buttonH);
        x -= gap;
    }
    CmdOk->move(left, okTop);
    CmdCancel->move(CmdOk->x() + CmdOk->width() + gap, okTop);
    CmdFuncEditor->move(CmdCancel->x() + CmdCancel->width() + gap, okTop);

    // Functions and variables take the precondition's place and width, down
    // to the top of CmdOk.
    Place(txtFunctions, left, editorsTop, edW, okTop - vgap - editorsTop);
    Place(txtVariables, left, editorsTop, edW, okTop - vgap - editorsTop);

    const int pic = py(240);
    if (m_enlarged) {
        Place(txtMainQuery, left, editorsTop, edW, editorsBottom - editorsTop);
        Place(PicMQResize, right - pic, editorsTop, pic, pic);
    } else {
        const int mqTop = CmdPreDoc->y() + CmdPreDoc->height();
        Place(txtMainQuery, left, mqTop, edW, editorsBottom - mqTop);
        Place(PicMQResize, right - pic, mqTop, pic, pic);
    }
    Place(PicPreResize, right - pic, editorsTop, pic, pic);
}

} // namespace fb
