// Area by the shoelace formula, and its exact sign.

#include <algorithm>
#include <cmath>
#include <vector>

#include <qel/CurveShape.h>

#include "batch/PointLoop.h"
#include "polyline/CoordinateScale.h"
#include "polyline/ExactTerms.h"
#include "polyline/Orientation.h"

namespace qel {
namespace {

// Coordinates between these powers of two have products that neither overflow nor lose bits.
constexpr int kMinExponent = -100;
constexpr int kMaxExponent = 400;

CoordinateScale scaleOf(const CurveView& curve) {
    double largest = 0.0;
    curve.visitPoints([&largest](const auto& points) {
        forEachPoint(points, [&largest](std::size_t, double x, double y, double) {
            largest = std::max(largest, std::max(std::fabs(x), std::fabs(y)));
        });
    });
    return CoordinateScale::into(kMinExponent, kMaxExponent, largest);
}

PlanePoint planePoint(const CurveView& curve, std::size_t i, double factor) {
    const TripletBase<double> p = curve[i];
    return {p.x * factor, p.y * factor};
}

// Calls take(left, right) with the two products of each edge's term, about the first vertex, where
// the terms of the first and the last edge vanish.
template <typename Take>
void forEachTerm(const CurveView& curve, double factor, const Take& take) {
    const PlanePoint origin = planePoint(curve, 0, factor);
    double x = 0.0, y = 0.0; // from the first vertex
    curve.visitPoints([&](const auto& points) {
        forEachPoint(points, [&](std::size_t, double pointX, double pointY, double) {
            const double nextX = pointX * factor - origin.x, nextY = pointY * factor - origin.y;
            take(x * nextY, nextX * y);
            x = nextX;
            y = nextY;
        });
    });
}

double twiceAreaOf(const CurveView& curve, double factor) {
    double sum = 0.0;
    forEachTerm(curve, factor, [&sum](double left, double right) { sum += left - right; });
    return sum;
}

// The sum of the sizes of all terms.
double sizeOfTerms(const CurveView& curve, double factor) {
    double sum = 0.0;
    forEachTerm(curve, factor,
                [&sum](double left, double right) { sum += std::fabs(left) + std::fabs(right); });
    return sum;
}

int signOf(double value) {
    return (value > 0.0) - (value < 0.0);
}

int exactOrientationOf(const CurveView& curve, double factor) {
    Expansion<std::vector<double>> twiceArea;
    PlanePoint p = planePoint(curve, curve.size() - 1, factor); // the chord that closes the curve
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const PlanePoint next = planePoint(curve, i, factor);
        twiceArea.add(exactProduct(p.x, next.y));
        twiceArea.add(exactProduct(-next.x, p.y));
        p = next;
    }
    return signOf(twiceArea.rounded());
}

} // namespace

double computeSignedArea(const CurveView& curve) {
    const CoordinateScale scale = scaleOf(curve);
    return 0.5 * twiceAreaOf(curve, scale.factor) * scale.inverse * scale.inverse;
}

int computeOrientation(const CurveView& curve) {
    const CoordinateScale scale = scaleOf(curve);
    const double twiceArea = twiceAreaOf(curve, scale.factor);
    // Each term has a relative error below four units in the last place of its size; adding n of
    // them one by one, below n units of the sum of all sizes (Higham 2002, section 4.2).
    const double error =
        (static_cast<double>(curve.size()) + 8.0) * 0x1p-52 * sizeOfTerms(curve, scale.factor);
    return std::fabs(twiceArea) > error ? signOf(twiceArea)
                                        : exactOrientationOf(curve, scale.factor);
}

} // namespace qel
