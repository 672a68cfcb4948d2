// The field suggestions at scale, on the generated "huge" multi-target
// mapping object: 40,000 source fields in 200 tables, target tables of 400
// fields, names built from the fragments old ERP tables spell them with
// (CUSTQTY, ORDDATE), descriptions shared by many fields.
#include "MappingGenerator.h"
#include "core/document/MappingDocument.h"
#include "core/rules/SuggestDocument.h"

#include <benchmark/benchmark.h>

using namespace fb;

namespace {

MappingDocument& hugeDocument()
{
    static MappingDocument* doc = [] {
        auto* d = new MappingDocument;
        d->SetTableName(QString::fromLatin1(bench::kMultiTargetRoot));
        d->LoadXml(bench::GenerateMultiTarget(bench::MultiTargetShape::Huge()));
        return d;
    }();
    return *doc;
}

// What the person waits for after asking for suggestions: the source fields
// read, the index built, the 400 target fields of dump 1 ranked.
void BM_SuggestDump400x40000(benchmark::State& state)
{
    MappingDocument& doc = hugeDocument();
    int sources = 0;
    int targets = 0;
    for (auto _ : state) {
        const DocumentSuggestions s = SuggestForDocument(doc, 1);
        sources = int(s.sources.size());
        targets = s.dumps.isEmpty() ? 0 : int(s.dumps[0].targets.size());
        benchmark::DoNotOptimize(s.dumps.data());
    }
    state.counters["sourceFields"] = sources;
    state.counters["targetFields"] = targets;
}
BENCHMARK(BM_SuggestDump400x40000)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Its parts: reading the 40,000 source fields, building the index over them,
// and ranking one dump against an index built before.
void BM_SuggestReadSources(benchmark::State& state)
{
    MappingDocument& doc = hugeDocument();
    for (auto _ : state)
        benchmark::DoNotOptimize(ListedSourceFields(doc));
}
BENCHMARK(BM_SuggestReadSources)->Unit(benchmark::kMillisecond);

void BM_SuggestIndex(benchmark::State& state)
{
    const QList<SuggestField> sources = ListedSourceFields(hugeDocument());
    for (auto _ : state) {
        const SuggestionEngine engine(sources);
        benchmark::DoNotOptimize(engine.sources().size());
    }
}
BENCHMARK(BM_SuggestIndex)->Unit(benchmark::kMillisecond);

void BM_SuggestRank(benchmark::State& state)
{
    MappingDocument& doc = hugeDocument();
    const SuggestionEngine engine(ListedSourceFields(doc));
    const QList<SuggestField> targets = DumpTargets(doc, 1).value(0).fields;
    SuggestOptions options;
    options.oneToOne = state.range(0) != 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.Suggest(targets, options));
}
BENCHMARK(BM_SuggestRank)->ArgName("oneToOne")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
