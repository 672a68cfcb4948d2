#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>

namespace pugi {
struct xml_node_struct;
}

namespace fb {

class MappingDocument;

// A handle on one node of the mapping object. Like the DOM's own handles it is
// cheap to copy and a null handle answers every question with "" or no node,
// so callers can chain lookups without testing each step. Handles stay valid
// until the node is removed or the document is loaded anew. Changing a node is
// the business of MappingDocument, the one owner of the DOM.
class Node {
public:
    Node() = default;

    bool isNull() const { return m_node == nullptr; }
    explicit operator bool() const { return m_node != nullptr; }

    bool isElement() const;
    QString name() const;
    // All text below the node (text and CDATA of every descendant, in document
    // order), as the parser delivered it.
    QString text() const;
    // The attribute's value, or "" when the node has no such attribute.
    QString attribute(const QString& name) const;
    // The same for a name known in advance (ASCII): no copy of the name.
    QString attribute(const char* name) const;
    bool hasAttribute(const QString& name) const;

    Node parent() const;
    bool hasChildNodes() const;
    Node firstChildElement() const;
    Node nextSiblingElement() const;
    // The first child element with exactly this name (case-sensitive).
    Node childElement(const QString& name) const;
    Node childElement(const char* name) const;
    QList<Node> childElements() const;
    // Every child node, whatever its kind, in document order.
    QList<Node> childNodes() const;

    friend bool operator==(const Node& a, const Node& b) { return a.m_node == b.m_node; }

private:
    friend class MappingDocument;
    friend struct FieldDefinition;
    friend class ChildrenByName;
    explicit Node(pugi::xml_node_struct* node) : m_node(node) {}
    pugi::xml_node_struct* m_node = nullptr;
};

// The first child element of each name under a parent, gathered in one pass
// without copying a name: for a parent whose children are looked up by name
// one after the other. Valid while the parent's children stay as they are.
class ChildrenByName {
public:
    explicit ChildrenByName(const Node& parent);
    // What parent.childElement(name) finds.
    Node first(const QString& name) const;

private:
    QHash<QByteArrayView, Node> m_first; // the names are the document's own bytes
};

} // namespace fb
