// fieldbridge report FILE --format html|md|csv [-o OUT]: the mapping
// report to sign off, the same document the host exports.
#include "Command.h"
#include "MappingInput.h"
#include "core/document/MappingDocument.h"
#include "core/document/TextFile.h"
#include "core/report/Report.h"

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <sys/stat.h>

namespace fbtool {

namespace {

const char* const kHelp =
    "Usage: fieldbridge report FILE --format html|md|csv [-o OUT]\n"
    "\n"
    "The mapping report of the mapping object FILE: an overview of all dumps with their\n"
    "target tables and coverage, then per dump every target field with its number, name, type\n"
    "and length, mandatory mark, rule, the source fields the rule uses, its documentation and\n"
    "its open problems. HTML is one self-contained printable file; CSV (UTF-8 with a byte-order\n"
    "mark) opens in a spreadsheet; md is Markdown. The table name is the root element's name.\n"
    "\n"
    "Options:\n"
    "  --format F  html, md or csv (required)\n"
    "  -o OUT      write to the file OUT instead of standard output: a file is replaced as a\n"
    "              whole and keeps its mode; a pipe or a device is written into; the\n"
    "              folder must exist\n"
    "  -h, --help  this text\n"
    "\n"
    "Exit status: 0 written, 1 OUT could not be written, 2 FILE is not a mapping object or the\n"
    "command line is wrong.\n";

// OUT that is not a plain file (a device, a pipe, a socket, or a name of a
// descriptor such as /dev/stdout) takes the text as a stream, as the shell's
// ">" would give it; a plain file (or a link standing in its place) is
// replaced as a whole, so that a failed write leaves it as it was.
bool isStream(const QString& path)
{
    struct stat st {};
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return false;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    return (!S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) || absolute.startsWith(u"/dev/") ||
           absolute.startsWith(u"/proc/");
}

// The report in pieces into a stream, or into a new file that replaces the
// plain file at the end; nothing is held whole.
bool writeReport(fb::MappingDocument& doc, fb::ReportFormat format, const QString& path, QString* error)
{
    if (isStream(path)) {
        QFile file(path);
        const bool written =
            file.open(QIODevice::WriteOnly) &&
            fb::WriteReport(doc, format,
                            [&file](QByteArrayView piece) {
                                return file.write(piece.data(), piece.size()) == piece.size();
                            }) &&
            file.flush();
        if (!written)
            *error = file.errorString();
        return written;
    }
    return fb::WriteReportFile(doc, format, path, error);
}

} // namespace

int RunReport(const QStringList& arguments)
{
    const QString command = QStringLiteral("report");
    QCommandLineParser parser;
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(), QStringLiteral("F"));
    const QCommandLineOption outOption(QStringLiteral("o"), QString(), QStringLiteral("OUT"));
    parser.addOptions({formatOption, outOption});
    if (const std::optional<int> done =
            ParseArguments(parser, command, arguments, QString::fromLatin1(kHelp)))
        return *done;
    const std::optional<fb::ReportFormat> format = fb::ReportFormatFromName(parser.value(formatOption));
    if (!format) {
        PrintError(
            command,
            parser.isSet(formatOption)
                ? QStringLiteral("--format takes html, md or csv, not '%1'").arg(parser.value(formatOption))
                : QStringLiteral("--format is missing (html, md or csv)"));
        return Unreadable;
    }
    fb::MappingDocument doc;
    if (const std::optional<int> loaded = LoadSingleFile(parser, command, doc))
        return *loaded;
    if (!parser.isSet(outOption)) {
        // What failed is told once at the end, from the stream's state.
        fb::WriteReport(doc, *format, [](QByteArrayView piece) {
            return std::fwrite(piece.data(), 1, size_t(piece.size()), stdout) == size_t(piece.size());
        });
        return Success;
    }
    QString error;
    const QString out = fb::LocalFilePath(parser.value(outOption));
    if (out.endsWith(u'/') || QFileInfo(out).isDir()) {
        PrintError(command, QStringLiteral("cannot write %1: it is a folder").arg(parser.value(outOption)));
        return Failure;
    }
    if (!writeReport(doc, *format, out, &error)) {
        PrintError(command, QStringLiteral("cannot write %1: %2").arg(parser.value(outOption), error));
        return Failure;
    }
    return Success;
}

} // namespace fbtool
