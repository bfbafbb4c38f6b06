// Values into a stream and out again, beside Boost's text archive.
#ifdef QEL_BENCH_ALL_PEERS
#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#endif
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/VStr.h"

namespace qel::bench {

namespace {

constexpr int kValues = 1000;
constexpr char kText[] = "twenty characters ..";

std::vector<int> numbers() {
    std::vector<int> values;
    std::uint32_t value = 12345;
    for (int i = 0; i < kValues; ++i) {
        value = value * 1664525 + 1013904223;
        values.push_back(static_cast<int>(value >> (i % 32)));
    }
    return values;
}

std::vector<std::string> texts() {
    return std::vector<std::string>(kValues, kText);
}

#ifdef QEL_BENCH_ALL_PEERS
template <typename T>
std::string archiveOf(const std::vector<T>& values) {
    std::ostringstream out;
    boost::archive::text_oarchive archive(out, boost::archive::no_header);
    for (const T& value : values) archive << value;
    return out.str();
}

bool archiveHolds(const std::vector<int>& numbers) {
    std::istringstream in(archiveOf(numbers));
    boost::archive::text_iarchive archive(in, boost::archive::no_header);
    for (const int number : numbers) {
        int theirs = 0;
        archive >> theirs;
        if (theirs != number) return false;
    }
    return true;
}
#else
bool archiveHolds(const std::vector<int>& /*numbers*/) {
    return true;
}
#endif

void write(CBxDataStream& out, const std::vector<int>& values) {
    for (const int value : values) out << value;
}

void write(CBxDataStream& out, const std::vector<std::string>& values) {
    for (const std::string& value : values) out << value.c_str();
}

bool same(const std::vector<int>& numbers, const std::vector<std::string>& texts) {
    CBxDataStream stream;
    write(stream, numbers);
    write(stream, texts);
    stream.SeekToBegin();
    for (const int number : numbers) {
        int ours = 0;
        stream >> ours;
        if (ours != number) return false;
    }
    for (const std::string& text : texts) {
        VStr ours;
        stream >> ours;
        if (text != static_cast<const char*>(ours)) return false;
    }
    return archiveHolds(numbers);
}

template <typename T, typename Read>
void add(const std::string& name, const std::vector<T>& values, double goalOut, double goalIn,
         double boostOut, double boostIn, const char* floor, Read readOurs) {
    const auto agree = [] { return same(numbers(), texts()); };
    Comparison into({name + " into a stream", goalOut, floor, 0, "Boost", boostOut, kValues},
                    agree);
    into.ours([values, stream = std::make_shared<CBxDataStream>()] {
        stream->Reset();
        write(*stream, values);
    });
    auto filled = std::make_shared<CBxDataStream>();
    write(*filled, values);
    Comparison outOf({name + " out of a stream", goalIn, floor, 0, "Boost", boostIn, kValues},
                     agree);
    outOf.ours([filled, readOurs] {
        filled->SeekToBegin();
        for (int i = 0; i < kValues; ++i) readOurs(*filled);
    });
#ifdef QEL_BENCH_ALL_PEERS
    into.peer("Boost", [values] { benchmark::DoNotOptimize(archiveOf(values)); });
    outOf.peer("Boost", [text = archiveOf(values)] {
        std::istringstream in(text);
        boost::archive::text_iarchive archive(in, boost::archive::no_header);
        T value{};
        for (int i = 0; i < kValues; ++i) archive >> value;
        benchmark::DoNotOptimize(value);
    });
#endif
}

}  // namespace

void addStreams() {
    add(
        "int", numbers(), 7, 5, 25, 50, "up to 9 bytes moved",
        [](CBxDataStream& stream) {
            int value = 0;
            stream >> value;
            benchmark::DoNotOptimize(value);
        });
    add("20 characters", texts(), 12, 25, 30, 34, "21 bytes moved; a block for each string read",
        [value = std::make_shared<VStr>()](CBxDataStream& stream) { stream >> *value; });
}

}  // namespace qel::bench
