#include "spatial/LinearQuadtree.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Buffer.h"
#include "spatial/MortonSort.h"
#include "spatial/Partition.h"
#include "spatial/PointBvh.h"

namespace qel {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr QuadRectangle kUnknownBox = {-kInfinity, -kInfinity, kInfinity, kInfinity};

constexpr std::size_t kMaxBlock = kLanes;
constexpr std::size_t kFewPoints = 128; // partitioned rather than sorted by a grid
constexpr std::size_t kPointsPerCell = 2;
constexpr int kMaxGridLevels = 7; // whose codes have 14 bits
// Two cuts in turn, one along each axis, that change no rectangle: no further cut ever would.
constexpr int kMaxIdleCuts = 2;

// The bits of a path for the last of `depth` cuts.
std::uint64_t pathBits(std::uint64_t choices, int depth) {
    if (depth <= kPathBits) {
        return choices << (kPathBits - depth);
    }
    return depth < 2 * kPathBits ? choices >> (depth - kPathBits) : 0;
}

bool isSame(float a, float b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool isSame(const QuadRectangle& a, const QuadRectangle& b) {
    return isSame(a.xmin, b.xmin) && isSame(a.ymin, b.ymin) && isSame(a.xmax, b.xmax) &&
           isSame(a.ymax, b.ymax);
}

bool isOnePlace(const QuadRectangle& box) {
    return box.xmin == box.xmax && box.ymin == box.ymax;
}

// On which side of a cut points lie, by the box of their coordinates as cuts compare them: a NaN is
// below. Only a finite cut tells it from -infinity.
enum class Side { low, high, both };

Side sideOf(const QuadRectangle& box, bool acrossX, float cut) {
    const float least = acrossX ? box.xmin : box.ymin;
    if ((acrossX ? box.xmax : box.ymax) < cut) {
        return Side::low;
    }
    return least >= cut && least > -kInfinity ? Side::high : Side::both;
}

// The points of a node.
struct Part {
    std::size_t begin, end;
    std::uint64_t path;
    int depth;
    bool isInLeaf, isInBlock; // whether they already are in a leaf and in a block

    std::size_t count() const { return end - begin; }
    bool isDone() const { return isInLeaf && isInBlock; }

    Part lowHalf(std::size_t middle) const {
        return {begin, middle, path, depth + 1, isInLeaf, isInBlock};
    }
    Part highHalf(std::size_t middle) const {
        return {middle, end, path | pathBits(1, depth + 1), depth + 1, isInLeaf, isInBlock};
    }
};

// The points of a node, sorted by the cells of a grid.
struct SortedCells {
    const QuadGrid& grid;
    const CellStarts& starts;
    const Part& node;
};

class Cutter {
public:
    Cutter(const QuadtreeLimits& limits, bool isFinite, const SortedPoints& sorted,
           LinearQuadtree& tree)
        : limits_(limits), isFinite_(isFinite), sorted_(sorted), tree_(tree) {}

    // Cuts the node that holds the cells whose codes agree with `code` but for the lowest bits.
    void cutCells(const SortedCells& cells, std::uint32_t code, int lowestBits, bool isInLeaf,
                  bool isInBlock) {
        const std::uint32_t* const starts = cells.starts.data() + code;
        const std::size_t begin = starts[0], end = starts[std::size_t{1} << lowestBits];
        if (begin == end) {
            return;
        }
        const int cellDepth = cells.node.depth + cells.grid.bits();
        Part part = {cells.node.begin + begin,
                     cells.node.begin + end,
                     cells.node.path | pathBits(code, cellDepth),
                     cellDepth - lowestBits,
                     isInLeaf,
                     isInBlock};
        finish(part, [&] { return cells.grid.nodeAt(code, lowestBits); });
        if (part.isDone()) {
            return;
        }
        if (lowestBits == 0) {
            return cutPoints(part, cells.grid.nodeAt(code, 0), boxIfMany(part));
        }
        const std::uint32_t highHalf = std::uint32_t{1} << (lowestBits - 1);
        cutCells(cells, code, lowestBits - 1, part.isInLeaf, part.isInBlock);
        cutCells(cells, code | highHalf, lowestBits - 1, part.isInLeaf, part.isInBlock);
    }

    // Cuts a node cut by cut. The box is that of its points or a larger one.
    void cutPoints(Part part, QuadNode node, QuadRectangle box) {
        int idleCuts = 0;
        for (;;) {
            finish(part, [&] { return node; });
            if (part.isDone()) {
                return;
            }
            if (part.isInLeaf && isOnePlace(box)) {
                return addOnePlace(part);
            }
            if (idleCuts == kMaxIdleCuts) {
                return cutIdle(part, node, box);
            }
            const bool acrossX = part.depth % 2 == 0;
            const float cut = node.middle(acrossX);
            const Side side = sideOf(box, acrossX, cut);
            if (side == Side::both && acrossX && part.count() > kFewPoints && std::isfinite(cut)) {
                return cutByGrid(part, node);
            }
            const std::size_t middle = cutAt(part, side, acrossX, cut);
            const Part low = part.lowHalf(middle), high = part.highHalf(middle);
            const QuadNode half = node.half(acrossX, high.count() > 0);
            if (low.count() > 0 && high.count() > 0) {
                cutPoints(low, node.half(acrossX, false), knownBox(low, box));
                box = knownBox(high, box);
                idleCuts = 0;
            } else {
                idleCuts = isSame(half.rectangle, node.rectangle) ? idleCuts + 1 : 0;
                box = side == Side::both ? boxOf(part) : box; // passes the next idle cuts at once
            }
            part = high.count() > 0 ? high : low;
            node = half;
        }
    }

private:
    // Makes a leaf and a block of a node that is one.
    template <typename NodeOf>
    void finish(Part& part, const NodeOf& node) {
        if (!part.isInLeaf &&
            (part.count() <= limits_.capacity || part.depth == limits_.maxDepth)) {
            addLeaf(part, node(), part.depth);
        }
        if (!part.isInBlock && part.count() <= kMaxBlock) {
            addBlock(part);
        }
    }

    void addLeaf(Part& part, const QuadNode& node, int depth) {
        if (part.isInBlock) {
            BlockRun& block = tree_.blocks.back();
            const unsigned point = static_cast<unsigned>(part.begin - block.begin);
            block.leafBegins = static_cast<std::uint16_t>(block.leafBegins | (1u << point & ~1u));
        }
        tree_.leaves.push_back(node);
        tree_.maxDepthReached = std::max(tree_.maxDepthReached, depth);
        part.isInLeaf = true;
    }

    void addBlock(Part& part) {
        const std::size_t firstLeaf = tree_.leaves.size() - (part.isInLeaf ? 1 : 0);
        tree_.blocks.push_back({part.path, static_cast<std::uint32_t>(part.begin),
                                static_cast<std::uint32_t>(firstLeaf), 0,
                                static_cast<std::uint8_t>(part.count())});
        part.isInBlock = true;
    }

    // Of points at one place, the first in the list wins wherever any of them would.
    void addOnePlace(Part& part) {
        part.end = part.begin + 1; // points at one place are in the order of the list
        addBlock(part);
    }

    std::size_t cutAt(const Part& part, Side side, bool acrossX, float cut) {
        switch (side) {
        case Side::low:
            return part.end;
        case Side::high:
            return part.begin;
        case Side::both:
            break;
        }
        return part.begin + partition(sorted_.points + part.begin, part.count(), acrossX, cut,
                                      scratch(part.count()));
    }

    void cutByGrid(const Part& part, const QuadNode& node) {
        const QuadGrid grid(node, gridLevels(part.count(), kPointsPerCell, kMaxGridLevels));
        const CellStarts starts = mortonSort(sorted_.points + part.begin, part.count(), grid,
                                             sorted_.codes + part.begin, scratch(part.count()));
        cutCells({grid, starts, part}, 0, grid.bits(), part.isInLeaf, part.isInBlock);
    }

    // Ends a node that its cuts do not change any more.
    void cutIdle(Part& part, const QuadNode& node, const QuadRectangle& box) {
        if (!part.isInLeaf) {
            addLeaf(part, node, std::max(part.depth, limits_.maxDepth));
        }
        if (part.isInBlock) {
            return;
        }
        if (isOnePlace(box)) {
            return addOnePlace(part);
        }
        dropNonFinite(part);
        cutInTwo(part);
    }

    // Drops points that are never found, but the first if there are no others.
    void dropNonFinite(Part& part) {
        if (!isFinite_) {
            PlanePoint* const points = sorted_.points;
            const auto isBad = [](const PlanePoint& p) { return !qel::isFinite(p); };
            const auto kept = std::remove_if(points + part.begin, points + part.end, isBad);
            part.end = std::max(static_cast<std::size_t>(kept - points), part.begin + 1);
        }
    }

    // Cuts points of one leaf, finite ones or a single one, in the middle of their box.
    void cutInTwo(Part& part) {
        PlanePoint* const begin = sorted_.points + part.begin;
        const QuadRectangle box = qel::boxOf(begin, part.count());
        if (isOnePlace(box)) {
            return addOnePlace(part);
        }
        if (part.count() <= kMaxBlock) {
            return addBlock(part);
        }
        const auto extent = [](float low, float high) {
            return static_cast<double>(high) - static_cast<double>(low);
        };
        const bool acrossX = extent(box.xmin, box.xmax) > extent(box.ymin, box.ymax);
        const float least = acrossX ? box.xmin : box.ymin, most = acrossX ? box.xmax : box.ymax;
        const auto middle =
            static_cast<float>(0.5 * (static_cast<double>(least) + static_cast<double>(most)));
        Part high = part;
        high.begin += partition(begin, part.count(), acrossX, middle > least ? middle : most,
                                scratch(part.count()));
        part.end = high.begin;
        cutInTwo(part);
        cutInTwo(high);
    }

    // For many points, the pass that it takes to know the box is worth it.
    QuadRectangle knownBox(const Part& part, const QuadRectangle& box) const {
        return part.count() > kFewPoints ? boxOf(part) : box;
    }
    QuadRectangle boxIfMany(const Part& part) const { return knownBox(part, kUnknownBox); }

    // The box of the coordinates as cuts compare them.
    QuadRectangle boxOf(const Part& part) const {
        const PlanePoint* const begin = sorted_.points + part.begin;
        const PlanePoint* const end = sorted_.points + part.end;
        QuadRectangle box = qel::boxOf(begin, part.count());
        if (!isFinite_) {
            const auto hasNan = [&](float PlanePoint::*coordinate) {
                return std::any_of(begin, end,
                                   [=](const PlanePoint& p) { return std::isnan(p.*coordinate); });
            };
            box.xmin = hasNan(&PlanePoint::x) ? -kInfinity : box.xmin;
            box.ymin = hasNan(&PlanePoint::y) ? -kInfinity : box.ymin;
        }
        return box;
    }

    PlanePoint* scratch(std::size_t count) {
        if (scratch_.size() < count) {
            scratch_ = Buffer<PlanePoint>(std::max(count, 2 * scratch_.size()));
        }
        return scratch_.data();
    }

    QuadtreeLimits limits_;
    bool isFinite_;
    SortedPoints sorted_;
    LinearQuadtree& tree_;
    Buffer<PlanePoint> scratch_;
};

void copyPoints(const std::vector<TripletBase<float>>& points, std::size_t count, PlanePoint* to) {
    for (std::size_t i = 0; i < count; ++i) {
        to[i] = planePoint(points[i], i);
    }
}

} // namespace

LinearQuadtree buildLinearQuadtree(const std::vector<TripletBase<float>>& points,
                                   const QuadNode& root, const QuadRectangle& box, bool isFinite,
                                   const QuadtreeLimits& limits, const SortedPoints& sorted) {
    LinearQuadtree tree;
    const std::size_t count = points.size();
    // Leaves and blocks are more than half full on average. What is set aside beyond is not
    // touched.
    tree.leaves.reserve(std::min(count, 2 * count / std::max<std::size_t>(limits.capacity, 1) + 1));
    tree.blocks.reserve(2 * count / kMaxBlock + 1);
    Cutter cutter(limits, isFinite, sorted, tree);
    const Part all = {0, count, 0, 0, false, false};
    if (isFinite && isOnePlace(box)) {
        copyPoints(points, std::min(count, kMaxBlock), sorted.points); // no others are read
        cutter.cutPoints(all, root, box);
    } else if (count <= kFewPoints) {
        copyPoints(points, count, sorted.points);
        cutter.cutPoints(all, root, kUnknownBox);
    } else {
        const QuadGrid grid(root, gridLevels(count, kPointsPerCell, kMaxGridLevels));
        const CellStarts starts = mortonSort(points, grid, sorted.codes, sorted.points);
        cutter.cutCells({grid, starts, all}, 0, grid.bits(), false, false);
    }
    return tree;
}

} // namespace qel
