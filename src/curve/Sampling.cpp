// Sampling: points of the curve at parameters that are asked for or evenly spread, and the small
// lists of numbers that go with them. The curve stays as it is; Tessellation.cpp inserts points
// into it.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "curve/BatchEvaluation.h"
#include "curve/Conversions.h"
#include "curve/Validation.h"

namespace qel {
namespace {

// Keeps the sum of two equal s-values from dividing by zero: the smallest normal float.
constexpr double kRatioFloor = 1.1754943508222875e-38;

constexpr std::size_t kBlock = BracketSearch::kBlock;

internal::error sizeBelowTwo(const char* methodName) {
    return argumentFault(methodName, "Requested size less than 2.");
}

// For each inner point, the step chosen over the sum of the steps before and after it.
template <typename Step>
void stepRatios(const std::vector<double>& s, std::vector<double>& ratios, Step step) {
    const std::size_t m = s.size();
    ratios.assign(m, 0.0);
    if (m < 3) {
        return;
    }
    for (std::size_t i = 1; i + 1 < m; ++i) {
        ratios[i] = step(s[i - 1], s[i], s[i + 1]) / (s[i + 1] - s[i - 1] + kRatioFloor);
    }
    ratios[0] = ratios[1];
    ratios[m - 1] = ratios[m - 2];
}

} // namespace

// -- At equal steps ----

void ParametricCurve::getCurveForEquidistantS(Points& points, int count) const {
    if (count < 2) {
        points.clear(); // emptied also when refused
        throw sizeBelowTwo("getCurveForEquidistantS");
    }
    const auto last = static_cast<std::size_t>(count) - 1;
    const double h = 1.0 / static_cast<double>(last);
    points.resize(last + 1);
    points[0] = points_.front();
    BatchEvaluation evaluation(points_, svalues_, last);
    double parameters[kBlock];
    for (std::size_t k = 1; k < last; k += kBlock) {
        const std::size_t n = std::min(kBlock, last - k);
        for (std::size_t i = 0; i < n; ++i) {
            parameters[i] = static_cast<double>(static_cast<int>(k + i)) * h;
        }
        evaluation.pointsAt(parameters, n, points.data() + k);
    }
    points[last] = points_.back();
}

void ParametricCurve::getCurveForEquidistantS(FloatPoints& points, int count) const {
    makeNarrowed(points, [&](Points& wide) { getCurveForEquidistantS(wide, count); });
}

// -- At given s-values ----

void ParametricCurve::getCurveBySvalues(Points& points, const std::vector<double>& svalues,
                                        bool keepEnds) const {
    if (svalues.size() < 2) {
        points.clear();
        throw sizeBelowTwo("getCurveBySvalues");
    }
    const std::size_t last = svalues.size() - 1;
    points.resize(last + 1);
    points[0] = keepEnds ? points_.front() : getPointAtParameter(svalues[0]);
    BatchEvaluation(points_, svalues_, last).pointsAt(&svalues[1], last - 1, &points[1]);
    points[last] = keepEnds ? points_.back() : getPointAtParameter(svalues[last]);
}

void ParametricCurve::getCurveBySvalues(FloatPoints& points, const std::vector<double>& svalues,
                                        bool keepEnds) const {
    makeNarrowed(points, [&](Points& wide) { getCurveBySvalues(wide, svalues, keepEnds); });
}

void ParametricCurve::getCurveXBySvalues(std::vector<double>& xs,
                                         const std::vector<double>& svalues, bool keepEnds) const {
    if (svalues.size() < 2) {
        xs.clear();
        throw sizeBelowTwo("getCurveXBySvalues");
    }
    const std::size_t last = svalues.size() - 1;
    xs.resize(last + 1);
    BatchEvaluation evaluation(points_, svalues_, last);
    // In order, block by block, so that xs may be svalues itself.
    xs[0] = keepEnds ? points_.front().x : getPointAtParameter(svalues[0]).x;
    Point points[kBlock];
    for (std::size_t k = 1; k < last; k += kBlock) {
        const std::size_t n = std::min(kBlock, last - k);
        evaluation.pointsAt(&svalues[k], n, points);
        for (std::size_t i = 0; i < n; ++i) {
            xs[k + i] = points[i].x;
        }
    }
    xs[last] = keepEnds ? points_.back().x : getPointAtParameter(svalues[last]).x;
}

ParametricCurve* ParametricCurve::createNewCurveBySvalues(const std::vector<double>& svalues,
                                                          bool keepEnds) const {
    Points points;
    getCurveBySvalues(points, svalues, keepEnds);
    return new ParametricCurve(std::move(points), dimension_);
}

// -- With a largest step of s ----

void ParametricCurve::getCurveWithMinimumS(Points& points, std::vector<double>& svalues,
                                           int count) const {
    if (count < 2) {
        points = points_;
        svalues = svalues_;
        return;
    }
    const double h = 1.0 / (static_cast<double>(count) - 1.0);
    // Points to put into the step before point i: none into one up to h.
    const auto inserted = [&](std::size_t i) {
        const double x = (svalues_[i] - svalues_[i - 1]) / h;
        return x <= 1.0 ? 0 : wholeCount(x);
    };
    const std::size_t total = checkedTotal(points_.size(), inserted, "getCurveWithMinimumS");
    points.resize(total);
    svalues.resize(total);
    const bool isOrdered = stepsOf(svalues_.data(), svalues_.size(), 0.0).areInOrder;
    std::size_t at = 0;
    points[at] = points_.front();
    svalues[at++] = 0.0; // on purpose, whatever the curve's first s-value is
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const double start = svalues_[i - 1];
        const double end = svalues_[i];
        const double d = end - start;
        const std::size_t k = inserted(i);
        const double parts = static_cast<double>(k + 1);
        for (std::size_t j = 1; j <= k; ++j, ++at) {
            const double s = d * static_cast<double>(j) / parts + start;
            const bool isBetween = isOrdered && start < s && s < end; // so this is its bracket
            points[at] = isBetween ? pointBetween(points_[i - 1], points_[i], start, end, s)
                                   : pointAtParameter(points_, svalues_, s);
            svalues[at] = s;
        }
        points[at] = points_[i];
        svalues[at++] = end;
    }
}

void ParametricCurve::getCurveWithMinimumS(FloatPoints& points, std::vector<double>& svalues,
                                           int count) const {
    makeNarrowed(points, [&](Points& wide) { getCurveWithMinimumS(wide, svalues, count); });
}

void ParametricCurve::getCurveWithMinimumS(Points& points, int count) const {
    std::vector<double> svalues;
    getCurveWithMinimumS(points, svalues, count);
}

void ParametricCurve::getCurveWithMinimumS(FloatPoints& points, int count) const {
    std::vector<double> svalues;
    getCurveWithMinimumS(points, svalues, count);
}

// -- s-values and their steps ----

std::vector<double> ParametricCurve::getSvalues(const std::vector<int>& ids) const {
    if (ids.empty()) {
        throw argumentFault("getSvalues", "Vector of Ids empty");
    }
    std::vector<double> svalues;
    svalues.reserve(ids.size());
    for (const int id : ids) {
        svalues.push_back(getSvalues(id));
    }
    return svalues;
}

void ParametricCurve::getRatioForward(std::vector<double>& ratios) const {
    stepRatios(svalues_, ratios,
               [](double before, double here, double /*after*/) { return here - before; });
}

void ParametricCurve::getRatioBackward(std::vector<double>& ratios) const {
    stepRatios(svalues_, ratios,
               [](double /*before*/, double here, double after) { return after - here; });
}

// -- Lists of numbers ----

void ParametricCurve::getCosineCurveSample(int count, double from, double to,
                                           std::vector<double>& values) const {
    checkInsertedCount(count, "getCosineCurveSample");
    const std::size_t last = static_cast<std::size_t>(count) + 1;
    const double h = (to - from) / static_cast<double>(last);
    values.resize(last + 1);
    for (std::size_t k = 0; k <= last; ++k) {
        values[k] = std::cos(from + static_cast<double>(k) * h);
    }
}

void ParametricCurve::getLinearCurveSample(int count, double from, double to,
                                           std::vector<double>& values) const {
    checkInsertedCount(count, "getLinearCurveSample");
    const std::size_t last = static_cast<std::size_t>(count) + 1;
    const double h = (to - from) / static_cast<double>(last);
    values.resize(last + 1);
    values[0] = from;
    for (std::size_t k = 1; k < last; ++k) {
        values[k] = static_cast<double>(k) * h + from;
    }
    values[last] = to;
}

} // namespace qel
