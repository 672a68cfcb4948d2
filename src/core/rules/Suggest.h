#pragma once

#include "core/document/FieldDefinition.h"

#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

// Suggestions of source fields for the target fields of a dump: each target
// field gets the source fields ranked by a score in [0,1] with the reasons
// behind it. A score of 0.5 or more means "take it"; below, the candidates
// are leads to look at.
namespace fb {

// A field as the suggestions see it.
struct SuggestField {
    QString table;            // the table name as listed, lower case
    QString name;             // the shown field name, lower case: qty, qty(2)
    QChar type;               // the one-letter type code; null when unknown
    int length = 0;           // the length of texts, the digits of numbers; 0 when unknown
    int decimals = 0;         // the digits after the point
    QString description;      // the field's description
    QString tableDescription; // its table's description
    // For target fields: the share of the document's target tables that hold
    // a field of this name (a key that joins them); 0 when unknown or when
    // there are fewer than three tables. Source fields get theirs from the
    // engine.
    double keyShare = 0;

    // table.field, as the field lists show it.
    QString qualifiedName() const { return table + u'.' + name; }

    // The field of a table as its definition describes it: shown name, type,
    // length, decimals and descriptions.
    static SuggestField FromDefinition(const QString& table, const FieldDefinition& field,
                                       const QString& tableDescription);
};

struct SuggestedSource {
    int source = -1; // position in the engine's source list
    double score = 0;
    QStringList reasons;
};

struct SuggestOptions {
    int top = 5; // candidates kept per target field; 0 keeps all above minScore
    double minScore = 0.05;
    // A source field that is the best candidate of several target fields
    // stays first only for the one it fits best; the others fall back to
    // their next candidates.
    bool oneToOne = true;
};

// How a source field's type suits a target field's: a factor in (0,1] that
// scales the score, and the reason shown ("type String(30) fits String(40)";
// empty when either type is unknown).
struct TypeFit {
    double factor = 1.0;
    QString reason;
};
TypeFit CompareTypes(const SuggestField& source, const SuggestField& target);

// For each field, the share of the fields' tables that hold a field of the
// same name; all 0 when the fields come from fewer than three tables.
std::vector<double> SharedNameShares(const QList<SuggestField>& fields);

// The index over the source fields, built once; Suggest() then scores only
// the candidates that the index yields for each target field.
class SuggestionEngine {
public:
    // targetNames: the names of the target fields to come (all of the
    // document's), whose words help take run-together names apart.
    explicit SuggestionEngine(QList<SuggestField> sources, const QStringList& targetNames = {});
    ~SuggestionEngine();
    SuggestionEngine(const SuggestionEngine&) = delete;
    SuggestionEngine& operator=(const SuggestionEngine&) = delete;

    const QList<SuggestField>& sources() const;

    // The candidates of each target field, in target order, best first; equal
    // scores keep the source list order. The same input always gives the
    // same output.
    QList<QList<SuggestedSource>> Suggest(const QList<SuggestField>& targets,
                                          const SuggestOptions& options = {}) const;

    struct Index; // the engine's insides, in SuggestIndex_p.h

private:
    std::unique_ptr<Index> d;
};

} // namespace fb
