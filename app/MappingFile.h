#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// What the host itself needs to know about a mapping object: how to turn a
// file into the text the control takes, the root element's name (which the
// control wants as TargetTable) and the catalogue of source tables and fields
// under SRCTAB, which the host's pickers and builders offer. QtCore only.
namespace MappingFile {

struct SourceField {
    QString qualifiedName; // "table.field" in lower case, array index shown as "(n)"
    QString description;   // DSCA
};

struct SourceTable {
    QString name; // element name as written under SRCTAB
    QList<SourceField> fields;
};

struct Catalogue {
    QString rootName;
    QList<SourceTable> sourceTables;
};

struct Decoded {
    QString text;
    bool declarationRemoved = false;
};

// Decodes file bytes (byte-order mark, else the declared encoding, else
// UTF-8) and removes a leading XML declaration, since the control needs the
// root element to be the document's first node.
Decoded decode(const QByteArray& bytes);

// Reads the root name and the SRCTAB catalogue. On malformed XML returns
// false and puts a readable reason (with line and column) into *error.
bool readCatalogue(const QString& xml, Catalogue* catalogue, QString* error);

// "NOTE__2" -> "note(2)": the shown form of a stored field name.
QString shownFieldName(const QString& storedName);

// The tables of the catalogue named in a comma-separated list (compared
// without regard to case); all tables when the list names none of them.
QList<SourceTable> tablesNamedIn(const Catalogue& catalogue, const QString& commaSeparated);

// Splits a comma-separated table list, dropping blanks and empty pieces.
QStringList splitTableList(const QString& commaSeparated);

// Line breaks at the host boundary: the control's texts use CR LF; Qt's
// editors use LF.
QString toEditorBreaks(QString text);
QString toWindowsBreaks(const QString& text);

} // namespace MappingFile
