#include "MappingFile.h"

#include "core/dictionary/FieldRules.h"
#include "core/document/MappingDocument.h"

namespace MappingFile {

bool readCatalogue(const QString& xml, Catalogue* catalogue, QString* error)
{
    fb::MappingDocument document;
    if (!document.LoadXml(xml)) {
        if (error) {
            *error = fb::DescribeMalformedXml(xml);
            if (error->isNull())
                *error = QStringLiteral("The control does not take it as a mapping object.");
        }
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
