#pragma once

#include "ModalAnswerer.h"

#include <QStringList>

class QWidget;

// Pictures of a host window for the command line, taken unattended: from
// construction on, every modal box that opens is answered (see
// ModalAnswerer), so nothing waits for a person.
class ScreenshotRenderer {
public:
    explicit ScreenshotRenderer(QWidget* window);

    // Renders the window at about 1280x800 with the control's "Mapping
    // Object" tab and then its "Define Dumps" tab current, into
    // DIR/mapping-object.png and DIR/define-dumps.png, then the review of
    // the shown dump's suggestions into DIR/suggestions.png. Returns the
    // written paths; *notes tells what went wrong and which boxes were
    // answered.
    QStringList render(const QString& dir, QStringList* notes);

private:
    void renderSuggestions(const QString& dir, QStringList* written, QStringList* problems);

    QWidget* m_window;
    ModalAnswerer m_answerer;
};
