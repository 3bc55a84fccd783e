#ifndef QEL_POLYLINE_CROSSINGLIST_H
#define QEL_POLYLINE_CROSSINGLIST_H

/// @file
/// From what pairs of edges have in common to the crossings of two paths.

#include <cstddef>
#include <vector>

#include <qel/CurveCrossings.h>

#include "polyline/CurvePath.h"
#include "polyline/EdgeMeeting.h"

namespace qel {

/// A stretch of positive length that two paths share.
struct CommonStretch {
    CommonPlace begin;
    CommonPlace end;
    bool isOpposed;
    std::size_t edge; ///< that begins it
    std::size_t otherEdge;
};

/// Takes each pair of edges once, in any order.
class CrossingList {
public:
    CrossingList(const PlanePath& path, const PlanePath& other) : path_(path), other_(other) {}

    void take(std::size_t edge, std::size_t otherEdge);

    /// Joins stretches that continue each other, and drops points at the ends of stretches.
    void finish();

    const std::vector<CommonPlace>& points() const { return points_; }
    const std::vector<CommonStretch>& stretches() const { return stretches_; }

private:
    void joinStretches();
    void dropPointsOnStretches();

    const PlanePath& path_;
    const PlanePath& other_;
    std::vector<CommonPlace> points_;
    std::vector<CommonStretch> stretches_;
};

} // namespace qel

#endif
