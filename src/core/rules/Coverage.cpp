#include "Coverage.h"

#include "core/dictionary/FieldRules.h"

namespace fb {

QList<TargetField> TargetFieldsOf(const Node& table)
{
    QList<TargetField> fields;
    const QString tableName = table.name();
    for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement())
        fields.append({QualifiedFieldName(tableName, f.name()), FieldDefinition::Read(f)});
    return fields;
}

bool HasRule(const QString& rule)
{
    for (const QChar c : rule)
        if (!c.isSpace())
            return true;
    return false;
}

Coverage CoverageOf(const QList<TargetField>& fields, const QList<QString>& rulesByRow)
{
    Coverage c;
    c.fields = int(fields.size());
    for (int row = 0; row < fields.size(); ++row) {
        const bool ruled = row < rulesByRow.size() && HasRule(rulesByRow[row]);
        c.withRule += ruled ? 1 : 0;
        c.mandatoryOpen += !ruled && fields[row].mandatory() ? 1 : 0;
    }
    return c;
}

Coverage CoverageOf(const QList<TargetField>& fields, const QList<GridRule>& rules)
{
    QList<QString> byRow(fields.size());
    for (const GridRule& rule : rules)
        if (rule.row >= 0 && rule.row < byRow.size())
            byRow[rule.row] = rule.text;
    return CoverageOf(fields, byRow);
}

QString CoverageText(const Coverage& c)
{
    QString text = QStringLiteral("%1 of %2 fields have a rule").arg(c.withRule).arg(c.fields);
    if (c.mandatoryOpen == 1)
        text += QStringLiteral("; 1 mandatory field has none");
    else if (c.mandatoryOpen > 1)
        text += QStringLiteral("; %1 mandatory fields have none").arg(c.mandatoryOpen);
    return text;
}

} // namespace fb
