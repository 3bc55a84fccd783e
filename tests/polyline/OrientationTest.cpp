#include "polyline/Orientation.h"

#include <cmath>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

namespace {

using qel::exactOrientation;
using qel::orientation;
using qel::PlanePoint;
using qel::sideOf;

__extension__ typedef __int128 WideInteger;

struct WholePoint {
    std::int64_t x;
    std::int64_t y;
};

WideInteger determinant(const WholePoint& a, const WholePoint& b, const WholePoint& c) {
    return static_cast<WideInteger>(b.x - a.x) * (c.y - a.y) -
           static_cast<WideInteger>(b.y - a.y) * (c.x - a.x);
}

PlanePoint scaled(const WholePoint& p, int exponent) {
    return {std::ldexp(static_cast<double>(p.x), exponent),
            std::ldexp(static_cast<double>(p.y), exponent)};
}

void check(const WholePoint& a, const WholePoint& b, const WholePoint& c) {
    const WideInteger expected = determinant(a, b, c);
    for (const int exponent : {0, 447, -500}) {
        const PlanePoint p = scaled(a, exponent), q = scaled(b, exponent), r = scaled(c, exponent);
        ASSERT_EQ(sideOf(p, q, r), (expected > 0) - (expected < 0));
        const double size =
            std::ldexp(static_cast<double>(static_cast<long double>(expected)), 2 * exponent);
        ASSERT_NEAR(orientation(p, q, r), size, 0x1p-51 * std::fabs(size));
        ASSERT_NEAR(exactOrientation(p, q, r), size, 0x1p-51 * std::fabs(size));
    }
}

// Coordinates of 53 bits, and third points beside the line by a few last bits.
TEST(Orientation, HasTheExactSignAndNearlyTheExactValue) {
    std::mt19937_64 random(9);
    std::uniform_int_distribution<std::int64_t> coordinate(-(std::int64_t{1} << 52),
                                                           std::int64_t{1} << 52);
    std::uniform_int_distribution<std::int64_t> small(-3, 3);
    std::uniform_real_distribution<double> fraction(-0.5, 1.0);
    for (int round = 0; round < 20000; ++round) {
        const WholePoint a{coordinate(random), coordinate(random)};
        const WholePoint b = round % 4 == 3 ? WholePoint{a.x + small(random), a.y + small(random)}
                                            : WholePoint{coordinate(random), coordinate(random)};
        const double t = fraction(random) / 2;
        const auto along = [t](std::int64_t from, std::int64_t to) {
            return from + static_cast<std::int64_t>(t * static_cast<double>(to - from));
        };
        const WholePoint near{along(a.x, b.x) + small(random), along(a.y, b.y) + small(random)};
        check(a, b, round % 2 == 0 ? near : WholePoint{coordinate(random), coordinate(random)});
    }
}

TEST(Orientation, OfThreePointsOnALineIsZero) {
    std::mt19937_64 random(10);
    std::uniform_int_distribution<std::int64_t> coordinate(-(1 << 20), 1 << 20);
    std::uniform_int_distribution<std::int64_t> factor(-(1 << 30), 1 << 30);
    for (int round = 0; round < 2000; ++round) {
        const WholePoint step{coordinate(random), coordinate(random)};
        const std::int64_t i = factor(random), j = factor(random), k = factor(random);
        const WholePoint a{i * step.x, i * step.y}, b{j * step.x, j * step.y};
        check(a, b, {k * step.x, k * step.y});
        check(a, b, a);
        check(a, b, b);
        check(a, a, b);
    }
}

TEST(Orientation, DecidesBesideNumbersOfQuiteAnotherSize) {
    const double tiny = 0x1p-480, huge = 0x1p480;
    EXPECT_EQ(sideOf({0, 0}, {huge, 0}, {1, tiny}), 1);
    EXPECT_EQ(sideOf({0, 0}, {huge, 0}, {huge, -tiny}), -1);
    EXPECT_EQ(sideOf({-huge, -huge}, {huge, huge}, {tiny, 0}), -1);
    EXPECT_EQ(sideOf({-huge, -huge}, {huge, huge}, {tiny, tiny}), 0);
    EXPECT_EQ(sideOf({0, 0}, {tiny, tiny}, {huge, std::nextafter(huge, 0.0)}), -1);
}

} // namespace
