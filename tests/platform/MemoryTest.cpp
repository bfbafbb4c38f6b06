// The string allocator: zero-filled, growing in place or by moving, and honest about its sizes.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/Memory.h"

namespace {

using namespace qel::platform;

TEST(StringMemory, GrowsWithItsContentAndZeroFills) {
    char* block = stringAlloc(64);
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 64; ++i) ASSERT_EQ(block[i], 0);
    EXPECT_GE(stringBlockSize(block), 64U);
    std::memset(block, 'x', 64);
    block = stringRealloc(block, 4096);
    ASSERT_NE(block, nullptr);
    EXPECT_GE(stringBlockSize(block), 4096U);
    for (int i = 0; i < 64; ++i) ASSERT_EQ(block[i], 'x');
    // What the first block was really given beyond 64 bytes was never written, so all of it is
    // zero.
    for (int i = 64; i < 4096; ++i) ASSERT_EQ(block[i], 0) << i;
    stringFree(block);
    stringFree(nullptr);
    EXPECT_EQ(stringBlockSize(nullptr), 0U);
}

}  // namespace
