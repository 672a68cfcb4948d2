#include "HostWindow.h"

#include "SourceTablesDialog.h"
#include "core/document/LineBreaks.h"
#include "core/document/MappingDocument.h"
#include "core/document/TextFile.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScopeGuard>
#include <QSettings>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>
#include <QUndoGroup>
#include <QUndoStack>
#include <algorithm>
#include <limits>

namespace {

QString externalEditorKey()
{
    return QStringLiteral("externalEditor");
}

// The control's buttons whose click changes the document.
const QStringList& editingCommands()
{
    static const QStringList names{
        QStringLiteral("CmdMap"),       QStringLiteral("CmdGuess"),    QStringLiteral("CmdCopyDump"),
        QStringLiteral("CmdChange"),    QStringLiteral("CmdOk"),       QStringLiteral("CmdEditRule"),
        QStringLiteral("CmdPreEditor"), QStringLiteral("CmdMqEditor"), QStringLiteral("CmdFuncEditor"),
        QStringLiteral("CmdPreDoc"),    QStringLiteral("CmdMQDoc"),    QStringLiteral("CmdDumpText"),
    };
    return names;
}

} // namespace

HostWindow::HostWindow(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("HostWindow"));
    m_externalEditor = QSettings().value(externalEditorKey()).toString();
    createActions();
    m_modeLabel = new QLabel(this);
    m_modeLabel->setObjectName(QStringLiteral("lblMode"));
    statusBar()->addPermanentWidget(m_modeLabel);
    qApp->installEventFilter(this);
    updateTitle();
    updateActions();
    resize(1280, 800);
}

HostWindow::~HostWindow()
{
    qApp->removeEventFilter(this);
}

void HostWindow::createActions()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));

    QAction* open = fileMenu->addAction(tr("&Open..."), this, &HostWindow::openWithDialog);
    open->setObjectName(QStringLiteral("actionOpen"));
    open->setShortcut(QKeySequence::Open);

    m_recentMenu = fileMenu->addMenu(tr("Open &Recent"));
    m_recentMenu->setObjectName(QStringLiteral("menuRecent"));
    rebuildRecentMenu();

    QAction* sample = fileMenu->addAction(tr("Open &Sample"), this, [this] {
        if (maybeSave())
            openSample();
    });
    sample->setObjectName(QStringLiteral("actionOpenSample"));

    fileMenu->addSeparator();
    m_saveAction = fileMenu->addAction(tr("&Save"), this, &HostWindow::save);
    m_saveAction->setObjectName(QStringLiteral("actionSave"));
    m_saveAction->setShortcut(QKeySequence::Save);

    m_saveAsAction = fileMenu->addAction(tr("Save &As..."), this, &HostWindow::saveAs);
    m_saveAsAction->setObjectName(QStringLiteral("actionSaveAs"));
    m_saveAsAction->setShortcut(QKeySequence::SaveAs);

    m_revertAction = fileMenu->addAction(tr("&Revert"), this, &HostWindow::revert);
    m_revertAction->setObjectName(QStringLiteral("actionRevert"));

    fileMenu->addSeparator();
    m_exportAction = fileMenu->addAction(tr("&Export Mapping Report..."), this, &HostWindow::exportReport);
    m_exportAction->setObjectName(QStringLiteral("actionExportReport"));

    fileMenu->addSeparator();
    QAction* quit = fileMenu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence::Quit);

    createEditMenu();

    QMenu* viewMenu = menuBar()->addMenu(tr("&View"));
    m_editModeAction = viewMenu->addAction(tr("&Edit Mode"));
    m_editModeAction->setObjectName(QStringLiteral("actionEditMode"));
    m_editModeAction->setCheckable(true);
    m_editModeAction->setChecked(m_editMode);
    m_editModeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    connect(m_editModeAction, &QAction::triggered, this, &HostWindow::setEditMode);

    QMenu* toolsMenu = menuBar()->addMenu(tr("&Tools"));
    QAction* editor =
        toolsMenu->addAction(tr("External &Editor..."), this, &HostWindow::chooseExternalEditor);
    editor->setObjectName(QStringLiteral("actionExternalEditor"));

    QMenu* helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->addAction(tr("&About"), this, [this] {
        QMessageBox::about(
            this, tr("About Fieldbridge"),
            tr("<p><b>Fieldbridge host</b></p><p>Edits the mapping objects of a data migration: "
               "source tables, precondition, main queries, functions and the rules of every "
               "dump.</p>"));
    });
}

void HostWindow::createEditMenu()
{
    // Undo and redo follow whichever control is open: each brings its own
    // stack, the group hands the actions to the active one.
    m_undoGroup = new QUndoGroup(this);
    QMenu* editMenu = menuBar()->addMenu(tr("&Edit"));
    QAction* undo = m_undoGroup->createUndoAction(this, tr("&Undo"));
    undo->setObjectName(QStringLiteral("actionUndo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction* redo = m_undoGroup->createRedoAction(this, tr("&Redo"));
    redo->setObjectName(QStringLiteral("actionRedo"));
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    editMenu->addAction(undo);
    editMenu->addAction(redo);
    editMenu->addSeparator();
    QAction* find = editMenu->addAction(tr("&Find Field"), this, &HostWindow::findField);
    find->setObjectName(QStringLiteral("actionFind"));
    find->setShortcut(QKeySequence::Find);
    // A step undone or redone changes the document like an edit does.
    connect(m_undoGroup, &QUndoGroup::indexChanged, this, &HostWindow::noteChange);
}

void HostWindow::findField()
{
    if (!m_control)
        return;
    auto* tabs = m_control->findChild<QTabWidget*>(QStringLiteral("MainTab"));
    if (tabs && tabs->currentIndex() != 1 && tabs->isTabEnabled(1))
        tabs->setCurrentIndex(1);
    auto* box = m_control->findChild<QLineEdit*>(QStringLiteral("txtFindTarget"));
    if (box && tabs && tabs->currentIndex() == 1) {
        box->setFocus(Qt::ShortcutFocusReason);
        box->selectAll();
    }
}

void HostWindow::reportProblem(const QString& title, const QString& text)
{
    if (m_unattended) {
        QTextStream(stderr) << "fieldbridge-host: " << text << Qt::endl;
        return;
    }
    QMessageBox::warning(this, title, text);
}

// ---------------------------------------------------------------- documents

bool HostWindow::openFile(const QString& path)
{
    QString error;
    if (!m_document.open(path, &error)) {
        reportProblem(tr("Open Mapping Object"), error);
        return false;
    }
    showDocument(m_document.text());
    rebuildRecentMenu();
    if (m_document.declarationRemoved())
        statusBar()->showMessage(
            tr("The XML declaration was left out: the mapping object must begin with its "
               "root element. Saving writes it without one."),
            10000);
    return true;
}

bool HostWindow::openSample()
{
    QString error;
    if (!m_document.openSample(&error)) {
        reportProblem(tr("Open Sample"), error);
        return false;
    }
    showDocument(m_document.text());
    return true;
}

void HostWindow::showDocument(const QString& text)
{
    createControl(text, m_editMode);
    // The baseline for "unsaved": the document as the control hands it back
    // right after loading, before the user touched anything. That first read
    // already tidies away work no script references; the file keeps it until
    // the next save, which says so.
    m_removedAtLoad = m_control->PendingRemovals();
    m_document.setBaseline(m_control->MappingObjectXML());
    m_changed = false;
    const QString rootName = m_document.catalogue().rootName;
    if (rootName.size() != 8)
        statusBar()->showMessage(
            tr("The root element \"%1\" is not 8 characters long: the control will not find "
               "the sections of this mapping object.")
                .arg(rootName),
            10000);
    updateTitle();
    updateActions();
}

void HostWindow::revert()
{
    if (!m_control || m_saveLocked || !isModified())
        return;
    QMessageBox box(
        QMessageBox::Warning, tr("Revert"),
        tr("Discard the changes made to %1 since it was opened or last saved?").arg(m_document.displayName()),
        QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setObjectName(QStringLiteral("RevertBox"));
    box.setDefaultButton(QMessageBox::Cancel);
    if (box.exec() == QMessageBox::Discard)
        showDocument(m_document.cleanText());
}

void HostWindow::createControl(const QString& text, bool edit)
{
    if (m_control) {
        disconnect(m_control, nullptr, this, nullptr);
        m_control->hide();
        m_control->deleteLater();
    }
    auto* control = new ctlFieldbridge(this);
    control->setObjectName(QStringLiteral("fieldbridge"));
    connect(control, &ctlFieldbridge::ShowSourceTablesPopUp, this, &HostWindow::answerSourceTables);
    connect(control, &ctlFieldbridge::ShowConditionBuilderPopUp, this,
            [this](const QString& condition, const QString& tables) {
                answerScript(ScriptBuilderDialog::Kind::Condition, condition, tables);
            });
    connect(control, &ctlFieldbridge::ShowQueryBuilderPopUp, this,
            [this](const QString& query, const QString& migrateSource) {
                answerScript(ScriptBuilderDialog::Kind::Query, query, migrateSource);
            });
    connect(control, &ctlFieldbridge::ShowFunctionBuilderPopUp, this,
            [this](const QString& rule, const QString& tables) {
                answerScript(ScriptBuilderDialog::Kind::Function, rule, tables);
            });
    connect(control, &ctlFieldbridge::ShowFunctionalTextPopUp, this, &HostWindow::answerFunctionalText);
    connect(control, &ctlFieldbridge::SaveDoneDisabled, this, [this] { lockSave(true); });
    connect(control, &ctlFieldbridge::SaveDoneEnabled, this, [this] { lockSave(false); });

    // The order a host keeps: edit mode first (it is one-way), then the
    // editor, the table name, the document, and only then ShowControl.
    control->setEdit(edit);
    if (!m_externalEditor.isEmpty())
        control->setEditor(m_externalEditor);
    control->setTargetTable(m_document.catalogue().rootName);
    control->setMappingObjectXML(text);
    control->ShowControl();

    for (const QString& name : editingCommands()) {
        if (auto* button = control->findChild<QAbstractButton*>(name))
            connect(button, &QAbstractButton::clicked, this, &HostWindow::noteChange);
    }

    m_control = control;
    m_undoGroup->addStack(control->undoStack());
    m_undoGroup->setActiveStack(control->undoStack());
    m_saveLocked = false;
    m_editMode = edit;
    setCentralWidget(control);
}

bool HostWindow::isModified()
{
    if (!m_control)
        return false;
    if (m_saveLocked)
        return true; // the functions or variables panel holds edits the document does not have yet
    const bool modified = m_document.isModified(m_control->MappingObjectXML());
    m_changed = modified;
    updateTitle();
    return modified;
}

bool HostWindow::maybeSave()
{
    if (!isModified())
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Fieldbridge"),
                    tr("The mapping object %1 has unsaved changes.").arg(m_document.displayName()),
                    QMessageBox::NoButton, this);
    box.setObjectName(QStringLiteral("UnsavedChangesBox"));
    if (m_saveLocked) {
        box.setInformativeText(
            tr("Close the Functions or Variables panel with OK or Cancel to be able to save. "
               "Discard the changes?"));
        box.setStandardButtons(QMessageBox::Discard | QMessageBox::Cancel);
    } else {
        box.setInformativeText(tr("Do you want to save them?"));
        box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        box.setDefaultButton(QMessageBox::Save);
    }
    box.setEscapeButton(QMessageBox::Cancel);
    switch (box.exec()) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

bool HostWindow::save()
{
    if (!m_control || m_saveLocked)
        return false;
    if (m_document.path().isEmpty())
        return saveAs();
    return saveTo(m_document.path());
}

// A name chosen in a file dialog that begins with ":" comes back as it was
// typed, as Qt's paths take it for one into the application's resources:
// it names a file in the folder the dialog showed.
QString HostWindow::chosenPath(const QString& chosen, const QString& folder)
{
    return chosen.startsWith(u':') ? folder + u'/' + chosen : chosen;
}

// A file named after the root element in the folder. A root name may begin
// with ":", which Qt's paths and file dialogs take for the start of a path
// into the application's resources: the proposal leaves those colons out.
QString HostWindow::suggestedPath(const QString& folder, const QString& suffix) const
{
    QString name = m_document.catalogue().rootName.trimmed();
    while (name.startsWith(u':'))
        name.remove(0, 1);
    return folder + u'/' + (name.isEmpty() ? QStringLiteral("mapping") : name) + suffix;
}

bool HostWindow::saveAs()
{
    if (!m_control || m_saveLocked)
        return false;
    QString suggestion = m_document.path();
    if (suggestion.isEmpty())
        suggestion = suggestedPath(QDir::homePath(), QStringLiteral(".xml"));
    QFileDialog dialog(this, tr("Save Mapping Object"), suggestion,
                       tr("Mapping objects (*.xml);;All files (*)"));
    dialog.setObjectName(QStringLiteral("SaveAsDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    return saveTo(chosenPath(dialog.selectedFiles().constFirst(), dialog.directory().absolutePath()));
}

bool HostWindow::confirmRemovals()
{
    const QStringList removals = m_removedAtLoad + m_control->PendingRemovals();
    if (removals.isEmpty())
        return true;
    if (m_unattended)
        return false;
    QMessageBox box(QMessageBox::Warning, tr("Save Mapping Object"),
                    tr("Saving removes work that no script references any more:"),
                    QMessageBox::Save | QMessageBox::Cancel, this);
    box.setObjectName(QStringLiteral("ConfirmRemovalsBox"));
    box.setInformativeText(QStringLiteral("\u2022 ") + removals.join(QStringLiteral("\n\u2022 ")));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Save;
}

bool HostWindow::saveTo(const QString& path)
{
    if (!m_control || m_saveLocked || !confirmRemovals())
        return false;
    QString error;
    if (!m_document.save(m_control->MappingObjectXML(), path, &error)) {
        QMessageBox::critical(this, tr("Save Mapping Object"), error);
        return false;
    }
    m_removedAtLoad.clear();
    m_changed = false;
    rebuildRecentMenu();
    statusBar()->showMessage(tr("Saved %1").arg(QDir::toNativeSeparators(m_document.path())), 5000);
    updateTitle();
    return true;
}

bool HostWindow::exportReport()
{
    if (!m_control)
        return false;
    static const QList<fb::ReportFormat> formats{fb::ReportFormat::Html, fb::ReportFormat::Markdown,
                                                 fb::ReportFormat::Csv};
    const QStringList filters{tr("HTML page (*.html *.htm)"), tr("Markdown (*.md *.markdown)"),
                              tr("CSV for a spreadsheet (*.csv)")};
    const QString folder =
        m_document.path().isEmpty() ? QDir::homePath() : QFileInfo(m_document.path()).absolutePath();
    QFileDialog dialog(this, tr("Export Mapping Report"), suggestedPath(folder, QStringLiteral(".html")));
    dialog.setObjectName(QStringLiteral("ExportReportDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    QString path = chosenPath(dialog.selectedFiles().constFirst(), dialog.directory().absolutePath());
    // "report." has no suffix; the format's comes in place of the dot.
    while (path.endsWith(u'.') && !QFileInfo(path).fileName().startsWith(u'.'))
        path.chop(1);
    const QString suffix = QFileInfo(path).suffix();
    const bool htm = suffix.compare(u"htm", Qt::CaseInsensitive) == 0;
    auto format = fb::ReportFormatFromName(htm ? QStringLiteral("html") : suffix);
    if (!format) {
        format = formats.value(std::max(0, int(filters.indexOf(dialog.selectedNameFilter()))));
        path += u'.' + fb::ReportFileSuffix(*format);
    }
    return exportReportTo(path, *format);
}

bool HostWindow::exportReportTo(const QString& path, fb::ReportFormat format)
{
    if (!m_control)
        return false;
    QString error;
    bool written = false;
    {
        // A large document takes seconds to report on.
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
        // A document of its own: the report scans the scripts, and the
        // control's document is not to be touched by that.
        fb::MappingDocument doc;
        doc.LoadXml(m_control->MappingObjectXML());
        doc.SetTableName(doc.DocumentElement().name());
        written = fb::WriteReportFile(doc, format, path, &error);
    }
    if (!written) {
        QMessageBox::critical(this, tr("Export Mapping Report"),
                              tr("The mapping report could not be written to %1: %2")
                                  .arg(QDir::toNativeSeparators(path), error));
        return false;
    }
    statusBar()->showMessage(tr("Mapping report written to %1").arg(QDir::toNativeSeparators(path)), 5000);
    return true;
}

void HostWindow::setEditMode(bool on)
{
    if (on == m_editMode || m_saveLocked) {
        m_editModeAction->setChecked(m_editMode);
        return;
    }
    if (!m_control) {
        m_editMode = on;
    } else if (!on) {
        m_control->setEdit(false);
        m_editMode = false;
    } else {
        // The control never unlocks once locked: rebuild it from the document
        // as it stands, keeping the saved baseline so unsaved work stays marked.
        const QString text = m_control->MappingObjectXML();
        createControl(text, true);
    }
    m_editModeAction->setChecked(m_editMode);
    updateTitle();
    updateActions();
}

void HostWindow::noteChange()
{
    if (!m_editMode)
        return;
    m_changed = true;
    updateTitle();
}

void HostWindow::rebuildRecentMenu()
{
    m_recentMenu->clear();
    const QStringList files = m_document.recentFiles();
    for (int i = 0; i < files.size(); ++i) {
        QAction* action = m_recentMenu->addAction(
            QStringLiteral("&%1 %2").arg(i + 1).arg(QDir::toNativeSeparators(files.at(i))), this,
            &HostWindow::openRecent);
        action->setData(files.at(i));
    }
    m_recentMenu->addSeparator();
    QAction* clear = m_recentMenu->addAction(tr("&Clear Menu"), this, [this] {
        m_document.clearRecentFiles();
        rebuildRecentMenu();
    });
    clear->setEnabled(!files.isEmpty());
    m_recentMenu->setEnabled(!files.isEmpty());
}

void HostWindow::openWithDialog()
{
    if (!maybeSave())
        return;
    const QString start =
        m_document.path().isEmpty() ? QDir::homePath() : QFileInfo(m_document.path()).absolutePath();
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Mapping Object"), start,
                                                      tr("Mapping objects (*.xml);;All files (*)"));
    if (!path.isEmpty())
        openFile(path);
}

void HostWindow::openRecent()
{
    auto* action = qobject_cast<QAction*>(sender());
    if (!action || !maybeSave())
        return;
    const QString path = action->data().toString();
    if (!QFileInfo::exists(path)) {
        QMessageBox::warning(this, tr("Open Recent"),
                             tr("%1 no longer exists.").arg(QDir::toNativeSeparators(path)));
        m_document.forgetRecentFile(path);
        rebuildRecentMenu();
        return;
    }
    openFile(path);
}

void HostWindow::chooseExternalEditor()
{
    bool ok = false;
    const QString path = QInputDialog::getText(
        this, tr("External Editor"), tr("Program that edits scripts (empty: the control's default):"),
        QLineEdit::Normal, m_externalEditor, &ok);
    if (!ok)
        return;
    m_externalEditor = path.trimmed();
    QSettings().setValue(externalEditorKey(), m_externalEditor);
    if (m_control && !m_externalEditor.isEmpty())
        m_control->setEditor(m_externalEditor);
}

void HostWindow::updateTitle()
{
    const QString name = m_document.displayName();
    QString title = name.isEmpty() ? tr("Fieldbridge") : name + QStringLiteral("[*] - ") + tr("Fieldbridge");
    if (!m_editMode)
        title += u' ' + tr("(read-only)");
    setWindowTitle(title);
    setWindowModified(m_changed);
    if (m_modeLabel) {
        QString mode = m_editMode ? tr("Edit mode") : tr("View mode (read-only)");
        if (m_saveLocked)
            mode += QStringLiteral(" - ") + tr("saving waits for the Functions / Variables panel");
        m_modeLabel->setText(mode);
    }
}

void HostWindow::updateActions()
{
    const bool hasDocument = !m_control.isNull();
    m_saveAction->setEnabled(hasDocument && !m_saveLocked);
    m_saveAsAction->setEnabled(hasDocument && !m_saveLocked);
    m_revertAction->setEnabled(hasDocument && !m_saveLocked);
    m_exportAction->setEnabled(hasDocument);
    m_editModeAction->setEnabled(!m_saveLocked);
    m_editModeAction->setChecked(m_editMode);
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}

bool HostWindow::eventFilter(QObject* watched, QEvent* event)
{
    // Typing into one of the control's editable boxes counts as a change.
    if (event->type() == QEvent::KeyPress && m_control && m_editMode && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        if (widget == m_control || m_control->isAncestorOf(widget)) {
            const auto* key = static_cast<QKeyEvent*>(event);
            const bool edits = key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace ||
                               key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter ||
                               (!key->text().isEmpty() && key->text().at(0).isPrint() &&
                                !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)));
            if (edits && !widget->property("readOnly").toBool())
                QTimer::singleShot(0, this, &HostWindow::noteChange);
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

// ------------------------------------------------------------ host answers

void HostWindow::answerSourceTables(const QString& sourceTables)
{
    SourceTablesDialog dialog(m_document.catalogue(), sourceTables, m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString chosen = dialog.chosenTables();
    if (chosen == sourceTables)
        return;
    m_control->setSourceTables(chosen);
    noteChange();
}

// The condition, main-query and rule builders: the dialog edits with LF
// breaks. The control decodes the precondition's answer itself; the main
// query and a rule are handed over as the control's boxes hold text, with
// CR LF breaks.
void HostWindow::answerScript(ScriptBuilderDialog::Kind kind, const QString& script, const QString& tables)
{
    ScriptBuilderDialog dialog(kind, script, MappingFile::tablesNamedIn(m_document.catalogue(), tables),
                               m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString text = dialog.script();
    if (text == fb::LfText(script))
        return;
    switch (kind) {
    case ScriptBuilderDialog::Kind::Condition:
        m_control->setPreCondition(text);
        break;
    case ScriptBuilderDialog::Kind::Query:
        m_control->setMainQuery(fb::CrLfText(text));
        break;
    case ScriptBuilderDialog::Kind::Function:
        m_control->setFieldMapping(fb::CrLfText(text));
        break;
    }
    noteChange();
}

void HostWindow::answerFunctionalText(const QString& docType, int textNumber, const QString& key1,
                                      const QString& key2)
{
    bool ok = false;
    const int number = QInputDialog::getInt(
        this, tr("Documentation Text"),
        tr("Number of the documentation text (%1 %2 %3):").arg(docType, key1, key2).trimmed(), textNumber, 0,
        std::numeric_limits<int>::max(), 1, &ok);
    if (!ok || !m_editMode || !m_control || number == textNumber)
        return;
    m_control->SetTextNumber(docType, number, key1, key2);
    noteChange();
}

void HostWindow::lockSave(bool locked)
{
    m_saveLocked = locked;
    updateActions();
    updateTitle();
}
