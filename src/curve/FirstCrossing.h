#ifndef QEL_CURVE_FIRSTCROSSING_H
#define QEL_CURVE_FIRSTCROSSING_H

/// @file
/// The first place where a polyline meets a segment or another polyline, in x and y.

#include <cstddef>

#include <qel/LineSegment2D.h>

#include "curve/Conversions.h"

namespace qel {

/// The first segment of a polyline that meets a segment. O(n), no scratch memory.
/// @param[out] crossing  on that one; untouched if none does
bool findFirstCrossing(const Points& points, const LineSegment2D& other, Doublet& crossing);

/// The first segment of a polyline that meets another polyline, and where on the first of that
/// one's segments. By a bounding volume hierarchy of each (SegmentBvh2D.h), which are walked
/// together: about n log n where few boxes of segments overlap without the segments meeting.
/// @param[out] tried  how many segments of the walked polyline were tried for it
bool findFirstCrossing(const Points& walked, const Points& others, std::size_t& tried,
                       Doublet& crossing);

/// The same by trying every pair in order: the reference implementation. O(n m).
bool findFirstCrossingByPairs(const Points& walked, const Points& others, std::size_t& tried,
                              Doublet& crossing);

} // namespace qel

#endif
