#ifndef QEL_CURVE_NEARESTVERTEXSEARCH_H
#define QEL_CURVE_NEARESTVERTEXSEARCH_H

/// @file
/// The vertices of one polyline that are nearest to many probes.
///
/// Each probe is answered in the way that is cheapest for all of them, as far as that shows:
///   - by looking at all vertices, where these or the probes are few;
///   - by a hierarchy along the curve, which is built in one pass, where neighbours along the curve
///     are neighbours in space;
///   - by a hierarchy in space where they are not, either as a sample of the curve tells or as the
///     searches turn out, once its building costs less than the searches that are left.
/// So n probes on n vertices take O(n log n) on every shape, and few probes about as long as they
/// take one by one. A probe that most vertices are about equally near to costs O(n).

#include <cstddef>
#include <optional>

#include "curve/Conversions.h"
#include "curve/VertexBvh.h"

namespace qel {

class NearestVertexSearch {
public:
    /// Keeps a reference to the points.
    ///
    /// @param probes  how many will be asked for
    NearestVertexSearch(const Points& points, std::size_t probes);

    /// Sets nearest[i] to the vertex that the reference nearestVertex finds for probes[i].
    void findNearest(const Point* probes, std::size_t count, std::size_t* nearest);

private:
    std::size_t nearest(const Point& probe);
    void reconsider();

    const Points& points_;
    std::size_t probesLeft_;
    std::size_t probesDone_ = 0; // by the hierarchy
    std::optional<VertexBvh> bvh_;
    bool isAlongCurve_ = false;
    VertexBvh::Search search_;
    // After searches that were given up, probes that are not tried with the hierarchy.
    std::size_t pause_ = 0;
    std::size_t pauseLeft_ = 0;
};

} // namespace qel

#endif
