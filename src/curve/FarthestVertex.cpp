// The vertex farthest from a chord, found by bounds.
//
// The stated distance costs two square roots and a division a vertex. Here a bound of its square
// is computed instead, in vector lanes, and kept for each block of vertices only; the stated
// arithmetic is done in the few blocks that can hold the farthest vertex. Those are scanned in
// order with the stated comparison, so the result is the plain loop's, ties included.
//
// Why no other block can hold it. With u = 2^-53 and ww = |w|^2 as computed, the stated radicand
// r = |w|*|w| - along*along and ww - (dot/L)^2 by a reciprocal differ by at most 20 u ww: 6 u and
// 3 u in the first terms, 3 u and 5 u in the second, which is no larger than ww, u in each
// difference. Hence r <= bound with the slack of 128 u ww = 2^-46 ww. A block is passed over if
// all its bounds are below H*H*(1 - 2^-49) for a distance H that some vertex has (or must exceed):
// then sqrt(r) < H*(1 - 4u), which rounds to less than H. For this to hold nothing may overflow
// or underflow: see isRegular and kLargestSum; all else takes the plain loop or a full scan.
//
// With the index of DeviationBounds.h, whole runs drop out first, by bounds that hold for the same
// reason; those that are left are scanned as blocks are.

#include "curve/FarthestVertex.h"

#include <algorithm>
#include <limits>

#include "curve/DeviationBounds.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 64;         // vertices that share one bound
constexpr std::size_t kBlocks = 64;        // bounds held at a time
constexpr std::size_t kFewRuns = 4;        // below, blocks are as fast
constexpr std::size_t kLanes = 8;          // doubles of the widest unit
constexpr std::size_t kShortRun = 48;      // below, the plain loop is as fast
constexpr double kBelow = 1.0 - 0x1p-49;   // of the square of a distance to be exceeded
constexpr double kLargestSum = 1e300;      // of ww over a block: no term overflows below it
constexpr double kLargestLength = 1e140;   // of a chord and its tolerance
constexpr double kSmallestLength = 1e-140; // its square is far above what underflows

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kMarker = std::numeric_limits<double>::max();

// A NaN is not regular.
bool isRegular(const Chord& chord) {
    const auto isModerate = [](double x) { return x > kSmallestLength && x < kLargestLength; };
    return isModerate(chord.length) && isModerate(chord.tolerance);
}

// Largest bound of the squared distances in a block; infinite if one of them may overflow.
QEL_KERNEL double blockBound(const Point* p, std::size_t count, const Chord& chord) {
    double bound[kBlock];
    double ww[kBlock];
    const Point start = chord.start;
    const Point e = chord.direction;
    const double inverse = 1.0 / chord.length;
    for (std::size_t k = 0; k < count; ++k) {
        const double x = p[k].x - start.x;
        const double y = p[k].y - start.y;
        const double z = p[k].z - start.z;
        const double along = (x * e.x + y * e.y + z * e.z) * inverse;
        ww[k] = x * x + y * y + z * z;
        bound[k] = ww[k] * (1.0 + kBoundSlack) - along * along;
    }
    const std::size_t padded = (count + kLanes - 1) / kLanes * kLanes;
    for (std::size_t k = count; k < padded; ++k) {
        ww[k] = 0.0;
        bound[k] = -kInfinity;
    }
    double largest[kLanes];
    double sum[kLanes];
    for (std::size_t l = 0; l < kLanes; ++l) {
        largest[l] = bound[l];
        sum[l] = ww[l];
    }
    for (std::size_t k = kLanes; k < padded; k += kLanes) {
        for (std::size_t l = 0; l < kLanes; ++l) {
            largest[l] = bound[k + l] > largest[l] ? bound[k + l] : largest[l];
            sum[l] += ww[k + l];
        }
    }
    for (std::size_t l = 1; l < kLanes; ++l) {
        largest[0] = largest[l] > largest[0] ? largest[l] : largest[0];
        sum[0] += sum[l];
    }
    return sum[0] < kLargestSum ? largest[0] : kInfinity; // also for a NaN
}

// The stated arithmetic and comparison on a block, the former in lanes.
QEL_KERNEL void takeFarthestOfBlock(const Point* p, std::size_t first, std::size_t count,
                                    const Chord& chord, FarthestVertex& farthest) {
    double h[kBlock];
    const Point start = chord.start;
    const Point e = chord.direction;
    const double length = chord.length;
    for (std::size_t k = 0; k < count; ++k) {
        const double x = p[first + k].x - start.x;
        const double y = p[first + k].y - start.y;
        const double z = p[first + k].z - start.z;
        // Point::length, without a branch.
        const bool isUndefined = (x == kMarker) | (y == kMarker) | (z == kMarker);
        const double norm = std::sqrt(x * x + y * y + z * z);
        const double w =
            isUndefined ? static_cast<double>(std::numeric_limits<float>::max()) : norm;
        const double along = (x * e.x + y * e.y + z * e.z) / length;
        h[k] = std::sqrt(w * w - along * along);
    }
    for (std::size_t k = 0; k < count; ++k) {
        if (h[k] > farthest.distance && h[k] > chord.tolerance) {
            farthest = {h[k], first + k};
        }
    }
}

// Squared distances below this do not exceed the distance found or the tolerance.
QEL_KERNEL double cutoffOf(const Chord& chord, double distance) {
    const double exceeded = distance > chord.tolerance ? distance : chord.tolerance;
    return exceeded * exceeded * kBelow;
}

QEL_KERNEL std::size_t highestOf(const double* bounds, std::size_t count) {
    std::size_t highest = 0;
    for (std::size_t k = 1; k < count; ++k) {
        highest = bounds[k] > bounds[highest] ? k : highest;
    }
    return highest;
}

// Calls take(k, farthest) for those of a group's parts, in order, whose bounds leave them a chance.
template <typename Take>
QEL_KERNEL void takeByBounds(const double* bounds, std::size_t count, const Chord& chord,
                             FarthestVertex& farthest, Take take) {
    const std::size_t highest = highestOf(bounds, count);
    if (bounds[highest] < cutoffOf(chord, farthest.distance)) {
        return;
    }
    // A distance that is reached in this group lets most other parts drop out.
    FarthestVertex probe = farthest;
    take(highest, probe);
    const double limit = cutoffOf(chord, probe.distance);
    for (std::size_t k = 0; k < count; ++k) {
        if (!(bounds[k] < limit)) {
            take(k, farthest);
        }
    }
}

// One group of blocks: their bounds first, then the stated arithmetic where it may matter.
QEL_KERNEL void takeFarthestOfGroup(const Point* p, std::size_t first, std::size_t last,
                                    const Chord& chord, FarthestVertex& farthest) {
    double bounds[kBlocks] = {};
    std::size_t count = 0;
    for (std::size_t k = first; k < last; k += kBlock, ++count) {
        bounds[count] = blockBound(p + k, std::min(kBlock, last - k), chord);
    }
    takeByBounds(bounds, count, chord, farthest,
                 [&](std::size_t block, FarthestVertex& vertex) QEL_KERNEL_LAMBDA {
                     const std::size_t k = first + block * kBlock;
                     takeFarthestOfBlock(p, k, std::min(kBlock, last - k), chord, vertex);
                 });
}

struct BlocksKernel {
    QEL_KERNEL static void run(const Point* p, std::size_t first, std::size_t last, Chord chord,
                               FarthestVertex* farthest) {
        for (std::size_t k = first; k < last; k += kBlocks * kBlock) {
            takeFarthestOfGroup(p, k, std::min(k + kBlocks * kBlock, last), chord, *farthest);
        }
    }
};

// -- Whole runs ----

// The vertices of one run, once more by a bound of their own.
QEL_KERNEL void takeFarthestOfRun(const Point* p, std::size_t first, const Chord& chord,
                                  FarthestVertex& farthest) {
    static_assert(DeviationBounds::kRun <= kBlock, "a run is taken as a block");
    const double bound = blockBound(p + first, DeviationBounds::kRun, chord);
    if (!(bound < cutoffOf(chord, farthest.distance))) {
        takeFarthestOfBlock(p, first, DeviationBounds::kRun, chord, farthest);
    }
}

struct RunsKernel {
    QEL_KERNEL static void run(const Point* p, std::size_t firstRun, const double* bounds,
                               std::size_t count, Chord chord, FarthestVertex* farthest) {
        takeByBounds(bounds, count, chord, *farthest,
                     [&](std::size_t r, FarthestVertex& vertex) QEL_KERNEL_LAMBDA {
                         takeFarthestOfRun(p, (firstRun + r) * DeviationBounds::kRun, chord,
                                           vertex);
                     });
    }
};

} // namespace

void takeFarthestByScan(const Points& points, std::size_t first, std::size_t last,
                        const Chord& chord, FarthestVertex& farthest) {
    for (std::size_t k = first; k < last; ++k) {
        const double h = normalDistance(points[k] - chord.start, chord);
        if (h > farthest.distance && h > chord.tolerance) {
            farthest = {h, k};
        }
    }
}

void takeFarthest(const Points& points, std::size_t first, std::size_t last, const Chord& chord,
                  FarthestVertex& farthest) {
    if (last < first + kShortRun || last > points.size() || !isRegular(chord)) {
        takeFarthestByScan(points, first, last, chord, farthest);
        return;
    }
    onVectorUnit<BlocksKernel>(points.data(), first, last, chord, &farthest);
}

void takeFarthest(const Points& points, const DeviationBounds& runs, std::size_t first,
                  std::size_t last, const Chord& chord, FarthestVertex& farthest) {
    const std::size_t firstRun = (first + DeviationBounds::kRun - 1) / DeviationBounds::kRun;
    const std::size_t lastRun = std::min(last / DeviationBounds::kRun, runs.size());
    if (lastRun < firstRun + kFewRuns || last > points.size() || !isRegular(chord)) {
        takeFarthest(points, first, last, chord, farthest);
        return;
    }
    takeFarthest(points, first, firstRun * DeviationBounds::kRun, chord, farthest);
    for (std::size_t r = firstRun; r < lastRun; r += DeviationBounds::kMaxRuns) {
        const std::size_t count = std::min(DeviationBounds::kMaxRuns, lastRun - r);
        double bounds[DeviationBounds::kMaxRuns];
        runs.squaredBounds(chord, r, count, bounds);
        onVectorUnit<RunsKernel>(points.data(), r, bounds, count, chord, &farthest);
    }
    takeFarthest(points, lastRun * DeviationBounds::kRun, last, chord, farthest);
}

} // namespace qel
