#include "platform/LargePages.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

TEST(LargePages, MemoryAndWhatIsAroundItKeepItsValues) {
    constexpr std::size_t kLargePage = std::size_t{1} << 21, kAround = 4096;
    for (const std::size_t bytes :
         {std::size_t{0}, std::size_t{1}, 2 * kLargePage - 1, 2 * kLargePage, 5 * kLargePage + 7}) {
        for (const std::size_t begin : {kAround, kAround + 1, kAround + 63}) {
            std::vector<unsigned char> memory(begin + bytes + kAround, 0xa5);
            qel::adviseLargePages(memory.data() + begin, bytes);
            const auto kept = std::count(memory.begin(), memory.end(), 0xa5);
            EXPECT_EQ(static_cast<std::size_t>(kept), memory.size()) << bytes << " at " << begin;
        }
    }
}
