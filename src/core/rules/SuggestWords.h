#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// The word knowledge of the field suggestions: the words that business data
// names are made of, their usual abbreviations and initialisms, words that
// mean the same, and words that are merely related. All words are kept in the
// stemmed form of StemWord, so that lookups work on any inflection.
namespace fb {

// How a word of a name reached its canonical word.
enum class WordLink : quint8 {
    Same,         // the word itself (or an inflection of it)
    Abbreviation, // qty -> quantity, dob -> birth + date
    Synonym,      // sex -> gender
};

// Lower-cases and strips the common English endings: plural s, -ing, -ed and
// a final e, so that smoke, smoking and smoked share "smok". Words of up to
// three letters are left alone (abbreviations must not lose letters).
QString StemWord(const QString& word);

// The root that derived forms of a (stemmed) word share: one layer of
// derivational ending taken off (creation, created -> creat; classify,
// classification -> classif; delivery, deliver -> deliver), a doubled last
// consonant made single and -miss- read as -mit- (admitting, admission ->
// admit). "" for words of fewer than five letters and for digits.
QString WordRoot(const QString& stem);

class SuggestWords {
public:
    // The one word list, built on first use.
    static const SuggestWords& Instance();

    // The canonical words a (stemmed) word stands for: one word, or several
    // for an initialism; empty when the word is not in the list.
    const QStringList* Expansion(const QString& stem) const;
    WordLink LinkOf(const QString& stem) const;
    // A word that carries no meaning in a name (of, the, and, ...).
    bool IsStopWord(const QString& stem) const { return m_stop.contains(stem); }
    // A word that says little alone (to, from, per); weighs less.
    bool IsWeakWord(const QString& stem) const { return m_weak.contains(stem); }
    // A word of the list or of the general word list: such a word is taken as
    // it is and never guessed to be an abbreviation of a longer word.
    bool IsKnownWord(const QString& stem) const { return m_known.contains(stem); }
    // A word that says what kind of value a field holds (identifier, code,
    // date, value, type...) rather than what it is about: two fields that
    // share only such words are not alike.
    bool IsClassWord(const QString& canonical) const { return m_class.contains(canonical); }
    // A class word that identifies a row (identifier, number, code, key).
    bool IsKeyWord(const QString& canonical) const { return m_keys.contains(canonical); }
    // A word that may end a compound written as one word after an unknown
    // head (chargetime -> charge time); given as written, not stemmed.
    bool IsCompoundTail(const QString& word) const { return m_tails.contains(word); }
    // Similarity (0..1) of two canonical words that are related without
    // meaning the same (identifier ~ code); 0 for unrelated words.
    double Relatedness(const QString& a, const QString& b) const;
    // The canonical words related to this one.
    QList<QString> RelatedWords(const QString& canonical) const { return m_related.value(canonical).keys(); }

private:
    SuggestWords();
    QHash<QString, QStringList> m_expansion;
    QHash<QString, WordLink> m_link;
    QHash<QString, QHash<QString, double>> m_related;
    QSet<QString> m_stop;
    QSet<QString> m_weak;
    QSet<QString> m_known;
    QSet<QString> m_tails;
    QSet<QString> m_class;
    QSet<QString> m_keys;
};

} // namespace fb
