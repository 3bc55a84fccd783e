#include "spatial/GridCells.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "spatial/QuadNode.h"

namespace qel {

GridCells::GridCells(float low, float high, int levels)
    : levels_(levels),
      edges_((std::size_t{1} << levels) + 1),
      cellsPerUnit_(static_cast<float>(count()) / (high - low)),
      last_(static_cast<float>(count() - 1)) {
    edges_.front() = low;
    edges_.back() = high;
    cut(0, count());
    isEven_ = hasEvenCells();
}

void GridCells::cut(std::uint32_t first, std::uint32_t last) {
    if (last - first < 2) {
        return;
    }
    const std::uint32_t mid = first + (last - first) / 2;
    edges_[mid] = middle(edges_[first], edges_[last]);
    cut(first, mid);
    cut(mid, last);
}

// Below a few units in the last place, cells differ in width by as much as they are wide. Above,
// no cut is rounded by more than a fraction of a cell. False for sides that are not finite.
bool GridCells::hasEvenCells() const {
    constexpr float kUnitsPerCell = 64.0f;
    const float low = edges_.front();
    const float high = edges_.back();
    const float unit =
        std::max(std::abs(low), std::abs(high)) * std::numeric_limits<float>::epsilon();
    const float width = (high - low) / static_cast<float>(count());
    return width > kUnitsPerCell * unit && width > std::numeric_limits<float>::min() &&
           std::abs(low) < std::numeric_limits<float>::max() / 4 &&
           std::abs(high) < std::numeric_limits<float>::max() / 4;
}

} // namespace qel
