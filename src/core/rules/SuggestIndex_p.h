#pragma once

// The parts of the suggestion engine that its index and its ranking share.

#include "Suggest.h"
#include "SuggestNames.h"

#include <QHash>
#include <QList>
#include <QString>
#include <vector>

namespace fb {

namespace suggest {

// How two words were found to match; the reasons name it.
enum class Match : quint8 {
    None,
    Exact,        // the same word
    Inflection,   // smoke ~ smoking
    Abbreviation, // qty = quantity, from the word list
    Synonym,      // sex ~ gender
    Related,      // code ~ identifier
    ShortForm,    // disch ~ discharge: a guessed abbreviation
    Spelling,     // pathology ~ pathologic
    Initialism,   // uom ~ unit of measure
    Compound,     // followup ~ follow up
    Derivation,   // admitting ~ admission: the same root
};

struct TermLink {
    int term = -1;
    double sim = 0;
    Match kind = Match::None;
};

// One matched pair of spans: target words [t, tEnd), source words [s, sEnd).
struct WordMatch {
    int t = 0, tEnd = 0, s = 0, sEnd = 0;
    double sim = 0;
    Match kind = Match::None;
};

struct Alignment {
    double score = 0;         // weighted harmonic mean of the two coverages
    bool subject = false;     // a word that is not a class word matched
    QList<WordMatch> matches; // only when asked for
};

// A target field's name or description ready for alignment: its words, the
// term id of each (-1 for a term no source has), its weight, and the source
// terms each word is similar to.
struct TargetWords {
    const QList<NameWord>* words = nullptr;
    std::vector<int> terms;
    std::vector<double> weights;
    std::vector<const std::vector<TermLink>*> links;
};

// A source field's name or description as indexed.
struct SourceWords {
    const QList<NameWord>* words = nullptr;
    const int* terms = nullptr;
};

// The buffers of one alignment, kept between calls.
struct AlignScratch {
    struct Pair {
        int i, j;
        double sim, weight;
        Match kind;
    };
    std::vector<Pair> pairs;
    std::vector<double> tGot, sGot, sWeights;
};

// The weight of a word in a field: rare words say more. n fields on both
// sides, df of which hold the word.
double idf(double n, double df);

// The first letters of words [from, to).
QString initials(const QList<NameWord>& words, qsizetype from, qsizetype to);

// Runs of two to five words of a name also stand for their initials (pt for
// pathologic_t): the index finds them by an initialism of the target.
QStringList nameInitialisms(const QList<NameWord>& words);

// How a source type suits a target type: the factor and the verb of the
// reason ("fits", "converts to"...); no verb when a type is unknown.
struct TypeVerdict {
    double factor = 1.0;
    const char* verb = nullptr;
};
TypeVerdict CompareTypeLetters(const SuggestField& source, const SuggestField& target);

} // namespace suggest

struct SuggestionEngine::Index {
    QList<SuggestField> sources;
    NameAnalyser analyser;

    // Distinct texts: a name or a description shared by many fields is
    // indexed, matched and aligned once.
    struct Entry {
        const QList<NameWord>* words = nullptr;
        const AnalysedName* name = nullptr; // names only
        std::vector<int> terms;             // term id of each word
        std::vector<int> sources;           // the fields that carry it, ascending
    };
    std::vector<Entry> names;
    std::vector<Entry> descriptions;
    std::vector<int> nameOf; // per source: its entry in names
    std::vector<int> descOf; // per source: its entry in descriptions, -1 for none

    std::vector<int> tableOf;     // position of each source's table among the tables
    std::vector<double> keyShare; // share of the source tables holding a field of the same name
    int tableCount = 0;

    QHash<QString, int> termIds;
    std::vector<QString> terms;
    std::vector<std::vector<int>> namePostings;        // term -> name entries, ascending
    std::vector<std::vector<int>> descPostings;        // term -> description entries
    std::vector<int> nameDf;                           // term -> source fields whose name holds it
    std::vector<int> descDf;                           // term -> source fields whose description holds it
    QHash<QString, std::vector<int>> initialPostings;  // initialism of a name -> name entries
    std::vector<std::pair<QString, int>> sortedTerms;  // for prefix ranges
    QHash<QString, std::vector<int>> trigramTerms;     // trigram -> terms
    std::vector<int> trigramCounts;                    // per term
    QHash<QChar, std::vector<int>> shortTermsByLetter; // guessable short forms
    QHash<QString, std::vector<int>> rootTerms;        // WordRoot -> terms

    explicit Index(const QStringList& vocabularyNames) : analyser(vocabularyNames) {}
    int termOf(const QString& t);
    void build();
    // The source terms similar to a term, one link per term, by term id.
    std::vector<suggest::TermLink> similarTerms(const QString& t) const;
    // How well a source's words cover a target's words and the other way
    // round; termWeights: the weight of each source term.
    suggest::Alignment align(const suggest::TargetWords& t, const suggest::SourceWords& s,
                             const std::vector<double>& termWeights, suggest::AlignScratch& scratch,
                             bool withMatches) const;
};

} // namespace fb
