// Depth-first branch-and-bound search, nearest boxes first (N. Roussopoulos, S. Kelley, F. Vincent,
// "Nearest neighbor queries", SIGMOD 1995). A step measures 16 boxes or 16 points at once.
// Usually O(log n); a frame for each level of the hierarchy on the stack, nothing on the heap.
// Where many points tie, as they do far off, nodes are left out that hold no winner of the tie.
//
// Squared distances are compared as the integers that their bits spell: for numbers that are not
// negative this is the same order, and the least of 16 integers is a vector operation. A box's
// lane stands in the lowest bits of its distance, which rounds the distance down and so never
// hides a box.

#include <cmath>
#include <cstring>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/LowestBit.h"
#include "platform/Prefetch.h"
#include "platform/VectorDispatch.h"
#include "spatial/NearestIndex.h"

#if defined(QEL_VECTOR_UNITS)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

constexpr std::int32_t kLaneBits = kLanes - 1;
constexpr std::uint32_t kNoNode = BvhNode::kBlock; // the place of none
constexpr int kFewBlocks = 3;                      // whose boxes tell less than they cost
constexpr std::int32_t kDone = std::numeric_limits<std::int32_t>::max();

#if defined(QEL_VECTOR_UNITS)
// In four vectors of four: compilers make a chain of 16 steps of the plain loops.
typedef std::int32_t Four __attribute__((vector_size(16)));

QEL_KERNEL Four lesser(Four a, Four b) {
    return a < b ? a : b;
}

QEL_KERNEL std::int32_t least(const Four* v) {
    const Four four = lesser(lesser(v[0], v[1]), lesser(v[2], v[3]));
    const Four two = lesser(four, Four{four[2], four[3], four[2], four[3]});
    return lesser(two, Four{two[1], two[1], two[1], two[1]})[0];
}

QEL_KERNEL std::int32_t least(const std::int32_t* values) {
    Four v[4];
    std::memcpy(v, values, sizeof(v));
    return least(v);
}

// The least of those above a bound; kDone if none is.
QEL_KERNEL std::int32_t leastAbove(std::int32_t bound, const std::int32_t* values) {
    const Four bounds = {bound, bound, bound, bound};
    const Four done = {kDone, kDone, kDone, kDone};
    Four v[4];
    std::memcpy(v, values, sizeof(v));
    for (Four& four : v) {
        four = four > bounds ? four : done;
    }
    return least(v);
}

// A bit for each lane that holds the value.
QEL_KERNEL unsigned lanesAt(std::int32_t value, const std::int32_t* values) {
    const __m128i wanted = _mm_set1_epi32(value);
    unsigned lanes = 0;
    for (int i = 0; i < kLanes; i += 4) {
        const __m128i four = _mm_load_si128(reinterpret_cast<const __m128i*>(values + i));
        const int mask = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(four, wanted)));
        lanes |= static_cast<unsigned>(mask) << i;
    }
    return lanes;
}
#else
QEL_KERNEL std::int32_t leastAbove(std::int32_t bound, const std::int32_t* values) {
    std::int32_t result = kDone;
    for (int i = 0; i < kLanes; ++i) {
        result = values[i] > bound && values[i] < result ? values[i] : result;
    }
    return result;
}

QEL_KERNEL std::int32_t least(const std::int32_t* values) {
    return leastAbove(-1, values); // none is negative
}

QEL_KERNEL unsigned lanesAt(std::int32_t value, const std::int32_t* values) {
    unsigned lanes = 0;
    for (int i = 0; i < kLanes; ++i) {
        lanes |= static_cast<unsigned>(values[i] == value) << i;
    }
    return lanes;
}
#endif

// The children of a node: distance and lane in one. Visited by ascending keys, so that the last
// one tells which are left, and no key is written between two vector reads of them.
struct alignas(64) Frame {
    std::int32_t keys[kLanes];
    const BvhNode* node;
    std::int32_t last;
};

// The difference to the nearer side, as QuadRectangle's outsideBy but for its sign, which the
// square takes away.
QEL_KERNEL float beyond(float q, float low, float high) {
    const float below = low - q, above = q - high;
    const float farther = below > above ? below : above;
    return farther > 0.0f ? farther : 0.0f;
}

QEL_KERNEL void open(Frame& frame, const BvhNode& node, float qx, float qy) {
    frame.node = &node;
    frame.last = -1;
    for (int i = 0; i < kLanes; ++i) {
        const float dx = beyond(qx, node.boxes.xmin[i], node.boxes.xmax[i]);
        const float dy = beyond(qy, node.boxes.ymin[i], node.boxes.ymax[i]);
        frame.keys[i] = (bitsOf(dx * dx + dy * dy) & ~kLaneBits) | i;
    }
}

// A block and the node over it.
struct Child {
    const PointBlock* block;
    const BvhNode* node;
    int lane; // of the block in the node

    // The number of the leaf in which a point of the block lies.
    QEL_KERNEL std::uint32_t leafOf(int point) const {
        std::uint32_t leaf = node->leaves.first[lane];
        unsigned begins = node->leaves.begins[lane] & ((2u << point) - 1);
        for (; begins != 0; begins &= begins - 1) {
            ++leaf;
        }
        return leaf;
    }

    // Takes the points of the first leaf out of a set, a bit each; returns the first in the list.
    QEL_KERNEL int takeLeaf(unsigned& points) const {
        int first = lowestBit(points);
        const unsigned begins = node->leaves.begins[lane] & ~((2u << first) - 1);
        const unsigned later = points & (0u - (begins & (0u - begins))); // from the next begin on
        for (unsigned others = points & ~later & (points - 1); others != 0; others &= others - 1) {
            const int point = lowestBit(others);
            first = block->index[point] < block->index[first] ? point : first;
        }
        points = later;
        return first;
    }
};

struct Best {
    std::int32_t distance; // bits; points beyond it lose
    Child child;           // its block is null if there is none yet
    int point;
    bool isRanked;            // its leaf, in the current distance
    std::uint64_t rankOfLeaf; // if so

    QEL_KERNEL void take(const Child& other, int otherPoint) {
        child = other;
        point = otherPoint;
    }
    QEL_KERNEL std::uint32_t index() const { return child.block->index[point]; }
};

QEL_KERNEL void rankBest(const NearestIndex& index, float qx, float qy, Best& best) {
    if (!best.isRanked) {
        best.rankOfLeaf = index.rankOfLeaf(best.child.leafOf(best.point), qx, qy);
        best.isRanked = true;
    }
}

// True if a point at the same distance as the best wins. Most ties are decided in one leaf.
QEL_KERNEL bool winsTie(const NearestIndex& index, const Child& child, int point, float qx,
                        float qy, Best& best) {
    const std::uint32_t leaf = child.leafOf(point);
    if (leaf == best.child.leafOf(best.point)) {
        return child.block->index[point] < best.index();
    }
    rankBest(index, qx, qy, best);
    const std::uint64_t rank = index.rankOfLeaf(leaf, qx, qy);
    const bool wins = rank < best.rankOfLeaf;
    best.rankOfLeaf = wins ? rank : best.rankOfLeaf;
    return wins;
}

QEL_KERNEL void scanBlock(const NearestIndex& index, const Child& child, float qx, float qy,
                          Best& best) {
    const PointBlock& block = *child.block;
    alignas(64) std::int32_t distances[kLanes];
    for (int i = 0; i < kLanes; ++i) {
        const float dx = qx - block.x[i];
        const float dy = qy - block.y[i];
        distances[i] = bitsOf(dx * dx + dy * dy);
    }
    const std::int32_t nearest = least(distances);
    if (nearest > best.distance) {
        return;
    }
    unsigned points = lanesAt(nearest, distances);
    if (nearest < best.distance || best.child.block == nullptr) {
        prefetch(block.index);
        best.distance = nearest;
        best.take(child, child.takeLeaf(points));
        best.isRanked = false;
    }
    while (points != 0) { // as near as the best
        const int point = child.takeLeaf(points);
        if (winsTie(index, child, point, qx, qy, best)) {
            best.take(child, point);
        }
    }
}

// True if no point below the child of a node wins, the child's key being near the best distance:
// the box, without the rounding of the key, is farther, or it is just as far and what ranks lowest
// in it would lose the tie. Bounds how many points at equal distance are looked at.
QEL_KERNEL bool losesTie(const NearestIndex& index, const Frame& frame, std::int32_t lane,
                         const BvhNode& below, float qx, float qy, Best& best) {
    const Boxes& boxes = frame.node->boxes;
    const float dx = beyond(qx, boxes.xmin[lane], boxes.xmax[lane]);
    const float dy = beyond(qy, boxes.ymin[lane], boxes.ymax[lane]);
    const std::int32_t distance = bitsOf(dx * dx + dy * dy);
    if (distance != best.distance || best.child.block == nullptr) {
        return distance > best.distance;
    }
    rankBest(index, qx, qy, best);
    const std::uint64_t rank = index.leastRank(below.quad, below.firstLeaf, qx, qy);
    return rank > best.rankOfLeaf || (rank == best.rankOfLeaf && below.firstIndex > best.index());
}

// Searches a node and all below it for something better, but for one node below it.
QEL_KERNEL void searchBelow(const NearestIndex& index, std::uint32_t node, std::uint32_t without,
                            float qx, float qy, Best& best) {
    Frame frames[PointBvh::kMaxHeight];
    int depth = 0;
    const PointBvh& bvh = index.bvh();
    open(frames[0], bvh.node(node), qx, qy);
    while (depth >= 0) {
        Frame& frame = frames[depth];
        const std::int32_t next = leastAbove(frame.last, frame.keys);
        if ((next & ~kLaneBits) > best.distance) {
            --depth; // equal distances are visited: they may hold the winner of a tie
            continue;
        }
        const std::int32_t lane = next & kLaneBits;
        frame.last = next;
        const std::uint32_t child = frame.node->child[lane];
        if ((child & BvhNode::kBlock) != 0) {
            const PointBlock& block = bvh.block(child - BvhNode::kBlock);
            scanBlock(index, {&block, frame.node, lane}, qx, qy, best);
        } else if (child != without) {
            const BvhNode& below = bvh.node(child);
            if ((best.distance & ~kLaneBits) != (next & ~kLaneBits) ||
                !losesTie(index, frame, lane, below, qx, qy, best)) {
                prefetch(below.child);
                open(frames[++depth], below, qx, qy);
            }
        }
    }
}

// True if all points beyond a side of the query's region are farther than the best. A query
// outside the region is not nearer to anything in it. False for a NaN.
QEL_KERNEL bool isFarther(float toSide, float distance) {
    return toSide > 0.0f && distance < toSide * toSide;
}

QEL_KERNEL bool isFinal(const Best& best, const QuadRectangle& region, float qx, float qy) {
    const float distance = floatOf(best.distance);
    return best.child.block != nullptr && isFarther(qx - region.xmin, distance) &&
           isFarther(region.xmax - qx, distance) && isFarther(qy - region.ymin, distance) &&
           isFarther(region.ymax - qy, distance);
}

struct Search {
    QEL_KERNEL static Best run(const NearestIndex* index, float qx, float qy) {
        // A winner is nearer than the largest float.
        Best best = {bitsOf(std::numeric_limits<float>::max()) - 1, {}, 0, false, 0};
        const BvhNode& root = index->bvh().node(0);
        if (root.child[kFewBlocks] == 0) {
            int lane = 0;
            for (; (root.child[lane] & BvhNode::kBlock) != 0; ++lane) {
                const PointBlock& block = index->bvh().block(root.child[lane] - BvhNode::kBlock);
                scanBlock(*index, {&block, &root, lane}, qx, qy, best);
            }
            if (root.child[lane] == 0) {
                return best;
            }
        }
        std::uint32_t searched = kNoNode;
        for (const EntryGrid& grid : index->entryGrids()) {
            const EntryGrid::Entry& entry = grid.find(qx, qy);
            if (entry.node != searched) {
                searchBelow(*index, entry.node, searched, qx, qy, best);
                if (entry.node == 0 || isFinal(best, entry.region, qx, qy)) {
                    return best;
                }
                searched = entry.node;
            }
        }
        searchBelow(*index, 0, searched, qx, qy, best);
        return best;
    }
};

} // namespace

NearestIndex::Nearest NearestIndex::find(float qx, float qy) const {
    if (!std::isfinite(qx) || !std::isfinite(qy)) {
        return {}; // at no finite distance of anything
    }
    const Best best = onVectorUnit<Search>(this, qx, qy);
    const PointBlock* const block = best.child.block;
    if (block == nullptr) {
        return {};
    }
    return {true, best.index(), block->x[best.point], block->y[best.point], floatOf(best.distance)};
}

} // namespace qel
