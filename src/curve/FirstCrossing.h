#ifndef QEL_CURVE_FIRSTCROSSING_H
#define QEL_CURVE_FIRSTCROSSING_H

/// @file
/// The first place where a polyline meets a segment or another polyline, in x and y.

#include <cstddef>

#include <qel/LineSegment2D.h>

#include "curve/Conversions.h"

namespace qel {

/// The segment that ends at point i, with x and y rounded to float.
LineSegment2D planeSegment(const Points& points, std::size_t i);

/// Tests the segments that end at points first to last in order, by intersectWithLimits.
/// @param[out] crossing  on the first that meets the other segment; untouched if none does
bool meetsAmong(const Points& points, std::size_t first, std::size_t last,
                const LineSegment2D& other, Doublet& crossing);

/// The first segment of a polyline that meets a segment. O(n).
bool findFirstCrossing(const Points& points, const LineSegment2D& other, Doublet& crossing);

/// The first segment of a polyline that meets another polyline, and where on the first of that
/// one's segments. Near O(n + m) where few runs of segments lie close to each other.
/// @param[out] tried  how many segments of the walked polyline were tried for it
bool findFirstCrossing(const Points& walked, const Points& others, std::size_t& tried,
                       Doublet& crossing);

/// The same by trying every pair in order. O(n m): the plain statement.
bool findFirstCrossingPlainly(const Points& walked, const Points& others, std::size_t& tried,
                              Doublet& crossing);

} // namespace qel

#endif
