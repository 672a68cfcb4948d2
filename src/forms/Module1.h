#pragma once

#include <QString>

namespace fb {

// The values that the control and FrmTxtDoc exchange. The control keeps one
// instance (its edit flag and whether a dialog is open); each dialog works
// on a copy filled for the one use.
struct Module1 {
    bool DocTextMode = true;       // true: edit a text; false: choose a target table
    QString DocText;               // in: the text to show; out: the text to store
    bool DocTextEditable = false;  // copy of the control's edit flag
    qint16 DialogDumpNumber = 0;   // the dump being bound (target-table mode)
    QString TableList;             // target tables, each followed by ";"
    QString ChosenTable;           // in: the preset; out: the table chosen
    QString DocTitle;              // caption of the dialog in text mode
    bool DialogOpen = false;       // one dialog of a control at a time
};

// The template offered for a rule documentation that has no text yet.
inline QString DocTextTemplate()
{
    return QStringLiteral("Field Mapping:\n\n\n\n\n\n\nTechnical Notes:");
}

} // namespace fb
