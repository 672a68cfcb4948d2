#include "MappingInput.h"

#include "Command.h"
#include "core/document/MappingDocument.h"
#include "core/document/TextCodec.h"
#include "core/document/TextFile.h"

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

namespace fbtool {

bool LoadMappingObject(const QString& path, fb::MappingDocument& doc, QString* error)
{
    const auto fail = [&](const QString& why) {
        if (error)
            *error = path + QStringLiteral(": ") + why;
        return false;
    };
    if (path.isEmpty()) {
        if (error)
            *error = QStringLiteral("no file name given");
        return false;
    }
    const QString local = fb::LocalFilePath(path);
    if (QFileInfo(local).isDir())
        return fail(QStringLiteral("is a folder"));
    QFile file(local);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QString text = fb::DecodeMappingFile(file.readAll()).text;
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (!doc.LoadXml(text)) {
        const QString why = fb::DescribeMalformedXml(text);
        return fail(why.isNull()
                        ? QStringLiteral("not a mapping object (one root element and nothing but markup "
                                         "around it)")
                        : QStringLiteral("not well-formed XML: ") + why);
    }
    const QString root = doc.DocumentElement().name();
    if (root.size() != 8)
        return fail(
            QStringLiteral("not a mapping object: the root element <%1> is not an 8-character table name")
                .arg(root));
    doc.SetTableName(root);
    return true;
}

std::optional<int> LoadSingleFile(const QCommandLineParser& parser, const QString& command,
                                  fb::MappingDocument& doc)
{
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1) {
        PrintError(command, files.isEmpty()
                                ? QStringLiteral("FILE is missing (see fieldbridge %1 --help)").arg(command)
                                : QStringLiteral("one FILE only, not %1").arg(files.size()));
        return Unreadable;
    }
    QString error;
    if (!LoadMappingObject(files[0], doc, &error)) {
        PrintError(command, error);
        return Unreadable;
    }
    return std::nullopt;
}

} // namespace fbtool
