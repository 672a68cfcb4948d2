// The keyword scanner of the scripts: whole-word tests, the word after a
// keyword, the "migrate" statements with their table-name checks, the "dump"
// references and every message with its icon.

#include "RecordingInteraction.h"
#include "TestSupport.h"

#include "core/scripts/ScriptScanner.h"

using fb::MappingDocument;
using fb::MsgButtons;
using fb::MsgIcon;
using fb::ScriptScanner;
using fb::test::Load;
using fb::test::RecordingInteraction;
using fb::test::RowName;

namespace {

const QString kMigrateAtEnd = QStringLiteral("Migrate Keyword Has to be followed by a TableName");
const QString kDumpAtEnd = QStringLiteral("Dump Keyword Must be Followed by a Dump Number");
const QString kNotValid = QStringLiteral("Table Name not Valid");

QString invalidName(const QString& name)
{
    return QStringLiteral("Invalid table name '") + name + u'\'';
}

struct ExpectedBox {
    QString text;
    MsgIcon icon;
};

// Every box the scanner shows has one OK button and no title of its own.
void ExpectBoxes(const RecordingInteraction& ui, const QList<ExpectedBox>& expected)
{
    ASSERT_EQ(ui.boxes.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(ui.boxes[i].text, expected[i].text) << "box " << i;
        EXPECT_EQ(ui.boxes[i].icon, expected[i].icon) << "box " << i;
        EXPECT_EQ(ui.boxes[i].buttons, MsgButtons::Ok) << "box " << i;
        EXPECT_EQ(ui.boxes[i].title, QString()) << "box " << i;
    }
}

class Scanner : public ::testing::Test {
protected:
    MappingDocument doc;
    RecordingInteraction ui;
    ScriptScanner scanner{doc, ui};
};

// ---- IsKeywordAt -----------------------------------------------------------------

struct KeywordRow : fb::test::Row {
    QString text;
    int position;
    int length;
    bool whole;
    MsgIcon icon; // None = no message
};

class IsKeywordAt : public Scanner, public ::testing::WithParamInterface<KeywordRow> {};

TEST_P(IsKeywordAt, DecidesWholeWordAndMessage)
{
    const KeywordRow& row = GetParam();
    const QString message = QStringLiteral("the message");
    EXPECT_EQ(scanner.IsKeywordAt(row.text, row.position, row.length, message), row.whole);
    if (row.icon == MsgIcon::None)
        ExpectBoxes(ui, {});
    else
        ExpectBoxes(ui, {{message, row.icon}});
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IsKeywordAt,
    ::testing::Values(
        KeywordRow{"at_start_followed_by_blank", QStringLiteral("dump 5"), 1, 4, true, MsgIcon::None},
        KeywordRow{"after_blank", QStringLiteral("x dump 5"), 3, 4, true, MsgIcon::None},
        KeywordRow{"after_tab_before_line_feed", QStringLiteral("x\tdump\n5"), 3, 4, true, MsgIcon::None},
        KeywordRow{"after_cr_before_cr", QStringLiteral("x\rdump\r5"), 3, 4, true, MsgIcon::None},
        KeywordRow{"tail_of_longer_word", QStringLiteral("xdump 5"), 2, 4, false, MsgIcon::None},
        KeywordRow{"head_of_longer_word", QStringLiteral("dumpster 5"), 1, 4, false, MsgIcon::None},
        KeywordRow{"punctuation_is_no_separator", QStringLiteral("(dump 5"), 2, 4, false, MsgIcon::None},
        KeywordRow{"punctuation_after_is_no_separator", QStringLiteral("dump(5)"), 1, 4, false, MsgIcon::None},
        KeywordRow{"ends_text_at_start", QStringLiteral("dump"), 1, 4, false, MsgIcon::Critical},
        KeywordRow{"one_char_after_at_start", QStringLiteral("dump "), 1, 4, false, MsgIcon::Critical},
        KeywordRow{"one_letter_after_at_start", QStringLiteral("dumpx"), 1, 4, false, MsgIcon::Critical},
        KeywordRow{"ends_text_after_blank", QStringLiteral("x dump"), 3, 4, false, MsgIcon::Information},
        KeywordRow{"ends_text_after_line_feed", QStringLiteral("x\ndump"), 3, 4, false, MsgIcon::Information},
        KeywordRow{"one_char_after_after_blank", QStringLiteral("x dump "), 3, 4, false, MsgIcon::Information},
        KeywordRow{"ends_text_as_tail_of_word", QStringLiteral("xdump"), 2, 4, false, MsgIcon::None},
        KeywordRow{"migrate_length_seven", QStringLiteral("a migrate b"), 3, 7, true, MsgIcon::None}),
    RowName());

// ---- NextWord ---------------------------------------------------------------------

struct NextWordRow : fb::test::Row {
    QString text;
    qint32 countBefore;
    QString word;
    qint32 countAfter;
};

class NextWord : public Scanner, public ::testing::WithParamInterface<NextWordRow> {};

TEST_P(NextWord, ReturnsFirstWordAndCountsConsumedCharacters)
{
    const NextWordRow& row = GetParam();
    qint32 count = row.countBefore;
    EXPECT_EQ(scanner.NextWord(row.text, count), row.word);
    EXPECT_EQ(count, row.countAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NextWord,
    ::testing::Values(
        NextWordRow{"plain", QStringLiteral("abc def"), 0, QStringLiteral("abc"), 3},
        NextWordRow{"leading_spaces_not_counted", QStringLiteral("   abc def"), 0, QStringLiteral("abc"), 3},
        NextWordRow{"count_grows_from_its_value", QStringLiteral("abc"), 10, QStringLiteral("abc"), 13},
        NextWordRow{"control_characters_counted", QStringLiteral("\t\r\nKLMNO001"), 0, QStringLiteral("KLMNO001"), 11},
        NextWordRow{"spaces_between_controls_not_counted", QStringLiteral(" \n  \t  abc"), 0, QStringLiteral("abc"), 5},
        NextWordRow{"stops_at_tab", QStringLiteral("abc\tdef"), 0, QStringLiteral("abc"), 3},
        NextWordRow{"stops_at_cr", QStringLiteral("abc\r\ndef"), 0, QStringLiteral("abc"), 3},
        NextWordRow{"punctuation_belongs_to_word", QStringLiteral("a(1),b c"), 0, QStringLiteral("a(1),b"), 6},
        NextWordRow{"empty", QString(), 4, QString(), 4},
        NextWordRow{"spaces_only", QStringLiteral("    "), 0, QString(), 0},
        NextWordRow{"controls_only", QStringLiteral("\r\n"), 0, QString(), 2}),
    RowName());

// ---- ParseMigrateTables -------------------------------------------------------------

struct MigrateRow : fb::test::Row {
    QString text;
    QStringList tables;
    QList<ExpectedBox> boxes;
    int focusCalls;
};

class ParseMigrateTables : public Scanner, public ::testing::WithParamInterface<MigrateRow> {};

TEST_P(ParseMigrateTables, FillsTheListAndShowsTheMessages)
{
    const MigrateRow& row = GetParam();
    doc.MigrateTables() = QStringList{QStringLiteral("OLDTB001"), QStringLiteral("OLDTB002")};
    EXPECT_TRUE(scanner.ParseMigrateTables(row.text));
    EXPECT_EQ(doc.MigrateTables(), row.tables);
    ExpectBoxes(ui, row.boxes);
    EXPECT_EQ(ui.focusPreconditionCalls, row.focusCalls);
    EXPECT_EQ(ui.migrateTablesChangedCalls, 1) << "the migrate-source list is refilled";
    EXPECT_EQ(ui.events.last(), RecordingInteraction::Event::MigrateTablesChanged) << "after all messages";
}

const QStringList kNone{QString()};

INSTANTIATE_TEST_SUITE_P(
    Rows, ParseMigrateTables,
    ::testing::Values(
        MigrateRow{"one_table", QStringLiteral("migrate KLMNO001"), {QStringLiteral("KLMNO001")}, {}, 0},
        MigrateRow{"tab_and_line_break_any_case", QStringLiteral("MIGRATE\tKLMNO001\nmigrate PQRST002"),
                   {QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}, {}, 0},
        MigrateRow{"crlf_lines", QStringLiteral("x = 1\r\nMigrate KLMNO001\r\nmiGRate PQRST002\r\n"),
                   {QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}, {}, 0},
        MigrateRow{"line_breaks_before_name", QStringLiteral("migrate\r\n\r\n  KLMNO001\n"), {QStringLiteral("KLMNO001")}, {},
                   0},
        MigrateRow{"tail_of_word_is_no_keyword", QStringLiteral("xmigrate KLMNO001"), kNone, {}, 0},
        MigrateRow{"head_of_word_is_no_keyword", QStringLiteral("migrated KLMNO001 x"), kNone, {}, 0},
        MigrateRow{"keyword_glued_to_name", QStringLiteral("migrateKLMNO001 x"), kNone, {}, 0},
        MigrateRow{"short_name", QStringLiteral("migrate KLM"), kNone, {{kNotValid, MsgIcon::Critical}}, 1},
        MigrateRow{"long_name", QStringLiteral("migrate KLMNO0011"), kNone, {{kNotValid, MsgIcon::Critical}}, 1},
        MigrateRow{"one_letter_name", QStringLiteral("migrate K"), kNone, {{kNotValid, MsgIcon::Critical}}, 1},
        MigrateRow{"digit_in_first_five", QStringLiteral("migrate 1LMNO001"), kNone,
                   {{invalidName(QStringLiteral("1LMNO001")), MsgIcon::Critical}}, 1},
        MigrateRow{"fifth_char_digit", QStringLiteral("migrate KLMN5001"), kNone,
                   {{invalidName(QStringLiteral("KLMN5001")), MsgIcon::Critical}}, 1},
        MigrateRow{"letters_in_last_three", QStringLiteral("migrate KLMNOXYZ"), kNone,
                   {{invalidName(QStringLiteral("KLMNOXYZ")), MsgIcon::Critical}}, 1},
        MigrateRow{"invalid_names_are_skipped", QStringLiteral("migrate KLM\nmigrate PQRST002\nmigrate 1BCDE003"),
                   {QStringLiteral("PQRST002")},
                   {{kNotValid, MsgIcon::Critical}, {invalidName(QStringLiteral("1BCDE003")), MsgIcon::Critical}}, 2},
        MigrateRow{"duplicate_stored_once_silently", QStringLiteral("migrate KLMNO001 migrate KLMNO001"),
                   {QStringLiteral("KLMNO001")}, {}, 0},
        MigrateRow{"duplicates_compared_case_sensitively", QStringLiteral("migrate KLMNO001 migrate klmno001"),
                   {QStringLiteral("KLMNO001"), QStringLiteral("klmno001")}, {}, 0},
        MigrateRow{"ends_in_keyword", QStringLiteral("migrate KLMNO001\nmigrate"), {QStringLiteral("KLMNO001")},
                   {{kMigrateAtEnd, MsgIcon::Critical}}, 0},
        MigrateRow{"ends_in_keyword_and_blank", QStringLiteral("migrate KLMNO001\nmigrate "), {QStringLiteral("KLMNO001")},
                   {{kMigrateAtEnd, MsgIcon::Critical}}, 0},
        MigrateRow{"keyword_alone", QStringLiteral("migrate"), kNone, {{kMigrateAtEnd, MsgIcon::Critical}}, 0},
        MigrateRow{"ends_in_longer_word", QStringLiteral("migrate KLMNO001 premigrate"), {QStringLiteral("KLMNO001")},
                   {{kMigrateAtEnd, MsgIcon::Critical}}, 0},
        MigrateRow{"two_characters_after_keyword_are_a_name", QStringLiteral("migrate KLM\nmigrate X"), kNone,
                   {{kNotValid, MsgIcon::Critical}, {kNotValid, MsgIcon::Critical}}, 2},
        MigrateRow{"one_character_after_keyword_stops_scan", QStringLiteral("migrate KLM\nmigrateX"), kNone,
                   {{kNotValid, MsgIcon::Critical}, {kMigrateAtEnd, MsgIcon::Critical}}, 1},
        MigrateRow{"keyword_then_blanks_only", QStringLiteral("migrate   "), kNone, {}, 0},
        MigrateRow{"no_keyword", QStringLiteral("x = 1\ny = 2"), kNone, {}, 0},
        MigrateRow{"sign_and_point_count_as_numeric", QStringLiteral("migrate KLMNO1.5 migrate KLMNO-01"),
                   {QStringLiteral("KLMNO1.5"), QStringLiteral("KLMNO-01")}, {}, 0}),
    RowName());

TEST_F(Scanner, EmptyPreconditionChangesNothing)
{
    doc.MigrateTables() = QStringList{QStringLiteral("KLMNO001")};
    EXPECT_FALSE(scanner.ParseMigrateTables(QString()));
    EXPECT_EQ(doc.MigrateTables(), QStringList{QStringLiteral("KLMNO001")});
    EXPECT_TRUE(ui.events.isEmpty());
}

TEST_F(Scanner, ParseStartsAnewEachTime)
{
    EXPECT_TRUE(scanner.ParseMigrateTables(QStringLiteral("migrate KLMNO001")));
    EXPECT_TRUE(scanner.ParseMigrateTables(QStringLiteral("migrate PQRST002")));
    EXPECT_EQ(doc.MigrateTables(), QStringList{QStringLiteral("PQRST002")});
    EXPECT_TRUE(scanner.ParseMigrateTables(QStringLiteral("nothing here")));
    EXPECT_EQ(doc.MigrateTables(), kNone);
    EXPECT_FALSE(doc.HasMigrateTables());
}

// ---- AddMigrateTable ---------------------------------------------------------------

struct AddTableRow : fb::test::Row {
    QString table;
    bool added;
    QString message; // "" = none
};

class AddMigrateTable : public Scanner, public ::testing::WithParamInterface<AddTableRow> {};

TEST_P(AddMigrateTable, ValidatesTheName)
{
    const AddTableRow& row = GetParam();
    EXPECT_EQ(scanner.AddMigrateTable(row.table), row.added);
    EXPECT_EQ(doc.MigrateTables(), row.added ? QStringList{row.table} : kNone);
    if (row.message.isEmpty()) {
        ExpectBoxes(ui, {});
        EXPECT_EQ(ui.focusPreconditionCalls, 0);
    } else {
        ExpectBoxes(ui, {{row.message, MsgIcon::Critical}});
        EXPECT_EQ(ui.focusPreconditionCalls, 1);
        EXPECT_EQ(ui.events.last(), RecordingInteraction::Event::FocusPreconditionEditor) << "focus after the box";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddMigrateTable,
    ::testing::Values(
        AddTableRow{"valid", QStringLiteral("KLMNO001"), true, QString()},
        AddTableRow{"valid_lower_case", QStringLiteral("pqrst002"), true, QString()},
        AddTableRow{"punctuation_in_first_five", QStringLiteral("K.MN_001"), true, QString()},
        AddTableRow{"empty_equals_the_empty_slot", QString(), false, QString()},
        AddTableRow{"seven_chars", QStringLiteral("KLMNO01"), false, kNotValid},
        AddTableRow{"nine_chars", QStringLiteral("KLMNO0012"), false, kNotValid},
        AddTableRow{"digit_first", QStringLiteral("1LMNO001"), false, invalidName(QStringLiteral("1LMNO001"))},
        AddTableRow{"digit_third", QStringLiteral("KL3NO001"), false, invalidName(QStringLiteral("KL3NO001"))},
        AddTableRow{"letters_last", QStringLiteral("KLMNOXYZ"), false, invalidName(QStringLiteral("KLMNOXYZ"))},
        AddTableRow{"letter_in_last_three", QStringLiteral("KLMNO0X1"), false, invalidName(QStringLiteral("KLMNO0X1"))}),
    RowName());

TEST_F(Scanner, AddMigrateTableAppendsAfterTheFirst)
{
    EXPECT_TRUE(scanner.AddMigrateTable(QStringLiteral("KLMNO001")));
    EXPECT_TRUE(scanner.AddMigrateTable(QStringLiteral("PQRST002")));
    EXPECT_FALSE(scanner.AddMigrateTable(QStringLiteral("KLMNO001")));
    EXPECT_EQ(doc.MigrateTables(), (QStringList{QStringLiteral("KLMNO001"), QStringLiteral("PQRST002")}));
    EXPECT_TRUE(ui.boxes.isEmpty());
}

// ---- ScanDumpReferences ----------------------------------------------------------------

struct DumpScanRow : fb::test::Row {
    QString text;
    QList<qint16> numbers;
    QStringList texts;
    QList<ExpectedBox> boxes;
};

class ScanDumpReferences : public Scanner, public ::testing::WithParamInterface<DumpScanRow> {};

TEST_P(ScanDumpReferences, RecordsNumbersTextsAndMessages)
{
    const DumpScanRow& row = GetParam();
    Load(doc, QStringLiteral("<klmno001/>"), QStringLiteral("klmno001"));
    scanner.ScanDumpReferences(row.text);
    EXPECT_EQ(doc.ReferencedDumps().numbers, row.numbers);
    EXPECT_EQ(doc.ReferencedDumps().texts, row.texts);
    ExpectBoxes(ui, row.boxes);
    // A DUMP element exists for every recorded number and for no other.
    QList<qint16> created;
    for (const fb::Node& d : doc.DumpNodes())
        created.append(qint16(d.attribute(QStringLiteral("No")).toShort()));
    EXPECT_EQ(created, row.numbers == QList<qint16>{0} ? QList<qint16>{} : row.numbers);
}

const QList<qint16> kNoDump{0};
const QStringList kNoText{QString()};

INSTANTIATE_TEST_SUITE_P(
    Rows, ScanDumpReferences,
    ::testing::Values(
        DumpScanRow{"number_only", QStringLiteral("dump 12"), {12}, {QString()}, {}},
        DumpScanRow{"number_and_text", QStringLiteral("dump 3 Order statistics"), {3}, {QStringLiteral("Order statistics")},
                    {}},
        DumpScanRow{"text_ends_at_line_end_and_is_trimmed", QStringLiteral("\tDUMP 3 \t Orders \t\r\nDump 4 Lines\nx"),
                    {3, 4}, {QStringLiteral("Orders"), QStringLiteral("Lines")}, {}},
        DumpScanRow{"text_stops_before_next_dump_on_line", QStringLiteral("dump 1 A dump 2 B"), {1, 2},
                    {QStringLiteral("A"), QStringLiteral("B")}, {}},
        DumpScanRow{"indented_in_query", QStringLiteral("selectdo\n\t\tdump 3 Order statistics\n\tendselect"), {3},
                    {QStringLiteral("Order statistics")}, {}},
        DumpScanRow{"two_blanks_before_number", QStringLiteral("dump  12"), {12}, {QString()}, {}},
        DumpScanRow{"leading_zero", QStringLiteral("dump 07 Seven"), {7}, {QStringLiteral("Seven")}, {}},
        DumpScanRow{"highest_number", QStringLiteral("dump 999"), {999}, {QString()}, {}},
        DumpScanRow{"thousand_is_no_dump", QStringLiteral("dump 1000"), kNoDump, kNoText, {}},
        DumpScanRow{"zero_is_no_dump", QStringLiteral("dump 0"), kNoDump, kNoText, {}},
        DumpScanRow{"negative_is_no_dump", QStringLiteral("dump -5"), kNoDump, kNoText, {}},
        DumpScanRow{"word_is_no_number", QStringLiteral("dump xyz"), kNoDump, kNoText, {}},
        DumpScanRow{"longer_word", QStringLiteral("dumpster 5"), kNoDump, kNoText, {}},
        DumpScanRow{"tail_of_word", QStringLiteral("xdump 5"), kNoDump, kNoText, {}},
        DumpScanRow{"same_number_twice_last_text_wins", QStringLiteral("dump 5 First\ndump 5 Again"), {5},
                    {QStringLiteral("Again")}, {}},
        DumpScanRow{"keyword_at_text_start_and_end", QStringLiteral("dump"), kNoDump, kNoText,
                    {{kDumpAtEnd, MsgIcon::Critical}}},
        DumpScanRow{"keyword_and_blank_at_text_start", QStringLiteral("dump "), kNoDump, kNoText,
                    {{kDumpAtEnd, MsgIcon::Critical}}},
        DumpScanRow{"keyword_at_end_after_separator", QStringLiteral("x = 1\ndump"), kNoDump, kNoText,
                    {{kDumpAtEnd, MsgIcon::Information}}},
        DumpScanRow{"keyword_at_end_after_a_dump", QStringLiteral("dump 5 dump"), {5}, {QString()},
                    {{kDumpAtEnd, MsgIcon::Information}}},
        DumpScanRow{"keyword_at_end_as_tail_of_word", QStringLiteral("x = 1\nxdump"), kNoDump, kNoText, {}},
        // The scan goes on in the text after the previous keyword, so a
        // keyword right behind it stands at that text's start.
        DumpScanRow{"keyword_right_behind_longer_word", QStringLiteral("dumpdump 7"), {7}, {QString()}, {}},
        DumpScanRow{"empty_text", QString(), kNoDump, kNoText, {}}),
    RowName());

// ---- CollectDumpReferences -------------------------------------------------------------

const QString kScriptsDoc = QStringLiteral(
    "<klmno001>"
    "<PREC>migrate pqrst002\ndump 2 From precondition</PREC>"
    "<FUNCTIONS>function f()\n{\n\tdump 5 From functions\n}</FUNCTIONS>"
    "<VAR>dump 6 Variables are not scanned</VAR>"
    "<QUERY ST=\"pqrst002\">select\nselectdo\n\tdump 1 From query\n\tdump 2 Query text\nendselect</QUERY>"
    "<QUERY ST=\"uvwxy003\">dump 8 Table not migrated</QUERY>"
    "</klmno001>");

TEST_F(Scanner, CollectScansPreconditionFunctionsThenMigratedQueries)
{
    Load(doc, kScriptsDoc, QStringLiteral("klmno001"));
    doc.MigrateTables() = QStringList{QStringLiteral("pqrst002")};
    doc.ReferencedDumps().numbers = {9};
    doc.ReferencedDumps().texts = {QStringLiteral("stale")};
    doc.KnownDumps().insert(9, QStringLiteral("stale"));

    scanner.CollectDumpReferences();

    EXPECT_EQ(doc.ReferencedDumps().numbers, (QList<qint16>{2, 5, 1}));
    EXPECT_EQ(doc.ReferencedDumps().texts,
              (QStringList{QStringLiteral("Query text"), QStringLiteral("From functions"), QStringLiteral("From query")}));
    EXPECT_FALSE(doc.KnownDumps().contains(9));
    EXPECT_EQ(doc.KnownDumps().value(5), QStringLiteral("From functions"));
    EXPECT_EQ(doc.KnownDumps().value(1), QStringLiteral("From query"));
    EXPECT_FALSE(doc.KnownDumps().contains(6));
    EXPECT_FALSE(doc.KnownDumps().contains(8));

    // New dumps are created in scan order and keep the first text seen.
    QStringList created;
    for (const fb::Node& d : doc.DumpNodes())
        created.append(d.attribute(QStringLiteral("No")) + u'=' + d.attribute(QStringLiteral("TXT")));
    EXPECT_EQ(created, (QStringList{QStringLiteral("2=From precondition"), QStringLiteral("5=From functions"),
                                    QStringLiteral("1=From query")}));
    EXPECT_TRUE(ui.boxes.isEmpty());
}

TEST_F(Scanner, CollectWithoutReferencesLeavesTheListEmpty)
{
    Load(doc, QStringLiteral("<klmno001><PREC>migrate pqrst002</PREC></klmno001>"), QStringLiteral("klmno001"));
    doc.ReferencedDumps().numbers = {9};
    doc.ReferencedDumps().texts = {QStringLiteral("stale")};
    scanner.CollectDumpReferences();
    EXPECT_TRUE(doc.ReferencedDumps().isEmpty());
}

// ---- CheckMscripts ----------------------------------------------------------------------

struct MscriptRow : fb::test::Row {
    QString xml;
    QString tableName;
    bool expected;
};

class CheckMscripts : public Scanner, public ::testing::WithParamInterface<MscriptRow> {};

TEST_P(CheckMscripts, TellsWhetherTheSectionExists)
{
    Load(doc, GetParam().xml, GetParam().tableName);
    EXPECT_EQ(scanner.CheckMscripts(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CheckMscripts,
    ::testing::Values(MscriptRow{"present", QStringLiteral("<fghij100><MSCRIPT/></fghij100>"), QStringLiteral("fghij100"), true},
                      MscriptRow{"absent", QStringLiteral("<fghij100><TARTAB/></fghij100>"), QStringLiteral("fghij100"), false},
                      MscriptRow{"not_directly_under_root",
                                 QStringLiteral("<fghij100><TARTAB><MSCRIPT/></TARTAB></fghij100>"),
                                 QStringLiteral("fghij100"), false},
                      MscriptRow{"root_name_too_short", QStringLiteral("<fghij><MSCRIPT/></fghij>"), QStringLiteral("fghij"),
                                 false}),
    RowName());

// ---- ReadDumpText ----------------------------------------------------------------------

struct DumpTextRow : fb::test::Row {
    QString rest;
    int nextDump;
    QString text;
};

class ReadDumpText : public ::testing::TestWithParam<DumpTextRow> {};

TEST_P(ReadDumpText, TakesTheRestOfTheLineAfterTheNumber)
{
    EXPECT_EQ(fb::ReadDumpText(GetParam().rest, GetParam().nextDump), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReadDumpText,
    ::testing::Values(DumpTextRow{"rest_of_line", QStringLiteral(" 3 Order statistics\nnext"), 0,
                                  QStringLiteral("Order statistics")},
                      DumpTextRow{"blanks_and_tabs_trimmed", QStringLiteral("\t3\t  Orders \t\r\n"), 0, QStringLiteral("Orders")},
                      DumpTextRow{"number_only", QStringLiteral(" 3"), 0, QString()},
                      DumpTextRow{"number_then_line_break", QStringLiteral(" 3\nOrders"), 0, QString()},
                      DumpTextRow{"stops_before_next_dump", QStringLiteral(" 1 A dump 2 B"), 6, QStringLiteral("A")},
                      DumpTextRow{"next_dump_on_later_line", QStringLiteral(" 1 A\ndump 2"), 6, QStringLiteral("A")},
                      DumpTextRow{"empty", QString(), 0, QString()}),
    RowName());

} // namespace
