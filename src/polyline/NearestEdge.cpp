// Depth-first search in the BVH, nearest boxes first (Roussopoulos, Kelley and Vincent 1995).
//
// No edge is passed over that could win, with no tolerance: a foot as it is computed lies in the
// boxes of its edge (EdgeBvh.h), and the squared distance of a box as it is computed is at most
// that of a foot in it (BoxDistance.h). A box at the same distance as the best foot is searched: it
// may hold a lower edge.
//
// Squared distances of boxes are compared as the integers that their bits spell: for numbers that
// are not negative this is the same order. The lane stands in the lowest bits, which makes all of
// a node's different, and rounds the distance down and so never hides a box.

#include "polyline/NearestEdge.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/LowestBit.h"
#include "platform/VectorDispatch.h"
#include "polyline/BoxDistance.h"
#include "polyline/LaneMask.h"

namespace qel {
namespace {

// Up to this many edges are measured one by one, and up to this many all of them, without the tree.
constexpr std::size_t kOneByOne = 4;
constexpr std::size_t kFewEdges = 24;

constexpr std::int64_t kLaneBits = kEdgeLanes - 1;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kDone = std::numeric_limits<std::int64_t>::max();

QEL_KERNEL std::int64_t keyOf(double d2) {
    return static_cast<std::int64_t>(bitsOf(d2));
}

QEL_KERNEL double lesser(double a, double b) {
    return a < b ? a : b;
}

QEL_KERNEL double least(const double* values) {
    double four[4], two[2];
    for (std::size_t i = 0; i < 4; ++i) {
        four[i] = lesser(values[i], values[i + 4]);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        two[i] = lesser(four[i], four[i + 2]);
    }
    return lesser(two[0], two[1]);
}

// The nearest edge so far. Its foot is computed again at the end, which gives the same.
struct Best {
    std::size_t edge = 0;
    double d2 = std::numeric_limits<double>::max();
};

QEL_KERNEL void takeRun(const VertexPointers& v, std::size_t first, const Probe& q, Best& best) {
    alignas(64) double d2[kEdgeLanes];
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        const double found = footOnEdge(v, first + k, q).d2;
        d2[k] = found == found ? found : kInfinity; // behind the last edge
    }
    const double nearest = least(d2);
    if (nearest > best.d2) {
        return;
    }
    const auto k = static_cast<std::size_t>(lowestBit(lanesUpTo(nearest, d2)));
    if (nearest < best.d2 || first + k < best.edge) {
        best = {first + k, nearest};
    }
}

// A node that is being searched: its children by ascending keys, and how many were taken.
struct alignas(64) Frame {
    std::int64_t keys[kEdgeLanes + 1]; // the last ends the node
    std::size_t node;
    std::size_t taken;
};

QEL_KERNEL void open(Frame& frame, const EdgeBvhNode<3>& node, std::size_t index, const Probe& q) {
    alignas(64) std::int64_t keys[kEdgeLanes];
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        keys[k] = (keyOf(squaredGap(node, k, q)) & ~kLaneBits) | static_cast<std::int64_t>(k);
    }
    alignas(64) std::int64_t ranks[kEdgeLanes] = {}; // how many keys are less
    for (std::size_t j = 0; j < kEdgeLanes; ++j) {
        for (std::size_t i = 0; i < kEdgeLanes; ++i) {
            ranks[i] += keys[j] < keys[i] ? 1 : 0;
        }
    }
    for (std::size_t i = 0; i < kEdgeLanes; ++i) {
        frame.keys[ranks[i]] = keys[i];
    }
    frame.keys[kEdgeLanes] = kDone;
    frame.node = index;
    frame.taken = 0;
}

QEL_KERNEL void searchTree(const VertexPointers& v, const EdgeBvh<3>& bvh, const Probe& q,
                           Best& best) {
    Frame frames[EdgeBvh<3>::kMaxLevels];
    const int top = bvh.levels() - 1;
    int level = top;
    open(frames[level], bvh.root(), 0, q);
    std::int64_t bestKey = keyOf(best.d2) | kLaneBits;
    while (level <= top) {
        Frame& frame = frames[level];
        const std::int64_t key = frame.keys[frame.taken];
        if (key > bestKey) {
            ++level; // neither is any child behind it nearer
            continue;
        }
        ++frame.taken;
        const auto lane = static_cast<std::size_t>(key & kLaneBits);
        if (level == 0) {
            takeRun(v, bvh.firstEdge(frame.node, lane), q, best);
            bestKey = keyOf(best.d2) | kLaneBits;
        } else {
            const std::size_t child = frame.node * kEdgeLanes + lane;
            --level;
            open(frames[level], bvh.node(level, child), child, q);
        }
    }
}

struct NearestEdgeKernel {
    QEL_KERNEL static std::size_t run(VertexPointers v, std::size_t edges, const EdgeBvh<3>* bvh,
                                      Probe q) {
        Best best;
        if (edges > kFewEdges) {
            searchTree(v, *bvh, q, best);
            return best.edge;
        }
        for (std::size_t i = 0; i < edges; i += kEdgeLanes) {
            takeRun(v, i, q, best);
        }
        return best.edge;
    }
};

// Probes in lanes, all edges for each.
struct FewEdgesKernel {
    QEL_KERNEL static void run(VertexPointers v, std::size_t edges, const Probe* probes,
                               NearestEdge* nearest) {
        Probe q[kEdgeLanes];
        std::copy_n(probes, kEdgeLanes, q);
        double t[kEdgeLanes], x[kEdgeLanes], y[kEdgeLanes], z[kEdgeLanes], d2[kEdgeLanes];
        std::size_t edge[kEdgeLanes];
        std::fill_n(d2, kEdgeLanes, kInfinity);
        for (std::size_t i = 0; i < edges; ++i) {
            for (std::size_t k = 0; k < kEdgeLanes; ++k) {
                const EdgeFoot foot = footOnEdge(v, i, q[k]);
                const bool isNearer = foot.d2 < d2[k];
                t[k] = isNearer ? foot.t : t[k];
                x[k] = isNearer ? foot.x : x[k];
                y[k] = isNearer ? foot.y : y[k];
                z[k] = isNearer ? foot.z : z[k];
                d2[k] = isNearer ? foot.d2 : d2[k];
                edge[k] = isNearer ? i : edge[k];
            }
        }
        for (std::size_t k = 0; k < kEdgeLanes; ++k) {
            nearest[k] = {edge[k], {t[k], x[k], y[k], z[k], d2[k]}};
        }
    }
};

} // namespace

void findNearestOfFew(const VertexArrays<3>& vertices, const Probe* probes, NearestEdge* nearest) {
    onVectorUnit<FewEdgesKernel>(vertices.pointers(), vertices.edges(), probes, nearest);
}

NearestEdge findNearestEdge(const VertexArrays<3>& vertices, const EdgeBvh<3>& bvh,
                            const Probe& q) {
    const VertexPointers v = vertices.pointers();
    if (vertices.edges() <= kOneByOne) {
        return scanEdges(v, vertices.edges(), q);
    }
    const std::size_t edge = onVectorUnit<NearestEdgeKernel>(v, vertices.edges(), &bvh, q);
    return {edge, footOnEdge(v, edge, q)};
}

} // namespace qel
