// Tessellation: points inserted between the stored ones, which all stay.
//
// Each member first counts what it will insert, so that a request for an absurd number of points
// is refused before anything is allocated, builds the refined curve aside, and exchanges it last.
// Whether s is interpolated or computed anew differs from member to member, on purpose.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include <qel/NumericalUtils.h>

#include "curve/BatchEvaluation.h"
#include "curve/Conversions.h"
#include "curve/Validation.h"

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
        throw argumentFault(methodName, "Requested step is not positive. Step=%1", step);
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
    Points result(checkedTotal(points.size(), inserted, methodName));
    Point* to = result.data();
    *to++ = points.front();
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point from = points[i - 1];
        const Point step = points[i] - from;
        const std::size_t m = inserted(i);
        const double parts = static_cast<double>(m + 1);
        for (std::size_t j = 1; j <= m; ++j) {
            *to++ = from + step * static_cast<double>(j) / parts;
        }
        *to++ = points[i];
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
        throw argumentFault("tesselateXCurvebyCosine", "SpreadValues must have size of %1",
                            intervals);
    }
    for (const auto& spread : spreads) {
        if (!isSpread(spread)) {
            throw argumentFault("tesselateXCurvebyCosine",
                                "Not appropriate spread values. First = %1, second = %2 ",
                                spread.first, spread.second);
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
    const auto inserted = [&](std::size_t i) {
        return partsOf(svalues_[i] - svalues_[i - 1], maxStep) - 1;
    };
    const std::size_t total = checkedTotal(points_.size(), inserted, "tesselateCurvebySdistance");
    Points points(total);
    std::vector<double> svalues(total);
    Point* point = points.data();
    double* s = svalues.data();
    *point++ = points_.front();
    *s++ = svalues_.front();
    for (std::size_t i = 1; i < points_.size(); ++i) {
        const Point from = points_[i - 1];
        const double start = svalues_[i - 1];
        const double step = svalues_[i] - start;
        const std::size_t parts = inserted(i) + 1;
        for (std::size_t j = 1; j < parts; ++j) {
            const double t = static_cast<double>(j) / static_cast<double>(parts);
            *point++ = from + (points_[i] - from) * t;
            *s++ = start + t * step;
        }
        *point++ = points_[i];
        *s++ = svalues_[i];
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

namespace {

// Sets the points of an interval and `count` between them, with their s-values: x is xAt(j) for the
// j-th of them, and s equally spaced.
template <typename XAt>
void fillInterval(const Point& from, const Point& to, double sFrom, double sTo, std::size_t count,
                  XAt xAt, Point* points, double* svalues) {
    const double h = (sTo - sFrom) / static_cast<double>(count + 1);
    points[0] = from;
    svalues[0] = sFrom;
    for (std::size_t j = 1; j <= count; ++j) {
        points[j] = Point(xAt(j), 0.0, 0.0);
        svalues[j] = static_cast<double>(j) * h + sFrom;
    }
    points[count + 1] = to;
    svalues[count + 1] = sTo;
}

// The same between all neighbours, x spaced by cosine.
void insertByCosine(const Points& points, const std::vector<double>& svalues,
                    const std::vector<double>& cosines, Points& refined,
                    std::vector<double>& refinedSvalues) {
    const std::size_t count = cosines.size() - 2;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double from = points[i - 1].x;
        const double to = points[i].x;
        const auto xAt = [&](std::size_t j) {
            return from - (cosines[j] - cosines[0]) * (to - from) * 0.5;
        };
        const std::size_t base = (i - 1) * (count + 1);
        fillInterval(points[i - 1], points[i], svalues[i - 1], svalues[i], count, xAt,
                     &refined[base], &refinedSvalues[base]);
    }
}

// An interval whose x stays at either end over the shares, cosine-spaced between them.
class SpreadInterval {
public:
    explicit SpreadInterval(const std::vector<double>& cosines)
        : cosines_(cosines),
          points_(3 * (cosines.size() - 1) + 1),
          svalues_(points_.size()),
          step_(1.0 / static_cast<double>(cosines.size() - 1)) {}

    void set(double from, double to, const std::pair<double, double>& shares) {
        for (const std::size_t i : {0U, 1U, 2U, 3U}) {
            corners_[i].x = i < 2 ? from : to;
        }
        cornerSvalues_ = {0.0, shares.first, 1.0 - shares.second, 1.0};
        insertByCosine(corners_, cornerSvalues_, cosines_, points_, svalues_);
    }

    // x at the j-th of the points inserted.
    double xAt(std::size_t j) const {
        return pointAtParameter(points_, svalues_, static_cast<double>(static_cast<int>(j)) * step_)
            .x;
    }

private:
    const std::vector<double>& cosines_;
    Points corners_ = Points(4);
    std::vector<double> cornerSvalues_;
    Points points_;
    std::vector<double> svalues_;
    double step_;
};

// The number of points after `inserted` more in every interval.
std::size_t totalAfter(std::size_t size, std::size_t inserted) {
    const std::size_t total = (size - 1) * inserted + size;
    checkTotal(total, "tesselateXCurvebyCosine");
    return total;
}

} // namespace

void ParametricCurve::tesselateXCurvebyCosine(int count) {
    checkInsertedCount(count, "tesselateXCurvebyCosine");
    const std::size_t total = totalAfter(points_.size(), static_cast<std::size_t>(count));
    std::vector<double> cosines;
    getCosineCurveSample(count, 0.0, kPi, cosines);
    Points points(total);
    std::vector<double> svalues(total);
    insertByCosine(points_, svalues_, cosines, points, svalues);
    exchange(points, svalues);
}

void ParametricCurve::tesselateXCurvebyCosine(
    int count, const std::vector<std::pair<double, double>>& spreads) {
    checkInsertedCount(count, "tesselateXCurvebyCosine");
    checkSpreads(spreads, points_.size() - 1);
    const auto inserted = static_cast<std::size_t>(count);
    const std::size_t total = totalAfter(points_.size(), inserted);
    totalAfter(4, inserted); // of each interval, which is refined on its own
    std::vector<double> cosines;
    getCosineCurveSample(count, 0.0, kPi, cosines);
    Points points(total);
    std::vector<double> svalues(total);
    SpreadInterval interval(cosines);
    for (std::size_t i = 1; i < points_.size(); ++i) {
        interval.set(points_[i - 1].x, points_[i].x, spreads[i - 1]);
        const std::size_t base = (i - 1) * (inserted + 1);
        fillInterval(
            points_[i - 1], points_[i], svalues_[i - 1], svalues_[i], inserted,
            [&](std::size_t j) { return interval.xAt(j); }, &points[base], &svalues[base]);
    }
    exchange(points, svalues);
}

} // namespace qel
