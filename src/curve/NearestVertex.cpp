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
#include "platform/VectorUnit.h"

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

// For at least kBlock + kPointsToLine points. The first block and the last overlap their
// neighbours: a vertex seen again is not nearer than it was.
QEL_KERNEL std::size_t blockSearch(const Point* points, std::size_t count, const Point& q) {
    Nearest nearest{squaredDistance(points[0], q), nullptr};
    lookAt(points, q, nearest);
    for (std::size_t i = firstOnLine(points); i + kBlock <= count; i += kBlock) {
        lookAt(points + i, q, nearest);
    }
    lookAt(points + count - kBlock, q, nearest);
    if (nearest.block == nullptr) {
        return 0;
    }
    return static_cast<std::size_t>(nearest.block - points) +
           firstInBlock(nearest.d2, nearest.block, q);
}

std::size_t blockSearchPortable(const Point* points, std::size_t count, const Point& q) {
    return blockSearch(points, count, q);
}
#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 std::size_t blockSearchAvx2(const Point* points, std::size_t count, const Point& q) {
    return blockSearch(points, count, q);
}
QEL_AVX512 std::size_t blockSearchAvx512(const Point* points, std::size_t count, const Point& q) {
    return blockSearch(points, count, q);
}
#endif

} // namespace

std::size_t nearestVertex(const Points& points, const Point& q) {
    if (points.size() < kBlock + kPointsToLine) {
        return plainSearch(points.data(), points.size(), q);
    }
#if defined(QEL_VECTOR_UNITS)
    switch (vectorUnit()) {
    case VectorUnit::avx512:
        return blockSearchAvx512(points.data(), points.size(), q);
    case VectorUnit::avx2:
        return blockSearchAvx2(points.data(), points.size(), q);
    case VectorUnit::portable:
        break;
    }
#endif
    return blockSearchPortable(points.data(), points.size(), q);
}

} // namespace qel
