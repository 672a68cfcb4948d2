#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Small text rules that the whole control shares: the numeric test, the
// conversions to whole numbers, the fixed-width table name and the keyword
// search. Positions are 1-based where the callers count characters that way.
namespace fb::str {

// The general numeric test: surrounding blanks (spaces, tabs), an optional
// sign, digits with at most one decimal point (at least one digit), an
// optional exponent (E or D, optional sign, digits); also &H hexadecimal and
// &O octal forms. "" and blanks only are not numeric.
bool IsNumeric(const QString& text);

// The value of a text that passes IsNumeric; nullopt otherwise.
std::optional<double> NumericValue(const QString& text);

// Conversion of a numeric text to a 16-bit whole number, rounding halves to
// the even neighbour; nullopt when the text is not numeric or the value does
// not fit.
std::optional<qint16> ToInteger(const QString& text);
// The same into 32 bits.
std::optional<qint32> ToLong(const QString& text);

// Removes spaces (only spaces) from both ends, or from one end.
QString Trim(const QString& text);
QString LTrim(const QString& text);
QString RTrim(const QString& text);

// Cuts the text to width characters or pads it with blanks on the right.
QString FixedWidth(const QString& text, int width);

// 1-based position of the first occurrence of what in text at or after start,
// ignoring letter case; 0 when there is none.
int InStrText(const QString& text, const QString& what, int start = 1);

// Mid(text, start[, length]) with a 1-based start; "" past the end.
QString Mid(const QString& text, int start, int length = -1);

// Splits at every separator; an empty text gives no piece at all (not one
// empty piece).
QStringList Split(const QString& text, QChar separator);

// The number in the sign-padded form of a number printed on its own:
// a positive number (and zero) gets one leading blank, a negative its minus.
QString SignPadded(qint64 number);

// Format "00": at least two digits.
QString TwoDigits(qint64 number);

// Upper case character by character, as element names are compared: a
// character without a single upper-case partner stays as it is ("ß" is not
// "SS"), so a name keeps its length and finds the element it was made from.
QString Upper(const QString& text);

} // namespace fb::str
