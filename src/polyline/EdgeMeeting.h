#ifndef QEL_POLYLINE_EDGEMEETING_H
#define QEL_POLYLINE_EDGEMEETING_H

/// @file
/// What two edges in the plane have in common, decided exactly.

#include <cstddef>

#include "polyline/CurvePath.h"

namespace qel {

/// A point that two paths have in common, as a place on each.
struct CommonPlace {
    PathPlace on;
    PathPlace onOther;

    friend bool operator==(const CommonPlace& a, const CommonPlace& b) {
        return a.on == b.on && a.onOther == b.onOther;
    }
    friend bool operator<(const CommonPlace& a, const CommonPlace& b) {
        return a.on == b.on ? a.onOther < b.onOther : a.on < b.on;
    }
};

struct EdgeMeeting {
    enum class Kind { none, point, overlap };
    Kind kind = Kind::none;
    CommonPlace begin = {PathPlace::vertex(0), PathPlace::vertex(0)}; ///< in the first edge's order
    CommonPlace end = begin;
    bool isOpposed = false; ///< of an overlap: the edges run in opposite directions
};

/// Edge i of a path and edge j of another. Of the two places of a point, one at least is a vertex
/// unless both edges cross there; so is one of either end of an overlap.
EdgeMeeting meetEdges(const PlanePath& path, std::size_t i, const PlanePath& other, std::size_t j);

} // namespace qel

#endif
