#include "ctlFieldbridge.h"

#include "BoxText.h"
#include "Twips.h"
#include "Widgets.h"
#include "ctlFieldbridge_p.h"
#include "dictionary/FieldListModel.h"
#include "core/document/TextFile.h"
#include "core/document/TextRules.h"
#include "rules/DefineDumpsPage.h"
#include "rules/RulesGridModel.h"
#include "scripts/MappingObjectPage.h"
#include "scripts/ScriptEditor.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTreeView>
#include <QVBoxLayout>

using namespace fb;

// ---------------------------------------------------------------------------
// ctlFieldbridgePrivate

ctlFieldbridgePrivate::ctlFieldbridgePrivate(ctlFieldbridge* owner)
    : q(owner), s(owner), scripts(s), dumps(s)
{
}

ctlFieldbridgePrivate::~ctlFieldbridgePrivate()
{
    qApp->removeEventFilter(this);
}

void ctlFieldbridgePrivate::StartUp()
{
    // The tab strip with one page per tab; each page holds its frame.
    s.MainTab = new QTabWidget(q);
    s.MainTab->setObjectName(QStringLiteral("MainTab"));
    auto* page0 = new QWidget;
    auto* page1 = new QWidget;
    page0->setObjectName(QStringLiteral("MainTabPage0"));
    page1->setObjectName(QStringLiteral("MainTabPage1"));
    s.MainTab->addTab(page0, QStringLiteral("Mapping Object"));
    s.MainTab->addTab(page1, QStringLiteral("Define Dumps"));
    s.mo = new MappingObjectPage(page0);
    s.dd = new DefineDumpsPage(page1);
    s.dd->setEnabled(false); // only the current tab's frame is enabled

    s.ui.onFocusPrecondition = [this] { s.mo->txtPreCondition->setFocus(Qt::OtherFocusReason); };
    s.ui.onMigrateTablesChanged = [this] { scripts.FillMigrateSourceList(); };

    // Start-up: the panel of functions and variables starts hidden.
    for (QWidget* w : {static_cast<QWidget*>(s.mo->CmdOk), static_cast<QWidget*>(s.mo->CmdCancel),
                       static_cast<QWidget*>(s.mo->CmdFuncEditor), static_cast<QWidget*>(s.mo->txtFunctions),
                       static_cast<QWidget*>(s.mo->txtVariables)})
        w->hide();
    s.mo->PlaceScriptBoxes();
    s.mo->SetResizeIcons(false, false);

    scripts.Connect();
    dumps.Connect();
    QObject::connect(s.MainTab, &QTabWidget::currentChanged, this, [this](int i) { TabChanged(i); });
    QObject::connect(qApp, &QApplication::focusChanged, this,
                     [this](QWidget* old, QWidget* now) { focusChanged(old, now); });
    qApp->installEventFilter(this);
    s.mo->lstSourceTables->installEventFilter(this);
    s.dd->RulesGrid->installEventFilter(this);
    s.dd->txtgrdline->installEventFilter(this);
    LayoutPanes();
}

void ctlFieldbridgePrivate::ShowControl()
{
    // A new document: nothing of the previous one stays selected.
    dumps.ClearDumps();
    s.mainQueryTable.clear();

    scripts.ShowPrecondition();
    scripts.ClearSourceTableList();
    scripts.RefreshSourceTableList();
    scripts.ReconcileSourceTables();
    scripts.ShowMigrateQuery(s.doc.MigrateTables().first());
    dumps.ShowTargetFields();
    EnableEditing();

    s.multiTarget = s.scanner.CheckMscripts();
    s.dd->lblTargetTable->setVisible(s.multiTarget);
    s.dd->CmdChange->setVisible(s.multiTarget);
    s.dd->CmbTargetTable->setVisible(s.multiTarget);
    if (s.multiTarget)
        dumps.FillTargetTableSelector();
}

void ctlFieldbridgePrivate::EnableEditing()
{
    if (s.edit)
        return;
    // One way: nothing unlocks these again when Edit later becomes True.
    for (ScriptEditor* e : {s.mo->txtPreCondition, s.mo->txtMainQuery, s.mo->txtFunctions, s.mo->txtVariables})
        e->setReadOnly(true);
    s.dd->txtgrdline->setReadOnly(true);
    for (QPushButton* b : {s.dd->CmdEditRule, s.mo->CmdPreEditor, s.mo->CmdMqEditor, s.dd->CmdGuess, s.dd->CmdMap,
                           s.mo->CmdOk, s.mo->CmdSelectSource, s.mo->cmdBuildMQ, s.mo->CmdBuildPre,
                           s.dd->CmdFuncBuild, s.dd->CmdCopyDump, s.dd->CmdChange})
        b->setEnabled(false);
}

void ctlFieldbridgePrivate::LayoutPanes()
{
    QTabWidget* tab = s.MainTab;
    tab->setGeometry(0, 0, q->width(), q->height());

    // Both frames: MainTab left + 45, width − 95, top + 360, height − 600
    // (in twips), given in the tab's coordinates. The tab strip of this
    // platform may be taller than 360 twips; the frame then starts below it.
    const int left = TwipsToPixelsX(45, q);
    const int width = tab->width() - TwipsToPixelsX(95, q);
    const int height = tab->height() - TwipsToPixelsY(600, q);
    for (QWidget* frame : {static_cast<QWidget*>(s.mo), static_cast<QWidget*>(s.dd)}) {
        QWidget* page = frame->parentWidget();
        const QPoint origin = page->mapTo(tab, QPoint(0, 0));
        const int top = std::max(TwipsToPixelsY(360, q), origin.y());
        const int h = height - (top - TwipsToPixelsY(360, q));
        const int w = std::min(width, page->width() > 0 ? page->width() - (left - origin.x()) : width);
        Place(frame, left - origin.x(), top - origin.y(), w, h);
    }
    s.mo->LayoutChildren();
    s.dd->LayoutChildren();
}

void ctlFieldbridgePrivate::TabChanged(int index)
{
    // A notice that arrives after the tab strip has already moved on (a store
    // during the switch disabled "Define Dumps", and the strip went back to
    // "Mapping Object" on its own) is stale: the current tab has been handled.
    if (index != s.MainTab->currentIndex())
        return;
    const int previous = previousTab;
    previousTab = index;
    if (index == 0) {
        s.dd->setEnabled(false);
        s.mo->setEnabled(true);
        s.dd->LBLTargetTableName->setEnabled(true);
        if (!s.quietTabSwitch && previous == 1) {
            dumps.CommitOpenEdit();
            dumps.StoreDumpRules(dumps.SelectorTag());
        }
        LayoutPanes();
        return;
    }
    s.dd->setEnabled(true);
    s.mo->setEnabled(false);
    if (s.quietTabSwitch)
        return;
    scripts.StorePrecondition();
    if (!s.MainTab->isTabEnabled(1)) {
        s.MainTab->setCurrentIndex(0);
        return;
    }
    scripts.StoreMainQuery();
    if (s.doc.ReferencedDumps().numbers.first() < 1) {
        s.MainTab->setCurrentIndex(0);
        s.ui.MsgBox(QStringLiteral("Define Dumps"), MsgButtons::Ok, MsgIcon::Critical, QStringLiteral("Mapping Object"));
        return;
    }
    const QString tag = dumps.SelectorTag();
    dumps.FillDumpSelector();
    dumps.BindUnboundDumps();
    QComboBox* cmb = s.dd->CmbDump;
    if (cmb->count() > 0) {
        const int keep = tag.isEmpty() ? -1 : cmb->findData(str::ToInteger(tag).value_or(0));
        cmb->setCurrentIndex(keep >= 0 ? keep : 0);
        dumps.ShowDump(qint16(cmb->currentData().toInt()));
    }
    LayoutPanes();
}

QString ctlFieldbridgePrivate::ReadMappingObject()
{
    scripts.StorePrecondition();
    scripts.StoreMainQuery();
    if (s.dd->CmbDump->currentIndex() >= 0 && str::IsNumeric(s.dd->CmbDump->currentData().toString()))
        dumps.StoreDumpRules(s.dd->CmbDump->currentData().toString());
    s.scanner.PruneSections();
    const QString text = s.doc.Serialize();
    QString error;
    if (!WriteTextFile(TempFilePath(s.doc.TableName(), QStringLiteral(".xml")), text, &error))
        qWarning("ctlFieldbridge: the temporary export could not be written: %s", qPrintable(error));
    return text;
}

void ctlFieldbridgePrivate::ControlLostFocus()
{
    if (!s.editorBusy)
        s.doc.SaveQueryText(s.mainQueryTable, BoxText(s.mo->txtMainQuery));
}

QWidget* ctlFieldbridgePrivate::owningBox(QWidget* w) const
{
    const QList<QWidget*> watched{s.mo->txtPreCondition, s.mo->txtMainQuery, s.dd->CmbDump, s.dd->txtgrdline,
                                  s.dd->RulesGrid, s.dd->lstSourceFields};
    for (QWidget* cur = w; cur; cur = cur->parentWidget())
        if (watched.contains(cur))
            return cur;
    return nullptr;
}

void ctlFieldbridgePrivate::focusChanged(QWidget* old, QWidget* now)
{
    // Only focus moving to another widget of the same window counts: a
    // message box or a popup taking the focus is not a loss.
    if (!old || !now || old->window() != now->window())
        return;
    const bool wasInside = q->isAncestorOf(old);
    const bool isInside = q->isAncestorOf(now);
    QWidget* from = wasInside ? owningBox(old) : nullptr;
    QWidget* to = isInside ? owningBox(now) : nullptr;
    if (from && from != to) {
        if (from == s.mo->txtPreCondition)
            scripts.StorePrecondition();
        else if (from == s.mo->txtMainQuery)
            scripts.StoreMainQuery();
        else if (from == s.dd->CmbDump)
            dumps.DumpSelectorLostFocus();
        else if (from == s.dd->txtgrdline)
            dumps.OverlayLostFocus();
    }
    if (to && to != from) {
        if (to == s.dd->RulesGrid)
            dumps.GridGotFocus();
        else if (to == s.dd->lstSourceFields)
            dumps.SourceFieldsGotFocus();
    }
    if (wasInside && !isInside)
        ControlLostFocus();
    else if (!wasInside && isInside && s.editorBusy)
        ControlLostFocus(); // with the editor open this stores nothing
}

bool ctlFieldbridgePrivate::handleShortcut(int key, Qt::KeyboardModifiers modifiers, bool act)
{
    const Qt::KeyboardModifiers mods = modifiers & ~Qt::KeypadModifier;
    if (mods != Qt::AltModifier)
        return false;
    struct Row {
        int key;
        QWidget* visibility;
        QWidget* frame;
        QWidget* target;
    };
    // The visibility tests of the first two rows are crossed on purpose:
    // each tests the other box.
    const Row rows[] = {
        {Qt::Key_M, s.mo->txtPreCondition, s.mo, s.mo->txtMainQuery},
        {Qt::Key_P, s.mo->txtMainQuery, s.mo, s.mo->txtPreCondition},
        {Qt::Key_Q, s.mo->txtMainQuery, s.mo, s.mo->lstMigrateSource},
        {Qt::Key_U, s.dd, s.dd, s.dd->CmbDump},
    };
    for (const Row& row : rows) {
        if (row.key != key || !row.visibility->isVisible())
            continue;
        if (act && row.frame->isEnabled())
            row.target->setFocus(Qt::ShortcutFocusReason);
        return true;
    }
    return false;
}

bool ctlFieldbridgePrivate::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::ShortcutOverride || type == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        QWidget* focus = QApplication::focusWidget();
        if (watched == focus && focus && q->isAncestorOf(focus)) {
            if (type == QEvent::ShortcutOverride) {
                // Claim the key before any access key of a caption sees it.
                if (handleShortcut(key->key(), key->modifiers(), false)) {
                    event->accept();
                    return true;
                }
            } else if (handleShortcut(key->key(), key->modifiers(), true)) {
                return true;
            }
        }
        if (type == QEvent::KeyPress && watched == s.dd->RulesGrid && !s.dd->txtgrdline->isVisible() &&
            dumps.GridKeyPress(key->text(), key->key(), key->modifiers()))
            return true;
        if (type == QEvent::KeyPress && watched == s.dd->txtgrdline && dumps.OverlayKeyDown(key->key()))
            return true;
        // The Delete key decides, whatever modifier is held.
        if (type == QEvent::KeyPress && watched == s.mo->lstSourceTables && key->key() == Qt::Key_Delete) {
            if (s.edit)
                scripts.DeleteSelectedSourceTable();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------
// ctlFieldbridge

ctlFieldbridge::ctlFieldbridge(QWidget* parent) : QWidget(parent), d(std::make_unique<ctlFieldbridgePrivate>(this))
{
    setObjectName(QStringLiteral("ctlFieldbridge"));
    setMinimumSize(1, 1);
    resize(TwipsToPixelsX(14400, this), TwipsToPixelsY(9000, this));
    d->StartUp();
}

ctlFieldbridge::~ctlFieldbridge() = default;

void ctlFieldbridge::setMappingObjectXML(const QString& text)
{
    d->s.doc.LoadXml(text);
}

QString ctlFieldbridge::MappingObjectXML()
{
    return d->ReadMappingObject();
}

void ctlFieldbridge::Setfocus()
{
    if (d->s.mo->txtPreCondition->isVisible())
        d->s.mo->txtPreCondition->setFocus(Qt::OtherFocusReason);
}

void ctlFieldbridge::setEditor(const QString& Epath)
{
    d->s.editorPath = Epath;
}

QString ctlFieldbridge::Editor() const
{
    return d->s.editorPath;
}

void ctlFieldbridge::setTargetTable(const QString& name)
{
    d->s.targetTableAssigned = name;
    d->s.doc.SetTableName(name);
}

QString ctlFieldbridge::TargetTable() const
{
    return d->s.targetTableAssigned;
}

void ctlFieldbridge::setEdit(bool BoolNewValue)
{
    d->s.edit = BoolNewValue;
    d->s.module.DocTextEditable = BoolNewValue;
    d->EnableEditing();
}

bool ctlFieldbridge::Edit() const
{
    return d->s.edit;
}

void ctlFieldbridge::setSourceTables(const QString& tables)
{
    d->s.doc.SetSourceTablesText(tables);
    d->scripts.RefreshSourceTableList();
}

QString ctlFieldbridge::SourceTables()
{
    return d->s.doc.GetSourceTablesText();
}

void ctlFieldbridge::setPreCondition(const QString& text)
{
    d->s.preConditionAssigned = text;
    SetBoxText(d->s.mo->txtPreCondition, MappingDocument::DisplayText(text));
    d->scripts.StorePrecondition();
    d->s.mo->CmdBuildPre->setEnabled(true);
}

QString ctlFieldbridge::PreCondition() const
{
    return d->s.preConditionAssigned;
}

void ctlFieldbridge::setMainQuery(const QString& text)
{
    SetBoxText(d->s.mo->txtMainQuery, text);
    d->scripts.StoreMainQuery();
    d->s.mo->cmdBuildMQ->setEnabled(true);
}

QString ctlFieldbridge::MainQuery() const
{
    return BoxText(d->s.mo->txtMainQuery);
}

QString ctlFieldbridge::FieldMapping() const
{
    return d->dumps.FieldMapping();
}

void ctlFieldbridge::setFieldMapping(const QString& rule)
{
    d->dumps.SetFieldMapping(rule);
}

int ctlFieldbridge::GetListItemNumber(const QString& strFieldName) const
{
    return d->dumps.GetListItemNumber(strFieldName);
}

void ctlFieldbridge::ShowControl()
{
    d->ShowControl();
}

void ctlFieldbridge::SetTextNumber(const QString& StrType, int LngTextNumber, const QString& StrKey1,
                                   const QString& StrKey2)
{
    d->s.doc.SetTextNumber(StrType, LngTextNumber, StrKey1, StrKey2);
}

int ctlFieldbridge::GetRowNumber(const QString& i_StrFieldName) const
{
    return d->dumps.GetRowNumber(i_StrFieldName);
}

void ctlFieldbridge::GridEdit(short KeyAscii)
{
    d->dumps.GridEdit(KeyAscii, true);
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
