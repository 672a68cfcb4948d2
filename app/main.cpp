#include "HostWindow.h"
#include "ScreenshotRenderer.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>
#include <cstdio>
#include <memory>

namespace {

struct CommandLine {
    QCommandLineParser parser;
    QCommandLineOption help = parser.addHelpOption();
    QCommandLineOption version = parser.addVersionOption();
    QCommandLineOption view{QStringLiteral("view"), QStringLiteral("Open read-only (view mode).")};
    QCommandLineOption screenshot{
        QStringLiteral("screenshot"),
        QStringLiteral("Render both tabs to DIR/mapping-object.png and DIR/define-dumps.png, print the paths "
                       "and exit."),
        QStringLiteral("DIR")};

    CommandLine()
    {
        parser.setApplicationDescription(QStringLiteral(
            "Edits a data-migration mapping object. Without FILE it opens the bundled sample."));
        parser.addOption(view);
        parser.addOption(screenshot);
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The mapping object to open."),
                                     QStringLiteral("[FILE]"));
    }

    // True when the arguments ask for nothing but the usage text or the
    // version. Arguments that do not parse here may still be options of
    // QApplication's own (-platform, -style), so they are left to it.
    bool asksForTextOnly(int argc, char* argv[])
    {
        QStringList arguments;
        for (int i = 0; i < argc; ++i)
            arguments.append(QString::fromLocal8Bit(argv[i]));
        return parser.parse(arguments) &&
               (parser.isSet(help) || parser.isSet(version) || parser.isSet(QStringLiteral("help-all")));
    }
};

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setOrganizationName(QStringLiteral("VelkPrjFieldbridge"));
    QCoreApplication::setApplicationName(QStringLiteral("fieldbridge-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FIELDBRIDGE_VERSION));

    CommandLine commandLine;
    // The usage text and the version need no display: they are printed under
    // a QCoreApplication, before QApplication would look for a platform.
    if (commandLine.asksForTextOnly(argc, argv)) {
        QCoreApplication app(argc, argv);
        commandLine.parser.process(app); // prints and leaves
        return 0;
    }

    QApplication app(argc, argv);
    commandLine.parser.process(app);
    const bool unattended = commandLine.parser.isSet(commandLine.screenshot);

    HostWindow window;
    std::unique_ptr<ScreenshotRenderer> renderer;
    if (unattended) {
        // Answering boxes starts before the file is opened: nothing may wait.
        window.setUnattended(true);
        renderer = std::make_unique<ScreenshotRenderer>(&window);
    }
    window.setEditMode(!commandLine.parser.isSet(commandLine.view));
    const QStringList files = commandLine.parser.positionalArguments();
    const bool opened = files.isEmpty() ? window.openSample() : window.openFile(files.constFirst());
    if (!opened)
        return 1;

    if (renderer) {
        QStringList notes;
        const QString dir = commandLine.parser.value(commandLine.screenshot);
        const QStringList written = renderer->render(dir, &notes);
        QTextStream err(stderr);
        for (const QString& note : notes)
            err << "fieldbridge-host: " << note << Qt::endl;
        QTextStream out(stdout);
        for (const QString& path : written)
            out << path << Qt::endl;
        // Both tabs at least; the review of suggestions where editing allows it.
        return written.size() >= 2 ? 0 : 1;
    }

    window.show();
    return app.exec();
}
