// Bad and unusual input must neither crash nor leave the document unusable:
// text that is not well-formed, markup before the root element, very deep and
// very large documents, text in every script.

#include "RecordingInteraction.h"
#include "TestSupport.h"

#include "core/document/MappingDocument.h"
#include "core/scripts/ScriptScanner.h"

using fb::MappingDocument;
using fb::Node;
using fb::ScriptScanner;
using fb::test::Load;
using fb::test::RecordingInteraction;
using fb::test::RowName;

namespace {

const QString kTable = QStringLiteral("klmno001");
const QString kGood = QStringLiteral("<klmno001><PREC>migrate pqrst002\ndump 1 A</PREC><QUERY ST=\"pqrst002\">q</QUERY>"
                                     "<FUNCTIONS>f</FUNCTIONS><VAR>v</VAR><SRCTBL>pqrst002</SRCTBL><DUMP No=\"1\"/>"
                                     "<MSCRIPT/></klmno001>");

// ---- text that is not a mapping object ------------------------------------------

struct MalformedRow : fb::test::Row {
    QString text;
};

class Malformed : public ::testing::TestWithParam<MalformedRow> {};

TEST_P(Malformed, RecordsErrorOneAndLeavesAnEmptyUsableDocument)
{
    MappingDocument doc;
    doc.SetTableName(kTable);
    ASSERT_TRUE(doc.LoadXml(kGood));
    ASSERT_EQ(doc.LastError().code, 0);

    EXPECT_FALSE(doc.LoadXml(GetParam().text));
    EXPECT_EQ(doc.LastError().code, 1);
    EXPECT_EQ(doc.LastError().text, QStringLiteral("The Loaded XML was not a Valid XML. Please refresh"));
    EXPECT_TRUE(doc.IsEmpty()) << "the previous content is gone";
    EXPECT_EQ(doc.Serialize(), QString());

    // Every read answers "", nothing crashes, nothing gets created.
    EXPECT_EQ(doc.GetPreconditionText(), QString());
    EXPECT_EQ(doc.GetSourceTablesText(), QString());
    EXPECT_EQ(doc.GetFunctionsText(), QString());
    EXPECT_EQ(doc.GetVariablesText(), QString());
    EXPECT_EQ(doc.GetQueryText(QStringLiteral("pqrst002")), QString());
    EXPECT_EQ(doc.GetNodeText(QStringLiteral("/klmno001")), QString());
    EXPECT_FALSE(doc.HasMscript());
    EXPECT_FALSE(doc.GetDumpNode(1));
    EXPECT_FALSE(doc.GetTargetTableNode(1));
    EXPECT_EQ(doc.GetDumpChildText(1, QStringLiteral("A")), QString());
    EXPECT_FALSE(doc.SetFunctionsText(QStringLiteral("f")));
    EXPECT_FALSE(doc.SetVariablesText(QStringLiteral("v")));
    EXPECT_FALSE(doc.SetSourceTablesText(QStringLiteral("s")));
    EXPECT_FALSE(doc.SaveQueryText(QStringLiteral("pqrst002"), QStringLiteral("q")));
    EXPECT_FALSE(doc.CreateDumpNode(2, QStringLiteral("x")));
    doc.SetTextNumber(QStringLiteral("P"), 1, QString(), QString());
    RecordingInteraction ui;
    ScriptScanner(doc, ui).PruneSections();
    EXPECT_TRUE(doc.IsEmpty());
    EXPECT_EQ(doc.LastError().code, 1) << "later failures do not replace the load error";

    // And the next good text loads.
    EXPECT_TRUE(doc.LoadXml(kGood));
    EXPECT_EQ(doc.GetFunctionsText(), QStringLiteral("f"));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Malformed,
    ::testing::Values(MalformedRow{"empty", QString()}, MalformedRow{"plain_text", QStringLiteral("hello")},
                      MalformedRow{"unclosed_root", QStringLiteral("<klmno001><PREC>x</PREC>")},
                      MalformedRow{"mismatched_end_tag", QStringLiteral("<klmno001><PREC>x</QUERY></klmno001>")},
                      MalformedRow{"text_before_root", QStringLiteral("abc<r/>")},
                      MalformedRow{"text_after_root", QStringLiteral("<klmno001/>abc")},
                      MalformedRow{"cdata_outside_root", QStringLiteral("<![CDATA[x]]><klmno001/>")},
                      MalformedRow{"two_roots", QStringLiteral("<klmno001/><klmno001/>")},
                      MalformedRow{"declaration_only", QStringLiteral("<?xml version=\"1.0\"?>")},
                      MalformedRow{"comment_only", QStringLiteral("<!-- nothing -->")},
                      MalformedRow{"unquoted_attribute", QStringLiteral("<klmno001 a=b/>")},
                      MalformedRow{"name_starts_with_digit", QStringLiteral("<1klmno/>")},
                      MalformedRow{"duplicate_attribute",
                                   QStringLiteral("<klmno001><PREC TEXT=\"1\" TEXT=\"2\">p</PREC></klmno001>")},
                      MalformedRow{"duplicate_attribute_deep_inside",
                                   QStringLiteral("<klmno001><DUMP No=\"1\"><A No=\"1\" TYPE=\"0\" No=\"2\"/></DUMP></klmno001>")},
                      MalformedRow{"unknown_entity", QStringLiteral("<klmno001><PREC>&foo;</PREC></klmno001>")},
                      MalformedRow{"bare_ampersand", QStringLiteral("<klmno001><PREC>a & b</PREC></klmno001>")},
                      MalformedRow{"character_reference_zero", QStringLiteral("<klmno001><PREC>x&#0;y</PREC></klmno001>")},
                      MalformedRow{"character_reference_not_a_number",
                                   QStringLiteral("<klmno001><PREC>&#x12g;</PREC></klmno001>")},
                      MalformedRow{"less_than_in_attribute", QStringLiteral("<klmno001><PREC TEXT=\"a<b\"/></klmno001>")},
                      MalformedRow{"ampersand_in_attribute", QStringLiteral("<klmno001><PREC TEXT=\"a&b\"/></klmno001>")},
                      MalformedRow{"cdata_end_in_text", QStringLiteral("<klmno001><PREC>a]]>b</PREC></klmno001>")},
                      MalformedRow{"double_hyphen_in_comment", QStringLiteral("<klmno001><!-- a -- b --></klmno001>")},
                      MalformedRow{"control_character", QStringLiteral("<klmno001><PREC>a\u0001b</PREC></klmno001>")},
                      MalformedRow{"lone_surrogate",
                                   QStringLiteral("<klmno001><PREC>a") + QChar(0xD800) + QStringLiteral("b</PREC></klmno001>")}),
    RowName());

// What XML allows must stay allowed: the five entities, character
// references, markup characters inside comments, CDATA and instructions.
TEST(Load, AcceptsWhatXmlAllowsAroundTheMarkupChecks)
{
    MappingDocument doc;
    Load(doc,
         QStringLiteral("<klmno001><!-- a & b < c --><?pi a & b?><PREC TEXT=\"&lt;&#10;&#x263A;&apos;\">"
                        "&lt;&gt;&amp;&quot;&apos;&#65;<![CDATA[x & y ]] < z]]>]</PREC></klmno001>"),
         kTable);
    EXPECT_EQ(doc.LastError().code, 0);
    EXPECT_EQ(doc.GetPreconditionText(), QStringLiteral("<>&\"'Ax & y ]] < z]"));
    EXPECT_EQ(doc.GetPreconditionNode().attribute(QStringLiteral("TEXT")), QStringLiteral("<\n") + QChar(0x263A) + u'\'');
}

TEST(Load, BlanksAndLineBreaksAroundTheRootAreAccepted)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("\n  <klmno001><PREC>p</PREC></klmno001>\r\n\t"), kTable);
    EXPECT_EQ(doc.GetPreconditionText(), QStringLiteral("p"));
    EXPECT_EQ(doc.LastError().code, 0);
}

// ---- markup before the root element ------------------------------------------------

struct PrologRow : fb::test::Row {
    QString prolog;
};

class MarkupBeforeRoot : public ::testing::TestWithParam<PrologRow> {};

TEST_P(MarkupBeforeRoot, LoadsButNewSectionsCannotBeAppended)
{
    MappingDocument doc;
    const QString body = QStringLiteral("<klmno001><PREC>migrate pqrst002\ndump 4 Four</PREC></klmno001>");
    Load(doc, GetParam().prolog + body, kTable);
    EXPECT_EQ(doc.GetPreconditionText(), QStringLiteral("migrate pqrst002\ndump 4 Four"));
    EXPECT_EQ(doc.DocumentElement().name(), QStringLiteral("klmno001"));
    EXPECT_FALSE(doc.FirstChild() == doc.DocumentElement());

    const QString before = doc.Serialize();
    EXPECT_FALSE(doc.SetFunctionsText(QStringLiteral("f")));
    EXPECT_FALSE(doc.SetVariablesText(QStringLiteral("v")));
    EXPECT_FALSE(doc.SaveQueryText(QStringLiteral("pqrst002"), QStringLiteral("q")));
    EXPECT_FALSE(doc.CreateDumpNode(3));
    EXPECT_EQ(doc.GetDumpChildText(3, QStringLiteral("A")), QString());
    RecordingInteraction ui;
    ScriptScanner(doc, ui).PruneSections();
    EXPECT_EQ(doc.Serialize(), before);
    EXPECT_FALSE(doc.GetDumpNode(4));

    // Existing sections can still be written, and SRCTBL goes to the
    // document element itself.
    EXPECT_TRUE(doc.SetPreconditionText(QStringLiteral("x")));
    EXPECT_TRUE(doc.SetSourceTablesText(QStringLiteral("pqrst002")));
    EXPECT_EQ(doc.GetSourceTablesText(), QStringLiteral("pqrst002"));
}

INSTANTIATE_TEST_SUITE_P(Rows, MarkupBeforeRoot,
                         ::testing::Values(PrologRow{"xml_declaration", QStringLiteral("<?xml version=\"1.0\"?>")},
                                           PrologRow{"declaration_and_line_break",
                                                     QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n")},
                                           PrologRow{"comment", QStringLiteral("<!-- saved by hand -->")},
                                           PrologRow{"processing_instruction", QStringLiteral("<?style x?>")}),
                         RowName());

// ---- size ----------------------------------------------------------------------------

// Removing or replacing a subtree walks it recursively, so a document
// nested deeper than the limit is refused as not well-formed; up to the limit
// it loads, and every section of it can be removed and written.
struct NestingRow : fb::test::Row {
    int depth;
    bool loads;
};

class Nesting : public ::testing::TestWithParam<NestingRow> {};

TEST_P(Nesting, DeeperThanTheLimitIsRefusedWholeAndShallowerLoads)
{
    const int depth = GetParam().depth;
    QString nested;
    nested.reserve(depth * 7 + 1);
    for (int i = 0; i < depth; ++i)
        nested += QStringLiteral("<a>");
    nested += u'x';
    for (int i = 0; i < depth; ++i)
        nested += QStringLiteral("</a>");
    // Inside an unreferenced dump: the first read of the document removes it.
    const QString xml = QStringLiteral("<klmno001><PREC>none</PREC><DUMP No=\"5\">") + nested +
                        QStringLiteral("</DUMP></klmno001>");
    MappingDocument doc;
    doc.SetTableName(kTable);
    fb::test::RecordingInteraction ui;
    ScriptScanner scanner(doc, ui);
    EXPECT_EQ(doc.LoadXml(xml), GetParam().loads);
    EXPECT_EQ(doc.LastError().code, GetParam().loads ? 0 : 1);
    scanner.PruneSections();
    EXPECT_EQ(doc.Serialize(), GetParam().loads ? QStringLiteral("<klmno001><PREC>none</PREC></klmno001>") : QString());
}

INSTANTIATE_TEST_SUITE_P(Rows, Nesting,
                         ::testing::Values(NestingRow{{"AtTheLimit"}, 998, true},
                                           NestingRow{{"OneBeyond"}, 999, false},
                                           NestingRow{{"TwoHundredThousand"}, 200000, false}),
                         RowName());

TEST(Large, FiftyMegabyteDocument)
{
    constexpr int kDumps = 999;
    constexpr int kRules = 500;
    QString prec = QStringLiteral("migrate pqrst002\n");
    for (int d = 1; d < kDumps; ++d) // every dump but the last is referenced
        prec += QStringLiteral("dump ") + QString::number(d) + QStringLiteral(" Dump number ") + QString::number(d) + u'\n';
    QString xml;
    xml.reserve(52 * 1024 * 1024);
    xml += QStringLiteral("<klmno001><PREC>") + prec + QStringLiteral("</PREC>");
    const QString ruleTail = QStringLiteral(" TYPE=\"0\" TEXT=\"\">pqrst002.field_with_a_long_name(1,2) &amp; more.text.in.this.rule</F");
    for (int d = 1; d <= kDumps; ++d) {
        xml += QStringLiteral("<DUMP No=\"") + QString::number(d) + QStringLiteral("\">");
        for (int r = 1; r <= kRules; ++r) {
            const QString n = QString::number(r);
            xml += QStringLiteral("<F") + n + QStringLiteral(" No=\"") + n + u'"' + ruleTail + n + u'>';
        }
        xml += QStringLiteral("</DUMP>");
    }
    xml += QStringLiteral("</klmno001>");
    ASSERT_GE(xml.size(), 50 * 1000 * 1000);

    MappingDocument doc;
    Load(doc, xml, kTable);
    EXPECT_EQ(doc.DumpNodes().size(), kDumps);
    EXPECT_EQ(doc.GetDumpNode(kDumps).childElements().size(), kRules);
    EXPECT_EQ(doc.GetDumpChildText(500, QStringLiteral("f250")), QStringLiteral("pqrst002.field_with_a_long_name(1,2) & more.text.in.this.rule"));
    EXPECT_EQ(doc.Serialize(), xml);

    RecordingInteraction ui;
    ScriptScanner(doc, ui).PruneSections();
    EXPECT_EQ(doc.DumpNodes().size(), kDumps - 1);
    EXPECT_FALSE(doc.GetDumpNode(kDumps));
    EXPECT_TRUE(ui.boxes.isEmpty());
}

// ---- text in every script ---------------------------------------------------------------

struct ScriptRow : fb::test::Row {
    QString text;
};

class EveryScript : public ::testing::TestWithParam<ScriptRow> {};

TEST_P(EveryScript, RoundTripsInTextAndAttributes)
{
    const QString text = GetParam().text;
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC TEXT=\"\">p</PREC></klmno001>"), kTable);
    ASSERT_TRUE(doc.SetFunctionsText(text));
    ASSERT_TRUE(doc.SetNodeAttribute(doc.GetPreconditionNode(), QStringLiteral("TEXT"), text));
    ASSERT_TRUE(doc.SaveQueryText(text, text + QStringLiteral(" query")));
    ASSERT_TRUE(doc.CreateDumpNode(1, text));

    MappingDocument reloaded;
    Load(reloaded, doc.Serialize(), kTable);
    EXPECT_EQ(reloaded.GetFunctionsText(), text);
    EXPECT_EQ(reloaded.GetPreconditionNode().attribute(QStringLiteral("TEXT")), text);
    EXPECT_EQ(reloaded.GetQueryText(text), text + QStringLiteral(" query")) << "found by a value in that script";
    EXPECT_EQ(reloaded.GetDumpNode(1).attribute(QStringLiteral("TXT")), text);
    EXPECT_EQ(reloaded.Serialize(), doc.Serialize());

    // The same text typed straight into the document text.
    MappingDocument direct;
    Load(direct, QStringLiteral("<klmno001><VAR>") + text.toHtmlEscaped() + QStringLiteral("</VAR></klmno001>"),
         kTable);
    EXPECT_EQ(direct.GetVariablesText(), text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, EveryScript,
    ::testing::Values(ScriptRow{"greek", QStringLiteral("Περιγραφή είδους στην τοπική γλώσσα")},
                      ScriptRow{"cyrillic", QStringLiteral("Имя клиента в кириллице")},
                      ScriptRow{"arabic", QStringLiteral("اسم العميل باللغة العربية")},
                      ScriptRow{"cjk", QStringLiteral("客户名称 顧客名 고객 이름")},
                      ScriptRow{"outside_basic_plane", QStringLiteral("📦 Lieferung 🚚 𝄞 𠜎")},
                      ScriptRow{"mixed_with_markup_characters", QStringLiteral("a < ü & \"ж\" > 中")},
                      ScriptRow{"leading_feff", QStringLiteral("\uFEFF\uFEFFstarts with two U+FEFF")},
                      ScriptRow{"only_feff", QStringLiteral("\uFEFF")}),
    RowName());

TEST(RoundTrip, MultiLineAttributeValueSurvives)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC TEXT=\"\">p</PREC></klmno001>"), kTable);
    ASSERT_TRUE(doc.SetNodeAttribute(doc.GetPreconditionNode(), QStringLiteral("TEXT"),
                                     QStringLiteral("line one\r\nline two\n\tindented\n\nlast")));
    MappingDocument reloaded;
    Load(reloaded, doc.Serialize(), kTable);
    EXPECT_EQ(reloaded.GetPreconditionNode().attribute(QStringLiteral("TEXT")),
              QStringLiteral("line one\nline two\n\tindented\n\nlast"));
    MappingDocument twice;
    Load(twice, reloaded.Serialize(), kTable);
    EXPECT_EQ(twice.Serialize(), reloaded.Serialize());
}

TEST(RoundTrip, SerializeAddsNoDeclarationAndNoIndentation)
{
    MappingDocument doc;
    Load(doc,
         QStringLiteral("<klmno001>\n  <PREC TEXT=\"1\">a\n  b</PREC>\n  <DUMP No=\"1\">\n    <A No=\"1\">x</A>\n  </DUMP>\n</klmno001>"),
         kTable);
    EXPECT_EQ(doc.Serialize(),
              QStringLiteral("<klmno001><PREC TEXT=\"1\">a\n  b</PREC><DUMP No=\"1\"><A No=\"1\">x</A></DUMP></klmno001>"));
    ASSERT_TRUE(doc.SetFunctionsText(QStringLiteral("f")));
    EXPECT_TRUE(doc.Serialize().endsWith(QStringLiteral("</DUMP><FUNCTIONS>f</FUNCTIONS></klmno001>")));
    EXPECT_EQ(doc.Serialize(), doc.Serialize()) << "reading twice gives the same text";
}

TEST(RoundTrip, EntitiesAndCrLfInLoadedText)
{
    MappingDocument doc;
    Load(doc, QStringLiteral("<klmno001><PREC>a &lt;&gt; b &amp; &quot;c&quot;\r\nnext\rlast</PREC></klmno001>"), kTable);
    EXPECT_EQ(doc.GetPreconditionText(), QStringLiteral("a <> b & \"c\"\nnext\nlast"));
}

} // namespace
