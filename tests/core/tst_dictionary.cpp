// The field rules (type texts, the expression a source field gives in a rule,
// field numbers, qualified names and the two forms of field names) and the
// text rules (the numeric test, whole numbers, numbers as text).

#include "CoreTestSupport.h"
#include "core/dictionary/FieldRules.h"
#include "core/document/TextRules.h"

using namespace fbtest;
namespace str = fb::str;

namespace {

fb::FieldDefinition typed(const QString& type)
{
    fb::FieldDefinition f;
    f.type = type;
    return f;
}

QString typeText(const QString& type)
{
    QString length;
    return fb::GetFieldTypeText(typed(type), length);
}

} // namespace

class DictionaryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { failOnAnyWarning(); }

    // The length text comes from DIGB for whole numbers, DIGB "," DIGA for
    // fractions, LENG for texts, and is fixed for dates; the type is one
    // capital letter.
    void fieldTypeText_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("length");
        QTest::newRow("Long: DIGB, not LENG") << u"L"_s << u"Long"_s << u"9"_s;
        QTest::newRow("Double: DIGB,DIGA as they stand") << u"D"_s << u"Double"_s << u"9,x"_s;
        QTest::newRow("String: LENG, not DIGB") << u"S"_s << u"String"_s << u"30"_s;
        QTest::newRow("Date: always 10") << u"T"_s << u"Date"_s << u"10"_s;
        QTest::newRow("UTC: always 15") << u"K"_s << u"UTC"_s << u"15"_s;
        QTest::newRow("lower-case letter") << u"s"_s << QString() << QString();
        QTest::newRow("two letters") << u"SS"_s << QString() << QString();
    }
    void fieldTypeText()
    {
        QFETCH(QString, type);
        fb::FieldDefinition f = typed(type);
        f.length = u"30"_s;
        f.digitsBefore = u"9"_s;
        f.digitsAfter = u"x"_s;
        QString length = u"left over"_s;
        QTEST(fb::GetFieldTypeText(f, length), "description");
        QTEST(length, "length");
    }

    // The types come as the field-list rows describe them.
    void fieldExpression_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("source"); // TYPE letters
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("result");
        QTest::newRow("Date from Date") << u"s.d"_s << u"T"_s << u"T"_s << u"utc(s.d,0,2)"_s;
        QTest::newRow("Date from UTC") << u"s.d"_s << u"K"_s << u"T"_s << u"s.d"_s;
        QTest::newRow("UTC from Date") << u"s.d"_s << u"T"_s << u"K"_s << u"utc(s.d,0)"_s;
        QTest::newRow("UTC from UTC") << u"s.d"_s << u"K"_s << u"K"_s << u"utc.utc(s.d)"_s;
        QTest::newRow("String from multi-byte array") << u"s.n(3)"_s << u"M"_s << u"S"_s << u"s.n(1,3)"_s;
        QTest::newRow("every parenthesis") << u"a.b(1)(2)"_s << u"S"_s << u"S"_s << u"a.b(1,1)(1,2)"_s;
        QTest::newRow("String from Text array") << u"s.n(3)"_s << u"U"_s << u"S"_s << u"s.n(3)"_s;
        QTest::newRow("Long from Date") << u"s.d"_s << u"T"_s << u"L"_s << u"s.d"_s;
        QTest::newRow("unknown types") << u"s.x(1)"_s << u"x"_s << u"y"_s << u"s.x(1)"_s;
    }
    void fieldExpression()
    {
        QFETCH(QString, expression);
        QFETCH(QString, source);
        QFETCH(QString, target);
        QTEST(fb::BuildFieldExpression(expression, typeText(source), typeText(target)), "result");
    }

    void fieldNames_data()
    {
        QTest::addColumn<bool>("toStored");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("result");
        QTest::newRow("array element shown") << false << u"qty__2"_s << u"qty(2)"_s;
        QTest::newRow("two markers, one closing") << false << u"a__b__c"_s << u"a(b(c)"_s;
        QTest::newRow("array element stored") << true << u"qty(2)"_s << u"qty__2"_s;
        QTest::newRow("closing alone kept") << true << u"qty)"_s << u"qty)"_s;
        QTest::newRow("every closing dropped") << true << u"x(1)(2))"_s << u"x__1__2"_s;
    }
    void fieldNames()
    {
        QFETCH(bool, toStored);
        QFETCH(QString, name);
        QTEST(toStored ? fb::ToStoredFieldName(name) : fb::ToDisplayFieldName(name), "result");
    }

    // FNo's text padded: two zeros for one digit and for three digits alike.
    void fieldNumberText_data()
    {
        QTest::addColumn<QString>("fno");
        QTest::addColumn<QString>("shown");
        QTest::newRow("7") << u"7"_s << u"007"_s;
        QTest::newRow("99") << u"99"_s << u"099"_s;
        QTest::newRow("100") << u"100"_s << u"00100"_s;
        QTest::newRow("123") << u"123"_s << u"00123"_s;
        QTest::newRow("the text, not the value") << u"5.0"_s << u"005.0"_s;
        QTest::newRow("not a number") << u"x1"_s << u"000"_s;
        QTest::newRow("empty") << QString() << u"000"_s;
    }
    void fieldNumberText()
    {
        QFETCH(QString, fno);
        fb::FieldDefinition f;
        f.fieldNumber = fno;
        QTEST(fb::FieldNumberText(f), "shown");
    }

    // The field part of a qualified name starts at its tenth character,
    // whatever the length of the table name.
    void qualifiedNames_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("qualified");
        QTest::addColumn<QString>("fieldPart");
        QTest::newRow("array element") << u"KLMNO001"_s << u"QTY__2"_s << u"klmno001.qty(2)"_s << u"qty(2)"_s;
        QTest::newRow("short table name") << u"abc"_s << u"NAME"_s << u"abc.name"_s << QString();
        QTest::newRow("long table name") << u"abcdefghij"_s << u"X"_s << u"abcdefghij.x"_s << u"j.x"_s;
    }
    void qualifiedNames()
    {
        QFETCH(QString, table);
        QFETCH(QString, field);
        QFETCH(QString, qualified);
        QCOMPARE(fb::QualifiedFieldName(table, field), qualified);
        QTEST(fb::FieldPartOf(qualified), "fieldPart");
    }

    // ---- text rules --------------------------------------------------------------

    void numeric_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("numeric");
        QTest::addColumn<double>("value");
        QTest::newRow("blanks and tabs around") << u" \t12\t "_s << true << 12.0;
        QTest::newRow("signs") << u"-01"_s << true << -1.0;
        QTest::newRow("leading point") << u".5"_s << true << 0.5;
        QTest::newRow("exponent D negative") << u"1d-1"_s << true << 0.1;
        QTest::newRow("hexadecimal") << u"&hFf"_s << true << 255.0;
        QTest::newRow("octal") << u"&O17"_s << true << 15.0;
        QTest::newRow("empty") << QString() << false << 0.0;
        QTest::newRow("blanks only") << u"   "_s << false << 0.0;
        QTest::newRow("letter after digits") << u"1x"_s << false << 0.0;
        QTest::newRow("two points") << u"1.2.3"_s << false << 0.0;
        QTest::newRow("blank inside") << u"1 2"_s << false << 0.0;
        QTest::newRow("decimal comma") << u"1,5"_s << false << 0.0;
        QTest::newRow("octal digit 8") << u"&O8"_s << false << 0.0;
        QTest::newRow("LF is no blank") << u"12\n"_s << false << 0.0;
        QTest::newRow("Arabic-Indic digits") << u"\u0661\u0662"_s << false << 0.0;
    }
    void numeric()
    {
        QFETCH(QString, text);
        QFETCH(bool, numeric);
        QFETCH(double, value);
        QCOMPARE(str::IsNumeric(text), numeric);
        QCOMPARE(str::NumericValue(text).value_or(0.0), value);
    }

    // 16 bits, halves rounded to the even neighbour.
    void toInteger_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("integer"); // "" for none
        QTest::newRow("half down to even") << u"2.5"_s << u"2"_s;
        QTest::newRow("half up to even") << u"3.5"_s << u"4"_s;
        QTest::newRow("largest") << u"32767.4"_s << u"32767"_s;
        QTest::newRow("too large") << u"32767.5"_s << QString();
        QTest::newRow("not numeric") << u"abc"_s << QString();
    }
    void toInteger()
    {
        QFETCH(QString, text);
        const auto n = str::ToInteger(text);
        QTEST(n ? QString::number(*n) : QString(), "integer");
    }

    void numbersAsText_data()
    {
        QTest::addColumn<bool>("twoDigits"); // else sign-padded
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("text");
        QTest::newRow("two digits of 5") << true << 5 << u"05"_s;
        QTest::newRow("two digits of 10") << true << 10 << u"10"_s;
        QTest::newRow("two digits of -5") << true << -5 << u"-05"_s;
        QTest::newRow("two digits of 123") << true << 123 << u"123"_s;
        QTest::newRow("sign-padded 0") << false << 0 << u" 0"_s;
        QTest::newRow("sign-padded -12") << false << -12 << u"-12"_s;
    }
    void numbersAsText()
    {
        QFETCH(bool, twoDigits);
        QFETCH(int, number);
        QTEST(twoDigits ? str::TwoDigits(number) : str::SignPadded(number), "text");
    }

    // Element names are upper-cased a character at a time: the name keeps
    // its length, so it finds the element it was made from.
    void upperCase_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("upper");
        QTest::newRow("plain") << u"cust_no2"_s << u"CUST_NO2"_s;
        QTest::newRow("sharp s has no single partner") << u"straße"_s << u"STRAßE"_s;
        QTest::newRow("ligature stays") << u"ﬁx"_s << u"ﬁX"_s;
        QTest::newRow("title-case letter") << u"ǆ"_s << u"Ǆ"_s;
        QTest::newRow("outside the basic plane") << u"\U00010428x"_s << u"\U00010400X"_s;
        QTest::newRow("a lone surrogate stays")
            << QString(QChar(0xD801)) + u"a"_s << QString(QChar(0xD801)) + u"A"_s;
    }
    void upperCase()
    {
        QFETCH(QString, text);
        QTEST(str::Upper(text), "upper");
    }
};

QTEST_APPLESS_MAIN(DictionaryTest)
#include "tst_dictionary.moc"
