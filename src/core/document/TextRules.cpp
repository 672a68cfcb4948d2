#include "TextRules.h"

#include <cmath>
#include <limits>

namespace fb::str {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

QStringView trimBlanks(QStringView s)
{
    qsizetype b = 0;
    qsizetype e = s.size();
    while (b < e && isBlank(s[b]))
        ++b;
    while (e > b && isBlank(s[e - 1]))
        --e;
    return s.mid(b, e - b);
}

std::optional<double> parseRadix(QStringView digits, int radix)
{
    if (digits.isEmpty())
        return std::nullopt;
    double value = 0;
    for (QChar c : digits) {
        int d = -1;
        if (c >= u'0' && c <= u'9')
            d = c.unicode() - u'0';
        else if (radix == 16 && c >= u'a' && c <= u'f')
            d = c.unicode() - u'a' + 10;
        else if (radix == 16 && c >= u'A' && c <= u'F')
            d = c.unicode() - u'A' + 10;
        if (d < 0 || d >= radix)
            return std::nullopt;
        value = value * radix + d;
    }
    return value;
}

} // namespace

// The grammar of the numeric test in one place, read from left to right.
std::optional<double> NumericValue(const QString& text)
{
    const QStringView s = trimBlanks(text);
    if (s.isEmpty())
        return std::nullopt;

    if (s.size() > 2 && s[0] == u'&') {
        const QChar kind = s[1].toUpper();
        if (kind == u'H')
            return parseRadix(s.mid(2), 16);
        if (kind == u'O')
            return parseRadix(s.mid(2), 8);
        return std::nullopt;
    }

    qsizetype i = 0;
    bool negative = false;
    if (s[i] == u'+' || s[i] == u'-') {
        negative = s[i] == u'-';
        ++i;
    }
    double mantissa = 0;
    int digits = 0;
    int fractionDigits = 0;
    bool point = false;
    for (; i < s.size(); ++i) {
        const QChar c = s[i];
        if (c >= u'0' && c <= u'9') {
            mantissa = mantissa * 10 + (c.unicode() - u'0');
            ++digits;
            if (point)
                ++fractionDigits;
        } else if (c == u'.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (digits == 0)
        return std::nullopt;

    int exponent = 0;
    if (i < s.size()) {
        const QChar e = s[i].toUpper();
        if (e != u'E' && e != u'D')
            return std::nullopt;
        ++i;
        bool expNegative = false;
        if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) {
            expNegative = s[i] == u'-';
            ++i;
        }
        int expDigits = 0;
        for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i) {
            if (exponent < 100000)
                exponent = exponent * 10 + (s[i].unicode() - u'0');
            ++expDigits;
        }
        if (expDigits == 0 || i != s.size())
            return std::nullopt;
        if (expNegative)
            exponent = -exponent;
    }
    double value = mantissa * std::pow(10.0, exponent - fractionDigits);
    if (!std::isfinite(value))
        return std::nullopt;
    return negative ? -value : value;
}

bool IsNumeric(const QString& text)
{
    return NumericValue(text).has_value();
}

namespace {
template <typename Int> std::optional<Int> toWhole(const QString& text)
{
    const auto value = NumericValue(text);
    if (!value)
        return std::nullopt;
    const double rounded = std::nearbyint(*value); // default rounding: halves to even
    if (rounded < double(std::numeric_limits<Int>::min()) ||
        rounded > double(std::numeric_limits<Int>::max()))
        return std::nullopt;
    return static_cast<Int>(rounded);
}
} // namespace

std::optional<qint16> ToInteger(const QString& text)
{
    return toWhole<qint16>(text);
}

std::optional<qint32> ToLong(const QString& text)
{
    return toWhole<qint32>(text);
}

QString Trim(const QString& text)
{
    return RTrim(LTrim(text));
}

QString LTrim(const QString& text)
{
    qsizetype b = 0;
    while (b < text.size() && text[b] == u' ')
        ++b;
    return text.mid(b);
}

QString RTrim(const QString& text)
{
    qsizetype e = text.size();
    while (e > 0 && text[e - 1] == u' ')
        --e;
    return text.left(e);
}

QString FixedWidth(const QString& text, int width)
{
    return text.left(width).leftJustified(width, u' ');
}

int InStrText(const QString& text, const QString& what, int start)
{
    if (start < 1)
        start = 1;
    const qsizetype at = text.indexOf(what, start - 1, Qt::CaseInsensitive);
    return at < 0 ? 0 : int(at) + 1;
}

QString Mid(const QString& text, int start, int length)
{
    if (start < 1)
        start = 1;
    if (start > text.size())
        return QString();
    return length < 0 ? text.mid(start - 1) : text.mid(start - 1, length);
}

QStringList Split(const QString& text, QChar separator)
{
    return text.isEmpty() ? QStringList() : text.split(separator);
}

QString SignPadded(qint64 number)
{
    return number < 0 ? QString::number(number) : u' ' + QString::number(number);
}

QString TwoDigits(qint64 number)
{
    if (number >= 0 && number < 10)
        return u'0' + QString::number(number);
    if (number < 0 && number > -10)
        return QStringLiteral("-0") + QString::number(-number);
    return QString::number(number);
}

QString Upper(const QString& text)
{
    QString out = text;
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    for (qsizetype i = 0; i < out.size(); ++i) {
        if (QChar::isHighSurrogate(d[i]) && i + 1 < out.size() && QChar::isLowSurrogate(d[i + 1])) {
            const char32_t upper = QChar::toUpper(QChar::surrogateToUcs4(d[i], d[i + 1]));
            if (QChar::requiresSurrogates(upper)) {
                d[i] = QChar::highSurrogate(upper);
                d[i + 1] = QChar::lowSurrogate(upper);
            }
            ++i;
        } else {
            const char32_t upper = QChar::toUpper(char32_t(d[i]));
            if (!QChar::requiresSurrogates(upper))
                d[i] = char16_t(upper);
        }
    }
    return out;
}

} // namespace fb::str
