#include "HostWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <cstdio>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("VelkPrjFieldbridge"));
    QCoreApplication::setApplicationName(QStringLiteral("fieldbridge-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FIELDBRIDGE_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Edits a data-migration mapping object. Without FILE it opens the bundled sample."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption viewOption(QStringLiteral("view"), QStringLiteral("Open read-only (view mode)."));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"),
        QStringLiteral("Render both tabs to DIR/mapping-object.png and DIR/define-dumps.png, print the paths "
                       "and exit."),
        QStringLiteral("DIR"));
    parser.addOption(viewOption);
    parser.addOption(screenshotOption);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The mapping object to open."),
                                 QStringLiteral("[FILE]"));
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);

    HostWindow window;
    window.setUnattended(parser.isSet(screenshotOption));
    window.setEditMode(!parser.isSet(viewOption));
    const QStringList files = parser.positionalArguments();
    const bool opened = files.isEmpty() ? window.openSample() : window.openFile(files.constFirst());
    if (!opened)
        return 1;

    if (parser.isSet(screenshotOption)) {
        QStringList notes;
        const QStringList written = window.renderScreenshots(parser.value(screenshotOption), &notes);
        for (const QString& note : notes)
            err << "fieldbridge-host: " << note << Qt::endl;
        for (const QString& path : written)
            out << path << Qt::endl;
        return written.size() == 2 ? 0 : 1;
    }

    window.show();
    return app.exec();
}
