#pragma once

#include "core/document/MappingDocument.h"

#include <QList>
#include <QString>
#include <functional>

// What the commands of the "Define Dumps" tab do to the DUMP elements of a
// mapping object: the one place that writes rule elements, reads a dump's
// rules, binds a dump to a target table, copies rules and answers whether a
// dump has rules.
namespace fb {

// One rule as the grid shows it: its row (the field's No less one) and its
// text decoded for display.
struct GridRule {
    int row;
    QString text;
};

// Writes the rules of the grid into the dump, for each field element of the
// target table in document order: the rule in the field's row (No less one)
// is written into the field's rule element, created when missing; an empty
// rule removes the element. Fields whose row lies outside the grid, or whose
// No is not a number, are left alone.
void StoreRules(MappingDocument& doc, const Node& dump, const Node& targetTable, int rowCount,
                const std::function<QString(int row)>& ruleOfRow);

// The rules of a dump, in element order, each decoded for display (the text
// of the first child named like the element in upper case). Elements whose
// No is not a number are left out.
QList<GridRule> RulesOfDump(MappingDocument& doc, qint16 number);

// Binds the dump to the table and gives the table's first field the rule
// "default()"; a table without fields gets no rule. Nothing is removed.
void BindDumpToTable(MappingDocument& doc, const Node& dump, const QString& table);

// Binds the dump to another table: TT, then every child node of the dump is
// removed, then the first field's "default()" rule.
void RebindDump(MappingDocument& doc, const Node& dump, const QString& table);

// True when some rule element of the dump has a text or a documentation text.
bool DumpHasRules(const Node& dump);

// Replaces every child node of the destination by a deep copy of each child
// node of the source, in document order; the number of nodes copied.
int CopyDumpRules(MappingDocument& doc, const Node& source, const Node& destination);

} // namespace fb
