// Sorts points by the Z-order numbers of their grid cells: one pass over the upper half of the
// bits deals the points into runs that fit the caches, the lower half is sorted run by run.

#include "spatial/CellSort.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>

namespace qel {
namespace {

constexpr int kSinglePassBits = 10;
constexpr std::size_t kShortRun = 32; // sorted by comparisons
constexpr int kDigitBits = 6;
constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;

bool isInCellOrder(const PlanePoint& a, const PlanePoint& b) {
    return a.cell < b.cell;
}

// One stable pass of a radix sort.
void dealByDigit(const PlanePoint* from, PlanePoint* to, std::size_t count, int shift) {
    std::array<std::uint32_t, kDigits> next{};
    const auto digit = [shift](const PlanePoint& p) { return (p.cell >> shift) & (kDigits - 1); };
    for (std::size_t i = 0; i < count; ++i) {
        ++next[digit(from[i])];
    }
    std::uint32_t sum = 0;
    for (std::uint32_t& n : next) {
        const std::uint32_t size = n;
        n = sum;
        sum += size;
    }
    for (std::size_t i = 0; i < count; ++i) {
        to[next[digit(from[i])]++] = from[i];
    }
}

// Sorts a run by the lowest bits of the cells.
void sortRun(PlanePoint* run, PlanePoint* scratch, std::size_t count, int bits) {
    if (count <= kShortRun) {
        std::sort(run, run + count, isInCellOrder);
        return;
    }
    for (int shift = 0; shift < bits; shift += 2 * kDigitBits) {
        dealByDigit(run, scratch, count, shift);
        dealByDigit(scratch, run, count, shift + kDigitBits);
    }
}

QEL_KERNEL void number(const TripletBase<float>* points, std::size_t count, EvenCells cellsX,
                       EvenCells cellsY, std::uint32_t* cells) {
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

void numberPortable(const TripletBase<float>* points, std::size_t count, const EvenCells& cellsX,
                    const EvenCells& cellsY, std::uint32_t* cells) {
    number(points, count, cellsX, cellsY, cells);
}
#if defined(QEL_VECTOR_UNITS)
QEL_AVX2 void numberAvx2(const TripletBase<float>* points, std::size_t count,
                         const EvenCells& cellsX, const EvenCells& cellsY, std::uint32_t* cells) {
    number(points, count, cellsX, cellsY, cells);
}
#endif

// The cell of each point.
void numberCells(const std::vector<TripletBase<float>>& points, const GridCells& gridX,
                 const GridCells& gridY, std::vector<std::uint32_t>& cells) {
    if (!gridX.isEven() || !gridY.isEven()) {
        std::transform(
            points.begin(), points.end(), cells.begin(),
            [&](const TripletBase<float>& p) { return cellNumber(gridX, gridY, p.x, p.y); });
        return;
    }
    const EvenCells cellsX = gridX.even(), cellsY = gridY.even();
#if defined(QEL_VECTOR_UNITS)
    if (vectorUnit() != VectorUnit::portable) {
        numberAvx2(points.data(), points.size(), cellsX, cellsY, cells.data());
        return;
    }
#endif
    numberPortable(points.data(), points.size(), cellsX, cellsY, cells.data());
}

} // namespace

void sortByCells(const std::vector<TripletBase<float>>& points, const GridCells& gridX,
                 const GridCells& gridY, LeafOrder& order) {
    const int cellBits = 2 * gridX.levels();
    const int runBits = cellBits > kSinglePassBits ? cellBits / 2 : 0;
    std::vector<std::uint32_t>& cells = order.cells;
    std::vector<std::uint32_t> starts((std::size_t{1} << (cellBits - runBits)) + 1);
    cells.resize(points.size());
    numberCells(points, gridX, gridY, cells);
    for (const std::uint32_t cell : cells) {
        ++starts[(cell >> runBits) + 1];
    }
    const std::uint32_t longest = *std::max_element(starts.begin(), starts.end());
    std::partial_sum(starts.begin(), starts.end(), starts.begin());

    std::vector<PlanePoint>& sorted = order.points;
    sorted.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        sorted[starts[cells[i] >> runBits]++] = {points[i].x, points[i].y,
                                                 static_cast<std::uint32_t>(i), cells[i]};
    }
    if (runBits > 0) { // each start is now the end of its run
        std::vector<PlanePoint> scratch(longest);
        std::size_t begin = 0;
        for (std::size_t run = 0; run + 1 < starts.size(); ++run) {
            sortRun(sorted.data() + begin, scratch.data(), starts[run] - begin, runBits);
            begin = starts[run];
        }
    }
    std::transform(sorted.begin(), sorted.end(), cells.begin(),
                   [](const PlanePoint& p) { return p.cell; });
}

} // namespace qel
