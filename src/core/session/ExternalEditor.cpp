#include "ExternalEditor.h"

#include "core/document/TextRules.h"

#include <QProcess>
#include <QStandardPaths>

namespace fb {

namespace {

// With no editor named, the system's plain text editor: the first one found.
QString DefaultEditor()
{
    for (const char* name : {"notepad", "gnome-text-editor", "gedit", "kate", "mousepad", "xed", "pluma",
                             "featherpad", "leafpad"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!found.isEmpty())
            return found;
    }
    return QStringLiteral("notepad");
}

} // namespace

std::optional<int> RunEditor(const QString& editorSetting, const QString& path)
{
    QStringList arguments;
    QString program;
    if (str::Trim(editorSetting).isEmpty()) {
        program = DefaultEditor();
    } else {
        arguments = QProcess::splitCommand(editorSetting);
        if (!arguments.isEmpty())
            program = arguments.takeFirst();
    }
    if (program.isEmpty())
        return std::nullopt;
    arguments.append(path);
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(-1))
        return std::nullopt;
    process.waitForFinished(-1);
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace fb
