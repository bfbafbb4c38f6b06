// The main() of every test program.
#include <gtest/gtest.h>

#include "support/TraceCapture.h"

int main(int argc, char** argv) {
    qel::test::redirectTrace();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
