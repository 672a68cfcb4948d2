#pragma once

#include <QString>

// Line breaks. The document stores each break as LF; the boxes and grid
// cells of the control hold CR LF; Qt's editors hold LF. A text may arrive
// with its breaks in any form (CR LF, a lone CR, LF): each counts as one
// break. These are the only conversions between the forms.
namespace fb {

// Each break as one LF.
QString LfText(const QString& text);
// Each break as one CR LF: the form a box or a grid cell holds.
QString CrLfText(const QString& text);
// A text as the document stores it: each break as one LF, and a text of only
// blanks, tabs and breaks as no text at all (the parser drops such text, so
// it would not survive the document being written out and read again).
QString StoredText(const QString& text);

} // namespace fb
