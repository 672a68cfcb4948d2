#include "MappingDocument_p.h"

#include "LineBreaks.h"

namespace fb {

namespace detail {

// The parser takes an element that repeats an attribute name without
// complaint. Such text is not well-formed, and serialising it again would
// hand the same fault back to the host, so it is refused like any other.
bool HasRepeatedAttribute(const pugi::xml_document& doc)
{
    pugi::xml_node cur = doc.first_child();
    while (cur) {
        if (cur.type() == pugi::node_element) {
            for (pugi::xml_attribute a = cur.first_attribute(); a; a = a.next_attribute())
                for (pugi::xml_attribute b = a.next_attribute(); b; b = b.next_attribute())
                    if (std::strcmp(a.name(), b.name()) == 0)
                        return true;
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
    return false;
}

void NormaliseTextLineEnds(pugi::xml_document& doc)
{
    for (pugi::xml_node cur = doc.first_child(); cur;) {
        if (cur.type() == pugi::node_pcdata && std::strchr(cur.value(), '\r'))
            cur.set_value(utf8(LfText(Utf8Text(cur.value(), qsizetype(std::strlen(cur.value()))))).c_str());
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
// and bare ampersands as text, cuts text at "&#0;", and accepts "<" in an
// attribute value, "]]>" in text, "--" inside a comment and characters that
// XML forbids. Text with any of these is not well-formed; this scan of the
// raw text finds them, so that such a document is refused as a whole rather
// than silently changed.
// One pass over the text with the state it needs (open elements, an internal
// subset seen, the reference and bracket readers sharing it): longer than a
// function should be, kept whole so that the text is scanned once.
bool PassesMarkupChecks(QStringView t)
{
    const qsizetype n = t.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = t[i];
        if (c.isHighSurrogate()) {
            if (i + 1 < n && t[i + 1].isLowSurrogate()) {
                ++i;
                continue;
            }
            return false;
        }
        if (c.isLowSurrogate() || !isXmlChar(c.unicode()))
            return false;
    }

    bool internalSubset = false; // entities may be declared there
    int openElements = 0;        // elements open at the current position
    // A reference starting at t[i] == '&'; on success i is left on its ';'.
    const auto reference = [&](qsizetype& i) {
        const qsizetype semi = t.indexOf(u';', i + 1);
        if (semi < 0)
            return false;
        const QStringView name = t.mid(i + 1, semi - i - 1);
        bool ok = false;
        if (name.startsWith(u'#')) {
            char32_t value = 0;
            const bool hex = name.size() > 1 && name[1] == u'x';
            const QStringView digits = name.mid(hex ? 2 : 1);
            ok = !digits.isEmpty() && digits.size() <= 8;
            for (QChar d : digits) {
                const int v = hex ? (d.isDigit() ? d.unicode() - u'0'
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
        } else {
            ok = name == u"lt" || name == u"gt" || name == u"amp" || name == u"quot" || name == u"apos" ||
                 (internalSubset && IsXmlName(name.toString()));
        }
        if (ok)
            i = semi;
        return ok;
    };

    // The ">" that closes a tag or a document type, outside quoted values and
    // outside a document type's internal subset; -1 when there is none, or
    // when a tag's quoted value holds "<" or a bad reference.
    const auto closingBracket = [&](qsizetype from, bool documentType) -> qsizetype {
        int depth = 0;
        QChar quote;
        for (qsizetype j = from; j < n; ++j) {
            const QChar c = t[j];
            if (!quote.isNull()) {
                if (c == quote)
                    quote = QChar();
                else if (!documentType && (c == u'<' || (c == u'&' && !reference(j))))
                    return -1;
            } else if (c == u'"' || c == u'\'') {
                quote = c;
            } else if (documentType && c == u'[') {
                ++depth;
                internalSubset = true;
            } else if (documentType && c == u']') {
                --depth;
            } else if (c == u'>' && depth <= 0) {
                return j;
            }
        }
        return -1;
    };

    qsizetype i = 0;
    while (i < n) {
        const QStringView rest = t.mid(i);
        if (t[i] == u'<') {
            // Comments, CDATA sections and instructions run to their end mark;
            // only a comment has rules for its body.
            struct Markup {
                QStringView open;
                QStringView close;
            };
            static constexpr Markup kMarkups[] = {{u"<!--", u"-->"}, {u"<![CDATA[", u"]]>"}, {u"<?", u"?>"}};
            const Markup* markup = nullptr;
            for (const Markup& m : kMarkups)
                if (rest.startsWith(m.open)) {
                    markup = &m;
                    break;
                }
            if (markup) {
                const qsizetype bodyStart = i + markup->open.size();
                const qsizetype end = t.indexOf(markup->close, bodyStart);
                if (end < 0)
                    return false;
                const QStringView body = t.mid(bodyStart, end - bodyStart);
                if (markup == &kMarkups[0] && (body.contains(u"--") || body.endsWith(u'-')))
                    return false;
                i = end + markup->close.size();
                continue;
            }
            // A document type or a tag: to the ">" that closes it.
            const bool documentType = rest.startsWith(u"<!");
            const qsizetype close = closingBracket(i + (documentType ? 2 : 1), documentType);
            if (close < 0)
                return false;
            if (!documentType) {
                if (t[i + 1] == u'/')
                    --openElements;
                else if (t[close - 1] != u'/' && ++openElements > kMaxNestingDepth)
                    return false;
            }
            i = close + 1;
            continue;
        }
        if (t[i] == u'&') {
            if (!reference(i))
                return false;
        } else if (t[i] == u']' && rest.startsWith(u"]]>")) {
            return false;
        }
        ++i;
    }
    return true;
}

} // namespace detail

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
