// Guessing the rules of a dump by field names: the indexed guess gives
// exactly the rules of the plain loop over every target and every source
// field, tie-breaks included.

#include "CoreTestSupport.h"
#include "core/dictionary/FieldRules.h"
#include "core/rules/RuleGuess.h"

#include <QMap>
#include <random>

using namespace fbtest;
using fb::FieldEntry;

namespace {

// The rules grid: field name -> rule, written in call order.
using Grid = QMap<QString, QString>;

// The guess as a plain loop: each target against each source field in list
// order; a field-name match writes the rule, and stops the search when the
// whole qualified names are equal; an array element's base name (its "("
// at position 11 or later) matches as well.
Grid nestedLoop(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets)
{
    Grid grid;
    for (const FieldEntry& t : targets) {
        const int p = int(t.qualifiedName.indexOf(u'(')) + 1;
        for (const FieldEntry& s : sources) {
            if (s.qualifiedName.mid(9) == t.qualifiedName.mid(9)) {
                grid[t.qualifiedName.mid(9)] = fb::BuildFieldExpression(s.qualifiedName, s.type, t.type);
                if (s.qualifiedName == t.qualifiedName)
                    break;
            } else if (p >= 11 && s.qualifiedName.mid(9) == t.qualifiedName.mid(9, p - 10)) {
                grid[t.qualifiedName.mid(9)] = fb::BuildFieldExpression(s.qualifiedName, s.type, t.type);
            }
        }
    }
    return grid;
}

Grid guessed(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets)
{
    Grid grid;
    for (const fb::GuessedRule& g : fb::GuessRules(sources, targets))
        grid[g.fieldName] = g.rule;
    return grid;
}

// "table.field" or "table.field:Type"; String when no type is given.
QList<FieldEntry> entries(const QStringList& list)
{
    QList<FieldEntry> out;
    for (const QString& e : list)
        out.append({e.section(u':', 0, 0), e.contains(u':') ? e.section(u':', 1) : u"String"_s});
    return out;
}

} // namespace

class GuessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    void guessRules_data()
    {
        QTest::addColumn<QStringList>("sources");
        QTest::addColumn<QStringList>("targets");
        QTest::addColumn<QStringList>("rules"); // field=rule
        QTest::newRow("last same-named source wins")
            << QStringList{u"srctab01.name"_s, u"srctab02.name"_s, u"srctab03.other"_s}
            << QStringList{u"tartab01.name"_s} << QStringList{u"name=srctab02.name"_s};
        QTest::newRow("a same-named table stops the search")
            << QStringList{u"srctab01.name"_s, u"tartab01.name"_s, u"srctab02.name"_s}
            << QStringList{u"tartab01.name"_s} << QStringList{u"name=tartab01.name"_s};
        QTest::newRow("array element takes the plain name")
            << QStringList{u"srctab01.qty"_s} << QStringList{u"tartab01.qty(3)"_s}
            << QStringList{u"qty(3)=srctab01.qty"_s};
        QTest::newRow("array element matched exactly")
            << QStringList{u"srctab01.qty(3)"_s} << QStringList{u"tartab01.qty(3)"_s}
            << QStringList{u"qty(3)=srctab01.qty(1,3)"_s};
        QTest::newRow("plain name after the exact one wins")
            << QStringList{u"srctab01.qty(3)"_s, u"srctab02.qty"_s} << QStringList{u"tartab01.qty(3)"_s}
            << QStringList{u"qty(3)=srctab02.qty"_s};
        QTest::newRow("every element of an array")
            << QStringList{u"srctab01.qty"_s} << QStringList{u"tartab01.qty(1)"_s, u"tartab01.qty(2)"_s}
            << QStringList{u"qty(1)=srctab01.qty"_s, u"qty(2)=srctab01.qty"_s};
        QTest::newRow("\"(\" in the table name: exact names only")
            << QStringList{u"srctab01.name"_s} << QStringList{u"tar(ab01.name(2)"_s} << QStringList{};
        QTest::newRow("names are case-sensitive")
            << QStringList{u"srctab01.Name"_s} << QStringList{u"tartab01.name"_s} << QStringList{};
        QTest::newRow("source and target types convert")
            << QStringList{u"srctab01.d:Date"_s} << QStringList{u"tartab01.d:UTC"_s}
            << QStringList{u"d=utc(srctab01.d,0)"_s};
    }
    void guessRules()
    {
        QFETCH(QStringList, sources);
        QFETCH(QStringList, targets);
        QFETCH(QStringList, rules);
        Grid expected;
        for (const QString& r : rules)
            expected[r.section(u'=', 0, 0)] = r.section(u'=', 1);
        QCOMPARE(guessed(entries(sources), entries(targets)), expected);
        QCOMPARE(nestedLoop(entries(sources), entries(targets)), expected);
    }

    // Generated lists with repeated names, arrays, same-named tables and
    // letter-case differences, rule for rule against the plain loop.
    void guessMatchesThePlainLoop()
    {
        std::mt19937 rng(20261121);
        const QStringList tables{u"srctab01"_s, u"srctab02"_s, u"tartab01"_s, u"TARTAB01"_s, u"abcde003"_s};
        const QStringList types{u"String"_s, u"Multi-Byte String"_s, u"Date"_s, u"UTC"_s, u"Long"_s};
        const auto pick = [&](const QStringList& list) { return list[int(rng() % unsigned(list.size()))]; };
        const auto name = [&] {
            QString n = u"f"_s + QString::number(rng() % 40);
            if (rng() % 5 == 0)
                n = n.toUpper();
            if (rng() % 3 == 0)
                n += u'(' + QString::number(rng() % 3 + 1) + u')';
            return n;
        };
        for (int round = 0; round < 200; ++round) {
            QList<FieldEntry> sources;
            QList<FieldEntry> targets;
            for (int i = int(rng() % 120); i > 0; --i)
                sources.append({pick(tables) + u'.' + name(), pick(types)});
            for (int i = 0; i < 60; ++i)
                targets.append({u"tartab01."_s + name(), pick(types)});
            QCOMPARE(guessed(sources, targets), nestedLoop(sources, targets));
        }
    }
};

QTEST_APPLESS_MAIN(GuessTest)
#include "tst_guess.moc"
