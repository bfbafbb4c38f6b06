// Retroactive tracing: the most recent traces kept in two buffers of memory, which cost a copy
// each, and written out only when an error is reported.
#include <cstring>

#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace {

using qel::trace::Writer;
using qel::trace::writer;

// Writes one buffer and empties it. What it holds has its prefixes already.
void writeOut(char* buffer, std::FILE* stream) {
    if (buffer[0] == '\0') return;
    BxTrace_WriteLines(true, buffer, stream);
    buffer[0] = '\0';
}

}  // namespace

void BxTrace_RetroAppend(const char* text, int length) {
    Writer& w = writer();
    const int size = qel::trace::settings().retroBufferSize;
    if (length < 1 || length > size) return;
    const int left = size - w.retroFill;
    const int head = length <= left ? length : left;
    char* current = w.retro[static_cast<std::size_t>(w.retroCurrent)];
    std::memcpy(current + w.retroFill, text, static_cast<std::size_t>(head));
    w.retroFill += head;
    current[w.retroFill] = '\0';
    if (head == length) return;
    w.retroCurrent = 1 - w.retroCurrent;
    current = w.retro[static_cast<std::size_t>(w.retroCurrent)];
    w.retroFill = length - head;
    std::memcpy(current, text + head, static_cast<std::size_t>(w.retroFill));
    current[w.retroFill] = '\0';
}

void BxTrace_FlushRetroBuffers() {
    if (qel::trace::settings().retroBufferSize <= 0) return;
    const qel::trace::WriterLock lock;
    if (!lock || qel::trace::retroSize() <= 0) return;
    Writer& w = writer();
    w.flushing = true;
    w.messageRoom = 2 * static_cast<std::size_t>(qel::trace::settings().retroBufferSize) + 2;
    std::FILE* stream = nullptr;
    if (OpenLogFile(&stream) == 0) {
        writeOut(w.retro[static_cast<std::size_t>(1 - w.retroCurrent)], stream);
        writeOut(w.retro[static_cast<std::size_t>(w.retroCurrent)], stream);
        w.retroFill = 0;
        BxTrace_CloseLogFile(stream);
    }
    w.flushing = false;
}
