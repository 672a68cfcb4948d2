#include "SuggestRank_p.h"

#include <QSet>
#include <algorithm>

namespace fb::suggest {

namespace {

constexpr int kNamePool = 40;             // distinct source names aligned per target field
constexpr int kDescriptionPool = 30;      // distinct source descriptions aligned per target field
constexpr int kPerDescription = 40;       // fields taken from one description found by the description alone
constexpr double kClassOnly = 0.5;        // names that share only class words (id, value, date...)
constexpr double kKeyShare = 0.5;         // a join key is held by at least this share of the tables
constexpr double kDescriptionOnly = 0.85; // a name against a description
constexpr double kDescriptions = 0.9;     // a description against a description
constexpr double kDescriptionHit = 0.8;   // how much a description word counts when gathering

// The last word of a name that is not a digit run.
const NameWord* lastWord(const QList<NameWord>& words)
{
    for (qsizetype k = words.size() - 1; k >= 0; --k)
        if (!words[k].digits && !words[k].stop)
            return &words[k];
    return nullptr;
}

bool isKeyName(const QList<NameWord>& words)
{
    const NameWord* w = lastWord(words);
    return w && SuggestWords::Instance().IsKeyWord(w->term);
}

// The n touched entries with the highest pre-scores, ascending; the
// pre-scores are cleared for the next target field.
void selectBest(std::vector<int>& touched, std::vector<double>& acc, int n, std::vector<int>& out)
{
    out = touched;
    if (int(out.size()) > n) {
        std::nth_element(out.begin(), out.begin() + n, out.end(), [&](int a, int b) {
            return acc[size_t(a)] != acc[size_t(b)] ? acc[size_t(a)] > acc[size_t(b)] : a < b;
        });
        out.resize(size_t(n));
    }
    for (int e : touched)
        acc[size_t(e)] = 0;
    touched.clear();
    std::sort(out.begin(), out.end());
}

} // namespace

Ranker::Ranker(const SuggestionEngine::Index& index, const QList<SuggestField>& targets)
    : m_x(index), m_targets(targets), m_analyser(NameAnalyser::WithVocabulary(index.analyser))
{
    const double n = double(m_x.sources.size() + targets.size());
    // How many target fields use each term.
    QHash<QString, int> dfName, dfDesc;
    const auto count = [](QHash<QString, int>& df, const QList<NameWord>& words) {
        QSet<QString> seen;
        for (const NameWord& w : words)
            if (!seen.contains(w.term))
                seen.insert(w.term), ++df[w.term];
    };
    for (const SuggestField& f : targets) {
        m_names.push_back(&m_analyser.AnalyseName(f.name, f.tableDescription));
        m_descriptions.push_back(&m_analyser.AnalyseText(f.description));
        count(dfName, m_names.back()->words);
        count(dfDesc, *m_descriptions.back());
    }
    m_nameWeights.resize(m_x.terms.size());
    m_descriptionWeights.resize(m_x.terms.size());
    for (size_t id = 0; id < m_x.terms.size(); ++id) {
        m_nameWeights[id] = idf(n, double(m_x.nameDf[id] + dfName.value(m_x.terms[id])));
        m_descriptionWeights[id] = idf(n, double(m_x.descDf[id] + dfDesc.value(m_x.terms[id])));
    }
    const auto weigh = [&](const QList<NameWord>& words, bool description) {
        TargetWords w = targetWords(words);
        for (size_t i = 0; i < w.terms.size(); ++i) {
            const QString& term = words[qsizetype(i)].term;
            const int id = w.terms[i];
            const double sourceDf =
                id < 0 ? 0.0 : double(description ? m_x.descDf[size_t(id)] : m_x.nameDf[size_t(id)]);
            const double targetDf = (description ? dfDesc : dfName).value(term);
            w.weights.push_back(words[qsizetype(i)].factor * idf(n, sourceDf + targetDf));
        }
        return w;
    };
    for (size_t k = 0; k < m_names.size(); ++k) {
        m_nameWords.push_back(weigh(m_names[k]->words, false));
        m_descriptionWords.push_back(weigh(*m_descriptions[k], true));
    }
    m_nameAcc.assign(m_x.names.size(), 0.0);
    m_descAcc.assign(m_x.descriptions.size(), 0.0);
    m_nameAlign.assign(m_x.names.size(), {});
    m_nameByDesc.assign(m_x.names.size(), {});
    m_descByName.assign(m_x.descriptions.size(), {});
    m_descByDesc.assign(m_x.descriptions.size(), {});
    m_sourceSeen.assign(size_t(m_x.sources.size()), -1);
    m_types.assign(12 * 256, {});
}

const std::vector<TermLink>* Ranker::linksOf(const QString& term)
{
    const auto it = m_linkIndex.constFind(term);
    if (it != m_linkIndex.cend())
        return &m_links[size_t(*it)];
    m_linkIndex.insert(term, int(m_links.size()));
    m_links.push_back(m_x.similarTerms(term));
    return &m_links.back();
}

TargetWords Ranker::targetWords(const QList<NameWord>& words)
{
    TargetWords w;
    w.words = &words;
    for (const NameWord& nw : words) {
        w.terms.push_back(m_x.termIds.value(nw.term, -1));
        w.links.push_back(linksOf(nw.term));
    }
    return w;
}

void Ranker::gather(int k)
{
    const TargetWords& tn = m_nameWords[size_t(k)];
    const TargetWords& td = m_descriptionWords[size_t(k)];
    const auto touch = [](const std::vector<int>& postings, double w, std::vector<double>& acc,
                          std::vector<int>& touched) {
        for (int e : postings) {
            if (acc[size_t(e)] == 0)
                touched.push_back(e);
            acc[size_t(e)] += w;
        }
    };
    for (const TargetWords* words : {&tn, &td}) {
        const double scale = words == &tn ? 1.0 : kDescriptionHit;
        for (size_t i = 0; i < words->links.size(); ++i) {
            if (words->weights[i] <= 0)
                continue; // a small word finds nothing alone
            for (const TermLink& l : *words->links[i]) {
                const double w = scale * words->weights[i] * l.sim;
                touch(m_x.namePostings[size_t(l.term)], w, m_nameAcc, m_nameTouched);
                touch(m_x.descPostings[size_t(l.term)], kDescriptionHit * w, m_descAcc, m_descTouched);
            }
        }
    }
    const double strongest =
        tn.weights.empty() ? 1.0 : *std::max_element(tn.weights.cbegin(), tn.weights.cend());
    const QList<NameWord>& words = m_names[size_t(k)]->words;
    for (const QString& ini : nameInitialisms(words))
        if (const int id = m_x.termIds.value(ini, -1); id >= 0)
            touch(m_x.namePostings[size_t(id)], strongest, m_nameAcc, m_nameTouched);
    for (const NameWord& w : words)
        if (!w.known && w.surface.size() >= 2 && w.surface.size() <= 5)
            if (const auto it = m_x.initialPostings.constFind(w.surface); it != m_x.initialPostings.cend())
                touch(*it, strongest, m_nameAcc, m_nameTouched);
    selectBest(m_nameTouched, m_nameAcc, kNamePool, m_selectedNames);
    selectBest(m_descTouched, m_descAcc, kDescriptionPool, m_selectedDescriptions);
}

std::vector<Scored> Ranker::Candidates(int k)
{
    gather(k);
    std::vector<int> sources;
    const auto add = [&](int s) {
        if (m_sourceSeen[size_t(s)] != k) {
            m_sourceSeen[size_t(s)] = k;
            sources.push_back(s);
        }
    };
    for (int e : m_selectedNames)
        for (int s : m_x.names[size_t(e)].sources)
            add(s);
    // A description that many fields share names none of them: a few of
    // them stand for the rest.
    for (int d : m_selectedDescriptions) {
        const std::vector<int>& shared = m_x.descriptions[size_t(d)].sources;
        for (size_t i = 0; i < shared.size() && i < size_t(kPerDescription); ++i)
            add(shared[i]);
    }
    std::sort(sources.begin(), sources.end());
    std::vector<Scored> out;
    for (int s : sources) {
        Scored sc = score(k, s);
        if (sc.score > 0)
            out.push_back(sc);
    }
    return out;
}

double Ranker::alignCached(std::vector<Cached>& cache, const TargetWords& t,
                           const SuggestionEngine::Index::Entry& e, int entry,
                           const std::vector<double>& weights, int k, bool* subject)
{
    Cached& c = cache[size_t(entry)];
    if (c.stamp != k) {
        const Alignment a = m_x.align(t, {e.words, e.terms.data()}, weights, m_scratch, false);
        c = {k, a.score, a.subject};
    }
    if (subject)
        *subject = c.subject;
    return c.score;
}

Scored Ranker::score(int k, int s)
{
    Scored sc;
    sc.source = s;
    const TargetWords& tn = m_nameWords[size_t(k)];
    const TargetWords& td = m_descriptionWords[size_t(k)];
    const AnalysedName& tName = *m_names[size_t(k)];
    const int e = m_x.nameOf[size_t(s)];
    const SuggestionEngine::Index::Entry& name = m_x.names[size_t(e)];
    bool subject = false;
    const double nameScore = alignCached(m_nameAlign, tn, name, e, m_nameWeights, k, &subject);
    // The same name aligns fully; only then are the names compared.
    sc.sameName =
        nameScore > 0.999 && name.name->arrayIndex == tName.arrayIndex && name.name->base == tName.base;
    double ev = sc.sameName ? 1.0 : nameScore;
    if (!sc.sameName && !subject)
        ev *= kClassOnly;
    // The keys that join most tables on each side tend to be the same key:
    // a lead, never enough to accept. Keys held by as many of the tables on
    // each side pair best.
    const double ts = m_targets[k].keyShare;
    const double ss = m_x.keyShare[size_t(s)];
    if (ts > kKeyShare && ss > kKeyShare && isKeyName(tName.words) && isKeyName(*name.words)) {
        const double key = 0.25 + 0.2 * std::min(ts, ss) * (1.0 - std::abs(ts - ss));
        if (key > ev) {
            ev = key;
            sc.sharedKey = true;
        }
    }
    const int d = m_x.descOf[size_t(s)];
    const bool targetDesc = !td.words->isEmpty();
    if (d >= 0 || targetDesc) {
        double de = 0;
        if (d >= 0) {
            const SuggestionEngine::Index::Entry& desc = m_x.descriptions[size_t(d)];
            if (targetDesc)
                de = kDescriptions * alignCached(m_descByDesc, td, desc, d, m_descriptionWeights, k);
            de = std::max(de,
                          kDescriptionOnly * alignCached(m_descByName, tn, desc, d, m_descriptionWeights, k));
        }
        if (targetDesc)
            de = std::max(de, kDescriptionOnly * alignCached(m_nameByDesc, td, name, e, m_nameWeights, k));
        if (de > ev) {
            ev = de;
            sc.description = true;
        } else if (de >= 0.3) {
            ev += (1 - ev) * 0.3 * de;
            sc.description = true;
        }
    }
    sc.type = typeVerdict(k, s);
    sc.score = std::clamp(ev * sc.type.factor, 0.0, 1.0);
    return sc;
}

TypeVerdict Ranker::typeVerdict(int k, int source)
{
    const SuggestField& f = m_x.sources[source];
    constexpr int kLengths = 256;
    const qsizetype letter = QStringView(u"BILFDSMEPTKU").indexOf(f.type);
    if (letter < 0 || f.length < 0 || f.length >= kLengths)
        return CompareTypeLetters(f, m_targets[k]);
    CachedType& c = m_types[size_t(letter * kLengths + f.length)];
    if (c.stamp != k)
        c = {k, CompareTypeLetters(f, m_targets[k])};
    return c.verdict;
}

Alignment Ranker::NameAlignment(int k, int source)
{
    const SuggestionEngine::Index::Entry& e = m_x.names[size_t(m_x.nameOf[size_t(source)])];
    return m_x.align(m_nameWords[size_t(k)], {e.words, e.terms.data()}, m_nameWeights, m_scratch, true);
}

} // namespace fb::suggest
