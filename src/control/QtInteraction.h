#pragma once

#include "core/document/Interaction.h"

#include <QPointer>

#include <functional>

class QWidget;

namespace fb {

// The control's side of the message seam: real modal boxes, shown with
// exec() so that they block until answered.
class QtInteraction : public Interaction {
public:
    explicit QtInteraction(QWidget* owner) : m_owner(owner) {}

    MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon,
                     const QString& title = QString()) override;
    QString InputBox(const QString& prompt, const QString& title,
                     const QString& defaultText = QString()) override;
    void FocusPreconditionEditor() override;
    void MigrateTablesChanged() override;

    std::function<void()> onFocusPrecondition;
    std::function<void()> onMigrateTablesChanged;

private:
    QPointer<QWidget> m_owner;
};

} // namespace fb
