#include "Suggest.h"

#include "SuggestRank_p.h"

#include <QSet>
#include <algorithm>
#include <vector>

namespace fb {

using namespace suggest;

namespace {

constexpr double kAccept = 0.5;                   // the score from which a candidate is meant to be taken
constexpr double kAffinity = 0.5;                 // how much a well-matching source table lifts its fields
constexpr double kMaxLift = kAffinity / 4 + 1e-9; // the most a lift adds: kAffinity * s * (1 - s) at s = 0.5
constexpr double kDemoted = 0.6;                  // a source taken by a better-fitting target field
// The candidates of each target field that the table lift and the one-to-one
// pass weigh, however many are shown: what comes first must not depend on
// how many candidates are asked for.
constexpr size_t kWeighed = 13;

QString joinSpan(const QList<NameWord>& words, int from, int to, QChar sep)
{
    QStringList parts;
    for (int k = from; k < to; ++k)
        if (parts.isEmpty() || parts.last() != words[k].surface)
            parts.append(words[k].surface);
    return parts.join(sep);
}

QStringList wordReasons(const Alignment& a, const QList<NameWord>& tw, const QList<NameWord>& sw)
{
    QStringList out;
    QStringList left, right;
    for (const WordMatch& m : a.matches) {
        const QString t = joinSpan(tw, m.t, m.tEnd, u'+');
        const QString s = joinSpan(sw, m.s, m.sEnd, u'+');
        if (!left.isEmpty() && left.last() == t && right.last() == s)
            continue; // the two words of one initialism
        left.append(t);
        right.append(s);
        const QString& shorter = t.size() <= s.size() ? t : s;
        const QString& longer = t.size() <= s.size() ? s : t;
        switch (m.kind) {
        case Match::Abbreviation:
            out.append(QStringLiteral("abbreviation %1 = %2").arg(shorter, longer));
            break;
        case Match::Synonym:
            out.append(QStringLiteral("synonym %1 ~ %2").arg(t, s));
            break;
        case Match::Related:
            out.append(QStringLiteral("related words %1 ~ %2").arg(t, s));
            break;
        case Match::ShortForm:
            out.append(QStringLiteral("short form %1 ~ %2").arg(shorter, longer));
            break;
        case Match::Derivation:
            out.append(QStringLiteral("same root %1 ~ %2").arg(t, s));
            break;
        case Match::Spelling:
            out.append(QStringLiteral("similar spelling %1 ~ %2").arg(t, s));
            break;
        case Match::Initialism: {
            const bool targetShort = m.tEnd - m.t == 1;
            out.append(QStringLiteral("initialism %1 = %2")
                           .arg(targetShort ? t : s, targetShort ? joinSpan(sw, m.s, m.sEnd, u' ')
                                                                 : joinSpan(tw, m.t, m.tEnd, u' ')));
            break;
        }
        case Match::Compound:
            out.append(
                QStringLiteral("compound %1 = %2").arg(m.tEnd - m.t == 1 ? t : s, m.tEnd - m.t == 1 ? s : t));
            break;
        default:
            break;
        }
    }
    if (!left.isEmpty())
        out.prepend(QStringLiteral("tokens %1 ~ %2").arg(left.join(u'+'), right.join(u'+')));
    return out;
}

// Equal scores: the source table that suits the dump better, then the
// source list order.
bool byScore(const Scored& a, const Scored& b)
{
    if (a.score != b.score)
        return a.score > b.score;
    return a.affinity != b.affinity ? a.affinity > b.affinity : a.source < b.source;
}

// One target field's candidates: those weighed for the ranking, then
// further ones that are only shown.
struct Pool {
    std::vector<Scored> weighed;
    std::vector<Scored> shown;
};

// Source tables that match the dump well lift their fields a little: the
// fields of one target table tend to come from the same source tables.
void liftByTable(std::vector<Pool>& pools, const std::vector<int>& tableOf, int tableCount)
{
    if (tableCount < 2)
        return;
    std::vector<double> affinity(size_t(tableCount), 0.0);
    for (const Pool& p : pools) {
        const std::vector<Scored>& pool = p.weighed;
        std::vector<double> best(size_t(tableCount), 0.0);
        for (const Scored& sc : pool) {
            double& b = best[size_t(tableOf[size_t(sc.source)])];
            b = std::max(b, sc.score);
        }
        for (size_t t = 0; t < best.size(); ++t)
            if (best[t] >= 0.3)
                affinity[t] += best[t];
    }
    const double top = *std::max_element(affinity.cbegin(), affinity.cend());
    if (top <= 0)
        return;
    for (Pool& p : pools)
        for (std::vector<Scored>* pool : {&p.weighed, &p.shown})
            for (Scored& sc : *pool) {
                const double a = affinity[size_t(tableOf[size_t(sc.source)])] / top;
                // A lift reorders; it never makes a lead acceptable: below the
                // acceptance score it shrinks to nothing there, and it keeps the
                // order of the scores.
                const double lift = kAffinity * a * sc.score * (1 - sc.score);
                sc.score += sc.score < kAccept ? lift * (1 - sc.score / kAccept) : lift;
                sc.affinity = a;
                sc.tableFits = a == 1.0;
            }
}

// One source for one target field: by falling score, a target field takes
// its best source that no better-fitting target field has taken. A target
// field whose best sources went to others starts with its best remaining
// one; the taken sources follow it, their scores capped by its score so
// that scores keep falling. Taken sources alone stay, weakened.
void assignOneToOne(std::vector<Pool>& pools, int sourceCount, double minScore)
{
    struct Entry {
        double score;
        int target;
        int pos;
    };
    std::vector<Entry> entries;
    const int nt = int(pools.size());
    for (int k = 0; k < nt; ++k)
        for (int p = 0; p < int(pools[size_t(k)].weighed.size()); ++p)
            if (pools[size_t(k)].weighed[size_t(p)].score >= minScore)
                entries.push_back({pools[size_t(k)].weighed[size_t(p)].score, k, p});
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        if (a.score != b.score)
            return a.score > b.score;
        return a.target != b.target ? a.target < b.target : a.pos < b.pos;
    });
    std::vector<int> owner(size_t(sourceCount), -1);
    std::vector<char> served(size_t(nt), 0);
    for (const Entry& e : entries) {
        const int s = pools[size_t(e.target)].weighed[size_t(e.pos)].source;
        if (!served[size_t(e.target)] && owner[size_t(s)] < 0) {
            owner[size_t(s)] = e.target;
            served[size_t(e.target)] = 1;
        }
    }
    for (int k = 0; k < nt; ++k) {
        Pool& p = pools[size_t(k)];
        for (std::vector<Scored>* part : {&p.weighed, &p.shown})
            for (Scored& sc : *part) {
                const int o = owner[size_t(sc.source)];
                if (o >= 0 && o != k)
                    sc.demotedFor = o;
            }
        std::vector<Scored>& pool = p.weighed;
        const auto firstFree =
            std::find_if(pool.begin(), pool.end(), [](const Scored& sc) { return sc.demotedFor < 0; });
        if (firstFree == pool.end()) {
            for (std::vector<Scored>* part : {&p.weighed, &p.shown})
                for (Scored& sc : *part)
                    sc.score *= kDemoted;
            continue;
        }
        std::rotate(pool.begin(), firstFree, firstFree + 1);
        // The taken sources follow the first. The candidates only shown
        // scored below every weighed one already, this first included.
        for (auto it = pool.begin() + 1; it != pool.end(); ++it)
            if (it->demotedFor >= 0)
                it->score = std::min(it->score, pool.front().score);
    }
}

QStringList reasonsOf(const Scored& sc, Ranker& ranker, int k, const QList<SuggestField>& sources,
                      const QList<SuggestField>& targets, const AnalysedName& sName)
{
    QStringList reasons;
    const AnalysedName& tName = ranker.TargetName(k);
    if (sc.sameName)
        reasons.append(QStringLiteral("same name"));
    else
        reasons.append(wordReasons(ranker.NameAlignment(k, sc.source), tName.words, sName.words));
    if (sc.description)
        reasons.append(QStringLiteral("description matches"));
    if (tName.arrayIndex > 0 &&
        (sName.arrayIndex == tName.arrayIndex ||
         std::any_of(sName.words.cbegin(), sName.words.cend(), [&](const NameWord& w) {
             return w.digits && w.term == QString::number(tName.arrayIndex);
         })))
        reasons.append(QStringLiteral("array index %1").arg(tName.arrayIndex));
    if (sc.type.verb)
        reasons.append(CompareTypes(sources[sc.source], targets[k]).reason);
    if (sc.sharedKey)
        reasons.append(QStringLiteral("join key of most tables on both sides"));
    if (sc.tableFits)
        reasons.append(QStringLiteral("table %1 suits this dump").arg(sources[sc.source].table));
    if (sc.demotedFor >= 0)
        reasons.append(QStringLiteral("fits %1 better").arg(targets[sc.demotedFor].name));
    return reasons;
}

} // namespace

SuggestionEngine::SuggestionEngine(QList<SuggestField> sources, const QStringList& targetNames)
{
    QSet<QString> names(targetNames.cbegin(), targetNames.cend());
    for (const SuggestField& f : sources)
        names.insert(f.name);
    d = std::make_unique<Index>(QStringList(names.cbegin(), names.cend()));
    d->sources = std::move(sources);
    d->build();
}

SuggestionEngine::~SuggestionEngine() = default;

const QList<SuggestField>& SuggestionEngine::sources() const
{
    return d->sources;
}

QList<QList<SuggestedSource>> SuggestionEngine::Suggest(const QList<SuggestField>& targets,
                                                        const SuggestOptions& options) const
{
    const int nt = int(targets.size());
    Ranker ranker(*d, targets);
    const size_t shown = options.top > 0 ? std::max(kWeighed, size_t(std::max(options.top, 3) + 10))
                                         : size_t(d->sources.size());
    std::vector<Pool> pools(static_cast<size_t>(nt));
    for (int k = 0; k < nt; ++k) {
        std::vector<Scored> all = ranker.Candidates(k);
        // The weighed candidates: the best kWeighed and whatever the table
        // lift could carry past them.
        auto weighedEnd = all.end();
        if (all.size() > kWeighed) {
            std::nth_element(all.begin(), all.begin() + qsizetype(kWeighed) - 1, all.end(), byScore);
            const double floor = all[kWeighed - 1].score - kMaxLift;
            weighedEnd = std::partition(all.begin(), all.end(),
                                        [floor](const Scored& sc) { return sc.score >= floor; });
        }
        Pool& p = pools[size_t(k)];
        p.weighed.assign(all.begin(), weighedEnd);
        // Further candidates to show: no lift carries one of them past the
        // weighed ones.
        const size_t more = shown > kWeighed ? shown - kWeighed : 0;
        if (more > 0 && weighedEnd != all.end()) {
            const auto end = size_t(all.end() - weighedEnd) > more ? weighedEnd + qsizetype(more) : all.end();
            std::partial_sort(weighedEnd, end, all.end(), byScore);
            p.shown.assign(weighedEnd, end);
        }
    }
    liftByTable(pools, d->tableOf, d->tableCount);
    for (Pool& p : pools) {
        std::sort(p.weighed.begin(), p.weighed.end(), byScore);
        // What the lift left below the best kWeighed goes to the shown ones.
        if (p.weighed.size() > kWeighed) {
            p.shown.insert(p.shown.begin(), p.weighed.begin() + qsizetype(kWeighed), p.weighed.end());
            p.weighed.resize(kWeighed);
        }
    }
    if (options.oneToOne)
        assignOneToOne(pools, int(d->sources.size()), options.minScore);
    std::vector<std::vector<Scored>> ranked(static_cast<size_t>(nt));
    for (int k = 0; k < nt; ++k) {
        Pool& p = pools[size_t(k)];
        std::vector<Scored>& pool = ranked[size_t(k)];
        pool = std::move(p.weighed);
        pool.insert(pool.end(), p.shown.begin(), p.shown.end());
        // Scores fall from the first on; equal scores keep their order.
        if (!pool.empty())
            std::stable_sort(pool.begin() + 1, pool.end(),
                             [](const Scored& a, const Scored& b) { return a.score > b.score; });
        if (pool.size() > shown)
            pool.resize(shown);
    }

    QList<QList<SuggestedSource>> out;
    out.reserve(nt);
    for (int k = 0; k < nt; ++k) {
        QList<SuggestedSource> list;
        for (const Scored& sc : ranked[size_t(k)]) {
            if (sc.score < options.minScore || (options.top > 0 && list.size() >= options.top))
                break;
            const AnalysedName& sName = *d->names[size_t(d->nameOf[size_t(sc.source)])].name;
            list.append({sc.source, sc.score, reasonsOf(sc, ranker, k, d->sources, targets, sName)});
        }
        out.append(std::move(list));
    }
    return out;
}

} // namespace fb
