// The node access layer: finding nodes by path and attribute, reading and
// writing text and attributes, appending elements, decoding stored text, and
// the error record that keeps the first failure.

#include "TestSupport.h"

#include "core/document/MappingDocument.h"

using fb::MappingDocument;
using fb::Node;
using fb::test::Load;
using fb::test::RowName;

namespace {

const QString kDoc = QStringLiteral(
    "<klmno001>"
    "<PREC TEXT=\"12\">migrate pqrst002</PREC>"
    "<QUERY ST=\"pqrst002\" TEXT=\"\">first query</QUERY>"
    "<QUERY ST=\"uvwxy003\" TEXT=\"7\">second query</QUERY>"
    "<DUMP No=\"1\" TXT=\"Customers\"><CUSTNO No=\"1\">a.custno</CUSTNO><NAME No=\"2\">a.name</NAME></DUMP>"
    "</klmno001>");

class NodeAccess : public ::testing::Test {
protected:
    void SetUp() override { Load(doc, kDoc, QStringLiteral("klmno001")); }
    MappingDocument doc;
    const QString queryPath = QStringLiteral("/klmno001/QUERY");
};

// ---- paths and the 8-character table name ---------------------------------

struct TableNameRow : fb::test::Row {
    QString root;      // the document element's name
    QString tableName; // what the host sets as the table name
    bool reachable;
};

class TableNamePaths : public ::testing::TestWithParam<TableNameRow> {};

TEST_P(TableNamePaths, SectionsReachableOnlyThroughTheExactEightCharacterName)
{
    const TableNameRow& row = GetParam();
    MappingDocument doc;
    ASSERT_TRUE(doc.LoadXml(u'<' + row.root + QStringLiteral("><PREC>text</PREC><MSCRIPT/></") + row.root + u'>'));
    doc.SetTableName(row.tableName);
    EXPECT_EQ(bool(doc.GetPreconditionNode()), row.reachable);
    EXPECT_EQ(doc.GetPreconditionText(), row.reachable ? QStringLiteral("text") : QString());
    EXPECT_EQ(doc.HasMscript(), row.reachable);
    // Nothing here is a failure: a padded name is a well-formed path that
    // simply finds nothing.
    EXPECT_EQ(doc.LastError().code, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TableNamePaths,
    ::testing::Values(
        TableNameRow{"eight_characters", QStringLiteral("klmno001"), QStringLiteral("klmno001"), true},
        TableNameRow{"short_root_is_padded_and_finds_nothing", QStringLiteral("klmno"), QStringLiteral("klmno"), false},
        TableNameRow{"padded_name_given_by_host", QStringLiteral("klmno"), QStringLiteral("klmno   "), false},
        TableNameRow{"long_name_is_cut_to_eight", QStringLiteral("klmno001"), QStringLiteral("klmno001extra"), true},
        TableNameRow{"long_root_not_found_through_cut_name", QStringLiteral("klmno001x"), QStringLiteral("klmno001x"),
                     false},
        TableNameRow{"element_names_are_case_sensitive", QStringLiteral("klmno001"), QStringLiteral("KLMNO001"), false}),
    RowName());

TEST(TableName, HeldAtEightCharacters)
{
    MappingDocument doc;
    EXPECT_EQ(doc.TableName(), QStringLiteral("        ")) << "blanks until the host sets it";
    doc.SetTableName(QStringLiteral("klmno"));
    EXPECT_EQ(doc.TableName(), QStringLiteral("klmno   "));
    doc.SetTableName(QStringLiteral("abcdefghijk"));
    EXPECT_EQ(doc.TableName(), QStringLiteral("abcdefgh"));
    EXPECT_EQ(doc.SectionPath(QStringLiteral("QUERY")), QStringLiteral("/abcdefgh/QUERY"));
}

struct BlankPathRow : fb::test::Row {
    QString path;
};

class BlanksInPaths : public ::testing::TestWithParam<BlankPathRow> {};

// An XPath engine would skip blanks between the steps of these paths and find
// the precondition; the layer must compare every step exactly instead.
TEST_P(BlanksInPaths, FindNothing)
{
    MappingDocument doc;
    Load(doc, kDoc, QStringLiteral("klmno001"));
    ASSERT_TRUE(doc.GetNode(QStringLiteral("/klmno001/PREC")));
    EXPECT_FALSE(doc.GetNode(GetParam().path));
    EXPECT_EQ(doc.GetNodeText(GetParam().path), QString());
}

INSTANTIATE_TEST_SUITE_P(Rows, BlanksInPaths,
                         ::testing::Values(BlankPathRow{"blanks_after_root", QStringLiteral("/klmno001   /PREC")},
                                           BlankPathRow{"blank_before_root", QStringLiteral("/ klmno001/PREC")},
                                           BlankPathRow{"blank_before_path", QStringLiteral(" /klmno001/PREC")},
                                           BlankPathRow{"blank_after_section", QStringLiteral("/klmno001/PREC ")},
                                           BlankPathRow{"tab_after_root", QStringLiteral("/klmno001\t/PREC")}),
                         RowName());

// ---- GetNode ----------------------------------------------------------------

TEST_F(NodeAccess, GetNodeWithEmptyAttributeNameIgnoresTheValue)
{
    const Node n = doc.GetNode(queryPath, QString(), QStringLiteral("uvwxy003"));
    ASSERT_TRUE(n);
    EXPECT_EQ(n.attribute(QStringLiteral("ST")), QStringLiteral("pqrst002")) << "the first QUERY, not uvwxy003's";
    const Node other = doc.GetNode(queryPath, QString(), QStringLiteral("no such value at all"));
    EXPECT_TRUE(other == n);
}

struct AttrLookupRow : fb::test::Row {
    QString attrName;
    QString attrValue;
    QString expectedText; // "" = no node
};

class AttrLookup : public NodeAccess, public ::testing::WithParamInterface<AttrLookupRow> {};

TEST_P(AttrLookup, FindsTheFirstNodeWithExactlyThatValue)
{
    const AttrLookupRow& row = GetParam();
    const Node n = doc.GetNode(queryPath, row.attrName, row.attrValue);
    EXPECT_EQ(bool(n), !row.expectedText.isEmpty());
    EXPECT_EQ(n.text(), row.expectedText);
    EXPECT_EQ(doc.GetNodeText(queryPath, row.attrName, row.attrValue), row.expectedText);
    EXPECT_EQ(doc.LastError().code, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AttrLookup,
    ::testing::Values(
        AttrLookupRow{"first_source", QStringLiteral("ST"), QStringLiteral("pqrst002"), QStringLiteral("first query")},
        AttrLookupRow{"second_source", QStringLiteral("ST"), QStringLiteral("uvwxy003"), QStringLiteral("second query")},
        AttrLookupRow{"value_compared_case_sensitively", QStringLiteral("ST"), QStringLiteral("PQRST002"), QString()},
        AttrLookupRow{"value_with_blank_is_no_prefix_match", QStringLiteral("ST"), QStringLiteral("pqrst002 "),
                      QString()},
        AttrLookupRow{"attribute_name_case_sensitive", QStringLiteral("st"), QStringLiteral("pqrst002"), QString()},
        AttrLookupRow{"empty_value_matches_empty_attribute", QStringLiteral("TEXT"), QString(),
                      QStringLiteral("first query")},
        AttrLookupRow{"empty_value_does_not_match_missing_attribute", QStringLiteral("pqrst002"), QString(), QString()},
        AttrLookupRow{"quotation_mark_in_value_is_harmless", QStringLiteral("ST"), QStringLiteral("a\"b"), QString()}),
    RowName());

struct BrokenLookupRow : fb::test::Row {
    QString attrName;
    QString attrValue;
};

class BrokenLookup : public NodeAccess, public ::testing::WithParamInterface<BrokenLookupRow> {};

TEST_P(BrokenLookup, YieldsNoNodeAndRecordsTheGetNodeError)
{
    const BrokenLookupRow& row = GetParam();
    const QString before = doc.Serialize();
    EXPECT_FALSE(doc.GetNode(queryPath, row.attrName, row.attrValue));
    EXPECT_EQ(doc.LastError().code, 2001);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("Error Getting Node (GetNode)"));
    EXPECT_EQ(doc.GetNodeText(queryPath, row.attrName, row.attrValue), QString());
    EXPECT_FALSE(doc.SetNodeText(queryPath, QStringLiteral("x"), row.attrName, row.attrValue));
    EXPECT_EQ(doc.Serialize(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenLookup,
    ::testing::Values(
        BrokenLookupRow{"apostrophe_in_value", QStringLiteral("ST"), QStringLiteral("o'brien")},
        // Put into the expression unquoted, this value would make a condition
        // that every QUERY meets; it must find nothing instead.
        BrokenLookupRow{"apostrophe_value_that_would_parse", QStringLiteral("ST"), QStringLiteral("x' or 'a'='a")},
        BrokenLookupRow{"blank_in_attribute_name", QStringLiteral("my key"), QString()},
        BrokenLookupRow{"bracket_in_attribute_name", QStringLiteral("ST]"), QStringLiteral("pqrst002")},
        BrokenLookupRow{"apostrophe_in_attribute_name", QStringLiteral("S'T"), QStringLiteral("pqrst002")}),
    RowName());

TEST_F(NodeAccess, MalformedPathRecordsTheGetNodeError)
{
    EXPECT_FALSE(doc.GetNode(QStringLiteral("/klmno001/")));
    EXPECT_EQ(doc.LastError().code, 2001);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("Error Getting Node (GetNode)"));
}

// ---- RecordError -------------------------------------------------------------

struct RecordRow : fb::test::Row {
    qint16 code;
    QString text;
    qint16 fallbackCode;
    QString fallbackText;
    qint16 keptCode;
    QString keptText;
};

class RecordErrorRows : public ::testing::TestWithParam<RecordRow> {};

TEST_P(RecordErrorRows, KeepsCodeOrFallback)
{
    const RecordRow& row = GetParam();
    MappingDocument doc;
    ASSERT_EQ(doc.LastError().code, 0);
    doc.RecordError(row.code, row.text, row.fallbackCode, row.fallbackText);
    EXPECT_EQ(doc.LastError().code, row.keptCode);
    EXPECT_EQ(doc.LastError().text, row.keptText);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RecordErrorRows,
    ::testing::Values(RecordRow{"own_code_and_text", 91, QStringLiteral("no object"), 2002, QStringLiteral("fallback"), 91,
                                QStringLiteral("no object")},
                      RecordRow{"zero_code_takes_fallback_pair", 0, QStringLiteral("description"), 2002,
                                QStringLiteral("Error Parsing the Migrate Keyword"), 2002,
                                QStringLiteral("Error Parsing the Migrate Keyword")},
                      RecordRow{"negative_code_is_an_error", -5, QStringLiteral("neg"), 0, QString(), -5,
                                QStringLiteral("neg")}),
    RowName());

TEST(RecordError, FirstErrorWinsAndIsNeverCleared)
{
    MappingDocument doc;
    doc.RecordError(0, QString(), 2002, QStringLiteral("Error Getting the NextWord"));
    doc.RecordError(91, QStringLiteral("later"), 0, QString());
    EXPECT_EQ(doc.LastError().code, 2002);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("Error Getting the NextWord"));

    // A failing lookup, a failing load and a good load change nothing.
    doc.SetTableName(QStringLiteral("klmno001"));
    EXPECT_FALSE(doc.GetNode(QStringLiteral("/klmno001/QUERY"), QStringLiteral("ST"), QStringLiteral("a'b")));
    EXPECT_FALSE(doc.LoadXml(QStringLiteral("<broken")));
    EXPECT_TRUE(doc.LoadXml(kDoc));
    EXPECT_EQ(doc.LastError().code, 2002);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("Error Getting the NextWord"));
}

TEST(RecordError, LaterFailureOfAnotherKindDoesNotReplaceGetNodeError)
{
    MappingDocument doc;
    Load(doc, kDoc, QStringLiteral("klmno001"));
    EXPECT_FALSE(doc.GetNode(QStringLiteral("/klmno001/QUERY"), QStringLiteral("ST"), QStringLiteral("a'b")));
    EXPECT_FALSE(doc.LoadXml(QStringLiteral("not xml")));
    EXPECT_EQ(doc.LastError().code, 2001);
}

// ---- text ----------------------------------------------------------------

TEST_F(NodeAccess, GetNodeTextJoinsAllDescendantText)
{
    EXPECT_EQ(doc.GetNodeText(QStringLiteral("/klmno001/DUMP")), QStringLiteral("a.custnoa.name"));
    EXPECT_EQ(doc.GetNodeText(QStringLiteral("/klmno001/NOSUCH")), QString());
}

TEST_F(NodeAccess, SetNodeTextOnMissingNodeChangesNothing)
{
    const QString before = doc.Serialize();
    EXPECT_FALSE(doc.SetNodeText(QStringLiteral("/klmno001/FUNCTIONS"), QStringLiteral("f")));
    EXPECT_FALSE(doc.SetNodeText(queryPath, QStringLiteral("q"), QStringLiteral("ST"), QStringLiteral("abcde004")));
    EXPECT_EQ(doc.Serialize(), before);
    EXPECT_FALSE(doc.GetNode(QStringLiteral("/klmno001/FUNCTIONS"))) << "nothing is created";
}

TEST_F(NodeAccess, SetNodeTextReplacesTheWholeContent)
{
    EXPECT_TRUE(doc.SetNodeText(queryPath, QStringLiteral("new"), QStringLiteral("ST"), QStringLiteral("uvwxy003")));
    EXPECT_EQ(doc.GetQueryText(QStringLiteral("uvwxy003")), QStringLiteral("new"));
    EXPECT_EQ(doc.GetQueryText(QStringLiteral("pqrst002")), QStringLiteral("first query"));

    EXPECT_TRUE(doc.SetNodeText(QStringLiteral("/klmno001/DUMP"), QStringLiteral("plain")));
    const Node dump = doc.GetDumpNode(1);
    EXPECT_TRUE(dump.childElements().isEmpty()) << "the rule elements are replaced too";
    EXPECT_EQ(dump.text(), QStringLiteral("plain"));
    EXPECT_EQ(dump.attribute(QStringLiteral("TXT")), QStringLiteral("Customers")) << "attributes stay";
}

struct LineEndRow : fb::test::Row {
    QString written;
    QString stored;
};

class LineEndsInText : public NodeAccess, public ::testing::WithParamInterface<LineEndRow> {};

TEST_P(LineEndsInText, StoredAsAfterASaveAndLoad)
{
    const LineEndRow& row = GetParam();
    ASSERT_TRUE(doc.SetNodeText(QStringLiteral("/klmno001/PREC"), row.written));
    EXPECT_EQ(doc.GetPreconditionText(), row.stored);
    MappingDocument reloaded;
    Load(reloaded, doc.Serialize(), QStringLiteral("klmno001"));
    EXPECT_EQ(reloaded.GetPreconditionText(), row.stored);

    ASSERT_TRUE(doc.SetNodeAttribute(doc.GetPreconditionNode(), QStringLiteral("TEXT"), row.written));
    EXPECT_EQ(doc.GetPreconditionNode().attribute(QStringLiteral("TEXT")), row.stored);
}

INSTANTIATE_TEST_SUITE_P(Rows, LineEndsInText,
                         ::testing::Values(LineEndRow{"crlf", QStringLiteral("a\r\nb"), QStringLiteral("a\nb")},
                                           LineEndRow{"lone_cr", QStringLiteral("a\rb"), QStringLiteral("a\nb")},
                                           LineEndRow{"lf", QStringLiteral("a\nb"), QStringLiteral("a\nb")},
                                           LineEndRow{"mixed", QStringLiteral("a\r\n\r\nb\rc\n"),
                                                      QStringLiteral("a\n\nb\nc\n")}),
                         RowName());

// ---- attributes -------------------------------------------------------------

TEST_F(NodeAccess, GetNodeAttributeAnswersEmptyForWhatIsMissing)
{
    const Node prec = doc.GetPreconditionNode();
    EXPECT_EQ(MappingDocument::GetNodeAttribute(prec, QStringLiteral("TEXT")), QStringLiteral("12"));
    EXPECT_EQ(MappingDocument::GetNodeAttribute(prec, QStringLiteral("text")), QString());
    EXPECT_EQ(MappingDocument::GetNodeAttribute(prec, QStringLiteral("NOPE")), QString());
    EXPECT_EQ(MappingDocument::GetNodeAttribute(Node(), QStringLiteral("TEXT")), QString());
}

TEST_F(NodeAccess, SetNodeAttributeCreatesOrReplaces)
{
    const Node q = doc.GetQueryNode(QStringLiteral("uvwxy003"));
    EXPECT_TRUE(doc.SetNodeAttribute(q, QStringLiteral("TEXT"), QStringLiteral("99")));
    EXPECT_TRUE(doc.SetNodeAttribute(q, QStringLiteral("NEW"), QStringLiteral("v")));
    EXPECT_EQ(q.attribute(QStringLiteral("TEXT")), QStringLiteral("99"));
    EXPECT_EQ(q.attribute(QStringLiteral("NEW")), QStringLiteral("v"));
    EXPECT_EQ(q.attribute(QStringLiteral("ST")), QStringLiteral("uvwxy003"));
    EXPECT_FALSE(doc.SetNodeAttribute(Node(), QStringLiteral("TEXT"), QStringLiteral("1")));
}

struct BadNameRow : fb::test::Row {
    QString badName;
};

class InvalidNames : public NodeAccess, public ::testing::WithParamInterface<BadNameRow> {};

TEST_P(InvalidNames, AreRefusedAndLeaveTheDocumentAsItWas)
{
    const QString before = doc.Serialize();
    const Node dump = doc.GetDumpNode(1);
    EXPECT_FALSE(doc.AppendChildElement(dump, GetParam().badName));
    EXPECT_FALSE(doc.SetNodeAttribute(dump, GetParam().badName, QStringLiteral("v")));
    EXPECT_EQ(doc.Serialize(), before);
    // The document is still usable.
    EXPECT_TRUE(doc.AppendChildElement(dump, QStringLiteral("GOOD")));
}

INSTANTIATE_TEST_SUITE_P(Rows, InvalidNames,
                         ::testing::Values(BadNameRow{"empty", QString()}, BadNameRow{"leading_digit", QStringLiteral("1ABC")},
                                           BadNameRow{"blank_inside", QStringLiteral("A B")},
                                           BadNameRow{"angle_bracket", QStringLiteral("A<B")},
                                           BadNameRow{"quote", QStringLiteral("A\"B")},
                                           BadNameRow{"parenthesis", QStringLiteral("AMNT(2)")}),
                         RowName());

// ---- AppendChildElement ---------------------------------------------------------

TEST_F(NodeAccess, AppendChildElementIsAlwaysTheLastChild)
{
    const Node dump = doc.GetDumpNode(1);
    const Node a = doc.AppendChildElement(dump, QStringLiteral("ZIP"));
    const Node b = doc.AppendChildElement(dump, QStringLiteral("AAA"), QStringLiteral("No"), QStringLiteral("5"));
    const QList<Node> children = dump.childElements();
    ASSERT_EQ(children.size(), 4);
    EXPECT_TRUE(children[2] == a);
    EXPECT_TRUE(children[3] == b);
    EXPECT_TRUE(a.parent() == dump);
    EXPECT_EQ(b.attribute(QStringLiteral("No")), QStringLiteral("5"));
}

TEST(AppendChildElement, EmptyAttributeNameGivesABareElement)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001/>"), QStringLiteral("klmno001"));
    EXPECT_TRUE(doc.AppendChildElement(doc.DocumentElement(), QStringLiteral("BARE"), QString(), QStringLiteral("ignored")));
    EXPECT_EQ(doc.Serialize(), QStringLiteral("<klmno001><BARE/></klmno001>"));
    EXPECT_FALSE(doc.AppendChildElement(Node(), QStringLiteral("X")));
}

// ---- UnescapeXmlText -----------------------------------------------------------

struct UnescapeRow : fb::test::Row {
    QString stored;
    QString shown;
};

class Unescape : public ::testing::TestWithParam<UnescapeRow> {};

TEST_P(Unescape, DecodesOnceMoreAndMakesCrLf)
{
    EXPECT_EQ(MappingDocument::UnescapeXmlText(GetParam().stored), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Unescape,
    ::testing::Values(
        UnescapeRow{"lt_in_capitals", QStringLiteral("a&LT;b"), QStringLiteral("a<b")},
        UnescapeRow{"amp_lt_decodes_one_level", QStringLiteral("x&amp;lt;y"), QStringLiteral("x&lt;y")},
        UnescapeRow{"mixed_case_gt", QStringLiteral("a&Gt;b"), QStringLiteral("a>b")},
        UnescapeRow{"amp_in_capitals", QStringLiteral("a&AMP;b"), QStringLiteral("a&b")},
        UnescapeRow{"amp_amp_one_level", QStringLiteral("&amp;amp;"), QStringLiteral("&amp;")},
        UnescapeRow{"quot", QStringLiteral("say &QUOT;hi&quot;"), QStringLiteral("say \"hi\"")},
        UnescapeRow{"apos_is_not_decoded", QStringLiteral("it&apos;s"), QStringLiteral("it&apos;s")},
        UnescapeRow{"numeric_reference_is_not_decoded", QStringLiteral("&#60;"), QStringLiteral("&#60;")},
        UnescapeRow{"lf_becomes_crlf", QStringLiteral("a\nb\n"), QStringLiteral("a\r\nb\r\n")},
        UnescapeRow{"crlf_becomes_cr_crlf", QStringLiteral("a\r\nb"), QStringLiteral("a\r\r\nb")},
        UnescapeRow{"lone_cr_untouched", QStringLiteral("a\rb"), QStringLiteral("a\rb")},
        UnescapeRow{"empty", QString(), QString()}),
    RowName());

TEST(Unescape, LiteralEntityTextIsShownDecodedAfterASave)
{
    // A user types the characters "&lt;" into a script; the serialiser
    // escapes the ampersand, the parser decodes it back, and showing the text
    // decodes it a second time.
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC/></klmno001>"), QStringLiteral("klmno001"));
    ASSERT_TRUE(doc.SetPreconditionText(QStringLiteral("if a &lt; b")));
    MappingDocument reloaded;
    Load(reloaded, doc.Serialize(), QStringLiteral("klmno001"));
    EXPECT_EQ(reloaded.GetPreconditionText(), QStringLiteral("if a &lt; b"));
    EXPECT_EQ(MappingDocument::UnescapeXmlText(reloaded.GetPreconditionText()), QStringLiteral("if a < b"));
}

} // namespace
