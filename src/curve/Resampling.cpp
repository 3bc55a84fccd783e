// Resampling: more points between the stored ones, which all stay.
//
// Each member first counts what it will insert, so that a request for an absurd number of points
// is refused before anything is allocated, builds the refined curve aside, and exchanges it last.
// Whether s is interpolated or computed anew differs from member to member, on purpose.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include <qel/NumericalUtils.h>

#include "curve/Conversions.h"
#include "curve/PointCount.h"

namespace qel {
namespace {

constexpr double kPi = 3.141592653589793;

// Allowance that keeps rounding from adding a part: the spacing of s-values around 0.5.
double allowance() {
    return NumericalUtils::spacing(0.5);
}

// Written so that a NaN is refused as well.
void checkStep(double step, const char* methodName) {
    if (!(step > 0.0)) {
        SystemMsg message("Requested step is not positive. Step=%1");
        throw internal::error("ParametricCurve", methodName, message % step, argumentError);
    }
}

// Number of equal parts, each no longer than maxStep, of a step of s; 1 leaves it alone.
std::size_t partsOf(double step, double maxStep) {
    if (!(step > maxStep)) {
        return 1;
    }
    const std::size_t parts = wholeCount((step + allowance()) / (maxStep + DBL_MIN));
    const bool tooLong = step / static_cast<double>(parts) - allowance() > maxStep;
    return tooLong ? parts + 1 : parts;
}

// The points with inserted(i) equally spaced ones between points i - 1 and i.
template <typename Inserted>
Points refined(const Points& points, Inserted inserted, const char* methodName) {
    std::size_t total = points.size();
    for (std::size_t i = 1; i < points.size(); ++i) {
        total += inserted(i);
    }
    checkTotal(total, methodName);
    Points result;
    result.reserve(total);
    result.push_back(points.front());
    for (std::size_t i = 1; i < points.size(); ++i) {
        const std::size_t m = inserted(i);
        const Point step = points[i] - points[i - 1];
        for (std::size_t j = 1; j <= m; ++j) {
            result.push_back(points[i - 1] +
                             step * static_cast<double>(j) / static_cast<double>(m + 1));
        }
        result.push_back(points[i]);
    }
    return result;
}

// Shares at the start and the end of an interval that leave something between them.
bool isSpread(const std::pair<double, double>& spread) {
    const double start = spread.first;
    const double end = 1.0 - spread.second;
    return start < end && start < 1.0 && start >= 0.0 && end <= 1.0 && end > 0.0;
}

void checkSpreads(const std::vector<std::pair<double, double>>& spreads, std::size_t intervals) {
    if (spreads.size() != intervals) {
        SystemMsg message("SpreadValues must have size of %1");
        throw internal::error("ParametricCurve", "tesselateXCurvebyCosine", message % intervals,
                              argumentError);
    }
    for (const auto& spread : spreads) {
        if (!isSpread(spread)) {
            SystemMsg message("Not appropriate spread values. First = %1, second = %2 ");
            throw internal::error("ParametricCurve", "tesselateXCurvebyCosine",
                                  message % spread.first % spread.second, argumentError);
        }
    }
}

} // namespace

// -- By step ----

void ParametricCurve::tesselateCurvebySdistance(double maxStep) {
    // Written so that a NaN is refused as well.
    if (!(maxStep <= 1.0 && maxStep >= 0.0001)) {
        SystemMsg message("Parameter out of bounds. Minimum s distance requested =%1");
        throw data::invalid("ParametricCurve", "tesselateCurvebySdistance", message % maxStep,
                            argumentError);
    }
    std::size_t total = 1;
    for (std::size_t i = 1; i < points_.size(); ++i) {
        total += partsOf(svalues_[i] - svalues_[i - 1], maxStep);
    }
    checkTotal(total, "tesselateCurvebySdistance");
    Points points;
    std::vector<double> svalues;
    points.reserve(total);
    svalues.reserve(total);
    points.push_back(points_.front());
    svalues.push_back(svalues_.front());
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const double step = svalues_[i] - svalues_[i - 1];
        const std::size_t parts = partsOf(step, maxStep);
        for (std::size_t j = 1; j < parts; ++j) {
            const double t = static_cast<double>(j) / static_cast<double>(parts);
            points.push_back(points_[i - 1] + (points_[i] - points_[i - 1]) * t);
            svalues.push_back(svalues_[i - 1] + t * step);
        }
        points.push_back(points_[i]);
        svalues.push_back(svalues_[i]);
    }
    // s is interpolated, so length and parametrization stay.
    exchange(points, svalues);
}

void ParametricCurve::tesselateCurvebyNumber(int maxInserted, double step) {
    checkInsertedCount(maxInserted, "tesselateCurvebyNumber");
    checkStep(step, "tesselateCurvebyNumber");
    const auto inserted = [&](std::size_t i) {
        const double rise = svalues_[i] - svalues_[i - 1];
        return std::min(wholeCount((rise + allowance()) / step - 1.0),
                        static_cast<std::size_t>(maxInserted));
    };
    Points points = refined(points_, inserted, "tesselateCurvebyNumber");
    exchangeAndCalculateArcValue(points);
}

void ParametricCurve::tesselateCurvebyMinYdistance(double step) {
    checkStep(step, "tesselateCurvebyMinYdistance");
    const auto inserted = [&](std::size_t i) {
        const std::size_t steps =
            wholeCount(std::abs(points_[i].y - points_[i - 1].y + DBL_MIN) / step);
        return steps > 0 ? steps - 1 : 0;
    };
    Points points = refined(points_, inserted, "tesselateCurvebyMinYdistance");
    exchangeAndCalculateArcValue(points);
}

// -- By cosine ----
// Inserted points carry x alone. Their s-values are equally spaced while x is not; neither is
// brought in line with the other, on purpose.

void ParametricCurve::tesselateXCurvebyCosine(int count) {
    checkInsertedCount(count, "tesselateXCurvebyCosine");
    const auto inserted = static_cast<std::size_t>(count);
    const std::size_t total = (points_.size() - 1) * inserted + points_.size();
    checkTotal(total, "tesselateXCurvebyCosine");
    std::vector<double> cosines;
    std::vector<double> steps;
    getCosineCurveSample(count, 0.0, kPi, cosines);
    Points points(total);
    std::vector<double> svalues(total);
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const Point& from = points_[i - 1];
        const Point& to = points_[i];
        const std::size_t base = (i - 1) * (inserted + 1);
        getLinearCurveSample(count, svalues_[i - 1], svalues_[i], steps);
        points[base] = from;
        svalues[base] = svalues_[i - 1];
        for (std::size_t j = 1; j <= inserted; ++j) {
            const double x = from.x - (cosines[j] - cosines[0]) * (to.x - from.x) * 0.5;
            points[base + j] = Point(x, 0.0, 0.0);
            svalues[base + j] = steps[j];
        }
        points[base + inserted + 1] = to;
        svalues[base + inserted + 1] = svalues_[i];
    }
    exchange(points, svalues);
}

void ParametricCurve::tesselateXCurvebyCosine(
    int count, const std::vector<std::pair<double, double>>& spreads) {
    checkInsertedCount(count, "tesselateXCurvebyCosine");
    checkSpreads(spreads, points_.size() - 1);
    const auto inserted = static_cast<std::size_t>(count);
    const std::size_t total = (points_.size() - 1) * inserted + points_.size();
    const std::size_t ofSection = 3 * inserted + 4; // each interval is refined on its own below
    checkTotal(std::max(total, ofSection), "tesselateXCurvebyCosine");
    Points points(total);
    std::vector<double> svalues(total);
    std::vector<double> steps;
    Points sampled;
    ParametricCurve section;
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const double from = points_[i - 1].x;
        const double to = points_[i].x;
        const auto [start, end] = spreads[i - 1];
        // x stays at either end of the interval over the shares, cosine-spaced between them.
        section.setPointsX({from, from, to, to}, {0.0, start, 1.0 - end, 1.0});
        section.tesselateXCurvebyCosine(count);
        section.getCurveForEquidistantS(sampled, count + 2);
        getLinearCurveSample(count, svalues_[i - 1], svalues_[i], steps);
        const std::size_t base = (i - 1) * (inserted + 1);
        points[base] = points_[i - 1];
        svalues[base] = svalues_[i - 1];
        for (std::size_t j = 1; j <= inserted; ++j) {
            points[base + j] = Point(sampled[j].x, 0.0, 0.0);
            svalues[base + j] = steps[j];
        }
        points[base + inserted + 1] = points_[i];
        svalues[base + inserted + 1] = svalues_[i];
    }
    exchange(points, svalues);
}

} // namespace qel
