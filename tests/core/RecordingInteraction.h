#pragma once

#include "core/document/Interaction.h"

#include <QList>
#include <QString>

#include <deque>

namespace fb::test {

// An Interaction for tests: it writes down every box and notification the
// core raises, in order, and answers message boxes and input boxes from
// queues that the test fills beforehand. With an empty queue a message box is
// answered with its first button and an input box as if cancelled ("").
class RecordingInteraction : public Interaction {
public:
    struct Box {
        QString text;
        MsgButtons buttons = MsgButtons::Ok;
        MsgIcon icon = MsgIcon::None;
        QString title;
    };
    struct Input {
        QString prompt;
        QString title;
        QString defaultText;
    };
    enum class Event { MsgBox, InputBox, FocusPreconditionEditor, MigrateTablesChanged };

    MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon, const QString& title) override
    {
        boxes.append({prompt, buttons, icon, title});
        events.append(Event::MsgBox);
        if (!answers.empty()) {
            const MsgAnswer a = answers.front();
            answers.pop_front();
            return a;
        }
        return FirstButton(buttons);
    }

    QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override
    {
        inputs.append({prompt, title, defaultText});
        events.append(Event::InputBox);
        if (inputAnswers.empty())
            return QString();
        const QString a = inputAnswers.front();
        inputAnswers.pop_front();
        return a;
    }

    void FocusPreconditionEditor() override
    {
        ++focusPreconditionCalls;
        events.append(Event::FocusPreconditionEditor);
    }

    void MigrateTablesChanged() override
    {
        ++migrateTablesChangedCalls;
        events.append(Event::MigrateTablesChanged);
    }

    void clear()
    {
        boxes.clear();
        inputs.clear();
        events.clear();
        focusPreconditionCalls = 0;
        migrateTablesChangedCalls = 0;
    }

    // What was raised.
    QList<Box> boxes;
    QList<Input> inputs;
    QList<Event> events;
    int focusPreconditionCalls = 0;
    int migrateTablesChangedCalls = 0;

    // What to answer, first in first out.
    std::deque<MsgAnswer> answers;
    std::deque<QString> inputAnswers;
};

} // namespace fb::test
