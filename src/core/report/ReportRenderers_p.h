#pragma once

#include "Report.h"

// The three layouts of a MappingReport, and the cell texts they share so
// that every format says the same thing in the same words.
namespace fb::detail {

// The text of a report as it is laid out: kept whole, or handed to a sink
// in pieces of UTF-8 as it grows, so that the report of a document of any
// size needs little memory beyond its content.
class ReportOut {
public:
    // About how many characters go to the sink at a time.
    static constexpr qsizetype kPiece = 1 << 18;

    explicit ReportOut(const ReportSink* sink = nullptr) : m_sink(sink) {}

    // Once the sink has refused a piece, nothing more is laid out.
    template <typename Text> ReportOut& operator+=(const Text& text)
    {
        if (!m_ok)
            return *this;
        m_text += text;
        if (m_sink && m_text.size() >= kPiece)
            flush(false);
        return *this;
    }
    // Hands what has been laid out to the sink; false once the sink has
    // refused a piece. At the end everything goes; before it, a character's
    // first half waits for its second.
    bool flush(bool end);
    // The whole text, when there is no sink.
    QString take() { return std::move(m_text); }

private:
    const ReportSink* m_sink;
    QString m_text;
    bool m_ok = true;
};

void RenderHtml(const MappingReport& report, ReportOut& out);
void RenderMarkdown(const MappingReport& report, ReportOut& out);
void RenderCsv(const MappingReport& report, ReportOut& out);

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
