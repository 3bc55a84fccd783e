#include "spatial/BlockCutter.h"

#include <algorithm>
#include <cstddef>

#include "platform/Buffer.h"
#include "spatial/BlockFill.h"
#include "spatial/BoxTree.h"
#include "spatial/CellSort.h"
#include "spatial/DigitSort.h"
#include "spatial/KeyRuns.h"

namespace qel {
namespace {

constexpr std::size_t kCapacity = kLanes;
constexpr std::size_t kMostToHalve = 2 * kCapacity; // more points are sorted by finer cells

// Bits of a cell within a cell; up to two such fit below a cell in the keys of blocks. What lies
// deeper is in order, but keys do not tell it apart.
constexpr int kFinerBits = 16;

// Numbers the cells of a grid over a box, square ones and 2^levels of them along its longer side.
// The ends of that side get different numbers, so that cells separate any points that are apart.
// In double, in which no difference of floats overflows.
class CellsInBox {
public:
    /// Not for a box without extent. Up to 8 levels.
    CellsInBox(const QuadRectangle& box, int levels)
        : left_(static_cast<double>(box.xmin)),
          bottom_(static_cast<double>(box.ymin)),
          cellsPerUnit_(static_cast<double>(1 << levels) /
                        std::max(static_cast<double>(box.xmax) - left_,
                                 static_cast<double>(box.ymax) - bottom_)),
          last_(static_cast<double>((1 << levels) - 1)) {}

    std::uint32_t cellOf(const PlanePoint& p) const {
        return cellNumber(number(static_cast<double>(p.x) - left_),
                          number(static_cast<double>(p.y) - bottom_));
    }

private:
    std::uint32_t number(double distance) const {
        return static_cast<std::uint32_t>(
            static_cast<std::int32_t>(std::min(distance * cellsPerUnit_, last_)));
    }

    double left_, bottom_;
    double cellsPerUnit_;
    double last_;
};

class BlockCutter {
public:
    explicit BlockCutter(LeafOrder& order) : order_(order) {
        blocks_.reserve(order.count / (kCapacity / 2) + 1);
    }

    std::vector<BlockRun> cut() {
        cut(0, order_.count, 0, kBitsInCell);
        return std::move(blocks_);
    }

private:
    // Cuts points that are sorted by their cells. Keys consist of `key`, and the cells from bit
    // `shift` on.
    void cut(std::size_t begin, std::size_t end, std::uint64_t key, int shift) {
        const std::uint32_t* const cells = order_.cells + begin;
        KeyRuns runs(cells, end - begin, kCapacity, 0, kBitsInCell - 1);
        while (runs.next()) {
            const std::size_t first = begin + runs.begin(), last = begin + runs.end();
            const std::uint64_t keyHere =
                shift >= 0 ? key | (std::uint64_t{order_.cells[first]} << shift) : key;
            addPart(first, last, keyHere, shift - 1);
        }
    }

    // Cuts points of one cell that are too many for a block. Keys consist of `key`, and what tells
    // the parts apart from bit `top` down; bits below 0 are left out.
    void cutCell(std::size_t begin, std::size_t end, std::uint64_t key, int top) {
        PlanePoint* const points = order_.points;
        const QuadRectangle box = boxOf(points + begin, end - begin);
        if (box.xmin == box.xmax && box.ymin == box.ymax) {
            // Of points at one place, the first in the list wins wherever any of them would.
            std::iter_swap(points + begin,
                           std::min_element(points + begin, points + end, isListedBefore));
            addBlock(begin, 1, key);
        } else if (end - begin > kMostToHalve || !halve(begin, end, box, key, top)) {
            constexpr std::size_t kFew = 256;
            sortByFinerCells(begin, end, box,
                             end - begin <= kFew ? kFinerBits / 4 : kFinerBits / 2);
            cut(begin, end, key, top + 1 - kFinerBits);
        }
    }

    // Cuts in the middle of the longer side: cheaper than finer cells, where points are few.
    // False if that leaves the points together, as it may between neighbouring numbers and where
    // their sum overflows.
    bool halve(std::size_t begin, std::size_t end, const QuadRectangle& box, std::uint64_t key,
               int top) {
        const bool acrossX = box.xmax - box.xmin > box.ymax - box.ymin;
        const float cut = acrossX ? middle(box.xmin, box.xmax) : middle(box.ymin, box.ymax);
        const std::size_t middlePoint = partition(order_.points, begin, end, acrossX, cut);
        if (middlePoint == begin || middlePoint == end) {
            return false;
        }
        addPart(begin, middlePoint, key, top - 1);
        addPart(middlePoint, end, top >= 0 ? key | (std::uint64_t{1} << top) : key, top - 1);
        return true;
    }

    void addPart(std::size_t begin, std::size_t end, std::uint64_t key, int top) {
        if (end - begin > kCapacity) {
            cutCell(begin, end, key, top);
        } else {
            addBlock(begin, end - begin, key);
        }
    }

    // Replaces the cells by those of a grid in the box.
    void sortByFinerCells(std::size_t begin, std::size_t end, const QuadRectangle& box,
                          int levels) {
        PlanePoint* const points = order_.points + begin;
        std::uint32_t* const cells = order_.cells + begin;
        const std::size_t count = end - begin;
        const CellsInBox grid(box, levels);
        for (std::size_t i = 0; i < count; ++i) {
            cells[i] = grid.cellOf(points[i]);
        }
        if (scratch_.size() < count) {
            scratch_ = Buffer<NumberedPoint>(std::max(count, 2 * scratch_.size()));
        }
        NumberedPoint* const scratch = scratch_.data();
        dealByDigit(
            count, 0, levels, [=](std::size_t i) { return cells[i]; },
            [=](std::size_t i, std::size_t place) {
                scratch[place] = {points[i], cells[i]};
            });
        dealByDigit(
            count, levels, levels, [=](std::size_t i) { return scratch[i].cell; },
            [=](std::size_t i, std::size_t place) {
                points[place] = scratch[i].point;
                cells[place] = scratch[i].cell;
            });
    }

    void addBlock(std::size_t begin, std::size_t count, std::uint64_t key) {
        blocks_.push_back(
            {key, static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(count)});
    }

    static bool isListedBefore(const PlanePoint& a, const PlanePoint& b) {
        return a.index < b.index;
    }

    struct NumberedPoint {
        PlanePoint point;
        std::uint32_t cell;
    };

    LeafOrder& order_;
    std::vector<BlockRun> blocks_;
    Buffer<NumberedPoint> scratch_;
};

} // namespace

std::vector<BlockRun> cutIntoBlocks(LeafOrder& order) {
    return BlockCutter(order).cut();
}

} // namespace qel
