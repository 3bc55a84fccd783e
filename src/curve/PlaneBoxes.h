#ifndef QEL_CURVE_PLANEBOXES_H
#define QEL_CURVE_PLANEBOXES_H

/// @file
/// Boxes in x and y around runs of consecutive segments of a curve, so wide that segments whose
/// boxes lie apart cannot meet by LineSegment2D::intersectWithLimits.
///
/// That test reaches beyond both ends by the slack of one ten-thousandth and rounds to float, so
/// every box is widened by
///
///     d = 1.5e-4 * max(width, height) + 2^-18 * (largest |coordinate|) + 1e-36.
///
/// Why that is enough. Let e = 2^-24 be the rounding of floats, c the segment whose parameter t is
/// found, o the other, Mc and Mo their largest |coordinate|. The crossing p = c.start + t * c.to
/// of an accepted pair lies
///   - within 1.0001e-4 |c.to| + 7.2 e Mc of c by each component, for t in [-0.0001, 1.0001] and
///     one rounding of the product, the sum and c.to;
///   - within 20.6 e Mc + 7.5 e Mo of the line of o: the two dot products with the unit normal
///     err by 2.9 e Mc and 2.9 e Mo, the denominator, times t, by 5.7 e Mc, p by 7.4 e Mc, the
///     normal's direction by 3.2 e |p - o.start|. This holds however small the denominator is;
///   - within 1.0001e-4 |o.to| + e (9 Mc + 17 Mo) of o along that line, for s likewise.
/// So it lies within 1.5e-4 max(width, height) + 40 e M of either box, each by its own M; the
/// rest of 2^-18 = 64 e covers the rounding of the boxes, 1e-36 what underflows.
///
/// This needs squares of lengths that neither overflow nor underflow. A segment that is no longer
/// than 1e-18, or has an end farther out than 1e18 or not a number, is irregular: its run's box and
/// those of the run's segments are the whole plane, so that they are always tested. A segment of no
/// length at all meets no regular one (its normal is zero, hence the denominator) and needs no
/// width.

#include <cstddef>
#include <vector>

#include <qel/LineSegment2D.h>

#include "curve/Conversions.h"

namespace qel {

struct PlaneBox {
    float lowX;
    float highX;
    float lowY;
    float highY;

    bool overlaps(const PlaneBox& o) const {
        // Without branches: in a loop over boxes none could be foreseen.
        return (lowX <= o.highX) & (o.lowX <= highX) & (lowY <= o.highY) & (o.lowY <= highY);
    }
    void add(const PlaneBox& o) {
        lowX = o.lowX < lowX ? o.lowX : lowX;
        highX = o.highX > highX ? o.highX : highX;
        lowY = o.lowY < lowY ? o.lowY : lowY;
        highY = o.highY > highY ? o.highY : highY;
    }
};

/// Segments that share one box.
constexpr std::size_t kRun = 16;

constexpr std::size_t runsOf(std::size_t segments) {
    return (segments + kRun - 1) / kRun;
}

/// Box around one segment.
PlaneBox boxOfSegment(const LineSegment2D& segment);

/// Consecutive segments of a curve, in runs of kRun, with a box around each run. The last run is
/// filled up with segments of no length at its end.
class PlaneRuns {
public:
    /// Takes the segments between count + 1 points; reuses its storage.
    void take(const Point* points, std::size_t count);

    std::size_t getSegments() const { return segments_; }
    const std::vector<PlaneBox>& getBoxes() const { return boxes_; }

    /// Box around one segment, widened as its run is.
    PlaneBox boxOf(std::size_t segment) const;

    /// The segments of a run whose boxes overlap another: bit k for segment k of the run.
    unsigned overlapping(std::size_t run, const PlaneBox& box) const;

private:
    std::size_t segments_ = 0;
    std::vector<float> x_; // of the points, as they are rounded for segments
    std::vector<float> y_;
    std::vector<PlaneBox> boxes_;
    std::vector<float> widths_; // by which each run's box is widened; infinite for irregular runs
};

} // namespace qel

#endif
