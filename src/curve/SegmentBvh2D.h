#ifndef QEL_CURVE_SEGMENTBVH2D_H
#define QEL_CURVE_SEGMENTBVH2D_H

/// @file
/// A bounding volume hierarchy over the segments of one polyline in the plane, with boxes so wide
/// that segments whose boxes lie apart cannot meet by LineSegment2D::intersectWithLimits.
///
/// Segments stand in the order of the polyline: eight to a box, eight of these to a box, and so on.
///
/// The test reaches beyond both ends of a segment by the slack of one ten-thousandth and rounds to
/// float, so every box is widened along each axis by
///
///     d = 1.5e-4 * (its side along that axis) + 2^-18 * (largest |coordinate|) + 1e-36.
///
/// Why that is enough. Let e = 2^-24 be the rounding of floats, c the segment whose parameter t is
/// found, o the other, Mc and Mo their largest |coordinate|. The crossing p = c.start + t * c.to
/// of an accepted pair lies
///   - beyond the ends of c by at most 1.0001e-4 c.to, and by each component within 7.2 e Mc of
///     there, for t in [-0.0001, 1.0001] and one rounding of the product, the sum and c.to;
///   - within 20.6 e Mc + 7.5 e Mo of the line of o: the two dot products with the unit normal
///     err by 2.9 e Mc and 2.9 e Mo, the denominator, times t, by 5.7 e Mc, p by 7.4 e Mc, the
///     normal's direction by 3.2 e |p - o.start|. This holds however small the denominator is;
///   - beyond the ends of o by at most 1.0001e-4 o.to, and along its line within e (9 Mc + 17 Mo)
///     of there, for its parameter likewise.
/// So along each axis the segments are at most 1.0001e-4 of both sides and 37 e Mc + 25 e Mo apart;
/// the rest of 2^-18 = 64 e covers the rounding of the boxes, 1e-36 what underflows.
///
/// This needs squares of lengths that neither overflow nor underflow. A segment that is no longer
/// than 1e-18, or has an end farther out than 1e18 or not a number, is irregular: the box that
/// holds it is the whole plane, so that it is always tested. A segment of no length at all meets no
/// regular one (its normal is zero, hence the denominator) and belongs to no box: a box of such
/// segments alone is empty, and overlaps that of irregular segments only.

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <qel/LineSegment2D.h>

#include "curve/Conversions.h"

namespace qel {

struct Box2D {
    float lowX;
    float highX;
    float lowY;
    float highY;
};

constexpr Box2D kWholePlane{
    -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
    -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()};

/// The segment between points i and i + 1, with x and y rounded to float.
LineSegment2D planeSegment(const Points& points, std::size_t i);

/// Box around one segment.
Box2D boxOf(const LineSegment2D& segment);

class SegmentBvh2D {
public:
    /// Reads the points as long as it lives: one more than there are segments. O(n).
    ///
    /// @param segments  one or more
    SegmentBvh2D(const Point* points, std::size_t segments);

    /// Boxes come in groups of as many, each of which has a box in the level above. The boxes of
    /// level 0 are those of the segments, the boxes of the top level are one group.
    static constexpr std::size_t kFan = 8;
    std::size_t top() const { return top_; }

    /// Box of a level above 0, by its number.
    Box2D box(std::size_t level, std::size_t number) const;

    /// Which boxes of a group overlap another box: bit k for box group * kFan + k of the level.
    /// Those that are not there overlap nothing.
    unsigned overlapping(std::size_t level, std::size_t group, const Box2D& box) const;

    /// Which boxes of a group of level 0 overlap which of another hierarchy: bit kFan * i + k for
    /// box i of this one and box k of the other.
    std::uint64_t overlappingPairs(std::size_t group, const SegmentBvh2D& other,
                                   std::size_t otherGroup) const;

private:
    static constexpr std::size_t kMaxLevels = 22;

    const Point* points_;
    std::size_t segments_;
    // lowX of all boxes above level 0, level by level, then highX, lowY and highY. A level has
    // whole blocks: the boxes that are not there are NaN, which overlaps nothing.
    std::vector<float> sides_;
    std::size_t count_ = 0; // of boxes
    std::array<std::size_t, kMaxLevels> levelStart_{};
    std::size_t top_ = 0;
};

} // namespace qel

#endif
