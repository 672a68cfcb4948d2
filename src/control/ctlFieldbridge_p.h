#pragma once

#include "core/session/MappingSession.h"
#include "widgets/QtInteraction.h"

#include <QObject>

class QKeyEvent;

class QTabWidget;
class QUndoStack;
class ctlFieldbridge;

namespace fb {
class MappingObjectView;
class DefineDumpsView;
} // namespace fb

// The private part of the control: the session and the two views on the tab
// strip. It lays the panes out, follows the focus between the control's
// parts and hands the Alt shortcuts to the session.
class ctlFieldbridgePrivate : public QObject {
    Q_OBJECT
public:
    explicit ctlFieldbridgePrivate(ctlFieldbridge* owner);
    ~ctlFieldbridgePrivate() override;

    void StartUp();
    void LayoutPanes();

    bool eventFilter(QObject* watched, QEvent* event) override;

    ctlFieldbridge* m_q;
    fb::QtInteraction m_ui;
    fb::MappingSession m_session;
    QTabWidget* m_mainTab = nullptr;
    fb::MappingObjectView* m_mappingObject = nullptr;
    fb::DefineDumpsView* m_defineDumps = nullptr;
    QUndoStack* m_undoStack = nullptr;

private:
    void showTabs();
    void focusChanged(QWidget* old, QWidget* now);
    void moveFocus(fb::MappingSession::Focus target);
    void keepUndoStackInStep();
    // The control's own keys (undo, redo, find); true when the key was one.
    bool controlKey(const QKeyEvent* key, bool act);
    bool m_showingTabs = false;
};
