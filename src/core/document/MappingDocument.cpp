#include "FieldNames.h"
#include "LineBreaks.h"
#include "MappingDocument_p.h"
#include "TextCodec.h"
#include "TextFile.h"
#include "TextRules.h"

#include <QLoggingCategory>
#include <QStringDecoder>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace fb {

Q_LOGGING_CATEGORY(lcDocument, "fieldbridge.document", QtWarningMsg)

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

// ---- the index of the root's children --------------------------------------

const MappingDocument::Impl::RootIndex& MappingDocument::Impl::rootIndex() const
{
    if (index.valid)
        return index;
    index.byName.clear();
    index.byAttribute.clear();
    index.root = doc.document_element();
    for (pugi::xml_node c = index.root.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element)
            index.byName[QByteArray(c.name())].push_back(c);
    index.valid = true;
    return index;
}

void MappingDocument::Impl::indexAppended(pugi::xml_node child) const
{
    if (!index.valid || child.parent() != index.root)
        return;
    const QByteArray name(child.name());
    index.byName[name].push_back(child);
    // Appended last, the child is the first of its value only when there was
    // none before it.
    for (auto it = index.byAttribute.begin(); it != index.byAttribute.end(); ++it) {
        const qsizetype at = it.key().indexOf('@');
        if (it.key().left(at) != name)
            continue;
        const pugi::xml_attribute a = child.attribute(it.key().constData() + at + 1);
        if (a && !it->contains(QByteArray(a.value())))
            it->insert(QByteArray(a.value()), child);
    }
}

const QHash<QByteArray, pugi::xml_node>& MappingDocument::Impl::attributeIndex(const QByteArray& name,
                                                                               const char* attribute) const
{
    const RootIndex& i = rootIndex();
    const QByteArray key = name + '@' + attribute;
    auto it = index.byAttribute.find(key);
    if (it != index.byAttribute.end())
        return *it;
    QHash<QByteArray, pugi::xml_node> values;
    for (const pugi::xml_node& c : i.byName.value(name)) {
        const pugi::xml_attribute a = c.attribute(attribute);
        if (a && !values.contains(QByteArray(a.value())))
            values.insert(QByteArray(a.value()), c);
    }
    return *index.byAttribute.insert(key, std::move(values));
}

std::vector<pugi::xml_node> MappingDocument::Impl::select(const QString& path, const QString& attrName,
                                                          const QString& attrValue, bool firstOnly) const
{
    std::vector<pugi::xml_node> found;
    auto cached = steps.constFind(path);
    if (cached == steps.cend()) {
        std::vector<std::string> parsed;
        if (path.startsWith(u'/')) {
            for (const QString& s : path.mid(1).split(u'/')) {
                if (s.isEmpty()) {
                    parsed.clear();
                    break;
                }
                parsed.push_back(detail::utf8(s));
            }
        }
        cached = steps.insert(path, parsed);
    }
    const std::vector<std::string>& parts = *cached;
    const std::string an = detail::utf8(attrName);
    const std::string av = detail::utf8(attrValue);
    const bool test = !attrName.isEmpty();
    const auto matches = [&](pugi::xml_node n) {
        if (!test)
            return true;
        const pugi::xml_attribute a = n.attribute(an.c_str());
        return a && av == a.value();
    };
    if (parts.size() < 2) {
        // The root alone (or nothing): no index needed.
        const pugi::xml_node root = doc.document_element();
        if (parts.size() == 1 && root && parts[0] == root.name() && matches(root))
            found.push_back(root);
        return found;
    }
    const RootIndex& i = rootIndex();
    if (!i.root || parts[0] != i.root.name())
        return found;
    const QByteArray section = QByteArray::fromRawData(parts[1].data(), qsizetype(parts[1].size()));
    if (parts.size() == 2 && test && firstOnly) {
        const pugi::xml_node n =
            attributeIndex(QByteArray(section), an.c_str()).value(QByteArray(av.c_str()));
        if (n)
            found.push_back(n);
        return found;
    }
    // Depth-first in document order over the matching steps below each
    // matching child of the root.
    struct Frame {
        pugi::xml_node node;
        size_t depth;
    };
    std::vector<Frame> stack;
    for (const pugi::xml_node& c : i.byName.value(section)) {
        stack.push_back({c, 1});
        while (!stack.empty()) {
            const Frame f = stack.back();
            stack.pop_back();
            if (f.depth + 1 == parts.size()) {
                if (!matches(f.node))
                    continue;
                found.push_back(f.node);
                if (firstOnly)
                    return found;
                continue;
            }
            const size_t mark = stack.size();
            for (pugi::xml_node k = f.node.first_child(); k; k = k.next_sibling())
                if (k.type() == pugi::node_element && parts[f.depth + 1] == k.name())
                    stack.push_back({k, f.depth + 1});
            std::reverse(stack.begin() + std::ptrdiff_t(mark), stack.end());
        }
    }
    return found;
}

MappingDocument::MappingDocument() : d(std::make_unique<Impl>()), m_tableName(str::FixedWidth(QString(), 8))
{}

MappingDocument::~MappingDocument() = default;

void MappingDocument::touchChildrenOf(pugi::xml_node_struct* node)
{
    // The children of the root (or the root itself) are about to change.
    const pugi::xml_node n(node);
    if (n == d->doc.document_element() || n.type() == pugi::node_document)
        d->invalidate();
}

bool MappingDocument::LoadXml(const QString& text)
{
    d->invalidate();
    d->doc.reset();
    d->buffer.clear();
    m_dumps.clear();
    m_knownDumps.clear();
    m_migrateTables = QStringList{QString()};

    const detail::MarkupVerdict verdict = detail::CheckMarkup(text);
    bool ok = verdict.wellFormed;
    if (ok) {
        d->buffer = text.toUtf8();
        ok = bool(d->doc.load_buffer_inplace(d->buffer.data(), size_t(d->buffer.size()), kParseFlags,
                                             pugi::encoding_utf8));
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
        ok = ok && elements == 1;
    }
    // Only a character reference can leave a CR in element text, or text of
    // only blanks (the parser turns literal CRs into LF and drops blank
    // text). The serialiser would write them as they are, and the next parse
    // would change them after all; doing that now keeps every later read the
    // same.
    if (ok && verdict.textToNormalise)
        detail::NormaliseText(d->doc);
    if (!ok) {
        d->doc.reset();
        d->buffer.clear();
        RecordError(kErrInvalidXml, QString::fromUtf16(kInvalidXmlText), 0, QString());
    }
    return ok;
}

QByteArray MappingDocument::SerializeUtf8() const
{
    struct Writer : pugi::xml_writer {
        QByteArray out;
        void write(const void* data, size_t size) override
        {
            out.append(static_cast<const char*>(data), qsizetype(size));
        }
    } writer;
    d->doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return writer.out;
}

QString MappingDocument::SerializeIndented() const
{
    struct Writer : pugi::xml_writer {
        QByteArray out;
        void write(const void* data, size_t size) override
        {
            out.append(static_cast<const char*>(data), qsizetype(size));
        }
    } writer;
    d->doc.save(writer, "  ", pugi::format_indent | pugi::format_no_declaration, pugi::encoding_utf8);
    return Utf8Text(writer.out);
}

QString MappingDocument::Serialize() const
{
    return Utf8Text(SerializeUtf8());
}

QString MappingDocument::SerializeToFile(const QString& path, bool* written, QString* error) const
{
    struct Writer : pugi::xml_writer {
        TextFileWriter file;
        // Stateful: a piece may end inside a character.
        QStringDecoder decoder{QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom};
        QString text;
        explicit Writer(const QString& p) : file(p) {}
        void write(const void* data, size_t size) override
        {
            file.write(static_cast<const char*>(data), qsizetype(size));
            text += decoder.decode(QByteArrayView(static_cast<const char*>(data), qsizetype(size)));
        }
    } writer(path);
    // The text is about as long as the one loaded.
    writer.text.reserve(d->buffer.size() + d->buffer.size() / 16);
    d->doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    const bool ok = writer.file.commit();
    if (written)
        *written = ok;
    if (error)
        *error = writer.file.error();
    return std::move(writer.text);
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

void MappingDocument::RecordError(qint16 code, const QString& text, qint16 fallbackCode,
                                  const QString& fallbackText)
{
    const ErrorRecord error = code != 0 ? ErrorRecord{code, text} : ErrorRecord{fallbackCode, fallbackText};
    // Nothing in the control shows it; the category lets a developer see it.
    qCDebug(lcDocument, "error %d: %s%s", int(error.code), qPrintable(error.text),
            m_error.code != 0 ? " (an earlier error is kept)" : "");
    if (m_error.code == 0)
        m_error = error;
}

// ---- node access layer ----------------------------------------------------

QString MappingDocument::expressionFailure(const QString& path, const QString& attrName,
                                           const QString& attrValue)
{
    // The value goes into the expression unquoted: an apostrophe breaks it.
    // Such a lookup is refused as a malformed expression even where the
    // broken expression would happen to parse.
    if (attrValue.contains(u'\''))
        return QStringLiteral("Unexpected apostrophe in expression: ") + path + QStringLiteral("[@") +
               attrName + QStringLiteral("='") + attrValue + QStringLiteral("']");
    // Whether an expression compiles depends on its path and attribute name
    // only: a string literal takes any character but its quote (and a NUL,
    // which ends the expression). So each pair is compiled once.
    const bool plain = !attrValue.contains(QChar(0));
    const QString key = path + QChar(1) + attrName;
    if (plain) {
        if (const auto known = d->compiled.constFind(key); known != d->compiled.cend())
            return *known;
    }
    const QString expr = attrName.isEmpty() ? path
                                            : path + QStringLiteral("[@") + attrName + QStringLiteral("='") +
                                                  attrValue + QStringLiteral("']");
    QString failure;
    try {
        pugi::xpath_query check(utf8(expr).c_str());
    } catch (const pugi::xpath_exception& e) {
        failure = QString::fromUtf8(e.what());
    }
    if (plain)
        d->compiled.insert(key, failure);
    return failure;
}

Node MappingDocument::GetNode(const QString& path, const QString& attrName, const QString& attrValue)
{
    const QString failure = expressionFailure(path, attrName, attrValue);
    if (!failure.isNull()) {
        RecordError(0, failure, kErrGetNode, QString::fromUtf16(kGetNodeText));
        return Node();
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
    if (!setAttribute(node, name, value))
        return false;
    // A child of the root changed an attribute that an index may hold.
    if (toPugi(node.m_node).parent() == d->doc.document_element())
        d->dropAttributeIndexes();
    return true;
}

bool MappingDocument::RemoveAttribute(const Node& node, const QString& name)
{
    pugi::xml_node n = toPugi(node.m_node);
    if (n.parent() == d->doc.document_element())
        d->dropAttributeIndexes();
    return n.remove_attribute(utf8(name).c_str());
}

bool MappingDocument::setAttribute(const Node& node, const QString& name, const QString& value)
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
        setAttribute(result, attrName, attrValue);
    if (p.type() == pugi::node_document)
        d->invalidate();
    else
        d->indexAppended(child);
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
    const QString value = StoredText(text);
    touchChildrenOf(n.internal_object());
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
    touchChildrenOf(parent.m_node);
    return toPugi(parent.m_node).remove_child(toPugi(child.m_node));
}

void MappingDocument::RemoveChildNodes(const Node& node)
{
    pugi::xml_node n = toPugi(node.m_node);
    if (!n)
        return;
    touchChildrenOf(n.internal_object());
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
    touchChildrenOf(p.internal_object());
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
