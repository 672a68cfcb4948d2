#include "Suggest.h"

#include "SuggestIndex_p.h"

#include "core/dictionary/FieldRules.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <deque>
#include <vector>

namespace fb {

using namespace suggest;

namespace {

constexpr int kPool = 200;             // candidates scored fully per target field
constexpr double kDemoted = 0.6;       // a source taken by a better-fitting target field
constexpr double kDescriptionOnly = 0.85;

} // namespace

std::vector<double> SharedNameShares(const QList<SuggestField>& fields)
{
    QHash<QString, QSet<QString>> tablesOf;
    QSet<QString> tables;
    for (const SuggestField& f : fields) {
        tablesOf[f.name].insert(f.table);
        tables.insert(f.table);
    }
    std::vector<double> out(size_t(fields.size()), 0.0);
    if (tables.size() < 3)
        return out;
    for (qsizetype i = 0; i < fields.size(); ++i)
        out[size_t(i)] = double(tablesOf.value(fields[i].name).size()) / double(tables.size());
    return out;
}

// ---- types --------------------------------------------------------------

namespace {

bool isNumberType(QChar type)
{
    return !type.isNull() && QStringView(u"BILFD").contains(type);
}

// The type as the field lists show it, with its length where the length
// says something: "String(30)", "Double(15,4)", "Date".
QString typeText(const SuggestField& f)
{
    FieldDefinition d;
    d.type = f.type.isNull() ? QString() : QString(f.type);
    const QString length = f.length > 0 ? QString::number(f.length) : QString();
    (isNumberType(f.type) ? d.digitsBefore : d.length) = length;
    d.digitsAfter = QString::number(f.decimals);
    QString lengthText;
    const QString name = GetFieldTypeText(d, lengthText);
    // Dates and times have a fixed length; an unknown length shows none.
    if (length.isEmpty() || f.type == u'T' || f.type == u'K' || f.type == u'U')
        return name;
    if ((f.type == u'F' || f.type == u'D') && f.decimals <= 0)
        lengthText = length;
    return name + u'(' + lengthText + u')';
}

} // namespace

SuggestField SuggestField::FromDefinition(const QString& table, const FieldDefinition& field,
                                          const QString& tableDescription)
{
    SuggestField f;
    f.table = table.toLower();
    f.name = QualifiedFieldName(table, field.elementName).mid(f.table.size() + 1);
    if (field.type.size() == 1)
        f.type = field.type[0];
    f.length = (isNumberType(f.type) ? field.digitsBefore : field.length).toInt();
    f.decimals = field.digitsAfter.toInt();
    f.description = field.description;
    f.tableDescription = tableDescription;
    return f;
}

TypeVerdict suggest::CompareTypeLetters(const SuggestField& source, const SuggestField& target)
{
    enum Kind { Unknown, Whole, Real, Str, Enum, Set, Date, Utc, Text };
    const auto kindOf = [](QChar t) {
        switch (t.unicode()) {
        case u'B': case u'I': case u'L': return Whole;
        case u'F': case u'D': return Real;
        case u'S': case u'M': return Str;
        case u'E': return Enum;
        case u'P': return Set;
        case u'T': return Date;
        case u'K': return Utc;
        case u'U': return Text;
        default: return Unknown;
        }
    };
    const Kind s = kindOf(source.type);
    const Kind t = kindOf(target.type);
    if (s == Unknown || t == Unknown)
        return {};
    const auto fit = [](double factor, const char* verb) { return TypeVerdict{factor, verb}; };
    if (s == Text || t == Text)
        return fit(1.0, "fits");
    // Byte < Integer < Long and Float < Double by their letters' rank.
    const auto rank = [](QChar c) {
        const char16_t order[] = u"BILFD";
        return std::find(std::begin(order), std::end(order), c.unicode()) - std::begin(order);
    };
    if (s == t) {
        if (s == Whole || s == Real) {
            const bool wider = source.length > 0 && target.length > 0 ? source.length > target.length
                                                                     : rank(source.type) > rank(target.type);
            return wider ? fit(0.96, "is wider than") : fit(1.0, "fits");
        }
        if (source.length > 0 && target.length > 0 && source.length > target.length)
            return fit(0.96, "is longer than");
        return fit(1.0, "fits");
    }
    if (s == Whole && t == Real)
        return fit(1.0, "fits");
    if (s == Real && t == Whole)
        return fit(0.85, "loses its decimals in");
    if ((s == Date && t == Utc) || (s == Utc && t == Date))
        return fit(0.95, "converts to");
    if (t == Str)
        return (s == Enum || s == Set) ? fit(0.97, "converts to") : fit(0.9, "converts to");
    if ((s == Enum && t == Whole) || (s == Whole && t == Enum))
        return fit(0.85, "converts to");
    if (s == Str && (t == Enum || t == Set))
        return fit(0.9, "converts to");
    if (s == Str)
        return fit(0.8, "may not convert to");
    if (t == Date || t == Utc || s == Date || s == Utc)
        return fit(0.65, "does not fit");
    return fit(0.75, "may not convert to");
}

TypeFit CompareTypes(const SuggestField& source, const SuggestField& target)
{
    const TypeVerdict v = CompareTypeLetters(source, target);
    if (!v.verb)
        return {};
    return {v.factor, QStringLiteral("type %1 %2 %3")
                          .arg(typeText(source), QLatin1String(v.verb), typeText(target))};
}

SuggestionEngine::SuggestionEngine(QList<SuggestField> sources)
    : d(std::make_unique<Index>())
{
    d->sources = std::move(sources);
    d->build();
}

SuggestionEngine::~SuggestionEngine() = default;

const QList<SuggestField>& SuggestionEngine::sources() const
{
    return d->sources;
}

// ---- ranking ------------------------------------------------------------

namespace {

struct Scored {
    int source = -1;
    double score = 0;
    bool sameName = false;
    bool description = false;
    bool tableFits = false;
    double affinity = 0; // of the source's table to the dump, 0..1
    bool sharedKey = false;
    int demotedFor = -1; // the target field that took this source
    Alignment name;
    TypeVerdict type;
};

constexpr double kAccept = 0.5;     // the score from which a candidate is meant to be taken
constexpr double kAffinity = 0.5;   // how much a well-matching source table lifts its fields
constexpr double kClassOnly = 0.5;  // names that share only class words (id, value, date...)
constexpr double kKeyShare = 0.5;   // a join key is held by at least this share of the tables

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
        case Match::Spelling:
            out.append(QStringLiteral("similar spelling %1 ~ %2").arg(t, s));
            break;
        case Match::Initialism: {
            const bool targetShort = m.tEnd - m.t == 1;
            out.append(QStringLiteral("initialism %1 = %2")
                           .arg(targetShort ? t : s,
                                targetShort ? joinSpan(sw, m.s, m.sEnd, u' ') : joinSpan(tw, m.t, m.tEnd, u' ')));
            break;
        }
        case Match::Compound:
            out.append(QStringLiteral("compound %1 = %2").arg(m.tEnd - m.t == 1 ? t : s, m.tEnd - m.t == 1 ? s : t));
            break;
        default:
            break;
        }
    }
    if (!left.isEmpty())
        out.prepend(QStringLiteral("tokens %1 ~ %2").arg(left.join(u'+'), right.join(u'+')));
    return out;
}

} // namespace

QList<QList<SuggestedSource>> SuggestionEngine::Suggest(const QList<SuggestField>& targets,
                                                        const SuggestOptions& options) const
{
    const Index& x = *d;
    const int nt = int(targets.size());
    const int ns = int(x.sources.size());
    const double n = double(ns + nt);

    // The target fields' words, and how many target fields use each term.
    std::vector<AnalysedName> tNames;
    std::vector<QList<NameWord>> tDescs;
    QHash<QString, QList<NameWord>> contexts;
    QHash<QString, int> dfName, dfDesc;
    for (const SuggestField& f : targets) {
        auto ctx = contexts.constFind(f.tableDescription);
        if (ctx == contexts.cend())
            ctx = contexts.insert(f.tableDescription, AnalyseText(f.tableDescription));
        AnalysedName name = AnalyseName(f.name, *ctx);
        if (name.arrayIndex > 0)
            name.words.append({QString::number(name.arrayIndex), QString::number(name.arrayIndex), WordLink::Same, 0.5, true});
        QList<NameWord> desc = AnalyseText(f.description);
        QSet<QString> seen;
        for (const NameWord& w : name.words)
            if (!seen.contains(w.term))
                seen.insert(w.term), ++dfName[w.term];
        seen.clear();
        for (const NameWord& w : desc)
            if (!seen.contains(w.term))
                seen.insert(w.term), ++dfDesc[w.term];
        tNames.push_back(std::move(name));
        tDescs.push_back(std::move(desc));
    }
    std::vector<double> sNameWeight(x.terms.size()), sDescWeight(x.terms.size());
    for (size_t id = 0; id < x.terms.size(); ++id) {
        sNameWeight[id] = idf(n, double(x.namePostings[id].size()) + dfName.value(x.terms[id]));
        sDescWeight[id] = idf(n, double(x.descPostings[id].size()) + dfDesc.value(x.terms[id]));
    }

    QHash<QString, int> linkIndex;
    std::deque<std::vector<TermLink>> linkStore;
    const auto linksOf = [&](const QString& term) -> const std::vector<TermLink>* {
        const auto it = linkIndex.constFind(term);
        if (it != linkIndex.cend())
            return &linkStore[size_t(*it)];
        linkIndex.insert(term, int(linkStore.size()));
        linkStore.push_back(x.similarTerms(term));
        return &linkStore.back();
    };
    const auto targetWords = [&](const QList<NameWord>& words, bool desc) {
        Words w;
        w.words = &words;
        for (const NameWord& nw : words) {
            const int id = x.termIds.value(nw.term, -1);
            w.ownTerms.push_back(id);
            const double sourceDf = id < 0 ? 0.0
                                           : double(desc ? x.descPostings[size_t(id)].size()
                                                         : x.namePostings[size_t(id)].size());
            w.weights.push_back(nw.factor * idf(n, sourceDf + (desc ? dfDesc : dfName).value(nw.term)));
            w.links.push_back(linksOf(nw.term));
        }
        w.terms = w.ownTerms.data();
        return w;
    };
    const auto sourceWords = [&](int s, bool desc) {
        Words w;
        w.words = desc ? &x.descriptions[size_t(s)] : &x.names[size_t(s)].words;
        w.terms = desc ? x.descTerms[size_t(s)].data() : x.nameTerms[size_t(s)].data();
        const std::vector<double>& weights = desc ? sDescWeight : sNameWeight;
        w.weights.reserve(size_t(w.words->size()));
        for (qsizetype k = 0; k < w.words->size(); ++k)
            w.weights.push_back((*w.words)[k].factor * weights[size_t(w.terms[k])]);
        return w;
    };

    std::vector<double> acc(size_t(ns), 0.0);
    std::vector<int> touched;
    std::vector<std::vector<Scored>> pools(static_cast<size_t>(nt));
    const int keep = options.top > 0 ? std::max(options.top, 3) + 10 : ns;
    for (int k = 0; k < nt; ++k) {
        const Words tn = targetWords(tNames[size_t(k)].words, false);
        const Words td = targetWords(tDescs[size_t(k)], true);
        touched.clear();
        const auto touch = [&](const std::vector<int>& postings, double w) {
            for (int s : postings) {
                if (acc[size_t(s)] == 0)
                    touched.push_back(s);
                acc[size_t(s)] += w;
            }
        };
        for (const Words* words : {&tn, &td}) {
            const double scale = words == &tn ? 1.0 : 0.8;
            for (size_t i = 0; i < words->links.size(); ++i)
                for (const TermLink& l : *words->links[i]) {
                    if (words->weights[i] <= 0)
                        break; // a small word finds nothing alone
                    touch(x.namePostings[size_t(l.term)], scale * words->weights[i] * l.sim);
                    touch(x.descPostings[size_t(l.term)], 0.8 * scale * words->weights[i] * l.sim);
                }
        }
        const double strongest = tn.weights.empty() ? 1.0 : *std::max_element(tn.weights.cbegin(), tn.weights.cend());
        for (const QString& ini : nameInitialisms(tNames[size_t(k)].words))
            if (const int id = x.termIds.value(ini, -1); id >= 0)
                touch(x.namePostings[size_t(id)], strongest);
        for (const NameWord& w : tNames[size_t(k)].words)
            if (!w.known && w.surface.size() >= 2 && w.surface.size() <= 5)
                if (const auto it = x.initialPostings.constFind(w.surface); it != x.initialPostings.cend())
                    touch(*it, strongest);

        const auto byAcc = [&](int a, int b) {
            return acc[size_t(a)] != acc[size_t(b)] ? acc[size_t(a)] > acc[size_t(b)] : a < b;
        };
        std::vector<int> candidates = touched;
        if (int(candidates.size()) > kPool) {
            std::nth_element(candidates.begin(), candidates.begin() + kPool, candidates.end(), byAcc);
            candidates.resize(kPool);
        }
        for (int s : touched)
            acc[size_t(s)] = 0;
        std::sort(candidates.begin(), candidates.end());
        std::vector<Scored>& pool = pools[size_t(k)];
        for (int s : candidates) {
            Scored sc;
            sc.source = s;
            sc.sameName = x.names[size_t(s)].base == tNames[size_t(k)].base &&
                          x.names[size_t(s)].arrayIndex == tNames[size_t(k)].arrayIndex;
            const Words sn = sourceWords(s, false);
            sc.name = x.align(tn, sn);
            double ev = sc.sameName ? 1.0 : sc.name.score;
            if (!sc.sameName && !sc.name.subject)
                ev *= kClassOnly;
            // The keys that join most tables on each side tend to be the same
            // key: a lead, never enough to accept.
            const double ts = targets[k].keyShare;
            const double ss = x.keyShare[size_t(s)];
            if (ts > kKeyShare && ss > kKeyShare && isKeyName(tNames[size_t(k)].words) &&
                isKeyName(x.names[size_t(s)].words)) {
                // Keys held by as many of the tables on each side pair best.
                const double key = 0.25 + 0.2 * std::min(ts, ss) * (1.0 - std::abs(ts - ss));
                if (key > ev) {
                    ev = key;
                    sc.sharedKey = true;
                }
            }
            const bool sourceDesc = !x.descriptions[size_t(s)].isEmpty();
            const bool targetDesc = !tDescs[size_t(k)].isEmpty();
            if (sourceDesc || targetDesc) {
                double de = 0;
                const Words sd = sourceWords(s, true);
                if (sourceDesc && targetDesc)
                    de = std::max(de, 0.9 * x.align(td, sd).score);
                if (sourceDesc)
                    de = std::max(de, kDescriptionOnly * x.align(tn, sd).score);
                if (targetDesc)
                    de = std::max(de, kDescriptionOnly * x.align(td, sn).score);
                if (de > ev) {
                    ev = de;
                    sc.description = true;
                } else if (de >= 0.3) {
                    ev += (1 - ev) * 0.3 * de;
                    sc.description = true;
                }
            }
            sc.type = CompareTypeLetters(x.sources[s], targets[k]);
            sc.score = std::clamp(ev * sc.type.factor, 0.0, 1.0);
            if (sc.score > 0)
                pool.push_back(std::move(sc));
        }
    }

    // Equal scores: the source table that suits the dump better, then the
    // source list order.
    const auto byScore = [](const Scored& a, const Scored& b) {
        if (a.score != b.score)
            return a.score > b.score;
        return a.affinity != b.affinity ? a.affinity > b.affinity : a.source < b.source;
    };

    // Source tables that match the dump well lift their fields a little: the
    // fields of one target table tend to come from the same source tables.
    if (x.tableCount > 1) {
        std::vector<double> affinity(size_t(x.tableCount), 0.0);
        for (const std::vector<Scored>& pool : pools) {
            std::vector<double> best(size_t(x.tableCount), 0.0);
            for (const Scored& sc : pool)
                best[size_t(x.tableOf[size_t(sc.source)])] = std::max(best[size_t(x.tableOf[size_t(sc.source)])], sc.score);
            for (size_t t = 0; t < best.size(); ++t)
                if (best[t] >= 0.3)
                    affinity[t] += best[t];
        }
        const double top = *std::max_element(affinity.cbegin(), affinity.cend());
        if (top > 0) {
            for (std::vector<Scored>& pool : pools)
                for (Scored& sc : pool) {
                    const double a = affinity[size_t(x.tableOf[size_t(sc.source)])] / top;
                    const double lifted = sc.score + kAffinity * a * sc.score * (1 - sc.score);
                    // A lift reorders; it never makes a lead acceptable.
                    sc.score = sc.score < kAccept ? std::min(lifted, kAccept - 1e-4) : lifted;
                    sc.affinity = a;
                    sc.tableFits = a == 1.0;
                }
        }
    }

    for (std::vector<Scored>& pool : pools) {
        std::sort(pool.begin(), pool.end(), byScore);
        if (int(pool.size()) > keep)
            pool.resize(size_t(keep));
    }

    // One source for one target field: by falling score, a target field takes
    // its best source that no better-fitting target field has taken.
    if (options.oneToOne) {
        struct Entry {
            double score;
            int target;
            int pos;
        };
        std::vector<Entry> entries;
        for (int k = 0; k < nt; ++k)
            for (int p = 0; p < int(pools[size_t(k)].size()); ++p)
                if (pools[size_t(k)][size_t(p)].score >= options.minScore)
                    entries.push_back({pools[size_t(k)][size_t(p)].score, k, p});
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
            if (a.score != b.score)
                return a.score > b.score;
            return a.target != b.target ? a.target < b.target : a.pos < b.pos;
        });
        std::vector<int> owner(size_t(ns), -1);
        std::vector<char> served(size_t(nt), 0);
        for (const Entry& e : entries) {
            const int s = pools[size_t(e.target)][size_t(e.pos)].source;
            if (!served[size_t(e.target)] && owner[size_t(s)] < 0) {
                owner[size_t(s)] = e.target;
                served[size_t(e.target)] = 1;
            }
        }
        // A target field whose best sources went to others starts with its
        // best remaining one; the taken sources follow it, their scores
        // capped by its score so that scores keep falling. Taken sources
        // alone stay, weakened.
        for (int k = 0; k < nt; ++k) {
            std::vector<Scored>& pool = pools[size_t(k)];
            for (Scored& sc : pool) {
                const int o = owner[size_t(sc.source)];
                if (o >= 0 && o != k)
                    sc.demotedFor = o;
            }
            const auto firstFree = std::find_if(pool.begin(), pool.end(), [](const Scored& sc) { return sc.demotedFor < 0; });
            if (firstFree == pool.end()) {
                for (Scored& sc : pool)
                    sc.score *= kDemoted;
                continue;
            }
            std::rotate(pool.begin(), firstFree, firstFree + 1);
            for (auto it = pool.begin() + 1; it != pool.end(); ++it)
                if (it->demotedFor >= 0)
                    it->score = std::min(it->score, pool.front().score);
            std::stable_sort(pool.begin() + 1, pool.end(), byScore);
        }
    }

    QList<QList<SuggestedSource>> out;
    out.reserve(nt);
    for (int k = 0; k < nt; ++k) {
        QList<SuggestedSource> list;
        const AnalysedName& tName = tNames[size_t(k)];
        for (const Scored& sc : pools[size_t(k)]) {
            if (sc.score < options.minScore || (options.top > 0 && list.size() >= options.top))
                break;
            SuggestedSource c;
            c.source = sc.source;
            c.score = sc.score;
            const AnalysedName& sName = x.names[size_t(sc.source)];
            if (sc.sameName)
                c.reasons.append(QStringLiteral("same name"));
            else
                c.reasons.append(wordReasons(sc.name, tName.words, sName.words));
            if (sc.description)
                c.reasons.append(QStringLiteral("description matches"));
            if (tName.arrayIndex > 0 && (sName.arrayIndex == tName.arrayIndex ||
                                         std::any_of(sName.words.cbegin(), sName.words.cend(), [&](const NameWord& w) {
                                             return w.digits && w.term == QString::number(tName.arrayIndex);
                                         })))
                c.reasons.append(QStringLiteral("array index %1").arg(tName.arrayIndex));
            if (sc.type.verb)
                c.reasons.append(CompareTypes(x.sources[sc.source], targets[k]).reason);
            if (sc.sharedKey)
                c.reasons.append(QStringLiteral("join key of most tables on both sides"));
            if (sc.tableFits)
                c.reasons.append(QStringLiteral("table %1 suits this dump").arg(x.sources[sc.source].table));
            if (sc.demotedFor >= 0)
                c.reasons.append(QStringLiteral("fits %1 better").arg(targets[sc.demotedFor].name));
            list.append(std::move(c));
        }
        out.append(std::move(list));
    }
    return out;
}

} // namespace fb
