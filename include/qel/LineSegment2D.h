#ifndef QEL_LINESEGMENT2D_H
#define QEL_LINESEGMENT2D_H

/// @file
/// A directed segment of the plane.

#include <iosfwd>

#include <qel/Doublet.h>
#include <qel/Export.h>

namespace qel {

/// A directed segment of the plane, from start to start + toVector. The end is not stored.
///
///     LineSegment2D across(Doublet(0, 0), Doublet(2, 0));
///     double t = 0.0;
///     across.intersectWithLimits(LineSegment2D(Doublet(1, -1), Doublet(1, 1)), t); // t = 0.5
///
/// The parameter t is 0 at the start and 1 at the end; beyond them it runs on along the carrying
/// line. Nothing here throws: degenerate input gives what IEEE arithmetic gives, or false. Const
/// members may be called on one object from many threads.
class QEL_API LineSegment2D {
public:
    /// How far beyond either end, in lengths of the segment, intersectWithLimits accepts.
    static constexpr double intersectionTolerance = 0.0001;

    Doublet start;
    Doublet toVector; ///< end minus start

    // -- Building and reading ----

    constexpr LineSegment2D() = default; ///< both ends at the origin
    LineSegment2D(const Doublet& start, const Doublet& end);

    constexpr Doublet getStart() const { return start; }
    /// start + toVector, which may differ in the last bit from the end the segment was built from.
    Doublet getEnd() const;
    constexpr Doublet getToVector() const { return toVector; }
    /// True if toVector is exactly zero.
    bool isZeroLength() const;

    // -- Places along the line ----

    /// The point at parameter t.
    Doublet getPointAt(double t) const;
    /// Parameter of the projection of a point. NaN for a zero-length segment.
    double getT(const Doublet& point) const;

    // -- The carrying line ----

    /// Unit vector to the right of the direction: (dy, -dx) / length.
    Doublet unitNormal() const;
    /// Normal form of the carrying line: its points p have n*p + c = 0. The origin's foot on it
    /// is -c*n.
    void nearOrigin(Doublet& n, double& c) const;

    // -- Intersections ----

    /// Where the carrying lines of both segments meet.
    /// @param[out] t  the parameter on this segment; kept if the result is false
    /// @return false for parallel lines and for a zero-length segment. There is no tolerance:
    ///         nearly parallel lines meet at a huge t.
    bool intersect(const LineSegment2D& other, double& t) const;

    /// True if the segments meet, each lengthened at both ends by intersectionTolerance times its
    /// length.
    /// @param[out] t  the parameter on this segment; written also where the lines meet beyond the
    ///                limits, kept where they do not meet
    bool intersectWithLimits(const LineSegment2D& other, double& t) const;

    /// Where the carrying line meets a circle. The parameters are not limited to [0, 1].
    /// @param[out] t1  the larger parameter; kept if the result is false
    /// @param[out] t2  the smaller one, equal to t1 if the line touches the circle
    /// @return false if the line misses the circle or the segment has zero length
    bool intersectWithCircle(const Doublet& centre, double radius, double& t1, double& t2) const;

    // -- Text ----

    /// Writes [(x,y) (x,y)], start and end, with the stream's formatting.
    void write(std::ostream& os) const;
};

/// Writes as LineSegment2D::write does.
QEL_API std::ostream& operator<<(std::ostream& os, const LineSegment2D& segment);

} // namespace qel

#endif
