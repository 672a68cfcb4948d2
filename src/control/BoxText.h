#pragma once

#include <QString>

class QWidget;

// Texts held by boxes and grid cells use CR LF line breaks throughout the
// control; Qt's editors hold "\n". These functions are the one crossing
// between the two.
namespace fb {

// CR LF, a lone CR and CR CR LF (a break that went through a decoding that
// turned its LF into CR LF once more) each become one "\n".
QString ToEditorText(const QString& text);
// Every "\n" becomes CR LF.
QString FromEditorText(const QString& text);
// Any of the break forms above as CR LF: the form a box or a cell holds.
inline QString CrLfText(const QString& text)
{
    return FromEditorText(ToEditorText(text));
}

// The text of a box (script editor or text box) in CR LF form, and setting it.
QString BoxText(const QWidget* box);
void SetBoxText(QWidget* box, const QString& text);

} // namespace fb
