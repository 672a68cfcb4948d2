#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

class QCommandLineParser;

namespace fb {
class MappingDocument;
}

// The commands of the fieldbridge tool. Each command lives in a file of its
// own and is listed once in Commands.cpp; the dispatcher in main.cpp finds
// it by name and hands it the rest of the command line.
namespace fbtool {

// Exit statuses every command keeps to.
enum Exit : int {
    Success = 0,
    Failure = 1,    // the command ran and found what it reports (errors, a missing dump)
    Unreadable = 2, // the file is not a mapping object, or the command line is wrong
};

struct Command {
    const char* name;
    const char* summary; // one line for the overview
    // The arguments after the command's name; the exit status.
    int (*run)(const QStringList& arguments);
};

// Every command, in the order the overview lists them.
const QList<Command>& Commands();

// The entry points, one per command file.
int RunCheck(const QStringList& arguments);
int RunSuggest(const QStringList& arguments);
int RunReport(const QStringList& arguments);

// ---- what the commands share -------------------------------------------------

// "fieldbridge <command>: <message>" as one line on stderr (line breaks in
// the message become blanks).
void PrintError(const QString& command, const QString& message);

// Writes text to stdout in UTF-8.
void PrintOut(const QString& text);

// Parses a command's arguments with its options. --help prints help (the
// command's own text) and gives Success; a malformed command line prints one
// line and gives Unreadable. Otherwise nothing is printed and the command
// goes on (no value).
std::optional<int> ParseArguments(QCommandLineParser& parser, const QString& command,
                                  const QStringList& arguments, const QString& help);

// The one FILE of a command's line, loaded as a mapping object: no value
// when it is; otherwise the line is printed and the exit status returned.
std::optional<int> LoadSingleFile(const QCommandLineParser& parser, const QString& command,
                                  fb::MappingDocument& doc);

} // namespace fbtool
