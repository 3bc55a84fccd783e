#ifndef QEL_CURVE_PARAMETERWALK_H
#define QEL_CURVE_PARAMETERWALK_H

/// @file
/// Fast road: the points at many parameters of one curve.
///
/// Where the next parameter lies near the one before, as in a sorted list, a few steps along the
/// s-values find its bracket at the cost of a comparison each, in place of two binary searches
/// through all of them. The bracket is the same one: among s-values in order there is only one
/// place where they pass s, however it is found. A parameter that is not near is searched for as
/// ParametricCurve::getPointAtParameter does, and so are all of them where s-values are not in
/// order (a NaN among those supplied) or too few are asked for to pay for making sure.

#include <cstddef>
#include <vector>

#include "curve/Bracket.h"
#include "curve/Conversions.h"

namespace qel {

class ParameterWalk {
public:
    /// @param expected  about how many points will be asked for
    ParameterWalk(const Points& points, const std::vector<double>& svalues, std::size_t expected)
        : points_(points),
          svalues_(svalues),
          first_(svalues.front()),
          last_(svalues.back()),
          walks_(expected >= svalues.size() / kSearchPays && points.size() == svalues.size() &&
                 inOrder(svalues)) {}

    /// What ParametricCurve::getPointAtParameter(s) returns.
    Point at(double s) {
        if (s > last_) {
            s = last_; // where all s-values are equal, the first point answers
        }
        if (!(s > first_)) {
            return points_.front();
        }
        if (!(s < last_)) {
            return points_.back();
        }
        if (!walks_ || !stepTo(s)) {
            return searched(s);
        }
        const Point* const p = points_.data() + hi_;
        const double sLo = svalues_.data()[hi_ - 1];
        const double sHi = svalues_.data()[hi_];
        const double ds = sHi - sLo;
        if (!surelyDistinct(ds, sHi)) {
            return pointBetween(p[-1], p[0], sLo, sHi, s);
        }
        return p[-1] + (p[0] - p[-1]) * ((s - sLo) / ds);
    }

private:
    static constexpr std::size_t kSearchPays = 16; // points of the curve for each one asked for
    static constexpr int kSteps = 8;               // farther than this, a search is faster

    // The spacing of an s up to 10 is at most epsilon, so that steps of this size never count as
    // equal; spares the search for the decade.
    static bool surelyDistinct(double ds, double sHi) {
        constexpr double kEpsilon = 2.220446049250313e-16;
        return ds >= kEqualSvalues * kEpsilon && sHi <= 10.0 && sHi >= -10.0;
    }

    static bool inOrder(const std::vector<double>& svalues);

    // Moves hi_ to the first s-value above s. False if it is not near, or if the bracket does not
    // start at the point before because s-values equal to s repeat.
    bool stepTo(double s) {
        const double* const svalues = svalues_.data();
        if (s < svalues[hi_ - 1]) {
            return false;
        }
        for (int step = 0; step < kSteps; ++step, ++hi_) {
            if (s < svalues[hi_]) { // holds at the last one at the latest
                return svalues[hi_ - 1] < s || svalues[hi_ - 2] < s;
            }
        }
        return false;
    }

    Point searched(double s);

    const Points& points_;
    const std::vector<double>& svalues_;
    double first_;
    double last_;
    bool walks_;
    std::size_t hi_ = 1;
};

} // namespace qel

#endif
