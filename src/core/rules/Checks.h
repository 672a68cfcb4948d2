#pragma once

#include "Coverage.h"
#include "DumpStore.h"
#include "core/document/MappingDocument.h"

#include <QHash>
#include <QList>
#include <QString>

// The checks of a mapping: what a rule names that the listed source tables
// do not have, conversions that lose data, mandatory fields left open, and
// work that the next read of the document will remove.
namespace fb {

enum class Severity { Error, Warning };
enum class ProblemKind {
    UnknownTable,         // a rule names a table.field whose table is not listed
    UnknownField,         // ... whose field the listed table lacks
    TypeLoss,             // the source field's type cannot go into the target field without loss
    MandatoryWithoutRule, // a mandatory target field has no rule
    UnreferencedDump,     // a dump holds rules but no script references it
    QueryNotMigrated,     // a main query holds text for a table no longer migrated
};

struct Problem {
    Severity severity = Severity::Error;
    ProblemKind kind = ProblemKind::UnknownTable;
    qint16 dump = 0; // 0 for a problem outside the dumps
    QString field;   // the target field, qualified as the grid shows it; "" for none
    int row = -1;    // the field's row in the rules grid
    QString message;
    bool operator==(const Problem&) const = default;
};

QString SeverityText(Severity severity); // "Error", "Warning"

// A table.field that a rule names: lower case, the field in its shown form
// (name(3) for an array element, whether written name(3) or name(1,3)).
struct FieldReference {
    QString table;
    QString field;
    qsizetype position = 0; // where it starts in the rule
    qsizetype length = 0;   // how much of the rule it takes
};
// Every table.field of the rule whose table part has the form of a table
// name; text in double quotes is skipped.
QList<FieldReference> FieldReferences(const QString& rule);

// The fields of the listed source tables by table and shown field name.
class SourceCatalogue {
public:
    SourceCatalogue() = default;
    explicit SourceCatalogue(MappingDocument& doc);
    bool isListed(const QString& table) const { return m_tables.contains(table); }
    // The field's definition, or null when the table lacks it.
    const FieldDefinition* field(const QString& table, const QString& field) const;
    // Any field of the table whose shown name begins with "field(": an array
    // named as a whole.
    bool hasArray(const QString& table, const QString& field) const;

private:
    QHash<QString, QHash<QString, FieldDefinition>> m_tables;
};

// The problems of one dump whose rules are given by grid row (the grid's
// text when the grid holds the dump, else what the dump stores), in row
// order: per row the rule's own problems, then the mandatory mark.
QList<Problem> CheckDumpRules(qint16 dump, const QList<TargetField>& fields, const QList<QString>& rulesByRow,
                              const SourceCatalogue& sources);
// A dump's stored rules laid out by grid row, for a table of that many fields.
QList<QString> StoredRulesByRow(MappingDocument& doc, qint16 dump, qsizetype rows);
// The same for a dump as the document stores it.
QList<Problem> CheckStoredDump(MappingDocument& doc, qint16 dump, const SourceCatalogue& sources);
// Dumps holding rules that no script references, and queries holding text
// for tables no longer migrated: the document's references as last scanned.
QList<Problem> CheckSections(MappingDocument& doc);
// The dumps whose rules the checks look at, as the dump selector offers
// them: those numbered 1 to 999 that the scripts reference and the document
// holds, each once, in document order.
QList<qint16> CheckedDumps(MappingDocument& doc);
// Every check over the whole document: the sections, then every referenced
// dump in document order.
QList<Problem> CheckMapping(MappingDocument& doc);

// The dumps the scripts reference, with the text each reference pairs with
// its number, as the next read of the document works them out; the
// document's own lists stay as they were.
DumpReferences ReferencedDumpsOf(MappingDocument& doc);

// Works out the migrate tables and the referenced dumps from the scripts,
// quietly and without creating any element: what a headless reader does
// before checking.
void ScanScripts(MappingDocument& doc);

} // namespace fb
