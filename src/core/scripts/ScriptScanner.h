#pragma once

#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace fb {

// Word separators of the scripts: line feed, carriage return, tab and space;
// nothing else.
bool IsSeparator(QChar c);

// True when some element of the list equals the name exactly.
bool ListContains(const QStringList& list, const QString& name);

// The descriptive text that goes with a dump number: the rest of the line
// after the number, stopping before the next "dump" keyword when that comes
// first on the line, with blanks and tabs trimmed. rest starts right after
// the keyword; nextDump is the 1-based position of the next "dump" in rest
// (0 for none).
QString ReadDumpText(QStringView rest, int nextDump);

// The keywords of a text as the scanner reads them: each whole "migrate" or
// "dump" (positions in UTF-16 code units, from 0), with the word that follows
// it and whether the scanner takes that word (a valid table name, a dump
// number from 1 to 999). What a script editor colours comes from here.
struct KeywordSpan {
    qsizetype start;
    qsizetype length;
    qsizetype argumentStart; // -1 when no word follows
    qsizetype argumentLength;
    bool argumentValid;
};
QList<KeywordSpan> KeywordSpans(const QString& text);

// The scanner's walk over the occurrences of a keyword (found without regard
// to case): visit gets the rest of the text that the occurrence was found in,
// its 1-based position p in that rest and the rest's offset in the text, and
// answers whether to go on. The rest after an occurrence starts right behind
// the keyword, so a keyword directly after another one stands at the rest's
// start.
void WalkKeyword(QStringView text, QStringView keyword,
                 const std::function<bool(QStringView rest, int p, qsizetype offset)>& visit);

// A valid source-table name: 8 characters, the first 5 not numeric, the last
// 3 numeric.
bool IsValidTableName(const QString& name);
// A dump number: a whole number from 1 to 999.
std::optional<qint16> DumpNumber(const QString& word);

// The scanner of the two keywords that carry structure in the scripts:
// "migrate" names a source table to read, "dump" a numbered dump. Keywords
// are found without regard to case as whole words. Messages go through the
// Interaction; the lists it fills live in the document.
class ScriptScanner {
public:
    ScriptScanner(MappingDocument& doc, Interaction& ui) : m_doc(doc), m_ui(ui) {}

    // Whether the keyword of length n found at the 1-based position p stands
    // as a whole word. A keyword that ends the text (or has just one character
    // after it) is never a whole word, and the message is shown: critical at
    // the text's start, information after a separator.
    bool IsKeywordAt(QStringView text, int p, int n, const QString& message);

    // The first word of the text; count grows by the characters consumed.
    QString NextWord(QStringView text, qint32& count);

    // Fills the migrate tables from the "migrate" statements of the text.
    // False for an empty text, which changes nothing.
    bool ParseMigrateTables(const QString& text);
    // Validates the name and appends it; false for a duplicate or an invalid
    // name (after the message).
    bool AddMigrateTable(const QString& name);

    // Records every "dump n" of the text (1 <= n <= 999) as a reference.
    void ScanDumpReferences(const QString& text);
    // Collects the references of all scripts anew: precondition, functions,
    // then the main query of each migrate table.
    void CollectDumpReferences();

    bool CheckMscripts();

    // Brings the document into line with its scripts before it is handed
    // back: QUERY elements of tables no longer migrated go, DUMP elements are
    // created for new references and removed when no script names them.
    void PruneSections();
    void PruneQueries();
    void PruneDumps();

private:
    // Adds the collected references to the dictionary of known dumps.
    void RegisterDumps(const QString& table);

    MappingDocument& m_doc;
    Interaction& m_ui;
};

} // namespace fb
