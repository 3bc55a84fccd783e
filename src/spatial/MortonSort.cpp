#include "spatial/MortonSort.h"

#include <algorithm>
#include <numeric>

namespace qel {
namespace {

// Both kinds of cells on their own, as a grid may be even along one axis alone.
template <typename Use>
void withCells(const GridCells& cells, const Use& use) {
    cells.isEven() ? use(cells.evenCells()) : use(cells.unevenCells());
}

// A block at a time, as compilers make no vector code of loops that read coordinates of points.
template <typename Point, typename CellsX, typename CellsY>
void encode(const Point* points, std::size_t count, const CellsX& cellsX, const CellsY& cellsY,
            std::uint16_t* codes) {
    constexpr std::size_t kBlock = 256;
    float x[kBlock], y[kBlock];
    for (std::size_t begin = 0; begin < count; begin += kBlock) {
        const std::size_t size = std::min(kBlock, count - begin);
        for (std::size_t i = 0; i < size; ++i) {
            x[i] = points[begin + i].x;
            y[i] = points[begin + i].y;
        }
        for (std::size_t i = 0; i < size; ++i) {
            codes[begin + i] =
                static_cast<std::uint16_t>(mortonCode(cellsX.cellOf(x[i]), cellsY.cellOf(y[i])));
        }
    }
}

template <typename Point>
void encode(const Point* points, std::size_t count, const QuadGrid& grid, std::uint16_t* codes) {
    withCells(grid.x(), [&](const auto& cellsX) {
        withCells(grid.y(),
                  [&](const auto& cellsY) { encode(points, count, cellsX, cellsY, codes); });
    });
}

// Counts the points of each cell two places on, so that the place before a cell's own holds its
// begin. Points that are put there advance it to the end, which is where the next cell begins.
CellStarts countCells(const std::uint16_t* codes, std::size_t count, int bits) {
    CellStarts starts((std::size_t{1} << bits) + 2);
    std::uint32_t* const counts = starts.data() + 2;
    for (std::size_t i = 0; i < count; ++i) {
        ++counts[codes[i]];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    return starts;
}

PlanePoint planePoint(const PlanePoint& point, std::size_t) {
    return point;
}

template <typename Point>
CellStarts sortPoints(const Point* points, std::size_t count, const QuadGrid& grid,
                      std::uint16_t* codes, PlanePoint* sorted) {
    encode(points, count, grid, codes);
    CellStarts starts = countCells(codes, count, grid.bits());
    std::uint32_t* const next = starts.data() + 1;
    for (std::size_t i = 0; i < count; ++i) {
        sorted[next[codes[i]]++] = planePoint(points[i], i);
    }
    return starts;
}

} // namespace

CellStarts mortonSort(const std::vector<TripletBase<float>>& points, const QuadGrid& grid,
                      std::uint16_t* codes, PlanePoint* sorted) {
    return sortPoints(points.data(), points.size(), grid, codes, sorted);
}

CellStarts mortonSort(PlanePoint* points, std::size_t count, const QuadGrid& grid,
                      std::uint16_t* codes, PlanePoint* scratch) {
    CellStarts starts = sortPoints(points, count, grid, codes, scratch);
    std::copy(scratch, scratch + count, points);
    return starts;
}

} // namespace qel
