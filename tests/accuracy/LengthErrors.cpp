#include <cmath>
#include <cstddef>

#include <qel/ParametricCurve.h>

#include "accuracy/Measurements.h"

namespace qel_accuracy {
namespace {

using Real = long double;
using Point = qel::TripletBase<double>;

constexpr Real kPi = 3.141592653589793238462643383279502884L;
constexpr Real kMajor = 1.0L, kMinor = 0.5L; // half axes of the ellipse

// Of a parameter that runs from 0 to 1.
Point onCircle(Real t) {
    return {static_cast<double>(std::cos(2 * kPi * t)), static_cast<double>(std::sin(2 * kPi * t)),
            0.0};
}

Point onEllipse(Real t) {
    return {static_cast<double>(kMajor * std::cos(2 * kPi * t)),
            static_cast<double>(kMinor * std::sin(2 * kPi * t)), 0.0};
}

// Has cusps at both ends.
Point onCycloid(Real t) {
    const Real angle = 2 * kPi * t;
    return {static_cast<double>(angle - std::sin(angle)), static_cast<double>(1 - std::cos(angle)),
            0.0};
}

// y^2 = x^3, with a cusp in the middle, which is a vertex where n is even.
Point onSemicubicParabola(Real t) {
    const Real u = 2 * t - 1;
    return {static_cast<double>(u * u), static_cast<double>(u * u * u), 0.0};
}

// Half thickness of the section NACA 0012 of chord 1, with a blunt trailing edge.
Real halfThickness(Real x) {
    return 0.6L *
           (0.2969L * std::sqrt(x) + x * (-0.1260L + x * (-0.3516L + x * (0.2843L - x * 0.1015L))));
}

// Round the nose, with places x = (1 + cos) / 2, dense at both edges of the section.
Point onSection(Real t) {
    const Real x = (1 + std::cos(2 * kPi * t)) / 2;
    const Real y = halfThickness(x);
    return {static_cast<double>(x), static_cast<double>(t < 0.5L ? y : -y), 0.0};
}

// By the arithmetic-geometric mean (Gauss; Abramowitz and Stegun 17.6).
Real ellipseLength() {
    Real a = kMajor, b = kMinor, weight = 0.5L;
    Real sum = (a * a - b * b) * weight;
    while (a - b > 1e-18L * a) {
        const Real c = (a - b) / 2;
        const Real mean = (a + b) / 2;
        b = std::sqrt(a * b);
        a = mean;
        weight *= 2;
        sum += c * c * weight;
    }
    return 2 * kPi / a * (kMajor * kMajor - sum);
}

// Simpson's rule over the angle of the section's places, in which the integrand is smooth.
Real sectionLength() {
    constexpr int kIntervals = 20000;
    const auto speed = [](Real angle) {
        // With x = sin^2(angle / 2) from the leading edge, sqrt(x) = sin(angle / 2).
        const Real root = std::sin(angle / 2), x = root * root;
        const Real dx = root * std::cos(angle / 2);
        const Real smooth = -0.1260L + x * (-0.7032L + x * (0.8529L - x * 0.4060L));
        const Real dy = 0.6L * (0.2969L * std::cos(angle / 2) / 2 + smooth * dx);
        return std::sqrt(dx * dx + dy * dy);
    };
    Real sum = speed(0) + speed(kPi);
    for (int i = 1; i < kIntervals; ++i) {
        sum += speed(kPi * i / kIntervals) * (i % 2 == 1 ? 4 : 2);
    }
    return 2 * sum * kPi / kIntervals / 3;
}

double errorOf(Point (*at)(Real), Real exact, std::size_t edges) {
    std::vector<Point> points;
    for (std::size_t i = 0; i <= edges; ++i) {
        points.push_back(at(static_cast<Real>(i) / static_cast<Real>(edges)));
    }
    const qel::ParametricCurve curve(points, qel::ParametricCurve::dim3D);
    return static_cast<double>(std::fabs(static_cast<Real>(curve.getLength()) - exact) / exact);
}

LengthRow measured(const char* curve, Point (*at)(Real), Real exact) {
    const double fine = errorOf(at, exact, 1024);
    return {curve, errorOf(at, exact, 128), fine, std::log2(errorOf(at, exact, 512) / fine)};
}

} // namespace

std::vector<LengthRow> measureLengths() {
    const Real branch = (13 * std::sqrt(13.0L) - 8) / 27;
    return {
        measured("circle", onCircle, 2 * kPi),
        measured("ellipse of half axes 1 and 0.5", onEllipse, ellipseLength()),
        measured("cycloid, one arch", onCycloid, 8),
        measured("semicubic parabola, through its cusp", onSemicubicParabola, 2 * branch),
        measured("section NACA 0012", onSection, sectionLength()),
    };
}

} // namespace qel_accuracy
