// Builds the boxes of NearestIndex over sorted points.
//
// The points are cut into blocks first; from there on the tree is built over the blocks, a tenth as
// many. A run of blocks is split where the highest bit of their keys changes, which keeps parts
// square without looking at a point.

#include "spatial/BoxTreeBuilder.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <utility>

#include "spatial/BlockCutter.h"
#include "spatial/BlockFill.h"
#include "spatial/KeyRuns.h"

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr QuadRectangle kEmptyBox = {kInfinity, kInfinity, -kInfinity, -kInfinity};

// What a node of up to 16 blocks holds on average: splits in the middle fill it, and the blocks,
// to two thirds.
constexpr std::size_t kPointsOfLowNode = 128;

// Blocks of a node or of a block itself.
struct Run {
    std::size_t begin, end;
    int freeBits; // the keys agree but for these lowest bits, and no others do

    std::size_t count() const { return end - begin; }
};

class BoxTreeBuilder {
public:
    BoxTreeBuilder(const LeafOrder& order, const std::vector<BlockRun>& blocks, BoxTree& tree,
                   StartTables& starts)
        : points_(order.points),
          blocks_(blocks),
          tree_(tree),
          starts_(starts),
          keyBits_(kBitsInCell + 2 * order.gridLevels) {}

    void build() {
        // Beyond the blocks there is room for those that a node adds before their turn.
        tree_.reserve(blocks_.size() / 6 + 2, blocks_.size() + kLanes);
        QuadRectangle box;
        addNode({0, blocks_.size(), keyBits_}, 0, box);
        tree_.dropSource();
    }

private:
    // Adds the node over a run and all below it, its blocks first; returns the line of the node and
    // the box of its points. All points before the run have been read.
    std::uint32_t addNode(const Run& whole, int depth, QuadRectangle& box) {
        assert(depth < BoxTree::kMaxHeight);
        Run runs[kLanes];
        const int count = splitIntoRuns(whole, runs);
        tree_.keepSourceFrom(points_ + (whole.count() > 0 ? blocks_[whole.begin].begin : 0));
        const std::uint32_t line = tree_.addNode();
        addStart(line, whole);
        BoxNode node;
        box = kEmptyBox;
        for (int lane = 0; lane < count; ++lane) {
            if (runs[lane].count() == 1) {
                addBlock(blocks_[runs[lane].begin], node, lane, box);
            }
        }
        for (int lane = 0; lane < count; ++lane) {
            if (runs[lane].count() > 1) {
                QuadRectangle childBox;
                node.child[lane] = addNode(runs[lane], depth + 1, childBox);
                setBox(node, lane, childBox, box);
            }
        }
        leaveEmpty(node, count);
        tree_.node(line) = node;
        return line;
    }

    void addBlock(const BlockRun& run, BoxNode& node, int lane, QuadRectangle& whole) {
        const PlanePoint* const points = points_ + run.begin;
        const std::uint32_t line = tree_.addBlock();
        node.child[lane] = BoxNode::kBlock + line;
        setBox(node, lane, fillBlock(tree_.block(line), points, static_cast<int>(run.count)),
               whole);
    }

    // Sets the box of a child, which the box of the node takes in.
    static void setBox(BoxNode& node, int lane, const QuadRectangle& box, QuadRectangle& whole) {
        node.xmin[lane] = box.xmin;
        node.ymin[lane] = box.ymin;
        node.xmax[lane] = box.xmax;
        node.ymax[lane] = box.ymax;
        extend(whole, box);
    }

    static void leaveEmpty(BoxNode& node, int firstLane) {
        QuadRectangle none = kEmptyBox;
        for (int lane = firstLane; lane < kLanes; ++lane) {
            node.child[lane] = 0;
            setBox(node, lane, kEmptyBox, none);
        }
    }

    // Cells begin above the bits within a cell.
    void addStart(std::uint32_t line, const Run& run) {
        if (run.count() > 0 && run.freeBits >= kBitsInCell) {
            const auto cell = static_cast<std::uint32_t>(blocks_[run.begin].key >> kBitsInCell);
            for (StartTable& table : starts_) {
                table.add(line, cell, run.freeBits - kBitsInCell);
            }
        }
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

    int splitIntoRuns(const Run& whole, Run* runs) const {
        if (whole.count() > static_cast<std::size_t>(kLanes)) {
            return splitLongRun(whole, runs);
        }
        for (std::size_t i = 0; i < whole.count(); ++i) {
            runs[i] = {whole.begin + i, whole.begin + i + 1, 0};
        }
        return static_cast<int>(whole.count());
    }

    // Splits the longest part until none is too long or there are 16. Parts stay in their order.
    int splitLongRun(const Run& whole, Run* runs) const {
        const std::size_t longEnough = childSize(whole.count());
        int count = 1;
        runs[0] = whole;
        while (count < kLanes) {
            Run* const longest =
                std::max_element(runs, runs + count,
                                 [](const Run& a, const Run& b) { return a.count() < b.count(); });
            if (longest->count() <= longEnough) {
                break;
            }
            std::copy_backward(longest + 1, runs + count, runs + count + 1);
            longest[1] = splitOff(*longest);
            ++count;
        }
        return count;
    }

    // Cuts a run of two blocks or more; returns the part behind the cut.
    Run splitOff(Run& run) const {
        const std::uint64_t differing = blocks_[run.begin].key ^ blocks_[run.end - 1].key;
        std::size_t middle = run.begin + run.count() / 2;
        if (differing == 0) {
            run.freeBits = 0; // deep in a cell
        } else {
            run.freeBits = bitWidth(differing) - 1;
            const std::uint64_t bit = std::uint64_t{1} << run.freeBits;
            middle = static_cast<std::size_t>(
                std::partition_point(blocks_.data() + run.begin, blocks_.data() + run.end,
                                     [bit](const BlockRun& b) { return (b.key & bit) == 0; }) -
                blocks_.data());
        }
        const Run behind = {middle, run.end, run.freeBits};
        run.end = middle;
        return behind;
    }

    const PlanePoint* points_;
    const std::vector<BlockRun>& blocks_;
    BoxTree& tree_;
    StartTables& starts_;
    int keyBits_;
};

bool isFinite(const PlanePoint& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// They are at no finite distance of anything.
void dropNonFinitePoints(LeafOrder& order) {
    const PlanePoint* const firstBad =
        std::find_if_not(order.points, order.points + order.count, isFinite);
    auto kept = static_cast<std::size_t>(firstBad - order.points);
    for (std::size_t i = kept; i < order.count; ++i) {
        if (isFinite(order.points[i])) {
            order.points[kept] = order.points[i];
            order.cells[kept] = order.cells[i];
            ++kept;
        }
    }
    order.count = kept;
}

} // namespace

void buildBoxTree(LeafOrder& order, BoxTree& tree, StartTables& starts) {
    if (!order.isFinite) {
        dropNonFinitePoints(order);
    }
    std::size_t cellSize = kPointsOfLowNode;
    for (StartTable& table : starts) {
        table = StartTable(order.root, order.count, cellSize, order.gridLevels);
        cellSize *= kLanes;
    }
    BoxTreeBuilder(order, cutIntoBlocks(order), tree, starts).build();
}

} // namespace qel
