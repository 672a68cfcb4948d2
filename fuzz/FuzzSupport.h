#pragma once

// What both fuzz targets share: the input as text, the table name taken from
// it, and the report of a broken round trip.

#include <QString>
#include <cstdint>
#include <cstdio>

namespace fbfuzz {

inline QString inputText(const uint8_t* data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
}

// The name of the first element of the text, found the cheap way: comments,
// processing instructions, declarations and document types are skipped up to
// their end; a document type's internal subset may fool it, which only costs
// a wrong table name (and so unreachable sections), never a false report.
inline QString rootElementName(const QString& text)
{
    const qsizetype n = text.size();
    qsizetype i = 0;
    while ((i = text.indexOf(u'<', i)) >= 0) {
        if (QStringView(text).mid(i).startsWith(u"<!--")) {
            i = text.indexOf(QStringLiteral("-->"), i + 4);
            if (i < 0)
                return {};
            i += 3;
            continue;
        }
        if (i + 1 < n && (text[i + 1] == u'?' || text[i + 1] == u'!')) {
            i = text.indexOf(u'>', i + 1);
            if (i < 0)
                return {};
            ++i;
            continue;
        }
        qsizetype end = i + 1;
        while (end < n && !text[end].isSpace() && text[end] != u'/' && text[end] != u'>')
            ++end;
        return text.mid(i + 1, end - i - 1);
    }
    return {};
}

// Control characters spelled out, so that a difference in line breaks shows.
inline QString visible(const QString& text)
{
    QString out;
    for (const QChar c : text) {
        if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else if (c == u'\t')
            out += QStringLiteral("\\t");
        else if (c.unicode() < 0x20 || c.unicode() == 0xFEFF)
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QChar(u'0'));
        else
            out += c;
    }
    return out;
}

// Prints where two texts that should be equal part, with a little context,
// and stops the run so that libFuzzer keeps the input as a crash.
[[noreturn]] inline void differs(const char* what, const QString& expected, const QString& actual)
{
    qsizetype at = 0;
    while (at < expected.size() && at < actual.size() && expected[at] == actual[at])
        ++at;
    const qsizetype from = at > 40 ? at - 40 : 0;
    std::fprintf(stderr,
                 "\n%s\n  lengths %lld and %lld, first difference at %lld\n  expected: ...%s...\n  actual:   "
                 "...%s...\n",
                 what, static_cast<long long>(expected.size()), static_cast<long long>(actual.size()),
                 static_cast<long long>(at), qPrintable(visible(expected.mid(from, 100))),
                 qPrintable(visible(actual.mid(from, 100))));
    __builtin_trap();
}

} // namespace fbfuzz
