#include "MappingInput.h"

#include "core/document/MappingDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace fbtool {

namespace {

// Where the text stops being well-formed: the document only tells that it
// refused the text.
QString whereMalformed(const QString& xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    if (!reader.hasError())
        return QStringLiteral("not a mapping object (one root element and nothing but markup around it)");
    return QStringLiteral("not well-formed XML: %1 (line %2, column %3)")
        .arg(reader.errorString())
        .arg(reader.lineNumber())
        .arg(reader.columnNumber());
}

} // namespace

bool LoadMappingObject(const QString& path, fb::MappingDocument& doc, QString* error)
{
    const auto fail = [&](const QString& why) {
        if (error)
            *error = path + QStringLiteral(": ") + why;
        return false;
    };
    if (QFileInfo(path).isDir())
        return fail(QStringLiteral("is a folder"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QString text = QString::fromUtf8(file.readAll());
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (!doc.LoadXml(text))
        return fail(whereMalformed(text));
    const QString root = doc.DocumentElement().name();
    if (root.size() != 8)
        return fail(QStringLiteral("not a mapping object: the root element <%1> is not an 8-character table name")
                        .arg(root));
    doc.SetTableName(root);
    return true;
}

} // namespace fbtool
