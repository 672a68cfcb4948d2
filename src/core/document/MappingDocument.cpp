#include "MappingDocument_p.h"

#include "FieldNames.h"
#include "LineBreaks.h"
#include "TextCodec.h"
#include "TextRules.h"


#include <QLoggingCategory>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace fb {

Q_LOGGING_CATEGORY(lcDocument, "fieldbridge.document")

using detail::fromUtf8;
using detail::toPugi;
using detail::utf8;

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

bool canHoldElements(pugi::xml_node n)
{
    return n.type() == pugi::node_element || n.type() == pugi::node_document;
}

} // namespace

MappingDocument::MappingDocument() : d(std::make_unique<Impl>()), m_tableName(str::FixedWidth(QString(), 8)) {}

MappingDocument::~MappingDocument() = default;

bool MappingDocument::LoadXml(const QString& text)
{
    d->doc.reset();
    m_dumps.clear();
    m_knownDumps.clear();
    m_migrateTables = QStringList{QString()};

    bool ok = detail::PassesMarkupChecks(text);
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
        ok = ok && elements == 1 && !detail::HasRepeatedAttribute(d->doc);
    }
    // Only a character reference can leave a CR in element text (the parser
    // turns literal ones into LF). The serialiser would write it as it is,
    // and the next parse would turn it into LF after all; doing that now
    // keeps every later read the same.
    if (ok && text.contains(QStringLiteral("&#")))
        detail::NormaliseTextLineEnds(d->doc);
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

} // namespace fb
