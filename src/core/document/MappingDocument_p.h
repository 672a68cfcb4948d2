#pragma once

// What the files of the mapping document share behind its interface: the
// pugixml document itself and the conversions between its handles and text.

#include "MappingDocument.h"
#include "TextCodec.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <cstring>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace fb::detail {

inline pugi::xml_node toPugi(pugi::xml_node_struct* n)
{
    return pugi::xml_node(n);
}

inline std::string utf8(const QString& s)
{
    const QByteArray b = s.toUtf8();
    return std::string(b.constData(), size_t(b.size()));
}

inline QString fromUtf8(const char* s)
{
    return Utf8Text(s, qsizetype(std::strlen(s)));
}

// Markup that the parser accepts and XML does not (see MarkupChecks.cpp):
// whether the text is well-formed, and whether a character reference puts a
// break or a blank into element text.
struct MarkupVerdict {
    bool wellFormed = false;
    bool textToNormalise = false;
};
MarkupVerdict CheckMarkup(QStringView text);
// Element text as the document stores it (StoredText): each break as one
// LF, no text of only blanks and breaks.
void NormaliseText(pugi::xml_document& doc);

} // namespace fb::detail

namespace fb {

struct MappingDocument::Impl {
    pugi::xml_document doc;
    // The text the document was parsed from, in place: the DOM's strings
    // point into it, so it lives as long as the document does.
    QByteArray buffer;

    // The root element's children by name, and for a name and an attribute
    // the first child of that name with each value. Almost every lookup is
    // "/root/SECTION" with or without one attribute test (a dump by its No);
    // with these they take no walk over the root's children. Kept in step by
    // the document's own mutations: an append extends them, anything else
    // that changes the root's children or their indexed attributes drops them.
    struct RootIndex {
        bool valid = false;
        pugi::xml_node root;
        QHash<QByteArray, std::vector<pugi::xml_node>> byName;
        QHash<QByteArray, QHash<QByteArray, pugi::xml_node>> byAttribute; // key: name + '@' + attribute
    };
    mutable RootIndex index;
    // Paths split into steps, by path.
    mutable QHash<QString, std::vector<std::string>> steps;
    // Whether an expression compiles, by path and attribute name: its
    // failure, or a null text.
    QHash<QString, QString> compiled;

    void invalidate() const { index.valid = false; }
    void dropAttributeIndexes() const { index.byAttribute.clear(); }
    const RootIndex& rootIndex() const;
    // A child appended to the root element, its attributes set.
    void indexAppended(pugi::xml_node child) const;
    const QHash<QByteArray, pugi::xml_node>& attributeIndex(const QByteArray& name,
                                                            const char* attribute) const;

    // All elements that an absolute path of plain steps names, in document
    // order. Each step is compared exactly with an element name, blanks
    // included, so a blank-padded table name finds nothing. With an attribute
    // name, only elements whose attribute has exactly that value qualify.
    std::vector<pugi::xml_node> select(const QString& path, const QString& attrName, const QString& attrValue,
                                       bool firstOnly) const;
};

} // namespace fb
