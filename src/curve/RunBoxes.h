#ifndef QEL_CURVE_RUNBOXES_H
#define QEL_CURVE_RUNBOXES_H

/// @file
/// An index for many nearest-vertex searches on one polyline.
///
/// Consecutive vertices lie close together, so runs of them, taken as they stand, have small
/// boxes: no sorting, one pass over the points. Boxes of runs are gathered eight by eight into
/// boxes of boxes. A search passes over every box that is farther away than the best vertex so
/// far: near a smooth curve of any length it looks at some tens of vertices. Only where most of a
/// curve is about equally near, as at the centre of a circle, does it look at most vertices.
///
/// The answer is that of nearestVertex, ties included. For a box that does not hold q in some
/// component, the gap between q and the nearer side is at most the difference between q and any
/// vertex of the box; subtracting, squaring and adding in the same order of operations round
/// monotonically; so the computed squared gap is at most the computed squared distance of every
/// vertex in the box, and no slack is needed. A box at exactly the best distance is looked into if
/// it holds a lower index than the best.

#include <array>
#include <cstddef>
#include <vector>

#include "curve/Conversions.h"

namespace qel {

class RunBoxes {
public:
    /// Keeps a reference to the points. O(n).
    ///
    /// @param points  at least kRun
    explicit RunBoxes(const Points& points);

    /// The vertex that nearestVertex(points, q) finds. A good guess, such as the answer for a
    /// neighbouring probe, makes it faster and is never needed.
    ///
    /// @param guess  index of any vertex
    std::size_t nearestVertex(const Point& q, std::size_t guess) const;

    static constexpr std::size_t kRunBits = 4; // a run is 16 vertices
    static constexpr std::size_t kFanBits = 3; // a box of boxes holds 8
    static constexpr std::size_t kRun = std::size_t{1} << kRunBits;
    static constexpr std::size_t kFan = std::size_t{1} << kFanBits;

    /// The boxes inside one box, a row for each side, so that one pass of the vector unit measures
    /// them all. Boxes that are not there are empty and infinitely far away.
    struct Boxes {
        double lo[3][kFan];
        double hi[3][kFan];

        Boxes();
    };

    /// Level 0 are the runs; boxes of level l hold boxes of level l - 1.
    static constexpr std::size_t kMaxLevels = 20;

    /// What a search reads.
    struct View {
        const Point* points;
        std::size_t count;
        const Boxes* boxes;
        const std::size_t* levelStart; // boxes[levelStart[l]] is the first of level l >= 1
        std::size_t top;               // the level that is one box
    };

private:
    void buildRuns();
    void buildLevel(std::size_t level);

    const Points& points_;
    std::vector<Boxes> boxes_;
    std::array<std::size_t, kMaxLevels> levelStart_{};
    std::size_t top_ = 0;
};

} // namespace qel

#endif
