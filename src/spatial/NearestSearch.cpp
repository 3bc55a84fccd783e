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

#include "platform/VectorUnit.h"

namespace qel {
namespace {

constexpr std::int32_t kLaneBits = kLanes - 1;
constexpr std::int32_t kDone = std::numeric_limits<std::int32_t>::max();

QEL_KERNEL std::int32_t bitsOf(float value) {
    std::int32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

QEL_KERNEL float floatOf(std::int32_t bits) {
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

QEL_KERNEL std::int32_t least(const std::int32_t* values) {
    std::int32_t result = kDone;
    for (int i = 0; i < kLanes; ++i) {
        result = values[i] < result ? values[i] : result;
    }
    return result;
}

// The children of a node that are still to be visited: distance and lane in one, kDone if not.
struct alignas(64) Frame {
    std::int32_t keys[kLanes];
    const BoxNode* node;
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
    for (int i = 0; i < kLanes; ++i) {
        const float dx = beyond(qx, node.xmin[i], node.xmax[i]);
        const float dy = beyond(qy, node.ymin[i], node.ymax[i]);
        frame.keys[i] = (bitsOf(dx * dx + dy * dy) & ~kLaneBits) | i;
    }
}

struct Best {
    std::int32_t distance; // bits; points beyond it lose
    std::uint32_t position;
    bool isFound;
};

// Measures the 16 points from `position` on.
QEL_KERNEL void scanBlock(const NearestIndex& index, std::uint32_t position, float qx, float qy,
                          Best& best) {
    const float* const points = index.coordinates() + std::size_t{2} * position;
    alignas(64) std::int32_t distances[kLanes];
    for (int i = 0; i < kLanes; ++i) {
        const float dx = qx - points[2 * i];
        const float dy = qy - points[2 * i + 1];
        distances[i] = bitsOf(dx * dx + dy * dy);
    }
    const std::int32_t nearest = least(distances);
    if (nearest > best.distance) {
        return;
    }
    for (std::uint32_t i = 0; i < kLanes; ++i) {
        if (distances[i] == nearest && (nearest < best.distance || !best.isFound ||
                                        index.isFirst(position + i, best.position, qx, qy))) {
            best = {nearest, position + i, true};
        }
    }
}

QEL_KERNEL Best search(const NearestIndex& index, float qx, float qy) {
    Frame frames[NearestIndex::kMaxHeight];
    int depth = 0;
    // A winner is nearer than the largest float.
    Best best = {bitsOf(std::numeric_limits<float>::max()) - 1, 0, false};
    open(frames[0], index.nodes()[0], qx, qy);
    while (depth >= 0) {
        Frame& frame = frames[depth];
        const std::int32_t next = least(frame.keys);
        if ((next & ~kLaneBits) > best.distance) {
            --depth; // equal distances are visited: they may hold the winner of a tie
            continue;
        }
        const std::int32_t lane = next & kLaneBits;
        frame.keys[lane] = kDone;
        const std::uint32_t child = frame.node->child[lane];
        if ((child & NearestIndex::kBlock) != 0) {
            scanBlock(index, child - NearestIndex::kBlock, qx, qy, best);
        } else {
            open(frames[++depth], index.nodes()[child], qx, qy);
        }
    }
    return best;
}

Best searchPortable(const NearestIndex& index, float qx, float qy) {
    return search(index, qx, qy);
}
#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 Best searchAvx2(const NearestIndex& index, float qx, float qy) {
    return search(index, qx, qy);
}
QEL_AVX512 Best searchAvx512(const NearestIndex& index, float qx, float qy) {
    return search(index, qx, qy);
}
#endif

Best searchOnThisMachine(const NearestIndex& index, float qx, float qy) {
    switch (vectorUnit()) {
#if defined(QEL_VECTOR_UNITS)
    case VectorUnit::avx512:
        return searchAvx512(index, qx, qy);
    case VectorUnit::avx2:
        return searchAvx2(index, qx, qy);
#endif
    default:
        return searchPortable(index, qx, qy);
    }
}

} // namespace

NearestHit searchNearest(const NearestIndex& index, float qx, float qy) {
    const Best best = searchOnThisMachine(index, qx, qy);
    return {best.position, floatOf(best.distance), best.isFound};
}

} // namespace qel
