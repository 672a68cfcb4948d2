#pragma once

#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"

#include <QString>
#include <QStringList>

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
QString ReadDumpText(const QString& rest, int nextDump);

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
    bool IsKeywordAt(const QString& text, int p, int n, const QString& message);

    // The first word of the text; count grows by the characters consumed.
    QString NextWord(const QString& text, qint32& count);

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
