// The general numeric test and its conversion to a 16-bit whole number.

#include "TestSupport.h"

#include "core/document/TextRules.h"

#include <optional>

using fb::test::RowName;
namespace str = fb::str;

namespace {

struct NumericRow : fb::test::Row {
    QString text;
    std::optional<double> value; // nullopt = not numeric
};

class Numeric : public ::testing::TestWithParam<NumericRow> {};

TEST_P(Numeric, AcceptsTheGeneralForms)
{
    const NumericRow& row = GetParam();
    EXPECT_EQ(str::IsNumeric(row.text), row.value.has_value());
    const auto value = str::NumericValue(row.text);
    ASSERT_EQ(value.has_value(), row.value.has_value());
    if (row.value) {
        EXPECT_DOUBLE_EQ(*value, *row.value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Numeric,
    ::testing::Values(NumericRow{"digits", QStringLiteral("001"), 1.0},
                      NumericRow{"surrounding_blanks", QStringLiteral("  12  "), 12.0},
                      NumericRow{"surrounding_tabs", QStringLiteral("\t12\t"), 12.0},
                      NumericRow{"plus_sign", QStringLiteral("+7"), 7.0},
                      NumericRow{"minus_sign", QStringLiteral("-01"), -1.0},
                      NumericRow{"decimal_point", QStringLiteral("1.5"), 1.5},
                      NumericRow{"leading_point", QStringLiteral(".5"), 0.5},
                      NumericRow{"trailing_point", QStringLiteral("5."), 5.0},
                      NumericRow{"exponent_e", QStringLiteral("1e3"), 1000.0},
                      NumericRow{"exponent_capital_e_signed", QStringLiteral("2.5E+2"), 250.0},
                      NumericRow{"exponent_d_negative", QStringLiteral("1D-1"), 0.1},
                      NumericRow{"hexadecimal", QStringLiteral("&H1F"), 31.0},
                      NumericRow{"hexadecimal_lower_case", QStringLiteral("&hff"), 255.0},
                      NumericRow{"octal", QStringLiteral("&O17"), 15.0},
                      NumericRow{"empty", QString(), std::nullopt},
                      NumericRow{"blanks_only", QStringLiteral("   "), std::nullopt},
                      NumericRow{"letters", QStringLiteral("xyz"), std::nullopt},
                      NumericRow{"letter_after_digits", QStringLiteral("1x"), std::nullopt},
                      NumericRow{"digit_after_letter", QStringLiteral("x1"), std::nullopt},
                      NumericRow{"sign_only", QStringLiteral("-"), std::nullopt},
                      NumericRow{"point_only", QStringLiteral("."), std::nullopt},
                      NumericRow{"two_points", QStringLiteral("1.2.3"), std::nullopt},
                      NumericRow{"two_signs", QStringLiteral("--1"), std::nullopt},
                      NumericRow{"blank_inside", QStringLiteral("1 2"), std::nullopt},
                      NumericRow{"thousands_separator", QStringLiteral("1,000"), std::nullopt},
                      NumericRow{"decimal_comma", QStringLiteral("1,5"), std::nullopt},
                      NumericRow{"exponent_without_digits", QStringLiteral("1e"), std::nullopt},
                      NumericRow{"exponent_without_mantissa", QStringLiteral("e3"), std::nullopt},
                      NumericRow{"octal_digit_eight", QStringLiteral("&O8"), std::nullopt},
                      NumericRow{"hexadecimal_without_digits", QStringLiteral("&H"), std::nullopt},
                      NumericRow{"hexadecimal_bad_digit", QStringLiteral("&HG"), std::nullopt},
                      NumericRow{"line_feed_is_no_blank", QStringLiteral("12\n"), std::nullopt},
                      NumericRow{"arabic_indic_digits", QStringLiteral("\u0661\u0662"), std::nullopt}),
    RowName());

struct IntegerRow : fb::test::Row {
    QString text;
    std::optional<qint16> value;
};

class ToInteger : public ::testing::TestWithParam<IntegerRow> {};

TEST_P(ToInteger, SixteenBitsWithHalvesToEven)
{
    EXPECT_EQ(str::ToInteger(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToInteger,
                         ::testing::Values(IntegerRow{"plain", QStringLiteral("12"), qint16(12)},
                                           IntegerRow{"blanks", QStringLiteral(" 7 "), qint16(7)},
                                           IntegerRow{"half_down_to_even", QStringLiteral("2.5"), qint16(2)},
                                           IntegerRow{"half_up_to_even", QStringLiteral("3.5"), qint16(4)},
                                           IntegerRow{"largest", QStringLiteral("32767"), qint16(32767)},
                                           IntegerRow{"smallest", QStringLiteral("-32768"), qint16(-32768)},
                                           IntegerRow{"too_large", QStringLiteral("32768"), std::nullopt},
                                           IntegerRow{"not_numeric", QStringLiteral("abc"), std::nullopt}),
                         RowName());

} // namespace
