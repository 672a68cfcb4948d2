#pragma once

#include "core/session/MappingSession.h"

#include <QGroupBox>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableView;
class QTreeView;

namespace fb {

class Workbench;

// The frame of the "Define Dumps" tab: dump selector, target table, the two
// field lists, the rules grid with its overlay box, and the commands. It
// shows the session's state and hands what the user does to the session.
class DefineDumpsView : public QGroupBox {
    Q_OBJECT
public:
    DefineDumpsView(MappingSession& session, QWidget* parent);

    void LayoutChildren();
    QWidget* widgetFor(MappingSession::Focus target) const;
    // The part of the tab a widget belongs to: the parts whose focus the
    // session follows.
    enum class Part { None, DumpSelector, Overlay, Grid, SourceFields };
    Part partOf(const QWidget* w) const;
    // Shows the source list's selected row (it just took the focus).
    void showSourceSelection();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectSession();
    void showDumps();
    void showTargetTables();
    void showGridCurrent(bool scrollToTopIfHidden);
    void showOverlay();
    QPushButton* buttonOf(MappingSession::Command command) const;
    // Rows of the lists as the views show them (narrowed) and as the session
    // counts them.
    QModelIndex shownGridIndex(int row, int column) const;
    int targetRowOf(const QModelIndex& shown) const;

    MappingSession& m_session;
    bool m_showing = false; // putting the session's state on the widgets
    QLabel* m_lblDump;
    QComboBox* m_cmbDump;
    QPushButton* m_command1;
    QLabel* m_lblTargetTable;
    QComboBox* m_cmbTargetTable;
    QLabel* m_lblTargetTableName;
    QPushButton* m_cmdChange;
    QLabel* m_lblSourceFields;
    QTreeView* m_lstSourceFields;
    QLabel* m_lblTargetFields;
    QTreeView* m_lstTargetFields;
    QPushButton* m_cmdMap;
    QPushButton* m_cmdGuess;
    QPushButton* m_cmdCopyDump;
    QPushButton* m_cmdEditRule;
    QPushButton* m_cmdDumpText;
    QPushButton* m_cmdFuncBuild;
    QPushButton* m_cmdSuggest;
    QGroupBox* m_details;
    QTableView* m_rulesGrid;
    QPlainTextEdit* m_txtgrdline;
    Workbench* m_workbench;

public:
    Workbench* workbench() const { return m_workbench; }
};

} // namespace fb
