// Builds the hierarchy top-down over blocks in Morton order, as a linear BVH (C. Lauterbach et al.,
// "Fast BVH construction on GPUs", Eurographics 2009) with 16 children to a node: consecutive
// blocks are split where the highest bit of their paths changes, which keeps the parts square
// without looking at a point. O(blocks log blocks), no scratch memory.

#include <algorithm>
#include <cmath>
#include <limits>

#include "spatial/EntryGrid.h"
#include "spatial/LinearQuadtree.h"
#include "spatial/MortonCode.h"
#include "spatial/PointBvh.h"

namespace qel {
namespace {

// Consecutive blocks that become a child, which is a node but for a single one.
struct Run {
    std::size_t begin, end;
    int freeBits; // the paths agree but for these lowest bits, and no others do

    int depth() const { return kPathBits - freeBits; }
    std::size_t count() const { return end - begin; }
};

// Up to 16 runs in the order of the blocks.
struct Children {
    Run runs[kLanes];
    int count = 0;

    void replace(Run* run, const Run& low, const Run& high) {
        std::copy_backward(run + 1, runs + count, runs + count + 1);
        run[0] = low;
        run[1] = high;
        ++count;
    }
};

// Writes the whole block; returns the box of the points.
QuadRectangle fillBlock(PointBlock& block, const PlanePoint* points, int count) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (int i = 0; i < kLanes; ++i) {
        const PlanePoint& p = points[std::min(i, count - 1)];
        block.x[i] = i < count && !std::isnan(p.x) ? p.x : kInfinity;
        block.y[i] = i < count && !std::isnan(p.y) ? p.y : kInfinity;
        block.index[i] = p.index;
    }
    return boxOf(points, static_cast<std::size_t>(count));
}

constexpr std::uint32_t kNoIndex = std::numeric_limits<std::uint32_t>::max();

class PointBvhBuilder {
public:
    PointBvhBuilder(const PlanePoint* points, const LinearQuadtree& quadtree, PointBvh& bvh,
                    std::vector<EntryGrid>& entryGrids)
        : points_(points),
          leaves_(quadtree.leaves),
          blocks_(quadtree.blocks),
          bvh_(bvh),
          entryGrids_(entryGrids) {}

    // What a parent needs to know of a node.
    struct Added {
        std::uint32_t place;
        std::uint32_t firstIndex;
        QuadRectangle box;
    };

    // Adds a node over blocks and all below it, its blocks first. All points before them have been
    // read. `quad` is the node of the quadtree that holds the parent's, `parentDepth` cuts below
    // the root.
    Added addNode(const Run& whole, QuadNode quad, int parentDepth) {
        const Children children = split(whole);
        const BlockRun& first = blocks_[whole.begin];
        bvh_.storage().releaseSourceUntil(points_ + first.begin);
        Added added = {bvh_.addNode(), kNoIndex, kEmptyRectangle};
        for (int depth = parentDepth; depth < whole.depth(); ++depth) {
            const bool isHigh = (first.path >> (kPathBits - 1 - depth) & 1) != 0;
            quad = quad.half(depth % 2 == 0, isHigh);
        }
        for (EntryGrid& grid : entryGrids_) {
            grid.add(added.place, quad, first.path, whole.depth());
        }
        BvhNode node = {};
        node.firstLeaf = first.firstLeaf;
        node.quad = isInOneLeaf(whole) ? leaves_[first.firstLeaf] : quad;
        Added below[kLanes];
        std::fill_n(below, kLanes, Added{0, kNoIndex, kEmptyRectangle});
        for (int lane = 0; lane < children.count; ++lane) {
            if (children.runs[lane].count() == 1) {
                below[lane] = addBlock(blocks_[children.runs[lane].begin], node, lane);
            }
        }
        for (int lane = 0; lane < children.count; ++lane) {
            if (children.runs[lane].count() > 1) {
                below[lane] = addNode(children.runs[lane], quad, whole.depth());
            }
        }
        for (int lane = 0; lane < kLanes; ++lane) {
            node.child[lane] = below[lane].place;
            node.boxes.set(lane, below[lane].box);
            extend(added.box, below[lane].box);
            added.firstIndex = std::min(added.firstIndex, below[lane].firstIndex);
        }
        node.firstIndex = added.firstIndex;
        bvh_.node(added.place) = node;
        return added;
    }

private:
    bool isInOneLeaf(const Run& run) const {
        const BlockRun& last = blocks_[run.end - 1];
        return last.leafBegins == 0 && last.firstLeaf == blocks_[run.begin].firstLeaf;
    }

    Added addBlock(const BlockRun& run, BvhNode& node, int lane) {
        node.leaves.first[lane] = run.firstLeaf;
        node.leaves.begins[lane] = run.leafBegins;
        const std::uint32_t place = bvh_.addBlock();
        PointBlock& block = bvh_.block(place);
        const QuadRectangle box = fillBlock(block, points_ + run.begin, run.count);
        return {BvhNode::kBlock + place, *std::min_element(block.index, block.index + kLanes), box};
    }

    // The most blocks that a child of a node over more than 16 blocks should hold: 16, 256, ...,
    // the largest that lets it have several. Nodes just above the blocks are thereby well filled.
    static std::size_t childSize(std::size_t count) {
        std::size_t size = kLanes;
        while (size * kLanes < count) {
            size *= kLanes;
        }
        return size;
    }

    // Single blocks, or else what is left of splitting the longest run until none is too long or
    // there are 16.
    Children split(const Run& whole) const {
        Children children;
        if (whole.count() <= static_cast<std::size_t>(kLanes)) {
            for (std::size_t i = whole.begin; i < whole.end; ++i) {
                children.runs[children.count++] = {i, i + 1, 0};
            }
            return children;
        }
        const std::size_t size = childSize(whole.count());
        children.runs[children.count++] = whole;
        while (children.count < kLanes) {
            Run* const longest =
                std::max_element(children.runs, children.runs + children.count,
                                 [](const Run& a, const Run& b) { return a.count() < b.count(); });
            if (longest->count() <= size) {
                break;
            }
            const Run run = *longest;
            const int bits = differingBits(run), freeBits = std::max(bits - 1, 0);
            const std::size_t middle = middleOf(run, bits);
            children.replace(longest, {run.begin, middle, freeBits}, {middle, run.end, freeBits});
        }
        return children;
    }

    // The lowest bits of the paths that are not the same in all blocks.
    int differingBits(const Run& run) const {
        return bitWidth(blocks_[run.begin].path ^ blocks_[run.end - 1].path);
    }

    // Where the highest of these bits changes; half way if there are none.
    std::size_t middleOf(const Run& run, int bits) const {
        if (bits == 0) {
            return run.begin + run.count() / 2;
        }
        const std::uint64_t bit = std::uint64_t{1} << (bits - 1);
        const BlockRun* const blocks = blocks_.data();
        return static_cast<std::size_t>(
            std::partition_point(blocks + run.begin, blocks + run.end,
                                 [bit](const BlockRun& b) { return (b.path & bit) == 0; }) -
            blocks);
    }

    const PlanePoint* points_;
    const std::vector<QuadNode>& leaves_;
    const std::vector<BlockRun>& blocks_;
    PointBvh& bvh_;
    std::vector<EntryGrid>& entryGrids_;
};

} // namespace

void buildPointBvh(const PlanePoint* points, const QuadNode& root, const LinearQuadtree& quadtree,
                   PointBvh& bvh, std::vector<EntryGrid>& entryGrids) {
    const std::size_t blocks = quadtree.blocks.size();
    // Beyond the blocks there is room for those that a node adds before their turn.
    bvh.expect(blocks / 8 + 1, blocks + std::min(blocks, std::size_t{kLanes}));
    PointBvhBuilder(points, quadtree, bvh, entryGrids).addNode({0, blocks, kPathBits}, root, 0);
    bvh.storage().releaseSource();
}

} // namespace qel
