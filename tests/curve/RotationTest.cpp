// Points turned in groups: each as it is turned by itself.

#include "curve/Rotation.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/Bits.h"
#include "support/Curves.h"
#include "support/Paths.h"
#include "support/VectorUnits.h"

namespace {

using namespace qel_test;
using qel::rotatedPoint;
using qel::Rotation;

// No two entries alike, so that none can stand for another.
const Rotation kRotation = {{0.1, -0.7, 1.3},
                            {{0.36, 0.48, -0.8}, {-0.81, 0.6, 0.01}, {0.47, 0.65, 0.599}}};

void checkEachPoint(const Points& path) {
    Points expected;
    for (const Point& p : path) {
        expected.push_back(rotatedPoint(kRotation, p));
    }
    Points turned = path;
    rotatePoints(turned.data(), turned.size(), kRotation);
    EXPECT_TRUE(sameBitsInAll(turned, expected));
}

TEST(Rotation, TurnsEachPointAsByItself) {
    onEveryVectorUnit([] {
        RandomCurves random(71);
        for (std::size_t n = 1; n <= 70; ++n) {
            for (const NamedPath& path : pathsOfEveryKind(n, random)) {
                SCOPED_TRACE(path.name + ", " + std::to_string(n) + " points");
                checkEachPoint(path.points);
            }
        }
    });
}

// Wherever they lie on the lines of the cache; their neighbours stay.
TEST(Rotation, KeepsToItsPoints) {
    onEveryVectorUnit([] {
        RandomCurves random(72);
        Points path;
        for (std::size_t i = 0; i < 60; ++i) {
            path.push_back(random.gridPoint());
        }
        for (std::size_t first = 0; first < 12; ++first) {
            for (std::size_t count = 0; first + count <= path.size(); ++count) {
                Points expected = path;
                for (std::size_t i = first; i < first + count; ++i) {
                    expected[i] = rotatedPoint(kRotation, path[i]);
                }
                Points turned = path;
                rotatePoints(turned.data() + first, count, kRotation);
                ASSERT_TRUE(sameBitsInAll(turned, expected)) << first << ", " << count;
            }
        }
    });
}

// A coordinate that is no number reaches its own point alone.
TEST(Rotation, KeepsNoNumbersToTheirPoint) {
    onEveryVectorUnit([] {
        for (const double bad :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
            for (std::size_t at = 0; at < 3 * 20; ++at) {
                Points path(20, Point(1, 2, 3));
                Point& hit = path[at / 3];
                (at % 3 == 0 ? hit.x : at % 3 == 1 ? hit.y : hit.z) = bad;
                checkEachPoint(path);
            }
        }
    });
}

} // namespace
