#include "spatial/GridCells.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Samples.h"

using qel::GridCells;
using qel_test::sameBits;
using qel_test::Samples;

namespace {

struct Cell {
    std::uint32_t number;
    float low, high;
};

// Chooses between the halves from the whole range down.
Cell descend(float low, float high, std::uint32_t count, float x) {
    Cell cell = {0, low, high};
    for (std::uint32_t half = count / 2; half > 0; half /= 2) {
        const float sum = cell.low + cell.high;
        const float cut = static_cast<float>(0.5 * static_cast<double>(sum));
        const bool isHigh = x >= cut;
        cell.number += isHigh ? half : 0;
        (isHigh ? cell.low : cell.high) = cut;
    }
    return cell;
}

} // namespace

TEST(GridCells, CellsMatchReferenceBitForBit) {
    Samples<float> samples(503);
    int even = 0;
    for (int n = 0; n < 3000; ++n) {
        const float a = samples.any(), b = samples.any();
        const float low = a < b ? a : b, high = a < b ? b : a;
        const int levels = samples.integer(1, 12);
        const GridCells grid(low, high, levels);
        even += grid.isEven() ? 1 : 0;
        for (int i = 0; i < 50; ++i) {
            float x = i % 2 == 0
                          ? low + (high - low) * std::abs(samples.plain()) / 10.0f
                          : grid.edge(static_cast<std::uint32_t>(samples.integer(0, 1 << levels)));
            x = i % 3 == 0 ? std::nextafter(x, samples.plain()) : x;
            const Cell cell = descend(low, high, grid.count(), x);
            ASSERT_EQ(grid.unevenCells().cellOf(x), cell.number) << low << " " << high << " " << x;
            ASSERT_TRUE(sameBits(grid.edge(cell.number), cell.low));
            ASSERT_TRUE(sameBits(grid.edge(cell.number + 1), cell.high));
            if (grid.isEven()) {
                ASSERT_EQ(grid.evenCells().cellOf(x), cell.number)
                    << low << " " << high << " " << x;
            }
            ASSERT_LT(grid.evenCells().guessOf(x), grid.count());
        }
    }
    EXPECT_GT(even, 1000);
    EXPECT_LT(even, 2900);
}
