#include "LineBreaks.h"

namespace fb {

QString LfText(const QString& text)
{
    if (!text.contains(u'\r'))
        return text;
    QString out = text;
    out.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    out.replace(u'\r', u'\n');
    return out;
}

QString CrLfText(const QString& text)
{
    const QString lf = LfText(text);
    if (!lf.contains(u'\n'))
        return lf;
    QString out = lf;
    out.replace(u'\n', QStringLiteral("\r\n"));
    return out;
}

QString StoredText(const QString& text)
{
    for (QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            return LfText(text);
    return QString();
}

} // namespace fb
