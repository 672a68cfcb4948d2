#include "MappingDocument.h"

#include "FieldNames.h"
#include "LineBreaks.h"
#include "TextCodec.h"
#include "TextRules.h"

#include <pugixml.hpp>

#include <QLoggingCategory>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace fb {

Q_LOGGING_CATEGORY(lcDocument, "fieldbridge.document")

namespace {

constexpr qint16 kErrInvalidXml = 1;
const char16_t kInvalidXmlText[] = u"The Loaded XML was not a Valid XML. Please refresh";
constexpr qint16 kErrGetNode = 2001;
const char16_t kGetNodeText[] = u"Error Getting Node (GetNode)";
// Failures of the object model that are recorded as run-time errors: an
// object that is not there, and a name the DOM refuses.
constexpr qint16 kErrNoObject = 91;
const char16_t kNoObjectText[] = u"Object variable or With block variable not set";
constexpr qint16 kErrInvalidName = 2005;

// Declarations, processing instructions, comments and document types are
// kept as nodes, so that a document starting with one of them has that node,
// not the root element, as its first child. Parsing as a fragment keeps text
// outside the root element, so that it can be refused as not well-formed.
constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_declaration | pugi::parse_pi |
                                 pugi::parse_comments | pugi::parse_doctype | pugi::parse_fragment;

pugi::xml_node toPugi(pugi::xml_node_struct* n)
{
    return pugi::xml_node(n);
}

std::string utf8(const QString& s)
{
    const QByteArray b = s.toUtf8();
    return std::string(b.constData(), size_t(b.size()));
}

QString fromUtf8(const char* s)
{
    return Utf8Text(s, qsizetype(std::strlen(s)));
}


// The parser takes an element that repeats an attribute name without
// complaint. Such text is not well-formed, and serialising it again would
// hand the same fault back to the host, so it is refused like any other.
bool hasRepeatedAttribute(const pugi::xml_document& doc)
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

void normaliseTextLineEnds(pugi::xml_document& doc)
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
bool passesMarkupChecks(QStringView t)
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

bool canHoldElements(pugi::xml_node n)
{
    return n.type() == pugi::node_element || n.type() == pugi::node_document;
}

} // namespace

// ---------------------------------------------------------------------------
// Node

bool Node::isElement() const
{
    return toPugi(m_node).type() == pugi::node_element;
}

QString Node::name() const
{
    return m_node ? fromUtf8(toPugi(m_node).name()) : QString();
}

QString Node::text() const
{
    const pugi::xml_node n = toPugi(m_node);
    if (!n)
        return QString();
    if (n.type() == pugi::node_pcdata || n.type() == pugi::node_cdata)
        return fromUtf8(n.value());
    // Fast path for the common case of one text child.
    const pugi::xml_node first = n.first_child();
    if (first && !first.next_sibling() && (first.type() == pugi::node_pcdata || first.type() == pugi::node_cdata))
        return fromUtf8(first.value());

    std::string out;
    pugi::xml_node cur = first;
    while (cur) {
        if (cur.type() == pugi::node_pcdata || cur.type() == pugi::node_cdata)
            out += cur.value();
        if (cur.first_child()) {
            cur = cur.first_child();
            continue;
        }
        while (cur && cur != n && !cur.next_sibling())
            cur = cur.parent();
        if (!cur || cur == n)
            break;
        cur = cur.next_sibling();
    }
    return Utf8Text(out.data(), qsizetype(out.size()));
}

QString Node::attribute(const QString& name) const
{
    if (!m_node)
        return QString();
    const pugi::xml_attribute a = toPugi(m_node).attribute(utf8(name).c_str());
    return a ? fromUtf8(a.value()) : QString();
}

bool Node::hasAttribute(const QString& name) const
{
    return m_node && bool(toPugi(m_node).attribute(utf8(name).c_str()));
}

Node Node::parent() const
{
    return m_node ? Node(toPugi(m_node).parent().internal_object()) : Node();
}

bool Node::hasChildNodes() const
{
    return m_node && bool(toPugi(m_node).first_child());
}

Node Node::firstChildElement() const
{
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element)
            return Node(c.internal_object());
    return Node();
}

Node Node::nextSiblingElement() const
{
    if (!m_node)
        return Node();
    for (pugi::xml_node c = toPugi(m_node).next_sibling(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element)
            return Node(c.internal_object());
    return Node();
}

Node Node::childElement(const QString& name) const
{
    if (!m_node)
        return Node();
    const std::string n = utf8(name);
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && std::strcmp(c.name(), n.c_str()) == 0)
            return Node(c.internal_object());
    return Node();
}

QList<Node> Node::childElements() const
{
    QList<Node> out;
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element)
            out.append(Node(c.internal_object()));
    return out;
}

QList<Node> Node::childNodes() const
{
    QList<Node> out;
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        out.append(Node(c.internal_object()));
    return out;
}

// ---------------------------------------------------------------------------
// MappingDocument

struct MappingDocument::Impl {
    pugi::xml_document doc;

    // All elements that an absolute path of plain steps names, in document
    // order. Each step is compared exactly with an element name, blanks
    // included, so a blank-padded table name finds nothing. With an attribute
    // name, only elements whose attribute has exactly that value qualify.
    std::vector<pugi::xml_node> select(const QString& path, const QString& attrName, const QString& attrValue,
                                       bool firstOnly) const
    {
        std::vector<pugi::xml_node> found;
        if (!path.startsWith(u'/'))
            return found;
        const QStringList stepList = path.mid(1).split(u'/');
        std::vector<std::string> steps;
        steps.reserve(size_t(stepList.size()));
        for (const QString& s : stepList) {
            if (s.isEmpty())
                return found;
            steps.push_back(utf8(s));
        }
        const std::string an = utf8(attrName);
        const std::string av = utf8(attrValue);
        const bool test = !attrName.isEmpty();

        // Depth-first in document order over the matching steps.
        struct Frame {
            pugi::xml_node node;
            size_t depth;
        };
        std::vector<Frame> stack;
        auto pushChildren = [&](pugi::xml_node parent, size_t depth) {
            // Push in reverse so the first child is handled first.
            const size_t mark = stack.size();
            for (pugi::xml_node c = parent.first_child(); c; c = c.next_sibling())
                if (c.type() == pugi::node_element && std::strcmp(c.name(), steps[depth].c_str()) == 0)
                    stack.push_back({c, depth});
            std::reverse(stack.begin() + std::ptrdiff_t(mark), stack.end());
        };
        pushChildren(doc, 0);
        while (!stack.empty()) {
            const Frame f = stack.back();
            stack.pop_back();
            if (f.depth + 1 == steps.size()) {
                if (test) {
                    const pugi::xml_attribute a = f.node.attribute(an.c_str());
                    if (!a || av != a.value())
                        continue;
                }
                found.push_back(f.node);
                if (firstOnly)
                    return found;
            } else {
                pushChildren(f.node, f.depth + 1);
            }
        }
        return found;
    }
};

MappingDocument::MappingDocument() : d(std::make_unique<Impl>()), m_tableName(str::FixedWidth(QString(), 8)) {}

MappingDocument::~MappingDocument() = default;

bool MappingDocument::LoadXml(const QString& text)
{
    d->doc.reset();
    m_dumps.clear();
    m_knownDumps.clear();
    m_migrateTables = QStringList{QString()};

    bool ok = passesMarkupChecks(text);
    if (ok) {
        const QByteArray bytes = text.toUtf8();
        ok = bool(d->doc.load_buffer(bytes.constData(), size_t(bytes.size()), kParseFlags, pugi::encoding_utf8));
    }
    if (ok) {
        // Exactly one root element, and nothing but markup around it.
        int elements = 0;
        for (pugi::xml_node c = d->doc.first_child(); c; c = c.next_sibling()) {
            if (c.type() == pugi::node_element)
                ++elements;
            else if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata)
                ok = false;
        }
        ok = ok && elements == 1 && !hasRepeatedAttribute(d->doc);
    }
    // Only a character reference can leave a CR in element text (the parser
    // turns literal ones into LF). The serialiser would write it as it is,
    // and the next parse would turn it into LF after all; doing that now
    // keeps every later read the same.
    if (ok && text.contains(QStringLiteral("&#")))
        normaliseTextLineEnds(d->doc);
    if (!ok) {
        d->doc.reset();
        RecordError(kErrInvalidXml, QString::fromUtf16(kInvalidXmlText), 0, QString());
    }
    return ok;
}

QString MappingDocument::Serialize() const
{
    struct Writer : pugi::xml_writer {
        std::string out;
        void write(const void* data, size_t size) override { out.append(static_cast<const char*>(data), size); }
    } writer;
    d->doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return Utf8Text(writer.out.data(), qsizetype(writer.out.size()));
}

bool MappingDocument::IsEmpty() const
{
    return !d->doc.first_child();
}

void MappingDocument::SetTableName(const QString& name)
{
    m_tableName = str::FixedWidth(name, 8);
}

QString MappingDocument::SectionPath(const QString& section) const
{
    return u'/' + m_tableName + u'/' + section;
}

void MappingDocument::RecordError(qint16 code, const QString& text, qint16 fallbackCode, const QString& fallbackText)
{
    const ErrorRecord error = code != 0 ? ErrorRecord{code, text} : ErrorRecord{fallbackCode, fallbackText};
    // Nothing in the control shows it; the category lets a developer see it.
    qCDebug(lcDocument, "error %d: %s%s", int(error.code), qPrintable(error.text),
            m_error.code != 0 ? " (an earlier error is kept)" : "");
    if (m_error.code == 0)
        m_error = error;
}

// ---- node access layer ----------------------------------------------------

Node MappingDocument::GetNode(const QString& path, const QString& attrName, const QString& attrValue)
{
    if (!attrName.isEmpty()) {
        // The value goes into the expression unquoted: an apostrophe breaks it.
        // Such a lookup is refused as a malformed expression even where the
        // broken expression would happen to parse.
        const QString expr = path + QStringLiteral("[@") + attrName + QStringLiteral("='") + attrValue +
                             QStringLiteral("']");
        QString failure;
        if (attrValue.contains(u'\'')) {
            failure = QStringLiteral("Unexpected apostrophe in expression: ") + expr;
        } else {
            try {
                pugi::xpath_query check(utf8(expr).c_str());
            } catch (const pugi::xpath_exception& e) {
                failure = QString::fromUtf8(e.what());
            }
        }
        if (!failure.isNull()) {
            RecordError(0, failure, kErrGetNode, QString::fromUtf16(kGetNodeText));
            return Node();
        }
    } else {
        try {
            pugi::xpath_query check(utf8(path).c_str());
        } catch (const pugi::xpath_exception& e) {
            RecordError(0, QString::fromUtf8(e.what()), kErrGetNode, QString::fromUtf16(kGetNodeText));
            return Node();
        }
    }
    const auto found = d->select(path, attrName, attrValue, true);
    return found.empty() ? Node() : Node(found.front().internal_object());
}

QString MappingDocument::GetNodeText(const QString& path, const QString& attrName, const QString& attrValue)
{
    return GetNode(path, attrName, attrValue).text();
}

bool MappingDocument::SetNodeText(const QString& path, const QString& text, const QString& attrName,
                                  const QString& attrValue)
{
    const Node n = GetNode(path, attrName, attrValue);
    return n && SetText(n, text);
}

QString MappingDocument::GetNodeAttribute(const Node& node, const QString& name)
{
    return node.attribute(name);
}

bool MappingDocument::SetNodeAttribute(const Node& node, const QString& name, const QString& value)
{
    if (!node)
        return false;
    pugi::xml_node n = toPugi(node.m_node);
    if (n.type() != pugi::node_element)
        return false;
    if (!IsXmlName(name)) {
        RecordError(0, QString(), kErrInvalidName, QStringLiteral("Invalid attribute name: ") + name);
        return false;
    }
    const std::string an = utf8(name);
    pugi::xml_attribute a = n.attribute(an.c_str());
    if (!a)
        a = n.append_attribute(an.c_str());
    a.set_value(utf8(LfText(value)).c_str());
    return true;
}

Node MappingDocument::AppendChildElement(const Node& parent, const QString& name, const QString& attrName,
                                         const QString& attrValue)
{
    if (!parent)
        return Node();
    pugi::xml_node p = toPugi(parent.m_node);
    if (!canHoldElements(p)) {
        RecordError(0, QString(), kErrNoObject, QString::fromUtf16(kNoObjectText));
        return Node();
    }
    if (!IsXmlName(name)) {
        RecordError(0, QString(), kErrInvalidName, QStringLiteral("Invalid element name: ") + name);
        return Node();
    }
    pugi::xml_node child = p.append_child(utf8(name).c_str());
    if (!child)
        return Node();
    const Node result(child.internal_object());
    if (!attrName.isEmpty())
        SetNodeAttribute(result, attrName, attrValue);
    return result;
}

QString MappingDocument::UnescapeXmlText(const QString& text)
{
    QString s = text;
    s.replace(QStringLiteral("&lt;"), QStringLiteral("<"), Qt::CaseInsensitive);
    s.replace(QStringLiteral("&gt;"), QStringLiteral(">"), Qt::CaseInsensitive);
    s.replace(QStringLiteral("&amp;"), QStringLiteral("&"), Qt::CaseInsensitive);
    s.replace(QStringLiteral("&quot;"), QStringLiteral("\""), Qt::CaseInsensitive);
    s.replace(u'\n', QStringLiteral("\r\n"));
    return s;
}

QString MappingDocument::DisplayText(const QString& text)
{
    return UnescapeXmlText(LfText(text));
}

bool MappingDocument::SetText(const Node& node, const QString& text)
{
    if (!node)
        return false;
    pugi::xml_node n = toPugi(node.m_node);
    const QString value = LfText(text);
    if (n.type() != pugi::node_element)
        return n.set_value(utf8(value).c_str());
    while (n.first_child())
        n.remove_child(n.first_child());
    if (!value.isEmpty())
        n.append_child(pugi::node_pcdata).set_value(utf8(value).c_str());
    return true;
}

bool MappingDocument::RemoveChild(const Node& parent, const Node& child)
{
    if (!parent || !child || child.parent() != parent)
        return false;
    return toPugi(parent.m_node).remove_child(toPugi(child.m_node));
}

void MappingDocument::RemoveChildNodes(const Node& node)
{
    pugi::xml_node n = toPugi(node.m_node);
    if (!n)
        return;
    while (n.first_child())
        n.remove_child(n.first_child());
}

Node MappingDocument::AppendCopy(const Node& parent, const Node& source)
{
    if (!parent || !source)
        return Node();
    pugi::xml_node p = toPugi(parent.m_node);
    if (!canHoldElements(p))
        return Node();
    return Node(p.append_copy(toPugi(source.m_node)).internal_object());
}

Node MappingDocument::DocumentElement() const
{
    return Node(d->doc.document_element().internal_object());
}

Node MappingDocument::FirstChild() const
{
    return Node(d->doc.first_child().internal_object());
}

// ---- section accessors ----------------------------------------------------

Node MappingDocument::appendToFirstChild(const QString& name, const QString& attrName, const QString& attrValue)
{
    const Node first = FirstChild();
    if (!first) {
        RecordError(0, QString(), kErrNoObject, QString::fromUtf16(kNoObjectText));
        return Node();
    }
    return AppendChildElement(first, name, attrName, attrValue);
}

bool MappingDocument::setSectionText(const QString& section, const QString& text)
{
    Node n = GetNode(SectionPath(section));
    if (!n)
        n = appendToFirstChild(section);
    return SetText(n, text);
}

QString MappingDocument::GetPreconditionText()
{
    return GetNodeText(SectionPath(QStringLiteral("PREC")));
}

Node MappingDocument::GetPreconditionNode()
{
    return GetNode(SectionPath(QStringLiteral("PREC")));
}

bool MappingDocument::SetPreconditionText(const QString& text)
{
    return SetNodeText(SectionPath(QStringLiteral("PREC")), text);
}

QString MappingDocument::GetSourceTablesText()
{
    return GetNodeText(SectionPath(QStringLiteral("SRCTBL")));
}

Node MappingDocument::GetSourceTablesNode()
{
    return GetNode(SectionPath(QStringLiteral("SRCTBL")));
}

bool MappingDocument::SetSourceTablesText(const QString& text)
{
    Node n = GetSourceTablesNode();
    if (!n)
        n = AppendChildElement(DocumentElement(), QStringLiteral("SRCTBL"));
    return SetText(n, text);
}

QString MappingDocument::GetFunctionsText()
{
    return GetNodeText(SectionPath(QStringLiteral("FUNCTIONS")));
}

bool MappingDocument::SetFunctionsText(const QString& text)
{
    return setSectionText(QStringLiteral("FUNCTIONS"), text);
}

bool MappingDocument::HasFunctions()
{
    return bool(GetNode(SectionPath(QStringLiteral("FUNCTIONS"))));
}

bool MappingDocument::HasVariables()
{
    return bool(GetNode(SectionPath(QStringLiteral("VAR"))));
}

QString MappingDocument::GetVariablesText()
{
    return GetNodeText(SectionPath(QStringLiteral("VAR")));
}

bool MappingDocument::SetVariablesText(const QString& text)
{
    return setSectionText(QStringLiteral("VAR"), text);
}

QString MappingDocument::GetQueryText(const QString& source)
{
    return GetQueryNode(source).text();
}

Node MappingDocument::GetQueryNode(const QString& source)
{
    return GetNode(SectionPath(QStringLiteral("QUERY")), QStringLiteral("ST"), source);
}

Node MappingDocument::findQueryExactly(const QString& source)
{
    const std::string st = utf8(source);
    for (const pugi::xml_node& n : d->select(SectionPath(QStringLiteral("QUERY")), QString(), QString(), false))
        if (st == n.attribute("ST").value())
            return Node(n.internal_object());
    return Node();
}

bool MappingDocument::SaveQueryText(const QString& source, const QString& text)
{
    if (text.isEmpty())
        return false;
    Node n = GetQueryNode(source);
    // A table name with an apostrophe cannot be looked up by expression, so
    // its query is never shown; saving it must still find the element it
    // saved before instead of adding another one on every save.
    if (!n && source.contains(u'\''))
        n = findQueryExactly(source);
    if (!n) {
        const Node first = FirstChild();
        if (first)
            n = AppendChildElement(first, QStringLiteral("QUERY"), QStringLiteral("ST"), source);
        if (!n) {
            RecordError(kErrNoObject, QString::fromUtf16(kNoObjectText) + QStringLiteral(" in Saving Query"), 0,
                        QString());
            return false;
        }
    }
    return SetText(n, text);
}

QList<Node> MappingDocument::QueryNodes()
{
    QList<Node> out;
    for (const pugi::xml_node& n : d->select(SectionPath(QStringLiteral("QUERY")), QString(), QString(), false))
        out.append(Node(n.internal_object()));
    return out;
}

Node MappingDocument::GetMscriptNode()
{
    return GetNode(SectionPath(QStringLiteral("MSCRIPT")));
}

bool MappingDocument::HasMscript()
{
    return bool(GetMscriptNode());
}

QStringList MappingDocument::MscriptTables()
{
    QStringList out;
    for (const Node& c : GetMscriptNode().childElements())
        out.append(c.name());
    return out;
}

Node MappingDocument::GetSourceTableNode(const QString& table)
{
    return GetNode(SectionPath(QStringLiteral("SRCTAB/")) + table.toUpper());
}

QList<Node> MappingDocument::ListedSourceTables()
{
    QList<Node> out;
    for (QString name : str::Split(GetSourceTablesText(), u',')) {
        name.remove(u'\r');
        name.remove(u'\n');
        if (str::Trim(name).isEmpty())
            continue;
        if (const Node t = GetSourceTableNode(name))
            out.append(t);
    }
    return out;
}

Node MappingDocument::GetTargetTableDefinition(const QString& table)
{
    return GetNode(SectionPath(QStringLiteral("TARTAB/")) + table.toUpper());
}

// ---- dumps ----------------------------------------------------------------

Node MappingDocument::GetDumpNode(qint16 number)
{
    return GetNode(SectionPath(QStringLiteral("DUMP")), QStringLiteral("No"), QString::number(number));
}

Node MappingDocument::CreateDumpNode(qint16 number)
{
    return appendToFirstChild(QStringLiteral("DUMP"), QStringLiteral("No"), QString::number(number));
}

Node MappingDocument::CreateDumpNode(qint16 number, const QString& text)
{
    const Node n = CreateDumpNode(number);
    SetNodeAttribute(n, QStringLiteral("TXT"), text);
    return n;
}

QString MappingDocument::GetDumpChildText(qint16 number, const QString& name)
{
    const Node dump = GetDumpNode(number);
    if (dump)
        return dump.childElement(name.toUpper()).text();
    if (number > 0)
        CreateDumpNode(number);
    return QString();
}

QString MappingDocument::DumpTargetTable(const Node& dump)
{
    return dump.attribute(QStringLiteral("TT"));
}

bool MappingDocument::SetDumpTargetTable(const Node& dump, const QString& table)
{
    return SetNodeAttribute(dump, QStringLiteral("TT"), table);
}

std::optional<qint16> MappingDocument::ElementNo(const Node& element)
{
    return str::ToInteger(element.attribute(QStringLiteral("No")));
}

QString MappingDocument::DocText(const Node& element)
{
    return element.attribute(QStringLiteral("TEXT"));
}

bool MappingDocument::SetDocText(const Node& element, const QString& text)
{
    return SetNodeAttribute(element, QStringLiteral("TEXT"), text);
}

Node MappingDocument::WriteRuleElement(const Node& dump, const Node& field, const QString& rule)
{
    Node element = dump.childElement(field.name());
    if (element)
        SetNodeAttribute(element, QStringLiteral("No"), field.attribute(QStringLiteral("No")));
    else
        element = AppendRuleElement(dump, field);
    fillRule(element, rule);
    return element;
}

Node MappingDocument::AppendRuleElement(const Node& dump, const Node& field, const QString& rule)
{
    const Node element =
        AppendChildElement(dump, field.name(), QStringLiteral("No"), field.attribute(QStringLiteral("No")));
    SetNodeAttribute(element, QStringLiteral("TEXT"), QString());
    if (!rule.isNull())
        fillRule(element, rule);
    return element;
}

void MappingDocument::fillRule(const Node& element, const QString& rule)
{
    if (!element)
        return;
    SetText(element, rule);
    // TYPE follows the text as it is stored, whatever form its breaks had.
    const bool lines = LfText(rule).contains(u'\n');
    SetNodeAttribute(element, QStringLiteral("TYPE"), lines ? QStringLiteral("1") : QStringLiteral("0"));
}

QList<Node> MappingDocument::DumpNodes()
{
    QList<Node> out;
    for (const pugi::xml_node& n : d->select(SectionPath(QStringLiteral("DUMP")), QString(), QString(), false))
        out.append(Node(n.internal_object()));
    return out;
}

bool MappingDocument::AddDumpReference(qint16 number, const QString& text)
{
    const qsizetype at = m_dumps.numbers.indexOf(number);
    if (at >= 0) {
        if (m_dumps.texts[at] != text)
            m_dumps.texts[at] = text; // the last text seen wins
        return true;
    }
    if (m_dumps.isEmpty()) {
        m_dumps.numbers[0] = number;
        m_dumps.texts[0] = text;
    } else {
        m_dumps.numbers.append(number);
        m_dumps.texts.append(text);
    }
    if (!GetDumpNode(number))
        CreateDumpNode(number, text); // TXT keeps the text seen first
    return true;
}

// ---- target tables --------------------------------------------------------

Node MappingDocument::GetTargetTableNode(qint16 dumpNumber, const QString& selectorTag)
{
    QString table;
    if (!HasMscript()) {
        table = m_tableName;
    } else {
        qint16 n = dumpNumber;
        if (n == 0)
            n = selectorTag.isEmpty() ? m_dumps.numbers.first() : str::ToInteger(selectorTag).value_or(0);
        table = n != 0 ? GetDumpNode(n).attribute(QStringLiteral("TT")) : m_tableName;
    }
    if (table.isEmpty())
        return Node();
    return GetTargetTableDefinition(table);
}

qint16 MappingDocument::GetDependencyLevel(const Node& field)
{
    if (!field)
        return 1;
    const QString dep = field.attribute(QStringLiteral("DEP"));
    if (!str::IsNumeric(dep) || dep == u"0")
        return 1;
    return str::ToInteger(dep).value_or(1);
}

// ---- documentation text numbers ------------------------------------------

void MappingDocument::SetTextNumber(const QString& type, qint32 number, const QString& key1, const QString& key2)
{
    if (type == u"P")
        SetPreconditionTextNumber(number);
    if (type == u"M")
        SetQueryTextNumber(number, key1);
    if (type == u"D" && str::IsNumeric(key1)) {
        if (const auto dump = str::ToInteger(key1))
            SetRuleTextNumber(number, *dump, key2);
    }
}

void MappingDocument::SetPreconditionTextNumber(qint32 number)
{
    SetNodeAttribute(GetPreconditionNode(), QStringLiteral("TEXT"), QString::number(number));
}

void MappingDocument::SetQueryTextNumber(qint32 number, const QString& key)
{
    // The key names the attribute and the value tested is "": a QUERY is
    // found only if it carries an empty attribute of that name.
    if (str::Trim(key).isEmpty())
        return;
    const Node q = GetNode(SectionPath(QStringLiteral("QUERY")), key, QString());
    if (q)
        SetNodeAttribute(q, QStringLiteral("TEXT"), QString::number(number));
}

void MappingDocument::SetRuleTextNumber(qint32 number, qint16 dump, const QString& field)
{
    const Node dumpNode = GetDumpNode(dump);
    if (!dumpNode)
        return;
    const QString name = ToStoredFieldName(field).toUpper();
    Node rule = dumpNode.childElement(name);
    if (!rule)
        rule = AppendChildElement(dumpNode, name);
    SetNodeAttribute(rule, QStringLiteral("TEXT"), QString::number(number));
}

// ---- tidying --------------------------------------------------------------

void MappingDocument::RemoveQueriesNotIn(const QStringList& sources)
{
    for (const Node& q : QueryNodes()) {
        if (!sources.contains(q.attribute(QStringLiteral("ST"))))
            RemoveChild(q.parent(), q);
    }
}

void MappingDocument::RemoveDumpsNotIn(const DumpReferences& dumps)
{
    for (const Node& dump : DumpNodes()) {
        const auto no = str::ToInteger(dump.attribute(QStringLiteral("No")));
        if (!no || !dumps.contains(*no))
            RemoveChild(dump.parent(), dump);
    }
}

// ---------------------------------------------------------------------------

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
