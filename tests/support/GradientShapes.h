#ifndef QEL_TESTS_SUPPORT_GRADIENTSHAPES_H
#define QEL_TESTS_SUPPORT_GRADIENTSHAPES_H

// Named fields of velocity gradients.

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <qel/TripletBase.h>

#include "support/ShapeRandom.h"

namespace qel_test {

// Row i of the gradient at each point holds the derivatives of the velocity's component i.
struct GradientField {
    std::vector<qel::TripletBase<float>> row1, row2, row3;
    std::vector<qel::TripletBase<float>> velocity;
};

// T11, T12, T13, T21, ... T33.
using Gradient = std::array<float, 9>;

struct GradientShape {
    const char* name;
    // The gradient at one point.
    Gradient (*at)(ShapeRandom& random);

    GradientField make(std::size_t n) const {
        ShapeRandom random(20261128);
        GradientField field;
        for (std::size_t k = 0; k < n; ++k) {
            const Gradient t = at(random);
            field.row1.emplace_back(t[0], t[1], t[2]);
            field.row2.emplace_back(t[3], t[4], t[5]);
            field.row3.emplace_back(t[6], t[7], t[8]);
            const float x = random.normal();
            const float y = random.normal();
            field.velocity.emplace_back(x, y, random.normal());
        }
        return field;
    }
};

inline std::ostream& operator<<(std::ostream& os, const GradientShape& shape) {
    return os << shape.name;
}

namespace gradient_shapes {

inline Gradient scaled(Gradient t, float factor) {
    for (float& value : t) {
        value *= factor;
    }
    return t;
}

inline Gradient filled(float value) {
    Gradient t;
    t.fill(value);
    return t;
}

inline Gradient random(ShapeRandom& random) {
    Gradient t;
    for (float& value : t) {
        value = random.normal();
    }
    return t;
}

// Free of divergence but for rounding.
inline Gradient incompressible(ShapeRandom& source) {
    Gradient t = random(source);
    t[8] = -t[0] - t[4];
    return t;
}

// No derivative along z and no velocity along it.
inline Gradient planeCompressible(ShapeRandom& source) {
    const Gradient t = random(source);
    return {t[0], t[1], 0.0f, t[3], t[4], 0.0f, 0.0f, 0.0f, 0.0f};
}

inline Gradient planeIncompressible(ShapeRandom& source) {
    const Gradient t = random(source);
    return {t[0], t[1], 0.0f, t[3], -t[0], 0.0f, 0.0f, 0.0f, 0.0f};
}

// Antisymmetric.
inline Gradient rigidRotation(ShapeRandom& source) {
    const Gradient t = random(source);
    return {0.0f, t[0], t[1], -t[0], 0.0f, t[2], -t[1], -t[2], 0.0f};
}

inline Gradient pureShear(ShapeRandom& source) {
    return {0.0f, source.normal(), 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f};
}

inline Gradient zero(ShapeRandom&) {
    return filled(0.0f);
}

// The identity, a ten-millionth off: three eigenvalues that rounding cannot tell from one.
inline Gradient nearEqualEigenvalues(ShapeRandom& source) {
    Gradient t = scaled(random(source), 1e-7f);
    for (std::size_t diagonal = 0; diagonal < 9; diagonal += 4) {
        t[diagonal] += 1.0f;
    }
    return t;
}

// At a wall: shear across it, thousand times all else.
inline Gradient wallLike(ShapeRandom& source) {
    Gradient t = incompressible(source);
    t[1] = 1e3f * (1.0f + source.unitFloat());
    return t;
}

inline Gradient symmetric(ShapeRandom& source) {
    const Gradient t = random(source);
    return {t[0], t[1], t[2], t[1], t[4], t[5], t[2], t[5], t[8]};
}

inline Gradient allNaN(ShapeRandom&) {
    return filled(std::numeric_limits<float>::quiet_NaN());
}

// One point in a thousand has a NaN.
inline Gradient nanAmong(ShapeRandom& source) {
    Gradient t = incompressible(source);
    if (source.index(1000) == 0) {
        t[source.index(9)] = std::numeric_limits<float>::quiet_NaN();
    }
    return t;
}

// One point in ten is undefined altogether.
inline Gradient undefinedAmong(ShapeRandom& source) {
    const Gradient t = incompressible(source);
    return source.index(10) == 0 ? filled(std::numeric_limits<float>::max()) : t;
}

inline Gradient denormal(ShapeRandom& source) {
    return scaled(random(source), 1e-40f);
}

// Sums are finite, products are not.
inline Gradient huge(ShapeRandom& source) {
    return scaled(random(source), 1e37f);
}

inline const std::vector<GradientShape>& all() {
    static const std::vector<GradientShape> shapes = {
        {"incompressible", incompressible},
        {"random", gradient_shapes::random},
        {"plane_compressible", planeCompressible},
        {"plane_incompressible", planeIncompressible},
        {"rigid_rotation", rigidRotation},
        {"pure_shear", pureShear},
        {"zero", zero},
        {"near_equal_eigenvalues", nearEqualEigenvalues},
        {"wall_like", wallLike},
        {"symmetric", symmetric},
        {"nan_among", nanAmong},
        {"all_nan", allNaN},
        {"undefined_among", undefinedAmong},
        {"denormal", denormal},
        {"huge", huge},
    };
    return shapes;
}

} // namespace gradient_shapes

inline const std::vector<GradientShape>& gradientShapes() {
    return gradient_shapes::all();
}

// The shape of that name, which must exist.
inline const GradientShape& gradientShape(const std::string& name) {
    return *std::find_if(gradientShapes().begin(), gradientShapes().end(),
                         [&](const GradientShape& shape) { return shape.name == name; });
}

} // namespace qel_test

#endif
