#ifndef QEL_TESTS_SUPPORT_FIELDSHAPES_H
#define QEL_TESTS_SUPPORT_FIELDSHAPES_H

// Named fields of floats, and of triplets made of them.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <qel/TripletBase.h>

#include "support/ShapeRandom.h"

namespace qel_test {

struct FieldShape {
    const char* name;
    // n values, for every n and seed.
    std::vector<float> (*makeSeeded)(std::size_t n, std::uint64_t seed);

    std::vector<float> make(std::size_t n) const { return makeSeeded(n, 20261124); }

    // n triplets whose components are three such fields.
    std::vector<qel::TripletBase<float>> makeTriplets(std::size_t n) const {
        const std::vector<float> x = makeSeeded(n, 20261125);
        const std::vector<float> y = makeSeeded(n, 20261126);
        const std::vector<float> z = makeSeeded(n, 20261127);
        std::vector<qel::TripletBase<float>> triplets(n);
        for (std::size_t i = 0; i < n; ++i) {
            triplets[i] = {x[i], y[i], z[i]};
        }
        return triplets;
    }
};

inline std::ostream& operator<<(std::ostream& os, const FieldShape& shape) {
    return os << shape.name;
}

namespace field_shapes {

template <typename Value>
std::vector<float> values(std::size_t n, std::uint64_t seed, const Value& value) {
    ShapeRandom random(seed);
    std::vector<float> values(n);
    for (float& v : values) {
        v = value(random);
    }
    return values;
}

// A component of a velocity: values of both signs.
inline std::vector<float> signedValues(std::size_t n, std::uint64_t seed) {
    return values(n, seed, [](ShapeRandom& random) { return random.normal(); });
}

// A pressure: within half a percent of 1e5. Its sums are exact in double.
inline std::vector<float> oneSigned(std::size_t n, std::uint64_t seed) {
    return values(n, seed,
                  [](ShapeRandom& random) { return 101325.0f + 100.0f * random.normal(); });
}

// Magnitudes over eighty octaves, so that a sum in double rounds at nearly every step.
inline std::vector<float> manyOctaves(std::size_t n, std::uint64_t seed) {
    return values(n, seed, [](ShapeRandom& random) {
        const int octave = static_cast<int>(random.index(81)) - 40;
        return std::ldexp(random.normal(), octave);
    });
}

inline std::vector<float> equal(std::size_t n, std::uint64_t) {
    return std::vector<float>(n, 0.1f);
}

inline std::vector<float> allNaN(std::size_t n, std::uint64_t) {
    return std::vector<float>(n, std::numeric_limits<float>::quiet_NaN());
}

// The signed field with another value at each step-th place, the first of which is not the first.
inline std::vector<float> withAmong(std::size_t n, std::uint64_t seed, std::size_t step,
                                    float value) {
    std::vector<float> field = signedValues(n, seed);
    for (std::size_t i = std::min(n / 2, step / 2 + seed % 3); i > 0 && i < n; i += step) {
        field[i] = value;
    }
    return field;
}

// One in a thousand is NaN.
inline std::vector<float> nanAmong(std::size_t n, std::uint64_t seed) {
    return withAmong(n, seed, 1000, std::numeric_limits<float>::quiet_NaN());
}

// One in ten is the undefined marker.
inline std::vector<float> undefinedAmong(std::size_t n, std::uint64_t seed) {
    return withAmong(n, seed, 10, std::numeric_limits<float>::max());
}

inline std::vector<float> allUndefined(std::size_t n, std::uint64_t) {
    return std::vector<float>(n, std::numeric_limits<float>::max());
}

inline std::vector<float> denormal(std::size_t n, std::uint64_t seed) {
    return values(n, seed, [](ShapeRandom& random) { return 1e-40f * random.normal(); });
}

// Up to 3e38: products overflow, sums in double do not.
inline std::vector<float> huge(std::size_t n, std::uint64_t seed) {
    return values(n, seed, [](ShapeRandom& random) { return 3e38f * random.around(); });
}

inline const std::vector<FieldShape>& all() {
    static const std::vector<FieldShape> shapes = {
        {"signed", signedValues},
        {"one_signed", oneSigned},
        {"many_octaves", manyOctaves},
        {"equal", equal},
        {"nan_among", nanAmong},
        {"all_nan", allNaN},
        {"undefined_among", undefinedAmong},
        {"all_undefined", allUndefined},
        {"denormal", denormal},
        {"huge", huge},
    };
    return shapes;
}

} // namespace field_shapes

inline const std::vector<FieldShape>& fieldShapes() {
    return field_shapes::all();
}

// The shape of that name, which must exist.
inline const FieldShape& fieldShape(const std::string& name) {
    return *std::find_if(fieldShapes().begin(), fieldShapes().end(),
                         [&](const FieldShape& shape) { return shape.name == name; });
}

} // namespace qel_test

#endif
