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
          p_(points.data()),
          s_(svalues.data()),
          first_(svalues.front()),
          last_(svalues.back()),
          walks_(expected >= svalues.size() / kSearchPays && points.size() == svalues.size() &&
                 inOrder(svalues)),
          small_(first_ >= -10.0 && last_ <= 10.0) {}

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
            const Bracket far = farBracket(svalues_, s);
            hi_ = far.hi;
            return pointBetween(points_[far.lo], points_[far.hi], svalues_[far.lo],
                                svalues_[far.hi], s);
        }
        const Point& pLo = p_[hi_ - 1];
        const Point& pHi = p_[hi_];
        const double sLo = s_[hi_ - 1];
        const double ds = s_[hi_] - sLo;
        if (!surelyDistinct(ds)) {
            return pointBetween(pLo, pHi, sLo, s_[hi_], s);
        }
        return pLo + (pHi - pLo) * ((s - sLo) / ds);
    }

    /// Gives emit(k, point) for every k from begin to end - 1, the point being at(parameterAt(k)).
    template <typename ParameterAt, typename Emit>
    void forEach(std::size_t begin, std::size_t end, ParameterAt parameterAt, Emit emit) {
        for (std::size_t k = begin; k < end; ++k) {
            k = runOfNear(k, end, parameterAt, emit);
            if (k < end) {
                emit(k, at(parameterAt(k)));
            }
        }
    }

private:
    static constexpr std::size_t kSearchPays = 16; // points of the curve for each one asked for
    static constexpr int kSteps = 8;               // farther than this, a search is faster

    // The spacing of an s up to 10 is at most epsilon, so that steps of this size never count as
    // equal; spares the search for the decade.
    bool surelyDistinct(double ds) const {
        constexpr double kEpsilon = 2.220446049250313e-16;
        return ds >= kEqualSvalues * kEpsilon && small_;
    }

    static bool inOrder(const std::vector<double>& svalues);

    // A function of its own, which sees no walk, so that the walk's state stays in registers.
    static Bracket farBracket(const std::vector<double>& svalues, double s);

    // Moves hi_ to the first s-value above s. False if it is not near, or if the bracket does not
    // start at the point before because s-values equal to s repeat.
    bool stepTo(double s) {
        if (s < s_[hi_ - 1]) {
            return false;
        }
        for (int step = 0; step < kSteps; ++step, ++hi_) {
            if (s < s_[hi_]) { // holds at the last one at the latest
                return s_[hi_ - 1] < s || s_[hi_ - 2] < s;
            }
        }
        return false;
    }

    // Emits points as long as the next parameter is near and its bracket plain, and returns the
    // first k that is left to at(). What changes stands in locals: nothing waits for memory.
    template <typename ParameterAt, typename Emit>
    std::size_t runOfNear(std::size_t k, std::size_t end, ParameterAt parameterAt, Emit emit) {
        if (!walks_ || !small_) {
            return k;
        }
        const std::size_t last = svalues_.size() - 1;
        std::size_t hi = hi_;
        double sLo = s_[hi - 1];
        double sHi = s_[hi];
        for (; k < end; ++k) {
            const double s = parameterAt(k);
            if (!(s >= sLo)) {
                break;
            }
            for (int step = 0; step < kSteps && s >= sHi && hi < last; ++step) {
                sLo = sHi;
                sHi = s_[++hi];
            }
            const bool startsAtLo = sLo < s || (hi > 1 && s_[hi - 2] < s);
            const double ds = sHi - sLo;
            if (s >= sHi || !startsAtLo || !surelyDistinct(ds)) {
                break;
            }
            emit(k, p_[hi - 1] + (p_[hi] - p_[hi - 1]) * ((s - sLo) / ds));
        }
        hi_ = hi;
        return k;
    }

    const Points& points_;
    const std::vector<double>& svalues_;
    const Point* p_;
    const double* s_;
    double first_;
    double last_;
    bool walks_;
    bool small_; // no s-value is beyond 10 in magnitude
    std::size_t hi_ = 1;
};

} // namespace qel

#endif
