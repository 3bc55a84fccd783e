#ifndef QEL_CURVESHAPE_H
#define QEL_CURVESHAPE_H

/// @file
/// Direction, curvature and area of polylines. Part of the batch interface
/// (docs/batch-interface.md).
///
/// The functions may be called from any number of threads at once, on outputs of their own.

#include <cstddef>

#include <qel/CurveView.h>
#include <qel/Export.h>
#include <qel/StridedView.h>
#include <qel/TripletBase.h>

namespace qel {

/// Where computeCurveShape writes, a value for each vertex or for each s. A view of nothing is not
/// written.
struct CurveShapeFields {
    /// Unit tangent: at a vertex, that of the circle through it and its neighbours, in the sense of
    /// increasing s; on an edge, at s, linear between those of the edge's ends and normalised.
    TripletView<double> tangent;
    /// Curvature, one over the radius of the circle through a vertex and its neighbours (Menger
    /// curvature), 0 where they lie on a line; at s, linear between the ends of the edge. Unit:
    /// one over that of the points. Never negative.
    ScalarView<double> curvature;
    /// Angle in radians, 0 to pi, between the directions before and after a vertex; at s, that of a
    /// vertex which has exactly that s, else 0.
    ScalarView<double> turningAngle;
};

/// Shape at every vertex. Repeated points count as one: a vertex takes as neighbours the nearest
/// vertices on both sides that differ from it. At the ends of an open curve tangent and curvature
/// are those of the circle through the three points there, and the turning angle is 0; a closed
/// curve (first and last vertex equal) goes on through its end. A curve without length has tangent
/// and curvature 0. O(n).
///
/// @throws data::invalid  (class "CurveShape", method "computeCurveShape") before anything is
///     written, for an output of another size than the curve, or whose memory overlaps the curve,
///     itself or another output
QEL_API void computeCurveShape(const CurveView& curve, const CurveShapeFields& out);

/// Shape at s-values, in any order; beyond the ends, that of the nearer end. O(n + m log n).
/// @throws data::invalid  as above (sizes are those of the s-values), and for an s-value that is
///     NaN; the reason names its index
QEL_API void computeCurveShape(const CurveView& curve, const ScalarView<const double>& svalues,
                               const CurveShapeFields& out);

/// Signed area of a closed curve in the plane, x and y, by the shoelace formula about the first
/// vertex: positive if it runs counter-clockwise. A curve that is open is closed by its chord. A
/// curve that crosses itself counts each part as often as it winds around it. O(n).
QEL_API double computeSignedArea(const CurveView& curve);

/// 1 if a closed curve runs counter-clockwise, -1 if clockwise, 0 if its area is zero: the sign of
/// the exact area, not of the rounded one, while no coordinate but 0 is less than 1e-200 of the
/// largest. O(n).
QEL_API int computeOrientation(const CurveView& curve);

} // namespace qel

#endif
