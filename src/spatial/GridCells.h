#ifndef QEL_SPATIAL_GRIDCELLS_H
#define QEL_SPATIAL_GRIDCELLS_H

/// @file
/// The cuts of the bucket quadtree along one axis, from a node down to a fixed level.
///
/// Where a node is cut across x depends on its x range alone, so that the cuts across x and those
/// across y each form a grid. Its cells are found without branches, which no processor predicts:
/// by a product and a correction where cells have nearly the same width, else level by level.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel {

/// Cells of nearly the same width, wide enough for a product to hit at most a neighbour.
struct EvenCells {
    const float* edges;
    float low; ///< edge 0
    float cellsPerUnit;
    float last; ///< number of the last cell

    /// In cells from edge 0: within half a cell of where x lies among the edges.
    float placeOf(float x) const {
        const float place = (x - low) * cellsPerUnit;
        const float notBelow = place >= 0.0f ? place : 0.0f; // a NaN neither
        return notBelow < last + 1.0f ? notBelow : last + 1.0f;
    }

    /// Mostly the cell, or else its neighbour: where it matters that it is cheap and not that it is
    /// right. Cells of any width will do.
    std::uint32_t guessOf(float x) const {
        const float place = placeOf(x);
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(place < last ? place : last));
    }

    std::uint32_t cellOf(float x) const {
        // Only the edge next to the place may be on the other side of x.
        const float halfAhead = placeOf(x) + 0.5f;
        const auto edge = static_cast<std::int32_t>(halfAhead);
        const std::int32_t cell = edge - (x >= edges[edge] ? 0 : 1);
        const std::int32_t notBelow = cell > 0 ? cell : 0;
        const auto lastCell = static_cast<std::int32_t>(last);
        return static_cast<std::uint32_t>(notBelow < lastCell ? notBelow : lastCell);
    }
};

/// Cells of any width: the reference implementation.
struct UnevenCells {
    const float* edges;
    std::uint32_t count;

    /// The cell that the choices between low and high halves lead to: x >= cut takes the high
    /// half. A NaN takes all low halves.
    std::uint32_t cellOf(float x) const {
        std::uint32_t first = 0;
        for (std::uint32_t half = count / 2; half > 0; half /= 2) {
            first += x >= edges[first + half] ? half : 0;
        }
        return first;
    }
};

class GridCells {
public:
    /// Cuts [low, high] into 2^levels cells.
    GridCells(float low, float high, int levels);

    bool isEven() const { return isEven_; }
    EvenCells evenCells() const { return {edges_.data(), edges_[0], cellsPerUnit_, last_}; }
    UnevenCells unevenCells() const { return {edges_.data(), count()}; }

    int levels() const { return levels_; }
    std::uint32_t count() const { return std::uint32_t{1} << levels_; }
    /// Edge i of 0 .. count().
    float edge(std::uint32_t i) const { return edges_[i]; }

private:
    void cut(std::uint32_t first, std::uint32_t last);
    bool hasEvenCells() const;

    int levels_;
    std::vector<float> edges_;
    float cellsPerUnit_;
    float last_;
    bool isEven_;
};

} // namespace qel

#endif
