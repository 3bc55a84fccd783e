// The curve's state: construction, validation, the setters and what they store.
//
// Every setter builds what it stores before it changes anything, so that a failure, also of
// memory, leaves the curve as it was. The two exceptions are deliberate and marked.

#include <qel/ParametricCurve.h>

#include <type_traits>

#include "curve/ArcLength.h"
#include "curve/Conversions.h"
#include "curve/Validation.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

// -- Validation ----

template <typename T>
void checkValues(const std::vector<T>& values) {
    checkCount(values.size(), "Curve has only one point in it"); // no full stop, unlike points
}

void checkNonDecreasing(const std::vector<double>& svalues) {
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        if (svalues[i - 1] > svalues[i]) {
            SystemMsg message("Parametric values  not continuous. i = %1, %2 %3");
            throw internal::error("ParametricCurve", "setPoints",
                                  message % i % svalues[i] % svalues[i - 1], argumentError);
        }
    }
}

void checkSvalues(const std::vector<double>& svalues, std::size_t pointCount) {
    if (svalues.size() != pointCount) {
        SystemMsg message("Vectors of points and sValues must have the same size. "
                          "Points size=%1, sValues size=%2");
        throw internal::error("ParametricCurve", "setPoints", message % pointCount % svalues.size(),
                              argumentError);
    }
    checkNonDecreasing(svalues);
}

bool isRecognised(ParametricCurve::dim dimension) {
    return dimension == ParametricCurve::dim1D || dimension == ParametricCurve::dim2D ||
           dimension == ParametricCurve::dim3D;
}

void zeroInsignificantComponents(Points& points, ParametricCurve::dim dimension) {
    if (dimension == ParametricCurve::dim3D) {
        return;
    }
    for (Point& point : points) {
        point.z = 0.0;
        if (dimension == ParametricCurve::dim1D) {
            point.y = 0.0;
        }
    }
}

internal::error unrecognisedDimension() {
    return {"ParametricCurve", "setPoints", "Unrecognised dimension of the curve.", argumentError};
}

// -- Points and s-values to store ----

template <typename T>
Points pointsAlong(double Point::*component, const std::vector<T>& values) {
    Points points(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        points[i].*component = values[i];
    }
    return points;
}

Points componentAsX(const Points& points, double Point::*component) {
    Points shifted(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        shifted[i].x = points[i].*component;
    }
    return shifted;
}

std::vector<double> arcValues(const Points& points) {
    std::vector<double> svalues;
    double length = 0.0;
    calculateArcValue(points, svalues, length);
    return svalues;
}

std::vector<double> uniformValues(std::size_t count) {
    std::vector<double> svalues(count);
    const double step = 1.0 / static_cast<double>(count - 1);
    for (std::size_t i = 0; i < count; ++i) {
        svalues[i] = static_cast<double>(i) * step;
    }
    svalues.back() = 1.0;
    return svalues;
}

std::vector<double> normalisedValues(const Points& points, ParametricCurve::normalization norm) {
    switch (norm) {
    case ParametricCurve::normalizeX:
        return arcValues(componentAsX(points, &Point::x));
    case ParametricCurve::normalizeY:
        return arcValues(componentAsX(points, &Point::y));
    case ParametricCurve::normalizeZ:
        return arcValues(componentAsX(points, &Point::z));
    case ParametricCurve::normalizeArc:
        return arcValues(points);
    case ParametricCurve::normalizeUniform: // offered by setPointsXnormalizeUniform alone
        break;
    }
    throw internal::error("ParametricCurve", "setPoints",
                          "Unrecognised normalization of the curve.", argumentError);
}

} // namespace

// -- Construction ----

ParametricCurve::ParametricCurve() : points_{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}}, svalues_{0.0, 1.0} {
    length_ = (points_[1] - points_[0]).length();
}

ParametricCurve::ParametricCurve(const Points& points, dim dimension) {
    setPoints(points, dimension);
}

ParametricCurve::ParametricCurve(const FloatPoints& points, dim dimension) {
    setPoints(points, dimension);
}

ParametricCurve::ParametricCurve(const FloatPoints& points, normalization norm, dim dimension) {
    setPoints(points, norm, dimension);
}

ParametricCurve::ParametricCurve(const Points& points, const std::vector<double>& svalues,
                                 dim dimension) {
    setPoints(points, svalues, dimension);
}

ParametricCurve::ParametricCurve(const FloatPoints& points, const std::vector<double>& svalues,
                                 dim dimension) {
    setPoints(points, svalues, dimension);
}

ParametricCurve::ParametricCurve(const ParametricCurve& other) = default;

ParametricCurve& ParametricCurve::operator=(const ParametricCurve& other) {
    Points points(other.points_);
    std::vector<double> svalues(other.svalues_);
    exchange(points, svalues);
    dimension_ = other.dimension_;
    parametrization_ = other.parametrization_;
    length_ = other.length_;
    axisPoint_ = other.axisPoint_;
    axisDirection_ = other.axisDirection_;
    createdAsDouble_ = other.createdAsDouble_;
    return *this;
}

ParametricCurve::~ParametricCurve() = default;

// -- Points, s computed ----

void ParametricCurve::setPoints(const Points& points, dim dimension) {
    checkPoints(points);
    Points stored(points);
    if (!isRecognised(dimension)) {
        // Deliberate: the dimension is looked at after the points were stored, so a curve that is
        // refused for it keeps them (ValidationTest, KeepsPointsOfAnUnrecognisedDimension).
        std::vector<double> resized(svalues_);
        resized.resize(stored.size());
        exchange(stored, resized);
        setParametrization(parametrizationComputed);
        dimension_ = dimension;
        throw unrecognisedDimension();
    }
    zeroInsignificantComponents(stored, dimension);
    exchangeAndCalculateArcValue(stored);
    setParametrization(parametrizationComputed);
    dimension_ = dimension;
    createdAsDouble_ = true;
}

void ParametricCurve::setPoints(const FloatPoints& points, dim dimension) {
    setPoints(widened(points), dimension);
    createdAsDouble_ = false;
}

void ParametricCurve::setPoints(const Points& points, normalization norm, dim dimension) {
    checkPoints(points);
    setPoints(points, normalisedValues(points, norm), dimension);
}

void ParametricCurve::setPoints(const FloatPoints& points, normalization norm, dim dimension) {
    setPoints(widened(points), norm, dimension);
    createdAsDouble_ = false;
}

// -- Points, s supplied ----

void ParametricCurve::setPoints(const Points& points, const std::vector<double>& svalues,
                                dim dimension) {
    checkPoints(points);
    if (svalues.size() != points.size()) {
        throw internal::error("ParametricCurve", "setPoints",
                              "Vectors of points and sValues must have the same size.",
                              argumentError);
    }
    Points storedPoints(points);
    std::vector<double> storedSvalues(svalues);
    points_.swap(storedPoints);
    // Deliberate: falling s-values are found after the points were stored, which then stand with
    // the old s-values (ValidationTest, KeepsNewPointsWithOldSvaluesWhenSFalls).
    checkNonDecreasing(storedSvalues);
    svalues_.swap(storedSvalues);
    setParametrization(parametrizationSupplied);
    dimension_ = dimension;
    if (!isRecognised(dimension)) { // deliberate too, as above
        throw unrecognisedDimension();
    }
    zeroInsignificantComponents(points_, dimension);
    createdAsDouble_ = true;
}

void ParametricCurve::setPoints(const FloatPoints& points, const std::vector<double>& svalues,
                                dim dimension) {
    setPoints(widened(points), svalues, dimension);
    createdAsDouble_ = false;
}

// -- One component ----

template <typename T>
void ParametricCurve::setComponent(double Point::*component, const std::vector<T>& values) {
    checkValues(values);
    Points points = pointsAlong(component, values);
    exchangeAndCalculateArcValue(points);
    setParametrization(parametrizationComputed);
    dimension_ = dim3D; // whichever component is filled
    createdAsDouble_ = std::is_same<T, double>::value;
}

void ParametricCurve::setComponent(double Point::*component, const std::vector<double>& values,
                                   const std::vector<double>& svalues) {
    checkValues(values);
    checkSvalues(svalues, values.size());
    Points points = pointsAlong(component, values);
    std::vector<double> stored(svalues);
    exchange(points, stored);
    setParametrization(parametrizationSupplied);
    dimension_ = dim3D;
    createdAsDouble_ = true;
}

void ParametricCurve::setPointsX(const std::vector<double>& values) {
    setComponent(&Point::x, values);
}
void ParametricCurve::setPointsX(const std::vector<float>& values) {
    setComponent(&Point::x, values);
}
void ParametricCurve::setPointsY(const std::vector<double>& values) {
    setComponent(&Point::y, values);
}
void ParametricCurve::setPointsY(const std::vector<float>& values) {
    setComponent(&Point::y, values);
}
void ParametricCurve::setPointsZ(const std::vector<double>& values) {
    setComponent(&Point::z, values);
}
void ParametricCurve::setPointsZ(const std::vector<float>& values) {
    setComponent(&Point::z, values);
}

void ParametricCurve::setPointsX(const std::vector<double>& values,
                                 const std::vector<double>& svalues) {
    setComponent(&Point::x, values, svalues);
}
void ParametricCurve::setPointsY(const std::vector<double>& values,
                                 const std::vector<double>& svalues) {
    setComponent(&Point::y, values, svalues);
}
void ParametricCurve::setPointsZ(const std::vector<double>& values,
                                 const std::vector<double>& svalues) {
    setComponent(&Point::z, values, svalues);
}

void ParametricCurve::setPointsXnormalizeUniform(const std::vector<double>& values) {
    checkValues(values);
    setPoints(pointsAlong(&Point::x, values), uniformValues(values.size()), dim1D);
}

// -- What is stored ----

std::size_t ParametricCurve::getSize() const {
    return points_.size();
}

ParametricCurve::dim ParametricCurve::getDimension() const {
    return dimension_;
}

ParametricCurve::parametrization ParametricCurve::getParametrization() const {
    return parametrization_;
}

double ParametricCurve::getLength() const {
    return length_;
}

bool ParametricCurve::isCurveCreatedAsDouble() const {
    return createdAsDouble_;
}

const Point& ParametricCurve::getAxisPoint() const {
    return axisPoint_;
}

const Point& ParametricCurve::getAxisDirection() const {
    return axisDirection_;
}

const Points& ParametricCurve::getCurve() const {
    return points_;
}

void ParametricCurve::getCurve(Points& points) const {
    points = points_;
}

const std::vector<double>& ParametricCurve::getSvalues() const {
    return svalues_;
}

void ParametricCurve::getSvalues(std::vector<double>& svalues) const {
    svalues = svalues_;
}

// -- Steps of the setters ----

void ParametricCurve::setParametrization(parametrization value) {
    parametrization_ = value;
}

void ParametricCurve::exchange(Points& points, std::vector<double>& svalues) noexcept {
    points_.swap(points);
    svalues_.swap(svalues);
}

void ParametricCurve::exchangeAndCalculateArcValue(Points& points) {
    std::vector<double> svalues;
    double length = 0.0;
    qel::calculateArcValue(points, svalues, length);
    exchange(points, svalues);
    length_ = length;
}

} // namespace qel
