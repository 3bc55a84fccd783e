// Depth-first branch and bound, farthest boxes first. A box is passed over if its bound is less
// than the distance found, with an allowance for rounding in both. One at the same distance
// is searched: it may hold a vertex nearer the middle.

#include "polyline/FarthestFromSegment.h"

#include <algorithm>
#include <cmath>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

// Vertices of a part that are looked at one by one.
constexpr std::size_t kFewForLanes = 6;
// Vertices of a part that are looked at without asking the hierarchy.
constexpr std::size_t kFewVertices = 512;
// The hierarchy is built when as many times all vertices have been looked at: somewhat more often
// than halving asks for, and than building costs.
constexpr std::size_t kScansOfAll = 24;
// Rounding errors of distances and of corners, in units of the largest coordinate: more than the
// machine epsilons that their operations can add up to.
constexpr double kRounding = 1e-13;

// Vertices whose distances are computed before the largest of them is looked for.
constexpr std::size_t kBlock = 64;

// The largest d2 of lanes of kBlock, beyond count left out.
QEL_KERNEL double distancesOfBlock(const VertexPointers& v, const Segment& segment,
                                   std::size_t first, std::size_t count, double* d2) {
    double largest[kEdgeLanes];
    std::fill_n(largest, kEdgeLanes, -1.0);
    for (std::size_t i = 0; i < count; i += kEdgeLanes) {
        for (std::size_t k = 0; k < kEdgeLanes; ++k) {
            const std::size_t j = first + i + k;
            const double value = squaredDistance(segment, v.x[j], v.y[j], v.z[j]);
            d2[i + k] = i + k < count ? value : -1.0;
            largest[k] = d2[i + k] > largest[k] ? d2[i + k] : largest[k];
        }
    }
    for (std::size_t width = kEdgeLanes / 2; width > 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            largest[k] = largest[k + width] > largest[k] ? largest[k + width] : largest[k];
        }
    }
    return largest[0];
}

QEL_KERNEL void take(const FarthestVertex3D& found, const VertexRange& range,
                     FarthestVertex3D& farthest) {
    if (found.d2 > farthest.d2 || (found.d2 == farthest.d2 && found.d2 > 0.0 &&
                                   range.isNearerMiddle(found.vertex, farthest.vertex))) {
        farthest = found;
    }
}

// Where in the block the value stands, nearest the middle of the range.
QEL_KERNEL std::size_t placeOf(double value, const double* d2, std::size_t count,
                               const VertexRange& range, std::size_t first) {
    std::size_t place = count;
    for (std::size_t k = 0; k < count; ++k) {
        if (d2[k] == value && (place == count || range.isNearerMiddle(first + k, first + place))) {
            place = k;
        }
    }
    return place;
}

// The vertices from first to before end. Also reads up to seven behind the last of all, which are
// there.
struct ScanKernel {
    QEL_KERNEL static FarthestVertex3D run(VertexPointers v, const Segment* segment,
                                           const VertexRange* range, std::size_t first,
                                           std::size_t end) {
        FarthestVertex3D farthest{first, 0.0};
        alignas(64) double d2[kBlock];
        for (std::size_t i = first; i < end; i += kBlock) {
            const std::size_t count = std::min(kBlock, end - i);
            const double largest = distancesOfBlock(v, *segment, i, count, d2);
            if (largest >= farthest.d2) {
                take({i + placeOf(largest, d2, count, *range, i), largest}, *range, farthest);
            }
        }
        return farthest;
    }
};

// Of the eight boxes from the first one on; NaN behind the last of the level.
struct BoundsKernel {
    QEL_KERNEL static void run(const OrientedBoxBvh::Level* level, const Segment* segment,
                               std::size_t first, double rounding, double* bounds) {
        double largest[OrientedBoxBvh::kFanOut] = {};
        for (std::size_t corner = 0; corner < OrientedBoxBvh::kCorners; ++corner) {
            const double* const x = level->corner(corner, 0) + first;
            const double* const y = level->corner(corner, 1) + first;
            const double* const z = level->corner(corner, 2) + first;
            for (std::size_t k = 0; k < OrientedBoxBvh::kFanOut; ++k) {
                const double d2 = squaredDistance(*segment, x[k], y[k], z[k]);
                largest[k] = d2 > largest[k] ? d2 : largest[k];
            }
        }
        for (std::size_t k = 0; k < OrientedBoxBvh::kFanOut; ++k) {
            bounds[k] = std::sqrt(largest[k]) * (1.0 + kRounding) + rounding;
        }
    }
};

class Search {
public:
    Search(const VertexArrays<3>& vertices, const OrientedBoxBvh& bvh, double rounding,
           const VertexRange& range)
        : pointers_(vertices.pointers()),
          bvh_(bvh),
          rounding_(rounding),
          range_(range),
          segment_(pointers_, range.from, range.to),
          first_(range.from + 1),
          farthest_{first_, 0.0} {}

    FarthestVertex3D run() {
        searchGroup(bvh_.levels() - 1, 0);
        return farthest_;
    }

private:
    struct Candidate {
        double bound;
        std::size_t node;
    };

    bool mayHoldFarther(double bound) const { return bound * bound >= farthest_.d2; }

    // The nodes of a level that one parent holds, as far as they lie in the part.
    void searchGroup(std::size_t level, std::size_t firstNode) {
        const std::size_t size = OrientedBoxBvh::verticesOf(level);
        const std::size_t begin = std::max(firstNode, first_ / size);
        const std::size_t end = std::min(
            {firstNode + OrientedBoxBvh::kFanOut, bvh_.nodes(level), (range_.to - 1) / size + 1});
        alignas(64) double bounds[OrientedBoxBvh::kFanOut];
        onVectorUnit<BoundsKernel>(&bvh_.level(level), &segment_, firstNode, rounding_,
                                   static_cast<double*>(bounds));
        Candidate candidates[OrientedBoxBvh::kFanOut]; // by descending bounds
        std::size_t count = 0;
        for (std::size_t node = begin; node < end; ++node) {
            const double bound = bounds[node - firstNode];
            std::size_t place = count++;
            for (; place > 0 && candidates[place - 1].bound < bound; --place) {
                candidates[place] = candidates[place - 1];
            }
            candidates[place] = {bound, node};
        }
        for (std::size_t i = 0; i < count && mayHoldFarther(candidates[i].bound); ++i) {
            searchNode(level, candidates[i].node);
        }
    }

    void searchNode(std::size_t level, std::size_t node) {
        if (level > 0) {
            searchGroup(level - 1, node * OrientedBoxBvh::kFanOut);
            return;
        }
        const std::size_t first = std::max(first_, node * OrientedBoxBvh::kLeafVertices);
        const std::size_t end = std::min(range_.to, (node + 1) * OrientedBoxBvh::kLeafVertices);
        take(onVectorUnit<ScanKernel>(pointers_, &segment_, &range_, first, end), range_,
             farthest_);
    }

    VertexPointers pointers_;
    const OrientedBoxBvh& bvh_;
    double rounding_;
    VertexRange range_;
    Segment segment_;
    std::size_t first_;
    FarthestVertex3D farthest_;
};

} // namespace

FarthestFromSegment::FarthestFromSegment(const VertexArrays<3>& vertices) : vertices_(vertices) {}

FarthestVertex3D FarthestFromSegment::inRange(const VertexRange& range) {
    const std::size_t count = range.to - range.from - 1;
    if (count <= kFewForLanes) {
        return scanForFarthest(vertices_.pointers(), range);
    }
    if (bvh_.isEmpty() && scanned_ > kScansOfAll * vertices_.vertices() && count > kFewVertices) {
        bvh_ = OrientedBoxBvh(vertices_);
        rounding_ = kRounding * largestCoordinate(vertices_);
    }
    if (bvh_.isEmpty() || count <= kFewVertices) {
        const Segment segment(vertices_.pointers(), range.from, range.to);
        scanned_ += count;
        return onVectorUnit<ScanKernel>(vertices_.pointers(), &segment, &range, range.from + 1,
                                        range.to);
    }
    return Search(vertices_, bvh_, rounding_, range).run();
}

} // namespace qel
