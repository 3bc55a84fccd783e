#ifndef QEL_SPATIAL_GRIDCELLS_H
#define QEL_SPATIAL_GRIDCELLS_H

/// @file
/// The cuts of the bucket quadtree along one axis, down to a fixed level.
///
/// Where a node is cut across x depends on its x range alone, so that the cuts across x and those
/// across y each form a grid. Its cells are found by a product and a correction rather than by
/// descending the tree.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/VectorUnit.h"

namespace qel {

/// Cells of nearly the same width, wide enough for a product to hit at most a neighbour. No
/// branches: a processor could not foresee them, and vectors have none.
struct EvenCells {
    const float* edges;
    float low; ///< edge 0
    float cellsPerUnit;
    float last; ///< number of the last cell

    /// In cells from edge 0: within half a cell of where x lies among the edges.
    QEL_KERNEL float placeOf(float x) const {
        const float place = (x - low) * cellsPerUnit;
        const float notBelow = place >= 0.0f ? place : 0.0f; // a NaN neither
        return notBelow < last + 1.0f ? notBelow : last + 1.0f;
    }

    /// Mostly the cell, or else its neighbour.
    QEL_KERNEL std::int32_t guessOf(float x) const {
        const float place = placeOf(x);
        return static_cast<std::int32_t>(place < last ? place : last);
    }

    QEL_KERNEL std::uint32_t cellOf(float x) const {
        // Only the edge next to the place may be on the other side of x.
        const float halfAhead = placeOf(x) + 0.5f;
        const auto edge = static_cast<std::int32_t>(halfAhead);
        const std::int32_t cell = edge - (x >= edges[edge] ? 0 : 1);
        const std::int32_t notBelow = cell > 0 ? cell : 0;
        const auto lastCell = static_cast<std::int32_t>(last);
        return static_cast<std::uint32_t>(notBelow < lastCell ? notBelow : lastCell);
    }
};

class GridCells {
public:
    /// Cuts [low, high] into 2^levels cells.
    GridCells(float low, float high, int levels);

    /// The cell that the choices between low and high halves lead to: x >= cut takes the high
    /// half. A NaN takes all low halves.
    std::uint32_t cellOf(float x) const { return isEven_ ? evenCells().cellOf(x) : descend(x); }

    /// Where it matters that it is cheap and not that it is right.
    std::uint32_t guessOf(float x) const {
        return static_cast<std::uint32_t>(evenCells().guessOf(x));
    }

    bool isEven() const { return isEven_; }
    EvenCells evenCells() const { return {edges_.data(), low_, cellsPerUnit_, lastAsFloat_}; }
    /// Edge i of 0 .. 2^levels.
    float edge(std::uint32_t i) const { return edges_[i]; }
    std::uint32_t cellCount() const { return std::uint32_t{1} << levels_; }
    int levels() const { return levels_; }

private:
    void cut(std::uint32_t first, std::uint32_t last);
    bool hasEvenCells() const;
    std::uint32_t descend(float x) const;

    int levels_;
    std::vector<float> edges_;
    bool isEven_;
    float low_; // edge 0
    float cellsPerUnit_;
    float lastAsFloat_;
};

} // namespace qel

#endif
