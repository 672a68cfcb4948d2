#pragma once

#include "SuggestWords.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <deque>

// Field names and descriptions taken apart into the words that the
// suggestions compare.
namespace fb {

// One word of an analysed name or description.
struct NameWord {
    QString term;    // canonical, stemmed: what is compared
    QString surface; // as written, lower case: what the reasons show
    WordLink link = WordLink::Same;
    double factor = 1.0; // 1, or less for weak words and words that repeat the table's name
    bool digits = false; // a run of digits
    bool known = false;  // a word of the word list: never read as an initialism
    bool stop = false;   // of, the...: no weight, kept for initialisms (uom = unit of measure)
};

struct AnalysedName {
    QList<NameWord> words;
    QString base;       // the shown name without its array index, lower case
    int arrayIndex = 0; // n of name(n); 0 for a plain field
};

// Splits a name into its parts: at every character that is neither a letter
// nor a digit, where lower case turns to upper case (custNo), before the last
// capital of a run of capitals followed by lower case (XMLFile), and between
// letters and digits. Parts are lower case.
QStringList SplitName(const QString& name);

// Takes names and texts apart with the words of one schema: the parts that
// its names use on their own (tumor, purity) split the parts that run them
// together (tumorpurity), as the word list's words do (itemid). Analyses are
// kept per distinct text, so a name shared by many fields is taken apart
// once. Not for use from several threads at once.
class NameAnalyser {
public:
    // vocabularyNames: the names whose parts make up the schema's words.
    explicit NameAnalyser(const QStringList& vocabularyNames = {});
    // An analyser of the same schema words, with caches of its own.
    static NameAnalyser WithVocabulary(const NameAnalyser& other);

    // Splits a part written as one word into known words: itemid -> item id,
    // tumorpurity -> tumor purity (when the schema uses both words alone); an
    // unknown head of four or more letters may stand before a word that ends
    // compounds (chargetime -> charge time). Words of the word list and parts
    // that do not split come back whole.
    QStringList SplitCompound(const QString& part);

    // The words of a field's shown name. Words of the table's own name (its
    // description, given as text) that lead the name weigh less: in a table
    // "Drug Exposure" the field drug_exposure_start_date is about its start
    // date. An element of an array (name(2)) ends with its index as a word.
    const AnalysedName& AnalyseName(const QString& shownName, const QString& tableDescription = {});

    // The words of a free text (a description): as for names, but stop words
    // are left out. The references stay valid as long as the analyser.
    const QList<NameWord>& AnalyseText(const QString& text);

private:
    QList<NameWord> analyseParts(const QString& text, bool dropStopWords);
    QStringList schemaWords(const QString& part) const;

    QSet<QString> m_vocabulary;
    QHash<QString, QStringList> m_splits;
    // Analyses by text; the deques keep the references handed out valid.
    QHash<QString, qsizetype> m_nameIndex;
    std::deque<AnalysedName> m_names;
    QHash<QString, qsizetype> m_textIndex;
    std::deque<QList<NameWord>> m_texts;
};

} // namespace fb
