#include "MappingFile.h"

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

QString shownFieldName(const QString& storedName)
{
    QString name = storedName.toLower();
    const qsizetype marker = name.indexOf(QStringLiteral("__"));
    if (marker > 0) {
        name.replace(marker, 2, QStringLiteral("("));
        name.append(u')');
    }
    return name;
}

bool readCatalogue(const QString& xml, Catalogue* catalogue, QString* error)
{
    Catalogue result;
    QXmlStreamReader reader(xml);
    // Depth 1 = root, 2 = section, 3 = table, 4 = field.
    int depth = 0;
    bool inSourceSection = false;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            const QString name = reader.name().toString();
            if (depth == 1) {
                result.rootName = name;
            } else if (depth == 2) {
                inSourceSection = (name == QStringLiteral("SRCTAB"));
            } else if (depth == 3 && inSourceSection) {
                result.sourceTables.append(SourceTable{name, {}});
            } else if (depth == 4 && inSourceSection) {
                SourceTable& table = result.sourceTables.last();
                table.fields.append(SourceField{table.name.toLower() + u'.' + shownFieldName(name),
                                                reader.attributes().value(QStringLiteral("DSCA")).toString()});
            }
        } else if (token == QXmlStreamReader::EndElement) {
            if (depth == 2)
                inSourceSection = false;
            --depth;
        }
    }
    if (reader.hasError() || result.rootName.isEmpty()) {
        if (error) {
            *error = reader.hasError()
                         ? QStringLiteral("%1 (line %2, column %3)")
                               .arg(reader.errorString())
                               .arg(reader.lineNumber())
                               .arg(reader.columnNumber())
                         : QStringLiteral("The document has no root element.");
        }
        return false;
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

QString toEditorBreaks(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

QString toWindowsBreaks(const QString& text)
{
    QString result = toEditorBreaks(text);
    result.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return result;
}

} // namespace MappingFile
