#include "spatial/MortonCode.h"

#include <gtest/gtest.h>

#include "support/Samples.h"

TEST(MortonCode, InterleavesTheBitsOfColumnAndRow) {
    EXPECT_EQ(qel::mortonCode(0, 0), 0u);
    EXPECT_EQ(qel::mortonCode(0, 1), 1u);
    EXPECT_EQ(qel::mortonCode(1, 0), 2u);
    EXPECT_EQ(qel::mortonCode(0b101, 0b011), 0b100111u);
    EXPECT_EQ(qel::mortonCode(0xffff, 0), 0xaaaaaaaau);
    EXPECT_EQ(qel::mortonCode(0, 0xffff), 0x55555555u);
}

TEST(MortonCode, ColumnAndRowAreDecoded) {
    qel_test::Samples<float> samples(501);
    for (int n = 0; n < 20000; ++n) {
        const auto column = static_cast<std::uint32_t>(samples.integer(0, 0xffff));
        const auto row = static_cast<std::uint32_t>(samples.integer(0, 0xffff));
        const std::uint32_t code = qel::mortonCode(column, row);
        ASSERT_EQ(qel::columnOf(code), column);
        ASSERT_EQ(qel::rowOf(code), row);
    }
}

TEST(MortonCode, BitWidthCountsTheBitsThatSpellAValue) {
    EXPECT_EQ(qel::bitWidth(0), 0);
    EXPECT_EQ(qel::bitWidth(1), 1);
    EXPECT_EQ(qel::bitWidth(255), 8);
    EXPECT_EQ(qel::bitWidth(256), 9);
    EXPECT_EQ(qel::bitWidth(~std::uint64_t{0}), 64);
}
