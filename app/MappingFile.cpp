#include "MappingFile.h"

#include "core/dictionary/FieldRules.h"
#include "core/document/MappingDocument.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QXmlStreamReader>

namespace MappingFile {

namespace {

// The encoding named in a leading declaration, or "" when there is none.
bool startsWithDeclaration(QStringView text)
{
    return text.startsWith(u"<?xml") && text.size() > 5 && text.at(5).isSpace();
}

QByteArray declaredEncoding(const QByteArray& bytes)
{
    if (!startsWithDeclaration(QString::fromLatin1(bytes.left(6))))
        return {};
    const qsizetype end = bytes.indexOf("?>");
    if (end < 0)
        return {};
    static const QRegularExpression encodingAttr(QStringLiteral("encoding\\s*=\\s*[\"']([A-Za-z0-9._-]+)[\"']"));
    const QRegularExpressionMatch m = encodingAttr.match(QString::fromLatin1(bytes.left(end)));
    return m.hasMatch() ? m.captured(1).toLatin1() : QByteArray();
}

// Where the text stops being well-formed, for the message that refuses it:
// the document only tells that it refused the text.
QString whereMalformed(const QString& xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    if (!reader.hasError())
        return QStringLiteral("The control does not take it as a mapping object.");
    return QStringLiteral("%1 (line %2, column %3)")
        .arg(reader.errorString())
        .arg(reader.lineNumber())
        .arg(reader.columnNumber());
}

} // namespace

Decoded decode(const QByteArray& bytes)
{
    Decoded result;
    QString text;
    if (const auto bom = QStringConverter::encodingForData(bytes)) {
        QStringDecoder decoder(*bom);
        text = decoder(bytes);
    } else {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QByteArray declared = declaredEncoding(bytes);
        if (!declared.isEmpty()) {
            QStringDecoder named(declared.constData());
            if (named.isValid())
                decoder = std::move(named);
        }
        text = decoder(bytes);
    }
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    if (startsWithDeclaration(text)) {
        const qsizetype end = text.indexOf(QStringLiteral("?>"));
        if (end >= 0) {
            qsizetype next = end + 2;
            while (next < text.size() && text.at(next).isSpace())
                ++next;
            text.remove(0, next);
            result.declarationRemoved = true;
        }
    }
    result.text = text;
    return result;
}

bool readCatalogue(const QString& xml, Catalogue* catalogue, QString* error)
{
    fb::MappingDocument document;
    if (!document.LoadXml(xml)) {
        if (error)
            *error = whereMalformed(xml);
        return false;
    }
    Catalogue result;
    result.rootName = document.DocumentElement().name();
    // The sections are found as the control finds them: below the root name
    // taken as the 8-character table name.
    document.SetTableName(result.rootName);
    const fb::Node definitions = document.GetNode(document.SectionPath(QStringLiteral("SRCTAB")));
    for (const fb::Node& table : definitions.childElements()) {
        SourceTable entry{table.name(), {}};
        // The rows the control's own field lists show: the same name form.
        for (const fb::FieldRow& row : fb::FieldRowsOf(table))
            entry.fields.append(SourceField{row.name, row.description});
        result.sourceTables.append(entry);
    }
    if (catalogue)
        *catalogue = result;
    return true;
}

QStringList splitTableList(const QString& commaSeparated)
{
    QStringList names;
    const QStringList pieces = commaSeparated.split(u',');
    for (const QString& piece : pieces) {
        const QString name = piece.trimmed();
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

QList<SourceTable> tablesNamedIn(const Catalogue& catalogue, const QString& commaSeparated)
{
    const QStringList wanted = splitTableList(commaSeparated);
    QList<SourceTable> tables;
    for (const QString& name : wanted) {
        for (const SourceTable& table : catalogue.sourceTables) {
            if (table.name.compare(name, Qt::CaseInsensitive) == 0) {
                tables.append(table);
                break;
            }
        }
    }
    return tables.isEmpty() ? catalogue.sourceTables : tables;
}

} // namespace MappingFile
