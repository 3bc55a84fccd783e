#include "platform/BitWidth.h"

#include <gtest/gtest.h>

TEST(BitWidth, CountsTheBitsThatSpellAValue) {
    EXPECT_EQ(qel::bitWidth(0), 0);
    EXPECT_EQ(qel::bitWidth(1), 1);
    EXPECT_EQ(qel::bitWidth(255), 8);
    EXPECT_EQ(qel::bitWidth(256), 9);
    EXPECT_EQ(qel::bitWidth(~std::uint64_t{0}), 64);
}
