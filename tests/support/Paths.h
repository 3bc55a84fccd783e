#ifndef QEL_TESTS_SUPPORT_PATHS_H
#define QEL_TESTS_SUPPORT_PATHS_H

// Long polylines of many kinds, each of a given size, for what works block by block.

#include <cmath>
#include <string>
#include <vector>

#include "support/Curves.h"

namespace qel_test {

struct NamedPath {
    std::string name;
    Points points;
};

inline Points helixPath(std::size_t n, double scale) {
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / 40.0;
        points.emplace_back(scale * std::cos(t), scale * std::sin(t), scale * 0.1 * t);
    }
    return points;
}

// Smooth, closed, scattered, on a grid with exact ties, repeated, tiny, huge, with overflowing and
// vanishing squares, and with special values strewn in.
inline std::vector<NamedPath> pathsOfEveryKind(std::size_t n, RandomCurves& random) {
    std::vector<NamedPath> paths;
    paths.push_back({"helix", helixPath(n, 1.0)});
    for (const double scale : {1e-160, 1e-12, 1e12, 1e160}) {
        paths.push_back(
            {"helix of scale " + std::to_string(std::log10(scale)), helixPath(n, scale)});
    }

    Points closed = helixPath(n, 1.0);
    closed.back() = closed.front();
    paths.push_back({"closed", closed});

    NamedPath scattered{"scattered", {}};
    NamedPath grid{"grid", {}};
    NamedPath repeated{"repeated", {}};
    for (std::size_t i = 0; i < n; ++i) {
        scattered.points.push_back(random.point(1.0));
        grid.points.push_back(random.gridPoint());
        const bool again = i > 0 && random.chance(0.6);
        repeated.points.push_back(again ? repeated.points.back() : random.gridPoint());
    }
    NamedPath special{"special values", scattered.points};
    for (std::size_t i = 0; i < 1 + n / 20; ++i) {
        special.points[random.count(0, n - 1)].getRef(static_cast<int>(random.count(0, 2))) =
            random.specialValue();
    }
    paths.insert(paths.end(), {scattered, grid, repeated, special});
    paths.push_back({"one place", Points(n, Point(1.0, 2.0, 3.0))});
    return paths;
}

// Vertices of a path, places beside them, grid points, far ones and special ones.
inline Points probesOf(const Points& path, std::size_t count, RandomCurves& random) {
    Points probes;
    for (std::size_t i = 0; i < count; ++i) {
        Point probe = path[random.count(0, path.size() - 1)];
        switch (random.count(0, 5)) {
        case 0:
            break;
        case 1:
            probe += random.point(std::abs(probe.x) * 0.1);
            break;
        case 2:
            probe = random.gridPoint();
            break;
        case 3:
            probe = random.point(std::pow(10.0, random.uniform(-170.0, 170.0)));
            break;
        case 4:
            probe = (probe + path[random.count(0, path.size() - 1)]) * 0.5;
            break;
        default:
            probe.getRef(static_cast<int>(random.count(0, 2))) = random.specialValue();
        }
        probes.push_back(probe);
    }
    return probes;
}

// The stated search: one pass, a later vertex wins only if it is nearer.
inline std::size_t referenceNearestVertex(const Points& points, const Point& q) {
    std::vector<double> d2;
    for (const Point& p : points) {
        const double x = p.x - q.x;
        const double y = p.y - q.y;
        const double z = p.z - q.z;
        d2.push_back(x * x + y * y + z * z);
    }
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < d2.size(); ++i) {
        if (d2[i] < d2[nearest]) {
            nearest = i;
        }
    }
    return nearest;
}

} // namespace qel_test

#endif
