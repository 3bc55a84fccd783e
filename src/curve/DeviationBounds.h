#ifndef QEL_CURVE_DEVIATIONBOUNDS_H
#define QEL_CURVE_DEVIATIONBOUNDS_H

/// @file
/// An index for many searches of the vertex farthest from a chord, on one polyline.
///
/// A run of consecutive vertices deviates little from the segment between its ends. No vertex of it
/// is then farther from any line than the farther end is, but for that deviation: the distance from
/// a line is convex, so along the segment it is largest at an end. One bound for a whole run, at
/// the cost of one vertex, lets most runs of a long chord drop out unseen.
///
/// The bound holds for the distances as they are computed: it exceeds the true one by more than
/// the roundings of both, those of the offsets (relative to their length), of the radicand
/// (relative to its larger term, FarthestVertex.cpp) and of the bound itself. Where anything
/// overflows or is NaN it is infinite.

#include <cstddef>
#include <vector>

#include "curve/Conversions.h"
#include "curve/FarthestVertex.h"

namespace qel {

class DeviationBounds {
public:
    static constexpr std::size_t kRunBits = 5;
    static constexpr std::size_t kRun = std::size_t{1} << kRunBits;

    /// O(n).
    explicit DeviationBounds(const Points& points);

    /// Run r holds the vertices from r * kRun to (r + 1) * kRun, which is the next one's first.
    std::size_t size() const { return deviations_.size(); }

    /// Bounds on the squared distances from a chord of the vertices in runs; infinite for NaN.
    ///
    /// @param count  up to kMaxRuns
    void squaredBounds(const Chord& chord, std::size_t first, std::size_t count,
                       double* bounds) const;
    static constexpr std::size_t kMaxRuns = 256;

private:
    // The ends of the runs, one more than these, and how far vertices lie from the segments.
    std::vector<double> x_;
    std::vector<double> y_;
    std::vector<double> z_;
    std::vector<double> deviations_;
};

} // namespace qel

#endif
