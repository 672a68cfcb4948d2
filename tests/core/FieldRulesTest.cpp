// Field types, the two forms of field names, the default expressions and the
// cells of a field-list row.

#include "TestSupport.h"

#include "core/dictionary/FieldRules.h"
#include "core/document/FieldNames.h"
#include "core/document/MappingDocument.h"

using fb::MappingDocument;
using fb::Node;
using fb::test::RowName;

namespace {

// A table element holding one field element with the given attributes.
class OneField {
public:
    explicit OneField(const QString& attributes, const QString& fieldName = QStringLiteral("FLD"),
                      const QString& tableName = QStringLiteral("KLMNO001"))
    {
        const QString xml = u'<' + tableName + u'>' + u'<' + fieldName + u' ' + attributes + QStringLiteral("/></") +
                            tableName + u'>';
        ok = doc.LoadXml(xml);
    }
    Node table() const { return doc.DocumentElement(); }
    Node field() const { return doc.DocumentElement().firstChildElement(); }
    bool ok = false;

private:
    MappingDocument doc;
};

// ---- GetFieldTypeText ------------------------------------------------------------

struct TypeRow : fb::test::Row {
    QString attributes;
    QString description;
    QString length;
};

class FieldTypeText : public ::testing::TestWithParam<TypeRow> {};

TEST_P(FieldTypeText, DescriptionAndLength)
{
    const TypeRow& row = GetParam();
    OneField f(row.attributes);
    ASSERT_TRUE(f.ok);
    QString length = QStringLiteral("left over");
    EXPECT_EQ(fb::GetFieldTypeText(fb::FieldDefinition::Read(f.field()), length), row.description);
    EXPECT_EQ(length, row.length);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FieldTypeText,
    ::testing::Values(
        TypeRow{"byte", QStringLiteral("TYPE=\"B\" DIGB=\"3\" LENG=\"9\""), QStringLiteral("Byte"), QStringLiteral("3")},
        TypeRow{"integer", QStringLiteral("TYPE=\"I\" DIGB=\"4\""), QStringLiteral("Integer"), QStringLiteral("4")},
        TypeRow{"long", QStringLiteral("TYPE=\"L\" DIGB=\"9\""), QStringLiteral("Long"), QStringLiteral("9")},
        TypeRow{"long_without_digits", QStringLiteral("TYPE=\"L\" LENG=\"9\""), QStringLiteral("Long"), QString()},
        TypeRow{"float", QStringLiteral("TYPE=\"F\" DIGB=\"10\" DIGA=\"2\""), QStringLiteral("Float"), QStringLiteral("10,2")},
        TypeRow{"float_without_diga", QStringLiteral("TYPE=\"F\" DIGB=\"8\""), QStringLiteral("Float"), QStringLiteral("8,")},
        TypeRow{"float_without_digits", QStringLiteral("TYPE=\"F\""), QStringLiteral("Float"), QStringLiteral(",")},
        TypeRow{"double", QStringLiteral("TYPE=\"D\" DIGB=\"15\" DIGA=\"2\""), QStringLiteral("Double"),
                QStringLiteral("15,2")},
        TypeRow{"double_texts_as_they_stand", QStringLiteral("TYPE=\"D\" DIGB=\" 7\" DIGA=\"x\""), QStringLiteral("Double"),
                QStringLiteral(" 7,x")},
        TypeRow{"string", QStringLiteral("TYPE=\"S\" LENG=\"30\" DIGB=\"5\""), QStringLiteral("String"), QStringLiteral("30")},
        TypeRow{"multi_byte_string", QStringLiteral("TYPE=\"M\" LENG=\"70\""), QStringLiteral("Multi-Byte String"),
                QStringLiteral("70")},
        TypeRow{"enumerated", QStringLiteral("TYPE=\"E\" LENG=\"2\""), QStringLiteral("Enumerated"), QStringLiteral("2")},
        TypeRow{"set", QStringLiteral("TYPE=\"P\" LENG=\"8\""), QStringLiteral("Set"), QStringLiteral("8")},
        TypeRow{"date_ignores_leng", QStringLiteral("TYPE=\"T\" LENG=\"6\""), QStringLiteral("Date"), QStringLiteral("10")},
        TypeRow{"utc", QStringLiteral("TYPE=\"K\" DIGB=\"3\""), QStringLiteral("UTC"), QStringLiteral("15")},
        TypeRow{"text", QStringLiteral("TYPE=\"U\" LENG=\"5\""), QStringLiteral("Text"), QString()},
        TypeRow{"lower_case_s", QStringLiteral("TYPE=\"s\" LENG=\"30\""), QString(), QString()},
        TypeRow{"lower_case_t", QStringLiteral("TYPE=\"t\""), QString(), QString()},
        TypeRow{"unknown_letter", QStringLiteral("TYPE=\"X\" LENG=\"30\""), QString(), QString()},
        TypeRow{"two_letters", QStringLiteral("TYPE=\"SS\" LENG=\"30\""), QString(), QString()},
        TypeRow{"letter_with_blank", QStringLiteral("TYPE=\"S \" LENG=\"30\""), QString(), QString()},
        TypeRow{"empty_type", QStringLiteral("TYPE=\"\" LENG=\"30\""), QString(), QString()},
        TypeRow{"missing_type", QStringLiteral("LENG=\"30\""), QString(), QString()}),
    RowName());

TEST(FieldTypeText, NoNodeGivesEmptyTexts)
{
    QString length = QStringLiteral("x");
    EXPECT_EQ(fb::GetFieldTypeText(fb::FieldDefinition::Read(Node()), length), QString());
    EXPECT_EQ(length, QString());
}

// ---- field names ------------------------------------------------------------------

struct NameRow : fb::test::Row {
    QString from;
    QString to;
};

class DisplayName : public ::testing::TestWithParam<NameRow> {};

TEST_P(DisplayName, FromStoredName)
{
    EXPECT_EQ(fb::ToDisplayFieldName(GetParam().from), GetParam().to);
}

INSTANTIATE_TEST_SUITE_P(Rows, DisplayName,
                         ::testing::Values(NameRow{"array_element", QStringLiteral("qty__2"), QStringLiteral("qty(2)")},
                                           NameRow{"plain", QStringLiteral("qty"), QStringLiteral("qty")},
                                           NameRow{"two_markers_one_parenthesis", QStringLiteral("a__b__c"),
                                                   QStringLiteral("a(b(c)")},
                                           NameRow{"single_underscore", QStringLiteral("a_b"), QStringLiteral("a_b")},
                                           NameRow{"three_underscores", QStringLiteral("a___b"), QStringLiteral("a(_b)")},
                                           NameRow{"upper_case_kept", QStringLiteral("AMNT__12"), QStringLiteral("AMNT(12)")},
                                           NameRow{"empty", QString(), QString()}),
                         RowName());

class StoredName : public ::testing::TestWithParam<NameRow> {};

TEST_P(StoredName, FromShownName)
{
    EXPECT_EQ(fb::ToStoredFieldName(GetParam().from), GetParam().to);
}

INSTANTIATE_TEST_SUITE_P(Rows, StoredName,
                         ::testing::Values(NameRow{"array_element", QStringLiteral("qty(2)"), QStringLiteral("qty__2")},
                                           NameRow{"plain", QStringLiteral("qty"), QStringLiteral("qty")},
                                           NameRow{"closing_only_kept", QStringLiteral("qty)"), QStringLiteral("qty)")},
                                           NameRow{"opening_only", QStringLiteral("a(b(c"), QStringLiteral("a__b__c")},
                                           NameRow{"every_closing_dropped", QStringLiteral("x(1)(2))"),
                                                   QStringLiteral("x__1__2")},
                                           NameRow{"empty", QString(), QString()}),
                         RowName());

// ---- BuildFieldExpression ----------------------------------------------------------

struct ExpressionRow : fb::test::Row {
    QString expression;
    QString source;
    QString target;
    QString result;
};

class FieldExpression : public ::testing::TestWithParam<ExpressionRow> {};

TEST_P(FieldExpression, ConvertsByTargetThenSourceType)
{
    const ExpressionRow& row = GetParam();
    EXPECT_EQ(fb::BuildFieldExpression(row.expression, row.source, row.target), row.result);
}

const QString kDate = QStringLiteral("Date");
const QString kUtc = QStringLiteral("UTC");
const QString kString = QStringLiteral("String");
const QString kMbString = QStringLiteral("Multi-Byte String");

INSTANTIATE_TEST_SUITE_P(
    Rows, FieldExpression,
    ::testing::Values(
        ExpressionRow{"date_from_date", QStringLiteral("src.d"), kDate, kDate, QStringLiteral("utc(src.d,0,2)")},
        ExpressionRow{"date_from_utc", QStringLiteral("src.d"), kUtc, kDate, QStringLiteral("src.d")},
        ExpressionRow{"date_from_string", QStringLiteral("src.d"), kString, kDate, QStringLiteral("src.d")},
        ExpressionRow{"utc_from_date", QStringLiteral("src.d"), kDate, kUtc, QStringLiteral("utc(src.d,0)")},
        ExpressionRow{"utc_from_utc", QStringLiteral("src.d"), kUtc, kUtc, QStringLiteral("utc.utc(src.d)")},
        ExpressionRow{"utc_from_long", QStringLiteral("src.d"), QStringLiteral("Long"), kUtc, QStringLiteral("src.d")},
        ExpressionRow{"string_from_multi_byte_array", QStringLiteral("src.n(3)"), kMbString, kString,
                      QStringLiteral("src.n(1,3)")},
        ExpressionRow{"multi_byte_from_string_array", QStringLiteral("src.n(3)"), kString, kMbString,
                      QStringLiteral("src.n(1,3)")},
        ExpressionRow{"string_from_string_array", QStringLiteral("srctab01.name(2)"), kString, kString,
                      QStringLiteral("srctab01.name(1,2)")},
        ExpressionRow{"every_parenthesis", QStringLiteral("a.b(1)(2)"), kString, kString, QStringLiteral("a.b(1,1)(1,2)")},
        ExpressionRow{"string_without_parenthesis", QStringLiteral("src.n"), kString, kString, QStringLiteral("src.n")},
        ExpressionRow{"string_from_text", QStringLiteral("src.n(3)"), QStringLiteral("Text"), kString,
                      QStringLiteral("src.n(3)")},
        ExpressionRow{"text_from_string", QStringLiteral("src.n(3)"), kString, QStringLiteral("Text"),
                      QStringLiteral("src.n(3)")},
        ExpressionRow{"date_array_wrapped_not_split", QStringLiteral("src.d(2)"), kDate, kDate,
                      QStringLiteral("utc(src.d(2),0,2)")},
        ExpressionRow{"other_target", QStringLiteral("src.x"), kDate, QStringLiteral("Long"), QStringLiteral("src.x")},
        ExpressionRow{"types_compared_case_sensitively", QStringLiteral("src.d"), QStringLiteral("date"),
                      QStringLiteral("date"), QStringLiteral("src.d")},
        ExpressionRow{"string_types_case_sensitive", QStringLiteral("src.n(3)"), QStringLiteral("string"), kString,
                      QStringLiteral("src.n(3)")},
        ExpressionRow{"empty_types", QStringLiteral("src.x(1)"), QString(), QString(), QStringLiteral("src.x(1)")}),
    RowName());

// The descriptions that GetFieldTypeText gives are the keys that
// BuildFieldExpression compares against.
TEST(FieldExpression, WorksOnTheDescriptionsOfFieldTypes)
{
    OneField date(QStringLiteral("TYPE=\"T\""));
    OneField utc(QStringLiteral("TYPE=\"K\""));
    OneField str(QStringLiteral("TYPE=\"S\" LENG=\"5\""));
    OneField mb(QStringLiteral("TYPE=\"M\" LENG=\"5\""));
    QString len;
    EXPECT_EQ(fb::BuildFieldExpression(QStringLiteral("s.d"), fb::GetFieldTypeText(fb::FieldDefinition::Read(date.field()), len),
                                       fb::GetFieldTypeText(fb::FieldDefinition::Read(utc.field()), len)),
              QStringLiteral("utc(s.d,0)"));
    EXPECT_EQ(fb::BuildFieldExpression(QStringLiteral("s.n(2)"), fb::GetFieldTypeText(fb::FieldDefinition::Read(mb.field()), len),
                                       fb::GetFieldTypeText(fb::FieldDefinition::Read(str.field()), len)),
              QStringLiteral("s.n(1,2)"));
}

// ---- cells of a field-list row ---------------------------------------------------

struct CellRow : fb::test::Row {
    QString attributes;
    QString expected;
};

class FieldNumberCell : public ::testing::TestWithParam<CellRow> {};

TEST_P(FieldNumberCell, PadsTheTextOfFNo)
{
    OneField f(GetParam().attributes);
    ASSERT_TRUE(f.ok);
    EXPECT_EQ(fb::FieldNumberText(fb::FieldDefinition::Read(f.field())), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, FieldNumberCell,
                         ::testing::Values(CellRow{"seven", QStringLiteral("FNo=\"7\""), QStringLiteral("007")},
                                           CellRow{"nine", QStringLiteral("FNo=\"9\""), QStringLiteral("009")},
                                           CellRow{"ten", QStringLiteral("FNo=\"10\""), QStringLiteral("010")},
                                           CellRow{"forty_two", QStringLiteral("FNo=\"42\""), QStringLiteral("042")},
                                           CellRow{"ninety_nine", QStringLiteral("FNo=\"99\""), QStringLiteral("099")},
                                           CellRow{"hundred", QStringLiteral("FNo=\"100\""), QStringLiteral("00100")},
                                           CellRow{"three_digits_two_zeros", QStringLiteral("FNo=\"123\""),
                                                   QStringLiteral("00123")},
                                           CellRow{"zero", QStringLiteral("FNo=\"0\""), QStringLiteral("000")},
                                           CellRow{"text_not_value_padded", QStringLiteral("FNo=\"5.0\""),
                                                   QStringLiteral("005.0")},
                                           CellRow{"just_above_nine", QStringLiteral("FNo=\"9.5\""), QStringLiteral("09.5")},
                                           CellRow{"not_numeric", QStringLiteral("FNo=\"x1\""), QStringLiteral("000")},
                                           CellRow{"empty", QStringLiteral("FNo=\"\""), QStringLiteral("000")},
                                           CellRow{"missing", QStringLiteral("No=\"4\""), QStringLiteral("000")}),
                         RowName());

class MandatoryCell : public ::testing::TestWithParam<CellRow> {};

TEST_P(MandatoryCell, StarOnlyForCapitalY)
{
    OneField f(GetParam().attributes);
    ASSERT_TRUE(f.ok);
    EXPECT_EQ(fb::MandatoryMark(fb::FieldDefinition::Read(f.field())), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, MandatoryCell,
                         ::testing::Values(CellRow{"capital_y", QStringLiteral("MAN=\"Y\""), QStringLiteral("*")},
                                           CellRow{"lower_y", QStringLiteral("MAN=\"y\""), QString()},
                                           CellRow{"yes", QStringLiteral("MAN=\"YES\""), QString()},
                                           CellRow{"n", QStringLiteral("MAN=\"N\""), QString()},
                                           CellRow{"missing", QStringLiteral("No=\"1\""), QString()}),
                         RowName());

class AlignmentCell : public ::testing::TestWithParam<CellRow> {};

TEST_P(AlignmentCell, WordForAdju)
{
    OneField f(GetParam().attributes);
    ASSERT_TRUE(f.ok);
    EXPECT_EQ(fb::AlignmentWord(fb::FieldDefinition::Read(f.field())), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, AlignmentCell,
                         ::testing::Values(CellRow{"none", QStringLiteral("ADJU=\"N\""), QStringLiteral("No")},
                                           CellRow{"right", QStringLiteral("ADJU=\"R\""), QStringLiteral("Right")},
                                           CellRow{"left", QStringLiteral("ADJU=\"L\""), QStringLiteral("Left")},
                                           CellRow{"centre", QStringLiteral("ADJU=\"C\""), QStringLiteral("Centre")},
                                           CellRow{"unknown", QStringLiteral("ADJU=\"X\""), QStringLiteral("No")},
                                           CellRow{"lower_case", QStringLiteral("ADJU=\"r\""), QStringLiteral("No")},
                                           CellRow{"missing", QStringLiteral("No=\"1\""), QStringLiteral("No")}),
                         RowName());

class CaseCell : public ::testing::TestWithParam<CellRow> {};

TEST_P(CaseCell, WordForCase)
{
    OneField f(GetParam().attributes);
    ASSERT_TRUE(f.ok);
    EXPECT_EQ(fb::CaseWord(fb::FieldDefinition::Read(f.field())), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, CaseCell,
                         ::testing::Values(CellRow{"none", QStringLiteral("CASE=\"N\""), QStringLiteral("No")},
                                           CellRow{"upper", QStringLiteral("CASE=\"U\""), QStringLiteral("Upper")},
                                           CellRow{"lower", QStringLiteral("CASE=\"L\""), QStringLiteral("Lower")},
                                           CellRow{"empty", QStringLiteral("CASE=\"\""), QStringLiteral("No")},
                                           CellRow{"lower_case_u", QStringLiteral("CASE=\"u\""), QStringLiteral("No")},
                                           CellRow{"unknown", QStringLiteral("CASE=\"C\""), QStringLiteral("No")}),
                         RowName());

struct QualifiedRow : fb::test::Row {
    QString table;
    QString field;
    QString qualified;
    QString fieldPart;
};

class QualifiedName : public ::testing::TestWithParam<QualifiedRow> {};

TEST_P(QualifiedName, LowerCaseTableDotShownName)
{
    const QualifiedRow& row = GetParam();
    OneField f(QStringLiteral("No=\"1\""), row.field, row.table);
    ASSERT_TRUE(f.ok);
    EXPECT_EQ(fb::QualifiedFieldName(f.table().name(), f.field().name()), row.qualified);
    EXPECT_EQ(fb::FieldPartOf(row.qualified), row.fieldPart);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, QualifiedName,
    ::testing::Values(
        QualifiedRow{"array_element", QStringLiteral("KLMNO001"), QStringLiteral("QTY__2"), QStringLiteral("klmno001.qty(2)"),
                     QStringLiteral("qty(2)")},
        QualifiedRow{"plain", QStringLiteral("KLMNO001"), QStringLiteral("ITEM"), QStringLiteral("klmno001.item"),
                     QStringLiteral("item")},
        QualifiedRow{"lower_case_table", QStringLiteral("pqrst002"), QStringLiteral("Name"), QStringLiteral("pqrst002.name"),
                     QStringLiteral("name")}),
    RowName());

TEST(FieldRow, FieldWithoutAttributesStillGivesARow)
{
    OneField f(QString(), QStringLiteral("BARE"));
    ASSERT_TRUE(f.ok);
    const fb::FieldRow row = fb::MakeFieldRow(f.table().name(), fb::FieldDefinition::Read(f.field()));
    EXPECT_EQ(row.mandatory, QString());
    EXPECT_EQ(row.number, QStringLiteral("000"));
    EXPECT_EQ(row.name, QStringLiteral("klmno001.bare"));
    EXPECT_EQ(row.type, QString());
    EXPECT_EQ(row.length, QString());
    EXPECT_EQ(row.description, QString());
    EXPECT_EQ(row.alignment, QStringLiteral("No"));
    EXPECT_EQ(row.letterCase, QStringLiteral("No"));
    EXPECT_EQ(row.domain, QString());
}

TEST(FieldRow, EveryCellFromItsAttribute)
{
    OneField f(QStringLiteral("No=\"2\" FNo=\"42\" TYPE=\"F\" DIGB=\"5\" DIGA=\"2\" DSCA=\"Discount\" ADJU=\"R\" "
                              "CASE=\"U\" DOMAIN=\"percentage\" MAN=\"Y\""),
               QStringLiteral("DISC__3"));
    ASSERT_TRUE(f.ok);
    const fb::FieldRow row = fb::MakeFieldRow(f.table().name(), fb::FieldDefinition::Read(f.field()));
    EXPECT_EQ(row.mandatory, QStringLiteral("*"));
    EXPECT_EQ(row.number, QStringLiteral("042"));
    EXPECT_EQ(row.name, QStringLiteral("klmno001.disc(3)"));
    EXPECT_EQ(row.type, QStringLiteral("Float"));
    EXPECT_EQ(row.length, QStringLiteral("5,2"));
    EXPECT_EQ(row.description, QStringLiteral("Discount"));
    EXPECT_EQ(row.alignment, QStringLiteral("Right"));
    EXPECT_EQ(row.letterCase, QStringLiteral("Upper"));
    EXPECT_EQ(row.domain, QStringLiteral("percentage"));
}

} // namespace
