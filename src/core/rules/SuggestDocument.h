#pragma once

#include "Suggest.h"

#include <QList>
#include <QString>

// Suggestions for a whole mapping object: the fields of its listed source
// tables against the target fields of each dump. The one entry point of the
// control, the command-line tool and the benchmarks.
namespace fb {

class MappingDocument;

// The fields of the listed source tables, in list order.
QList<SuggestField> ListedSourceFields(MappingDocument& doc);

// One dump and the fields of its target table.
struct DumpTargetFields {
    qint16 dump = 0;
    QString targetTable; // lower case; as the dump names it when the table has no definition
    QList<SuggestField> fields;
};

// The dumps the checks cover (CheckedDumps: referenced, numbered 1 to 999,
// each once, in document order), each with the fields of its target table
// (the table the dump is bound to, or the document's own table when it has a
// single target). dumpFilter 0
// gives all, another number that dump alone. The document's table name must
// be set.
QList<DumpTargetFields> DumpTargets(MappingDocument& doc, qint16 dumpFilter = 0);

struct DumpSuggestions {
    qint16 dump = 0;
    QString targetTable;
    QList<SuggestField> targets;              // the target table's fields, in table order
    QList<QList<SuggestedSource>> candidates; // per target field, best first
};

struct DocumentSuggestions {
    QList<SuggestField> sources; // what SuggestedSource::source points into
    QList<DumpSuggestions> dumps;
};

// The suggestions of every dump (or of dumpFilter alone), the source index
// built once for all of them.
DocumentSuggestions SuggestForDocument(MappingDocument& doc, qint16 dumpFilter = 0,
                                       const SuggestOptions& options = {});

} // namespace fb
