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
    double score = 0; // harmonic mean of the two weighted coverages
    bool subject = false; // a word that is not a class word matched
    QList<WordMatch> matches;
};

// A field's words ready for alignment: terms, weights and, for target
// words, the source terms each one is similar to.
struct Words {
    const QList<NameWord>* words = nullptr;
    const int* terms = nullptr;  // term ids; -1 for a term no source has
    std::vector<int> ownTerms;   // the ids of a target's words, that terms points at
    std::vector<double> weights; // idf times the word's factor
    std::vector<const std::vector<TermLink>*> links; // target words only

    Words() = default;
    Words(Words&&) = default; // a moved vector keeps its buffer: terms stays valid
    Words(const Words&) = delete;
    Words& operator=(const Words&) = delete;
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
    std::vector<AnalysedName> names;
    std::vector<QList<NameWord>> descriptions;
    std::vector<std::vector<int>> nameTerms; // term ids of each source's name words
    std::vector<std::vector<int>> descTerms;
    std::vector<int> tableOf; // position of each source's table among the tables
    std::vector<double> keyShare; // share of the source tables holding a field of the same name
    int tableCount = 0;

    QHash<QString, int> termIds;
    std::vector<QString> terms;
    std::vector<std::vector<int>> namePostings; // term -> sources, ascending
    std::vector<std::vector<int>> descPostings;
    QHash<QString, std::vector<int>> initialPostings; // initialism of a name -> sources
    std::vector<std::pair<QString, int>> sortedTerms;  // for prefix ranges
    QHash<QString, std::vector<int>> trigramTerms;     // trigram -> terms
    std::vector<int> trigramCounts;                    // per term
    QHash<QChar, std::vector<int>> shortTermsByLetter; // guessable short forms

    int termOf(const QString& t);
    void build();
    // The source terms similar to a term, one link per term, by term id.
    std::vector<suggest::TermLink> similarTerms(const QString& t) const;
    suggest::Alignment align(const suggest::Words& t, const suggest::Words& s) const;
};

} // namespace fb
