#include "Inputs.h"

#include <limits>

namespace qel_checksums {

// -- Random ----

std::uint64_t Random::bits() {
    state_ += 0x9e3779b97f4a7c15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

double Random::between(double from, double to) {
    constexpr double kUlp = 1.0 / 9007199254740992.0; // 2^-53
    return from + (to - from) * (static_cast<double>(bits() >> 11) * kUlp);
}

float Random::floatBetween(float from, float to) {
    return static_cast<float>(between(static_cast<double>(from), static_cast<double>(to)));
}

std::size_t Random::index(std::size_t count) {
    return static_cast<std::size_t>(bits() % count);
}

Point Random::pointBetween(double from, double to) {
    const double x = between(from, to);
    const double y = between(from, to);
    return {x, y, between(from, to)};
}

FloatPoint Random::floatPointBetween(float from, float to) {
    return FloatPoint(pointBetween(static_cast<double>(from), static_cast<double>(to)));
}

// -- Curves ----

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Points walk(std::size_t n, double step, std::uint64_t seed) {
    Random random(seed);
    Points points(n);
    for (std::size_t i = 1; i < n; ++i) {
        points[i] = points[i - 1] + random.pointBetween(-step, step);
        points[i].x += step;
    }
    return points;
}

// Three quarters of a circle by its rational form, rising in z.
Points arc(std::size_t n) {
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        const double t = 4.0 * static_cast<double>(i) / static_cast<double>(n - 1) - 2.0;
        const double w = 1.0 + t * t;
        points.emplace_back((1.0 - t * t) / w, 2.0 * t / w, 0.1 * t);
    }
    return points;
}

// Whole coordinates: equal distances, crossings and points passed twice.
Points lattice(std::size_t n, std::uint64_t seed) {
    Random random(seed);
    Points points(n);
    for (std::size_t i = 1; i < n; ++i) {
        points[i] = points[i - 1];
        points[i].getRef(static_cast<int>(random.index(3))) += random.chance(0.5) ? 1.0 : -1.0;
    }
    return points;
}

Points repeated(std::size_t n, std::uint64_t seed) {
    Random random(seed);
    Points points = walk(n, 0.5, seed);
    for (std::size_t i = 1; i < n; ++i) {
        if (random.chance(0.4)) {
            points[i] = points[i - 1];
        } else if (random.chance(0.2)) {
            points[i] = points[i - 1] + Point(1e-15, 0.0, 0.0); // within tolerance of it
        }
    }
    return points;
}

Points scaled(Points points, double factor) {
    for (Point& p : points) {
        p *= factor;
    }
    return points;
}

Points broken(double value, std::uint64_t seed) {
    Points points = walk(40, 1.0, seed);
    points[17].y = value;
    return points;
}

std::vector<CurveInput> makeCurveInputs() {
    return {
        {"two points", {{0.0, 0.0, 0.0}, {3.0, 4.0, 12.0}}},
        {"three points", {{1.0, 2.0, 3.0}, {1.5, 2.0, 3.5}, {4.0, -1.0, 0.5}}},
        {"one place", {{1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}}},
        {"straight", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}}},
        {"arc", arc(33)},
        {"long arc", arc(3001)},
        {"walk", walk(157, 1.0, 11)},
        {"long walk", walk(4096, 0.1, 12)},
        {"lattice", lattice(400, 13)},
        {"repeated", repeated(300, 14)},
        {"far away",
         [] {
             Points points = walk(50, 1e-3, 15);
             for (Point& p : points) {
                 p += Point(1e6, -2e6, 3e6);
             }
             return points;
         }()},
        {"tiny", scaled(walk(60, 1.0, 16), 1e-160)},
        {"huge", scaled(walk(60, 1.0, 17), 1e150)},
        {"with a NaN", broken(kNaN, 18)},
        {"with an infinity", broken(kInfinity, 19)},
        {"with an undefined", broken(std::numeric_limits<double>::max(), 20)},
    };
}

} // namespace

const std::vector<CurveInput>& curveInputs() {
    static const std::vector<CurveInput> inputs = makeCurveInputs();
    return inputs;
}

// -- Fields ----

namespace {

float odd(Random& random) {
    constexpr float kOdd[] = {std::numeric_limits<float>::max(),
                              -std::numeric_limits<float>::max(),
                              std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::denorm_min(),
                              0.0f,
                              -0.0f,
                              1e30f,
                              1e-30f};
    return kOdd[random.index(sizeof(kOdd) / sizeof(kOdd[0]))];
}

} // namespace

std::vector<float> fieldValues(std::size_t n, std::uint64_t seed, bool withOddities) {
    Random random(seed);
    std::vector<float> values;
    for (std::size_t i = 0; i < n; ++i) {
        const float value = random.floatBetween(-10.0f, 10.0f);
        values.push_back(withOddities && random.chance(0.05) ? odd(random) : value);
    }
    return values;
}

FloatPoints fieldTriplets(std::size_t n, std::uint64_t seed, bool withOddities) {
    const std::vector<float> values = fieldValues(3 * n, seed, withOddities);
    FloatPoints triplets;
    for (std::size_t i = 0; i < n; ++i) {
        triplets.emplace_back(values[3 * i], values[3 * i + 1], values[3 * i + 2]);
    }
    return triplets;
}

FloatPoints narrowed(const Points& points) {
    FloatPoints result;
    for (const Point& p : points) {
        result.emplace_back(p);
    }
    return result;
}

} // namespace qel_checksums
