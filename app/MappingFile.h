#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What the host itself needs to know about a mapping object: the root
// element's name (which the control wants as TargetTable) and the catalogue
// of source tables and fields under SRCTAB, which the host's pickers and
// builders offer. QtCore and the control's core only.
namespace MappingFile {

struct SourceField {
    QString qualifiedName; // "table.field" in lower case, in the form the control shows
    QString description;   // the field's description
};

struct SourceTable {
    QString name; // element name as written under SRCTAB
    QList<SourceField> fields;
};

struct Catalogue {
    QString rootName;
    QList<SourceTable> sourceTables;
};

// Reads the root name and the SRCTAB catalogue through the control's own
// document rules. A text the control would refuse gives false, with a
// readable reason (line and column where the XML breaks) in *error.
bool readCatalogue(const QString& xml, Catalogue* catalogue, QString* error);

// The tables of the catalogue named in a comma-separated list (compared
// without regard to case); all tables when the list names none of them.
QList<SourceTable> tablesNamedIn(const Catalogue& catalogue, const QString& commaSeparated);

// Splits a comma-separated table list, dropping blanks and empty pieces.
QStringList splitTableList(const QString& commaSeparated);

} // namespace MappingFile
