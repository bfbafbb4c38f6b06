// A comparison is one kind of work, done by this library and by the peers that a user would pick
// instead: the sides are checked to compute the same before the clock starts, run interleaved, and
// end in one line of the table. Used while the program starts; one thread.
#ifndef QEL_BENCH_COMPARISON_H
#define QEL_BENCH_COMPARISON_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace qel::bench {

// What a comparison says of itself in the table.
struct Work {
    std::string name;
    double goal = 0;        // nanoseconds for one operation, or GB/s where `bytes` is set; 0: none
    std::string floor;      // what no implementation can do without
    std::size_t bytes = 0;  // that one operation moves, where the speed is shown in GB/s
    // The goal was set on another machine, where this peer took so long (in the goal's unit). By
    // it the goal is carried over to this machine.
    std::string referencePeer = {};
    double reference = 0;
    double batch = 1;  // how often one operation does the work
};

class Comparison {
  public:
    // `same` says whether all sides compute the same.
    Comparison(Work work, std::function<bool()> same);

    // The side of this library, and a peer's. `operation` is called again and again and does the
    // work once; it keeps its own state.
    template <typename Operation>
    Comparison& ours(Operation operation) {
        return side("ours", std::move(operation));
    }
    template <typename Operation>
    Comparison& peer(const std::string& name, Operation operation) {
        return side(name, std::move(operation));
    }

  private:
    template <typename Operation>
    Comparison& side(const std::string& name, Operation operation) {
        benchmark::RegisterBenchmark(
            add(name).c_str(),
            [index = index_, operation = std::move(operation)](benchmark::State& state) mutable {
                if (!agrees(index)) return state.SkipWithError("the sides differ");
                for (auto _ : state) operation();
            });
        return *this;
    }

    std::string add(const std::string& side);
    static bool agrees(std::size_t index);

    std::size_t index_;
};

// Every comparison, in the order of the table, with the names of its benchmarks.
struct Entry {
    Work work;
    std::function<bool()> same;
    int agreement = -1;  // not yet asked
    std::vector<std::string> sides;
};
std::vector<Entry>& entries();

// The name under which a side runs.
std::string benchmarkName(const Work& work, const std::string& side);

// One for each file of benchmarks.
void addRecurrence();
void addRuleTexts();
void addDates();
void addZones();
void addStreams();
void addValues();
void addStrings();
void addEncodings();
void addCharsets();
void addQuotedPrintable();
void addTraces();
void addConverter();
void addCatalogue();

}  // namespace qel::bench

#endif
