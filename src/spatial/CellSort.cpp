// Sorts points by the Z-order numbers of their grid cells: one pass over the upper half of the
// bits deals the points into runs that fit the caches, the lower half is sorted run by run.

#include "spatial/CellSort.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "platform/Buffer.h"
#include "platform/VectorDispatch.h"
#include "spatial/DigitSort.h"

namespace qel {
namespace {

constexpr int kSinglePassBits = 10;
constexpr std::size_t kShortRun = 32; // sorted by comparisons

bool isInCellOrder(const PlanePoint& a, const PlanePoint& b) {
    return a.group < b.group;
}

void dealByCells(const PlanePoint* from, PlanePoint* to, std::size_t count, int shift, int bits) {
    dealByDigit(
        count, shift, bits, [=](std::size_t i) { return from[i].group; },
        [=](std::size_t i, std::size_t place) { to[place] = from[i]; });
}

// Sorts a run by the lowest bits of the cells.
void sortRun(PlanePoint* run, PlanePoint* scratch, std::size_t count, int bits) {
    if (count <= kShortRun) {
        std::sort(run, run + count, isInCellOrder);
        return;
    }
    const int lowBits = bits / 2;
    dealByCells(run, scratch, count, 0, lowBits);
    dealByCells(scratch, run, count, lowBits, bits - lowBits);
}

struct EvenCellsKernel {
    QEL_KERNEL static void run(const TripletBase<float>* points, std::size_t count,
                               EvenCells cellsX, EvenCells cellsY, std::uint32_t* cells) {
        constexpr std::size_t kChunk = 256;
        float x[kChunk], y[kChunk]; // compilers do not gather from the points
        for (std::size_t begin = 0; begin < count; begin += kChunk) {
            const std::size_t size = std::min(kChunk, count - begin);
            for (std::size_t i = 0; i < size; ++i) {
                x[i] = points[begin + i].x;
                y[i] = points[begin + i].y;
            }
            for (std::size_t i = 0; i < size; ++i) {
                cells[begin + i] = 2 * spread(cellsX.cellOf(x[i])) + spread(cellsY.cellOf(y[i]));
            }
        }
    }
};

// The cell of each point.
void numberCells(const std::vector<TripletBase<float>>& points, const GridCells& gridX,
                 const GridCells& gridY, std::uint32_t* cells) {
    if (!gridX.isEven() || !gridY.isEven()) {
        std::transform(points.begin(), points.end(), cells, [&](const TripletBase<float>& p) {
            return cellNumber(gridX, gridY, p.x, p.y);
        });
        return;
    }
    const EvenCells cellsX = gridX.evenCells(), cellsY = gridY.evenCells();
#if defined(QEL_VECTOR_UNITS)
    if (vectorUnit() != VectorUnit::portable) { // wider registers do not look up edges faster
        return runAvx2<EvenCellsKernel>(points.data(), points.size(), cellsX, cellsY, cells);
    }
#endif
    runPortable<EvenCellsKernel>(points.data(), points.size(), cellsX, cellsY, cells);
}

// Counts the points of every run, and puts them into their runs. The starts of the runs become
// their ends. Returns the length of the longest.
std::uint32_t dealIntoRuns(const TripletBase<float>* points, const LeafOrder& order, int runBits,
                           std::vector<std::uint32_t>& runs) {
    const std::uint32_t* const cells = order.cells;
    std::uint32_t* const next = runs.data();
    for (std::size_t i = 0; i < order.count; ++i) {
        ++next[cells[i] >> runBits];
    }
    std::uint32_t longest = 0, sum = 0;
    for (std::uint32_t& run : runs) {
        const std::uint32_t size = run;
        longest = std::max(longest, size);
        run = sum;
        sum += size;
    }
    for (std::size_t i = 0; i < order.count; ++i) {
        order.points[next[cells[i] >> runBits]++] = {points[i].x, points[i].y,
                                                     static_cast<std::uint32_t>(i), cells[i]};
    }
    return longest;
}

void listCells(const LeafOrder& order, std::size_t begin, std::size_t end) {
    std::transform(order.points + begin, order.points + end, order.cells + begin,
                   [](const PlanePoint& p) { return p.group; });
}

} // namespace

void sortByCells(const std::vector<TripletBase<float>>& points, const GridCells& gridX,
                 const GridCells& gridY, LeafOrder& order) {
    const int cellBits = 2 * gridX.levels();
    const int runBits = cellBits > kSinglePassBits ? cellBits / 2 : 0;
    numberCells(points, gridX, gridY, order.cells);
    std::vector<std::uint32_t> runs(std::size_t{1} << (cellBits - runBits));
    const std::uint32_t longest = dealIntoRuns(points.data(), order, runBits, runs);
    if (runBits == 0) {
        listCells(order, 0, order.count);
        return;
    }
    Buffer<PlanePoint> scratch(longest);
    std::size_t begin = 0;
    for (const std::uint32_t end : runs) {
        sortRun(order.points + begin, scratch.data(), end - begin, runBits);
        listCells(order, begin, end); // while the run is in the cache
        begin = end;
    }
}

} // namespace qel
