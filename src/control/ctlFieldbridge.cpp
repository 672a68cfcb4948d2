#include "ctlFieldbridge.h"

#include "ctlFieldbridge_p.h"
#include "widgets/DefineDumpsView.h"
#include "widgets/MappingObjectView.h"
#include "widgets/Twips.h"
#include "widgets/Widgets.h"
#include "widgets/Workbench.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTextEdit>
#include <QUndoStack>

using namespace fb;

// ---------------------------------------------------------------------------
// ctlFieldbridgePrivate

ctlFieldbridgePrivate::ctlFieldbridgePrivate(ctlFieldbridge* owner) : m_q(owner), m_ui(owner), m_session(m_ui)
{}

ctlFieldbridgePrivate::~ctlFieldbridgePrivate() = default;

void ctlFieldbridgePrivate::StartUp()
{
    // The tab strip with one page per tab; each page holds its frame.
    m_mainTab = new QTabWidget(m_q);
    m_mainTab->setObjectName(QStringLiteral("MainTab"));
    auto* page0 = new QWidget;
    auto* page1 = new QWidget;
    page0->setObjectName(QStringLiteral("MainTabPage0"));
    page1->setObjectName(QStringLiteral("MainTabPage1"));
    m_mainTab->addTab(page0, QStringLiteral("Mapping Object"));
    m_mainTab->addTab(page1, QStringLiteral("Define Dumps"));
    m_mappingObject = new MappingObjectView(m_session, page0);
    m_defineDumps = new DefineDumpsView(m_session, page1);
    showTabs();

    connect(m_mainTab, &QTabWidget::currentChanged, this, [this](int index) {
        if (!m_showingTabs)
            m_session.TabChanged(index);
    });
    connect(&m_session, &MappingSession::tabsChanged, this, &ctlFieldbridgePrivate::showTabs);
    connect(&m_session, &MappingSession::focusRequested, this, &ctlFieldbridgePrivate::moveFocus);
    connect(qApp, &QApplication::focusChanged, this, &ctlFieldbridgePrivate::focusChanged);

    // The host's events.
    connect(&m_session, &MappingSession::ShowSourceTablesPopUp, m_q, &ctlFieldbridge::ShowSourceTablesPopUp);
    connect(&m_session, &MappingSession::ShowConditionBuilderPopUp, m_q,
            &ctlFieldbridge::ShowConditionBuilderPopUp);
    connect(&m_session, &MappingSession::ShowQueryBuilderPopUp, m_q, &ctlFieldbridge::ShowQueryBuilderPopUp);
    connect(&m_session, &MappingSession::ShowFunctionBuilderPopUp, m_q,
            &ctlFieldbridge::ShowFunctionBuilderPopUp);
    connect(&m_session, &MappingSession::SaveDoneDisabled, m_q, &ctlFieldbridge::SaveDoneDisabled);
    connect(&m_session, &MappingSession::SaveDoneEnabled, m_q, &ctlFieldbridge::SaveDoneEnabled);
    keepUndoStackInStep();

    // The Alt shortcuts are the control's whichever of its parts has the focus.
    for (QWidget* child : m_q->findChildren<QWidget*>())
        child->installEventFilter(this);
    LayoutPanes();
}

void ctlFieldbridgePrivate::showTabs()
{
    m_showingTabs = true;
    m_mainTab->setTabEnabled(1, m_session.tabEnabled(1));
    m_mainTab->setCurrentIndex(m_session.currentTab());
    m_showingTabs = false;
    // Only the current tab's frame is enabled.
    const bool first = m_session.currentTab() == 0;
    m_mappingObject->setEnabled(first);
    m_defineDumps->setEnabled(!first);
    LayoutPanes();
}

void ctlFieldbridgePrivate::LayoutPanes()
{
    QTabWidget* tab = m_mainTab;
    tab->setGeometry(0, 0, m_q->width(), m_q->height());

    // Both frames: MainTab left + 45, width − 95, top + 360, height − 600
    // (in twips), given in the tab's coordinates. The tab strip of this
    // platform may be taller than 360 twips; the frame then starts below it.
    const int left = TwipsToPixelsX(45, m_q);
    const int width = tab->width() - TwipsToPixelsX(95, m_q);
    const int height = tab->height() - TwipsToPixelsY(600, m_q);
    for (QWidget* frame : {static_cast<QWidget*>(m_mappingObject), static_cast<QWidget*>(m_defineDumps)}) {
        QWidget* page = frame->parentWidget();
        const QPoint origin = page->mapTo(tab, QPoint(0, 0));
        const int top = std::max(TwipsToPixelsY(360, m_q), origin.y());
        const int h = height - (top - TwipsToPixelsY(360, m_q));
        const int w = std::min(width, page->width() > 0 ? page->width() - (left - origin.x()) : width);
        Place(frame, left - origin.x(), top - origin.y(), w, h);
    }
    m_mappingObject->LayoutChildren();
    m_defineDumps->LayoutChildren();
}

void ctlFieldbridgePrivate::moveFocus(MappingSession::Focus target)
{
    QWidget* w = m_mappingObject->widgetFor(target);
    if (!w)
        w = m_defineDumps->widgetFor(target);
    if (w)
        w->setFocus(Qt::OtherFocusReason);
}

void ctlFieldbridgePrivate::focusChanged(QWidget* old, QWidget* now)
{
    // Only focus moving to another widget of the same window counts: a
    // message box or a popup taking the focus is not a loss.
    if (!old || !now || old->window() != now->window())
        return;
    const bool wasInside = m_q->isAncestorOf(old);
    const bool isInside = m_q->isAncestorOf(now);
    using Part = DefineDumpsView::Part;
    const auto box = [this](QWidget* w) { return m_mappingObject->boxOf(w); };
    const auto part = [this](QWidget* w) { return m_defineDumps->partOf(w); };
    if (wasInside) {
        const auto fromBox = box(old);
        const Part fromPart = part(old);
        if (fromBox && fromBox != box(now))
            m_session.BoxLostFocus(*fromBox);
        else if (fromPart == Part::DumpSelector && part(now) != Part::DumpSelector)
            m_session.DumpSelectorLostFocus();
        else if (fromPart == Part::Overlay && part(now) != Part::Overlay)
            m_session.OverlayLostFocus();
    }
    if (isInside && part(now) != part(old)) {
        if (part(now) == Part::Grid)
            m_session.GridGotFocus();
        else if (part(now) == Part::SourceFields)
            m_defineDumps->showSourceSelection();
    }
    if (wasInside && !isInside)
        m_session.ControlLostFocus();
    else if (!wasInside && isInside)
        m_session.ControlGotFocus();
}

namespace {

// A step of the session's history on the host's undo stack: the stack
// decides what is undone next; the session does it.
class SessionStep : public QUndoCommand {
public:
    SessionStep(MappingSession& session, const QString& text) : QUndoCommand(text), m_session(session) {}
    void undo() override { m_session.Undo(); }
    void redo() override
    {
        if (m_done) // pushed after the session made the change
            m_session.Redo();
        m_done = true;
    }

private:
    MappingSession& m_session;
    bool m_done = false;
};

// Widgets that keep their own undo and their own Ctrl+Z.
bool editsText(const QWidget* w)
{
    return qobject_cast<const QLineEdit*>(w) || qobject_cast<const QPlainTextEdit*>(w) ||
           qobject_cast<const QTextEdit*>(w) || (w && w->inherits("QsciScintillaBase"));
}

} // namespace

void ctlFieldbridgePrivate::keepUndoStackInStep()
{
    m_undoStack = new QUndoStack(this);
    m_undoStack->setUndoLimit(MappingSession::kHistoryLimit);
    connect(&m_session, &MappingSession::stepRecorded, m_undoStack,
            [this](const QString& text) { m_undoStack->push(new SessionStep(m_session, text)); });
    connect(&m_session, &MappingSession::historyCleared, m_undoStack, &QUndoStack::clear);
}

bool ctlFieldbridgePrivate::controlKey(const QKeyEvent* key, bool act)
{
    const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
    const int k = key->key();
    const bool undo = mods == Qt::ControlModifier && k == Qt::Key_Z;
    const bool redo = (mods == (Qt::ControlModifier | Qt::ShiftModifier) && k == Qt::Key_Z) ||
                      (mods == Qt::ControlModifier && k == Qt::Key_Y);
    const bool find = mods == Qt::ControlModifier && k == Qt::Key_F;
    QWidget* focus = QApplication::focusWidget();
    if ((undo || redo) && !editsText(focus)) {
        if (act)
            undo ? m_undoStack->undo() : m_undoStack->redo();
        return true;
    }
    if (find && m_session.currentTab() == 1) {
        if (act) {
            QLineEdit* box = m_defineDumps->workbench()->findBoxFor(focus);
            box->setFocus(Qt::ShortcutFocusReason);
            box->selectAll();
        }
        return true;
    }
    return false;
}

bool ctlFieldbridgePrivate::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if ((type == QEvent::ShortcutOverride || type == QEvent::KeyPress) &&
        watched == QApplication::focusWidget()) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (controlKey(key, type == QEvent::KeyPress)) {
            event->accept();
            return true;
        }
        const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
        if (mods == Qt::AltModifier && key->key() >= Qt::Key_A && key->key() <= Qt::Key_Z) {
            const QChar letter(char16_t(key->key()));
            // Claimed before any access key of a caption sees it.
            if (m_session.AltShortcut(letter, type == QEvent::KeyPress)) {
                event->accept();
                return true;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------
// ctlFieldbridge

ctlFieldbridge::ctlFieldbridge(QWidget* parent)
    : QWidget(parent), d(std::make_unique<ctlFieldbridgePrivate>(this))
{
    setObjectName(QStringLiteral("ctlFieldbridge"));
    setMinimumSize(1, 1);
    resize(TwipsToPixelsX(14400, this), TwipsToPixelsY(9000, this));
    d->StartUp();
}

ctlFieldbridge::~ctlFieldbridge() = default;

void ctlFieldbridge::setMappingObjectXML(const QString& text)
{
    d->m_session.setMappingObjectXML(text);
}
QString ctlFieldbridge::MappingObjectXML()
{
    return d->m_session.MappingObjectXML();
}
void ctlFieldbridge::Setfocus()
{
    d->m_session.Setfocus();
}
void ctlFieldbridge::setEditor(const QString& Epath)
{
    d->m_session.setEditor(Epath);
}
QString ctlFieldbridge::Editor() const
{
    return d->m_session.Editor();
}
void ctlFieldbridge::setTargetTable(const QString& name)
{
    d->m_session.setTargetTable(name);
}
QString ctlFieldbridge::TargetTable() const
{
    return d->m_session.TargetTable();
}
void ctlFieldbridge::setEdit(bool BoolNewValue)
{
    d->m_session.setEdit(BoolNewValue);
}
bool ctlFieldbridge::Edit() const
{
    return d->m_session.Edit();
}
void ctlFieldbridge::setSourceTables(const QString& tables)
{
    d->m_session.setSourceTables(tables);
}
QString ctlFieldbridge::SourceTables()
{
    return d->m_session.SourceTables();
}
void ctlFieldbridge::setPreCondition(const QString& text)
{
    d->m_session.setPreCondition(text);
}
QString ctlFieldbridge::PreCondition() const
{
    return d->m_session.PreCondition();
}
void ctlFieldbridge::setMainQuery(const QString& text)
{
    d->m_session.setMainQuery(text);
}
QString ctlFieldbridge::MainQuery() const
{
    return d->m_session.MainQuery();
}
QString ctlFieldbridge::FieldMapping() const
{
    return d->m_session.FieldMapping();
}
void ctlFieldbridge::setFieldMapping(const QString& rule)
{
    d->m_session.setFieldMapping(rule);
}
int ctlFieldbridge::GetListItemNumber(const QString& strFieldName) const
{
    return d->m_session.GetListItemNumber(strFieldName);
}
void ctlFieldbridge::ShowControl()
{
    d->m_session.ShowControl();
}
void ctlFieldbridge::SetTextNumber(const QString& StrType, int LngTextNumber, const QString& StrKey1,
                                   const QString& StrKey2)
{
    d->m_session.SetTextNumber(StrType, LngTextNumber, StrKey1, StrKey2);
}
int ctlFieldbridge::GetRowNumber(const QString& i_StrFieldName) const
{
    return d->m_session.GetRowNumber(i_StrFieldName);
}
void ctlFieldbridge::GridEdit(short KeyAscii)
{
    d->m_session.GridEdit(KeyAscii);
}

QUndoStack* ctlFieldbridge::undoStack() const
{
    return d->m_undoStack;
}

QStringList ctlFieldbridge::CheckMapping()
{
    QStringList lines;
    for (const Problem& p : d->m_session.CheckMapping())
        lines.append(ProblemsModel::Line(p));
    return lines;
}

QStringList ctlFieldbridge::PendingRemovals()
{
    QStringList lines;
    for (const Problem& p : d->m_session.PendingRemovals())
        lines.append(p.message);
    return lines;
}

int ctlFieldbridge::CheckErrorCount()
{
    d->m_session.CheckMapping();
    return d->m_session.problems()->errorCount();
}

void ctlFieldbridge::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    d->LayoutPanes();
}

bool ctlFieldbridge::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show)
        d->LayoutPanes();
    return QWidget::event(event);
}
