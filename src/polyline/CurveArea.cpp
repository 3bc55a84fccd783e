// Area by the shoelace formula, and its exact sign.

#include <cmath>
#include <vector>

#include <qel/CurveShape.h>

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
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const TripletBase<double> p = curve[i];
        largest = std::fmax(largest, std::fmax(std::fabs(p.x), std::fabs(p.y)));
    }
    return CoordinateScale::into(kMinExponent, kMaxExponent, largest);
}

struct Shoelace {
    double twiceArea = 0.0;
    double size = 0.0; // sum of the sizes of all terms
};

PlanePoint planePoint(const CurveView& curve, std::size_t i, double factor) {
    const TripletBase<double> p = curve[i];
    return {p.x * factor, p.y * factor};
}

// About the first vertex, where the terms of the first and the last edge vanish.
Shoelace shoelaceOf(const CurveView& curve, double factor) {
    const PlanePoint origin = planePoint(curve, 0, factor);
    Shoelace sum;
    double x = 0.0, y = 0.0; // from the first vertex
    for (std::size_t i = 1; i < curve.size(); ++i) {
        const PlanePoint p = planePoint(curve, i, factor);
        const double nextX = p.x - origin.x, nextY = p.y - origin.y;
        const double left = x * nextY, right = nextX * y;
        sum.twiceArea += left - right;
        sum.size += std::fabs(left) + std::fabs(right);
        x = nextX;
        y = nextY;
    }
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
    return 0.5 * shoelaceOf(curve, scale.factor).twiceArea * scale.inverse * scale.inverse;
}

int computeOrientation(const CurveView& curve) {
    const CoordinateScale scale = scaleOf(curve);
    const Shoelace sum = shoelaceOf(curve, scale.factor);
    // Each term has a relative error below four units in the last place of its size; adding n of
    // them one by one, below n units of the sum of all sizes (Higham 2002, section 4.2).
    const double error = (static_cast<double>(curve.size()) + 8.0) * 0x1p-52 * sum.size;
    return std::fabs(sum.twiceArea) > error ? signOf(sum.twiceArea)
                                            : exactOrientationOf(curve, scale.factor);
}

} // namespace qel
