#ifndef QEL_CURVECROSSINGS_H
#define QEL_CURVECROSSINGS_H

/// @file
/// All crossings of polylines with each other, with lines and with planes. Part of the batch
/// interface (docs/batch-interface.md).
///
/// The functions may be called from any number of threads at once, on outputs of their own.

#include <cstdint>
#include <vector>

#include <qel/CurveView.h>
#include <qel/Export.h>
#include <qel/Progress.h>
#include <qel/TripletBase.h>

namespace qel {

/// A place that a curve has in common with something else: a point, or a stretch along which both
/// run on the same line (an overlap).
///
/// A point has its end equal to its begin. A crossing at a vertex is one crossing, not one for each
/// edge that meets there, and names the lower of the edges.
struct CurveCrossing {
    enum class Kind {
        point,  ///< both meet in a point, whether they cross there or only touch
        overlap ///< both share a stretch of positive length
    };
    Kind kind = Kind::point;
    TripletBase<double>
        begin; ///< the crossing, or the place where the stretch begins along the curve
    TripletBase<double> end; ///< where the stretch ends
    double sBegin = 0.0;     ///< s of the curve at both
    double sEnd = 0.0;
    std::int64_t edge = 0;   ///< edge of the curve that holds begin
    double otherBegin = 0.0; ///< s of the other at both: of the other curve; or the fraction from
    double otherEnd = 0.0;   ///< the first to the second point of a segment or line; 0 for a plane
    std::int64_t otherEdge = 0; ///< edge of the other curve that holds begin; 0 for anything else
};

/// All crossings of two curves in the plane, x and y; z is ignored and is 0 in the result. In order
/// of sBegin, then of otherBegin.
///
/// Whether edges meet is decided exactly (by orientation tests with adaptive precision; Shewchuk
/// 1997), without a tolerance; where they do, the place is computed in double and lies within a few
/// spacings of both. Stretches that several edges share in one go are one overlap.
/// Near O((n + m) log(n + m) + k) for k crossings: a bounding volume hierarchy over the edges of
/// each is descended side by side.
///
/// @param progress  stops the search; the list is then empty
QEL_API std::vector<CurveCrossing> findCrossings(const CurveView& curve, const CurveView& other,
                                                 const Progress& progress = {});

/// All crossings of a curve in the plane with the segment from a to b; with a equal to b, with that
/// point. O(n).
QEL_API std::vector<CurveCrossing> findCrossingsWithSegment(const CurveView& curve,
                                                            const TripletBase<double>& a,
                                                            const TripletBase<double>& b);

/// All crossings of a curve in the plane with the line through a and b, endless at both sides.
/// O(n).
/// @throws data::invalid  (class "CurveCrossings", method "findCrossingsWithLine") if a equals b
QEL_API std::vector<CurveCrossing> findCrossingsWithLine(const CurveView& curve,
                                                         const TripletBase<double>& a,
                                                         const TripletBase<double>& b);

/// All crossings of a curve in space with the plane through a point, square to a normal. Vertices
/// count as in the plane by the sign of (vertex - point) . normal, computed in double. O(n).
/// @throws data::invalid  (class "CurveCrossings", method "findCrossingsWithPlane") for a normal of
///     no length or a point or normal that is not finite
QEL_API std::vector<CurveCrossing> findCrossingsWithPlane(const CurveView& curve,
                                                          const TripletBase<double>& point,
                                                          const TripletBase<double>& normal);

} // namespace qel

#endif
