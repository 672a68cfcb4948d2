#include "SuggestIndex_p.h"

#include <algorithm>
#include <cmath>

namespace fb {

using namespace suggest;

namespace {

bool isShortFormCandidate(const QString& term)
{
    const SuggestWords& w = SuggestWords::Instance();
    return term.size() >= 3 && !term[0].isDigit() && !w.IsKnownWord(term) && !w.Expansion(term);
}

bool isSubsequence(const QString& shortWord, const QString& longWord)
{
    qsizetype j = 0;
    for (qsizetype i = 0; i < longWord.size() && j < shortWord.size(); ++i)
        if (longWord[i] == shortWord[j])
            ++j;
    return j == shortWord.size();
}

QList<QString> trigramsOf(const QString& term)
{
    const QString padded = u'#' + term + u'#';
    QList<QString> out;
    for (qsizetype i = 0; i + 3 <= padded.size(); ++i)
        out.append(padded.mid(i, 3));
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

// Similarity of two different terms by their letters: a guessed short form
// (a prefix or the consonants of the longer word) or a close spelling.
TermLink spellingLink(const QString& a, const QString& b)
{
    const QString& s = a.size() <= b.size() ? a : b;
    const QString& l = a.size() <= b.size() ? b : a;
    TermLink best;
    const auto offer = [&](double sim, Match kind) {
        if (sim > best.sim) {
            best.sim = sim;
            best.kind = kind;
        }
    };
    if (s.size() < l.size() && isShortFormCandidate(s)) {
        // A guessed short form alone stays below acceptance: other words of
        // the names must confirm it.
        if (l.startsWith(s))
            offer(0.3 + 0.45 * double(s.size()) / double(l.size()), Match::ShortForm);
        else if (s[0] == l[0] && s.size() <= 6 && l.size() >= s.size() + 2 && isSubsequence(s, l))
            offer(0.45, Match::ShortForm);
    }
    qsizetype common = 0;
    while (common < s.size() && s[common] == l[common])
        ++common;
    if (common >= 7 && common + 1 >= s.size())
        offer(0.9 * double(common) / double(l.size()), Match::Spelling);
    return best;
}

// One word written in the plural and the other in the singular (cases ~
// case): a name in the plural tends to hold a list of things, one in the
// singular one of them.
bool numberDiffers(const QString& a, const QString& b)
{
    const auto plural = [](const QString& w) {
        return w.size() >= 4 && w.endsWith(u's') && !w.endsWith(u"ss");
    };
    return plural(a) != plural(b);
}

// The plural against the singular: a hint, not enough to accept on its own.
constexpr double kOtherNumber = 0.4;
// A letter on its own against the same letter: it stands for too many words
// to weigh like a word (the t of one name may be a type, the t of another a
// tumor), as weak a hint as a two-letter initialism.
constexpr double kLoneLetter = 0.45;

} // namespace

namespace suggest {

double idf(double n, double df)
{
    return std::max(0.05, std::log((n + 1.0) / (df + 0.5)));
}

QString initials(const QList<NameWord>& words, qsizetype from, qsizetype to)
{
    QString out;
    for (qsizetype i = from; i < to; ++i)
        out += words[i].surface[0];
    return out;
}

QStringList nameInitialisms(const QList<NameWord>& words)
{
    QStringList out;
    QList<NameWord> content, all;
    for (const NameWord& w : words) {
        if (w.digits)
            continue;
        all.append(w);
        if (!w.stop && w.factor >= 1.0)
            content.append(w);
    }
    for (qsizetype len = 2; len <= 5; ++len)
        for (qsizetype from = 0; from + len <= content.size(); ++from)
            out.append(initials(content, from, from + len));
    // With the letters of the small words inside (uom: unit of measure).
    for (qsizetype len = 3; len <= 5; ++len)
        for (qsizetype from = 0; from + len <= all.size(); ++from)
            if (!all[from].stop && !all[from + len - 1].stop)
                for (qsizetype k = from + 1; k < from + len - 1; ++k)
                    if (all[k].stop) {
                        out.append(initials(all, from, from + len));
                        break;
                    }
    return out;
}

} // namespace suggest

int SuggestionEngine::Index::termOf(const QString& t)
{
    const auto it = termIds.constFind(t);
    if (it != termIds.cend())
        return *it;
    const int id = int(terms.size());
    termIds.insert(t, id);
    terms.push_back(t);
    namePostings.emplace_back();
    descPostings.emplace_back();
    nameDf.push_back(0);
    descDf.push_back(0);
    return id;
}

namespace {

// The entry of a distinct text, created with its term ids on first sight.
template <typename TermOf>
int entryOf(std::vector<SuggestionEngine::Index::Entry>& entries, QHash<const void*, int>& byWords,
            const QList<NameWord>& words, const TermOf& termOf)
{
    const auto it = byWords.constFind(&words);
    if (it != byWords.cend())
        return *it;
    SuggestionEngine::Index::Entry e;
    e.words = &words;
    for (const NameWord& w : words)
        e.terms.push_back(termOf(w.term));
    entries.push_back(std::move(e));
    byWords.insert(&words, int(entries.size()) - 1);
    return int(entries.size()) - 1;
}

// Postings of each term of the entries, and how many fields hold it.
void post(const std::vector<SuggestionEngine::Index::Entry>& entries, std::vector<std::vector<int>>& postings,
          std::vector<int>& df)
{
    for (int e = 0; e < int(entries.size()); ++e) {
        for (int term : entries[size_t(e)].terms) {
            std::vector<int>& p = postings[size_t(term)];
            if (!p.empty() && p.back() == e)
                continue; // a word twice in one text
            p.push_back(e);
            df[size_t(term)] += int(entries[size_t(e)].sources.size());
        }
    }
}

} // namespace

void SuggestionEngine::Index::build()
{
    // The analyser hands out one object per distinct text: its address keys
    // the entries.
    QHash<const void*, int> nameEntries, descEntries;
    QHash<QString, int> tables;
    const int n = int(sources.size());
    const auto term = [this](const QString& t) { return termOf(t); };
    for (int i = 0; i < n; ++i) {
        const SuggestField& f = sources[i];
        tableOf.push_back(*tables.insert(f.table, tables.value(f.table, int(tables.size()))));
        const AnalysedName& name = analyser.AnalyseName(f.name, f.tableDescription);
        const int e = entryOf(names, nameEntries, name.words, term);
        names[size_t(e)].name = &name;
        names[size_t(e)].sources.push_back(i);
        nameOf.push_back(e);
        const QList<NameWord>& desc = analyser.AnalyseText(f.description);
        if (desc.isEmpty()) {
            descOf.push_back(-1);
            continue;
        }
        const int de = entryOf(descriptions, descEntries, desc, term);
        descriptions[size_t(de)].sources.push_back(i);
        descOf.push_back(de);
    }
    post(names, namePostings, nameDf);
    post(descriptions, descPostings, descDf);
    for (int e = 0; e < int(names.size()); ++e)
        for (const QString& ini : nameInitialisms(*names[size_t(e)].words)) {
            std::vector<int>& p = initialPostings[ini];
            if (p.empty() || p.back() != e)
                p.push_back(e);
        }
    tableCount = int(tables.size());
    keyShare = SharedNameShares(sources);
    trigramCounts.assign(terms.size(), 0);
    for (int id = 0; id < int(terms.size()); ++id) {
        const QString& t = terms[size_t(id)];
        sortedTerms.emplace_back(t, id);
        if (t[0].isDigit())
            continue;
        if (t.size() >= 4) {
            const QList<QString> grams = trigramsOf(t);
            trigramCounts[size_t(id)] = int(grams.size());
            for (const QString& g : grams)
                trigramTerms[g].push_back(id);
        }
        if (isShortFormCandidate(t) && t.size() <= 6)
            shortTermsByLetter[t[0]].push_back(id);
        if (const QString root = WordRoot(t); !root.isEmpty())
            rootTerms[root].push_back(id);
    }
    std::sort(sortedTerms.begin(), sortedTerms.end());
}

// Long: one short block per way two words can be alike.
std::vector<TermLink> SuggestionEngine::Index::similarTerms(const QString& t) const
{
    std::vector<TermLink> out;
    const auto add = [&](int term, double sim, Match kind) {
        if (term >= 0 && sim > 0)
            out.push_back({term, sim, kind});
    };
    add(termIds.value(t, -1), 1.0, Match::Exact);
    if (t.isEmpty() || t[0].isDigit())
        return out;
    const SuggestWords& vocab = SuggestWords::Instance();
    for (const QString& r : vocab.RelatedWords(t))
        add(termIds.value(r, -1), vocab.Relatedness(t, r), Match::Related);
    const auto offer = [&](int term) {
        if (terms[size_t(term)] != t) {
            const TermLink l = spellingLink(t, terms[size_t(term)]);
            add(term, l.sim, l.kind);
        }
    };
    const auto firstWith = [this](const QString& key) {
        return std::lower_bound(sortedTerms.cbegin(), sortedTerms.cend(), key,
                                [](const auto& e, const QString& k) { return e.first < k; });
    };
    if (t.size() >= 3) {
        // Source terms that share the first letters (up to five) of this one.
        const QString key = t.left(5);
        for (auto it = firstWith(key); it != sortedTerms.cend() && it->first.startsWith(key); ++it)
            offer(it->second);
        // Shorter source terms that begin this one.
        for (qsizetype k = 3; k < std::min<qsizetype>(t.size(), 5); ++k)
            if (const int term = termIds.value(t.left(k), -1); term >= 0)
                offer(term);
    }
    // Short forms made of some of the letters, either way round.
    if (const auto bucket = shortTermsByLetter.constFind(t[0]); bucket != shortTermsByLetter.cend())
        for (int term : *bucket)
            if (terms[size_t(term)].size() + 2 <= t.size())
                offer(term);
    if (isShortFormCandidate(t) && t.size() <= 6) {
        for (auto it = firstWith(QString(t[0])); it != sortedTerms.cend() && it->first[0] == t[0]; ++it)
            if (it->first.size() >= t.size() + 2)
                offer(it->second);
    }
    // Derived forms of one root.
    if (const QString root = WordRoot(t); !root.isEmpty())
        if (const auto it = rootTerms.constFind(root); it != rootTerms.cend())
            for (int term : *it)
                if (terms[size_t(term)] != t)
                    add(term, 0.8, Match::Derivation);
    // Close spellings by shared trigrams.
    if (t.size() >= 4) {
        const QList<QString> grams = trigramsOf(t);
        QHash<int, int> shared;
        for (const QString& g : grams)
            if (const auto it = trigramTerms.constFind(g); it != trigramTerms.cend())
                for (int term : *it)
                    ++shared[term];
        for (auto it = shared.cbegin(); it != shared.cend(); ++it) {
            const double dice = 2.0 * it.value() / double(grams.size() + trigramCounts[size_t(it.key())]);
            if (dice >= 0.7 && terms[size_t(it.key())] != t)
                add(it.key(), 0.9 * dice, Match::Spelling);
        }
    }
    std::sort(out.begin(), out.end(), [](const TermLink& a, const TermLink& b) {
        return a.term != b.term ? a.term < b.term : a.sim > b.sim;
    });
    out.erase(std::unique(out.begin(), out.end(),
                          [](const TermLink& a, const TermLink& b) { return a.term == b.term; }),
              out.end());
    return out;
}

namespace {

// How a run of words [from, to) spells one word: its initials (all of them,
// or those of the words that are not stop words: uom = unit of measure), or
// its words written as one (followup = follow up).
Match spelledBy(const NameWord& one, const QList<NameWord>& run, int from, int to)
{
    const QString& word = one.surface;
    if (!one.known && word.size() <= to - from) {
        bool all = word.size() == to - from;
        int content = 0;
        bool contentFits = true;
        for (int k = from; k < to; ++k) {
            const QChar first = run[k].surface[0];
            all = all && word[k - from] == first;
            if (!run[k].stop) {
                contentFits = contentFits && content < word.size() && word[content] == first;
                ++content;
            }
        }
        if (all || (contentFits && content >= 2 && content == word.size()))
            return Match::Initialism;
    }
    if (to - from <= 3 && word.size() >= 5) {
        qsizetype at = 0;
        for (int k = from; k < to; ++k) {
            const QString& piece = run[k].surface;
            if (QStringView(word).mid(at, piece.size()) != piece)
                return Match::None;
            at += piece.size();
        }
        if (at == word.size())
            return Match::Compound;
    }
    return Match::None;
}

} // namespace

// Word pairs first (the firm ones, then spans, then the weaker pairs), each
// word used once; the score weighs what each side got by its words' weights.
// Long: the three passes share their bookkeeping.
Alignment SuggestionEngine::Index::align(const TargetWords& t, const SourceWords& s,
                                         const std::vector<double>& termWeights, AlignScratch& x,
                                         bool withMatches) const
{
    const QList<NameWord>& tw = *t.words;
    const QList<NameWord>& sw = *s.words;
    const int n = int(tw.size());
    const int m = int(sw.size());
    x.pairs.clear();
    x.sWeights.resize(size_t(m));
    for (int j = 0; j < m; ++j)
        x.sWeights[size_t(j)] = sw[j].factor * termWeights[size_t(s.terms[j])];
    for (int i = 0; i < n; ++i) {
        if (tw[i].stop)
            continue;
        for (int j = 0; j < m; ++j) {
            if (sw[j].stop)
                continue;
            double sim = 0;
            Match kind = Match::None;
            if (t.terms[size_t(i)] >= 0 && t.terms[size_t(i)] == s.terms[j]) {
                if (tw[i].surface == sw[j].surface)
                    sim = tw[i].surface.size() == 1 && !tw[i].digits ? kLoneLetter : 1.0, kind = Match::Exact;
                else if (tw[i].link == WordLink::Synonym || sw[j].link == WordLink::Synonym)
                    sim = 0.85, kind = Match::Synonym;
                else if (tw[i].link == WordLink::Abbreviation || sw[j].link == WordLink::Abbreviation)
                    sim = 0.95, kind = Match::Abbreviation;
                else if (numberDiffers(tw[i].surface, sw[j].surface))
                    sim = kOtherNumber, kind = Match::Inflection;
                else
                    sim = 0.97, kind = Match::Inflection;
            } else if (!tw[i].digits && !sw[j].digits && t.links[size_t(i)]) {
                const std::vector<TermLink>& links = *t.links[size_t(i)];
                const auto it = std::lower_bound(links.cbegin(), links.cend(), s.terms[j],
                                                 [](const TermLink& l, int term) { return l.term < term; });
                if (it != links.cend() && it->term == s.terms[j])
                    sim = it->sim, kind = it->kind;
            }
            if (sim > 0)
                x.pairs.push_back({i, j, sim, t.weights[size_t(i)] + x.sWeights[size_t(j)], kind});
        }
    }
    std::sort(x.pairs.begin(), x.pairs.end(), [](const AlignScratch::Pair& a, const AlignScratch::Pair& b) {
        if (a.sim != b.sim)
            return a.sim > b.sim;
        if (a.weight != b.weight)
            return a.weight > b.weight;
        return a.i != b.i ? a.i < b.i : a.j < b.j;
    });
    x.tGot.assign(size_t(n), 0.0);
    x.sGot.assign(size_t(m), 0.0);
    Alignment out;
    const SuggestWords& vocab = SuggestWords::Instance();
    const auto matched = [&](const WordMatch& wm) {
        out.subject = out.subject || wm.tEnd - wm.t > 1 || wm.sEnd - wm.s > 1 ||
                      (!tw[wm.t].digits && tw[wm.t].factor >= 1.0 && !vocab.IsClassWord(tw[wm.t].term));
        if (withMatches)
            out.matches.append(wm);
    };
    // Word pairs at least this alike are taken before compounds and
    // initialisms, weaker ones after: followup is follow+up, not a spelling
    // of follow.
    const auto takePairs = [&](double from, double to) {
        for (const AlignScratch::Pair& p : x.pairs) {
            if (p.sim < from || p.sim >= to || x.tGot[size_t(p.i)] > 0 || x.sGot[size_t(p.j)] > 0)
                continue;
            x.tGot[size_t(p.i)] = x.sGot[size_t(p.j)] = p.sim;
            matched({p.i, p.i + 1, p.j, p.j + 1, p.sim, p.kind});
        }
    };
    constexpr double kFirm = 0.95;
    takePairs(kFirm, 2.0);
    // One word against a run of free words on the other side: an initialism
    // (uom ~ unit of measure) or a compound (followup ~ follow up).
    const auto spans = [&](const QList<NameWord>& one, std::vector<double>& oneGot,
                           const QList<NameWord>& run, std::vector<double>& runGot, bool targetIsOne) {
        for (int i = 0; i < int(one.size()); ++i) {
            if (oneGot[size_t(i)] > 0 || one[i].digits || one[i].stop)
                continue;
            for (int len = 2; len <= 5 && oneGot[size_t(i)] == 0; ++len) {
                for (int j = 0; j + len <= int(run.size()); ++j) {
                    // An initialism may spell words that matched already
                    // (pathologic_t ~ pathologic_staging_pt: pt = pathologic
                    // t) as long as one of them is still free.
                    bool usable = !run[j].stop && !run[j + len - 1].stop;
                    int taken = 0;
                    for (int k = j; k < j + len && usable; ++k) {
                        usable = !run[k].digits;
                        taken += runGot[size_t(k)] > 0;
                    }
                    if (!usable || taken == len)
                        continue;
                    const Match kind = spelledBy(one[i], run, j, j + len);
                    if (kind == Match::None || (taken > 0 && kind != Match::Initialism))
                        continue;
                    // Two letters stand for many pairs of words: a weak hint.
                    const qsizetype letters = one[i].surface.size();
                    const double sim = kind == Match::Compound ? 0.95
                                       : letters == 2          ? 0.45
                                       : letters == 3          ? 0.7
                                                               : 0.85;
                    oneGot[size_t(i)] = sim;
                    for (int k = j; k < j + len; ++k)
                        if (runGot[size_t(k)] == 0)
                            runGot[size_t(k)] = sim;
                    matched(targetIsOne ? WordMatch{i, i + 1, j, j + len, sim, kind}
                                        : WordMatch{j, j + len, i, i + 1, sim, kind});
                    break;
                }
            }
        }
    };
    spans(tw, x.tGot, sw, x.sGot, true);
    spans(sw, x.sGot, tw, x.tGot, false);
    takePairs(0.0, kFirm);
    const auto coverage = [](const std::vector<double>& got, const auto& weight) {
        double all = 0, covered = 0;
        for (size_t k = 0; k < got.size(); ++k) {
            all += weight(k);
            covered += weight(k) * got[k];
        }
        return all > 0 ? covered / all : 0.0;
    };
    const double ct = coverage(x.tGot, [&](size_t k) { return t.weights[k]; });
    const double cs = coverage(x.sGot, [&](size_t k) { return x.sWeights[k]; });
    out.score = ct > 0 && cs > 0 ? 2 * ct * cs / (ct + cs) : 0.0;
    if (withMatches)
        std::sort(out.matches.begin(), out.matches.end(),
                  [](const WordMatch& a, const WordMatch& b) { return a.t != b.t ? a.t < b.t : a.s < b.s; });
    return out;
}

} // namespace fb
