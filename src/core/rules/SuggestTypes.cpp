// Types and fields as the suggestions compare them.
#include "Suggest.h"
#include "SuggestIndex_p.h"
#include "core/dictionary/FieldRules.h"
#include "core/document/FieldNames.h"

#include <QHash>
#include <QSet>
#include <algorithm>

namespace fb {

using namespace suggest;

std::vector<double> SharedNameShares(const QList<SuggestField>& fields)
{
    // Distinct (name, table) pairs, counted per name.
    QHash<QString, int> nameIds, tableIds;
    std::vector<std::pair<int, int>> pairs;
    std::vector<int> nameOf;
    for (const SuggestField& f : fields) {
        const int name = *nameIds.insert(f.name, nameIds.value(f.name, int(nameIds.size())));
        const int table = *tableIds.insert(f.table, tableIds.value(f.table, int(tableIds.size())));
        pairs.emplace_back(name, table);
        nameOf.push_back(name);
    }
    std::vector<double> out(size_t(fields.size()), 0.0);
    if (tableIds.size() < 3)
        return out;
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    std::vector<int> tablesOf(size_t(nameIds.size()), 0);
    for (const auto& p : pairs)
        ++tablesOf[size_t(p.first)];
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = double(tablesOf[size_t(nameOf[i])]) / double(tableIds.size());
    return out;
}

// ---- types --------------------------------------------------------------

namespace {

bool isNumberType(QChar type)
{
    return !type.isNull() && QStringView(u"BILFD").contains(type);
}

// Dates and times have a fixed length, whatever length a definition carries.
bool hasFixedLength(QChar type)
{
    return type == u'T' || type == u'K';
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
    // Text and an unknown length show none.
    if (length.isEmpty() || hasFixedLength(f.type) || f.type == u'U')
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
    f.name = ToDisplayFieldName(field.elementName).toLower(); // as QualifiedFieldName shows it
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
        case u'B':
        case u'I':
        case u'L':
            return Whole;
        case u'F':
        case u'D':
            return Real;
        case u'S':
        case u'M':
            return Str;
        case u'E':
            return Enum;
        case u'P':
            return Set;
        case u'T':
            return Date;
        case u'K':
            return Utc;
        case u'U':
            return Text;
        default:
            return Unknown;
        }
    };
    const Kind s = kindOf(source.type);
    const Kind t = kindOf(target.type);
    if (s == Unknown || t == Unknown)
        return {};
    const auto fit = [](double factor, const char* verb) { return TypeVerdict{factor, verb}; };
    // Text takes any value, so it loses nothing; but it confirms nothing
    // either, where a typed field that fits speaks for the pair.
    if (s == Text || t == Text)
        return fit(0.9, "fits");
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
        if (!hasFixedLength(source.type) && source.length > 0 && target.length > 0 &&
            source.length > target.length)
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
    return {v.factor,
            QStringLiteral("type %1 %2 %3").arg(typeText(source), QLatin1String(v.verb), typeText(target))};
}

} // namespace fb
