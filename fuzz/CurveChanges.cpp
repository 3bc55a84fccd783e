// Operations that change a curve, in any order, each compared with its definition.

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "Curves.h"
#include "Refusals.h"

namespace {

using namespace qel_fuzz;

const char* const kClass = "ParametricCurve";

// -- Definitions ----

Points inDimension(Points points, int dimension) {
    for (Point& p : points) {
        p.y = dimension == 0 ? 0.0 : p.y;
        p.z = dimension < 2 ? 0.0 : p.z;
    }
    return points;
}

Points withoutRepeats(const Points& points) {
    Points kept;
    for (const Point& p : points) {
        if (kept.empty() || kept.back() != p) {
            kept.push_back(p);
        }
    }
    if (kept.size() == 1) {
        kept.push_back(kept.front());
    }
    return kept;
}

Points withoutTurningBack(const Points& points) {
    Points kept = {points.front()};
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const Point d = points[i + 1] - kept.back();
        if (referenceDot(points[i] - kept.back(), d) > 0.0 &&
            referenceDot(points[i] - points[i + 1], d) < 0.0) {
            kept.push_back(points[i]);
        }
    }
    kept.push_back(points.back());
    return kept;
}

Points withoutDoublePoints(const Points& points, double tolerance) {
    Values s;
    referenceArcValues(points, s);
    Points kept = {points.front()};
    double last = s[0];
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        if (s[i] - last > tolerance && s[i + 1] - s[i] > tolerance) {
            kept.push_back(points[i]);
            last = s[i];
        }
    }
    kept.push_back(points.back());
    return kept;
}

double spacingOfHalf(bool isDouble) {
    return isDouble ? qel::NumericalUtils::spacing(0.5)
                    : static_cast<double>(qel::NumericalUtils::spacing(0.5f));
}

// New places of the first and the last point.
std::pair<Point, Point> extrapolated(const Points& points, double fraction) {
    const double length = referenceDistances(points).back();
    const Points q = withoutDoublePoints(points, 100.0 * spacingOfHalf(true));
    const std::size_t m = q.size();
    const double distance = length * fraction;
    return {q[0] + referenceUnit(q[0] - q[1]) * distance,
            q[m - 1] + referenceUnit(q[m - 1] - q[m - 2]) * distance};
}

bool holdsInOrder(const Points& points, const Points& part) {
    std::size_t found = 0;
    for (const Point& p : points) {
        if (found < part.size() && sameBits(p, part[found])) {
            ++found;
        }
    }
    return found == part.size();
}

// -- A curve beside its model ----

class Pair {
public:
    Pair() : model_(stateOf(curve_)) {}
    void step(Input& input);

private:
    void compare() const { require(stateOf(curve_) == model_, "the curve is that of the model"); }
    void resume();
    void cleaned(const Points& points);

    void set(Input& input);
    void setSupplied(Input& input, const Points& points);
    void setNormalised(Input& input, const Points& points);
    void setFloats(Input& input);
    void setComponent(Input& input);
    void clean(Input& input);
    void expand(Input& input);
    void insert(Input& input);
    void simplify(Input& input);
    void convert(Input& input);
    void copy(Input& input);

    ParametricCurve curve_;
    CurveState model_;
};

// Goes on from what the curve is now, where there is no definition to compare with.
void Pair::resume() {
    model_ = stateOf(curve_);
    require(model_.points.size() >= 2, "a curve has two points");
    require(model_.points.size() == model_.svalues.size(), "every point has an s-value");
}

void Pair::cleaned(const Points& points) {
    recompute(model_, points);
    model_.parametrization = ParametricCurve::parametrizationComputed;
}

void Pair::setSupplied(Input& input, const Points& points) {
    const auto dim = dimension(input);
    const Values svalues =
        svaluesFor(input, input.integer(0, 20) == 0 ? input.count(0, 6) : points.size());
    const bool isOrdered =
        std::is_sorted(svalues.begin(), svalues.end(), [](double a, double b) { return a < b; });
    if (points.size() >= 2 && svalues.size() == points.size() && !isOrdered && !hasNaN(svalues)) {
        return; // keeps the new points with the old s-values: see the tests
    }
    const bool refused = refuses(kClass, [&] { curve_.setPoints(points, svalues, dim); });
    if (refused) {
        require(points.size() < 2 || svalues.size() != points.size() || !isOrdered,
                "only bad s-values are refused");
        if (svalues.size() != points.size() || points.size() < 2) {
            return;
        }
        curve_ = ParametricCurve();
        resume();
        return;
    }
    model_.points = inDimension(points, dim);
    model_.svalues = svalues;
    model_.dimension = dim;
    model_.parametrization = ParametricCurve::parametrizationSupplied;
    model_.createdAsDouble = true;
}

void Pair::setNormalised(Input& input, const Points& points) {
    const auto dim = dimension(input);
    const auto norm = static_cast<ParametricCurve::normalization>(input.integer(0, 4));
    const bool refused = refuses(kClass, [&] { curve_.setPoints(points, norm, dim); });
    require(refused == (points.size() < 2 || norm == ParametricCurve::normalizeUniform),
            "a curve has two points and is not normalised uniformly");
    if (refused) {
        return;
    }
    Points measured = points;
    for (Point& p : measured) {
        p = norm == ParametricCurve::normalizeArc ? p : Point(p.getRef(norm), 0.0, 0.0);
    }
    referenceArcValues(measured, model_.svalues);
    model_.points = inDimension(points, dim);
    model_.dimension = dim;
    model_.parametrization = ParametricCurve::parametrizationSupplied;
    model_.createdAsDouble = true;
}

void Pair::setFloats(Input& input) {
    const FloatPoints points = input.triplets<float>(0, 20);
    const auto dim = dimension(input);
    const bool refused = refuses(kClass, [&] { curve_.setPoints(points, dim); });
    require(refused == (points.size() < 2), "a curve has two points");
    if (!refused) {
        model_.dimension = dim;
        model_.createdAsDouble = false;
        cleaned(inDimension(widened(points), dim));
    }
}

void Pair::set(Input& input) {
    const Points points = input.triplets<double>(0, 40);
    switch (input.integer(0, 2)) {
    case 0:
        setSupplied(input, points);
        break;
    case 1:
        setNormalised(input, points);
        break;
    default: {
        const auto dim = dimension(input);
        const bool moves = input.flag();
        const bool refused = refuses(kClass, [&] {
            Points given = points;
            if (moves) {
                curve_.setPoints(std::move(given), dim);
            } else {
                curve_.setPoints(given, dim);
            }
        });
        require(refused == (points.size() < 2), "a curve has two points");
        if (!refused) {
            model_.dimension = dim;
            model_.createdAsDouble = true;
            cleaned(inDimension(points, dim));
        }
    }
    }
}

void Pair::setComponent(Input& input) {
    const Values values = input.numbers<double>(0, 20);
    const int component = input.integer(0, 2);
    const bool refused = refuses(kClass, [&] {
        if (component == 0) {
            curve_.setPointsX(values);
        } else if (component == 1) {
            curve_.setPointsY(values);
        } else {
            curve_.setPointsZ(values);
        }
    });
    require(refused == (values.size() < 2), "a curve has two points");
    if (refused) {
        return;
    }
    Points points(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        points[i].getRef(component) = values[i];
    }
    model_.dimension = ParametricCurve::dim3D;
    model_.createdAsDouble = true;
    cleaned(points);
}

void Pair::clean(Input& input) {
    const int exponent = input.integer(0, 3);
    switch (input.integer(0, 4)) {
    case 0:
        curve_.makeUnique();
        cleaned(withoutRepeats(model_.points));
        break;
    case 1:
        curve_.makeContinuous();
        cleaned(withoutTurningBack(model_.points));
        break;
    case 2:
        curve_.reverseCurve();
        cleaned(Points(model_.points.rbegin(), model_.points.rend()));
        break;
    case 3:
        curve_.eliminateDoublePoints(exponent);
        cleaned(withoutDoublePoints(model_.points, std::pow(10.0, exponent) *
                                                       spacingOfHalf(model_.createdAsDouble)));
        break;
    default: {
        const bool isDouble = input.flag();
        curve_.eliminateDoublePoints(exponent, isDouble ? ParametricCurve::doublePrecision
                                                        : ParametricCurve::singlePrecision);
        cleaned(
            withoutDoublePoints(model_.points, std::pow(10.0, exponent) * spacingOfHalf(isDouble)));
    }
    }
}

void Pair::expand(Input& input) {
    const double fraction = input.number<double>();
    const int form = input.integer(0, 3);
    const bool refused = refuses(kClass, [&] {
        if (form == 0) {
            curve_.expandCurveBegin(fraction);
        } else if (form == 1) {
            curve_.expandCurveEnd(fraction);
        } else if (form == 2) {
            curve_.expandCurveBothEnds(fraction);
        } else {
            curve_.expandCurveBothEndsExtraPoints(fraction);
        }
    });
    require(refused == (referenceDistances(model_.points).back() == 0.0),
            "a curve without length has no direction");
    if (refused) {
        return;
    }
    const auto ends = extrapolated(model_.points, fraction);
    Points points = model_.points;
    if (form == 3) {
        points.insert(points.begin(), ends.first);
        points.push_back(ends.second);
        points = inDimension(points, model_.dimension);
        model_.createdAsDouble = true;
    } else {
        points.front() = form == 1 ? points.front() : ends.first;
        points.back() = form == 0 ? points.back() : ends.second;
    }
    cleaned(points);
}

void Pair::insert(Input& input) {
    if (curve_.getSize() > 500) {
        return; // each insertion may multiply the points
    }
    const double step = input.flag() ? 0.05 : input.number<double>();
    Values y;
    curve_.getY(y);
    const int form = input.integer(0, 3);
    refuses(kClass, [&] {
        if (form == 0 && isCheapOrRefused(stepsBetween(model_.svalues, step))) {
            curve_.tesselateCurvebySdistance(step);
        } else if (form == 1) {
            curve_.tesselateCurvebyNumber(input.integer(-1, 20), step);
        } else if (form == 2 && isCheapOrRefused(stepsBetween(y, step))) {
            curve_.tesselateCurvebyMinYdistance(step);
        } else if (form == 3) {
            curve_.tesselateXCurvebyCosine(input.integer(-1, 5));
        }
    });
    require(holdsInOrder(curve_.getCurve(), model_.points), "the stored points stay");
    resume();
}

void Pair::simplify(Input& input) {
    const int count = input.integer(-1, 20);
    const double tolerance = input.number<double>();
    std::vector<int> ids;
    const bool refused =
        refuses(kClass, [&] { curve_.optimizeByNormalDistance(count, ids, tolerance); });
    if (refused || count < 2) {
        compare();
        return;
    }
    require(ids.size() >= 2 && ids.size() <= static_cast<std::size_t>(count),
            "at most as many points are kept as asked for");
    Points kept;
    for (const int id : ids) {
        kept.push_back(model_.points.at(static_cast<std::size_t>(id)));
    }
    require(std::is_sorted(ids.begin(), ids.end()), "the points kept are named in order");
    require(bool(sameBitsInAll(curve_.getCurve(), kept)), "the points kept are those named");
    recompute(model_, kept);
    model_.parametrization = curve_.getParametrization();
}

void Pair::convert(Input& input) {
    const FloatPoint origin = input.triplet<float>(), direction = input.triplet<float>();
    switch (input.integer(0, 3)) {
    case 0:
        curve_.storeSvaluetoXandXToY();
        for (std::size_t i = 0; i < model_.points.size(); ++i) {
            Point& p = model_.points[i];
            p = Point(model_.svalues[i], p.x, p.z);
        }
        compare();
        break;
    case 1:
        curve_.rotateAroundVector(Point(origin), Point(direction), input.number<double>());
        model_.points = curve_.getCurve();
        compare();
        break;
    case 2:
        refuses(kClass, [&] { curve_.convertToART0(origin, direction); });
        break;
    default:
        refuses(kClass, [&] {
            curve_.convertToART(origin, direction, input.integer(-1, 40), input.number<double>());
        });
    }
    resume();
}

void Pair::copy(Input& input) {
    ParametricCurve other(curve_);
    if (input.flag()) {
        curve_ = ParametricCurve();
        curve_ = other;
    } else {
        curve_ = std::move(other);
    }
}

void Pair::step(Input& input) {
    using Change = void (Pair::*)(Input&);
    constexpr Change kChanges[] = {
        &Pair::set,    &Pair::setFloats, &Pair::setComponent, &Pair::clean,   &Pair::clean,
        &Pair::expand, &Pair::insert,    &Pair::simplify,     &Pair::convert, &Pair::copy};
    (this->*kChanges[input.count(0, std::size(kChanges) - 1)])(input);
    compare();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Pair pair;
    for (int steps = 0; input.hasMore() && steps < 30; ++steps) {
        pair.step(input);
    }
    return 0;
}
