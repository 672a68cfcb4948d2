#pragma once

#include "Report.h"

// The three layouts of a MappingReport, and the cell texts they share so
// that every format says the same thing in the same words.
namespace fb::detail {

QString RenderHtml(const MappingReport& report);
QString RenderMarkdown(const MappingReport& report);
QString RenderCsv(const MappingReport& report);

QString MandatoryCell(bool mandatory);                // "Yes" or ""
QString DocumentationCell(const ReportField& f);      // the text, or where the host keeps it
QString ProblemLine(const Problem& p);                // "Warning: Mandatory field without a rule"
QString ProblemsCell(const QList<Problem>& problems); // one ProblemLine a line
QString TargetTableCell(const ReportDump& dump);      // the table, or "(none)"
QString CoverageShort(const Coverage& c);             // "7 of 10"
int CoveragePercent(const Coverage& c);               // rounded down: 100 only when complete
QString ProblemCounts(int errors, int warnings);      // "2 errors, 1 warning", "None"
QString OutsideDumpsTitle();                          // the overview's heading for otherProblems

} // namespace fb::detail
