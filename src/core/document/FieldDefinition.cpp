#include "FieldDefinition.h"

namespace fb {

FieldDefinition FieldDefinition::Read(const Node& field)
{
    FieldDefinition d;
    d.elementName = field.name();
    d.no = field.attribute("No");
    d.fieldNumber = field.attribute("FNo");
    d.type = field.attribute("TYPE");
    d.length = field.attribute("LENG");
    d.digitsBefore = field.attribute("DIGB");
    d.digitsAfter = field.attribute("DIGA");
    d.description = field.attribute("DSCA");
    d.alignment = field.attribute("ADJU");
    d.letterCase = field.attribute("CASE");
    d.domain = field.attribute("DOMAIN");
    d.mandatory = field.attribute("MAN");
    d.dependency = field.attribute("DEP");
    return d;
}

QString TableDescription(const Node& table)
{
    return table.attribute("DSCA");
}

} // namespace fb
