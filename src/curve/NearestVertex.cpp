// The nearest vertex of a polyline.
//
// Long polylines are searched block by block. A block is only asked for its smallest distance, in
// lanes that each keep their own minimum, which costs no more than reading the points. The first
// vertex at the smallest distance of all lies in the last block that came below every block before
// it, and is looked for there once, at the end.

#include "curve/NearestVertex.h"

#include <cmath>
#include <cstdint>

#include "curve/DistanceLanes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 128;
// A register read across two lines of the cache costs twice. Points lie 24 bytes apart, so that
// one of any eight starts a line.
constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kPointsToLine = 8;

std::size_t plainSearch(const Point* points, std::size_t count, const Point& q) {
    std::size_t nearest = 0;
    double least = squaredDistance(points[0], q);
    for (std::size_t i = 1; i < count; ++i) {
        const double d2 = squaredDistance(points[i], q);
        if (d2 < least) {
            least = d2;
            nearest = i;
        }
    }
    return nearest;
}

// Index of the first point of a block at a distance that one of them has.
QEL_KERNEL std::size_t firstInBlock(double least, const Point* points, const Point& q) {
    std::size_t i = 0;
    while (leastSquaredDistance(points + i, kDistanceLanes, q, HUGE_VAL) != least) {
        i += kDistanceLanes;
    }
    return i + firstAtSquaredDistance(least, points + i, q);
}

std::size_t firstOnLine(const Point* points) {
    std::size_t i = 0;
    while (i < kPointsToLine && reinterpret_cast<std::uintptr_t>(points + i) % kCacheLine != 0) {
        ++i;
    }
    return i;
}

// The least distance so far and the block that brought it.
struct Nearest {
    double d2;
    const Point* block; // null while it is vertex 0
};

QEL_KERNEL void lookAt(const Point* block, const Point& q, Nearest& nearest) {
    const double d2 = leastSquaredDistance(block, kBlock, q, nearest.d2);
    if (d2 < nearest.d2) {
        nearest = {d2, block};
    }
}

// Enough points for blocks. The first block and the last overlap their neighbours: a vertex seen
// again is not nearer than it was.
struct BlockSearch {
    static constexpr std::size_t kFewest = kBlock + kPointsToLine;

    QEL_KERNEL static std::size_t run(const Point* points, std::size_t count, Point q) {
        Nearest nearest{squaredDistance(points[0], q), nullptr};
        lookAt(points, q, nearest);
        for (std::size_t i = firstOnLine(points); i + kBlock <= count; i += kBlock) {
            lookAt(points + i, q, nearest);
        }
        lookAt(points + count - kBlock, q, nearest);
        return nearest.block == nullptr ? 0
                                        : static_cast<std::size_t>(nearest.block - points) +
                                              firstInBlock(nearest.d2, nearest.block, q);
    }
};

// Enough points for the lanes: all that fill them whole, then the last ones.
struct LaneSearch {
    static constexpr std::size_t kFewest = kDistanceLanes;

    QEL_KERNEL static std::size_t run(const Point* points, std::size_t count, Point q) {
        const std::size_t whole = count - count % kDistanceLanes;
        const Point* const last = points + count - kDistanceLanes;
        const double first = squaredDistance(points[0], q);
        const double ofWhole = leastSquaredDistance(points, whole, q, first);
        const double ofAll = leastSquaredDistance(last, kDistanceLanes, q, ofWhole);
        if (ofAll < ofWhole) {
            return static_cast<std::size_t>(last - points) + firstAtSquaredDistance(ofAll, last, q);
        }
        return ofWhole < first ? firstInBlock(ofWhole, points, q) : 0;
    }
};

} // namespace

std::size_t nearestVertex(const Points& points, const Point& q) {
    const std::size_t count = points.size();
    if (count >= BlockSearch::kFewest) {
        return onVectorUnit<BlockSearch>(points.data(), count, q);
    }
    if (count >= LaneSearch::kFewest) {
        return onVectorUnit<LaneSearch>(points.data(), count, q);
    }
    return plainSearch(points.data(), count, q);
}

} // namespace qel
