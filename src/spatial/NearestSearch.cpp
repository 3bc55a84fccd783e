// Depth-first search in NearestIndex, nearest boxes first. A step measures 16 boxes or 16 points
// at once.
//
// Squared distances are compared as the integers that their bits spell: for numbers that are not
// negative this is the same order, and the least of 16 integers is a vector operation. A box's
// number stands in the lowest bits of its distance, which rounds the distance down and so never
// hides a box.

#include "spatial/NearestSearch.h"

#include <cstring>
#include <limits>

#include "platform/FloatBits.h"
#include "platform/LowestBit.h"
#include "platform/Prefetch.h"
#include "platform/VectorDispatch.h"

#if defined(QEL_VECTOR_UNITS)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

constexpr std::int32_t kLaneBits = kLanes - 1;
constexpr std::uint32_t kNoLine = BoxNode::kBlock; // a node that there is not
constexpr std::int32_t kDone = std::numeric_limits<std::int32_t>::max();

#if defined(QEL_VECTOR_UNITS)
// In four vectors of four: compilers make a chain of 16 steps of the plain loops.
typedef std::int32_t Four __attribute__((vector_size(16)));

struct Sixteen {
    Four part[4];
};

QEL_KERNEL Four lesser(Four a, Four b) {
    return a < b ? a : b;
}

QEL_KERNEL std::int32_t least(const Sixteen& v) {
    const Four four = lesser(lesser(v.part[0], v.part[1]), lesser(v.part[2], v.part[3]));
    const Four two = lesser(four, Four{four[2], four[3], four[2], four[3]});
    return lesser(two, Four{two[1], two[1], two[1], two[1]})[0];
}

QEL_KERNEL std::int32_t least(const std::int32_t* values) {
    Sixteen v;
    std::memcpy(&v, values, sizeof(v));
    return least(v);
}

// The least of those above a bound; kDone if none is.
QEL_KERNEL std::int32_t leastAbove(std::int32_t bound, const std::int32_t* values) {
    const Four bounds = {bound, bound, bound, bound};
    const Four done = {kDone, kDone, kDone, kDone};
    Sixteen v;
    std::memcpy(&v, values, sizeof(v));
    for (Four& four : v.part) {
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
    const BoxNode* node;
    std::int32_t last;
};

// The difference to the nearer side, as QuadRectangle's outsideBy but for its sign, which the
// square takes away.
QEL_KERNEL float beyond(float q, float low, float high) {
    const float below = low - q, above = q - high;
    const float farther = below > above ? below : above;
    return farther > 0.0f ? farther : 0.0f;
}

QEL_KERNEL void open(Frame& frame, const BoxNode& node, float qx, float qy) {
    frame.node = &node;
    frame.last = -1;
    for (int i = 0; i < kLanes; ++i) {
        const float dx = beyond(qx, node.xmin[i], node.xmax[i]);
        const float dy = beyond(qy, node.ymin[i], node.ymax[i]);
        frame.keys[i] = (bitsOf(dx * dx + dy * dy) & ~kLaneBits) | i;
    }
}

struct Best {
    std::int32_t distance; // bits; points beyond it lose
    int lane;
    const PointBlock* block;  // null if none yet
    bool isRanked;            // its leaf, in the current distance
    std::uint64_t rankOfLeaf; // if so

    std::uint32_t leaf() const { return block->leaf[lane]; }
    std::uint32_t index() const { return block->index[lane]; }
};

// True if a point at the same distance as the best wins. Most ties are settled in one leaf.
QEL_KERNEL bool winsTie(const NearestIndex& index, const PointBlock& block, int lane, float qx,
                        float qy, Best& best) {
    if (block.leaf[lane] == best.leaf()) {
        return block.index[lane] < best.index();
    }
    if (!best.isRanked) {
        best.rankOfLeaf = index.rankOfLeaf(best.leaf(), qx, qy);
        best.isRanked = true;
    }
    const std::uint64_t rank = index.rankOfLeaf(block.leaf[lane], qx, qy);
    const bool wins = rank < best.rankOfLeaf;
    best.rankOfLeaf = wins ? rank : best.rankOfLeaf;
    return wins;
}

QEL_KERNEL void scanBlock(const NearestIndex& index, const PointBlock& block, float qx, float qy,
                          Best& best) {
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
    unsigned lanes = lanesAt(nearest, distances);
    if (nearest < best.distance || best.block == nullptr) {
        prefetch(block.index);
        best.distance = nearest;
        best.lane = lowestBit(lanes);
        best.block = &block;
        best.isRanked = false;
        lanes &= lanes - 1;
    }
    for (; lanes != 0; lanes &= lanes - 1) { // as near as the best
        const int lane = lowestBit(lanes);
        if (winsTie(index, block, lane, qx, qy, best)) {
            best.lane = lane;
            best.block = &block;
        }
    }
}

// Searches a node and all below it for something better, but for one node below it.
QEL_KERNEL void searchBelow(const NearestIndex& index, std::uint32_t line, std::uint32_t without,
                            float qx, float qy, Best& best) {
    Frame frames[BoxTree::kMaxHeight];
    int depth = 0;
    const BoxTree& tree = index.tree();
    open(frames[0], tree.node(line), qx, qy);
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
        if ((child & BoxNode::kBlock) != 0) {
            scanBlock(index, tree.block(child - BoxNode::kBlock), qx, qy, best);
        } else if (child != without) {
            const BoxNode& node = tree.node(child);
            prefetch(node.child);
            open(frames[++depth], node, qx, qy);
        }
    }
}

// True if all points beyond a side of the query's region are farther than the best. A query
// outside the region is not nearer to anything in it. False for a NaN.
QEL_KERNEL bool isFarther(float toSide, float distance) {
    return toSide > 0.0f && distance < toSide * toSide;
}

QEL_KERNEL bool isSettled(const QuadRectangle& region, float qx, float qy, const Best& best) {
    const float distance = floatOf(best.distance);
    return best.block != nullptr && isFarther(qx - region.xmin, distance) &&
           isFarther(region.xmax - qx, distance) && isFarther(qy - region.ymin, distance) &&
           isFarther(region.ymax - qy, distance);
}

QEL_KERNEL Best search(const NearestIndex& index, float qx, float qy) {
    // A winner is nearer than the largest float.
    Best best = {bitsOf(std::numeric_limits<float>::max()) - 1, 0, nullptr, false, 0};
    std::uint32_t searched = kNoLine;
    for (const StartTable& table : index.starts()) {
        const StartTable::Start* const start = table.find(qx, qy);
        if (start != nullptr && start->line != searched) {
            searchBelow(index, start->line, searched, qx, qy, best);
            if (start->line == 0 || isSettled(start->region, qx, qy, best)) {
                return best;
            }
            searched = start->line;
        }
    }
    searchBelow(index, 0, searched, qx, qy, best);
    return best;
}

struct SearchKernel {
    QEL_KERNEL static Best run(const NearestIndex* index, float qx, float qy) {
        return search(*index, qx, qy);
    }
};

} // namespace

NearestIndex::Nearest searchNearest(const NearestIndex& index, float qx, float qy) {
    const Best best = onVectorUnit<SearchKernel>(&index, qx, qy);
    if (best.block == nullptr) {
        return {};
    }
    return {true, best.index(), best.block->x[best.lane], best.block->y[best.lane],
            floatOf(best.distance)};
}

} // namespace qel
