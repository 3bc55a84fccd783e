#ifndef QEL_CURVE_NORMALDISTANCE_H
#define QEL_CURVE_NORMALDISTANCE_H

/// @file
/// The vertex of a curve that is farthest from the chord between two others.

#include <qel/ParametricCurve.h>

namespace qel {

class DeviationBounds;

/// Fills in the farthest vertex of a chord, its distance, and `skip` where there is none. O(n) for
/// n vertices between; with bounds of the curve's points, long chords are much faster.
///
/// @throws internal::error  for an index that the curve has not
void measureChord(const ParametricCurve& curve, const DeviationBounds* bounds,
                  ParametricCurve::tEdge& edge);

/// The same for a chord of no length: the distance of the vertex nearest to its middle by s from
/// its middle in space.
void measureChordOfNoLength(const ParametricCurve& curve, ParametricCurve::tEdge& edge);

} // namespace qel

#endif
