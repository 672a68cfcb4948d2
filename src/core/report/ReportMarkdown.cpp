// The report as GitHub-flavoured Markdown: headings, an overview table and a
// table of target fields per dump.

#include "ReportRenderers_p.h"

namespace fb::detail {

namespace {

// Text as it is, whatever Markdown would make of it: every character that
// can start markup, a link, inline HTML, an entity or math is escaped with a
// backslash, "|" included so that a cell stays one cell; a line break becomes
// <br> in a cell (a table row is one line) and a blank elsewhere.
QString md(const QString& text, bool cell = true)
{
    static const QString special = QStringLiteral("\\`*_[]<>&|~$#");
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        if (c == u'\n')
            out += cell ? QStringLiteral("<br>") : QStringLiteral(" ");
        else if (c == u'\r')
            continue;
        else if (special.contains(c))
            out += u'\\' + QString(c);
        else
            out += c;
    }
    return out;
}

void row(ReportOut& out, const QStringList& cells)
{
    out += QStringLiteral("|");
    for (const QString& c : cells)
        out += u' ' + md(c) + QStringLiteral(" |");
    out += u'\n';
}

void tableHead(ReportOut& out, const QStringList& titles, const QList<bool>& numeric)
{
    row(out, titles);
    out += QStringLiteral("|");
    for (qsizetype i = 0; i < titles.size(); ++i)
        out += numeric.value(i) ? QStringLiteral(" ---: |") : QStringLiteral(" --- |");
    out += u'\n';
}

QString coverageCell(const Coverage& c)
{
    return CoverageText(c) + QStringLiteral(" (%1 %)").arg(CoveragePercent(c));
}

} // namespace

void RenderMarkdown(const MappingReport& report, ReportOut& out)
{
    out += QStringLiteral("# Mapping report: ") + md(report.table, false) + QStringLiteral("\n\n");
    out += QStringLiteral("Source tables: ") +
           md(report.sourceTables.isEmpty() ? QStringLiteral("None")
                                            : report.sourceTables.join(QStringLiteral(", ")),
              false) +
           QStringLiteral("\n\n## Overview\n\n");
    if (report.dumps.isEmpty()) {
        out += QStringLiteral("No script references a dump.\n");
    } else {
        tableHead(out,
                  {QStringLiteral("Dump"), QStringLiteral("Description"), QStringLiteral("Target table"),
                   QStringLiteral("Coverage"), QStringLiteral("Open problems")},
                  {true});
        for (const ReportDump& d : report.dumps)
            row(out, {QString::number(d.number), d.text, TargetTableCell(d), coverageCell(d.coverage),
                      ProblemCounts(d.errors, d.warnings)});
    }
    if (!report.otherProblems.isEmpty()) {
        out += QStringLiteral("\n### ") + md(OutsideDumpsTitle(), false) + QStringLiteral("\n\n");
        for (const Problem& p : report.otherProblems)
            out += QStringLiteral("- ") + md(ProblemLine(p), false) + u'\n';
    }

    for (const ReportDump& d : report.dumps) {
        out += QStringLiteral("\n## Dump ") + QString::number(d.number);
        if (!d.text.isEmpty())
            out += QStringLiteral(" \u2013 ") + md(d.text, false);
        out += QStringLiteral("\n\nTarget table: ") + md(TargetTableCell(d), false) +
               QStringLiteral(" \u00b7 ") + md(coverageCell(d.coverage), false) + QStringLiteral("\n\n");
        if (d.fields.isEmpty()) {
            out += d.targetTable.isEmpty() ? QStringLiteral("The dump is bound to no target table.\n")
                                           : QStringLiteral("The target table has no fields.\n");
            continue;
        }
        tableHead(out,
                  {QStringLiteral("No."), QStringLiteral("Field"), QStringLiteral("Description"),
                   QStringLiteral("Type"), QStringLiteral("Length"), QStringLiteral("Mandatory"),
                   QStringLiteral("Rule"), QStringLiteral("Source fields"), QStringLiteral("Documentation"),
                   QStringLiteral("Open problems")},
                  {true, false, false, false, true});
        for (const ReportField& f : d.fields)
            row(out, {f.number, f.name, f.description, f.type, f.length, MandatoryCell(f.mandatory), f.rule,
                      f.sources.join(u'\n'), DocumentationCell(f), ProblemsCell(f.problems)});
    }
}

} // namespace fb::detail
