#pragma once

#include <QString>

class QWidget;

// The widget boundary of line breaks: the control's texts use CR LF, Qt's
// editors hold "\n". Every box's text crosses here, and only here.
namespace fb {

// The text of a box (script editor or text box) in CR LF form.
QString BoxText(const QWidget* box);
// Puts a text (breaks in any form) into a box.
void SetBoxText(QWidget* box, const QString& text);

} // namespace fb
