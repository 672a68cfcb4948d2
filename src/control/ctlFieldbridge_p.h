#pragma once

#include "ControlState.h"
#include "rules/DumpRules.h"
#include "scripts/QueryScripts.h"

#include <QObject>
#include <QPointer>

class QTabWidget;

// The private parts of the control: the shared state, the behaviour of the
// two tabs, and the shell (start-up, ShowControl, tabs, edit mode, focus,
// layout and the Alt shortcuts).
class ctlFieldbridgePrivate : public QObject {
    Q_OBJECT
public:
    explicit ctlFieldbridgePrivate(ctlFieldbridge* q);
    ~ctlFieldbridgePrivate() override;

    void StartUp();
    void ShowControl();
    void EnableEditing();
    void LayoutPanes();
    void TabChanged(int index);
    QString ReadMappingObject();
    // The control as a whole loses the focus: the visible main query is
    // stored, unless an external editor is open.
    void ControlLostFocus();

    bool eventFilter(QObject* watched, QEvent* event) override;

    ctlFieldbridge* q;
    fb::ControlState s;
    fb::QueryScripts scripts;
    fb::DumpRules dumps;
    int previousTab = 0;

private:
    void focusChanged(QWidget* old, QWidget* now);
    // The handler of the Alt shortcuts; true when the key was one of them.
    bool handleShortcut(int key, Qt::KeyboardModifiers modifiers, bool act);
    // Which of the watched widgets (or their children) w belongs to.
    QWidget* owningBox(QWidget* w) const;
};
