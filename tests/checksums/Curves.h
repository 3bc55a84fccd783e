#ifndef QEL_TESTS_CHECKSUMS_CURVES_H
#define QEL_TESTS_CHECKSUMS_CURVES_H

// What the operations on curves share: the curves, and all that can be asked of one.

#include <vector>

#include <qel/ParametricCurve.h>

#include "Inputs.h"
#include "Operations.h"

namespace qel_checksums {

using qel::ParametricCurve;

constexpr ParametricCurve::dim kDimensions[] = {ParametricCurve::dim1D, ParametricCurve::dim2D,
                                                ParametricCurve::dim3D};

/// The whole state of a curve.
inline void addCurve(Checksum& sum, const ParametricCurve& curve) {
    sum.add(curve.getCurve(), curve.getSvalues(), curve.getLength(), curve.getDimension(),
            curve.getParametrization(), curve.isCurveCreatedAsDouble(), curve.getAxisPoint());
    sum.add(curve.getAxisDirection());
}

/// s-values that run unevenly from below 0 to beyond 1, some repeated.
inline std::vector<double> unevenSvalues(std::size_t n) {
    Random random(81);
    std::vector<double> svalues;
    double s = -0.25;
    for (std::size_t i = 0; i < n; ++i) {
        svalues.push_back(s);
        if (random.chance(0.9)) {
            s += random.between(0.0, 3.0) / static_cast<double>(n);
        }
    }
    return svalues;
}

/// Calls use(curve, random) for every curve of the inputs: in each dimension, from doubles and
/// from floats, and with supplied s-values.
template <typename Use>
void forCurves(Use use) {
    Random random(82);
    for (const CurveInput& input : curveInputs()) {
        for (const ParametricCurve::dim dimension : kDimensions) {
            ParametricCurve curve(input.points, dimension);
            use(curve, random);
        }
        ParametricCurve single(narrowed(input.points), ParametricCurve::dim3D);
        use(single, random);
        ParametricCurve supplied(input.points, unevenSvalues(input.points.size()),
                                 ParametricCurve::dim3D);
        use(supplied, random);
    }
}

/// An operation that changes a curve: checksum of the curve after it, also where it refuses.
template <typename Change>
Operation changing(const char* name, Arithmetic arithmetic, Change change) {
    return {name, arithmetic, [change](Checksum& sum) {
                forCurves([&](ParametricCurve& curve, Random& random) {
                    sum.addOutcome([&] { change(curve, random, sum); });
                    addCurve(sum, curve);
                });
            }};
}

/// An operation that reads a curve: checksum of what it adds.
template <typename Read>
Operation reading(const char* name, Arithmetic arithmetic, Read read) {
    return {name, arithmetic, [read](Checksum& sum) {
                forCurves([&](const ParametricCurve& curve, Random& random) {
                    sum.addOutcome([&] { read(curve, random, sum); });
                });
            }};
}

/// s-values worth asking a curve for: beyond both ends, its own, and between them.
inline std::vector<double> askedSvalues(const ParametricCurve& curve, Random& random) {
    std::vector<double> asked = {-0.5, 0.0, 0.5, 1.0, 1.5};
    for (int k = 0; k < 40; ++k) {
        asked.push_back(random.between(-0.3, 1.3));
        asked.push_back(curve.getSvalues()[random.index(curve.getSize())]);
    }
    return asked;
}

/// Points near a curve and its vertices, and one far away.
inline Points probes(const ParametricCurve& curve, Random& random) {
    Points result = {{1e3, -1e3, 1e3}, curve.getFirstPoint(), curve.getLastPoint()};
    for (int k = 0; k < 40; ++k) {
        const Point& vertex = curve.getCurve()[random.index(curve.getSize())];
        result.push_back(vertex + random.pointBetween(-1.0, 1.0));
        result.push_back(vertex + random.pointBetween(-0.01, 0.01));
    }
    return result;
}

} // namespace qel_checksums

#endif
