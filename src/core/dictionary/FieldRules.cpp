#include "FieldRules.h"

#include "core/document/TextRules.h"

namespace fb {

QString GetFieldTypeText(const FieldDefinition& field, QString& lengthText)
{
    lengthText.clear();
    const QString& type = field.type;
    const auto digits = [&] { return field.digitsBefore; };
    const auto fraction = [&] { return field.digitsBefore + u',' + field.digitsAfter; };
    const auto leng = [&] { return field.length; };

    if (type.size() != 1)
        return QString();
    switch (type[0].unicode()) {
    case u'B':
        lengthText = digits();
        return QStringLiteral("Byte");
    case u'I':
        lengthText = digits();
        return QStringLiteral("Integer");
    case u'L':
        lengthText = digits();
        return QStringLiteral("Long");
    case u'F':
        lengthText = fraction();
        return QStringLiteral("Float");
    case u'D':
        lengthText = fraction();
        return QStringLiteral("Double");
    case u'S':
        lengthText = leng();
        return QStringLiteral("String");
    case u'M':
        lengthText = leng();
        return QStringLiteral("Multi-Byte String");
    case u'E':
        lengthText = leng();
        return QStringLiteral("Enumerated");
    case u'P':
        lengthText = leng();
        return QStringLiteral("Set");
    case u'T':
        lengthText = QStringLiteral("10");
        return QStringLiteral("Date");
    case u'K':
        lengthText = QStringLiteral("15");
        return QStringLiteral("UTC");
    case u'U':
        return QStringLiteral("Text");
    default:
        return QString();
    }
}

QString BuildFieldExpression(const QString& expression, const QString& sourceType, const QString& targetType)
{
    const auto isString = [](const QString& t) { return t == u"String" || t == u"Multi-Byte String"; };
    if (targetType == u"Date") {
        if (sourceType == u"Date")
            return QStringLiteral("utc(") + expression + QStringLiteral(",0,2)");
        return expression;
    }
    if (targetType == u"UTC") {
        if (sourceType == u"Date")
            return QStringLiteral("utc(") + expression + QStringLiteral(",0)");
        if (sourceType == u"UTC")
            return QStringLiteral("utc.utc(") + expression + u')';
        return expression;
    }
    if (isString(targetType) && isString(sourceType) && expression.contains(u'(')) {
        QString out = expression;
        out.replace(u'(', QStringLiteral("(1,"));
        return out;
    }
    return expression;
}

QString MandatoryMark(const FieldDefinition& field)
{
    return field.mandatory == u"Y" ? QStringLiteral("*") : QString();
}

QString FieldNumberText(const FieldDefinition& field)
{
    const QString& fno = field.fieldNumber;
    const auto value = str::NumericValue(fno);
    if (!value)
        return QStringLiteral("000");
    // Two zeros for one-digit and for three-digit numbers alike (123 shows as
    // 00123); the text itself, not the value, is padded.
    if (*value <= 9 || *value >= 100)
        return QStringLiteral("00") + fno;
    return u'0' + fno;
}

QString QualifiedFieldName(const QString& tableName, const QString& storedFieldName)
{
    return tableName.toLower() + u'.' + ToDisplayFieldName(storedFieldName).toLower();
}

namespace {
// A row with the table's part of the qualified name ("table.") given.
FieldRow rowWithPrefix(const QString& prefix, const FieldDefinition& field)
{
    FieldRow row;
    row.mandatory = MandatoryMark(field);
    row.number = FieldNumberText(field);
    row.name = prefix + ToDisplayFieldName(field.elementName).toLower();
    row.type = GetFieldTypeText(field, row.length);
    row.description = field.description;
    row.alignment = AlignmentWord(field);
    row.letterCase = CaseWord(field);
    row.domain = field.domain;
    return row;
}
} // namespace

QString AlignmentWord(const FieldDefinition& field)
{
    const QString& a = field.alignment;
    if (a == u"R")
        return QStringLiteral("Right");
    if (a == u"L")
        return QStringLiteral("Left");
    if (a == u"C")
        return QStringLiteral("Centre");
    return QStringLiteral("No");
}

QString CaseWord(const FieldDefinition& field)
{
    const QString& c = field.letterCase;
    if (c == u"U")
        return QStringLiteral("Upper");
    if (c == u"L")
        return QStringLiteral("Lower");
    return QStringLiteral("No");
}

FieldRow MakeFieldRow(const QString& tableName, const FieldDefinition& field)
{
    return rowWithPrefix(tableName.toLower() + u'.', field);
}

QList<FieldRow> FieldRowsOf(const Node& table)
{
    QList<FieldRow> rows;
    const QString prefix = table.name().toLower() + u'.';
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
        rows.append(rowWithPrefix(prefix, FieldDefinition::Read(f)));
    return rows;
}

QString FieldPartOf(const QString& qualifiedName)
{
    return qualifiedName.mid(9);
}

QStringList GridNamesOf(const Node& table)
{
    QStringList names;
    const QString tableName = table.name();
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
        names.append(QualifiedFieldName(tableName, f.name()));
    return names;
}

} // namespace fb
