#ifndef QEL_CURVE_PARAMETERWALK_H
#define QEL_CURVE_PARAMETERWALK_H

/// @file
/// Fast road: the points at many parameters of one curve.
///
/// Blocks of parameters take their brackets from windows, a merge or a search of many at once: see
/// BracketWindows.h, BracketMerge.h and BracketSearch.h. Else, where the next parameter lies near
/// the one before, a few steps along the s-values find its bracket at the cost of a comparison
/// each, in place of two binary searches through all of them. The bracket is the same one: among
/// s-values in order there is only one place where they pass s, however it is found. A parameter
/// that is not near is searched for as ParametricCurve::getPointAtParameter does, and so are all of
/// them where s-values are not in order (a NaN among those supplied) or too few are asked for to
/// pay for making sure.

#include <cstddef>
#include <vector>

#include "curve/Bracket.h"
#include "curve/BracketBlock.h"
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
          order_(expected >= svalues.size() / kSearchPays && points.size() == svalues.size() &&
                         svalues.front() >= -10.0 && svalues.back() <= 10.0
                     ? orderOf(svalues)
                     : Order::none) {}

    /// What ParametricCurve::getPointAtParameter(s) returns, by a search. A walk goes on from
    /// there.
    Point at(double s);

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

    /// Sets out[k] to at(parameters[k]) for a list of parameters.
    void pointsAt(const double* parameters, std::size_t count, Point* out);

private:
    static constexpr std::size_t kSearchPays = 16; // points of the curve for each one asked for
    static constexpr int kSteps = 8;               // farther than this, a search is faster

    // Steps of this size between s-values up to 10, whose spacing is at most epsilon, never count
    // as equal; spares the search for the decade.
    static constexpr double kSurelyDistinct = kEqualSvalues * 2.220446049250313e-16;

    // Of the s-values: anything; each not less than the one before; each surely distinct from it.
    enum class Order { none, loose, strict };

    static Order orderOf(const std::vector<double>& svalues);

    // Sets the first points of a list by blocks; returns how many, at most a block.
    std::size_t pointsOfBlock(const double* parameters, std::size_t count, Point* out);

    // The same for a whole block of parameters in any order.
    std::size_t pointsBySearch(const double* parameters, BracketBlock& block, Point* out);

    // Whether a block from an s-value on to its last parameter takes no more s-values than that.
    bool isWithin(double last, std::size_t above, std::size_t svaluesForEach) const;

    // Finds the brackets of a block of parameters, of which the first has the s-value above it, if
    // they are worth merging, inside the curve and not too far apart.
    bool merge(const double* parameters, std::size_t above, BracketBlock& block);

    // Strictly between the first and the last s-value.
    bool isInside(double s) const { return s > svalues_.front() && s < svalues_.back(); }

    // The first index from the given one on whose s-value is greater than s, which one has.
    std::size_t firstAbove(double s, std::size_t from) const;

    // Emits points as long as the next parameter is near and its bracket plain; returns the first
    // k that is left to at(). What changes stands in locals: nothing waits for memory.
    template <typename ParameterAt, typename Emit>
    std::size_t runOfNear(std::size_t k, std::size_t end, ParameterAt parameterAt, Emit emit) {
        if (order_ == Order::none) {
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
            // An s equal to sLo has its bracket there unless that is not the first of a run.
            const bool startsAtLo = sLo < s || (hi > 1 && s_[hi - 2] < s);
            const double ds = sHi - sLo;
            if (s >= sHi || !startsAtLo || !(ds >= kSurelyDistinct)) {
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
    Order order_;
    std::size_t hi_ = 1;
};

} // namespace qel

#endif
