#pragma once

#include "HostDocument.h"
#include "ScriptBuilderDialog.h"
#include "core/report/Report.h"

#include <QMainWindow>
#include <ctlFieldbridge.h>

class QUndoGroup;
#include <QPointer>

class QAction;
class QLabel;
class QMenu;

// fieldbridge-host's main window: its menus and actions, an embedded
// ctlFieldbridge fed from the open HostDocument, and the host's answers to
// the control's events.
//
// The "*" in the title is raised as soon as the host answers an event with a
// change or the user types into the control or presses one of its editing
// commands; comparing the control's text with the document's baseline
// settles it whenever the host has to decide (save, close, open, revert).
class HostWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit HostWindow(QWidget* parent = nullptr);
    ~HostWindow() override;

    bool openFile(const QString& path);
    bool openSample();

    bool save();
    bool saveAs();
    bool saveTo(const QString& path);
    // File > Export Mapping Report: asks for a file; its suffix chooses the
    // format, else the chosen filter does and adds its suffix.
    bool exportReport();
    // The mapping report of the document the control hands back,
    // written in one step; a failure is shown in a message box.
    bool exportReportTo(const QString& path, fb::ReportFormat format);

    // Back to the document as loaded or last saved, in a fresh control,
    // once the user agrees to discard the changes.
    void revert();

    // Edit mode is one-way inside the control: leaving it locks the control;
    // returning to it builds a fresh control from the current document.
    void setEditMode(bool on);
    bool editMode() const { return m_editMode; }
    bool saveLocked() const { return m_saveLocked; }

    // Compares the control's document with the last loaded or saved one.
    bool isModified();

    ctlFieldbridge* control() const { return m_control; }
    const HostDocument& document() const { return m_document; }

    // Unattended (rendering from the command line): problems go to standard
    // error instead of message boxes, and nothing waits for a person.
    void setUnattended(bool on) { m_unattended = on; }

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createActions();
    void createEditMenu();
    void findField();
    // Lists what a save would remove with content and asks; true to go on.
    bool confirmRemovals();
    void reportProblem(const QString& title, const QString& text);
    void showDocument(const QString& text);
    void createControl(const QString& text, bool edit);
    bool maybeSave();
    QString suggestedPath(const QString& folder, const QString& suffix) const;
    static QString chosenPath(const QString& chosen, const QString& folder);
    void noteChange();
    void updateTitle();
    void updateActions();
    void rebuildRecentMenu();
    void chooseExternalEditor();

    void openWithDialog();
    void openRecent();

    void answerSourceTables(const QString& sourceTables);
    void answerScript(ScriptBuilderDialog::Kind kind, const QString& script, const QString& tables);
    void answerFunctionalText(const QString& docType, int textNumber, const QString& key1,
                              const QString& key2);
    void lockSave(bool locked);

    HostDocument m_document;
    QPointer<ctlFieldbridge> m_control;
    QString m_externalEditor;
    bool m_editMode = true;
    bool m_saveLocked = false;
    bool m_changed = false;
    bool m_unattended = false;

    QAction* m_saveAction = nullptr;
    QAction* m_saveAsAction = nullptr;
    QAction* m_revertAction = nullptr;
    QAction* m_exportAction = nullptr;
    QAction* m_editModeAction = nullptr;
    QUndoGroup* m_undoGroup = nullptr;
    // Work the control removed when the document was first read (no script
    // references it); the file still holds it until the next save.
    QStringList m_removedAtLoad;
    QMenu* m_recentMenu = nullptr;
    QLabel* m_modeLabel = nullptr;
};
