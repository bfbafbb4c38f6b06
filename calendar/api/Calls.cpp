#include "calendar/api/Calls.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>

#include "QelUtility/QelVersion.h"

namespace qel::calendar::api {

namespace {

// A plain array: it needs no destructor when a thread or the library ends.
thread_local char lastError[1024];

}  // namespace

int fail(qelcal_result result, std::string_view why) {
    // A cut within a character would leave an invalid text.
    std::size_t size = std::min(why.size(), sizeof lastError - 1);
    while (size < why.size() && size > 0 &&
           (static_cast<unsigned char>(why[size]) & 0xC0U) == 0x80U)
        --size;
    std::memcpy(lastError, why.data(), size);
    lastError[size] = '\0';
    return result;
}

int resultOfException() noexcept {
    try {
        throw;
    } catch (const Stopped&) {
        return fail(QELCAL_STOPPED, qelcal_result_text(QELCAL_STOPPED));
    } catch (const std::bad_alloc&) {
        return fail(QELCAL_OUT_OF_MEMORY, qelcal_result_text(QELCAL_OUT_OF_MEMORY));
    } catch (const std::exception& problem) {
        return fail(QELCAL_INTERNAL, problem.what());
    } catch (...) {
        return fail(QELCAL_INTERNAL, qelcal_result_text(QELCAL_INTERNAL));
    }
}

}  // namespace qel::calendar::api

const char* qelcal_version() {
    return QELUTILITY_VERSION;
}

const char* qelcal_last_error() {
    return qel::calendar::api::lastError;
}

const char* qelcal_result_text(int result) {
    switch (result) {
        case QELCAL_OK:
            return "done";
        case QELCAL_END:
            return "nothing more will come";
        case QELCAL_NEED_INPUT:
            return "the next piece of input is needed first";
        case QELCAL_INVALID_ARGUMENT:
            return "an argument is null or out of range";
        case QELCAL_OUT_OF_MEMORY:
            return "memory is exhausted";
        case QELCAL_STOPPED:
            return "a callback asked to stop";
        case QELCAL_WRONG_ORDER:
            return "the call does not fit here";
        case QELCAL_INVALID_TEXT:
            return "the text is not what it should be";
        case QELCAL_ABSENT:
            return "the entry does not have that";
        case QELCAL_INEXPRESSIBLE:
            return "the form cannot hold it";
        case QELCAL_UNKNOWN_NAME:
            return "the name is unknown";
        case QELCAL_INTERNAL:
            return "a fault of the library";
        default:
            return "";
    }
}
