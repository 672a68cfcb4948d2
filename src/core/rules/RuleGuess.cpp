#include "RuleGuess.h"

#include "core/dictionary/FieldRules.h"

#include <QHash>
#include <algorithm>

namespace fb {

QList<GuessedRule> GuessRules(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets)
{
    // Source positions by field name, in list order.
    QHash<QString, QList<int>> byName;
    byName.reserve(sources.size());
    for (int i = 0; i < sources.size(); ++i)
        byName[FieldPartOf(sources[i].qualifiedName)].append(i);

    QList<GuessedRule> out;
    for (const FieldEntry& t : targets) {
        const QString field = FieldPartOf(t.qualifiedName);
        const auto exactIt = byName.constFind(field);
        const QList<int> exact = exactIt == byName.cend() ? QList<int>() : *exactIt;

        // An element of an array: its "(" stands at position 11 or later.
        const qsizetype paren = t.qualifiedName.indexOf(u'(') + 1; // 1-based, 0 for none
        QList<int> array;
        if (paren >= 11) {
            const auto it = byName.constFind(t.qualifiedName.mid(9, paren - 10));
            if (it != byName.cend())
                array = *it;
        }

        // The search stops at the first exact match of the whole qualified
        // name; the last match up to there (in source order) wins.
        int stop = int(sources.size());
        for (int i : exact) {
            if (sources[i].qualifiedName == t.qualifiedName) {
                stop = i;
                break;
            }
        }
        int winner = -1;
        const auto lastUpTo = [stop](const QList<int>& positions) {
            const auto it = std::upper_bound(positions.cbegin(), positions.cend(), stop);
            return it == positions.cbegin() ? -1 : *(it - 1);
        };
        winner = std::max(lastUpTo(exact), lastUpTo(array));
        if (winner < 0)
            continue;
        const FieldEntry& s = sources[winner];
        out.append({field, BuildFieldExpression(s.qualifiedName, s.type, t.type)});
    }
    return out;
}

QString BuildMappedRule(const QList<FieldEntry>& tickedSources, const QString& targetType)
{
    QString rule;
    for (const FieldEntry& s : tickedSources) {
        if (!rule.isEmpty())
            rule += u',';
        rule += BuildFieldExpression(s.qualifiedName, s.type, targetType);
    }
    return rule;
}

} // namespace fb
