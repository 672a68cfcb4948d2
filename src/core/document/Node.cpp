#include "MappingDocument_p.h"

namespace fb {

using detail::fromUtf8;
using detail::toPugi;
using detail::utf8;

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
    if (first && !first.next_sibling() &&
        (first.type() == pugi::node_pcdata || first.type() == pugi::node_cdata))
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

QString Node::attribute(const char* name) const
{
    if (!m_node)
        return QString();
    const pugi::xml_attribute a = toPugi(m_node).attribute(name);
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
    return m_node ? childElement(utf8(name).c_str()) : Node();
}

Node Node::childElement(const char* name) const
{
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && std::strcmp(c.name(), name) == 0)
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

ChildrenByName::ChildrenByName(const Node& parent)
{
    for (Node c = parent.firstChildElement(); c; c = c.nextSiblingElement()) {
        const QByteArrayView name(toPugi(c.m_node).name());
        if (!m_first.contains(name))
            m_first.insert(name, c);
    }
}

Node ChildrenByName::first(const QString& name) const
{
    return m_first.value(QByteArrayView(utf8(name)));
}

QList<Node> Node::childNodes() const
{
    QList<Node> out;
    for (pugi::xml_node c = toPugi(m_node).first_child(); c; c = c.next_sibling())
        out.append(Node(c.internal_object()));
    return out;
}

} // namespace fb
