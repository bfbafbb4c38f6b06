// The reporter of the benchmarks: gathers every repetition and prints one table at the end.
#ifndef QEL_BENCH_TABLE_H
#define QEL_BENCH_TABLE_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace qel::bench {

class Table : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

    // Whether a side failed, as it does when it computes something else than the others.
    [[nodiscard]] bool failed() const { return failed_; }

  private:
    std::map<std::string, std::vector<double>> times_;  // CPU nanoseconds by benchmark
    bool failed_ = false;
};

}  // namespace qel::bench

#endif
