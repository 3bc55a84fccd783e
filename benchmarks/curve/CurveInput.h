#ifndef QEL_BENCHMARKS_CURVE_CURVEINPUT_H
#define QEL_BENCHMARKS_CURVE_CURVEINPUT_H

// What the works on curves share: the curve, and the registry they enter themselves in.

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include <qel/ParametricCurve.h>

#include "support/CurveShapes.h"
#include "support/Program.h"

namespace qel_benchmark {

using Point = qel_test::CurvePoint;
using Points = qel_test::CurvePoints;
using Values = std::vector<double>;
using qel::ParametricCurve;
using qel_test::CurveShape;
using qel_test::ShapeRandom;

constexpr auto kSpace = ParametricCurve::dim3D;
constexpr auto kPlane = ParametricCurve::dim2D;

struct CurveInput {
    CurveInput(const CurveShape& shapeOfPoints, std::size_t count)
        : shape(shapeOfPoints), n(count), curve(shape.make(n), kSpace), points(curve.getCurve()) {}
    CurveInput(const CurveInput&) = delete;
    CurveInput& operator=(const CurveInput&) = delete;

    const CurveShape& shape;
    std::size_t n;
    ParametricCurve curve;
    const Points& points; // the curve's own, so that all find them in the same caches

    const Values& svalues() const { return curve.getSvalues(); }
    // What a copy of the curve occupies.
    std::size_t bytes() const { return n * (sizeof(Point) + sizeof(double)) + sizeof(curve); }
    // Peers may hang on NaN, or fail.
    bool isFinite() const { return std::string(shape.name) != "nan_among"; }
};

using CurveWorks = Works<CurveShape, CurveInput>;

CurveWorks& curveWorks();

// Adds a work on curves of two vertices and more.
inline bool addCurveWork(const std::string& name, CurveWorks::Run run,
                         std::size_t largest = std::numeric_limits<std::size_t>::max()) {
    return curveWorks().add(name, std::move(run), 2, largest);
}

// Bit for bit, any NaN equal to any other: which of them a sum keeps depends on the compiler.
inline bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (a != a && b != b);
}
inline bool sameBits(float a, float b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (a != a && b != b);
}
template <typename T>
bool sameBits(const qel::TripletBase<T>& a, const qel::TripletBase<T>& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}
template <typename T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!sameBits(a[i], b[i])) {
            return false;
        }
    }
    return true;
}

// n parameters in [0, 1), in no order.
inline Values randomParameters(std::size_t n) {
    ShapeRandom random(1);
    Values s(n);
    for (double& value : s) {
        value = random.unit();
    }
    return s;
}

} // namespace qel_benchmark

#endif
