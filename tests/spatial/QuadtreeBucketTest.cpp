#include <qel/QuadtreeBucket.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "spatial/ReferenceSearch.h"
#include "spatial/SampledCloud.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/Samples.h"
#include "support/Shapes.h"

using qel::QuadtreeBucket;
using qel_test::ReferenceSearch;
using qel_test::sameBits;
using qel_test::SampledCloud;
using qel_test::Samples;
using qel_test::throwsInternal;
using qel_test::throwsInvalid;
using Point = qel::TripletBase<float>;
using Points = std::vector<Point>;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kMax = std::numeric_limits<float>::max();

QuadtreeBucket bucketOf(const Points& points, int maxDepth = 10, int capacity = 10) {
    QuadtreeBucket bucket(maxDepth, capacity);
    bucket.construct(points);
    return bucket;
}

// The index found, or ReferenceSearch::kNone for a refusal.
std::size_t found(QuadtreeBucket& bucket, const Point& query) {
    try {
        return bucket.findNearestPoint(query);
    } catch (const qel::data::invalid&) {
        return ReferenceSearch::kNone;
    }
}

// Compares one query with the reference, and the state left behind.
void checkQuery(QuadtreeBucket& bucket, ReferenceSearch& reference, const Points& points,
                const Point& query) {
    SCOPED_TRACE(::testing::Message() << "query " << query);
    const std::size_t expected = reference.find(query);
    ASSERT_EQ(found(bucket, query), expected);
    ASSERT_EQ(bucket.getBestDistance(), reference.bestDistance());
    if (expected == ReferenceSearch::kNone) {
        ASSERT_EQ(bucket.getBestObject(), nullptr);
    } else {
        ASSERT_EQ(bucket.getBestObject()->index, expected);
        ASSERT_TRUE(sameBits(bucket.getBestObject()->point.x, points[expected].x));
        ASSERT_TRUE(sameBits(bucket.getBestObject()->point.y, points[expected].y));
        ASSERT_TRUE(sameBits(bucket.getBestObject()->point.z, points[expected].z));
    }
}

void checkQueries(const Points& points, int maxDepth, int capacity, const Points& queries) {
    SCOPED_TRACE(::testing::Message()
                 << points.size() << " points, limits " << maxDepth << " and " << capacity);
    QuadtreeBucket bucket = bucketOf(points, maxDepth, capacity);
    ReferenceSearch reference(points, maxDepth, capacity);
    ASSERT_EQ(bucket.getMaxDepthReached(), reference.maxDepthReached());
    for (const Point& query : queries) {
        checkQuery(bucket, reference, points, query);
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

void checkSampledClouds(const char* name, unsigned seed, int clouds, int mostPoints, int queries) {
    Samples<float> samples(seed);
    for (int n = 0; n < clouds && !::testing::Test::HasFatalFailure(); ++n) {
        SCOPED_TRACE(::testing::Message() << name << ", cloud " << n);
        const SampledCloud cloud(name, samples, samples.integer(1, mostPoints));
        Points probes;
        for (int i = 0; i < queries; ++i) {
            probes.push_back(cloud.query(samples));
        }
        checkQueries(cloud.points, samples.integer(0, 14), samples.integer(0, 12), probes);
    }
}

} // namespace

// -- Stated cases ----

TEST(QuadtreeBucket, EmptyListIsRefused) {
    QuadtreeBucket bucket;
    EXPECT_THAT([&] { bucket.construct({}); },
                throwsInternal("Quadtree", "construct", "Vector of verticies empty."));
    EXPECT_THAT([&] { bucket.findNearestPoint(Point(0, 0, 0)); },
                throwsInternal("Quadtree", "findNearestPoint", "No points to search."));
}

TEST(QuadtreeBucket, RefusedListLeavesTheEarlierPoints) {
    QuadtreeBucket bucket = bucketOf({Point(1, 1, 0), Point(2, 2, 0)});
    EXPECT_THAT([&] { bucket.construct({}); },
                throwsInternal("Quadtree", "construct", "Vector of verticies empty."));
    EXPECT_EQ(bucket.findNearestPoint(Point(3, 3, 0)), 1u);
}

TEST(QuadtreeBucket, WithoutPointsQueriesAreRefused) {
    QuadtreeBucket bucket;
    EXPECT_THAT([&] { bucket.findNearestPoint(Point(0, 0, 0)); },
                throwsInternal("Quadtree", "findNearestPoint", "No points to search."));
    EXPECT_EQ(bucket.getBestObject(), nullptr);
}

TEST(QuadtreeBucket, OnePointIsAlwaysNearest) {
    QuadtreeBucket bucket = bucketOf({Point(1, 2, 3)});
    for (const Point& query : {Point(1, 2, 3), Point(0, 0, 0), Point(-1e6f, 1e6f, 0)}) {
        EXPECT_EQ(bucket.findNearestPoint(query), 0u);
    }
}

TEST(QuadtreeBucket, FirstOfEqualDistancesInTheLeafWins) {
    QuadtreeBucket bucket = bucketOf({Point(0, 0, 0), Point(1, 0, 0), Point(0, 1, 0)});
    EXPECT_EQ(bucket.findNearestPoint(Point(0.4f, 0.4f, 0)), 0u);
    EXPECT_EQ(bucket.findNearestPoint(Point(0.5f, 0, 0)), 0u);
    EXPECT_EQ(bucket.getBestDistance(), 0.25f);
}

TEST(QuadtreeBucket, HeightDoesNotMatter) {
    QuadtreeBucket bucket = bucketOf({Point(0, 0, 100), Point(1, 0, 0)});
    EXPECT_EQ(bucket.findNearestPoint(Point(0, 0, 0)), 0u);
    EXPECT_EQ(bucket.findNearestPoint(Point(0, 0, kNan)), 0u);
    EXPECT_EQ(bucket.getBestObject()->point.z, 100.0f);
}

TEST(QuadtreeBucket, PointsFoundHaveTheHeightsGiven) {
    for (const float last : {3.0f, -3.0f, kNan, 0.0f, -0.0f}) {
        for (const float others : {3.0f, 0.0f}) {
            Points points;
            for (int i = 0; i < 40; ++i) {
                points.emplace_back(static_cast<float>(i), 0.0f, i < 39 ? others : last);
            }
            QuadtreeBucket bucket = bucketOf(points);
            for (const Point& p : points) {
                bucket.findNearestPoint(p);
                ASSERT_TRUE(sameBits(bucket.getBestObject()->point.z, p.z)) << last << others;
            }
        }
    }
}

TEST(QuadtreeBucket, PointsFoundHaveTheBitsGiven) {
    QuadtreeBucket bucket = bucketOf({Point(-0.0f, 0.0f, 1), Point(0.0f, -0.0f, 1)});
    bucket.findNearestPoint(Point(0, 0, 0));
    EXPECT_EQ(bucket.getBestObject()->index, 0u);
    EXPECT_TRUE(sameBits(bucket.getBestObject()->point.x, -0.0f));
    EXPECT_TRUE(sameBits(bucket.getBestObject()->point.y, 0.0f));
}

TEST(QuadtreeBucket, EleventhPointSplitsTheRoot) {
    Points points;
    for (int i = 0; i < 10; ++i) {
        points.emplace_back(static_cast<float>(i), static_cast<float>(i % 3), 0.0f);
    }
    EXPECT_EQ(bucketOf(points).getMaxDepthReached(), 0);
    points.emplace_back(10.0f, 0.0f, 0.0f);
    QuadtreeBucket bucket = bucketOf(points);
    EXPECT_EQ(bucket.getMaxDepthReached(), 1);
    EXPECT_EQ(bucket.findNearestPoint(Point(1e4f, 0, 0)), 10u);
    EXPECT_EQ(bucket.findNearestPoint(Point(-1e4f, 0, 0)), 0u);
}

TEST(QuadtreeBucket, SplitFallsOnTheMiddleOfTheRootWithItsMargins) {
    // Points 4 and 6 are equally far from the query 5, which lies on the cut and so in the high
    // half; 6 wins although 4 comes first in the list.
    Points points;
    for (int i = 0; i <= 10; ++i) {
        points.emplace_back(static_cast<float>(i == 5 ? 4 : i), 0.0f, 0.0f);
    }
    QuadtreeBucket bucket = bucketOf(points);
    EXPECT_EQ(bucket.findNearestPoint(Point(5, 0, 0)), 6u);
    EXPECT_EQ(bucket.findNearestPoint(Point(std::nextafter(5.0f, 0.0f), 0, 0)), 4u);
    points.pop_back(); // one leaf again
    QuadtreeBucket unsplit = bucketOf(points);
    EXPECT_EQ(unsplit.findNearestPoint(Point(5, 0, 0)), 4u);
}

TEST(QuadtreeBucket, IdenticalPointsEndInOneDeepLeaf) {
    const Points points(20, Point(1, 1, 0));
    QuadtreeBucket bucket = bucketOf(points);
    EXPECT_EQ(bucket.getMaxDepthReached(), 10);
    EXPECT_EQ(bucket.findNearestPoint(Point(1, 1, 0)), 0u);
    EXPECT_EQ(bucket.findNearestPoint(Point(-5, 7, 0)), 0u);
}

// -- Life of a bucket ----

TEST(QuadtreeBucket, SecondListReplacesTheFirst) {
    QuadtreeBucket bucket = bucketOf({Point(0, 0, 0), Point(9, 9, 0), Point(3, 3, 0)});
    bucket.findNearestPoint(Point(3, 3, 0));
    bucket.construct({Point(5, 5, 0), Point(9, 9, 0)});
    EXPECT_EQ(bucket.getBestObject(), nullptr);
    EXPECT_EQ(bucket.findNearestPoint(Point(3, 3, 0)), 0u);
}

TEST(QuadtreeBucket, IsMovedNotCopied) {
    EXPECT_FALSE(std::is_copy_constructible<QuadtreeBucket>::value);
    EXPECT_FALSE(std::is_copy_assignable<QuadtreeBucket>::value);
    EXPECT_TRUE(std::is_nothrow_move_constructible<QuadtreeBucket>::value);
    EXPECT_TRUE(std::is_nothrow_move_assignable<QuadtreeBucket>::value);

    QuadtreeBucket source(3, 2);
    source.construct({Point(0, 0, 0), Point(1, 0, 0)});
    source.findNearestPoint(Point(1, 0, 0));
    QuadtreeBucket target(std::move(source));
    EXPECT_EQ(target.getBestObject()->index, 1u);
    EXPECT_EQ(target.findNearestPoint(Point(0.9f, 0, 0)), 1u);
    EXPECT_EQ(target.getMaxDepth(), 3);
    EXPECT_EQ(target.getBucketCapacity(), 2);
    EXPECT_EQ(source.getMaxDepth(), 3);
    EXPECT_EQ(source.getBestObject(), nullptr);
    EXPECT_THAT([&] { source.findNearestPoint(Point(0, 0, 0)); },
                throwsInternal("Quadtree", "findNearestPoint", "No points to search."));
    source.construct({Point(4, 4, 0)}); // may be filled again
    EXPECT_EQ(source.findNearestPoint(Point(0, 0, 0)), 0u);

    QuadtreeBucket assigned;
    assigned.construct({Point(7, 7, 0)});
    assigned.findNearestPoint(Point(7, 7, 0));
    const QuadtreeBucket& left = target;
    assigned = std::move(target);
    EXPECT_EQ(assigned.getMaxDepth(), 3);
    EXPECT_EQ(assigned.getBucketCapacity(), 2);
    EXPECT_EQ(assigned.getBestObject()->index, 1u);
    EXPECT_EQ(assigned.findNearestPoint(Point(0.9f, 0, 0)), 1u);
    EXPECT_EQ(left.getMaxDepth(), 3);
    EXPECT_EQ(left.getBucketCapacity(), 2);
    EXPECT_EQ(left.getBestObject(), nullptr);
}

TEST(QuadtreeBucket, DefaultLimitsAreTen) {
    const QuadtreeBucket bucket;
    EXPECT_EQ(bucket.getMaxDepth(), 10);
    EXPECT_EQ(bucket.getBucketCapacity(), 10);
    EXPECT_EQ(bucket.getMaxDepthReached(), 0);
    EXPECT_EQ(bucket.getBestDistance(), kMax);
}

TEST(QuadtreeObject, HoldsAPointAndItsPosition) {
    const qel::QuadtreeObject empty;
    EXPECT_EQ(empty.point, Point());
    EXPECT_EQ(empty.index, 0u);
    const qel::QuadtreeObject object(Point(1, 2, 3), 7);
    const qel::QuadtreeObject copy(object);
    EXPECT_EQ(copy.point, Point(1, 2, 3));
    EXPECT_EQ(copy.index, 7u);
}

TEST(QuadtreeQuad, IsAnEmptyLeafWhenBuiltAndIsCopiedShallowly) {
    qel::QuadtreeQuad quad;
    EXPECT_EQ(quad.splitType, 2);
    EXPECT_EQ(quad.lowChild, nullptr);
    EXPECT_EQ(quad.highChild, nullptr);
    EXPECT_EQ(quad.parent, nullptr);
    EXPECT_TRUE(quad.objects.empty());
    qel::QuadtreeQuad child;
    const qel::QuadtreeObject object(Point(1, 2, 3), 7);
    quad.xmax = 4.0f;
    quad.depth = 3;
    quad.splitType = qel::QuadtreeQuad::splitAcrossY;
    quad.lowChild = &child;
    quad.objects.push_back(&object);
    qel::QuadtreeQuad copy;
    copy = quad;
    EXPECT_EQ(copy.xmax, 4.0f);
    EXPECT_EQ(copy.depth, 3);
    EXPECT_EQ(copy.splitType, 1);
    EXPECT_EQ(copy.lowChild, &child);
    ASSERT_EQ(copy.objects.size(), 1u);
    EXPECT_EQ(copy.objects[0], &object);
}

// -- What cannot be found ----

TEST(QuadtreeBucket, UnreachableQueriesAreRefused) {
    QuadtreeBucket bucket = bucketOf({Point(0, 0, 0), Point(1, 1, 0)});
    for (const Point& query : {Point(kNan, 0, 0), Point(0, kNan, 0), Point(kInfinity, 0, 0),
                               Point(0, -kInfinity, 0), Point(1e30f, 0, 0)}) {
        bucket.findNearestPoint(Point(0, 0, 0));
        EXPECT_THAT(
            [&] { bucket.findNearestPoint(query); },
            throwsInvalid("Quadtree", "findNearestPoint", "No point at a finite distance."));
        EXPECT_EQ(bucket.getBestObject(), nullptr);
        EXPECT_EQ(bucket.getBestDistance(), kMax);
    }
}

TEST(QuadtreeBucket, NonFinitePointsAreNeverFound) {
    QuadtreeBucket bucket = bucketOf({Point(kNan, 0, 0), Point(0, kInfinity, 0), Point(5, 5, 0)});
    EXPECT_EQ(bucket.findNearestPoint(Point(0, 0, 0)), 2u);
    QuadtreeBucket none = bucketOf({Point(kNan, kNan, 0), Point(kInfinity, kInfinity, 0)});
    EXPECT_THAT([&] { none.findNearestPoint(Point(0, 0, 0)); },
                throwsInvalid("Quadtree", "findNearestPoint", "No point at a finite distance."));
}

// -- Any limits ----

TEST(QuadtreeBucket, LimitsBeyondReasonNeitherHangNorExhaustMemory) {
    Samples<float> samples(401);
    Points points = SampledCloud("even", samples, 500).points;
    points.insert(points.end(), 50, points[3]);
    constexpr int limits[] = {std::numeric_limits<int>::min(), -1, 0, 1, 100000,
                              std::numeric_limits<int>::max()};
    for (const int maxDepth : limits) {
        for (const int capacity : limits) {
            QuadtreeBucket bucket = bucketOf(points, maxDepth, capacity);
            for (std::size_t i = 0; i < 500; ++i) {
                ASSERT_EQ(bucket.findNearestPoint(points[i]), i);
            }
        }
    }
}

TEST(QuadtreeBucket, HugeDepthAnswersLikeEnoughDepth) {
    // Equal points split for ever; from some depth on nothing changes any more, which the reference
    // reaches slowly.
    Samples<float> samples(402);
    for (const char* kind : qel_test::kCloudKinds) {
        SCOPED_TRACE(kind);
        const SampledCloud cloud(kind, samples, samples.integer(1, 12));
        const int capacity = samples.integer(0, 2);
        QuadtreeBucket bucket = bucketOf(cloud.points, 100000, capacity);
        ReferenceSearch reference(cloud.points, 640, capacity);
        for (int i = 0; i < 12; ++i) {
            checkQuery(bucket, reference, cloud.points, cloud.query(samples));
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

TEST(QuadtreeBucket, ManyIdenticalPointsAreFoundAtOnce) {
    const Points points(200000, Point(2, 3, 0));
    QuadtreeBucket bucket = bucketOf(points, 1000, 10);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(bucket.findNearestPoint(Point(static_cast<float>(i), 0, 0)), 0u);
    }
}

// -- Against the reference ----

TEST(QuadtreeBucket, SmallCloudsMatchReferenceBitForBit) {
    unsigned seed = 411;
    for (const char* kind : qel_test::kCloudKinds) {
        checkSampledClouds(kind, seed++, 600, 200, 100);
        checkSampledClouds(kind, seed++, 300, 12, 50);
    }
}

TEST(QuadtreeBucket, LargeCloudsMatchReferenceBitForBit) {
    checkSampledClouds("even", 437, 4, 60000, 2000);
    checkSampledClouds("lattice", 438, 4, 20000, 200);
    checkSampledClouds("circle", 439, 8, 4000, 100);
    checkSampledClouds("not finite", 440, 8, 4000, 100);
}

TEST(QuadtreeBucket, NamedShapesMatchReferenceBitForBit) {
    constexpr std::size_t kSizes[] = {1, 2, 10, 17, 40, 300, 3000};
    for (const qel_test::CloudShape& shape : qel_test::cloudShapes()) {
        SCOPED_TRACE(shape);
        for (const std::size_t size : kSizes) {
            const Points points = shape.make(size);
            for (const auto& queries : {qel_test::queriesAnywhere(shape, points, 40),
                                        qel_test::queriesNearPoints(shape, points, 40),
                                        qel_test::queriesFarOff(shape, points, 40)}) {
                checkQueries(points, 10, 10, queries);
                checkQueries(points, 24, 16, queries);
            }
        }
    }
}

// Clouds beyond some thousand points, whose queries may start below the root of the index; points
// in some cells of its grid only, so that many queries start in empty ones.
TEST(QuadtreeBucket, EntriesBelowTheRootMatchReferenceBitForBit) {
    Samples<float> samples(420);
    for (int n = 0; n < 12; ++n) {
        Points points;
        for (int i = 0; i < 6000; ++i) {
            const auto place = static_cast<float>(samples.integer(0, 3));
            const float size = n % 2 == 0 ? 1.0f : 0.01f;
            points.emplace_back(7.0f * place + size * samples.plain(),
                                n % 3 == 0 ? static_cast<float>(samples.integer(-20, 20))
                                           : size * samples.plain(),
                                0.0f);
        }
        Points queries;
        for (int i = 0; i < 1500; ++i) {
            queries.emplace_back(2.0f * samples.plain() + 10.0f, 2.0f * samples.plain(), 0.0f);
            queries.push_back(points[static_cast<std::size_t>(4 * i)] / 2.0f);
        }
        checkQueries(points, 10 + n, 10, queries);
        ASSERT_FALSE(HasFatalFailure()) << "cloud " << n;
    }
}

// Clouds with more points in a cell of the grid than a block takes, at every scale.
TEST(QuadtreeBucket, CrowdedCellsMatchReferenceBitForBit) {
    Samples<float> samples(421);
    for (int n = 0; n < 24; ++n) {
        Points points;
        const auto power = [&] { return std::pow(0.5f, 2.0f * std::abs(samples.plain())); };
        const auto wholePower = [&] {
            return std::pow(0.5f, static_cast<float>(samples.integer(0, 60)));
        };
        for (int i = 0; i < 3000; ++i) {
            points.emplace_back(n % 2 == 0 ? samples.plain() : wholePower(),
                                n % 3 == 0 ? wholePower() : power(), 0.0f);
        }
        Points queries;
        for (int i = 0; i < 500; ++i) {
            queries.push_back(points[static_cast<std::size_t>(6 * i)] * 1.5f);
            queries.emplace_back(wholePower(), 0.75f * wholePower(), 0.0f);
        }
        checkQueries(points, 8 + n, 1 + n, queries);
        ASSERT_FALSE(HasFatalFailure()) << "cloud " << n;
    }
}

// Two blocks of points beside each power of two: most nodes of the index hold so few that there are
// more of them than were set aside.
TEST(QuadtreeBucket, MoreNodesThanExpectedMatchReferenceBitForBit) {
    Samples<float> samples(422);
    Points points, queries;
    for (int exponent = 0; exponent < 60; ++exponent) {
        const auto near = [&] {
            return std::ldexp(1.0f + 0.01f * (samples.plain() + 10.0f), -exponent);
        };
        for (int i = 0; i < 24; ++i) {
            points.emplace_back(near(), near(), 0.0f);
            queries.emplace_back(near(), 1.5f * near(), 0.0f);
        }
    }
    checkQueries(points, 24, 10, queries);
}

// The last points lie at one place and make a single block: the index catches up with the points
// that it is built of.
TEST(QuadtreeBucket, ManyPointsAtTheLastPlaceMatchReferenceBitForBit) {
    Samples<float> samples(423);
    const SampledCloud cloud("even", samples, 3000);
    Points points = cloud.points, queries;
    points.insert(points.end(), 2500, Point(11, 11, 0));
    for (int i = 0; i < 1000; ++i) {
        queries.push_back(cloud.query(samples));
    }
    checkQueries(points, 12, 10, queries);
}

// Places each of which thickens at every scale, so that most blocks hold one point: the index takes
// more memory than is set aside.
TEST(QuadtreeBucket, HardlyFilledBlocksMatchReferenceBitForBit) {
    Samples<float> samples(424);
    Points points, queries;
    for (int place = 0; place < 400; ++place) {
        const float x = static_cast<float>(place % 20), y = static_cast<float>(place / 20);
        for (int exponent = 1; exponent < 24; ++exponent) {
            const float step = std::ldexp(1.0f, -exponent);
            points.emplace_back(x + step, y + step, 0.0f);
        }
        queries.emplace_back(x + samples.plain() / 20.0f, y + samples.plain() / 20.0f, 0.0f);
    }
    checkQueries(points, 12, 10, queries);
}

TEST(QuadtreeBucket, FindsTheLeastDistance) {
    Samples<float> samples(419);
    for (int n = 0; n < 200; ++n) {
        const Points points = SampledCloud("even", samples, samples.integer(1, 2000)).points;
        QuadtreeBucket bucket = bucketOf(points, 24, 8);
        for (int i = 0; i < 100; ++i) {
            const Point query(samples.plain(), samples.plain(), 0.0f);
            float least = kMax;
            for (const Point& p : points) {
                const float dx = query.x - p.x, dy = query.y - p.y;
                least = std::min(least, dx * dx + dy * dy);
            }
            bucket.findNearestPoint(query);
            ASSERT_EQ(bucket.getBestDistance(), least);
        }
    }
}
