// The report as CSV for a spreadsheet (RFC 4180): a header row, then one
// row per target field with its dump's columns repeated, then one row per
// problem outside the dumps' fields. Records end in CR LF; the text starts
// with a byte-order mark so that spreadsheets read it as UTF-8.

#include "ReportRenderers_p.h"

namespace fb::detail {

namespace {

// A cell that a spreadsheet would take for a formula (= + - @, and tab or
// CR, which some read past) starts with an apostrophe instead, so that
// opening the file never runs what a rule or a name holds. Then the cell is
// quoted when it holds a separator, a quote or a line break, quotes doubled.
QString cell(const QString& text)
{
    QString value = text;
    if (!value.isEmpty()) {
        const QChar first = value.front();
        if (first == u'=' || first == u'+' || first == u'-' || first == u'@' || first == u'\t' ||
            first == u'\r')
            value.prepend(u'\'');
    }
    const bool quoted =
        value.contains(u',') || value.contains(u'"') || value.contains(u'\n') || value.contains(u'\r');
    if (!quoted)
        return value;
    value.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + value + u'"';
}

void record(ReportOut& out, const QStringList& cells)
{
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0)
            out += u',';
        out += cell(cells[i]);
    }
    out += QStringLiteral("\r\n");
}

} // namespace

void RenderCsv(const MappingReport& report, ReportOut& out)
{
    out += QChar(0xFEFF);
    record(out, {QStringLiteral("Dump"), QStringLiteral("Dump text"), QStringLiteral("Target table"),
                 QStringLiteral("Coverage"), QStringLiteral("No."), QStringLiteral("Field"),
                 QStringLiteral("Description"), QStringLiteral("Type"), QStringLiteral("Length"),
                 QStringLiteral("Mandatory"), QStringLiteral("Rule"), QStringLiteral("Source fields"),
                 QStringLiteral("Documentation"), QStringLiteral("Open problems")});
    for (const ReportDump& d : report.dumps) {
        const QStringList dump{QString::number(d.number), d.text, TargetTableCell(d),
                               CoverageShort(d.coverage)};
        for (const ReportField& f : d.fields)
            record(out, dump + QStringList{f.number, f.name, f.description, f.type, f.length,
                                           MandatoryCell(f.mandatory), f.rule, f.sources.join(u'\n'),
                                           DocumentationCell(f), ProblemsCell(f.problems)});
    }
    for (const Problem& p : report.otherProblems)
        record(out, {p.dump > 0 ? QString::number(p.dump) : QString(), QString(), QString(), QString(),
                     QString(), p.field, QString(), QString(), QString(), QString(), QString(), QString(),
                     QString(), ProblemLine(p)});
}

} // namespace fb::detail
