#pragma once

#include "MappingFile.h"

#include <ctlFieldbridge.h>

#include <QMainWindow>
#include <QPointer>
#include <QStringList>

class QAction;
class QLabel;
class QMenu;
class ModalAnswerer;

// fieldbridge-host's main window: opens a mapping object from a file, hands
// it to an embedded ctlFieldbridge, answers the control's events with its own
// dialogs and writes the edited document back.
//
// Unsaved changes are decided by comparing the document the control returns
// now with the one it returned when the file was loaded or last saved. The
// "*" in the title is raised as soon as the host answers an event with a
// change or the user types into the control or presses one of its editing
// commands; the comparison settles it whenever the host has to decide (save,
// close, open, mode switch).
class HostWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit HostWindow(QWidget* parent = nullptr);
    ~HostWindow() override;

    bool openFile(const QString& path);
    // The bundled sample mapping object: the installed copy when there is one,
    // else the one built into the program. It opens untitled.
    bool openSample();
    bool loadDocument(const QString& text, const QString& path, const QString& displayName);

    bool save();
    bool saveAs();
    bool saveTo(const QString& path);

    // Edit mode is one-way inside the control: leaving it locks the control;
    // returning to it builds a fresh control from the current document.
    void setEditMode(bool on);
    bool editMode() const { return m_editMode; }
    bool saveLocked() const { return m_saveLocked; }

    // Compares the control's document with the last loaded or saved one.
    bool isModified();

    ctlFieldbridge* control() const { return m_control; }
    QString currentFile() const { return m_filePath; }
    QStringList recentFiles() const;

    // Renders the window at about 1280x800 with the "Mapping Object" tab and
    // then the "Define Dumps" tab current, into DIR/mapping-object.png and
    // DIR/define-dumps.png, unattended: modal boxes that appear are answered.
    // Returns the written paths; *notes tells what went wrong or was answered.
    QStringList renderScreenshots(const QString& dir, QStringList* notes);

    // Unattended (rendering from the command line): problems go to standard
    // error instead of message boxes, and nothing waits for a person.
    // Boxes that the control raises meanwhile are answered automatically.
    void setUnattended(bool on);

    static QString sampleFileName();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createActions();
    void reportProblem(const QString& title, const QString& text);
    void createControl(const QString& text, bool edit);
    bool maybeSave();
    void noteChange();
    void updateTitle();
    void updateActions();
    void addRecentFile(const QString& path);
    void rebuildRecentMenu();
    void chooseExternalEditor();

    void openWithDialog();
    void openRecent();

    void answerSourceTables(const QString& sourceTables);
    void answerConditionBuilder(const QString& condition, const QString& sourceTables);
    void answerQueryBuilder(const QString& query, const QString& migrateSource);
    void answerFunctionalText(const QString& docType, int textNumber, const QString& key1, const QString& key2);
    void answerFunctionBuilder(const QString& rule, const QString& sourceTables);
    void lockSave();
    void unlockSave();

    QPointer<ctlFieldbridge> m_control;
    MappingFile::Catalogue m_catalogue;
    QString m_filePath;
    QString m_displayName;
    QString m_cleanText;
    QString m_externalEditor;
    bool m_editMode = true;
    bool m_saveLocked = false;
    bool m_changed = false;
    bool m_unattended = false;
    ModalAnswerer* m_answerer = nullptr;

    QAction* m_openAction = nullptr;
    QAction* m_saveAction = nullptr;
    QAction* m_saveAsAction = nullptr;
    QAction* m_editModeAction = nullptr;
    QMenu* m_recentMenu = nullptr;
    QLabel* m_modeLabel = nullptr;
};
