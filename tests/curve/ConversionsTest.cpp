// Vectors written from end to end: sizes, memory, and sources that are the vector itself.

#include "curve/Conversions.h"

#include <new>

#include <gtest/gtest.h>

#include "support/AllocationLimit.h"
#include "support/Curves.h"

namespace {

using namespace qel_test;

double square(std::size_t i) {
    return static_cast<double>(i * i);
}

TEST(FillVector, HasTheElementsAndNoMore) {
    for (const std::size_t before : {0u, 1u, 300u, 2000u}) {
        for (const std::size_t count : {0u, 1u, 2u, 255u, 256u, 257u, 1000u}) {
            Values values(before, -1.0);
            qel::fillVector(values, count, square);
            ASSERT_EQ(values.size(), count);
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(values[i], square(i)) << i << " of " << count;
            }
        }
    }
}

TEST(FillVector, ReadsTheVectorThatItWrites) {
    Values values(600, 3.0);
    const double* const from = values.data();
    qel::fillVector(values, values.size(), [=](std::size_t i) { return 2.0 * from[i]; });
    EXPECT_EQ(values, Values(600, 6.0));
}

TEST(FillVector, KeepsMemoryThatIsLargeEnough) {
    Values values(1000);
    const double* const memory = values.data();
    qel::fillVector(values, 10, square);
    qel::fillVector(values, 1000, square);
    EXPECT_EQ(values.data(), memory);
}

TEST(FillVector, LeavesTheVectorAsItWasIfMemoryRunsOut) {
    Values values(3, 1.0);
    bool failed = false;
    {
        const AllocationLimit limit(0);
        try {
            qel::fillVector(values, 100, square);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    }
    EXPECT_TRUE(failed);
    EXPECT_EQ(values, Values(3, 1.0));
}

TEST(FillVector, FillsOneComponentAndZerosTheOthers) {
    Points points(2, Point(7, 7, 7));
    qel::fillAlong(&Point::x, 3, square, points);
    EXPECT_EQ(points, Points({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}}));
    qel::fillAlong(&Point::y, 3, square, points);
    EXPECT_EQ(points, Points({{0, 0, 0}, {0, 1, 0}, {0, 4, 0}}));
    FloatPoints floats(9, FloatPoint(7, 7, 7));
    qel::fillAlong(
        &FloatPoint::z, 2, [](std::size_t i) { return static_cast<float>(i) + 1.0f; }, floats);
    EXPECT_EQ(floats, FloatPoints({{0, 0, 1}, {0, 0, 2}}));
}

TEST(FillVector, RoomIsTakenOnlyBeyondWhatIsThere) {
    Values values(10, 1.0);
    const double* const memory = values.data();
    Values none = qel::roomBeyond(values, 10);
    qel::adoptRoom(values, none);
    EXPECT_EQ(values.data(), memory);
    EXPECT_EQ(values.size(), 10u);
    Values room = qel::roomBeyond(values, 11);
    qel::adoptRoom(values, room);
    EXPECT_TRUE(values.empty());
    EXPECT_GE(values.capacity(), 11u);
}

} // namespace
