#include "Table.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <ostream>

#include "Comparison.h"

namespace qel::bench {

namespace {

using Cells = std::vector<std::string>;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text,
                  value < 0.1   ? "%.4f"
                  : value < 10  ? "%.2f"
                  : value < 100 ? "%.1f"
                                : "%.0f",
                  value);
    return text;
}

// Nanoseconds, or GB/s for work measured in bytes; both in the units of the goals.
double inUnit(const Work& work, double nanoseconds) {
    return work.bytes == 0 ? nanoseconds : static_cast<double>(work.bytes) / nanoseconds;
}

std::string withUnit(const Work& work, double value) {
    return number(value) + (work.bytes == 0 ? "" : " GB/s");
}

// How many times the goal's figure `value` costs: at most 1 where it is met.
double costOf(const Work& work, double value, double goal) {
    return work.bytes == 0 ? value / goal : goal / value;
}

void printRow(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        out << "| " << cells[i] << std::string(widths[i] - cells[i].size(), ' ') << ' ';
    out << "|\n";
}

void print(std::ostream& out, const std::vector<Cells>& rows) {
    std::vector<std::size_t> widths(rows.front().size(), 3);
    for (const Cells& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    printRow(out, rows.front(), widths);
    Cells rule;
    for (const std::size_t width : widths) rule.emplace_back(width, '-');
    printRow(out, rule, widths);
    for (std::size_t i = 1; i < rows.size(); ++i) printRow(out, rows[i], widths);
}

}  // namespace

bool Table::ReportContext(const Context& context) {
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration) continue;
        if (run.error_occurred) {
            failed_ = true;
            GetErrorStream() << run.benchmark_name() << ": " << run.error_message << '\n';
            continue;
        }
        times_[run.run_name.function_name].push_back(run.cpu_accumulated_time * 1e9 /
                                                     static_cast<double>(run.iterations));
    }
}

void Table::Finalize() {
    std::vector<Cells> rows{
        {"work", "ours", "peers", "ours / best peer", "goal", "goal here", "met", "floor"}};
    for (const Entry& entry : entries()) {
        const Work& work = entry.work;
        std::optional<double> ours;
        std::optional<double> best;
        double goalHere = work.goal;
        std::string peers;
        for (const std::string& side : entry.sides) {
            const auto found = times_.find(benchmarkName(work, side));
            if (found == times_.end()) continue;
            const double time = median(found->second) / work.batch;
            if (side == "ours") {
                ours = time;
                continue;
            }
            if (!best || time < *best) best = time;
            peers += (peers.empty() ? "" : ", ") + side + ' ' + withUnit(work, inUnit(work, time));
            if (side == work.referencePeer && work.reference > 0)
                goalHere = work.goal * inUnit(work, time) / work.reference;
        }
        if (!ours) continue;
        const double value = inUnit(work, *ours);
        const bool met = costOf(work, value, work.goal) <= 1 || costOf(work, value, goalHere) <= 1;
        rows.push_back({work.name, withUnit(work, value), peers.empty() ? "-" : peers,
                        best ? number(*ours / *best) : "-",
                        work.goal > 0 ? withUnit(work, work.goal) : "-",
                        work.goal > 0 ? withUnit(work, goalHere) : "-",
                        work.goal <= 0 ? "-"
                        : met          ? "yes"
                                       : "no",
                        work.floor});
    }
    if (rows.size() > 1) print(GetOutputStream(), rows);
}

}  // namespace qel::bench
