// The benchmarks' program: every comparison, or those whose names match --benchmark_filter, as one
// table of CPU time in nanoseconds, the median of the repetitions.
#include <benchmark/benchmark.h>

#include "Comparison.h"
#include "Table.h"

int main(int argc, char** argv) {
    using namespace qel::bench;
    addRecurrence();
    addRuleTexts();
    addDates();
    addZones();
    addStreams();
    addValues();
    addStrings();
    addEncodings();
    addCharsets();
    addQuotedPrintable();
    addTraces();
    addConverter();
    addCatalogue();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Table table;
    const std::size_t ran = benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return ran == 0 || table.failed() ? 1 : 0;
}
