#ifndef QEL_CURVE_FARTHESTVERTEX_H
#define QEL_CURVE_FARTHESTVERTEX_H

/// @file
/// The vertex of a run that is farthest from a chord.

#include <cmath>
#include <cstddef>

#include "curve/Conversions.h"

namespace qel {

class DeviationBounds;

/// The line that vertices are measured from, and the distance that counts as none.
struct Chord {
    Point start;            ///< where the vertices' offsets w start
    Point direction;        ///< along the chord, of its length; either sense
    double length = 0.0;    ///< of direction; not zero
    double tolerance = 0.0; ///< distances up to this are passed over
};

/// A vertex and its distance; 0 until one is found.
struct FarthestVertex {
    double distance = 0.0;
    std::size_t index = 0;
};

/// Distance of the end of w from the chord's line: sqrt(|w|^2 - ((w . e) / L)^2). NaN where
/// rounding makes the radicand negative.
inline double normalDistance(const Point& w, const Chord& chord) {
    const double length = w.length();
    const double along = w.dot(chord.direction) / chord.length;
    return std::sqrt(length * length - along * along);
}

/// Takes the first of the vertices first to last - 1 at the largest distance from the chord, if
/// it is farther than the tolerance and than the vertex found before. The reference implementation.
void takeFarthestByScan(const Points& points, std::size_t first, std::size_t last,
                        const Chord& chord, FarthestVertex& farthest);

/// The same result in every bit on every vector unit, at about a tenth of the time on long runs.
void takeFarthest(const Points& points, std::size_t first, std::size_t last, const Chord& chord,
                  FarthestVertex& farthest);

/// The same once more, with an index of the points for where there are many searches.
void takeFarthest(const Points& points, const DeviationBounds& runs, std::size_t first,
                  std::size_t last, const Chord& chord, FarthestVertex& farthest);

/// What a bound on the squared distance of a vertex has to exceed |w|^2 - (w . e)^2 / L^2 by, as a
/// share of |w|^2, so that rounding is on the safe side: see FarthestVertex.cpp.
constexpr double kBoundSlack = 0x1p-46;

} // namespace qel

#endif
