#pragma once

#include <QGroupBox>

class QLabel;
class QPushButton;
class QStandardItemModel;
class QToolButton;
class QTreeView;

namespace fb {

class ScriptEditor;

// The frame of the "Mapping Object" tab: source tables, migrate sources,
// precondition, main query, functions and variables, with their buttons.
// Widgets only; the behaviour lives in QueryScripts and the control.
class MappingObjectPage : public QGroupBox {
    Q_OBJECT
public:
    explicit MappingObjectPage(QWidget* parent);

    // Lays the children out for the frame's current size.
    void LayoutChildren();
    // Enlarged: the main query covers the precondition's place.
    bool mainQueryEnlarged() const { return m_enlarged; }
    void setMainQueryEnlarged(bool enlarged);
    void SetResizeIcons(bool mainQueryEnlarged, bool preconditionEnlarged);
    // Shows the precondition and main query (as the enlarged flag arranges
    // them) or, with showScripts false, the Ok/Cancel group of the functions
    // and variables panel.
    void ShowArrangement(bool showScripts);
    // Start-up placing of the functions/variables boxes and the bottom row.
    void PlaceScriptBoxes();

    QLabel* lblSourceTables;
    QTreeView* lstSourceTables;
    QStandardItemModel* sourceTablesModel;
    QPushButton* CmdSelectSource;
    QLabel* lblMigrateSource;
    QTreeView* lstMigrateSource;
    QStandardItemModel* migrateSourceModel;
    QLabel* lblPreCondition;
    ScriptEditor* txtPreCondition;
    QPushButton* CmdBuildPre;
    QPushButton* CmdPreDoc;
    QPushButton* CmdPreEditor;
    QToolButton* PicPreResize;
    QLabel* lblMainQuery;
    ScriptEditor* txtMainQuery;
    QPushButton* cmdBuildMQ;
    QPushButton* CmdMQDoc;
    QPushButton* CmdMqEditor;
    QToolButton* PicMQResize;
    QPushButton* CmdFunction;
    QPushButton* CmdVariables;
    ScriptEditor* txtFunctions;
    ScriptEditor* txtVariables;
    QPushButton* CmdOk;
    QPushButton* CmdCancel;
    QPushButton* CmdFuncEditor;

private:
    QList<QWidget*> PreconditionGroup() const;
    QList<QWidget*> MainQueryGroup() const;
    QList<QWidget*> OkCancelGroup() const;

    bool m_enlarged = false;
};

} // namespace fb
