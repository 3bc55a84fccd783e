#ifndef QEL_CURVESIMPLIFICATION_H
#define QEL_CURVESIMPLIFICATION_H

/// @file
/// Simplification of polylines to a promised error. Part of the batch interface
/// (docs/batch-interface.md).
///
/// The functions may be called from any number of threads at once, on outputs of their own.

#include <cstddef>
#include <vector>

#include <qel/CurveView.h>
#include <qel/Export.h>
#include <qel/Progress.h>

namespace qel {

/// Indices of the vertices to keep, increasing, so that no vertex of the curve is farther than the
/// tolerance from the segment between the kept vertices before and after it.
///
///     std::vector<std::size_t> kept = simplifyToError(coastline, 0.01);
///
/// The method of Ramer (1972), Douglas and Peucker (1973), with the distance from the segment, not
/// from its line, as computed in double: the vertex farthest from the segment between the ends is
/// kept, and both parts are treated alike until nothing is farther than the tolerance. Of equally
/// far vertices the one nearest the middle of the part counts, by number, the lower of two. The
/// ends stay.
///
/// A closed curve (first and last vertex equal) stays closed and never collapses: the vertex
/// farthest from the first one is kept always, and, unless all vertices lie on the segment between
/// these two, the one farthest from that segment. A tolerance of 0 drops only vertices that lie on
/// a segment as computed; an infinite one keeps what is kept always. Near O(n log n) time, also
/// where each split cuts off one end; memory: 5 words a vertex.
///
/// @param tolerance  same unit as the points
/// @param progress  stops the search; the list is then empty
/// @throws data::invalid  (class "CurveSimplification", method "simplifyToError") for a tolerance
///     that is negative or NaN
QEL_API std::vector<std::size_t> simplifyToError(const CurveView& curve, double tolerance,
                                                 const Progress& progress = {});

/// The same with a limit to the number of vertices kept instead of to the error: splits the segment
/// with the largest error first, the first along the curve of equal ones, until count vertices are
/// kept or the error is 0.
///
/// @param count  for all vertices and more, those with an error of 0 are left out nevertheless
/// @param[out] error  the largest distance of a vertex from its segment that remains, same unit as
///     the points; as it was if the search was stopped
/// @param progress  stops the search; the list is then empty
/// @throws data::invalid  (class "CurveSimplification", method "simplifyToCount") for a count below
///     2, or below what a closed curve keeps always: 3, and 4 unless all vertices lie on a segment
QEL_API std::vector<std::size_t> simplifyToCount(const CurveView& curve, std::size_t count,
                                                 double& error, const Progress& progress = {});

} // namespace qel

#endif
