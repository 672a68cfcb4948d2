// fieldbridge: the headless tool over the mapping-object core. The first
// argument names the command; the command parses the rest.
#include "Command.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace fbtool {

void PrintError(const QString& command, const QString& message)
{
    QString line = message;
    line.replace(u'\r', u' ');
    line.replace(u'\n', u' ');
    const QString prefix =
        command.isEmpty() ? QStringLiteral("fieldbridge") : QStringLiteral("fieldbridge ") + command;
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(prefix), qUtf8Printable(line));
}

void PrintOut(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, size_t(utf8.size()), stdout);
}

std::optional<int> ParseArguments(QCommandLineParser& parser, const QString& command,
                                  const QStringList& arguments, const QString& help)
{
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("This text."));
    parser.addOption(helpOption);
    // The parser takes the first argument for the program's name.
    if (!parser.parse(QStringList{QStringLiteral("fieldbridge")} + arguments)) {
        PrintError(command, parser.errorText() + QStringLiteral(" (see fieldbridge %1 --help)").arg(command));
        return Unreadable;
    }
    if (parser.isSet(helpOption)) {
        PrintOut(help);
        return Success;
    }
    return std::nullopt;
}

} // namespace fbtool

namespace {

QString overview()
{
    QString text = QStringLiteral("Usage: fieldbridge COMMAND [OPTIONS] FILE\n\n"
                                  "Works on mapping objects without a display. Commands:\n");
    for (const fbtool::Command& c : fbtool::Commands())
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromLatin1(c.name).leftJustified(10), QString::fromLatin1(c.summary));
    text +=
        QStringLiteral("\n`fieldbridge COMMAND --help` describes a command.\n"
                       "Exit status: 0 done, 1 the command found a problem it reports, 2 the file is not a\n"
                       "mapping object or the command line is wrong.\n");
    return text;
}

// What went to stdout must have arrived: a full disk or a device that
// refuses the text is an error of its own, not a silent success.
int finish(int status, const QString& command)
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    fbtool::PrintError(command, QStringLiteral("cannot write to standard output: %1")
                                    .arg(QString::fromLocal8Bit(std::strerror(errno))));
    return fbtool::Failure;
}

const fbtool::Command* find(const QString& name)
{
    for (const fbtool::Command& c : fbtool::Commands())
        if (name == QLatin1String(c.name))
            return &c;
    return nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fieldbridge"));
    // Arguments are read as UTF-8: a file name in another encoding would be
    // changed on the way in, and then name a file that does not exist.
    for (int i = 1; i < argc; ++i) {
        const QByteArray raw(argv[i]);
        if (QString::fromUtf8(raw).toUtf8() != raw) {
            fbtool::PrintError({},
                               QStringLiteral("argument %1 is not valid UTF-8 (file names must be UTF-8): %2")
                                   .arg(i)
                                   .arg(QString::fromUtf8(raw)));
            return fbtool::Unreadable;
        }
    }
    const QStringList args = QCoreApplication::arguments().mid(1);
    const QString first = args.value(0);
    if (first == u"-h" || first == u"--help" || (first == u"help" && args.size() == 1)) {
        fbtool::PrintOut(overview());
        return finish(fbtool::Success, {});
    }
    if (first == u"--version") {
        fbtool::PrintOut(QStringLiteral("fieldbridge %1\n").arg(QStringLiteral(FIELDBRIDGE_VERSION)));
        return finish(fbtool::Success, {});
    }
    if (first.isEmpty()) {
        fbtool::PrintError({}, QStringLiteral("no command given (fieldbridge --help lists them)"));
        return fbtool::Unreadable;
    }
    // "help COMMAND" is "COMMAND --help".
    const bool helpOf = first == u"help";
    const QString name = helpOf ? args[1] : first;
    const fbtool::Command* command = find(name);
    if (!command) {
        fbtool::PrintError({},
                           QStringLiteral("unknown command '%1' (fieldbridge --help lists them)").arg(name));
        return fbtool::Unreadable;
    }
    return finish(command->run(helpOf ? QStringList{QStringLiteral("--help")} : args.mid(1)), name);
}
