#include "FieldDefinition.h"

#include "MappingDocument_p.h"

namespace fb {

FieldDefinition FieldDefinition::Read(const Node& field)
{
    // One walk over the element's attributes (a field has a dozen; looking
    // each up by name would walk them a dozen times).
    FieldDefinition d;
    const pugi::xml_node n = detail::toPugi(field.m_node);
    if (!n)
        return d;
    d.elementName = detail::fromUtf8(n.name());
    for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute()) {
        const char* k = a.name();
        QString* target = nullptr;
        switch (k[0]) {
        case 'N':
            target = std::strcmp(k, "No") == 0 ? &d.no : nullptr;
            break;
        case 'F':
            target = std::strcmp(k, "FNo") == 0 ? &d.fieldNumber : nullptr;
            break;
        case 'T':
            target = std::strcmp(k, "TYPE") == 0 ? &d.type : nullptr;
            break;
        case 'L':
            target = std::strcmp(k, "LENG") == 0 ? &d.length : nullptr;
            break;
        case 'D':
            target = std::strcmp(k, "DIGB") == 0     ? &d.digitsBefore
                     : std::strcmp(k, "DIGA") == 0   ? &d.digitsAfter
                     : std::strcmp(k, "DSCA") == 0   ? &d.description
                     : std::strcmp(k, "DOMAIN") == 0 ? &d.domain
                     : std::strcmp(k, "DEP") == 0    ? &d.dependency
                                                     : nullptr;
            break;
        case 'A':
            target = std::strcmp(k, "ADJU") == 0 ? &d.alignment : nullptr;
            break;
        case 'C':
            target = std::strcmp(k, "CASE") == 0 ? &d.letterCase : nullptr;
            break;
        case 'M':
            target = std::strcmp(k, "MAN") == 0 ? &d.mandatory : nullptr;
            break;
        default:
            break;
        }
        if (target)
            *target = detail::fromUtf8(a.value());
    }
    return d;
}

QString TableDescription(const Node& table)
{
    return table.attribute("DSCA");
}

} // namespace fb
