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

namespace qel {

class GridCells {
public:
    /// Cuts [low, high] into 2^levels cells.
    GridCells(float low, float high, int levels);

    /// The cell that the choices between low and high halves lead to: x >= cut takes the high
    /// half. A NaN takes all low halves.
    std::uint32_t cellOf(float x) const {
        if (!isEven_) {
            return descend(x);
        }
        const std::uint32_t last = cellCount() - 1;
        std::uint32_t cell = guessOf(x);
        while (cell > 0 && !(x >= edges_[cell])) {
            --cell;
        }
        while (cell < last && x >= edges_[cell + 1]) {
            ++cell;
        }
        return cell;
    }

    /// A cell that mostly is the one of cellOf or its neighbour. Where it matters that it is cheap
    /// and not that it is right.
    std::uint32_t guessOf(float x) const {
        const float guess = (x - low_) * cellsPerUnit_;
        return !(guess >= 1.0f)       ? 0
               : guess < lastAsFloat_ ? static_cast<std::uint32_t>(guess)
                                      : cellCount() - 1;
    }

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
    bool isEven_; // cells are wide enough for the product to hit at most a neighbour
    float low_;   // edge 0
    float cellsPerUnit_;
    float lastAsFloat_;
};

} // namespace qel

#endif
