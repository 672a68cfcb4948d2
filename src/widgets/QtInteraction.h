#pragma once

#include "core/document/Interaction.h"

#include <QPointer>

class QWidget;

namespace fb {

// The control's side of the message seam: real modal boxes and dialogs,
// shown with exec() so that they block until answered.
class QtInteraction : public Interaction {
public:
    explicit QtInteraction(QWidget* owner) : m_owner(owner) {}

    MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon,
                     const QString& title = QString()) override;
    QString InputBox(const QString& prompt, const QString& title,
                     const QString& defaultText = QString()) override;
    QString EditDocText(const QString& title, const QString& text, bool editable) override;
    QString ChooseTargetTable(qint16 dumpNumber, const QStringList& tables, const QString& preset) override;
    QList<AcceptedSuggestion> ReviewSuggestions(const QString& title, const QList<SuggestionRow>& rows,
                                                double threshold) override;

private:
    QPointer<QWidget> m_owner;
};

} // namespace fb
