// Construction: validation, the setters, and the state that they leave.
//
// Every setter checks its arguments and makes room before it changes anything, so that a failure,
// also of memory, leaves the curve as it was. The exceptions are deliberate and marked. What is set
// may be the curve's own: its memory is let go only where it is too small for that.

#include <qel/ParametricCurve.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "curve/ArcLength.h"
#include "curve/Conversions.h"
#include "curve/Validation.h"

namespace qel {
namespace {

// -- Validation ----

void checkNonDecreasing(const std::vector<double>& svalues) {
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        if (svalues[i - 1] > svalues[i]) {
            throw argumentFault("setPoints", "Parametric values  not continuous. i = %1, %2 %3", i,
                                svalues[i], svalues[i - 1]);
        }
    }
}

void checkSvalues(const std::vector<double>& svalues, std::size_t pointCount) {
    if (svalues.size() != pointCount) {
        throw argumentFault("setPoints",
                            "Vectors of points and sValues must have the same size. Points "
                            "size=%1, sValues size=%2",
                            pointCount, svalues.size());
    }
    checkNonDecreasing(svalues);
}

void checkSupplied(std::size_t pointCount, std::size_t svalueCount) {
    checkCount(pointCount, kOnePoint);
    if (svalueCount != pointCount) {
        throw argumentFault("setPoints", "Vectors of points and sValues must have the same size.");
    }
}

void checkNormalization(ParametricCurve::normalization norm) {
    switch (norm) {
    case ParametricCurve::normalizeX:
    case ParametricCurve::normalizeY:
    case ParametricCurve::normalizeZ:
    case ParametricCurve::normalizeArc:
        return;
    case ParametricCurve::normalizeUniform: // offered by setPointsXnormalizeUniform alone
        break;
    }
    throw argumentFault("setPoints", "Unrecognised normalization of the curve.");
}

// -- What is stored ----

// Sets the points, widened, with their insignificant components zero; with all of them for a
// dimension that is not recognised.
template <typename Source>
void copyPoints(const std::vector<Source>& from, ParametricCurve::dim dimension, Points& points) {
    const Source* const source = from.data();
    const bool hasY = dimension != ParametricCurve::dim1D;
    const bool hasZ = hasY && dimension != ParametricCurve::dim2D;
    fillVector(points, from.size(), [=](std::size_t i) {
        return Point(source[i].x, hasY ? source[i].y : 0.0, hasZ ? source[i].z : 0.0);
    });
}

void zeroInsignificantComponents(Points& points, ParametricCurve::dim dimension) {
    if (dimension != ParametricCurve::dim3D) {
        copyPoints(points, dimension, points);
    }
}

template <typename T>
void copyValues(const std::vector<T>& values, double Point::*component, Points& points) {
    const T* const value = values.data();
    fillAlong(
        component, values.size(), [=](std::size_t i) { return static_cast<double>(value[i]); },
        points);
}

} // namespace

// -- Construction ----

ParametricCurve::ParametricCurve() : points_{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}}, svalues_{0.0, 1.0} {
    length_ = (points_[1] - points_[0]).length();
}

ParametricCurve::ParametricCurve(const Points& points, dim dimension) {
    setPoints(points, dimension);
}

ParametricCurve::ParametricCurve(Points&& points, dim dimension) {
    setPoints(std::move(points), dimension);
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

ParametricCurve::ParametricCurve(Points&& points, std::vector<double>&& svalues, dim dimension) {
    setPoints(std::move(points), std::move(svalues), dimension);
}

ParametricCurve::ParametricCurve(const FloatPoints& points, const std::vector<double>& svalues,
                                 dim dimension) {
    setPoints(points, svalues, dimension);
}

ParametricCurve::ParametricCurve(const ParametricCurve& other) = default;

ParametricCurve::ParametricCurve(ParametricCurve&& other) noexcept = default;

ParametricCurve& ParametricCurve::operator=(const ParametricCurve& other) {
    makeRoom(other.points_.size(), other.svalues_.size());
    points_ = other.points_;
    svalues_ = other.svalues_;
    copyFields(other);
    return *this;
}

ParametricCurve& ParametricCurve::operator=(ParametricCurve&& other) noexcept {
    exchange(other.points_, other.svalues_);
    copyFields(other);
    return *this;
}

void ParametricCurve::copyFields(const ParametricCurve& other) noexcept {
    dimension_ = other.dimension_;
    parametrization_ = other.parametrization_;
    length_ = other.length_;
    axisPoint_ = other.axisPoint_;
    axisDirection_ = other.axisDirection_;
    createdAsDouble_ = other.createdAsDouble_;
}

ParametricCurve::~ParametricCurve() = default;

// -- Points, s computed ----

// Deliberate, here and below: the dimension is looked at after the points were stored, so a curve
// that is refused for it keeps them (ValidationTest, KeepsPointsOfAnUnrecognisedDimension).
template <typename Source>
void ParametricCurve::setComputed(const std::vector<Source>& points, dim dimension) {
    checkCount(points.size(), kOnePoint);
    Points room = roomBeyond(points_, points.size());
    svalues_.resize(points.size());
    adoptRoom(points_, room);
    copyPoints(points, dimension, points_);
    setFields(dimension, parametrizationComputed, std::is_same<Source, Point>::value);
    calculateArcValue(points_, svalues_, length_);
}

void ParametricCurve::setPoints(const Points& points, dim dimension) {
    setComputed(points, dimension);
}

void ParametricCurve::setPoints(const FloatPoints& points, dim dimension) {
    setComputed(points, dimension);
}

void ParametricCurve::setPoints(Points&& points, dim dimension) {
    checkCount(points.size(), kOnePoint);
    svalues_.resize(points.size());
    points_.swap(points);
    setFields(dimension, parametrizationComputed, true);
    zeroInsignificantComponents(points_, dimension);
    calculateArcValue(points_, svalues_, length_);
}

template <typename Source>
void ParametricCurve::setNormalised(const std::vector<Source>& points, normalization norm,
                                    dim dimension) {
    checkCount(points.size(), kOnePoint);
    checkNormalization(norm);
    makeRoom(points.size(), points.size());
    copyPoints(points, dim3D, points_); // all components, of which one may make s
    double length = 0.0;                // the curve's own is that of its points alone
    if (norm == normalizeArc) {
        calculateArcValue(points_, svalues_, length);
    } else {
        calculateArcValue(points_,
                          norm == normalizeX   ? &Point::x
                          : norm == normalizeY ? &Point::y
                                               : &Point::z,
                          svalues_, length);
    }
    setFields(dimension, parametrizationSupplied, std::is_same<Source, Point>::value);
    zeroInsignificantComponents(points_, dimension);
}

void ParametricCurve::setPoints(const Points& points, normalization norm, dim dimension) {
    setNormalised(points, norm, dimension);
}

void ParametricCurve::setPoints(const FloatPoints& points, normalization norm, dim dimension) {
    setNormalised(points, norm, dimension);
}

// -- Points, s supplied ----

template <typename Source>
void ParametricCurve::setSupplied(const std::vector<Source>& points,
                                  const std::vector<double>& svalues, dim dimension) {
    checkSupplied(points.size(), svalues.size());
    if (!std::is_sorted(svalues.begin(), svalues.end())) {
        // Deliberate: falling s-values are found after the points were stored, which then stand
        // with the old s-values (ValidationTest, KeepsNewPointsWithOldSvaluesWhenSFalls).
        Points room = roomBeyond(points_, points.size());
        adoptRoom(points_, room);
        copyPoints(points, dim3D, points_);
        checkNonDecreasing(svalues);
    }
    makeRoom(points.size(), points.size());
    copyPoints(points, dimension, points_);
    svalues_ = svalues;
    setFields(dimension, parametrizationSupplied, std::is_same<Source, Point>::value);
}

void ParametricCurve::setPoints(const Points& points, const std::vector<double>& svalues,
                                dim dimension) {
    setSupplied(points, svalues, dimension);
}

void ParametricCurve::setPoints(const FloatPoints& points, const std::vector<double>& svalues,
                                dim dimension) {
    setSupplied(points, svalues, dimension);
}

void ParametricCurve::setPoints(Points&& points, std::vector<double>&& svalues, dim dimension) {
    checkSupplied(points.size(), svalues.size());
    points_.swap(points);
    checkNonDecreasing(svalues); // deliberately behind, as above
    svalues_.swap(svalues);
    zeroInsignificantComponents(points_, dimension);
    setFields(dimension, parametrizationSupplied, true);
}

// -- One component ----

template <typename T>
void ParametricCurve::setComponent(double Point::*component, const std::vector<T>& values) {
    checkCount(values.size(), kOneValue);
    makeRoom(values.size(), values.size());
    copyValues(values, component, points_);
    calculateArcValue(points_, svalues_, length_);
    setFields(dim3D, parametrizationComputed, std::is_same<T, double>::value);
}

void ParametricCurve::setComponent(double Point::*component, const std::vector<double>& values,
                                   const std::vector<double>& svalues) {
    checkCount(values.size(), kOneValue);
    checkSvalues(svalues, values.size());
    makeRoom(values.size(), values.size());
    copyValues(values, component, points_);
    svalues_ = svalues;
    setFields(dim3D, parametrizationSupplied, true);
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
    checkCount(values.size(), kOneValue);
    makeRoom(values.size(), values.size());
    copyValues(values, &Point::x, points_);
    const double step = 1.0 / static_cast<double>(values.size() - 1);
    fillVector(svalues_, values.size(),
               [=](std::size_t i) { return static_cast<double>(i) * step; });
    svalues_.back() = 1.0;
    setFields(dim1D, parametrizationSupplied, true);
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

void ParametricCurve::computeSvalues() {
    calculateArcValue(points_, svalues_, length_);
    parametrization_ = parametrizationComputed;
}

void ParametricCurve::makeRoom(std::size_t pointCount, std::size_t svalueCount) {
    Points points = roomBeyond(points_, pointCount);
    std::vector<double> svalues = roomBeyond(svalues_, svalueCount);
    adoptRoom(points_, points);
    adoptRoom(svalues_, svalues);
}

// A dimension that is not recognised is refused, but stored.
void ParametricCurve::setFields(dim dimension, parametrization origin, bool createdAsDouble) {
    dimension_ = dimension;
    parametrization_ = origin;
    if (dimension != dim1D && dimension != dim2D && dimension != dim3D) {
        throw argumentFault("setPoints", "Unrecognised dimension of the curve.");
    }
    createdAsDouble_ = createdAsDouble;
}

void ParametricCurve::exchange(Points& points, std::vector<double>& svalues) noexcept {
    points_.swap(points);
    svalues_.swap(svalues);
}

void ParametricCurve::exchangeAndCalculateArcValue(Points& points) {
    svalues_.reserve(points.size());
    points_.swap(points);
    calculateArcValue(points_, svalues_, length_);
}

} // namespace qel
