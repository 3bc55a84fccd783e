// The runs of one path, one after the other, descend the BVH of the other (Guttman 1984).

#include "polyline/CrossingPairs.h"

#include <algorithm>

#include "platform/LowestBit.h"
#include "platform/VectorDispatch.h"
#include "polyline/LaneMask.h"

namespace qel {
namespace {

// Pairs of runs and edges after which the caller gets to look at what was found.
constexpr std::size_t kManyPairs = 4096;
constexpr std::size_t kManyEdges = 32768;

struct Edges {
    const double* x;
    const double* y;
};

struct PlaneBox {
    double lowX;
    double highX;
    double lowY;
    double highY;
};

// NaN if b is.
QEL_KERNEL double lesser(double a, double b) {
    return a < b ? a : b;
}
QEL_KERNEL double greater(double a, double b) {
    return a > b ? a : b;
}

// Of NaN behind the last edge.
QEL_KERNEL PlaneBox boxOfEdge(const Edges& edges, std::size_t i) {
    const double x = edges.x[i], nextX = edges.x[i + 1];
    const double y = edges.y[i], nextY = edges.y[i + 1];
    return {lesser(x, nextX), greater(x, nextX), lesser(y, nextY), greater(y, nextY)};
}

QEL_KERNEL PlaneBox boxOfEdges(const Edges& edges, std::size_t first, std::size_t end) {
    PlaneBox box = boxOfEdge(edges, first);
    for (std::size_t i = first + 1; i < end; ++i) {
        const double x = edges.x[i + 1], y = edges.y[i + 1];
        box = {lesser(box.lowX, x), greater(box.highX, x), lesser(box.lowY, y),
               greater(box.highY, y)};
    }
    return box;
}

// By how much boxes are apart along the axis on which they are most; 0 or less if they overlap.
QEL_KERNEL double gapBetween(const PlaneBox& a, const PlaneBox& b) {
    return greater(greater(a.lowX - b.highX, b.lowX - a.highX),
                   greater(a.lowY - b.highY, b.lowY - a.highY));
}

QEL_KERNEL unsigned overlappingChildren(const EdgeBvhNode<2>& node, const PlaneBox& box) {
    alignas(64) double gaps[kEdgeLanes];
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        gaps[k] =
            gapBetween(box, {node.low[0][k], node.high[0][k], node.low[1][k], node.high[1][k]});
    }
    return lanesUpTo(0.0, gaps);
}

QEL_KERNEL unsigned overlappingEdges(const Edges& edges, std::size_t first, const PlaneBox& box) {
    alignas(64) double gaps[kEdgeLanes];
    for (std::size_t k = 0; k < kEdgeLanes; ++k) {
        gaps[k] = gapBetween(box, boxOfEdge(edges, first + k));
    }
    return lanesUpTo(0.0, gaps);
}

// The edges from a first one on, up to eight, against a run.
QEL_KERNEL std::uint64_t overlappingPairs(const Edges& edges, std::size_t first, std::size_t end,
                                          const Edges& others, std::size_t firstOther) {
    std::uint64_t pairs = 0;
    for (std::size_t i = first; i < end; ++i) {
        const std::uint64_t lanes = overlappingEdges(others, firstOther, boxOfEdge(edges, i));
        pairs |= lanes << (kEdgeLanes * (i - first));
    }
    return pairs;
}

struct PendingNode {
    std::size_t index;
    int level;
};

struct CrossingPairsKernel {
    QEL_KERNEL static std::size_t run(Edges edges, std::size_t first, std::size_t edgeCount,
                                      Edges others, const EdgeBvh<2>* bvh,
                                      std::vector<RunPair>* found) {
        const std::size_t stop = std::min(edgeCount, first + kManyEdges);
        while (first < stop && found->size() < kManyPairs) {
            takeRun(edges, first, std::min(edgeCount, first + kEdgeLanes), others, *bvh, *found);
            first += kEdgeLanes;
        }
        return std::min(first, edgeCount);
    }

    QEL_KERNEL static void takeRun(const Edges& edges, std::size_t first, std::size_t end,
                                   const Edges& others, const EdgeBvh<2>& bvh,
                                   std::vector<RunPair>& found) {
        const PlaneBox box = boxOfEdges(edges, first, end);
        PendingNode stack[EdgeBvh<2>::kMaxLevels * kEdgeLanes];
        PendingNode* top = stack;
        *top++ = {0, bvh.levels() - 1};
        while (top != stack) {
            const PendingNode next = *--top;
            unsigned lanes = overlappingChildren(bvh.node(next.level, next.index), box);
            for (; lanes != 0; lanes &= lanes - 1) {
                const auto lane = static_cast<std::size_t>(lowestBit(lanes));
                if (next.level > 0) {
                    *top++ = {next.index * kEdgeLanes + lane, next.level - 1};
                    continue;
                }
                const std::size_t firstOther = bvh.firstEdge(next.index, lane);
                const std::uint64_t pairs = overlappingPairs(edges, first, end, others, firstOther);
                if (pairs != 0) {
                    found.push_back({first, firstOther, pairs});
                }
            }
        }
    }
};

} // namespace

std::size_t findCrossingPairs(const VertexArrays<2>& path, std::size_t first,
                              const VertexArrays<2>& other, const EdgeBvh<2>& otherBvh,
                              std::vector<RunPair>& found) {
    found.clear();
    return onVectorUnit<CrossingPairsKernel>(Edges{path.axis(0), path.axis(1)}, first, path.edges(),
                                             Edges{other.axis(0), other.axis(1)}, &otherBvh,
                                             &found);
}

} // namespace qel
