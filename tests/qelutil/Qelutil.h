// Runs qelutil with its log kept in a folder of the test's own. One thread.
#ifndef QEL_TESTS_QELUTIL_QELUTIL_H
#define QEL_TESTS_QELUTIL_QELUTIL_H

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/Contains.h"
#include "support/Process.h"
#include "support/TempDir.h"

namespace qel::test {

class QelutilTest : public testing::Test {
  protected:
    ProcessResult run(const std::vector<std::string>& arguments,
                      ProcessOptions options = {}) const {
        options.environment.emplace("BX_ERR_LOG_FILE_PATH", state_.file("BxTrace.log"));
        options.environment.emplace("BX_OPTIONS_FILE_PATH", state_.file("BxOptions.opt"));
        return runProcess(QELUTIL_PROGRAM, arguments, options);
    }

    ProcessResult runWithInput(const std::vector<std::string>& arguments,
                               const std::string& input) const {
        ProcessOptions options;
        options.input = input;
        return run(arguments, options);
    }

    // A command that ends with `code` and a message that holds `says`.
    ProcessResult fails(int code, const std::vector<std::string>& arguments,
                        const std::string& says, const std::string& input = {}) const {
        ProcessResult result = runWithInput(arguments, input);
        EXPECT_EQ(result.exitCode, code) << says << "\n" << result.err;
        EXPECT_TRUE(contains(result.err, says));
        return result;
    }

    // The document that the command prints; a failure of the test when it is none.
    nlohmann::ordered_json runJson(const std::vector<std::string>& arguments,
                                   const std::string& input = {}) const {
        const ProcessResult result = runWithInput(arguments, input);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        auto document = nlohmann::ordered_json::parse(result.out, nullptr, false);
        EXPECT_FALSE(document.is_discarded()) << result.out;
        return document;
    }

    TempDir state_;
};

}  // namespace qel::test

#endif
