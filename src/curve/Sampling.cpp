// Sampling: points of the curve at parameters that are asked for or evenly spread, and the small
// lists of numbers that go with them.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cmath>

#include "curve/Conversions.h"
#include "curve/ParameterWalk.h"
#include "curve/PointCount.h"

namespace qel {
namespace {

// Keeps the sum of two equal s-values from dividing by zero: the smallest normal float.
constexpr double kRatioFloor = 1.1754943508222875e-38;

internal::error sizeBelowTwo(const char* methodName) {
    return {"ParametricCurve", methodName, "Requested size less than 2.", argumentError};
}

// Sets out[k] to the point at parameter k, or to the curve's own end at the first and the last k
// with keepEnds.
void sample(ParameterWalk& walk, const Points& points, const std::vector<double>& parameters,
            bool keepEnds, Points& out) {
    const std::size_t last = parameters.size() - 1;
    out.resize(parameters.size());
    const double* const s = parameters.data();
    out[0] = keepEnds ? points.front() : walk.at(s[0]);
    walk.pointsAt(s + 1, last - 1, out.data() + 1);
    out[last] = keepEnds ? points.back() : walk.at(s[last]);
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
    ParameterWalk walk(points_, svalues_, last);
    double parameters[BracketBlock::kCount];
    for (std::size_t k = 1; k < last; k += BracketBlock::kCount) {
        const std::size_t n = std::min(BracketBlock::kCount, last - k);
        for (std::size_t i = 0; i < n; ++i) {
            parameters[i] = static_cast<double>(static_cast<int>(k + i)) * h;
        }
        walk.pointsAt(parameters, n, points.data() + k);
    }
    points[last] = points_.back();
}

void ParametricCurve::getCurveForEquidistantS(FloatPoints& points, int count) const {
    Points wide;
    getCurveForEquidistantS(wide, count);
    points = narrowed(wide);
}

// -- At given s-values ----

void ParametricCurve::getCurveBySvalues(Points& points, const std::vector<double>& svalues,
                                        bool keepEnds) const {
    if (svalues.size() < 2) {
        points.clear();
        throw sizeBelowTwo("getCurveBySvalues");
    }
    ParameterWalk walk(points_, svalues_, svalues.size());
    sample(walk, points_, svalues, keepEnds, points);
}

void ParametricCurve::getCurveBySvalues(FloatPoints& points, const std::vector<double>& svalues,
                                        bool keepEnds) const {
    Points wide;
    getCurveBySvalues(wide, svalues, keepEnds);
    points = narrowed(wide);
}

void ParametricCurve::getCurveXBySvalues(std::vector<double>& xs,
                                         const std::vector<double>& svalues, bool keepEnds) const {
    if (svalues.size() < 2) {
        xs.clear();
        throw sizeBelowTwo("getCurveXBySvalues");
    }
    const std::size_t last = svalues.size() - 1;
    xs.resize(svalues.size());
    ParameterWalk walk(points_, svalues_, svalues.size());
    // In order, block by block, so that xs may be svalues itself.
    xs[0] = keepEnds ? points_.front().x : walk.at(svalues[0]).x;
    Point points[BracketBlock::kCount];
    for (std::size_t k = 1; k < last; k += BracketBlock::kCount) {
        const std::size_t n = std::min(BracketBlock::kCount, last - k);
        walk.pointsAt(svalues.data() + k, n, points);
        for (std::size_t i = 0; i < n; ++i) {
            xs[k + i] = points[i].x;
        }
    }
    xs[last] = keepEnds ? points_.back().x : walk.at(svalues[last]).x;
}

ParametricCurve* ParametricCurve::createNewCurveBySvalues(const std::vector<double>& svalues,
                                                          bool keepEnds) const {
    Points points;
    getCurveBySvalues(points, svalues, keepEnds);
    return new ParametricCurve(points, dimension_);
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
    std::size_t total = points_.size();
    for (std::size_t i = 1; i < points_.size(); ++i) {
        total += inserted(i);
    }
    checkTotal(total, "getCurveWithMinimumS");
    points.clear();
    svalues.clear();
    points.reserve(total);
    svalues.reserve(total);

    ParameterWalk walk(points_, svalues_, total);
    points.push_back(points_.front());
    svalues.push_back(0.0); // on purpose, whatever the curve's first s-value is
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const double d = svalues_[i] - svalues_[i - 1];
        const std::size_t k = inserted(i);
        const double parts = static_cast<double>(k + 1);
        const double start = svalues_[i - 1];
        const auto parameterAt = [&](std::size_t j) {
            return d * static_cast<double>(j) / parts + start;
        };
        walk.forEach(1, k + 1, parameterAt, [&](std::size_t j, const Point& p) {
            points.push_back(p);
            svalues.push_back(parameterAt(j));
        });
        points.push_back(points_[i]);
        svalues.push_back(svalues_[i]);
    }
}

void ParametricCurve::getCurveWithMinimumS(FloatPoints& points, std::vector<double>& svalues,
                                           int count) const {
    Points wide;
    getCurveWithMinimumS(wide, svalues, count);
    points = narrowed(wide);
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
        throw internal::error("ParametricCurve", "getSvalues", "Vector of Ids empty",
                              argumentError);
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
