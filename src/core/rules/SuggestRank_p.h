#pragma once

// How one call of SuggestionEngine::Suggest() scores the candidates of each
// target field.

#include "SuggestIndex_p.h"

#include <deque>
#include <vector>

namespace fb::suggest {

// A source field as a candidate of one target field.
struct Scored {
    int source = -1;
    double score = 0;
    bool sameName = false;
    bool description = false; // the descriptions spoke for it
    bool sharedKey = false;   // a key of most tables on both sides
    bool tableFits = false;   // its table suits the dump best
    double affinity = 0;      // of its table to the dump, 0..1
    int demotedFor = -1;      // the target field that took this source
    TypeVerdict type;
};

class Ranker {
public:
    Ranker(const SuggestionEngine::Index& index, const QList<SuggestField>& targets);

    // The candidates of target field k that the index yields, scored, in
    // source order.
    std::vector<Scored> Candidates(int k);
    // The alignment of target field k's name with a source field's name,
    // with the matched words: what the reasons tell.
    Alignment NameAlignment(int k, int source);
    const AnalysedName& TargetName(int k) const { return *m_names[size_t(k)]; }

private:
    const std::vector<TermLink>* linksOf(const QString& term);
    TargetWords targetWords(const QList<NameWord>& words);
    // Pre-scores of the index's entries for target k, and the best of them.
    void gather(int k);
    Scored score(int k, int source);
    // An alignment made once per target field and entry.
    struct Cached {
        int stamp = -1; // the target field it was made for
        double score = 0;
        bool subject = false;
    };
    double alignCached(std::vector<Cached>& cache, const TargetWords& t,
                       const SuggestionEngine::Index::Entry& e, int entry, const std::vector<double>& weights,
                       int k, bool* subject = nullptr);

    const SuggestionEngine::Index& m_x;
    const QList<SuggestField>& m_targets;
    NameAnalyser m_analyser;
    std::vector<const AnalysedName*> m_names;
    std::vector<const QList<NameWord>*> m_descriptions;
    std::vector<TargetWords> m_nameWords, m_descriptionWords;
    std::vector<double> m_nameWeights, m_descriptionWeights; // per source term
    QHash<QString, int> m_linkIndex;
    std::deque<std::vector<TermLink>> m_links;
    AlignScratch m_scratch;

    // Per target field, reset by stamps: the pre-scores of the entries and
    // the alignments made.
    std::vector<double> m_nameAcc, m_descAcc;
    std::vector<int> m_nameTouched, m_descTouched;
    std::vector<int> m_selectedNames, m_selectedDescriptions;
    std::vector<Cached> m_nameAlign, m_nameByDesc, m_descByName, m_descByDesc;
    // Type verdicts of the current target field by the source's type letter
    // and length: many sources share both.
    struct CachedType {
        int stamp = -1;
        TypeVerdict verdict;
    };
    std::vector<CachedType> m_types;
    TypeVerdict typeVerdict(int k, int source);
    std::vector<int> m_sourceSeen;
};

} // namespace fb::suggest
