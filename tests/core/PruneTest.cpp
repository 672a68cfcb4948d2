// Tidying before the document is handed back: QUERY elements of sources no
// longer migrated go, DUMP elements follow the "dump" references of the
// scripts.

#include "RecordingInteraction.h"
#include "TestSupport.h"

#include "core/scripts/ScriptScanner.h"

using fb::MappingDocument;
using fb::ScriptScanner;
using fb::test::Load;
using fb::test::RecordingInteraction;
using fb::test::RowName;

namespace {

QStringList querySources(MappingDocument& doc)
{
    QStringList out;
    for (const fb::Node& q : doc.QueryNodes())
        out.append(q.attribute(QStringLiteral("ST")));
    return out;
}

QStringList dumpNumbers(MappingDocument& doc)
{
    QStringList out;
    for (const fb::Node& d : doc.DumpNodes())
        out.append(d.attribute(QStringLiteral("No")));
    return out;
}

struct PruneRow : fb::test::Row {
    QString body; // the root's content
    QStringList queriesAfter;
    QStringList dumpsAfter;
};

class PruneSections : public ::testing::TestWithParam<PruneRow> {};

TEST_P(PruneSections, KeepsOnlyWhatTheScriptsName)
{
    const PruneRow& row = GetParam();
    MappingDocument doc;
    RecordingInteraction ui;
    Load(doc, QStringLiteral("<klmno001>") + row.body + QStringLiteral("</klmno001>"), QStringLiteral("klmno001"));
    ScriptScanner(doc, ui).PruneSections();
    EXPECT_EQ(querySources(doc), row.queriesAfter);
    EXPECT_EQ(dumpNumbers(doc), row.dumpsAfter);
}

const QString kQueries = QStringLiteral("<QUERY ST=\"pqrst002\">q1</QUERY><QUERY ST=\"uvwxy003\">q2</QUERY>");

INSTANTIATE_TEST_SUITE_P(
    Rows, PruneSections,
    ::testing::Values(
        PruneRow{"no_migrate_removes_every_query", QStringLiteral("<PREC>x = 1</PREC>") + kQueries, {}, {}},
        PruneRow{"missing_precondition_removes_every_query", kQueries, {}, {}},
        PruneRow{"empty_precondition_removes_every_query", QStringLiteral("<PREC/>") + kQueries, {}, {}},
        PruneRow{"query_of_migrated_source_stays", QStringLiteral("<PREC>migrate uvwxy003</PREC>") + kQueries,
                 {QStringLiteral("uvwxy003")}, {}},
        PruneRow{"source_compared_case_sensitively", QStringLiteral("<PREC>migrate UVWXY003</PREC>") + kQueries, {}, {}},
        PruneRow{"migrated_source_without_query_gets_none", QStringLiteral("<PREC>migrate abcde004</PREC>") + kQueries, {},
                 {}},
        PruneRow{"unreferenced_dump_removed_with_rules",
                 QStringLiteral("<PREC>dump 2 Kept</PREC><DUMP No=\"1\"><A No=\"1\">rule</A></DUMP><DUMP No=\"2\"/>"), {},
                 {QStringLiteral("2")}},
        PruneRow{"referenced_dump_created", QStringLiteral("<PREC>dump 7 Seven</PREC>"), {}, {QStringLiteral("7")}},
        PruneRow{"dump_1000_creates_nothing", QStringLiteral("<PREC>dump 1000 Too big</PREC>"), {}, {}},
        PruneRow{"dump_in_functions_kept", QStringLiteral("<FUNCTIONS>dump 3</FUNCTIONS><DUMP No=\"3\"/>"), {},
                 {QStringLiteral("3")}},
        PruneRow{"dump_only_in_variables_removed", QStringLiteral("<VAR>dump 3</VAR><DUMP No=\"3\"/>"), {}, {}},
        PruneRow{"dump_in_query_of_migrated_source_kept",
                 QStringLiteral("<PREC>migrate pqrst002</PREC><QUERY ST=\"pqrst002\">dump 4 Q</QUERY><DUMP No=\"4\"/>"),
                 {QStringLiteral("pqrst002")}, {QStringLiteral("4")}},
        PruneRow{"dump_in_query_of_dropped_source_removed",
                 QStringLiteral("<PREC>x</PREC><QUERY ST=\"pqrst002\">dump 4 Q</QUERY><DUMP No=\"4\"/>"), {}, {}},
        PruneRow{"dumps_created_in_scan_order",
                 QStringLiteral("<PREC>migrate pqrst002\ndump 9</PREC><FUNCTIONS>dump 2</FUNCTIONS>"
                                "<QUERY ST=\"pqrst002\">dump 5\ndump 9</QUERY>"),
                 {QStringLiteral("pqrst002")}, {QStringLiteral("9"), QStringLiteral("2"), QStringLiteral("5")}}),
    RowName());

TEST(PruneSections, CreatedDumpRecordsTheTextAndRulesOfKeptDumpsStay)
{
    MappingDocument doc;
    RecordingInteraction ui;
    Load(doc,
         QStringLiteral("<klmno001><PREC TEXT=\"4\">migrate pqrst002\ndump 1 Customers\ndump 2 New one</PREC>"
                        "<DUMP No=\"1\" TXT=\"Old text\"><CUSTNO No=\"1\" TYPE=\"0\" TEXT=\"\">a.custno</CUSTNO></DUMP>"
                        "</klmno001>"),
         QStringLiteral("klmno001"));
    ScriptScanner(doc, ui).PruneSections();
    EXPECT_EQ(doc.Serialize(),
              QStringLiteral("<klmno001><PREC TEXT=\"4\">migrate pqrst002\ndump 1 Customers\ndump 2 New one</PREC>"
                             "<DUMP No=\"1\" TXT=\"Old text\"><CUSTNO No=\"1\" TYPE=\"0\" TEXT=\"\">a.custno</CUSTNO></DUMP>"
                             "<DUMP No=\"2\" TXT=\"New one\"/>"
                             "</klmno001>"));
    EXPECT_EQ(doc.MigrateTables(), QStringList{QStringLiteral("pqrst002")});
    EXPECT_EQ(doc.ReferencedDumps().numbers, (QList<qint16>{1, 2}));
    EXPECT_TRUE(ui.boxes.isEmpty());
}

TEST(PruneSections, MessagesOfThePreconditionAppearOnTidying)
{
    MappingDocument doc;
    RecordingInteraction ui;
    Load(doc, QStringLiteral("<klmno001><PREC>migrate KLM</PREC><QUERY ST=\"KLM\">q</QUERY></klmno001>"),
         QStringLiteral("klmno001"));
    ScriptScanner(doc, ui).PruneSections();
    ASSERT_EQ(ui.boxes.size(), 1);
    EXPECT_EQ(ui.boxes[0].text, QStringLiteral("Table Name not Valid"));
    EXPECT_TRUE(querySources(doc).isEmpty()) << "an invalid name is never a migrate source";
}

TEST(PruneSections, RunningTwiceChangesNothingMore)
{
    MappingDocument doc;
    RecordingInteraction ui;
    Load(doc,
         QStringLiteral("<klmno001><PREC>migrate pqrst002\ndump 3 A</PREC>") + kQueries +
             QStringLiteral("<DUMP No=\"8\"/></klmno001>"),
         QStringLiteral("klmno001"));
    ScriptScanner scanner(doc, ui);
    scanner.PruneSections();
    const QString once = doc.Serialize();
    scanner.PruneSections();
    EXPECT_EQ(doc.Serialize(), once);
    EXPECT_EQ(querySources(doc), QStringList{QStringLiteral("pqrst002")});
    EXPECT_EQ(dumpNumbers(doc), QStringList{QStringLiteral("3")});
}

} // namespace
