#pragma once

#include "core/document/MappingDocument.h"
#include "core/rules/Checks.h"
#include "core/rules/Coverage.h"

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

// The mapping report of a mapping object: what a customer signs off
// before a migration runs. Per referenced dump its target table and
// coverage, per target field its number, name, type, mandatory mark, rule,
// the source fields the rule uses, its documentation and its open problems.
// The content is gathered once into a MappingReport; each format only lays
// that out.
namespace fb {

enum class ReportFormat { Html, Markdown, Csv };

// "html", "md" or "markdown", "csv" (any letter case); nullopt for others.
std::optional<ReportFormat> ReportFormatFromName(const QString& name);
// The file name suffix of a format, without the dot: "html", "md", "csv".
QString ReportFileSuffix(ReportFormat format);

struct ReportField {
    int row = -1;        // the field's row in the rules grid
    QString number;      // the field number as the target field list shows it
    QString name;        // qualified, as the grid shows it
    QString description; // the field's own description (DSCA)
    QString type;        // "String", "Double", ...; "" for an unknown type
    QString length;      // "30", "8,2", ...
    bool mandatory = false;
    QString rule;          // the rule as the grid shows it, line breaks as LF
    QStringList sources;   // table.field of each source field the rule names, once each
    QString documentation; // the rule element's documentation text, line breaks as LF
    // Set instead of documentation when the rule element's TEXT is a number:
    // the number of a text the host keeps elsewhere.
    QString hostTextNumber;
    QList<Problem> problems;
};

struct ReportDump {
    qint16 number = 0;
    QString text;        // the text the scripts pair with the dump number
    QString targetTable; // the target table's element name; "" when the dump has none
    Coverage coverage;
    QList<ReportField> fields; // in grid row order
    int errors = 0;            // problems of its fields, by severity
    int warnings = 0;
};

struct MappingReport {
    QString table;                // the document's table name, trailing blanks cut
    QStringList sourceTables;     // the listed source tables, in list order
    QList<ReportDump> dumps;      // the dumps the checks look at, by number
    QList<Problem> otherProblems; // problems outside the referenced dumps' fields
};

// Gathers the report of a document whose table name is set. Runs the checks
// (CheckMapping) and covers the dumps they look at (CheckedDumps): those the
// scripts reference that the document holds. The document's own script
// lists stay as they were.
MappingReport BuildReport(MappingDocument& doc);

QString RenderReport(const MappingReport& report, ReportFormat format);
// BuildReport, then RenderReport.
QString RenderReport(MappingDocument& doc, ReportFormat format);

// Takes the text of a report in pieces of UTF-8, in order; false stops it.
using ReportSink = std::function<bool(QByteArrayView utf8)>;
// RenderReport in pieces: the text goes to the sink as it is laid out, so
// that the report of a large document is never held whole. False when the
// sink refused a piece.
bool WriteReport(const MappingReport& report, ReportFormat format, const ReportSink& sink);
// BuildReport, then WriteReport.
bool WriteReport(MappingDocument& doc, ReportFormat format, const ReportSink& sink);
// The report into the file at path, written as WriteTextFile writes (a new
// file renamed over the old one); false with the reason in error.
bool WriteReportFile(MappingDocument& doc, ReportFormat format, const QString& path, QString* error);

// "Text no. 17 (kept by the host)": how every format names a documentation
// text that the host keeps.
QString HostTextNote(const QString& number);

} // namespace fb
