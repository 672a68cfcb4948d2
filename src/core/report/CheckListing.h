#pragma once

#include "core/rules/Checks.h"

#include <QList>
#include <QString>
#include <optional>

// The problems of a mapping as a listing for a terminal or a pipeline, and
// the exit status that goes with them.
namespace fb {

enum class ListingFormat { Text, Json };

// "text" or "json" (any letter case); nullopt for others.
std::optional<ListingFormat> ListingFormatFromName(const QString& name);

// Text: one line per problem, four columns separated by a tab: the
// severity ("Error", "Warning"), the dump number ("-" outside the dumps),
// the field ("-" for none) and the message; tabs and line breaks inside a
// column become blanks. Nothing for no problem.
//
// JSON: an array with one object per problem, in order:
//   {"severity": "error"|"warning", "kind": "unknown-table"|..., "dump": 3 or null,
//    "field": "table.field" or null, "message": "..."}
QString RenderCheckListing(const QList<Problem>& problems, ListingFormat format);

// The kind as the JSON names it: "unknown-table", "unknown-field",
// "type-loss", "mandatory-without-rule", "unreferenced-dump",
// "query-not-migrated".
QString ProblemKindName(ProblemKind kind);

// 0 when no problem is an error, 1 when at least one is.
int CheckExitStatus(const QList<Problem>& problems);

} // namespace fb
