#ifndef QEL_POLYLINE_FARTHESTFROMSEGMENT_H
#define QEL_POLYLINE_FARTHESTFROMSEGMENT_H

/// @file
/// The vertex of a part of a polyline that is farthest from the segment between the part's ends.

#include <cstddef>

#include "polyline/OrientedBoxBvh.h"
#include "polyline/SegmentDistance.h"
#include "polyline/VertexArrays.h"

namespace qel {

/// A vertex and its squared distance; any vertex where all distances are 0.
struct FarthestVertex3D {
    std::size_t vertex;
    double d2;
};

/// The vertices strictly between two, and which of equally far ones counts: the one nearest the
/// middle, the lower of two, so that a curve on which many are equally far is halved.
struct VertexRange {
    std::size_t from;
    std::size_t to;

    bool isNearerMiddle(std::size_t i, std::size_t j) const {
        return distanceFromMiddle(i) != distanceFromMiddle(j)
                   ? distanceFromMiddle(i) < distanceFromMiddle(j)
                   : i < j;
    }

private:
    std::size_t distanceFromMiddle(std::size_t i) const { // times two
        return 2 * i > from + to ? 2 * i - (from + to) : from + to - 2 * i;
    }
};

/// The reference implementation: one vertex after the other.
inline FarthestVertex3D scanForFarthest(const VertexPointers& v, const VertexRange& range) {
    const Segment segment(v, range.from, range.to);
    FarthestVertex3D farthest{range.from + 1, 0.0};
    for (std::size_t i = range.from + 1; i < range.to; ++i) {
        const double d2 = squaredDistance(segment, v.x[i], v.y[i], v.z[i]);
        if (d2 > farthest.d2 ||
            (d2 == farthest.d2 && d2 > 0.0 && range.isNearerMiddle(i, farthest.vertex))) {
            farthest = {i, d2};
        }
    }
    return farthest;
}

/// Answers for one part after the other. Looks at all vertices of a part while that is cheap on the
/// whole; a curve whose splits mostly cut off one end would cost O(n^2) so, and gets a hierarchy of
/// boxes once many times its vertices have been looked at.
class FarthestFromSegment {
public:
    /// @param vertices  that outlive the search; |coordinates| up to 2^300
    explicit FarthestFromSegment(const VertexArrays<3>& vertices);

    /// @param range  that holds one vertex at least
    FarthestVertex3D inRange(const VertexRange& range);

private:
    const VertexArrays<3>& vertices_;
    double rounding_ = 0.0; // above the error of any distance as computed, and of any bound
    std::size_t scanned_ = 0;
    OrientedBoxBvh bvh_;
};

} // namespace qel

#endif
