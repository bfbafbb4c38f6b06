// A process that traces through the shared library, for tests of several processes on one log.
//
//   trace_probe TAG THREADS LINES
//
// Each thread writes LINES lines "<TAG>.<thread>.<line> <padding>|". Prints the lines that were not
// accepted, one "<TAG>.<thread>.<line>" each; those count as dropped.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "QelUtility/BxTrace.h"

namespace {

void writeLines(const char* tag, int thread, int lines, std::vector<int>& dropped) {
    for (int line = 0; line < lines; ++line) {
        // One in a while is longer than a stream's buffer.
        const int length = line % 5000 == 7 ? 40000 : line % 57;
        const std::string padding(static_cast<std::size_t>(length), 'p');
        if (BxTrace_Tracef("%s.%d.%d %s|", tag, thread, line, padding.c_str()) != 0)
            dropped.push_back(line);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int threads = std::atoi(argv[2]);
    const int lines = std::atoi(argv[3]);
    std::vector<std::vector<int>> dropped(static_cast<std::size_t>(threads));
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back(writeLines, argv[1], i, lines,
                             std::ref(dropped[static_cast<std::size_t>(i)]));
    for (std::thread& each : running) each.join();
    for (int i = 0; i < threads; ++i)
        for (const int line : dropped[static_cast<std::size_t>(i)])
            std::printf("%s.%d.%d\n", argv[1], i, line);
    return 0;
}
