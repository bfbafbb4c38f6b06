#include "base/Failure.h"

#include <cerrno>
#include <exception>
#include <ios>
#include <new>
#include <ostream>
#include <system_error>

#include "platform/Files.h"

namespace qel::cli {

std::string currentFailure(Context& context, const std::string& file) {
    const int number = errno;
    const std::string prefix = file.empty() ? "" : file + ": ";
    try {
        throw;
    } catch (const std::ios_base::failure&) {
        if (number == EPIPE) platform::endByClosedPipe();
        context.out.exceptions(std::ios::goodbit);
        context.out.clear(std::ios::badbit);
        return "the output cannot be written: " +
               std::error_code(number, std::generic_category()).message();
    } catch (const InputError& problem) {
        return problem.what();
    } catch (const std::bad_alloc&) {
        return prefix + kMemoryExhausted;
    } catch (const std::exception& problem) {
        return prefix + problem.what();
    } catch (int code) {
        return prefix + "the library gave up with code " + std::to_string(code) +
               "; its log may say why, see `qelutil log`";
    } catch (const char* text) {
        return prefix + text;
    }
}

}  // namespace qel::cli
