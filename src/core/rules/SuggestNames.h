#pragma once

#include "SuggestWords.h"

#include <QList>
#include <QString>
#include <QStringList>

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

// Splits a part written as one word into known words: itemid -> item id,
// valueuom -> value uom; an unknown head of four or more letters may stand
// before a word that ends compounds (chargetime -> charge time). Known words
// and parts that do not split come back whole.
QStringList SplitCompound(const QString& part);

// The words of a field's shown name. Words of the table's own name (given as
// contextWords, already analysed) that lead the name weigh less: in a table
// "Drug Exposure" the field drug_exposure_start_date is about its start date.
AnalysedName AnalyseName(const QString& shownName, const QList<NameWord>& contextWords = {});

// The words of a free text (a description): as for names, but stop words are
// left out.
QList<NameWord> AnalyseText(const QString& text);

} // namespace fb
