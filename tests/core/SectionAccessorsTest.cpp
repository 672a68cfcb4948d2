// Section accessors: readers and writers of the sections, which of them create
// what is missing, the dumps and their references, the target table of a dump,
// the dependency level and the documentation text numbers.

#include "TestSupport.h"

#include "core/document/MappingDocument.h"

#include <functional>

using fb::MappingDocument;
using fb::Node;
using fb::test::Load;
using fb::test::RowName;

namespace {

const QString kTable = QStringLiteral("klmno001");

// ---- readers of missing sections ----------------------------------------------

TEST(SectionReaders, MissingSectionsReadAsEmpty)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><OTHER>x</OTHER></klmno001>"), kTable);
    EXPECT_EQ(doc.GetPreconditionText(), QString());
    EXPECT_EQ(doc.GetSourceTablesText(), QString());
    EXPECT_EQ(doc.GetFunctionsText(), QString());
    EXPECT_EQ(doc.GetVariablesText(), QString());
    EXPECT_EQ(doc.GetQueryText(QStringLiteral("pqrst002")), QString());
    EXPECT_EQ(doc.GetQueryText(QString()), QString());
    EXPECT_FALSE(doc.GetDumpNode(1));
    EXPECT_FALSE(doc.HasMscript());
    EXPECT_TRUE(doc.MscriptTables().isEmpty());
}

// ---- writers that create their section -----------------------------------------

struct WriterRow : fb::test::Row {
    std::function<bool(MappingDocument&)> write;
    QString expected; // the whole document afterwards
};

class SectionWriters : public ::testing::TestWithParam<WriterRow> {};

TEST_P(SectionWriters, AppendTheMissingSectionToTheRoot)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC>p</PREC></klmno001>"), kTable);
    EXPECT_TRUE(GetParam().write(doc));
    EXPECT_EQ(doc.Serialize(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SectionWriters,
    ::testing::Values(
        WriterRow{"functions", [](MappingDocument& d) { return d.SetFunctionsText(QStringLiteral("f")); },
                  QStringLiteral("<klmno001><PREC>p</PREC><FUNCTIONS>f</FUNCTIONS></klmno001>")},
        WriterRow{"variables", [](MappingDocument& d) { return d.SetVariablesText(QStringLiteral("v~|~long")); },
                  QStringLiteral("<klmno001><PREC>p</PREC><VAR>v~|~long</VAR></klmno001>")},
        WriterRow{"query", [](MappingDocument& d) { return d.SaveQueryText(QStringLiteral("pqrst002"), QStringLiteral("q")); },
                  QStringLiteral("<klmno001><PREC>p</PREC><QUERY ST=\"pqrst002\">q</QUERY></klmno001>")},
        WriterRow{"source_tables",
                  [](MappingDocument& d) { return d.SetSourceTablesText(QStringLiteral("pqrst002,uvwxy003")); },
                  QStringLiteral("<klmno001><PREC>p</PREC><SRCTBL>pqrst002,uvwxy003</SRCTBL></klmno001>")},
        WriterRow{"dump_without_text", [](MappingDocument& d) { return bool(d.CreateDumpNode(4)); },
                  QStringLiteral("<klmno001><PREC>p</PREC><DUMP No=\"4\"/></klmno001>")},
        WriterRow{"dump_with_empty_text", [](MappingDocument& d) { return bool(d.CreateDumpNode(4, QString())); },
                  QStringLiteral("<klmno001><PREC>p</PREC><DUMP No=\"4\" TXT=\"\"/></klmno001>")},
        WriterRow{"dump_with_text", [](MappingDocument& d) { return bool(d.CreateDumpNode(12, QStringLiteral("Orders"))); },
                  QStringLiteral("<klmno001><PREC>p</PREC><DUMP No=\"12\" TXT=\"Orders\"/></klmno001>")},
        WriterRow{"text_escaped_by_serialiser",
                  [](MappingDocument& d) { return d.SetFunctionsText(QStringLiteral("a < b & c > \"d\"")); },
                  QStringLiteral("<klmno001><PREC>p</PREC><FUNCTIONS>a &lt; b &amp; c &gt; \"d\"</FUNCTIONS></klmno001>")}),
    RowName());

TEST(SectionWriters, ExistingSectionIsReplacedNotDuplicated)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><FUNCTIONS>old</FUNCTIONS><VAR>old</VAR><SRCTBL>a</SRCTBL></klmno001>"), kTable);
    EXPECT_TRUE(doc.SetFunctionsText(QStringLiteral("new f")));
    EXPECT_TRUE(doc.SetVariablesText(QStringLiteral("new v")));
    EXPECT_TRUE(doc.SetSourceTablesText(QStringLiteral("b")));
    EXPECT_EQ(doc.Serialize(),
              QStringLiteral("<klmno001><FUNCTIONS>new f</FUNCTIONS><VAR>new v</VAR><SRCTBL>b</SRCTBL></klmno001>"));
}

TEST(SectionWriters, PreconditionIsNeverCreated)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><QUERY ST=\"a\">q</QUERY></klmno001>"), kTable);
    const QString before = doc.Serialize();
    EXPECT_FALSE(doc.SetPreconditionText(QStringLiteral("migrate pqrst002")));
    doc.SetTextNumber(QStringLiteral("P"), 42, QString(), QString());
    EXPECT_EQ(doc.Serialize(), before);
    EXPECT_EQ(doc.LastError().code, 0) << "dropped without a failure";
}

TEST(SectionWriters, PreconditionTextIsWrittenWhenPresent)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC TEXT=\"3\">old</PREC></klmno001>"), kTable);
    EXPECT_TRUE(doc.SetPreconditionText(QStringLiteral("migrate pqrst002")));
    EXPECT_EQ(doc.Serialize(), QStringLiteral("<klmno001><PREC TEXT=\"3\">migrate pqrst002</PREC></klmno001>"));
}

// ---- SaveQueryText ---------------------------------------------------------------

TEST(SaveQueryText, EmptyTextWritesNothing)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><QUERY ST=\"pqrst002\">keep me</QUERY></klmno001>"), kTable);
    const QString before = doc.Serialize();
    EXPECT_FALSE(doc.SaveQueryText(QStringLiteral("pqrst002"), QString())) << "an emptied query is not removed";
    EXPECT_FALSE(doc.SaveQueryText(QStringLiteral("uvwxy003"), QString())) << "no empty QUERY is created";
    EXPECT_EQ(doc.Serialize(), before);
}

TEST(SaveQueryText, ReplacesTheMatchingQueryOnly)
{
    MappingDocument doc;
    Load(doc,
         QStringLiteral("<klmno001><QUERY ST=\"pqrst002\" TEXT=\"5\">one</QUERY><QUERY ST=\"uvwxy003\">two</QUERY></klmno001>"),
         kTable);
    EXPECT_TRUE(doc.SaveQueryText(QStringLiteral("uvwxy003"), QStringLiteral("select 2\r\nfrom x")));
    EXPECT_TRUE(doc.SaveQueryText(QStringLiteral("abcde004"), QStringLiteral("three")));
    EXPECT_EQ(doc.Serialize(), QStringLiteral("<klmno001><QUERY ST=\"pqrst002\" TEXT=\"5\">one</QUERY>"
                                              "<QUERY ST=\"uvwxy003\">select 2\nfrom x</QUERY>"
                                              "<QUERY ST=\"abcde004\">three</QUERY></klmno001>"));
}

// The lookup of a table name with an apostrophe fails, so its query is never
// found by expression; saving it again must still replace the element it
// saved before instead of adding one per save.
TEST(SaveQueryText, SourceWithApostropheFailsTheLookupButSavesInPlace)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001/>"), kTable);
    for (const QString& text : {QStringLiteral("q1"), QStringLiteral("q2"), QStringLiteral("q3")})
        EXPECT_TRUE(doc.SaveQueryText(QStringLiteral("ab'cd001"), text));
    EXPECT_EQ(doc.LastError().code, 2001);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("Error Getting Node (GetNode)"));
    EXPECT_EQ(doc.GetQueryText(QStringLiteral("ab'cd001")), QString()) << "the lookup rule stays";
    EXPECT_EQ(doc.Serialize(), QStringLiteral("<klmno001><QUERY ST=\"ab'cd001\">q3</QUERY></klmno001>"));
}

// ---- rule elements ---------------------------------------------------------------

// One writer for every rule element: whoever created it, an element that
// holds a rule carries its field's No, and TYPE follows the text as stored.
struct RuleRow : fb::test::Row {
    QString dumpBefore; // children of DUMP 1 before the write
    QString rule;
    QString dumpAfter;
};

class WriteRuleElement : public ::testing::TestWithParam<RuleRow> {};

TEST_P(WriteRuleElement, CarriesTheFieldsNoAndTypeOfTheStoredText)
{
    const RuleRow& row = GetParam();
    MappingDocument doc;
    Load(doc,
         QStringLiteral("<klmno001><DUMP No=\"1\">") + row.dumpBefore +
             QStringLiteral("</DUMP><TARTAB><KLMNO001><NAME No=\"4\"/></KLMNO001></TARTAB></klmno001>"),
         kTable);
    const Node field = doc.GetTargetTableDefinition(kTable).firstChildElement();
    doc.WriteRuleElement(doc.GetDumpNode(1), field, row.rule);
    const QString xml = doc.Serialize();
    const qsizetype from = xml.indexOf(QStringLiteral("<DUMP No=\"1\">")) + 13;
    EXPECT_EQ(xml.mid(from, xml.indexOf(QStringLiteral("</DUMP>")) - from), row.dumpAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WriteRuleElement,
    ::testing::Values(
        RuleRow{{"New"}, QString(), QStringLiteral("a.name"),
                QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"0\">a.name</NAME>")},
        RuleRow{{"HostsTextNumberElementGetsTheNo"}, QStringLiteral("<NAME TEXT=\"7\"/>"), QStringLiteral("a.name"),
                QStringLiteral("<NAME TEXT=\"7\" No=\"4\" TYPE=\"0\">a.name</NAME>")},
        RuleRow{{"StaleNoIsCorrected"}, QStringLiteral("<NAME No=\"9\" TEXT=\"\" TYPE=\"1\">x</NAME>"),
                QStringLiteral("y"), QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"0\">y</NAME>")},
        RuleRow{{"CrLfIsOneLineBreak"}, QString(), QStringLiteral("a\r\nb"),
                QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"1\">a\nb</NAME>")},
        RuleRow{{"LoneCrIsStoredAsALineBreak"}, QString(), QStringLiteral("a\rb"),
                QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"1\">a\nb</NAME>")},
        RuleRow{{"LoneLf"}, QString(), QStringLiteral("a\nb"),
                QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"1\">a\nb</NAME>")},
        RuleRow{{"OnlyFeff"}, QString(), QStringLiteral("\uFEFF"),
                QStringLiteral("<NAME No=\"4\" TEXT=\"\" TYPE=\"0\">\uFEFF</NAME>")}),
    RowName());

// ---- dumps -----------------------------------------------------------------------

const QString kDumpDoc = QStringLiteral("<klmno001>"
                                        "<DUMP No=\"1\" TXT=\"Customers\"><CUSTNO No=\"1\">a.custno</CUSTNO>"
                                        "<QTY__2 No=\"15\">a.qty(2)</QTY__2></DUMP>"
                                        "<DUMP No=\"3\"/>"
                                        "</klmno001>");

struct DumpChildRow : fb::test::Row {
    qint16 dump;
    QString child;
    QString expectedText;
};

class DumpChildText : public ::testing::TestWithParam<DumpChildRow> {};

TEST_P(DumpChildText, ReadsTheUpperCaseChild)
{
    MappingDocument doc;
    Load(doc, kDumpDoc, kTable);
    EXPECT_EQ(doc.GetDumpChildText(GetParam().dump, GetParam().child), GetParam().expectedText);
    EXPECT_EQ(doc.DumpNodes().size(), 2) << "an existing dump is not created again";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DumpChildText,
    ::testing::Values(DumpChildRow{"exact_name", 1, QStringLiteral("CUSTNO"), QStringLiteral("a.custno")},
                      DumpChildRow{"lower_case_name", 1, QStringLiteral("custno"), QStringLiteral("a.custno")},
                      DumpChildRow{"stored_array_name", 1, QStringLiteral("qty__2"), QStringLiteral("a.qty(2)")},
                      DumpChildRow{"missing_child", 1, QStringLiteral("NAME"), QString()},
                      DumpChildRow{"empty_dump", 3, QStringLiteral("CUSTNO"), QString()}),
    RowName());

TEST(DumpChildText, MissingDumpIsCreatedWithoutText)
{
    MappingDocument doc;
    Load(doc, kDumpDoc, kTable);
    EXPECT_EQ(doc.GetDumpChildText(7, QStringLiteral("CUSTNO")), QString());
    const Node created = doc.GetDumpNode(7);
    ASSERT_TRUE(created);
    EXPECT_FALSE(created.hasAttribute(QStringLiteral("TXT")));
    EXPECT_FALSE(created.hasChildNodes());
    EXPECT_TRUE(doc.DocumentElement().childElements().last() == created);
}

TEST(DumpChildText, NumberZeroOrBelowCreatesNothing)
{
    MappingDocument doc;
    Load(doc, kDumpDoc, kTable);
    const QString before = doc.Serialize();
    EXPECT_EQ(doc.GetDumpChildText(0, QStringLiteral("CUSTNO")), QString());
    EXPECT_EQ(doc.GetDumpChildText(-2, QStringLiteral("CUSTNO")), QString());
    EXPECT_EQ(doc.Serialize(), before);
}

TEST(Dumps, FoundByDecimalNumber)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><DUMP No=\"01\"/><DUMP No=\"1\" TXT=\"one\"/><DUMP No=\"12\"/></klmno001>"), kTable);
    EXPECT_EQ(doc.GetDumpNode(1).attribute(QStringLiteral("TXT")), QStringLiteral("one"))
        << "No is compared as text with the number's decimal form";
    EXPECT_TRUE(doc.GetDumpNode(12));
    EXPECT_FALSE(doc.GetDumpNode(2));
    EXPECT_EQ(doc.DumpNodes().size(), 3);
}

// ---- AddDumpReference -----------------------------------------------------------

struct Reference {
    qint16 number;
    QString text;
};

struct ReferenceRow : fb::test::Row {
    QList<Reference> added;
    QList<qint16> numbers;
    QStringList texts;
    QString expectedDocument;
};

class AddDumpReference : public ::testing::TestWithParam<ReferenceRow> {};

TEST_P(AddDumpReference, KeepsTheListAndCreatesMissingDumps)
{
    const ReferenceRow& row = GetParam();
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><DUMP No=\"1\" TXT=\"Customers\"><A No=\"1\">x</A></DUMP></klmno001>"), kTable);
    for (const Reference& r : row.added)
        EXPECT_TRUE(doc.AddDumpReference(r.number, r.text));
    EXPECT_EQ(doc.ReferencedDumps().numbers, row.numbers);
    EXPECT_EQ(doc.ReferencedDumps().texts, row.texts);
    EXPECT_EQ(doc.Serialize(), row.expectedDocument);
}

const QString kDump1 = QStringLiteral("<DUMP No=\"1\" TXT=\"Customers\"><A No=\"1\">x</A></DUMP>");

INSTANTIATE_TEST_SUITE_P(
    Rows, AddDumpReference,
    ::testing::Values(
        ReferenceRow{"first_fills_the_single_empty_slot",
                     {{7, QStringLiteral("Seven")}},
                     {7},
                     {QStringLiteral("Seven")},
                     QStringLiteral("<klmno001>") + kDump1 + QStringLiteral("<DUMP No=\"7\" TXT=\"Seven\"/></klmno001>")},
        ReferenceRow{"last_text_wins_in_the_list_dump_keeps_first",
                     {{7, QStringLiteral("first")}, {7, QStringLiteral("second")}},
                     {7},
                     {QStringLiteral("second")},
                     QStringLiteral("<klmno001>") + kDump1 + QStringLiteral("<DUMP No=\"7\" TXT=\"first\"/></klmno001>")},
        ReferenceRow{"new_numbers_grow_the_list_in_order",
                     {{7, QStringLiteral("a")}, {3, QString()}, {7, QStringLiteral("a")}},
                     {7, 3},
                     {QStringLiteral("a"), QString()},
                     QStringLiteral("<klmno001>") + kDump1 +
                         QStringLiteral("<DUMP No=\"7\" TXT=\"a\"/><DUMP No=\"3\" TXT=\"\"/></klmno001>")},
        ReferenceRow{"existing_dump_is_left_as_it_is",
                     {{1, QStringLiteral("Other")}},
                     {1},
                     {QStringLiteral("Other")},
                     QStringLiteral("<klmno001>") + kDump1 + QStringLiteral("</klmno001>")}),
    RowName());

// ---- GetTargetTableNode ----------------------------------------------------------

const QString kSingleTarget = QStringLiteral("<klmno001>"
                                             "<DUMP No=\"1\" TT=\"PQRST002\"/>"
                                             "<TARTAB><KLMNO001><A/></KLMNO001><PQRST002><B/></PQRST002></TARTAB>"
                                             "</klmno001>");

TEST(TargetTableNode, SingleTargetKindIgnoresTheDumpNumber)
{
    MappingDocument doc;
    Load(doc, kSingleTarget, kTable);
    for (qint16 dump : {qint16(0), qint16(1), qint16(99)}) {
        const Node t = doc.GetTargetTableNode(dump, QStringLiteral("1"));
        ASSERT_TRUE(t) << dump;
        EXPECT_EQ(t.name(), QStringLiteral("KLMNO001")) << "the root's name in upper case, whatever the dump's TT";
    }
}

TEST(TargetTableNode, SingleTargetKindWithoutTableDefinitionGivesNoNode)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><TARTAB><PQRST002/></TARTAB></klmno001>"), kTable);
    EXPECT_FALSE(doc.GetTargetTableNode(1));
}

const QString kMultiTarget = QStringLiteral("<fghij100>"
                                            "<DUMP No=\"1\" TT=\"FGHIJ100\"/>"
                                            "<DUMP No=\"2\" TT=\"qwert200\"/>"
                                            "<DUMP No=\"3\"/>"
                                            "<MSCRIPT><FGHIJ100/><QWERT200/></MSCRIPT>"
                                            "<TARTAB><FGHIJ100><A/></FGHIJ100><QWERT200><B/></QWERT200></TARTAB>"
                                            "</fghij100>");

struct TargetRow : fb::test::Row {
    qint16 dump;
    QString selectorTag;
    qint16 firstReference; // 0 = empty reference list
    QString expectedTable; // "" = no node
};

class MultiTargetTableNode : public ::testing::TestWithParam<TargetRow> {};

TEST_P(MultiTargetTableNode, FollowsTheDumpsTargetTable)
{
    const TargetRow& row = GetParam();
    MappingDocument doc;
    Load(doc, kMultiTarget, QStringLiteral("fghij100"));
    if (row.firstReference != 0)
        doc.AddDumpReference(row.firstReference, QString());
    const Node t = doc.GetTargetTableNode(row.dump, row.selectorTag);
    EXPECT_EQ(t.name(), row.expectedTable);
    EXPECT_EQ(bool(t), !row.expectedTable.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MultiTargetTableNode,
    ::testing::Values(
        TargetRow{"dump_given", 1, QString(), 0, QStringLiteral("FGHIJ100")},
        TargetRow{"dump_given_tt_upper_cased", 2, QString(), 0, QStringLiteral("QWERT200")},
        TargetRow{"dump_given_wins_over_tag", 1, QStringLiteral("2"), 2, QStringLiteral("FGHIJ100")},
        TargetRow{"dump_without_tt", 3, QString(), 0, QString()},
        TargetRow{"dump_not_in_document", 9, QString(), 0, QString()},
        TargetRow{"selector_tag", 0, QStringLiteral("2"), 1, QStringLiteral("QWERT200")},
        TargetRow{"selector_tag_of_dump_without_tt", 0, QStringLiteral("3"), 0, QString()},
        TargetRow{"first_referenced_dump", 0, QString(), 2, QStringLiteral("QWERT200")},
        TargetRow{"first_referenced_dump_without_tt", 0, QString(), 3, QString()},
        TargetRow{"nothing_known_takes_root_name", 0, QString(), 0, QStringLiteral("FGHIJ100")}),
    RowName());

TEST(TargetTableNode, FirstReferenceIsTheFirstSlotNotTheLast)
{
    MappingDocument doc;
    Load(doc, kMultiTarget, QStringLiteral("fghij100"));
    doc.AddDumpReference(2, QString());
    doc.AddDumpReference(1, QString());
    EXPECT_EQ(doc.GetTargetTableNode().name(), QStringLiteral("QWERT200"));
}

// ---- GetDependencyLevel ------------------------------------------------------------

struct DepRow : fb::test::Row {
    QString field; // element text; "" = no node
    qint16 level;
};

class DependencyLevel : public ::testing::TestWithParam<DepRow> {};

TEST_P(DependencyLevel, OneUnlessAPositiveNumberIsGiven)
{
    MappingDocument doc;
    Node field;
    if (!GetParam().field.isEmpty()) {
        Load(doc, GetParam().field, QStringLiteral("F"));
        field = doc.DocumentElement();
    }
    EXPECT_EQ(MappingDocument::GetDependencyLevel(field), GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DependencyLevel,
    ::testing::Values(DepRow{"no_node", QString(), 1}, DepRow{"missing", QStringLiteral("<F/>"), 1},
                      DepRow{"empty", QStringLiteral("<F DEP=\"\"/>"), 1}, DepRow{"zero", QStringLiteral("<F DEP=\"0\"/>"), 1},
                      DepRow{"not_numeric", QStringLiteral("<F DEP=\"two\"/>"), 1},
                      DepRow{"three", QStringLiteral("<F DEP=\"3\"/>"), 3},
                      DepRow{"twelve", QStringLiteral("<F DEP=\"12\"/>"), 12},
                      DepRow{"with_blanks", QStringLiteral("<F DEP=\" 2 \"/>"), 2}),
    RowName());

// ---- documentation text numbers -------------------------------------------------

const QString kTextDoc = QStringLiteral("<klmno001>"
                                        "<PREC TEXT=\"1\">p</PREC>"
                                        "<QUERY ST=\"pqrst002\" TEXT=\"3\">q</QUERY>"
                                        "<QUERY ST=\"uvwxy003\" TEXT=\"\">r</QUERY>"
                                        "<DUMP No=\"2\"><CUSTNO No=\"1\" TYPE=\"0\" TEXT=\"\">a.custno</CUSTNO></DUMP>"
                                        "</klmno001>");

struct TextNumberRow : fb::test::Row {
    QString type;
    qint32 number;
    QString key1;
    QString key2;
    QString expected; // the whole document afterwards; "" = unchanged
};

class SetTextNumber : public ::testing::TestWithParam<TextNumberRow> {};

TEST_P(SetTextNumber, RecordsTheNumber)
{
    const TextNumberRow& row = GetParam();
    MappingDocument doc;
    Load(doc, kTextDoc, kTable);
    doc.SetTextNumber(row.type, row.number, row.key1, row.key2);
    EXPECT_EQ(doc.Serialize(), row.expected.isEmpty() ? kTextDoc : row.expected);
}

QString withText(const QString& from, const QString& to)
{
    QString s = kTextDoc;
    s.replace(from, to);
    return s;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SetTextNumber,
    ::testing::Values(
        TextNumberRow{"precondition", QStringLiteral("P"), 42, QString(), QString(),
                      withText(QStringLiteral("<PREC TEXT=\"1\">"), QStringLiteral("<PREC TEXT=\"42\">"))},
        TextNumberRow{"query_keyed_by_table_name_changes_nothing", QStringLiteral("M"), 42, QStringLiteral("pqrst002"),
                      QString(), QString()},
        // The key names an attribute that must be empty: the first QUERY with
        // an empty TEXT is the one that gets the number.
        TextNumberRow{"query_key_names_an_empty_attribute", QStringLiteral("M"), 42, QStringLiteral("TEXT"), QString(),
                      withText(QStringLiteral("<QUERY ST=\"uvwxy003\" TEXT=\"\">"),
                               QStringLiteral("<QUERY ST=\"uvwxy003\" TEXT=\"42\">"))},
        TextNumberRow{"query_blank_key", QStringLiteral("M"), 42, QStringLiteral("   "), QString(), QString()},
        TextNumberRow{"query_key_breaking_the_lookup", QStringLiteral("M"), 42, QStringLiteral("a b"), QString(), QString()},
        TextNumberRow{"rule_existing", QStringLiteral("D"), 42, QStringLiteral("2"), QStringLiteral("custno"),
                      withText(QStringLiteral("TYPE=\"0\" TEXT=\"\""), QStringLiteral("TYPE=\"0\" TEXT=\"42\""))},
        TextNumberRow{"rule_missing_creates_element_with_only_text", QStringLiteral("D"), 42, QStringLiteral("2"),
                      QStringLiteral("name"),
                      withText(QStringLiteral("a.custno</CUSTNO>"), QStringLiteral("a.custno</CUSTNO><NAME TEXT=\"42\"/>"))},
        TextNumberRow{"rule_array_field_name_encoded", QStringLiteral("D"), 7, QStringLiteral("2"), QStringLiteral("qty(2)"),
                      withText(QStringLiteral("a.custno</CUSTNO>"), QStringLiteral("a.custno</CUSTNO><QTY__2 TEXT=\"7\"/>"))},
        TextNumberRow{"rule_dump_missing", QStringLiteral("D"), 42, QStringLiteral("5"), QStringLiteral("custno"), QString()},
        TextNumberRow{"rule_dump_key_not_numeric", QStringLiteral("D"), 42, QStringLiteral("two"), QStringLiteral("custno"),
                      QString()},
        TextNumberRow{"unknown_type", QStringLiteral("X"), 42, QStringLiteral("2"), QStringLiteral("custno"), QString()},
        TextNumberRow{"negative_number_as_decimal_text", QStringLiteral("P"), -3, QString(), QString(),
                      withText(QStringLiteral("<PREC TEXT=\"1\">"), QStringLiteral("<PREC TEXT=\"-3\">"))}),
    RowName());

} // namespace
