// Guessing rules: the indexed matching must give exactly the rules of the
// plain nested loop over target and source fields, tie-breaks included.
#include "core/rules/RuleGuess.h"

#include "core/dictionary/FieldRules.h"

#include <gtest/gtest.h>

#include <QMap>

#include <random>

using namespace fb;

namespace {

// The rules grid of the loop: field name -> rule, written in call order.
using Grid = QMap<QString, QString>;

// The matching exactly as the steps read: every target field against every
// source field, in list order; an exact match writes the rule and stops when
// the whole qualified names are equal; otherwise an array element's base name
// is compared when its "(" stands at position 11 or later.
Grid NestedLoop(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets)
{
    Grid grid;
    for (const FieldEntry& t : targets) {
        const int p = int(t.qualifiedName.indexOf(u'(')) + 1;
        for (const FieldEntry& s : sources) {
            if (s.qualifiedName.mid(9) == t.qualifiedName.mid(9)) {
                grid[t.qualifiedName.mid(9)] = BuildFieldExpression(s.qualifiedName, s.type, t.type);
                if (s.qualifiedName == t.qualifiedName)
                    break;
            } else if (p >= 11 && s.qualifiedName.mid(9) == t.qualifiedName.mid(9, p - 10)) {
                grid[t.qualifiedName.mid(9)] = BuildFieldExpression(s.qualifiedName, s.type, t.type);
            }
        }
    }
    return grid;
}

Grid Indexed(const QList<FieldEntry>& sources, const QList<FieldEntry>& targets)
{
    Grid grid;
    for (const GuessedRule& g : GuessRules(sources, targets))
        grid[g.fieldName] = g.rule;
    return grid;
}

FieldEntry F(const char* name, const char* type = "String")
{
    return {QString::fromUtf8(name), QString::fromUtf8(type)};
}

struct Case {
    const char* title;
    QList<FieldEntry> sources;
    QList<FieldEntry> targets;
    Grid expected;
};

class GuessCases : public ::testing::TestWithParam<Case> {};

TEST_P(GuessCases, GivesTheRulesOfTheSteps)
{
    const Case& c = GetParam();
    EXPECT_EQ(Indexed(c.sources, c.targets), c.expected);
    EXPECT_EQ(NestedLoop(c.sources, c.targets), c.expected);
}

Grid G(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    Grid g;
    for (const auto& [k, v] : rows)
        g[QString::fromUtf8(k)] = QString::fromUtf8(v);
    return g;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, GuessCases,
    ::testing::Values(
        Case{"LastSourceWins", {F("srctab01.name"), F("srctab02.name")}, {F("tartab01.name")},
             G({{"name", "srctab02.name"}})},
        Case{"OwnTableWinsAndStops", {F("tartab01.name"), F("srctab02.name")}, {F("tartab01.name")},
             G({{"name", "tartab01.name"}})},
        Case{"OwnTableInTheMiddleStops",
             {F("srctab01.name"), F("tartab01.name"), F("srctab02.name")},
             {F("tartab01.name")},
             G({{"name", "tartab01.name"}})},
        Case{"ArrayElementTakesThePlainName", {F("srctab01.qty")}, {F("tartab01.qty(3)")},
             G({{"qty(3)", "srctab01.qty"}})},
        Case{"ArrayElementMatchesExactly", {F("srctab01.qty(3)")}, {F("tartab01.qty(3)")},
             G({{"qty(3)", "srctab01.qty(1,3)"}})},
        Case{"ArrayAfterExactStillReplaces", {F("srctab01.qty(3)"), F("srctab02.qty")}, {F("tartab01.qty(3)")},
             G({{"qty(3)", "srctab02.qty"}})},
        Case{"ParenthesisWithinTheFirstTenOnlyExact", {F("srctab01.name")}, {F("tar(ab01.name(2)")}, Grid()},
        Case{"CaseMatters", {F("srctab01.Name")}, {F("tartab01.name")}, Grid()},
        Case{"NoMatchNoRule", {F("srctab01.other")}, {F("tartab01.name")}, Grid()},
        Case{"TypesConvert", {F("srctab01.d", "Date")}, {F("tartab01.d", "UTC")}, G({{"d", "utc(srctab01.d,0)"}})},
        Case{"EveryArrayElementGetsTheRule", {F("srctab01.qty")},
             {F("tartab01.qty(1)"), F("tartab01.qty(2)")},
             G({{"qty(1)", "srctab01.qty"}, {"qty(2)", "srctab01.qty"}})}),
    [](const ::testing::TestParamInfo<Case>& row) { return std::string(row.param.title); });

// Generated lists: duplicate names, arrays, same-named tables and case
// differences, compared rule for rule with the nested loop.
TEST(GuessRules, MatchesTheNestedLoopOnGeneratedLists)
{
    std::mt19937 rng(20261121);
    const QStringList tables{QStringLiteral("srctab01"), QStringLiteral("srctab02"), QStringLiteral("tartab01"),
                             QStringLiteral("TARTAB01"), QStringLiteral("abcde003")};
    const QStringList types{QStringLiteral("String"), QStringLiteral("Multi-Byte String"), QStringLiteral("Date"),
                            QStringLiteral("UTC"), QStringLiteral("Long")};
    auto pick = [&](const QStringList& list) { return list[int(rng() % unsigned(list.size()))]; };
    auto name = [&] {
        QString n = QStringLiteral("f%1").arg(rng() % 40);
        if (rng() % 5 == 0)
            n = n.toUpper();
        if (rng() % 3 == 0)
            n += QStringLiteral("(%1)").arg(rng() % 3 + 1);
        return n;
    };
    for (int round = 0; round < 200; ++round) {
        QList<FieldEntry> sources;
        QList<FieldEntry> targets;
        const int sourceCount = int(rng() % 120);
        for (int i = 0; i < sourceCount; ++i)
            sources.append({pick(tables) + u'.' + name(), pick(types)});
        for (int i = 0; i < 60; ++i)
            targets.append({QStringLiteral("tartab01.") + name(), pick(types)});
        ASSERT_EQ(Indexed(sources, targets), NestedLoop(sources, targets)) << "round " << round;
    }
}

TEST(BuildMappedRule, JoinsTheExpressionsInListOrder)
{
    EXPECT_EQ(BuildMappedRule({F("srctab01.a"), F("srctab02.b(2)"), F("srctab03.c", "Date")}, QStringLiteral("String")),
              QStringLiteral("srctab01.a,srctab02.b(1,2),srctab03.c"));
    EXPECT_EQ(BuildMappedRule({}, QStringLiteral("String")), QString());
}

} // namespace
