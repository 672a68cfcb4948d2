#include "SuggestNames.h"

#include <algorithm>

namespace fb {

namespace {

constexpr double kWeakFactor = 0.3;
constexpr double kContextFactor = 0.3;
// What a name or a description contributes is bounded: its first words, and
// compounds of a plausible length. Aligning two texts pairs every word of one
// with every word of the other, and spellings are compared letter by letter,
// so a description of thousands of words or a word of thousands of letters
// would otherwise cost quadratic time.
constexpr qsizetype kMaxWords = 40;
constexpr qsizetype kMaxCompound = 40;
constexpr qsizetype kMaxWordLength = 64;

bool isKnown(const QString& part)
{
    const SuggestWords& w = SuggestWords::Instance();
    const QString stem = StemWord(part);
    return w.IsKnownWord(part) || w.IsKnownWord(stem) || w.Expansion(part) || w.Expansion(stem);
}

// The fewest known words that make up the whole part, or nothing. Words have
// three letters or more; a two-letter word only ends the part (itemid, custno).
template <typename Known> QStringList knownWords(const QString& part, const Known& known)
{
    const qsizetype n = part.size();
    // best[i]: pieces for part.left(i); -1 when none.
    QList<int> best(n + 1, -1);
    QList<qsizetype> from(n + 1, 0);
    best[0] = 0;
    for (qsizetype i = 0; i < n; ++i) {
        if (best[i] < 0)
            continue;
        for (qsizetype j = i + 2; j <= n; ++j) {
            const qsizetype len = j - i;
            if (len == 2 && j != n)
                continue;
            if (len == n)
                continue; // the whole part is not a split
            if (!known(part.mid(i, len)))
                continue;
            if (best[j] < 0 || best[i] + 1 < best[j]) {
                best[j] = best[i] + 1;
                from[j] = i;
            }
        }
    }
    if (best[n] < 0)
        return {};
    QStringList out;
    for (qsizetype j = n; j > 0; j = from[j])
        out.prepend(part.mid(from[j], j - from[j]));
    return out;
}

void addWords(QList<NameWord>& out, const QString& part, bool dropStopWords)
{
    const SuggestWords& vocab = SuggestWords::Instance();
    NameWord w;
    w.surface = part;
    if (!part.isEmpty() && part[0].isDigit()) {
        QString digits = part;
        while (digits.size() > 1 && digits[0] == u'0')
            digits.remove(0, 1);
        w.term = digits;
        w.digits = true;
        out.append(w);
        return;
    }
    const QString stem = StemWord(part);
    w.known = isKnown(part);
    if (vocab.IsStopWord(stem) || vocab.IsStopWord(part)) {
        if (dropStopWords)
            return;
        w.term = stem;
        w.known = true;
        w.stop = true;
        w.factor = 0.0;
        out.append(w);
        return;
    }
    if (vocab.IsWeakWord(stem) || vocab.IsWeakWord(part))
        w.factor = kWeakFactor;
    const QStringList* expansion = vocab.Expansion(part);
    QString key = part;
    if (!expansion) {
        expansion = vocab.Expansion(stem);
        key = stem;
    }
    if (!expansion) {
        w.term = stem;
        out.append(w);
        return;
    }
    w.link = vocab.LinkOf(key);
    for (const QString& term : *expansion) {
        w.term = term;
        out.append(w);
    }
}

} // namespace

QStringList SplitName(const QString& name)
{
    QStringList parts;
    QString current;
    const auto flush = [&] {
        if (!current.isEmpty())
            parts.append(current.toLower());
        current.clear();
    };
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        if (!c.isLetterOrNumber()) {
            flush();
            continue;
        }
        if (!current.isEmpty()) {
            const QChar prev = name[i - 1];
            const bool caseTurn = prev.isLower() && c.isUpper();
            const bool capsEnd =
                prev.isUpper() && c.isUpper() && i + 1 < name.size() && name[i + 1].isLower();
            const bool digitTurn = prev.isDigit() != c.isDigit();
            if (caseTurn || capsEnd || digitTurn)
                flush();
        }
        current += c;
    }
    flush();
    return parts;
}

NameAnalyser::NameAnalyser(const QStringList& vocabularyNames)
{
    for (const QString& name : vocabularyNames)
        for (const QString& part : SplitName(name))
            if (part.size() >= 3 && part[0].isLetter())
                m_vocabulary.insert(part);
}

NameAnalyser NameAnalyser::WithVocabulary(const NameAnalyser& other)
{
    NameAnalyser a;
    a.m_vocabulary = other.m_vocabulary;
    return a;
}

// The fewest words of the word list and of the schema that make up the part.
QStringList NameAnalyser::schemaWords(const QString& part) const
{
    return knownWords(
        part, [this](const QString& piece) { return isKnown(piece) || m_vocabulary.contains(piece); });
}

QStringList NameAnalyser::SplitCompound(const QString& part)
{
    if (part.size() < 5 || part.size() > kMaxCompound || !part[0].isLetter() || isKnown(part))
        return {part};
    // Names repeat their parts: each distinct part is split once.
    if (const auto it = m_splits.constFind(part); it != m_splits.cend())
        return *it;
    QStringList out = schemaWords(part);
    if (out.isEmpty()) {
        // An unknown head before a word that ends compounds: the longest wins.
        const SuggestWords& vocab = SuggestWords::Instance();
        for (qsizetype head = 4; head + 2 <= part.size(); ++head) {
            const QString tail = part.mid(head);
            if (tail.size() < 4 && head < 5)
                continue; // two-letter tails need a longer head: liquid stays whole
            if (vocab.IsCompoundTail(tail) || vocab.IsCompoundTail(StemWord(tail))) {
                out = {part.left(head), tail};
                break;
            }
        }
    }
    if (out.isEmpty()) {
        // A prefix before a word: a subtotal is a kind of total, a subtype a
        // kind of type. Only prefixes that rarely begin a plain word (not
        // pre, re, co: present, record, cover).
        for (const char16_t* prefix :
             {u"sub", u"non", u"multi", u"semi", u"inter", u"intra", u"super", u"post"}) {
            const QStringView p(prefix);
            const QString rest = part.mid(p.size());
            if (part.startsWith(p) && rest.size() >= 4 && (isKnown(rest) || m_vocabulary.contains(rest))) {
                out = {p.toString(), rest};
                break;
            }
        }
    }
    if (out.isEmpty())
        out = {part};
    m_splits.insert(part, out);
    return out;
}

QList<NameWord> NameAnalyser::analyseParts(const QString& text, bool dropStopWords)
{
    QList<NameWord> out;
    for (const QString& part : SplitName(text)) {
        if (out.size() >= kMaxWords)
            break;
        for (const QString& piece : SplitCompound(part.left(kMaxWordLength)))
            addWords(out, piece, dropStopWords);
    }
    if (out.size() > kMaxWords)
        out.resize(kMaxWords);
    return out;
}

const AnalysedName& NameAnalyser::AnalyseName(const QString& shownName, const QString& tableDescription)
{
    const QString key = shownName + QChar(0x1f) + tableDescription;
    if (const auto it = m_nameIndex.constFind(key); it != m_nameIndex.cend())
        return m_names[size_t(*it)];
    const QList<NameWord> contextWords = AnalyseText(tableDescription);
    AnalysedName a;
    a.base = shownName.toLower();
    if (a.base.endsWith(u')')) {
        const qsizetype open = a.base.lastIndexOf(u'(');
        bool ok = false;
        const int index = open > 0 ? a.base.mid(open + 1, a.base.size() - open - 2).toInt(&ok) : 0;
        if (ok) {
            a.arrayIndex = index;
            a.base = a.base.left(open);
        }
    }
    // Split the name as written: its capitals mark words (custNo).
    a.words = analyseParts(shownName.left(a.base.size()), false);
    if (std::all_of(a.words.cbegin(), a.words.cend(), [](const NameWord& w) { return w.stop; }))
        for (NameWord& w : a.words)
            w.stop = false, w.factor = 1.0; // a name made of stop words only: they are all it has
    // Leading words that repeat the table's name, as long as a word of the
    // field's own remains.
    qsizetype lead = 0;
    while (lead < a.words.size() - 1) {
        const QString& t = a.words[lead].term;
        const bool inContext = std::any_of(contextWords.cbegin(), contextWords.cend(),
                                           [&](const NameWord& c) { return c.term == t; });
        if (!inContext)
            break;
        ++lead;
    }
    for (qsizetype i = 0; i < lead; ++i)
        a.words[i].factor = std::min(a.words[i].factor, kContextFactor);
    if (a.arrayIndex > 0) {
        const QString index = QString::number(a.arrayIndex);
        a.words.append({index, index, WordLink::Same, 0.5, true});
    }
    m_nameIndex.insert(key, qsizetype(m_names.size()));
    m_names.push_back(std::move(a));
    return m_names.back();
}

const QList<NameWord>& NameAnalyser::AnalyseText(const QString& text)
{
    if (const auto it = m_textIndex.constFind(text); it != m_textIndex.cend())
        return m_texts[size_t(*it)];
    QList<NameWord> words = analyseParts(text, true);
    m_textIndex.insert(text, qsizetype(m_texts.size()));
    m_texts.push_back(std::move(words));
    return m_texts.back();
}

} // namespace fb
