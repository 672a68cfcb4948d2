// fieldbridge check FILE [--format text|json]: the problems of the mapping
// object, as the control's problems list shows them; the exit status says
// whether any of them is an error.
#include "Command.h"
#include "MappingInput.h"
#include "core/document/MappingDocument.h"
#include "core/report/CheckListing.h"

#include <QCommandLineParser>

namespace fbtool {

namespace {

const char* const kHelp =
    "Usage: fieldbridge check FILE [--format text|json]\n"
    "\n"
    "Checks the mapping object FILE as the control does while it is edited: rules naming a\n"
    "table.field that no listed source table has, source types that lose data in their target\n"
    "field, mandatory target fields without a rule, dumps holding rules that no script\n"
    "references and main queries with text for tables no longer migrated (the next read of\n"
    "the document removes both). The table name is the root element's name.\n"
    "\n"
    "Text: one line per problem, tab-separated: severity, dump (- for none), field (- for\n"
    "none), message. JSON: an array of {\"severity\", \"kind\", \"dump\", \"field\", \"message\"}.\n"
    "\n"
    "Options:\n"
    "  --format F  text (default) or json\n"
    "  -h, --help  this text\n"
    "\n"
    "Exit status: 0 no error (warnings may be listed), 1 at least one error, 2 FILE is not a\n"
    "mapping object or the command line is wrong.\n";

} // namespace

int RunCheck(const QStringList& arguments)
{
    const QString command = QStringLiteral("check");
    QCommandLineParser parser;
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(), QStringLiteral("F"),
                                          QStringLiteral("text"));
    parser.addOption(formatOption);
    if (const std::optional<int> done =
            ParseArguments(parser, command, arguments, QString::fromLatin1(kHelp)))
        return *done;
    const std::optional<fb::ListingFormat> format = fb::ListingFormatFromName(parser.value(formatOption));
    if (!format) {
        PrintError(command,
                   QStringLiteral("--format takes text or json, not '%1'").arg(parser.value(formatOption)));
        return Unreadable;
    }
    fb::MappingDocument doc;
    const std::optional<int> loaded = LoadSingleFile(parser, command, doc);
    if (loaded)
        return *loaded;
    const QList<fb::Problem> problems = fb::CheckMapping(doc);
    PrintOut(fb::RenderCheckListing(problems, *format));
    return fb::CheckExitStatus(problems);
}

} // namespace fbtool
