#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace fb {

// Message box and input box kinds, as the control's messages are designed.
enum class MsgIcon { None, Critical, Exclamation, Information, Question };
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Cancel, Yes, No };

// A source field offered for a target field, with its score in [0,1] and
// the reasons for it.
struct SuggestionCandidate {
    QString source; // table.field as the source list shows it
    double score = 0;
    QStringList reasons;
};
// A target field of the dump under review: its grid row, its name, its rule
// now, and its candidates, best first.
struct SuggestionRow {
    int row = -1;
    QString field;
    QString currentRule;
    QList<SuggestionCandidate> candidates;
};
// A suggestion taken: the grid row and the source field for it.
struct AcceptedSuggestion {
    int row = -1;
    QString source;
    bool operator==(const AcceptedSuggestion&) const = default;
};

// The one seam through which the pure core talks to the person at the screen.
// The control implements it with real modal boxes; tests record what was
// asked and answer from a script. A title that is "" means the box has no
// title of its own.
class Interaction {
public:
    virtual ~Interaction() = default;

    virtual MsgAnswer MsgBox(const QString& prompt, MsgButtons buttons, MsgIcon icon,
                             const QString& title = QString()) = 0;
    // Returns "" when the user cancels, as an input box does.
    virtual QString InputBox(const QString& prompt, const QString& title,
                             const QString& defaultText = QString()) = 0;
    // The documentation-text dialog, modal: the text is shown (locked unless
    // editable) under the title; the answer is the text to store when the
    // dialog closes (the text it was given when nothing is to be kept).
    virtual QString EditDocText(const QString& /*title*/, const QString& text, bool /*editable*/)
    {
        return text;
    }
    // The chooser of a dump's target table, modal: the table chosen, or the
    // preset when the dialog is cancelled.
    virtual QString ChooseTargetTable(qint16 /*dumpNumber*/, const QStringList& /*tables*/,
                                      const QString& preset)
    {
        return preset;
    }
    // The review of suggestions, modal: the rows whose best candidate scores
    // at least the threshold and that have no rule are offered ticked. The
    // answer is what the user took; nothing when cancelled.
    virtual QList<AcceptedSuggestion>
    ReviewSuggestions(const QString& /*title*/, const QList<SuggestionRow>& /*rows*/, double /*threshold*/)
    {
        return {};
    }
    // A "migrate" statement was refused: the precondition editor, where those
    // statements live, takes the focus.
    virtual void FocusPreconditionEditor() {}
    // The list of migrate tables has been worked out anew; views of it refill.
    virtual void MigrateTablesChanged() {}
};

// The answer of a box's first button.
inline MsgAnswer FirstButton(MsgButtons buttons)
{
    return buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel ? MsgAnswer::Yes
                                                                              : MsgAnswer::Ok;
}

// An Interaction that shows nothing and answers every box with its first
// button; for headless use.
class SilentInteraction : public Interaction {
public:
    MsgAnswer MsgBox(const QString&, MsgButtons buttons, MsgIcon, const QString&) override
    {
        return FirstButton(buttons);
    }
    QString InputBox(const QString&, const QString&, const QString&) override { return QString(); }
};

} // namespace fb
