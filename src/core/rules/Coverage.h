#pragma once

#include "DumpStore.h"
#include "core/document/FieldDefinition.h"

#include <QList>
#include <QString>

// How far the rules of a dump cover its target table: the measure that the
// coverage label, the dump selector's tool tips, the checks and the report
// all show.
namespace fb {

// A field of a dump's target table as the rules grid lays it out: rows in
// the document order of the field elements.
struct TargetField {
    QString name; // qualified, as the grid shows it
    FieldDefinition definition;
    bool mandatory() const { return definition.mandatory == u"Y"; }
};
QList<TargetField> TargetFieldsOf(const Node& table);

// Whether a rule cell holds a rule: anything but blanks.
bool HasRule(const QString& rule);

struct Coverage {
    int fields = 0;        // target fields
    int withRule = 0;      // of them, fields that have a rule
    int mandatoryOpen = 0; // mandatory fields without a rule
    bool operator==(const Coverage&) const = default;
};

// The coverage of rules laid out by grid row (one entry per row).
Coverage CoverageOf(const QList<TargetField>& fields, const QList<QString>& rulesByRow);
// The same for rules as a dump stores them; rows outside the table count for
// nothing.
Coverage CoverageOf(const QList<TargetField>& fields, const QList<GridRule>& rules);
// "212 of 400 fields have a rule; 3 mandatory fields have none".
QString CoverageText(const Coverage& coverage);

} // namespace fb
