// Benchmarks of the pure core on large generated mapping objects.
#include "MappingGenerator.h"
#include "core/dictionary/FieldRules.h"
#include "core/document/Interaction.h"
#include "core/document/MappingDocument.h"
#include "core/rules/RuleGuess.h"
#include "core/scripts/ScriptScanner.h"

#include <benchmark/benchmark.h>

using namespace fb;

namespace {

const QString& bigText()
{
    static const QString text = bench::GenerateMapping({});
    return text;
}

void BM_Load(benchmark::State& state)
{
    MappingDocument doc;
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.LoadXml(bigText()));
    state.SetBytesProcessed(int64_t(state.iterations()) * bigText().size() * 2);
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);

void BM_Serialize(benchmark::State& state)
{
    MappingDocument doc;
    doc.LoadXml(bigText());
    for (auto _ : state)
        benchmark::DoNotOptimize(doc.Serialize());
}
BENCHMARK(BM_Serialize)->Unit(benchmark::kMillisecond);

void BM_PruneSections(benchmark::State& state)
{
    MappingDocument doc;
    SilentInteraction ui;
    ScriptScanner scanner(doc, ui);
    doc.LoadXml(bigText());
    doc.SetTableName(QStringLiteral("klmno001"));
    for (auto _ : state)
        scanner.PruneSections();
}
BENCHMARK(BM_PruneSections)->Unit(benchmark::kMillisecond);

// The cells of 10,000 source-field rows, as the source list is filled.
void BM_SourceFieldRows(benchmark::State& state)
{
    MappingDocument doc;
    doc.LoadXml(bigText());
    doc.SetTableName(QStringLiteral("klmno001"));
    const QStringList tables = doc.GetSourceTablesText().split(u',');
    for (auto _ : state) {
        int rows = 0;
        for (const QString& t : tables) {
            const Node table = doc.GetSourceTableNode(t);
            for (Node f = table.firstChildElement(); f; f = f.nextSiblingElement()) {
                benchmark::DoNotOptimize(MakeFieldRow(table.name(), fb::FieldDefinition::Read(f)));
                ++rows;
            }
        }
        state.counters["rows"] = rows;
    }
}
BENCHMARK(BM_SourceFieldRows)->Unit(benchmark::kMillisecond);

// The dump references of a precondition of n lines, each "dump k text":
// the scan must stay linear in the script's length (Arg 10,000 and 40,000).
void BM_ScanDumpReferences(benchmark::State& state)
{
    MappingDocument doc;
    SilentInteraction ui;
    ScriptScanner scanner(doc, ui);
    QString script;
    for (int i = 0; i < int(state.range(0)); ++i)
        script += QStringLiteral("dump %1 rows of part %2\n").arg(i % 999 + 1).arg(i);
    for (auto _ : state) {
        doc.ReferencedDumps().clear();
        scanner.ScanDumpReferences(script);
    }
}
BENCHMARK(BM_ScanDumpReferences)->Arg(10000)->Arg(40000)->Unit(benchmark::kMillisecond);

// Guessing the rules of 400 target fields against 10,000 source fields.
void BM_GuessRules(benchmark::State& state)
{
    const int sourceCount = int(state.range(0));
    QList<FieldEntry> sources;
    for (int i = 0; i < sourceCount; ++i)
        sources.append({QStringLiteral("src%1.fld%2").arg(i % 10, 5, 10, QChar(u'0')).arg(i % 3000),
                        QStringLiteral("String")});
    QList<FieldEntry> targets;
    for (int i = 0; i < 400; ++i)
        targets.append(
            {QStringLiteral("klmno001.fld%1").arg(i * 5) + (i % 4 == 0 ? QStringLiteral("(2)") : QString()),
             QStringLiteral("String")});
    for (auto _ : state)
        benchmark::DoNotOptimize(GuessRules(sources, targets));
}
BENCHMARK(BM_GuessRules)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
