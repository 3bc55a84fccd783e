#ifndef QEL_BENCHMARKS_SUPPORT_CURVES_H
#define QEL_BENCHMARKS_SUPPORT_CURVES_H

// Curves and probes of fixed seeds, so that two runs measure the same work.

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <qel/TripletBase.h>

namespace qel_benchmark {

using Point = qel::TripletBase<double>;
using Points = std::vector<Point>;

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr unsigned kSeed = 20240611;

// Ten turns about z, evenly spaced: a well-behaved curve in space.
inline Points helix(std::size_t n) {
    Points points;
    points.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(n - 1);
        const double angle = 20.0 * kPi * t;
        points.emplace_back(std::cos(angle), std::sin(angle), 3.0 * t);
    }
    return points;
}

// A closed section of a profile with points crowded at both ends of its chord, in the plane.
inline Points clustered(std::size_t n) {
    Points points;
    points.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(n - 1);
        const double x = 0.5 * (1.0 + std::cos(2.0 * kPi * t));
        const double thickness = 0.6 * (0.2969 * std::sqrt(x) - 0.126 * x - 0.3516 * x * x +
                                        0.2843 * x * x * x - 0.1015 * x * x * x * x);
        points.emplace_back(x, t < 0.5 ? thickness : -thickness, 0.0);
    }
    return points;
}

// The helix with every point moved by up to an amplitude: neighbours are not in order along it.
inline Points noisy(std::size_t n, double amplitude = 0.01) {
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> shift(-amplitude, amplitude);
    Points points = helix(n);
    for (Point& p : points) {
        p += Point(shift(random), shift(random), shift(random));
    }
    return points;
}

// A wave in the plane, y = sin(x) / 2 over ten periods, for peers that know two dimensions.
inline Points wave(std::size_t n) {
    Points points;
    points.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double x = 20.0 * kPi * static_cast<double>(i) / static_cast<double>(n - 1);
        points.emplace_back(x, 0.5 * std::sin(x), 0.0);
    }
    return points;
}

// The wave with every y moved a little, so that which points matter most is a choice.
inline Points roughWave(std::size_t n) {
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> shift(-0.002, 0.002);
    Points points = wave(n);
    for (Point& p : points) {
        p.y += shift(random);
    }
    return points;
}

// m probes along a curve, each moved by up to an amplitude: what a neighbouring grid line or the
// same section of another solution asks for.
inline Points probesAlong(const Points& curve, std::size_t m, double amplitude = 0.01,
                          unsigned seed = kSeed + 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> shift(-amplitude, amplitude);
    Points probes;
    probes.reserve(m);
    for (std::size_t k = 0; k < m; ++k) {
        const Point& p = curve[k * (curve.size() - 1) / (m > 1 ? m - 1 : 1)];
        probes.push_back(p + Point(shift(random), shift(random), shift(random)));
    }
    return probes;
}

} // namespace qel_benchmark

#endif
