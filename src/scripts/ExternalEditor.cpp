#include "ExternalEditor.h"

#include "control/BoxText.h"
#include "control/ControlState.h"
#include "core/document/TextFile.h"
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

QString EditorFilePath(const ControlState& s, const QString& fileName)
{
    return TempFilePath(s.doc.TableName(), fileName);
}

qint16 OpenInEditor(ControlState& s, const QString& path)
{
    s.editorBusy = true;
    // The program and its arguments come from Editor, split as a command line
    // but never run through a shell; the path is one argument of its own, so
    // blanks in it (a short table name) cannot split it.
    QStringList arguments;
    QString program;
    if (str::Trim(s.editorPath).isEmpty()) {
        program = DefaultEditor();
    } else {
        arguments = QProcess::splitCommand(s.editorPath);
        if (!arguments.isEmpty())
            program = arguments.takeFirst();
    }
    arguments.append(path);

    QProcess process;
    if (!program.isEmpty()) {
        process.start(program, arguments);
        if (process.waitForStarted(-1)) {
            process.waitForFinished(-1);
            s.editorBusy = false;
            if (process.exitStatus() != QProcess::NormalExit)
                return -1;
            return qint16(process.exitCode());
        }
    }
    // The busy flag stays set until the next successful run.
    s.ui.MsgBox(QStringLiteral("Unable to open editor"), MsgButtons::Ok, MsgIcon::None);
    return 0;
}

bool EditExternally(ControlState& s, const QString& fileName, QString& text)
{
    const QString path = EditorFilePath(s, fileName);
    QString error;
    if (!WriteTextFile(path, text, &error)) {
        s.ui.MsgBox(QStringLiteral("Unable to open editor"), MsgButtons::Ok, MsgIcon::None);
        return false;
    }
    if (OpenInEditor(s, path) != 0)
        return false; // the edit is discarded
    // A file that can no longer be read (replaced by a link, removed)
    // discards the edit rather than emptying the text.
    bool read = false;
    const QString edited = ReadTextFile(path, &read);
    if (!read)
        return false;
    text = CrLfText(edited);
    return true;
}

} // namespace fb
