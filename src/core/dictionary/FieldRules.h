#pragma once

#include "core/document/FieldDefinition.h"
#include "core/document/FieldNames.h"

#include <QString>

// The fixed rules that turn a field's attributes into what the user sees and
// into the text of a rule. All are pure functions.
namespace fb {

// The type description of a field ("Byte", "Date", ...) and its length text,
// by the field's one-letter TYPE; both "" for an unknown type.
QString GetFieldTypeText(const FieldDefinition& field, QString& lengthText);

// The text that stands for a source field in a target field's rule, with the
// conversion that the pair of type descriptions needs.
QString BuildFieldExpression(const QString& expression, const QString& sourceType, const QString& targetType);

// ---- cells of a field-list row ----
QString MandatoryMark(const FieldDefinition& field);   // "*" when MAN is "Y"
QString FieldNumberText(const FieldDefinition& field); // FNo with its leading zeros
// Table name, ".", shown field name; all lower case.
QString QualifiedFieldName(const QString& tableName, const QString& storedFieldName);
QString AlignmentWord(const FieldDefinition& field); // from ADJU
QString CaseWord(const FieldDefinition& field);      // from CASE

// One row of a field list, cell by cell.
struct FieldRow {
    QString mandatory;
    QString number;
    QString name;
    QString type;
    QString length;
    QString description;
    QString alignment;
    QString letterCase;
    QString domain;
};
FieldRow MakeFieldRow(const QString& tableName, const FieldDefinition& field);
// The qualified names of a table element's fields, in document order: the
// rows of the rules grid.
QStringList GridNamesOf(const Node& table);

// The rows of every field element of a table element, in document order.
QList<FieldRow> FieldRowsOf(const Node& table);

// The field part of a qualified name: from the tenth character on. Table
// names have eight characters, so the first nine are the table and its dot.
QString FieldPartOf(const QString& qualifiedName);

} // namespace fb
