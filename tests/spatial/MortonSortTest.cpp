#include "spatial/MortonSort.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/SampledCloud.h"
#include "support/VectorUnits.h"

using qel::PlanePoint;
using qel::QuadGrid;
using qel_test::SampledCloud;
using qel_test::Samples;

namespace {

std::uint32_t codeOf(const QuadGrid& grid, float x, float y) {
    return qel::mortonCode(grid.x().unevenCells().cellOf(x), grid.y().unevenCells().cellOf(y));
}

void checkSorted(const std::vector<PlanePoint>& sorted, const qel::CellStarts& starts,
                 const QuadGrid& grid) {
    ASSERT_EQ(starts[std::size_t{1} << grid.bits()], sorted.size());
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        const std::uint32_t code = codeOf(grid, sorted[i].x, sorted[i].y);
        ASSERT_GE(i, starts[code]);
        ASSERT_LT(i, starts[code + 1]);
        if (i > starts[code]) {
            ASSERT_LT(sorted[i - 1].index, sorted[i].index);
        }
    }
}

void checkSort(const SampledCloud& cloud, int levels) {
    const std::size_t count = cloud.points.size();
    std::vector<PlanePoint> points(count), sorted(count), scratch(count);
    for (std::size_t i = 0; i < count; ++i) {
        points[i] = qel::planePoint(cloud.points[i], i);
    }
    qel::QuadNode root;
    root.rectangle = qel::boxOf(points.data(), count);
    const QuadGrid grid(root, levels);
    std::vector<std::uint16_t> codes(count);
    checkSorted(sorted, qel::mortonSort(cloud.points, grid, codes.data(), sorted.data()), grid);
    const qel::CellStarts starts =
        qel::mortonSort(points.data(), count, grid, codes.data(), scratch.data());
    checkSorted(points, starts, grid);
}

} // namespace

TEST(MortonSort, MatchesReferenceBitForBit) {
    Samples<float> samples(504);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        for (int n = 0; n < 60 && !HasFatalFailure(); ++n) {
            const SampledCloud cloud(kind, samples, samples.integer(1, 1000));
            const int levels = samples.integer(1, 7);
            qel_test::onEveryVectorUnit([&] { checkSort(cloud, levels); });
        }
    }
}
