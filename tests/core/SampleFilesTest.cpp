// The sample mapping objects that ship with the project load, show their
// sections, and survive the tidying before a save unchanged.

#include "RecordingInteraction.h"
#include "TestSupport.h"

#include "core/scripts/ScriptScanner.h"

using fb::MappingDocument;
using fb::ScriptScanner;
using fb::test::RecordingInteraction;
using fb::test::RowName;

namespace {

struct SampleRow : fb::test::Row {
    QString file;
    QString root;
    bool multiTarget;
    QString sourceTables;
    QStringList migrateTables;
    QList<qint16> dumpsInScanOrder;
    QStringList dumpElements; // DUMP No values in document order
};

class SampleFiles : public ::testing::TestWithParam<SampleRow> {
protected:
    void SetUp() override
    {
        text = fb::test::ReadExample(GetParam().file);
        ASSERT_FALSE(text.isEmpty()) << "sample not found: " << fb::test::ExamplePath(GetParam().file).toStdString();
        ASSERT_TRUE(doc.LoadXml(text));
        doc.SetTableName(GetParam().root);
    }

    QStringList dumpNumbers()
    {
        QStringList out;
        for (const fb::Node& d : doc.DumpNodes())
            out.append(d.attribute(QStringLiteral("No")));
        return out;
    }

    QString text;
    MappingDocument doc;
    RecordingInteraction ui;
};

TEST_P(SampleFiles, SectionsAreReachableThroughTheRootName)
{
    const SampleRow& row = GetParam();
    EXPECT_EQ(doc.DocumentElement().name(), row.root);
    EXPECT_EQ(doc.GetSourceTablesText(), row.sourceTables);
    EXPECT_TRUE(doc.GetPreconditionText().contains(QStringLiteral("migrate ")));
    EXPECT_FALSE(doc.GetFunctionsText().isEmpty());
    EXPECT_FALSE(doc.GetVariablesText().isEmpty());
    for (const QString& source : row.migrateTables)
        EXPECT_FALSE(doc.GetQueryText(source).isEmpty()) << source.toStdString();
    EXPECT_EQ(doc.HasMscript(), row.multiTarget);
    EXPECT_EQ(dumpNumbers(), row.dumpElements);
    EXPECT_TRUE(doc.GetTargetTableNode(1)) << "the first dump's fields are defined";
    EXPECT_EQ(doc.LastError().code, 0);
}

TEST_P(SampleFiles, TidyingKeepsEveryQueryAndEveryDump)
{
    const SampleRow& row = GetParam();
    const int queriesBefore = int(doc.QueryNodes().size());
    const QString before = doc.Serialize();

    ScriptScanner(doc, ui).PruneSections();

    EXPECT_EQ(doc.MigrateTables(), row.migrateTables);
    EXPECT_EQ(doc.ReferencedDumps().numbers, row.dumpsInScanOrder);
    EXPECT_EQ(int(doc.QueryNodes().size()), queriesBefore);
    EXPECT_EQ(dumpNumbers(), row.dumpElements);
    EXPECT_EQ(doc.Serialize(), before) << "nothing to create, nothing to remove";
    EXPECT_TRUE(ui.boxes.isEmpty());
    EXPECT_EQ(doc.LastError().code, 0);
}

TEST_P(SampleFiles, SerialisedTextLoadsToTheSameDocument)
{
    MappingDocument again;
    ASSERT_TRUE(again.LoadXml(doc.Serialize()));
    EXPECT_EQ(again.Serialize(), doc.Serialize());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SampleFiles,
    ::testing::Values(SampleRow{"single_target",
                                QStringLiteral("klmno001.xml"),
                                QStringLiteral("klmno001"),
                                false,
                                QStringLiteral("pqrst002,uvwxy003,abcde004"),
                                {QStringLiteral("pqrst002"), QStringLiteral("uvwxy003")},
                                {1, 2, 3},
                                {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")}},
                      SampleRow{"multi_target",
                                QStringLiteral("fghij100.xml"),
                                QStringLiteral("fghij100"),
                                true,
                                QStringLiteral("lmnop010,rstuv020,hijkl030"),
                                {QStringLiteral("lmnop010"), QStringLiteral("rstuv020")},
                                {1, 4, 3, 2},
                                {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")}}),
    RowName());

} // namespace
