// The search of crossings finds what trying every pair of edges finds.

#include "polyline/CrossingPairs.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <qel/CurveCrossings.h>

#include "polyline/CrossingList.h"
#include "polyline/CurvePath.h"
#include "support/CurveShapes.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::PlanePath;

using Pairs = std::set<std::pair<std::size_t, std::size_t>>;

bool overlap(const PlanePath& a, std::size_t i, const PlanePath& b, std::size_t j) {
    const auto [p, q, r, s] = std::make_tuple(a[i], a[i + 1], b[j], b[j + 1]);
    return std::max(p.x, q.x) >= std::min(r.x, s.x) && std::max(r.x, s.x) >= std::min(p.x, q.x) &&
           std::max(p.y, q.y) >= std::min(r.y, s.y) && std::max(r.y, s.y) >= std::min(p.y, q.y);
}

Pairs pairsBySearch(const PlanePath& a, const PlanePath& b) {
    const qel::EdgeBvh<2> bvh(b.vertices());
    std::vector<qel::RunPair> found;
    Pairs pairs;
    std::size_t count = 0;
    for (std::size_t first = 0; first < a.edges();) {
        first = findCrossingPairs(a.vertices(), first, b.vertices(), bvh, found);
        for (const qel::RunPair& runs : found) {
            for (std::size_t bit = 0; bit < 64; ++bit) {
                if ((runs.pairs >> bit & 1U) != 0) {
                    pairs.emplace(runs.first + bit / 8, runs.firstOther + bit % 8);
                    ++count;
                }
            }
        }
    }
    EXPECT_EQ(count, pairs.size()) << "a pair twice";
    return pairs;
}

TEST(CrossingPairs, AreAllWhoseBoxesOverlapMatchesReference) {
    onEveryVectorUnit([] {
        for (const CurveShape& shape : curveShapes()) {
            if (std::string(shape.name) == "nan_among") {
                continue;
            }
            for (const auto& [n, m] : {std::pair<std::size_t, std::size_t>{2, 2},
                                       {9, 10},
                                       {130, 70},
                                       {17, 600},
                                       {600, 9}}) {
                SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(n));
                const PlanePath a(shape.make(n), 1.0), b(shape.makeBeside(m), 1.0);
                Pairs expected;
                for (std::size_t i = 0; i < a.edges(); ++i) {
                    for (std::size_t j = 0; j < b.edges(); ++j) {
                        if (overlap(a, i, b, j)) {
                            expected.emplace(i, j);
                        }
                    }
                }
                ASSERT_EQ(pairsBySearch(a, b), expected);
            }
        }
    });
}

// Either curve may be the one that is searched in.
TEST(CrossingPairs, TheOrderOfTheCurvesExchangesTheirPlaces) {
    for (const CurveShape& shape : curveShapes()) {
        if (std::string(shape.name) == "nan_among") {
            continue;
        }
        SCOPED_TRACE(shape.name);
        const CurvePoints a = shape.make(300), b = shape.makeBeside(150);
        const auto crossings = qel::findCrossings(a, b), exchanged = qel::findCrossings(b, a);
        ASSERT_EQ(crossings.size(), exchanged.size());
        std::multiset<std::pair<std::int64_t, std::int64_t>> edges, exchangedEdges;
        for (std::size_t k = 0; k < crossings.size(); ++k) {
            edges.emplace(crossings[k].edge, crossings[k].otherEdge);
            exchangedEdges.emplace(exchanged[k].otherEdge, exchanged[k].edge);
        }
        EXPECT_EQ(edges, exchangedEdges);
    }
}

} // namespace
