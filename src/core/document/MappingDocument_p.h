#pragma once

// What the files of the mapping document share behind its interface: the
// pugixml document itself and the conversions between its handles and text.

#include "MappingDocument.h"
#include "TextCodec.h"

#include <pugixml.hpp>

#include <QString>

#include <cstring>
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

// Markup that the parser accepts and XML does not, and what a character
// reference can leave in element text (see MarkupChecks.cpp).
bool PassesMarkupChecks(QStringView text);
bool HasRepeatedAttribute(const pugi::xml_document& doc);
void NormaliseTextLineEnds(pugi::xml_document& doc);

} // namespace fb::detail

namespace fb {

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
            steps.push_back(detail::utf8(s));
        }
        const std::string an = detail::utf8(attrName);
        const std::string av = detail::utf8(attrValue);
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


} // namespace fb
