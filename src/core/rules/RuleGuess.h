#pragma once

#include <QList>
#include <QString>

namespace fb {

// One entry of a field list as the rule builders read it: the qualified
// field (table name, ".", field name) and its type description.
struct FieldEntry {
    QString qualifiedName;
    QString type;
};

// A rule for one target field: its field name (the qualified name from the
// tenth character on) and the rule text.
struct GuessedRule {
    QString fieldName;
    QString rule;
};

// Guesses the rules of a dump by field names. For each target field, in the
// order of the target list, a source field of the same field name gives the
// rule; among several, a source field whose table has the target table's own
// name wins and ends the search, otherwise the last one in the source list
// wins. An element of an array target field (name(3)) is matched by its own
// name exactly and by the plain name (name) as well. Target fields without a
// match get no entry. The source fields are indexed by name once, so the work
// grows with the sum, not the product, of the two list sizes.
QList<GuessedRule> GuessRules(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets);

// The rule that maps the ticked source fields onto one target field: their
// expressions for the target's type, joined with ",".
QString BuildMappedRule(const QList<FieldEntry>& tickedSources, const QString& targetType);

} // namespace fb
