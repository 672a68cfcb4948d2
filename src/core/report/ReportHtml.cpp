// The report as one self-contained HTML file: the style sheet inline, no
// script, no image, no link out of the file, so it can be mailed, archived
// and printed as it is. The markup is also well-formed XML (every element
// closed, only the five XML entities), which lets any XML reader check it.

#include "ReportRenderers_p.h"

namespace fb::detail {

namespace {

// Every text of the document goes through here: markup characters become
// entities, and control characters (not allowed in HTML) the replacement
// character. Line breaks stay; the cells that hold scripts keep them.
QString esc(const QString& text)
{
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'&':
            out += QStringLiteral("&amp;");
            break;
        case u'<':
            out += QStringLiteral("&lt;");
            break;
        case u'>':
            out += QStringLiteral("&gt;");
            break;
        case u'"':
            out += QStringLiteral("&quot;");
            break;
        case u'\'':
            out += QStringLiteral("&#39;");
            break;
        case u'\n':
        case u'\t':
            out += c;
            break;
        default:
            out += c.unicode() < 0x20 || c.unicode() == 0x7f ? QChar(QChar::ReplacementCharacter) : c;
        }
    }
    return out;
}

// A qualified field name may wrap after its table's dot rather than inside a
// word of a narrow column.
QString escName(const QString& name)
{
    return esc(name).replace(u'.', QStringLiteral(".<wbr/>"));
}

// Kept free of "<" and "&", so that the document stays well-formed XML.
const char* const kStyle = R"(
:root { --ink: #1d2433; --muted: #5f6b7a; --line: #d9dee5; --soft: #f4f6f9; --accent: #2456c9;
        --done: #1f8a4c; --warn: #a55a00; --err: #b3261e; }
* { box-sizing: border-box; }
html { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
body { margin: 0; padding: 32px 40px 48px; color: var(--ink); background: #fff;
       font: 13px/1.45 "Segoe UI", "Helvetica Neue", Arial, "DejaVu Sans", sans-serif; }
header.doc { border-bottom: 3px solid var(--accent); padding-bottom: 16px; margin-bottom: 28px; }
.kicker { margin: 0; color: var(--accent); font-size: 11px; font-weight: 700; letter-spacing: .1em;
          text-transform: uppercase; }
h1 { margin: 2px 0 14px; font-size: 28px; font-weight: 700; }
h2 { margin: 0 0 6px; font-size: 19px; }
h3 { margin: 22px 0 6px; font-size: 14px; }
dl.facts { display: flex; flex-wrap: wrap; gap: 10px 40px; margin: 0; }
dl.facts dt { color: var(--muted); font-size: 10.5px; letter-spacing: .06em; text-transform: uppercase; }
dl.facts dd { margin: 2px 0 0; font-size: 14px; font-weight: 600; }
section { margin-bottom: 36px; }
table { width: 100%; border-collapse: collapse; table-layout: fixed; }
thead { display: table-header-group; }
th, td { padding: 6px 8px; text-align: left; vertical-align: top; border-bottom: 1px solid var(--line);
         overflow-wrap: anywhere; word-break: break-word; }
th { background: var(--soft); border-bottom: 2px solid var(--line); color: var(--muted); font-size: 10.5px;
     font-weight: 700; letter-spacing: .05em; text-transform: uppercase; overflow-wrap: normal; word-break: normal; }
tr { break-inside: avoid; page-break-inside: avoid; }
tbody tr:nth-child(even) td { background: #fafbfc; }
.num { font-variant-numeric: tabular-nums; }
a { color: var(--accent); text-decoration: none; font-weight: 600; }
.meta { margin: 0 0 12px; color: var(--muted); }
.meta b { color: var(--ink); }
.bar { height: 8px; margin: 3px 0 4px; background: #e3e7ee; border-radius: 4px; overflow: hidden; }
.bar > span { display: block; height: 100%; background: var(--accent); border-radius: 4px; }
.bar.complete > span { background: var(--done); }
.meta .bar { width: 320px; max-width: 100%; }
.coverage { font-size: 12px; color: var(--muted); }
.name { font-weight: 600; }
.desc { color: var(--muted); font-size: 12px; }
.req { display: inline-block; padding: 0 6px; border-radius: 8px; background: #e8eefb; color: var(--accent);
       font-size: 11px; font-weight: 700; }
.rule, .doc { white-space: pre-wrap; }
.rule { font-family: "DejaVu Sans Mono", Consolas, "Liberation Mono", monospace; font-size: 12px; tab-size: 4; }
td.rule:empty::before { content: "no rule"; color: var(--muted); font-family: "DejaVu Sans", Arial, sans-serif;
                        font-style: italic; }
tr.open td:first-child { box-shadow: inset 3px 0 0 var(--warn); }
ul.list { margin: 0; padding: 0; list-style: none; }
ul.list li + li { margin-top: 3px; }
.error b { color: var(--err); }
.warning b { color: var(--warn); }
.hosttext { color: var(--muted); font-style: italic; }
.none { color: var(--muted); }
.empty { color: var(--muted); font-style: italic; }
footer { margin-top: 24px; color: var(--muted); font-size: 11px; }
@page { size: A4 landscape; margin: 14mm 12mm; }
@media print {
  body { padding: 0; font-size: 9.5pt; }
  section.dump { break-before: page; page-break-before: always; }
  tbody tr:nth-child(even) td { background: none; }
  a { color: inherit; }
}
)";

void bar(ReportOut& out, const Coverage& c)
{
    const int percent = CoveragePercent(c);
    out += percent == 100 ? QStringLiteral("<div class=\"bar complete\">")
                          : QStringLiteral("<div class=\"bar\">");
    out += QStringLiteral("<span style=\"width:%1%\"></span></div>").arg(percent);
}

void problemList(ReportOut& out, const QList<Problem>& problems)
{
    if (problems.isEmpty())
        return;
    out += QStringLiteral("<ul class=\"list\">");
    for (const Problem& p : problems) {
        out += p.severity == Severity::Error ? QStringLiteral("<li class=\"error\"><b>")
                                             : QStringLiteral("<li class=\"warning\"><b>");
        out += esc(SeverityText(p.severity)) + QStringLiteral(":</b> ") + esc(p.message) +
               QStringLiteral("</li>");
    }
    out += QStringLiteral("</ul>");
}

void header(ReportOut& out, const MappingReport& report)
{
    int fields = 0;
    int withRule = 0;
    int errors = 0;
    int warnings = 0;
    for (const ReportDump& d : report.dumps) {
        fields += d.coverage.fields;
        withRule += d.coverage.withRule;
        errors += d.errors;
        warnings += d.warnings;
    }
    for (const Problem& p : report.otherProblems)
        (p.severity == Severity::Error ? errors : warnings) += 1;
    const QString sources = report.sourceTables.isEmpty() ? QStringLiteral("None")
                                                          : report.sourceTables.join(QStringLiteral(", "));
    out += QStringLiteral("<header class=\"doc\"><p class=\"kicker\">Mapping report</p><h1>") +
           esc(report.table) + QStringLiteral("</h1><dl class=\"facts\">");
    const auto fact = [&out](const QString& term, const QString& value) {
        out += QStringLiteral("<div><dt>") + term + QStringLiteral("</dt><dd>") + esc(value) +
               QStringLiteral("</dd></div>");
    };
    fact(QStringLiteral("Source tables"), sources);
    fact(QStringLiteral("Dumps"), QString::number(report.dumps.size()));
    fact(QStringLiteral("Fields with a rule"), QStringLiteral("%1 of %2").arg(withRule).arg(fields));
    fact(QStringLiteral("Open problems"), ProblemCounts(errors, warnings));
    out += QStringLiteral("</dl></header>\n");
}

void overview(ReportOut& out, const MappingReport& report)
{
    out += QStringLiteral("<section class=\"overview\"><h2>Overview</h2>");
    if (report.dumps.isEmpty())
        out += QStringLiteral("<p class=\"empty\">No script references a dump.</p>");
    else {
        out += QStringLiteral(
            "<table class=\"overview\"><colgroup><col style=\"width:8%\"/><col style=\"width:26%\"/>"
            "<col style=\"width:16%\"/><col style=\"width:32%\"/><col style=\"width:18%\"/></colgroup>"
            "<thead><tr><th>Dump</th><th>Description</th><th>Target table</th><th>Coverage</th>"
            "<th>Open problems</th></tr></thead><tbody>\n");
        for (const ReportDump& d : report.dumps) {
            out +=
                QStringLiteral("<tr><td class=\"num\"><a href=\"#dump-%1\">%1</a></td><td>").arg(d.number) +
                esc(d.text) + QStringLiteral("</td><td>") + esc(TargetTableCell(d)) +
                QStringLiteral("</td><td>");
            bar(out, d.coverage);
            out += QStringLiteral("<div class=\"coverage\">") + esc(CoverageText(d.coverage)) +
                   QStringLiteral("</div></td><td") +
                   (d.errors + d.warnings == 0 ? QStringLiteral(" class=\"none\">") : QStringLiteral(">")) +
                   esc(ProblemCounts(d.errors, d.warnings)) + QStringLiteral("</td></tr>\n");
        }
        out += QStringLiteral("</tbody></table>");
    }
    if (!report.otherProblems.isEmpty()) {
        out += QStringLiteral("<h3>") + esc(OutsideDumpsTitle()) + QStringLiteral("</h3>");
        problemList(out, report.otherProblems);
    }
    out += QStringLiteral("</section>\n");
}

void fieldRow(ReportOut& out, const ReportField& f)
{
    out += f.rule.isEmpty() && f.mandatory ? QStringLiteral("<tr class=\"open\">") : QStringLiteral("<tr>");
    out += QStringLiteral("<td class=\"num\">") + esc(f.number) +
           QStringLiteral("</td><td><div class=\"name\">") + escName(f.name) + QStringLiteral("</div>");
    if (!f.description.isEmpty())
        out += QStringLiteral("<div class=\"desc\">") + esc(f.description) + QStringLiteral("</div>");
    out += QStringLiteral("</td><td>") + esc(f.type) + QStringLiteral("</td><td class=\"num\">") +
           esc(f.length) + QStringLiteral("</td><td>");
    if (f.mandatory)
        out += QStringLiteral("<span class=\"req\">") + MandatoryCell(true) + QStringLiteral("</span>");
    out += QStringLiteral("</td><td class=\"rule\">") + esc(f.rule) + QStringLiteral("</td><td>");
    if (!f.sources.isEmpty()) {
        out += QStringLiteral("<ul class=\"list\">");
        for (const QString& s : f.sources)
            out += QStringLiteral("<li>") + escName(s) + QStringLiteral("</li>");
        out += QStringLiteral("</ul>");
    }
    out += QStringLiteral("</td><td class=\"doc\">");
    if (!f.hostTextNumber.isEmpty())
        out += QStringLiteral("<span class=\"hosttext\">") + esc(DocumentationCell(f)) +
               QStringLiteral("</span>");
    else
        out += esc(f.documentation);
    out += QStringLiteral("</td><td>");
    problemList(out, f.problems);
    out += QStringLiteral("</td></tr>\n");
}

void dumpSection(ReportOut& out, const ReportDump& d)
{
    out += QStringLiteral("<section class=\"dump\" id=\"dump-%1\"><h2>Dump %1").arg(d.number);
    if (!d.text.isEmpty())
        out += QStringLiteral(" \u2013 ") + esc(d.text);
    out += QStringLiteral("</h2><div class=\"meta\">Target table <b>") + esc(TargetTableCell(d)) +
           QStringLiteral("</b> \u00b7 ") + esc(CoverageText(d.coverage));
    bar(out, d.coverage);
    out += QStringLiteral("</div>");
    if (d.fields.isEmpty()) {
        out += d.targetTable.isEmpty()
                   ? QStringLiteral("<p class=\"empty\">The dump is bound to no target table.</p>")
                   : QStringLiteral("<p class=\"empty\">The target table has no fields.</p>");
        out += QStringLiteral("</section>\n");
        return;
    }
    out += QStringLiteral(
        "<table class=\"fields\"><colgroup><col style=\"width:5%\"/><col style=\"width:14%\"/>"
        "<col style=\"width:9%\"/><col style=\"width:6%\"/><col style=\"width:9%\"/><col "
        "style=\"width:19%\"/>"
        "<col style=\"width:12%\"/><col style=\"width:13%\"/><col style=\"width:13%\"/></colgroup>"
        "<thead><tr><th>No.</th><th>Field</th><th>Type</th><th>Length</th><th>Mandatory</th><th>Rule</th>"
        "<th>Source fields</th><th>Documentation</th><th>Open problems</th></tr></thead><tbody>\n");
    for (const ReportField& f : d.fields)
        fieldRow(out, f);
    out += QStringLiteral("</tbody></table></section>\n");
}

} // namespace

void RenderHtml(const MappingReport& report, ReportOut& out)
{
    out += QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"/>"
                          "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                          "style-src 'unsafe-inline'\"/>"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>"
                          "<title>Mapping report \u2013 ");
    out += esc(report.table) + QStringLiteral("</title><style>") + QString::fromUtf8(kStyle) +
           QStringLiteral("</style></head>\n<body>\n");
    header(out, report);
    overview(out, report);
    for (const ReportDump& d : report.dumps)
        dumpSection(out, d);
    out += QStringLiteral("<footer>Mapping report of ") + esc(report.table) +
           QStringLiteral(", written by Fieldbridge.</footer>\n</body></html>\n");
}

} // namespace fb::detail
