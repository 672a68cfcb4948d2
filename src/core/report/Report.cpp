#include "Report.h"

#include "ReportRenderers_p.h"
#include "core/dictionary/FieldRules.h"
#include "core/document/LineBreaks.h"
#include "core/document/TextFile.h"
#include "core/document/TextRules.h"
#include "core/rules/DumpStore.h"

#include <QSet>
#include <algorithm>

namespace fb {

namespace {

// A documentation text that is a whole number stands for a text the host
// keeps under that number (SetTextNumber writes it so).
bool isTextNumber(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text)
        if (c < u'0' || c > u'9')
            return false;
    return true;
}

QStringList sourcesOf(const QString& rule)
{
    QStringList sources;
    QSet<QString> seen;
    for (const FieldReference& ref : FieldReferences(rule)) {
        QString named = ref.table + u'.' + ref.field;
        if (!seen.contains(named)) {
            seen.insert(named);
            sources.append(std::move(named));
        }
    }
    return sources;
}

ReportField fieldOf(int row, const TargetField& target, const QString& storedRule,
                    const ChildrenByName& ruleElements)
{
    ReportField f;
    const FieldDefinition& definition = target.definition;
    f.row = row;
    f.number = FieldNumberText(definition);
    f.name = target.name;
    f.description = LfText(definition.description);
    f.type = GetFieldTypeText(definition, f.length);
    f.mandatory = target.mandatory();
    f.rule = HasRule(storedRule) ? LfText(storedRule) : QString();
    f.sources = sourcesOf(f.rule);
    // The documentation belongs to the element named like the field, as
    // the dump's text command finds it.
    const Node element = ruleElements.first(str::Upper(definition.elementName));
    const QString text = MappingDocument::DocText(element);
    if (isTextNumber(str::Trim(text)))
        f.hostTextNumber = str::Trim(text);
    else
        f.documentation = LfText(MappingDocument::DisplayText(text));
    return f;
}

ReportDump dumpOf(MappingDocument& doc, qint16 number, const QString& referenceText)
{
    ReportDump dump;
    dump.number = number;
    const Node dumpNode = doc.GetDumpNode(number);
    dump.text = referenceText.isEmpty() ? MappingDocument::DumpDescription(dumpNode) : referenceText;
    const Node table = doc.GetTargetTableNode(number);
    dump.targetTable = table ? table.name() : MappingDocument::DumpTargetTable(dumpNode);

    const QList<TargetField> fields = TargetFieldsOf(table);
    const QList<GridRule> rules = RulesOfDump(doc, number);
    dump.coverage = CoverageOf(fields, rules);
    QList<QString> byRow(fields.size());
    for (const GridRule& rule : rules) // the last rule for a row wins, as in the checks
        if (rule.row >= 0 && rule.row < byRow.size())
            byRow[rule.row] = rule.text;
    const ChildrenByName ruleElements(dumpNode);
    for (int row = 0; row < fields.size(); ++row)
        dump.fields.append(fieldOf(row, fields[row], byRow[row], ruleElements));
    return dump;
}

} // namespace

std::optional<ReportFormat> ReportFormatFromName(const QString& name)
{
    const QString n = name.toLower();
    if (n == u"html")
        return ReportFormat::Html;
    if (n == u"md" || n == u"markdown")
        return ReportFormat::Markdown;
    if (n == u"csv")
        return ReportFormat::Csv;
    return std::nullopt;
}

QString ReportFileSuffix(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Html:
        return QStringLiteral("html");
    case ReportFormat::Markdown:
        return QStringLiteral("md");
    case ReportFormat::Csv:
        break;
    }
    return QStringLiteral("csv");
}

QString HostTextNote(const QString& number)
{
    return QStringLiteral("Text no. ") + number + QStringLiteral(" (kept by the host)");
}

MappingReport BuildReport(MappingDocument& doc)
{
    MappingReport report;
    report.table = str::RTrim(doc.TableName());
    for (QString name : str::Split(doc.GetSourceTablesText(), u',')) {
        name = str::Trim(name.remove(u'\r').remove(u'\n'));
        if (!name.isEmpty() && !report.sourceTables.contains(name))
            report.sourceTables.append(name);
    }

    const QList<Problem> problems = CheckMapping(doc);
    // The dumps the checks look at, by number, with the text the scripts
    // pair with each.
    QList<qint16> numbers = CheckedDumps(doc);
    std::sort(numbers.begin(), numbers.end());
    const DumpReferences refs = ReferencedDumpsOf(doc);
    for (const qint16 number : numbers)
        report.dumps.append(dumpOf(doc, number, refs.texts.value(refs.numbers.indexOf(number))));

    // Each problem goes to the field it names; the rest to the overview.
    for (const Problem& p : problems) {
        ReportField* field = nullptr;
        ReportDump* owner = nullptr;
        for (ReportDump& dump : report.dumps)
            if (dump.number == p.dump && p.row >= 0 && p.row < dump.fields.size()) {
                owner = &dump;
                field = &dump.fields[p.row];
            }
        if (!field) {
            report.otherProblems.append(p);
            continue;
        }
        field->problems.append(p);
        (p.severity == Severity::Error ? owner->errors : owner->warnings) += 1;
    }
    return report;
}

namespace {

void render(const MappingReport& report, ReportFormat format, detail::ReportOut& out)
{
    switch (format) {
    case ReportFormat::Html:
        return detail::RenderHtml(report, out);
    case ReportFormat::Markdown:
        return detail::RenderMarkdown(report, out);
    case ReportFormat::Csv:
        break;
    }
    detail::RenderCsv(report, out);
}

} // namespace

bool detail::ReportOut::flush(bool end)
{
    qsizetype n = m_text.size();
    if (!end && n > 0 && m_text.at(n - 1).isHighSurrogate())
        --n;
    if (m_ok && n > 0)
        m_ok = (*m_sink)(QStringView(m_text).first(n).toUtf8());
    m_text.remove(0, n);
    return m_ok;
}

QString RenderReport(const MappingReport& report, ReportFormat format)
{
    detail::ReportOut out;
    render(report, format, out);
    return out.take();
}

QString RenderReport(MappingDocument& doc, ReportFormat format)
{
    return RenderReport(BuildReport(doc), format);
}

bool WriteReport(const MappingReport& report, ReportFormat format, const ReportSink& sink)
{
    detail::ReportOut out(&sink);
    render(report, format, out);
    return out.flush(true);
}

bool WriteReport(MappingDocument& doc, ReportFormat format, const ReportSink& sink)
{
    return WriteReport(BuildReport(doc), format, sink);
}

bool WriteReportFile(MappingDocument& doc, ReportFormat format, const QString& path, QString* error)
{
    TextFileWriter file(path);
    const bool written =
        WriteReport(doc, format,
                    [&file](QByteArrayView piece) { return file.write(piece.data(), piece.size()); }) &&
        file.commit();
    if (!written && error)
        *error = file.error();
    return written;
}

} // namespace fb

namespace fb::detail {

QString MandatoryCell(bool mandatory)
{
    return mandatory ? QStringLiteral("Yes") : QString();
}

QString DocumentationCell(const ReportField& f)
{
    return f.hostTextNumber.isEmpty() ? f.documentation : HostTextNote(f.hostTextNumber);
}

QString ProblemLine(const Problem& p)
{
    return SeverityText(p.severity) + QStringLiteral(": ") + p.message;
}

QString ProblemsCell(const QList<Problem>& problems)
{
    QStringList lines;
    for (const Problem& p : problems)
        lines.append(ProblemLine(p));
    return lines.join(u'\n');
}

QString TargetTableCell(const ReportDump& dump)
{
    return dump.targetTable.isEmpty() ? QStringLiteral("(none)") : dump.targetTable;
}

QString CoverageShort(const Coverage& c)
{
    return QStringLiteral("%1 of %2").arg(c.withRule).arg(c.fields);
}

int CoveragePercent(const Coverage& c)
{
    return c.fields > 0 ? int(qint64(c.withRule) * 100 / c.fields) : 0;
}

QString ProblemCounts(int errors, int warnings)
{
    QStringList parts;
    if (errors > 0)
        parts.append(QString::number(errors) +
                     (errors == 1 ? QStringLiteral(" error") : QStringLiteral(" errors")));
    if (warnings > 0)
        parts.append(QString::number(warnings) +
                     (warnings == 1 ? QStringLiteral(" warning") : QStringLiteral(" warnings")));
    return parts.isEmpty() ? QStringLiteral("None") : parts.join(QStringLiteral(", "));
}

QString OutsideDumpsTitle()
{
    return QStringLiteral("Problems outside the dumps");
}

} // namespace fb::detail
