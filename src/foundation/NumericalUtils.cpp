// Machine spacing; bilinear interpolation in a plane quadrilateral, and its inverse by Newton's
// method.

#include <qel/NumericalUtils.h>

#include <algorithm>
#include <cmath>

#include "foundation/MachineSpacing.h"

namespace qel {
namespace {

constexpr double kSingularSpacings = 100.0;

// One coordinate of the four corners, and what the search needs of it.
struct Axis {
    double f1, f2, f3, f4;

    double low() const { return std::min(std::min(std::min(f1, f2), f3), f4); }
    double high() const { return std::max(std::max(std::max(f1, f2), f3), f4); }
    double extent() const { return high() - low(); }

    bool isBeyond(double p, double margin) const {
        const double slack = extent() * margin;
        return p < low() - slack || p > high() + slack;
    }
};

// The four weights of the bilinear value.
struct Weights {
    double w1, w2, w3, w4;

    Weights(double s, double t)
        : w1((1.0 - t) * (1.0 - s)), w2((1.0 - t) * s), w3((1.0 - s) * t), w4(s * t) {}

    double of(const Axis& a) const { return w1 * a.f1 + w2 * a.f2 + w3 * a.f3 + w4 * a.f4; }
};

// True if |determinant| < 100 spacings of the larger numerator, in single precision also in the
// double search (Quadrilateral, SingularityIsJudgedInSinglePrecision).
bool isSingular(double determinant, double numeratorS, double numeratorT) {
    const double size = std::abs(determinant);
    const float step = static_cast<float>(std::max(std::abs(numeratorS), std::abs(numeratorT)));
    return size < kSingularSpacings * spacingAt(step);
}

struct Flags {
    bool& outside;
    bool& converged;
    bool& singular;
};

// The Newton search. T is the precision in which s and t are kept between the steps.
template <typename T>
void search(T& sResult, T& tResult, double px, double py, const Axis& x, const Axis& y, Flags flags,
            int maxIterations, double margin, double tolerance) {
    flags.outside = flags.converged = flags.singular = false;
    T s = sResult = T(0.5);
    T t = tResult = T(0.5);
    if (x.isBeyond(px, margin) || y.isBeyond(py, margin)) {
        flags.outside = true;
        return;
    }
    const double smallResidual = tolerance * std::max(x.extent(), y.extent());
    const double x21 = x.f2 - x.f1, x31 = x.f3 - x.f1, x43 = x.f4 - x.f3, x42 = x.f4 - x.f2;
    const double y21 = y.f2 - y.f1, y31 = y.f3 - y.f1, y43 = y.f4 - y.f3, y42 = y.f4 - y.f2;

    for (int i = 0; i < maxIterations; ++i) {
        const Weights weights(s, t);
        const double rx = px - weights.of(x);
        const double ry = py - weights.of(y);
        if (std::abs(rx) < smallResidual && std::abs(ry) < smallResidual) {
            flags.converged = true;
            break;
        }
        const double xs = t * x43 + (1.0 - t) * x21;
        const double ys = t * y43 + (1.0 - t) * y21;
        const double xt = s * x42 + (1.0 - s) * x31;
        const double yt = s * y42 + (1.0 - s) * y31;
        const double determinant = xs * yt - xt * ys;
        const double ns = yt * rx - xt * ry;
        const double nt = xs * ry - ys * rx;
        if (isSingular(determinant, ns, nt)) {
            flags.singular = true;
            break;
        }
        const T lastS = s;
        const T lastT = t;
        s = static_cast<T>(s + ns / determinant);
        t = static_cast<T>(t + nt / determinant);
        // The plain tolerance, against the numerators: unlike the residuals' test, on purpose.
        if (std::abs(ns) < tolerance && std::abs(nt) < tolerance) {
            flags.converged = true;
            break;
        }
        // Further steps would not change the outcome: the search stands still, or is lost in NaN,
        // which the next step spreads to both parameters.
        if (s == lastS && t == lastT) {
            break;
        }
        if (std::isnan(lastS) && std::isnan(lastT)) {
            break;
        }
    }
    sResult = s;
    tResult = t;
}

} // namespace

// -- Machine spacing ----

double NumericalUtils::spacing(double x) {
    return spacingAt(x);
}

float NumericalUtils::spacing(float x) {
    return spacingAt(x);
}

// -- Bilinear value ----

double NumericalUtils::calculateValueInQuadFromSTD(double s, double t, double f1, double f2,
                                                   double f3, double f4) {
    return Weights(s, t).of(Axis{f1, f2, f3, f4});
}

float NumericalUtils::calculateValueInQuadFromST(float s, float t, float f1, float f2, float f3,
                                                 float f4) {
    const float s1 = static_cast<float>(1.0 - s);
    const float t1 = static_cast<float>(1.0 - t);
    const float w1 = t1 * s1, w2 = t1 * s, w3 = s1 * t, w4 = s * t;
    return w1 * f1 + w2 * f2 + w3 * f3 + w4 * f4;
}

// -- Inverse search ----

void NumericalUtils::searchForSTinQuadD(double& s, double& t, double px, double py, double x1,
                                        double y1, double x2, double y2, double x3, double y3,
                                        double x4, double y4, bool& outside, bool& converged,
                                        bool& singular, int maxIterations, double margin,
                                        double tolerance) {
    search(s, t, px, py, {x1, x2, x3, x4}, {y1, y2, y3, y4}, {outside, converged, singular},
           maxIterations, margin, tolerance);
}

void NumericalUtils::searchForSTinQuad(float& s, float& t, float px, float py, float x1, float y1,
                                       float x2, float y2, float x3, float y3, float x4, float y4,
                                       bool& outside, bool& converged, bool& singular,
                                       int maxIterations, float margin, float tolerance) {
    search(s, t, px, py, {x1, x2, x3, x4}, {y1, y2, y3, y4}, {outside, converged, singular},
           maxIterations, margin, tolerance);
}

} // namespace qel
