#pragma once

#include "core/session/MappingSession.h"

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
// It shows the session's state and hands what the user does to the session.
class MappingObjectView : public QGroupBox {
    Q_OBJECT
public:
    MappingObjectView(MappingSession& session, QWidget* parent);

    // Lays the children out for the frame's current size.
    void LayoutChildren();
    // The widget that takes the focus for a target of the session, or null.
    QWidget* widgetFor(MappingSession::Focus target) const;
    // The box that a widget (or a part of it) belongs to, if any.
    std::optional<MappingSession::Box> boxOf(const QWidget* w) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectSession();
    void showBox(MappingSession::Box box);
    void showArrangement();
    void SetResizeIcons(bool mainQueryEnlarged, bool preconditionEnlarged);
    ScriptEditor* editorOf(MappingSession::Box box) const;
    QPushButton* buttonOf(MappingSession::Command command) const;
    QList<QWidget*> PreconditionGroup() const;
    QList<QWidget*> MainQueryGroup() const;
    QList<QWidget*> OkCancelGroup() const;

    MappingSession& m_session;
    bool m_showing = false; // putting the session's text into a box
    QLabel* m_lblSourceTables;
    QTreeView* m_lstSourceTables;
    QStandardItemModel* m_sourceTables;
    QPushButton* m_cmdSelectSource;
    QLabel* m_lblMigrateSource;
    QTreeView* m_lstMigrateSource;
    QStandardItemModel* m_migrateSources;
    QLabel* m_lblPreCondition;
    ScriptEditor* m_txtPreCondition;
    QPushButton* m_cmdBuildPre;
    QPushButton* m_cmdPreDoc;
    QPushButton* m_cmdPreEditor;
    QToolButton* m_picPreResize;
    QLabel* m_lblMainQuery;
    ScriptEditor* m_txtMainQuery;
    QPushButton* m_cmdBuildMQ;
    QPushButton* m_cmdMQDoc;
    QPushButton* m_cmdMqEditor;
    QToolButton* m_picMQResize;
    QPushButton* m_cmdFunction;
    QPushButton* m_cmdVariables;
    ScriptEditor* m_txtFunctions;
    ScriptEditor* m_txtVariables;
    QPushButton* m_cmdOk;
    QPushButton* m_cmdCancel;
    QPushButton* m_cmdFuncEditor;
};

} // namespace fb
