#ifndef QEL_TESTS_SUPPORT_CURVESHAPES_H
#define QEL_TESTS_SUPPORT_CURVESHAPES_H

// Named curves, with probes to project and a second curve to cross.

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

using CurvePoint = qel::TripletBase<double>;
using CurvePoints = std::vector<CurvePoint>;

struct CurveShape {
    const char* name;
    // n vertices, for every n.
    CurvePoints (*make)(std::size_t n);
    // A curve of n vertices for crossings: beside make(n), and without crossing it where the shape
    // allows that, between its strokes.
    CurvePoints (*makeBeside)(std::size_t n);
};

inline std::ostream& operator<<(std::ostream& os, const CurveShape& shape) {
    return os << shape.name;
}

namespace curve_shapes {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr std::uint64_t kSeed = 20261122;

// 0 at the first of n, 1 at the last.
inline double along(std::size_t i, std::size_t n) {
    return n > 1 ? static_cast<double>(i) / static_cast<double>(n - 1) : 0.0;
}

template <typename Place>
CurvePoints points(std::size_t n, const Place& place) {
    CurvePoints points(n);
    for (std::size_t i = 0; i < n; ++i) {
        points[i] = place(i);
    }
    return points;
}

// Calls change(point) on every point.
template <typename Change>
CurvePoints changed(CurvePoints points, const Change& change) {
    for (CurvePoint& p : points) {
        change(p);
    }
    return points;
}

// How many turns a winding curve of n vertices takes: as many as give its neighbours across about
// the distance of its neighbours along.
inline double turnsOf(std::size_t n) {
    return std::max(1.0, std::sqrt(static_cast<double>(n) / (2.0 * kPi)));
}

// The closed section of a profile, vertices crowded at both ends of its chord.
inline CurvePoint sectionPoint(double t) {
    const double x = 0.5 * (1.0 + std::cos(2.0 * kPi * t));
    const double thickness = 0.6 * (0.2969 * std::sqrt(x) - 0.126 * x - 0.3516 * x * x +
                                    0.2843 * x * x * x - 0.1015 * x * x * x * x);
    return {x, t < 0.5 ? thickness : -thickness, 0.0};
}

inline CurvePoints section(std::size_t n) {
    return points(n, [n](std::size_t i) { return sectionPoint(along(i, n)); });
}

// A section around the section.
inline CurvePoints outerSection(std::size_t n) {
    return changed(section(n), [](CurvePoint& p) { p = {1.1 * p.x - 0.05, 1.1 * p.y, 0.0}; });
}

// Ten turns about z.
inline CurvePoints helix(std::size_t n) {
    return points(n, [n](std::size_t i) {
        const double t = along(i, n);
        return CurvePoint(std::cos(20.0 * kPi * t), std::sin(20.0 * kPi * t), 3.0 * t);
    });
}

// Ten periods of a sine, every vertex moved a little, so that which of them matter is a choice.
inline CurvePoints roughWave(std::size_t n) {
    ShapeRandom random(kSeed);
    return points(n, [&](std::size_t i) {
        const double x = 20.0 * kPi * along(i, n);
        return CurvePoint(x, 0.5 * std::sin(x) + random.between(-0.002, 0.002), 0.0);
    });
}

inline CurvePoints line(std::size_t n) {
    return points(n, [n](std::size_t i) {
        const double t = along(i, n);
        return CurvePoint(t, 2.0 * t, 3.0 * t);
    });
}

// About the origin.
inline CurvePoints circle(std::size_t n) {
    return points(n, [n](std::size_t i) {
        const double angle = 2.0 * kPi * static_cast<double>(i) / static_cast<double>(n);
        return CurvePoint(std::cos(angle), std::sin(angle), 0.0);
    });
}

// Vertices spread evenly in a cube, in no order.
inline CurvePoints randomOrder(std::size_t n) {
    ShapeRandom random(kSeed);
    return points(n, [&](std::size_t) {
        const double x = random.unit();
        const double y = random.unit();
        return CurvePoint(x, y, random.unit());
    });
}

// Strokes up and down, so that no two neighbours along the curve are neighbours in space.
inline CurvePoints zigZag(std::size_t n) {
    return points(
        n, [n](std::size_t i) { return CurvePoint(along(i, n), static_cast<double>(i % 2), 0.0); });
}

inline CurvePoints growingZigZag(std::size_t n) {
    return points(n, [n](std::size_t i) {
        const double t = along(i, n);
        return CurvePoint(t, i % 2 == 0 ? t : -t, 0.0);
    });
}

// Archimedean, from a small radius on.
inline CurvePoints spiralFrom(std::size_t n, double startAngle) {
    const double turns = turnsOf(n);
    return points(n, [=](std::size_t i) {
        const double t = std::sqrt(along(i, n)); // even spacing along the curve
        const double angle = startAngle + 2.0 * kPi * turns * t;
        const double radius = t + 0.5 / turns;
        return CurvePoint(radius * std::cos(angle), radius * std::sin(angle), 0.0);
    });
}

inline CurvePoints spiral(std::size_t n) {
    return spiralFrom(n, 0.0);
}

// The same circle again and again, a little off each time.
inline CurvePoints manyLaps(std::size_t n) {
    ShapeRandom random(kSeed);
    const double turns = turnsOf(n);
    return points(n, [&](std::size_t i) {
        const double angle = 2.0 * kPi * turns * along(i, n);
        const double radius = random.between(0.999, 1.001);
        return CurvePoint(radius * std::cos(angle), radius * std::sin(angle), 0.0);
    });
}

// A rectangular wave: teeth from foot to tip, four vertices and a quarter of the pitch each.
inline CurvePoints teeth(std::size_t n, double shift, double foot, double tip) {
    const double pitch = 4.0 / static_cast<double>(std::max<std::size_t>(n, 4));
    return points(n, [=](std::size_t i) {
        const std::size_t tooth = i / 4;
        const double start = pitch * (static_cast<double>(tooth) + shift);
        const double x = i % 4 < 2 ? start : start + 0.25 * pitch;
        return CurvePoint(x, i % 4 == 1 || i % 4 == 2 ? tip : foot, 0.0);
    });
}

inline CurvePoints comb(std::size_t n) {
    return teeth(n, 0.0, 0.0, 1.0);
}

// A comb from above, its teeth in the gaps of the other.
inline CurvePoints combInGaps(std::size_t n) {
    return teeth(n, 0.5, 1.1, 0.1);
}

// All but each hundredth vertex within a millionth of the extent.
inline CurvePoints cluster(std::size_t n) {
    ShapeRandom random(kSeed);
    return points(n, [&](std::size_t i) {
        const double scale = i % 100 == 0 ? 1.0 : 1e-6;
        const double x = scale * random.unit();
        const double y = scale * random.unit();
        return CurvePoint(x, y, scale * random.unit());
    });
}

inline CurvePoints equalPoints(std::size_t n) {
    return CurvePoints(n, CurvePoint(0.3, 0.7, 0.1));
}

// A straight run up in y, rough in z.
inline CurvePoints equalX(std::size_t n) {
    ShapeRandom random(kSeed);
    return points(n, [&](std::size_t i) {
        return CurvePoint(0.5, along(i, n), random.between(-0.01, 0.01));
    });
}

// A line along x whose middle half is a section of a ten-millionth of its length.
inline CurvePoints twoScales(std::size_t n) {
    const std::size_t quarter = n / 4;
    return points(n, [=](std::size_t i) {
        if (i < quarter || i >= n - quarter) {
            return CurvePoint(along(i, n), 0.0, 0.0);
        }
        const CurvePoint p = sectionPoint(along(i - quarter, n - 2 * quarter));
        return CurvePoint(0.5 + 1e-7 * p.x, 1e-7 * p.y, 0.0);
    });
}

inline CurvePoints scaledToDenormal(CurvePoints points) {
    return changed(std::move(points), [](CurvePoint& p) { p = {p.x * 1e-310, p.y * 1e-310, 0.0}; });
}

inline CurvePoints denormal(std::size_t n) {
    return scaledToDenormal(section(n));
}

// A section in which about each thousandth vertex, but not the first, has a NaN for a component.
inline CurvePoints withNaN(CurvePoints points) {
    for (std::size_t i = std::min<std::size_t>(points.size() / 2, 500); i > 0 && i < points.size();
         i += 1000) {
        points[i].getRef(static_cast<int>(i % 3)) = std::numeric_limits<double>::quiet_NaN();
    }
    return points;
}

inline CurvePoints nanAmong(std::size_t n) {
    return withNaN(section(n));
}

inline CurvePoints farOff(CurvePoints points) {
    return changed(std::move(points), [](CurvePoint& p) { p += CurvePoint(1e9, 2e9, -1e9); });
}

// Of the section only a coarse raster is left.
inline CurvePoints hugeOffset(std::size_t n) {
    return farOff(section(n));
}

template <CurvePoints (*make)(std::size_t), int permille>
CurvePoints above(std::size_t n) {
    return changed(make(n), [](CurvePoint& p) { p.y += 1e-3 * permille; });
}

inline const std::vector<CurveShape>& all() {
    static const std::vector<CurveShape> shapes = {
        {"smooth_section", section, outerSection},
        {"helix", helix, above<helix, 5>},
        {"rough_wave", roughWave, above<roughWave, 10>},
        {"line", line,
         [](std::size_t n) { // nearly parallel
             return changed(line(n), [](CurvePoint& p) { p.y += 1e-3 + 1e-4 * p.x; });
         }},
        {"circle", circle,
         [](std::size_t n) { return changed(circle(n), [](CurvePoint& p) { p = p * 1.001; }); }},
        {"random_order", randomOrder, above<randomOrder, 500>},
        {"zig_zag", zigZag, above<zigZag, 250>},
        {"growing_zig_zag", growingZigZag, above<growingZigZag, 250>},
        {"spiral", spiral, [](std::size_t n) { return spiralFrom(n, kPi); }},
        {"many_laps", manyLaps,
         [](std::size_t n) { return changed(manyLaps(n), [](CurvePoint& p) { p = p * 1.01; }); }},
        {"comb", comb, combInGaps},
        {"cluster", cluster, above<cluster, 500>},
        {"equal_points", equalPoints, equalPoints},
        {"equal_x", equalX,
         [](std::size_t n) { return changed(equalX(n), [](CurvePoint& p) { p.x += 1e-3; }); }},
        {"two_scales", twoScales, above<twoScales, 1>},
        {"denormal", denormal, [](std::size_t n) { return scaledToDenormal(outerSection(n)); }},
        {"nan_among", nanAmong, [](std::size_t n) { return withNaN(outerSection(n)); }},
        {"huge_offset", hugeOffset, [](std::size_t n) { return farOff(outerSection(n)); }},
    };
    return shapes;
}

} // namespace curve_shapes

inline const std::vector<CurveShape>& curveShapes() {
    return curve_shapes::all();
}

inline const CurveShape& curveShape(const std::string& name) {
    return *std::find_if(curveShapes().begin(), curveShapes().end(),
                         [&](const CurveShape& shape) { return shape.name == name; });
}

// The largest extent of the finite coordinates along x, y or z.
inline double extentOf(const CurvePoints& curve) {
    double extent = 0.0;
    for (double CurvePoint::*component : {&CurvePoint::x, &CurvePoint::y, &CurvePoint::z}) {
        double low = std::numeric_limits<double>::max();
        double high = -low;
        for (const CurvePoint& p : curve) { // comparisons that NaN fails
            low = p.*component < low ? p.*component : low;
            high = p.*component > high ? p.*component : high;
        }
        extent = std::max(extent, high - low);
    }
    return extent;
}

// m probes in random order: each a vertex moved by up to a fraction of the curve's extent in every
// direction. On the circle they are its centre and, in turn, a place high above it: from there all
// vertices are at exactly the same distance, from the centre but for rounding.
inline CurvePoints probesOf(const CurveShape& shape, const CurvePoints& curve, std::size_t m,
                            double fraction = 0.01) {
    if (curve.empty()) {
        return {};
    }
    if (shape.name == std::string("circle")) {
        return curve_shapes::points(
            m, [](std::size_t k) { return CurvePoint(0.0, 0.0, k % 2 == 0 ? 0.0 : 1e4); });
    }
    const double amplitude = fraction * extentOf(curve);
    ShapeRandom random(curve_shapes::kSeed + 1);
    return curve_shapes::points(m, [&](std::size_t) {
        const double x = random.between(-amplitude, amplitude);
        const double y = random.between(-amplitude, amplitude);
        const double z = random.between(-amplitude, amplitude);
        const CurvePoint p = curve[random.index(curve.size())];
        // A probe beside a vertex that is not finite would be none itself.
        const bool finite = std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
        return CurvePoint(x, y, z) + (finite ? p : curve[0]);
    });
}

} // namespace qel_test

#endif
