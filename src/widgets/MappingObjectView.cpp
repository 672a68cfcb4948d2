#include "MappingObjectView.h"

#include "BoxText.h"
#include "ScriptEditor.h"
#include "Twips.h"
#include "Widgets.h"

#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
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

MappingObjectView::MappingObjectView(MappingSession& session, QWidget* parent)
    : QGroupBox(parent), m_session(session)
{
    setObjectName(QStringLiteral("FrmCondition"));
    setFlat(true); // the frame has no border
    setStyleSheet(QStringLiteral("QGroupBox#FrmCondition { border: none; margin: 0px; padding: 0px; }"));

    m_lblSourceTables = MakeChild<QLabel>(this, QStringLiteral("lblSourceTables"));
    m_lblSourceTables->setText(QStringLiteral("Source Tables"));
    m_sourceTables = new QStandardItemModel(0, 1, this);
    m_sourceTables->setHorizontalHeaderLabels({QStringLiteral("Source Tables")});
    m_lstSourceTables = makeList(this, QStringLiteral("lstSourceTables"), m_sourceTables, true);
    m_cmdSelectSource =
        makeButton(this, QStringLiteral("CmdSelectSource"), QStringLiteral("Sele&ct..."), 1215);

    m_lblMigrateSource = MakeChild<QLabel>(this, QStringLiteral("lblMigrateSource"));
    m_lblMigrateSource->setText(QStringLiteral("Migrate Sources"));
    m_migrateSources = new QStandardItemModel(0, 1, this);
    m_lstMigrateSource = makeList(this, QStringLiteral("lstMigrateSource"), m_migrateSources, false);

    m_lblPreCondition = MakeChild<QLabel>(this, QStringLiteral("lblPreCondition"));
    m_lblPreCondition->setText(QStringLiteral("PreCondition"));
    m_txtPreCondition = MakeChild<ScriptEditor>(this, QStringLiteral("txtPreCondition"));
    m_cmdBuildPre = makeButton(this, QStringLiteral("CmdBuildPre"), QStringLiteral("&Build"), 975);
    m_cmdPreEditor = makeButton(this, QStringLiteral("CmdPreEditor"), QStringLiteral("&Editor"), 975);
    m_cmdPreDoc = makeButton(this, QStringLiteral("CmdPreDoc"), QStringLiteral("&Text"), 975);
    m_picPreResize = MakeChild<QToolButton>(this, QStringLiteral("PicPreResize"));
    m_picPreResize->setAutoRaise(true);
    m_picPreResize->setToolTip(QStringLiteral("Enlarge the main query"));

    m_lblMainQuery = MakeChild<QLabel>(this, QStringLiteral("lblMainQuery"));
    m_lblMainQuery->setText(QStringLiteral("Main Query"));
    m_txtMainQuery = MakeChild<ScriptEditor>(this, QStringLiteral("txtMainQuery"));
    m_cmdBuildMQ = makeButton(this, QStringLiteral("cmdBuildMQ"), QStringLiteral("Bui&ld"), 975);
    m_cmdMqEditor = makeButton(this, QStringLiteral("CmdMqEditor"), QStringLiteral("E&ditor"), 975);
    m_cmdMQDoc = makeButton(this, QStringLiteral("CmdMQDoc"), QStringLiteral("Te&xt"), 975);
    m_picMQResize = MakeChild<QToolButton>(this, QStringLiteral("PicMQResize"));
    m_picMQResize->setAutoRaise(true);
    m_picMQResize->setToolTip(QStringLiteral("Enlarge or restore the main query"));

    m_cmdFunction = makeButton(this, QStringLiteral("CmdFunction"), QStringLiteral("F&unctions"), 1215);
    m_cmdVariables =
        makeButton(this, QStringLiteral("CmdVariables"), QStringLiteral("Variable&s / Includes"), 2055);
    m_txtFunctions = MakeChild<ScriptEditor>(this, QStringLiteral("txtFunctions"));
    m_txtVariables = MakeChild<ScriptEditor>(this, QStringLiteral("txtVariables"));
    m_cmdOk = makeButton(this, QStringLiteral("CmdOk"), QStringLiteral("&OK"), 975);
    m_cmdCancel = makeButton(this, QStringLiteral("CmdCancel"), QStringLiteral("Cance&l"), 975);
    m_cmdFuncEditor = makeButton(this, QStringLiteral("CmdFuncEditor"), QStringLiteral("&Editor"), 975);

    m_picPreResize->raise();
    m_picMQResize->raise();
    connectSession();
    showArrangement();
}

void MappingObjectView::SetResizeIcons(bool mainQueryEnlarged, bool preconditionEnlarged)
{
    // IMGMAX offers to enlarge, IMGMIN to restore.
    m_picMQResize->setIcon(QIcon(mainQueryEnlarged ? QStringLiteral(":/fieldbridge/IMGMIN.xpm")
                                                   : QStringLiteral(":/fieldbridge/IMGMAX.xpm")));
    m_picPreResize->setIcon(QIcon(preconditionEnlarged ? QStringLiteral(":/fieldbridge/IMGMIN.xpm")
                                                       : QStringLiteral(":/fieldbridge/IMGMAX.xpm")));
}

QList<QWidget*> MappingObjectView::PreconditionGroup() const
{
    return {m_txtPreCondition, m_cmdBuildPre, m_cmdPreDoc,   m_cmdPreEditor,
            m_picPreResize,    m_cmdFunction, m_cmdVariables};
}

QList<QWidget*> MappingObjectView::MainQueryGroup() const
{
    return {m_txtMainQuery, m_cmdBuildMQ,  m_cmdMQDoc,     m_cmdMqEditor,
            m_picMQResize,  m_cmdFunction, m_cmdVariables, m_lblMainQuery};
}

QList<QWidget*> MappingObjectView::OkCancelGroup() const
{
    return {m_cmdOk, m_cmdCancel, m_cmdFuncEditor};
}

void MappingObjectView::showArrangement()
{
    using View = MappingSession::ScriptView;
    const View view = m_session.scriptView();
    const bool scripts = view == View::PreCondition;
    const bool enlarged = m_session.mainQueryEnlarged();
    for (QWidget* w : OkCancelGroup())
        w->setVisible(!scripts);
    for (QWidget* w : MainQueryGroup())
        w->setVisible(scripts);
    // The precondition group last: it shares the functions and variables
    // buttons with the main-query group and hides them when enlarged.
    for (QWidget* w : PreconditionGroup())
        w->setVisible(scripts && !enlarged);
    m_lblMainQuery->setVisible(scripts && !enlarged);
    m_txtFunctions->setVisible(view == View::Functions);
    m_txtVariables->setVisible(view == View::Variables);
    m_picPreResize->setEnabled(!enlarged);
    m_lblPreCondition->setText(view == View::Functions   ? QStringLiteral("Functions")
                               : view == View::Variables ? QStringLiteral("Variables / Includes ")
                               : enlarged                ? QStringLiteral("Main Query")
                                                         : QStringLiteral("PreCondition"));
    SetResizeIcons(enlarged, false);
    LayoutChildren();
}

// The whole page laid out in one place: each position follows from the ones
// placed before it.
void MappingObjectView::LayoutChildren()
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
    Place(m_lblSourceTables, margin, top, listW, labelH);
    Place(m_lstSourceTables, margin, listTop, listW, sourceH - buttonH - vgap);
    Place(m_cmdSelectSource, margin, listTop + sourceH - buttonH, m_cmdSelectSource->width(), buttonH);
    const int migrateTop = listTop + sourceH + vgap;
    Place(m_lblMigrateSource, margin, migrateTop, listW, labelH);
    Place(m_lstMigrateSource, margin, migrateTop + labelH, listW, okTop + buttonH - migrateTop - labelH);

    // The editors: left of the list's right edge plus a gap, to 120 twips
    // short of the frame's right edge.
    const int left = m_lstSourceTables->x() + m_lstSourceTables->width() + px(kEditorGap);
    const int edW = w - left - px(kMargin);
    const int right = left + edW;
    Place(m_lblPreCondition, left, top, px(3000), labelH);

    const int editorsTop = top + labelH;
    const int editorsBottom = okTop - vgap;
    const int avail = editorsBottom - editorsTop - buttonH - 2 * vgap;
    const int preH = avail * 40 / 100;
    Place(m_txtPreCondition, left, editorsTop, edW, preH);

    // Precondition buttons, chained leftwards from the editor's right edge.
    const int preRowTop = editorsTop + preH + vgap;
    int x = right;
    for (QPushButton* b : {m_cmdBuildPre, m_cmdPreEditor, m_cmdPreDoc}) {
        x -= b->width();
        Place(b, x, preRowTop, b->width(), buttonH);
        x -= gap;
    }
    Place(m_lblMainQuery, left, preRowTop, px(2400), buttonH);

    // Main-query buttons take the lefts of the precondition buttons on the
    // bottom row; functions and variables are chained to their left.
    m_cmdBuildMQ->move(m_cmdBuildPre->x(), okTop);
    m_cmdMqEditor->move(m_cmdPreEditor->x(), okTop);
    m_cmdMQDoc->move(m_cmdPreDoc->x(), okTop);
    x = m_cmdMQDoc->x() - gap;
    for (QPushButton* b : {m_cmdFunction, m_cmdVariables}) {
        x -= b->width();
        Place(b, x, okTop, b->width(), buttonH);
        x -= gap;
    }
    m_cmdOk->move(left, okTop);
    m_cmdCancel->move(m_cmdOk->x() + m_cmdOk->width() + gap, okTop);
    m_cmdFuncEditor->move(m_cmdCancel->x() + m_cmdCancel->width() + gap, okTop);

    // Functions and variables take the precondition's place and width, down
    // to the top of m_cmdOk.
    Place(m_txtFunctions, left, editorsTop, edW, okTop - vgap - editorsTop);
    Place(m_txtVariables, left, editorsTop, edW, okTop - vgap - editorsTop);

    const int pic = py(240);
    if (m_session.mainQueryEnlarged()) {
        Place(m_txtMainQuery, left, editorsTop, edW, editorsBottom - editorsTop);
        Place(m_picMQResize, right - pic, editorsTop, pic, pic);
    } else {
        const int mqTop = m_cmdPreDoc->y() + m_cmdPreDoc->height();
        Place(m_txtMainQuery, left, mqTop, edW, editorsBottom - mqTop);
        Place(m_picMQResize, right - pic, mqTop, pic, pic);
    }
    Place(m_picPreResize, right - pic, editorsTop, pic, pic);
}

// ---- the session's state on screen, and what the user does ------------------

ScriptEditor* MappingObjectView::editorOf(MappingSession::Box box) const
{
    switch (box) {
    case MappingSession::Box::PreCondition:
        return m_txtPreCondition;
    case MappingSession::Box::MainQuery:
        return m_txtMainQuery;
    case MappingSession::Box::Functions:
        return m_txtFunctions;
    case MappingSession::Box::Variables:
        return m_txtVariables;
    case MappingSession::Box::Overlay:
        break;
    }
    return nullptr;
}

QPushButton* MappingObjectView::buttonOf(MappingSession::Command command) const
{
    using C = MappingSession::Command;
    switch (command) {
    case C::CmdSelectSource:
        return m_cmdSelectSource;
    case C::CmdBuildPre:
        return m_cmdBuildPre;
    case C::CmdPreDoc:
        return m_cmdPreDoc;
    case C::CmdPreEditor:
        return m_cmdPreEditor;
    case C::cmdBuildMQ:
        return m_cmdBuildMQ;
    case C::CmdMQDoc:
        return m_cmdMQDoc;
    case C::CmdMqEditor:
        return m_cmdMqEditor;
    case C::CmdOk:
        return m_cmdOk;
    case C::CmdFuncEditor:
        return m_cmdFuncEditor;
    default:
        return nullptr;
    }
}

void MappingObjectView::showBox(MappingSession::Box box)
{
    if (ScriptEditor* editor = editorOf(box)) {
        m_showing = true;
        SetBoxText(editor, m_session.boxText(box));
        m_showing = false;
    }
}

void MappingObjectView::connectSession()
{
    using Box = MappingSession::Box;
    MappingSession* s = &m_session;
    connect(s, &MappingSession::boxTextChanged, this, &MappingObjectView::showBox);
    connect(s, &MappingSession::boxLockChanged, this, [this](Box box) {
        if (ScriptEditor* editor = editorOf(box))
            editor->setReadOnly(m_session.boxLocked(box));
    });
    connect(s, &MappingSession::commandEnabledChanged, this, [this](MappingSession::Command c) {
        if (QPushButton* b = buttonOf(c))
            b->setEnabled(m_session.commandEnabled(c));
    });
    connect(s, &MappingSession::scriptViewChanged, this, &MappingObjectView::showArrangement);
    connect(s, &MappingSession::sourceTablesChanged, this, [this] {
        m_sourceTables->removeRows(0, m_sourceTables->rowCount());
        for (const QString& row : m_session.sourceTableRows())
            m_sourceTables->appendRow(new QStandardItem(row));
    });
    // The fields of the listed source tables are offered for completion.
    for (ScriptEditor* e : {m_txtPreCondition, m_txtMainQuery, m_txtFunctions, m_txtVariables})
        e->setCompletionSource([s] { return s->sourceFieldNames(); });
    connect(s, &MappingSession::migrateRowsChanged, this, [this] {
        m_migrateSources->removeRows(0, m_migrateSources->rowCount());
        for (const QString& row : m_session.migrateRows())
            m_migrateSources->appendRow(new QStandardItem(row));
    });

    for (Box box : {Box::PreCondition, Box::MainQuery, Box::Functions, Box::Variables}) {
        ScriptEditor* editor = editorOf(box);
        connect(editor, &ScriptEditor::textChanged, this, [this, editor, box] {
            if (!m_showing)
                m_session.setBoxText(box, BoxText(editor));
        });
        connect(editor, &ScriptEditor::tabWithModifiers, this, [this, box](Qt::KeyboardModifiers m) {
            m_session.TabWithModifiers(box, m == Qt::ControlModifier, m == Qt::ShiftModifier);
        });
    }
    connect(m_lstMigrateSource, &QTreeView::clicked, s,
            [s](const QModelIndex& i) { s->MigrateSourceClicked(i.row()); });
    m_lstSourceTables->installEventFilter(this);

    const auto click = [this](QAbstractButton* b, void (MappingSession::*command)()) {
        connect(b, &QAbstractButton::clicked, &m_session, command);
    };
    click(m_cmdSelectSource, &MappingSession::clickCmdSelectSource);
    click(m_cmdBuildPre, &MappingSession::clickCmdBuildPre);
    click(m_cmdBuildMQ, &MappingSession::clickCmdBuildMQ);
    click(m_cmdPreDoc, &MappingSession::clickCmdPreDoc);
    click(m_cmdMQDoc, &MappingSession::clickCmdMQDoc);
    click(m_cmdFunction, &MappingSession::clickCmdFunction);
    click(m_cmdVariables, &MappingSession::clickCmdVariables);
    click(m_cmdOk, &MappingSession::clickCmdOk);
    click(m_cmdCancel, &MappingSession::clickCmdCancel);
    click(m_cmdPreEditor, &MappingSession::clickCmdPreEditor);
    click(m_cmdMqEditor, &MappingSession::clickCmdMqEditor);
    click(m_cmdFuncEditor, &MappingSession::clickCmdFuncEditor);
    click(m_picMQResize, &MappingSession::ToggleMainQuerySize);
    click(m_picPreResize, &MappingSession::ToggleMainQuerySize);
}

bool MappingObjectView::eventFilter(QObject* watched, QEvent* event)
{
    // The Delete key decides in the source-table list, whatever modifier is
    // held; the row removed is the selected one.
    if (watched == m_lstSourceTables && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        const QModelIndex current = m_lstSourceTables->currentIndex();
        const bool selected = current.isValid() && m_lstSourceTables->selectionModel()->isSelected(current);
        m_session.DeleteSourceTable(selected ? current.row() : -1);
        return true;
    }
    return QGroupBox::eventFilter(watched, event);
}

QWidget* MappingObjectView::widgetFor(MappingSession::Focus target) const
{
    using F = MappingSession::Focus;
    switch (target) {
    case F::PreCondition:
        return m_txtPreCondition;
    case F::MainQuery:
        return m_txtMainQuery;
    case F::Functions:
        return m_txtFunctions;
    case F::Variables:
        return m_txtVariables;
    case F::SourceTables:
        return m_lstSourceTables;
    case F::CmdSelectSource:
        return m_cmdSelectSource;
    case F::MigrateSource:
        return m_lstMigrateSource;
    case F::cmdBuildMQ:
        return m_cmdBuildMQ;
    default:
        return nullptr;
    }
}

std::optional<MappingSession::Box> MappingObjectView::boxOf(const QWidget* w) const
{
    for (const QWidget* cur = w; cur; cur = cur->parentWidget()) {
        if (cur == m_txtPreCondition)
            return MappingSession::Box::PreCondition;
        if (cur == m_txtMainQuery)
            return MappingSession::Box::MainQuery;
    }
    return std::nullopt;
}

} // namespace fb
