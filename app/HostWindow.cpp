#include "HostWindow.h"

#include "ModalAnswerer.h"
#include "ScriptBuilderDialog.h"
#include "SourceTablesDialog.h"

#include "core/document/LineBreaks.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QSaveFile>
#include <QSettings>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTextStream>
#include <QTimer>

#include <limits>

namespace {

const int MaxRecentFiles = 8;

QString recentFilesKey()
{
    return QStringLiteral("recentFiles");
}

QString externalEditorKey()
{
    return QStringLiteral("externalEditor");
}

// The control's buttons whose click changes the document.
const QStringList& editingCommands()
{
    static const QStringList names{
        QStringLiteral("CmdMap"),       QStringLiteral("CmdGuess"),     QStringLiteral("CmdCopyDump"),
        QStringLiteral("CmdChange"),    QStringLiteral("CmdOk"),        QStringLiteral("CmdEditRule"),
        QStringLiteral("CmdPreEditor"), QStringLiteral("CmdMqEditor"),  QStringLiteral("CmdFuncEditor"),
        QStringLiteral("CmdPreDoc"),    QStringLiteral("CmdMQDoc"),     QStringLiteral("CmdDumpText"),
    };
    return names;
}

void settle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// A click on a tab as a person makes it, so the control sees what it sees
// when the user switches tabs.
void clickTab(QTabWidget* tabs, int index)
{
    QTabBar* bar = tabs->tabBar();
    const QPoint centre = bar->tabRect(index).center();
    const QPoint global = bar->mapToGlobal(centre);
    QMouseEvent press(QEvent::MouseButtonPress, centre, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(bar, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, centre, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(bar, &release);
}

} // namespace

HostWindow::HostWindow(QWidget* parent)
    : QMainWindow(parent)
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

QString HostWindow::sampleFileName()
{
    return QStringLiteral("klmno001.xml");
}

void HostWindow::createActions()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));

    m_openAction = fileMenu->addAction(tr("&Open..."), this, &HostWindow::openWithDialog);
    m_openAction->setObjectName(QStringLiteral("actionOpen"));
    m_openAction->setShortcut(QKeySequence::Open);

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

    fileMenu->addSeparator();
    QAction* quit = fileMenu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence::Quit);

    QMenu* viewMenu = menuBar()->addMenu(tr("&View"));
    m_editModeAction = viewMenu->addAction(tr("&Edit Mode"));
    m_editModeAction->setObjectName(QStringLiteral("actionEditMode"));
    m_editModeAction->setCheckable(true);
    m_editModeAction->setChecked(m_editMode);
    m_editModeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    connect(m_editModeAction, &QAction::triggered, this, &HostWindow::setEditMode);

    QMenu* toolsMenu = menuBar()->addMenu(tr("&Tools"));
    QAction* editor = toolsMenu->addAction(tr("External &Editor..."), this, &HostWindow::chooseExternalEditor);
    editor->setObjectName(QStringLiteral("actionExternalEditor"));

    QMenu* helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->addAction(tr("&About"), this, [this] {
        QMessageBox::about(this, tr("About Fieldbridge"),
                           tr("<p><b>Fieldbridge host</b></p><p>Edits the mapping objects of a data migration: "
                              "source tables, precondition, main queries, functions and the rules of every "
                              "dump.</p>"));
    });
}

void HostWindow::setUnattended(bool on)
{
    m_unattended = on;
    delete m_answerer;
    m_answerer = on ? new ModalAnswerer(this) : nullptr;
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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        reportProblem(tr("Open Mapping Object"),
                      tr("Cannot read %1:\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }
    const MappingFile::Decoded decoded = MappingFile::decode(file.readAll());
    if (!loadDocument(decoded.text, QFileInfo(path).absoluteFilePath(), QFileInfo(path).fileName()))
        return false;
    if (decoded.declarationRemoved)
        statusBar()->showMessage(tr("The XML declaration was left out: the mapping object must begin with its "
                                    "root element. Saving writes it without one."),
                                 10000);
    addRecentFile(m_filePath);
    return true;
}

bool HostWindow::openSample()
{
    const QString installed = QDir(QCoreApplication::applicationDirPath())
                                  .filePath(QString::fromUtf8(FIELDBRIDGE_EXAMPLES_FROM_BIN) + u'/' +
                                            sampleFileName());
    QFile file(QFileInfo::exists(installed) ? installed : QStringLiteral(":/samples/") + sampleFileName());
    if (!file.open(QIODevice::ReadOnly)) {
        reportProblem(tr("Open Sample"), tr("The sample mapping object is missing."));
        return false;
    }
    return loadDocument(MappingFile::decode(file.readAll()).text, QString(),
                        tr("%1 (sample)").arg(sampleFileName()));
}

bool HostWindow::loadDocument(const QString& text, const QString& path, const QString& displayName)
{
    MappingFile::Catalogue catalogue;
    QString error;
    if (!MappingFile::readCatalogue(text, &catalogue, &error)) {
        reportProblem(tr("Open Mapping Object"),
                      tr("%1 is not a well-formed mapping object:\n%2").arg(displayName, error));
        return false;
    }
    m_catalogue = catalogue;
    m_filePath = path;
    m_displayName = displayName;
    createControl(text, m_editMode);
    // The baseline for "unsaved": the document as the control hands it back
    // right after loading, before the user touched anything.
    m_cleanText = m_control->MappingObjectXML();
    m_changed = false;
    if (catalogue.rootName.size() != 8)
        statusBar()->showMessage(tr("The root element \"%1\" is not 8 characters long: the control will not find "
                                    "the sections of this mapping object.")
                                     .arg(catalogue.rootName),
                                 10000);
    updateTitle();
    updateActions();
    return true;
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
    connect(control, &ctlFieldbridge::ShowConditionBuilderPopUp, this, &HostWindow::answerConditionBuilder);
    connect(control, &ctlFieldbridge::ShowQueryBuilderPopUp, this, &HostWindow::answerQueryBuilder);
    connect(control, &ctlFieldbridge::ShowFunctionalTextPopUp, this, &HostWindow::answerFunctionalText);
    connect(control, &ctlFieldbridge::ShowFunctionBuilderPopUp, this, &HostWindow::answerFunctionBuilder);
    connect(control, &ctlFieldbridge::SaveDoneDisabled, this, &HostWindow::lockSave);
    connect(control, &ctlFieldbridge::SaveDoneEnabled, this, &HostWindow::unlockSave);

    // The order a host keeps: edit mode first (it is one-way), then the
    // editor, the table name, the document, and only then ShowControl.
    control->setEdit(edit);
    if (!m_externalEditor.isEmpty())
        control->setEditor(m_externalEditor);
    control->setTargetTable(m_catalogue.rootName);
    control->setMappingObjectXML(text);
    control->ShowControl();

    for (const QString& name : editingCommands()) {
        if (auto* button = control->findChild<QAbstractButton*>(name))
            connect(button, &QAbstractButton::clicked, this, &HostWindow::noteChange);
    }

    m_control = control;
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
    const bool modified = m_control->MappingObjectXML() != m_cleanText;
    m_changed = modified;
    updateTitle();
    return modified;
}

bool HostWindow::maybeSave()
{
    if (!isModified())
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Fieldbridge"),
                    tr("The mapping object %1 has unsaved changes.").arg(m_displayName), QMessageBox::NoButton,
                    this);
    box.setObjectName(QStringLiteral("UnsavedChangesBox"));
    if (m_saveLocked) {
        box.setInformativeText(tr("Close the Functions or Variables panel with OK or Cancel to be able to save. "
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
    if (m_filePath.isEmpty())
        return saveAs();
    return saveTo(m_filePath);
}

bool HostWindow::saveAs()
{
    if (!m_control || m_saveLocked)
        return false;
    QString suggestion = m_filePath;
    if (suggestion.isEmpty())
        suggestion = QDir::home().filePath(m_catalogue.rootName.trimmed() + QStringLiteral(".xml"));
    const QString path = QFileDialog::getSaveFileName(this, tr("Save Mapping Object"), suggestion,
                                                      tr("Mapping objects (*.xml);;All files (*)"));
    if (path.isEmpty())
        return false;
    return saveTo(path);
}

bool HostWindow::saveTo(const QString& path)
{
    if (!m_control || m_saveLocked)
        return false;
    const QString text = m_control->MappingObjectXML();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        QMessageBox::critical(this, tr("Save Mapping Object"),
                              tr("Cannot write %1:\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }
    m_cleanText = text;
    m_changed = false;
    m_filePath = QFileInfo(path).absoluteFilePath();
    m_displayName = QFileInfo(path).fileName();
    addRecentFile(m_filePath);
    statusBar()->showMessage(tr("Saved %1").arg(QDir::toNativeSeparators(m_filePath)), 5000);
    updateTitle();
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

QStringList HostWindow::recentFiles() const
{
    return QSettings().value(recentFilesKey()).toStringList();
}

void HostWindow::addRecentFile(const QString& path)
{
    QStringList files = recentFiles();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > MaxRecentFiles)
        files.removeLast();
    QSettings().setValue(recentFilesKey(), files);
    rebuildRecentMenu();
}

void HostWindow::rebuildRecentMenu()
{
    m_recentMenu->clear();
    const QStringList files = recentFiles();
    for (int i = 0; i < files.size(); ++i) {
        QAction* action = m_recentMenu->addAction(
            QStringLiteral("&%1 %2").arg(i + 1).arg(QDir::toNativeSeparators(files.at(i))), this,
            &HostWindow::openRecent);
        action->setData(files.at(i));
    }
    m_recentMenu->addSeparator();
    QAction* clear = m_recentMenu->addAction(tr("&Clear Menu"), this, [this] {
        QSettings().remove(recentFilesKey());
        rebuildRecentMenu();
    });
    clear->setEnabled(!files.isEmpty());
    m_recentMenu->setEnabled(!files.isEmpty());
}

void HostWindow::openWithDialog()
{
    if (!maybeSave())
        return;
    const QString start = m_filePath.isEmpty() ? QDir::homePath() : QFileInfo(m_filePath).absolutePath();
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
        QStringList files = recentFiles();
        files.removeAll(path);
        QSettings().setValue(recentFilesKey(), files);
        rebuildRecentMenu();
        return;
    }
    openFile(path);
}

void HostWindow::chooseExternalEditor()
{
    bool ok = false;
    const QString path = QInputDialog::getText(this, tr("External Editor"),
                                               tr("Program that edits scripts (empty: the control's default):"),
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
    QString title = m_displayName.isEmpty() ? tr("Fieldbridge") : m_displayName + QStringLiteral("[*] - ") + tr("Fieldbridge");
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
    SourceTablesDialog dialog(m_catalogue, sourceTables, m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString chosen = dialog.chosenTables();
    if (chosen == sourceTables)
        return;
    m_control->setSourceTables(chosen);
    noteChange();
}

void HostWindow::answerConditionBuilder(const QString& condition, const QString& sourceTables)
{
    ScriptBuilderDialog dialog(ScriptBuilderDialog::Kind::Condition, condition,
                               MappingFile::tablesNamedIn(m_catalogue, sourceTables), m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString text = dialog.script();
    if (text == fb::LfText(condition))
        return;
    // The control decodes this text and turns each line feed into CR LF.
    m_control->setPreCondition(text);
    noteChange();
}

void HostWindow::answerQueryBuilder(const QString& query, const QString& migrateSource)
{
    ScriptBuilderDialog dialog(ScriptBuilderDialog::Kind::Query, query,
                               MappingFile::tablesNamedIn(m_catalogue, migrateSource), m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString text = dialog.script();
    if (text == fb::LfText(query))
        return;
    m_control->setMainQuery(fb::CrLfText(text));
    noteChange();
}

void HostWindow::answerFunctionBuilder(const QString& rule, const QString& sourceTables)
{
    ScriptBuilderDialog dialog(ScriptBuilderDialog::Kind::Function, rule,
                               MappingFile::tablesNamedIn(m_catalogue, sourceTables), m_editMode, this);
    if (dialog.exec() != QDialog::Accepted || !m_editMode || !m_control)
        return;
    const QString text = dialog.script();
    if (text == fb::LfText(rule))
        return;
    // A rule of several lines must reach the grid with CR LF breaks.
    m_control->setFieldMapping(fb::CrLfText(text));
    noteChange();
}

void HostWindow::answerFunctionalText(const QString& docType, int textNumber, const QString& key1,
                                      const QString& key2)
{
    bool ok = false;
    const int number = QInputDialog::getInt(this, tr("Documentation Text"),
                                            tr("Number of the documentation text (%1 %2 %3):")
                                                .arg(docType, key1, key2)
                                                .trimmed(),
                                            textNumber, 0, std::numeric_limits<int>::max(), 1, &ok);
    if (!ok || !m_editMode || !m_control || number == textNumber)
        return;
    m_control->SetTextNumber(docType, number, key1, key2);
    noteChange();
}

void HostWindow::lockSave()
{
    m_saveLocked = true;
    updateActions();
    updateTitle();
}

void HostWindow::unlockSave()
{
    m_saveLocked = false;
    updateActions();
    updateTitle();
}

// ---------------------------------------------------------------- pictures

QStringList HostWindow::renderScreenshots(const QString& dir, QStringList* notes)
{
    QStringList written;
    setUnattended(true);
    if (!QDir().mkpath(dir)) {
        if (notes)
            notes->append(tr("cannot create %1").arg(dir));
        return written;
    }
    resize(1280, 800);
    show();
    settle(200);

    auto* tabs = m_control ? m_control->findChild<QTabWidget*>(QStringLiteral("MainTab")) : nullptr;
    if (!tabs && notes)
        notes->append(tr("the control has no tab strip \"MainTab\""));

    const struct {
        int tab;
        QString file;
    } pages[] = {{0, QStringLiteral("mapping-object.png")}, {1, QStringLiteral("define-dumps.png")}};
    for (const auto& page : pages) {
        if (tabs && tabs->currentIndex() != page.tab) {
            clickTab(tabs, page.tab);
            settle(300);
            if (tabs->currentIndex() != page.tab && notes)
                notes->append(tr("tab %1 did not become current").arg(page.tab));
        }
        settle(100);
        const QString path = QDir(dir).absoluteFilePath(page.file);
        if (grab().save(path))
            written.append(path);
        else if (notes)
            notes->append(tr("cannot write %1").arg(path));
    }
    if (notes && m_answerer) {
        for (const QString& text : m_answerer->answered())
            notes->append(tr("answered a box: %1").arg(text));
    }
    return written;
}
