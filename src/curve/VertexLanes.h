#ifndef QEL_CURVE_VERTEXLANES_H
#define QEL_CURVE_VERTEXLANES_H

/// @file
/// Many nearest-vertex searches on one short polyline.
///
/// A search on the points as they lie in memory spends most of its time putting their components
/// into lanes. Here that is done once for all probes; a search then measures all vertices, each
/// lane keeping the first of its own that is nearest, and no branch depends on the distances.
/// Faster than boxes as long as there are few vertices.
///
/// The answer is that of nearestVertex, ties included: the same distances are compared in the
/// same way, and of the lanes' vertices at the least distance the lowest index is taken.

#include <cstddef>
#include <vector>

#include "curve/Conversions.h"

namespace qel {

class VertexLanes {
public:
    /// O(n).
    ///
    /// @param points  at least one
    explicit VertexLanes(const Points& points);

    /// The vertex that nearestVertex(points, q) finds. O(n).
    std::size_t nearest(const Point& q) const;

    static constexpr std::size_t kLanes = 16;

    /// Coordinates of so many vertices. Those that are not there are NaN, and so never nearer.
    struct Group {
        double x[kLanes];
        double y[kLanes];
        double z[kLanes];
    };

private:
    std::vector<Group> groups_;
};

} // namespace qel

#endif
