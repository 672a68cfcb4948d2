#pragma once

#include "QtInteraction.h"
#include "core/document/MappingDocument.h"
#include "forms/Module1.h"
#include "core/scripts/ScriptScanner.h"

#include "ctlFieldbridge.h"

#include <QString>

class QTabWidget;

namespace fb {

class MappingObjectPage;
class DefineDumpsPage;

// What the parts of one control share: the document and its scanner, the
// message seam, the flags of the control and the two pages.
struct ControlState {
    explicit ControlState(ctlFieldbridge* owner) : control(owner), ui(owner) {}

    ctlFieldbridge* control;
    MappingDocument doc;
    QtInteraction ui;
    ScriptScanner scanner{doc, ui};
    Module1 module;

    bool edit = false;          // the edit flag (Edit)
    bool multiTarget = false;   // the document has an MSCRIPT section
    bool editorBusy = false;    // an external editor is open
    // Switching tabs without the entry steps of the new tab (a store that
    // sends the user back to "Define Dumps" must not reload the grid first).
    bool quietTabSwitch = false;
    QString editorPath;         // Editor, as assigned
    QString targetTableAssigned;
    QString preConditionAssigned;
    QString mainQueryTable;     // the migrate table whose query the main query box shows

    QTabWidget* MainTab = nullptr;
    MappingObjectPage* mo = nullptr;
    DefineDumpsPage* dd = nullptr;
};

} // namespace fb
