#include "spatial/Partition.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/Samples.h"

using qel::PlanePoint;

TEST(Partition, MatchesReferenceBitForBit) {
    qel_test::Samples<float> samples(502);
    for (int n = 0; n < 3000; ++n) {
        std::vector<PlanePoint> points;
        for (int i = samples.integer(0, 60); i > 0; --i) {
            points.push_back({samples.any(), samples.any(), static_cast<std::uint32_t>(i)});
        }
        const float cut = samples.any();
        const bool acrossX = n % 2 == 0;
        std::vector<PlanePoint> expected = points, scratch(points.size());
        const auto middle =
            std::stable_partition(expected.begin(), expected.end(), [&](const PlanePoint& p) {
                return !((acrossX ? p.x : p.y) >= cut);
            });
        const std::size_t low =
            qel::partition(points.data(), points.size(), acrossX, cut, scratch.data());
        ASSERT_EQ(low, static_cast<std::size_t>(middle - expected.begin()));
        for (std::size_t i = 0; i < points.size(); ++i) {
            ASSERT_EQ(points[i].index, expected[i].index);
        }
    }
}
