#include "FieldDefinition.h"

namespace fb {

FieldDefinition FieldDefinition::Read(const Node& field)
{
    FieldDefinition d;
    d.elementName = field.name();
    d.no = field.attribute(QStringLiteral("No"));
    d.fieldNumber = field.attribute(QStringLiteral("FNo"));
    d.type = field.attribute(QStringLiteral("TYPE"));
    d.length = field.attribute(QStringLiteral("LENG"));
    d.digitsBefore = field.attribute(QStringLiteral("DIGB"));
    d.digitsAfter = field.attribute(QStringLiteral("DIGA"));
    d.description = field.attribute(QStringLiteral("DSCA"));
    d.alignment = field.attribute(QStringLiteral("ADJU"));
    d.letterCase = field.attribute(QStringLiteral("CASE"));
    d.domain = field.attribute(QStringLiteral("DOMAIN"));
    d.mandatory = field.attribute(QStringLiteral("MAN"));
    d.dependency = field.attribute(QStringLiteral("DEP"));
    return d;
}

QString TableDescription(const Node& table)
{
    return table.attribute(QStringLiteral("DSCA"));
}

} // namespace fb
