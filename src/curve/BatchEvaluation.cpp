#include "curve/BatchEvaluation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = BracketSearch::kBlock;
constexpr std::size_t kOrderPays = 64; // s-values made sure of for each point asked for

// The points by the last case of pointBetween, each above a stored point.
struct PointsKernel {
    QEL_KERNEL static void run(const Point* points, const double* svalues, const std::size_t* lower,
                               const double* parameters, std::size_t count, Point* out) {
        for (std::size_t k = 0; k < count; ++k) {
            const Point* const p = points + lower[k];
            const double* const s = svalues + lower[k];
            out[k] = p[0] + (p[1] - p[0]) * ((parameters[k] - s[0]) / (s[1] - s[0]));
        }
    }
};

// A step between s-values in order above which countAsEqual is false, whatever the greater one is.
double distinctStepOf(const std::vector<double>& svalues) {
    const double greatest = std::max(std::abs(svalues.front()), std::abs(svalues.back()));
    const double step = kHundredSpacings * greatest;
    if (!(step > kMinOfSpacings)) {
        return std::numeric_limits<double>::infinity();
    }
    const bool mayBeZero = svalues.front() < 0.0;
    return mayBeZero ? std::max(step, insignificantAt(0.0)) : step;
}

} // namespace

BatchEvaluation::BatchEvaluation(const Points& points, const std::vector<double>& svalues,
                                 std::size_t expected)
    : points_(points), svalues_(svalues), distinctStep_(distinctStepOf(svalues)), search_(svalues) {
    if (expected >= svalues.size() / kOrderPays && points.size() == svalues.size()) {
        steps_ = stepsOf(svalues.data(), svalues.size(), distinctStep_);
    }
}

Point BatchEvaluation::pointAbove(std::size_t lower, double s) const {
    if (!(s > svalues_.front() && s < svalues_.back())) {
        return pointAtParameter(points_, svalues_, s); // an end, found without a search
    }
    const std::size_t hi = lower + 1;
    std::size_t lo = lower;
    if (svalues_[lo] == s && svalues_[lo - 1] == s) { // the first of equal ones is asked for
        lo = partitionPoint(svalues_.data(), lo, [s](double value) { return value < s; });
    }
    return pointBetween(points_[lo], points_[hi], svalues_[lo], svalues_[hi], s);
}

void BatchEvaluation::pointsOfBlock(const double* parameters, std::size_t count, Point* out) {
    std::size_t lower[kBlock];
    const bool areInside = search_.find(parameters, count, lower);
    onVectorUnitFrom<PointsKernel>(count, points_.data(), svalues_.data(),
                                   static_cast<const std::size_t*>(lower), parameters, count, out);
    for (std::size_t k = 0; k < count && !(areInside && steps_.areDistinct); ++k) {
        const double* const s = svalues_.data() + lower[k];
        const bool isUsual =
            parameters[k] > s[0] && parameters[k] < s[1] && s[1] - s[0] > distinctStep_;
        if (!isUsual) {
            out[k] = pointAbove(lower[k], parameters[k]);
        }
    }
}

void BatchEvaluation::pointsAt(const double* parameters, std::size_t count, Point* out) {
    if (!steps_.areInOrder) {
        for (std::size_t k = 0; k < count; ++k) {
            out[k] = pointAtParameter(points_, svalues_, parameters[k]);
        }
        return;
    }
    for (std::size_t k = 0; k < count; k += kBlock) {
        pointsOfBlock(parameters + k, std::min(kBlock, count - k), out + k);
    }
}

} // namespace qel
