#include "LineBreaks.h"
#include "MappingDocument_p.h"

#include <QVarLengthArray>
#include <QXmlStreamReader>
#include <array>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace fb {

namespace detail {

void NormaliseText(pugi::xml_document& doc)
{
    for (pugi::xml_node cur = doc.first_child(); cur;) {
        if (cur.type() == pugi::node_pcdata &&
            (std::strchr(cur.value(), '\r') ||
             std::strspn(cur.value(), " \t\r\n") == std::strlen(cur.value()))) {
            const QString stored = StoredText(Utf8Text(cur.value(), qsizetype(std::strlen(cur.value()))));
            if (stored.isEmpty()) {
                const pugi::xml_node gone = cur;
                // On to the next node before this one goes.
                while (cur && !cur.next_sibling())
                    cur = cur.parent();
                if (cur)
                    cur = cur.next_sibling();
                gone.parent().remove_child(gone);
                continue;
            }
            cur.set_value(utf8(stored).c_str());
        }
        if (cur.first_child()) {
            cur = cur.first_child();
            continue;
        }
        while (cur && !cur.next_sibling())
            cur = cur.parent();
        if (cur)
            cur = cur.next_sibling();
    }
}

namespace {

bool isXmlChar(char32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

// Elements nested deeper than this are refused with the rest of the
// document. Removing or copying a subtree walks it recursively (in the DOM
// and in the host's own code alike), so an unbounded depth would let a
// document overflow the stack; a mapping object needs a handful of levels.
constexpr int kMaxNestingDepth = 1000;

// The parser is lenient where XML is not: it keeps unknown entity references
// and bare ampersands as text, cuts text at "&#0;", accepts "<" in an
// attribute value, "]]>" in text, "--" inside a comment, an attribute given
// twice and characters that XML forbids. Text with any of these is not
// well-formed; this one pass over the raw text finds them, so that such a
// document is refused as a whole rather than silently changed.
class MarkupScan {
public:
    explicit MarkupScan(QStringView text) : m_t(text.utf16()), m_n(text.size()) {}

    MarkupVerdict run()
    {
        qsizetype i = 0;
        while (i < m_n) {
            // The common case first: characters of text with no meaning.
            i = plainRun(i, u'<', u'&', u']');
            if (i >= m_n)
                break;
            const char16_t c = m_t[i];
            if (c == u'<') {
                if (!markup(i))
                    return {};
                continue;
            }
            if (c == u'&') {
                if (!reference(i, false))
                    return {};
            } else if (c == u']') {
                if (i + 2 < m_n && m_t[i + 1] == u']' && m_t[i + 2] == u'>')
                    return {};
            } else if (!character(i)) {
                return {};
            }
            ++i;
        }
        return {true, m_textToNormalise};
    }

private:
    // The first position from i on that holds one of the three characters,
    // or one that may need a closer look (below a blank, or at or above
    // U+8000), or the end. Eight characters at a time where the processor can.
    qsizetype plainRun(qsizetype i, char16_t a, char16_t b, char16_t c) const
    {
#if defined(__SSE2__)
        const __m128i va = _mm_set1_epi16(short(a));
        const __m128i vb = _mm_set1_epi16(short(b));
        const __m128i vc = _mm_set1_epi16(short(c));
        const __m128i blank = _mm_set1_epi16(0x20);
        while (i + 8 <= m_n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m_t + i));
            // Signed: characters at or above U+8000 count as below a blank.
            const __m128i hit = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, va), _mm_cmpeq_epi16(v, vb)),
                                             _mm_or_si128(_mm_cmpeq_epi16(v, vc), _mm_cmplt_epi16(v, blank)));
            const int mask = _mm_movemask_epi8(hit);
            if (mask != 0)
                return i + qsizetype(__builtin_ctz(unsigned(mask)) / 2);
            i += 8;
        }
#endif
        while (i < m_n && m_t[i] >= 0x20 && m_t[i] < 0x8000 && m_t[i] != a && m_t[i] != b && m_t[i] != c)
            ++i;
        return i;
    }

    bool startsWith(qsizetype i, QStringView s) const
    {
        return i + s.size() <= m_n && QStringView(m_t + i, s.size()) == s;
    }

    // The character at i (a surrogate pair taking i on to its second half).
    bool character(qsizetype& i) const
    {
        const char16_t c = m_t[i];
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 < m_n && QChar::isLowSurrogate(m_t[i + 1])) {
                ++i;
                return true;
            }
            return false;
        }
        return !QChar::isLowSurrogate(c) && isXmlChar(c);
    }

    bool characters(qsizetype from, qsizetype to) const
    {
        for (qsizetype i = from; i < to; ++i)
            if (!(m_t[i] >= 0x20 && m_t[i] < 0xD800) && !character(i))
                return false;
        return true;
    }

    // A reference starting at '&'; on success i is left on its ';'.
    bool reference(qsizetype& i, bool inTag)
    {
        qsizetype semi = i + 1;
        while (semi < m_n && m_t[semi] != u';')
            ++semi;
        if (semi >= m_n)
            return false;
        const QStringView name(m_t + i + 1, semi - i - 1);
        bool ok = false;
        if (name.startsWith(u'#')) {
            char32_t value = 0;
            const bool hex = name.size() > 1 && name[1] == u'x';
            const QStringView digits = name.mid(hex ? 2 : 1);
            // Leading zeros are allowed in any number; eight digits after
            // them hold every character and cannot overflow the value.
            qsizetype zeros = 0;
            while (zeros < digits.size() && digits[zeros] == u'0')
                ++zeros;
            ok = !digits.isEmpty() && digits.size() - zeros <= 8;
            for (QChar d : digits) {
                const int v = hex ? ((d >= u'0' && d <= u'9')   ? d.unicode() - u'0'
                                     : (d >= u'a' && d <= u'f') ? d.unicode() - u'a' + 10
                                     : (d >= u'A' && d <= u'F') ? d.unicode() - u'A' + 10
                                                                : -1)
                                  : (d >= u'0' && d <= u'9' ? d.unicode() - u'0' : -1);
                if (v < 0) {
                    ok = false;
                    break;
                }
                value = value * (hex ? 16 : 10) + char32_t(v);
            }
            ok = ok && isXmlChar(value);
            // A break or a blank that a reference puts into element text is
            // not one the parser has seen: the text is looked at again.
            m_textToNormalise =
                m_textToNormalise ||
                (ok && !inTag && (value == 0xD || value == 0xA || value == 0x9 || value == 0x20));
        } else {
            ok = name == u"lt" || name == u"gt" || name == u"amp" || name == u"quot" || name == u"apos" ||
                 (m_internalSubset && IsXmlName(name.toString()));
        }
        if (ok)
            i = semi;
        return ok;
    }

    // Markup starting at '<': on success i is left behind it.
    bool markup(qsizetype& i)
    {
        // Comments, CDATA sections and instructions run to their end mark;
        // only a comment has rules for its body.
        struct Kind {
            QStringView open;
            QStringView close;
        };
        static constexpr Kind kKinds[] = {{u"<!--", u"-->"}, {u"<![CDATA[", u"]]>"}, {u"<?", u"?>"}};
        for (const Kind& k : kKinds) {
            if (!startsWith(i, k.open))
                continue;
            const qsizetype body = i + k.open.size();
            const qsizetype end = QStringView(m_t, m_n).indexOf(k.close, body);
            if (end < 0 || !characters(body, end))
                return false;
            const QStringView text(m_t + body, end - body);
            if (&k == &kKinds[0] && (text.contains(u"--") || text.endsWith(u'-')))
                return false;
            i = end + k.close.size();
            return true;
        }
        // A document type or a tag: to the ">" that closes it.
        const bool documentType = startsWith(i, u"<!");
        const qsizetype close = closingBracket(i + (documentType ? 2 : 1), documentType);
        if (close < 0)
            return false;
        if (!documentType) {
            if (m_t[i + 1] == u'/')
                --m_openElements;
            else if (m_t[close - 1] != u'/' && ++m_openElements > kMaxNestingDepth)
                return false;
        }
        i = close + 1;
        return true;
    }

    // The ">" that closes a tag or a document type, outside quoted values and
    // outside a document type's internal subset; -1 when there is none, or
    // when a tag's quoted value holds "<" or a bad reference, or a tag names
    // an attribute twice.
    qsizetype closingBracket(qsizetype from, bool documentType)
    {
        int depth = 0;
        char16_t quote = 0;
        qsizetype lastStart = -1, lastEnd = -1; // the last name read outside quotes
        m_attributes.clear();
        for (qsizetype j = from; j < m_n; ++j) {
            if (quote) {
                // Through the quoted value to what matters in it.
                j = plainRun(j, quote, u'<', u'&');
                if (j >= m_n)
                    return -1;
                const char16_t q = m_t[j];
                if (q == quote)
                    quote = 0;
                else if (!(q >= 0x20 && q < 0xD800) && !character(j))
                    return -1;
                else if (!documentType && (q == u'<' || (q == u'&' && !reference(j, true))))
                    return -1;
                continue;
            }
            // A run of name characters.
            const qsizetype start = j;
            while (j < m_n) {
                const char16_t c = m_t[j];
                if (c < 0x80) {
                    if (!kNameCharacter[c])
                        break;
                } else if (!character(j)) {
                    return -1;
                }
                ++j;
            }
            if (j > start) {
                lastStart = start;
                lastEnd = j;
            }
            if (j >= m_n)
                return -1;
            switch (m_t[j]) {
            case u' ':
            case u'\t':
            case u'\n':
            case u'\r':
            case u'/':
                break;
            case u'=':
                if (!documentType && lastStart >= 0) {
                    // The name before "=" is an attribute's: it must not repeat.
                    const QStringView name(m_t + lastStart, lastEnd - lastStart);
                    for (const QStringView& seen : m_attributes)
                        if (seen.size() == name.size() && seen == name)
                            return -1;
                    m_attributes.append(name);
                    lastStart = -1;
                }
                break;
            case u'"':
            case u'\'':
                quote = m_t[j];
                break;
            case u'[':
                if (documentType) {
                    ++depth;
                    m_internalSubset = true;
                }
                break;
            case u']':
                if (documentType)
                    --depth;
                break;
            case u'>':
                if (depth <= 0)
                    return j;
                break;
            default:
                return -1; // a character XML forbids
            }
        }
        return -1;
    }

    // ASCII characters that continue a name (or a word) inside a tag.
    static constexpr std::array<bool, 128> kNameCharacter = [] {
        std::array<bool, 128> table{};
        for (int c = 0x21; c < 0x7F; ++c)
            table[size_t(c)] =
                c != '"' && c != '\'' && c != '=' && c != '>' && c != '/' && c != '[' && c != ']';
        return table;
    }();

    const char16_t* m_t;
    qsizetype m_n;
    bool m_internalSubset = false;  // entities may be declared there
    bool m_textToNormalise = false; // a reference put a break or a blank into element text
    int m_openElements = 0;         // elements open at the current position
    QVarLengthArray<QStringView, 16> m_attributes;
};

} // namespace

MarkupVerdict CheckMarkup(QStringView text)
{
    return MarkupScan(text).run();
}

} // namespace detail

QString DescribeMalformedXml(const QString& text)
{
    QXmlStreamReader reader(text);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        else if (token == QXmlStreamReader::StartElement && ++depth > detail::kMaxNestingDepth)
            return QStringLiteral("elements nested deeper than %1 levels (line %2, column %3)")
                .arg(detail::kMaxNestingDepth)
                .arg(reader.lineNumber())
                .arg(reader.columnNumber());
    }
    if (!reader.hasError())
        return {};
    return QStringLiteral("%1 (line %2, column %3)")
        .arg(reader.errorString())
        .arg(reader.lineNumber())
        .arg(reader.columnNumber());
}

bool IsXmlName(const QString& name)
{
    if (name.isEmpty())
        return false;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        if (c.isSurrogate())
            continue; // characters outside the basic plane are name characters
        const bool start = c.isLetter() || c == u'_' || c == u':';
        if (i == 0) {
            if (!start)
                return false;
            continue;
        }
        if (!(start || c.isDigit() || c == u'-' || c == u'.' || c.isMark() || c == QChar(0xB7)))
            return false;
    }
    return true;
}

} // namespace fb
