#ifndef QEL_BENCHMARKS_NEAREST_CLOUDS_H
#define QEL_BENCHMARKS_NEAREST_CLOUDS_H

// Clouds of points and queries of fixed seeds.

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <qel/TripletBase.h>

namespace qel_benchmark {

using Point = qel::TripletBase<float>;
using Points = std::vector<Point>;

enum class CloudKind {
    uniform, // spread evenly over the unit square
    layer,   // a mesh at a wall: spread evenly along it, and by decades from 1e-5 to 1 across
    grid     // a regular grid in shuffled order
};

inline const char* nameOf(CloudKind kind) {
    return kind == CloudKind::uniform ? "uniform" : kind == CloudKind::layer ? "layer" : "grid";
}

class CloudMaker {
public:
    explicit CloudMaker(unsigned seed) : engine_(seed) {}

    float unit() { return std::uniform_real_distribution<float>(0.0f, 1.0f)(engine_); }
    float around() { return 2.0f * unit() - 1.0f; }
    std::size_t pick(std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(engine_);
    }

    Points cloud(CloudKind kind, std::size_t n) {
        Points points(n);
        const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(n))));
        for (std::size_t i = 0; i < n; ++i) {
            switch (kind) {
            case CloudKind::uniform:
                points[i] = Point(unit(), unit(), 0.0f);
                break;
            case CloudKind::layer:
                points[i] = Point(unit(), std::pow(10.0f, -5.0f * unit()), 0.0f);
                break;
            case CloudKind::grid:
                points[i] = Point(static_cast<float>(i % side), static_cast<float>(i / side), 0.0f);
                break;
            }
        }
        if (kind == CloudKind::grid) {
            for (std::size_t i = n - 1; i > 0; --i) {
                std::swap(points[i], points[pick(i + 1)]);
            }
        }
        return points;
    }

    // Anywhere in the box of the points. On the grid half way between four points: a tie each.
    Points queriesInBox(CloudKind kind, const Points& points, std::size_t count) {
        Points queries(count);
        const float side = std::floor(std::sqrt(static_cast<float>(points.size()))) - 2.0f;
        for (Point& q : queries) {
            q = Point(unit(), unit(), 0.0f);
            if (kind == CloudKind::grid) {
                q = Point(std::floor(q.x * side) + 0.5f, std::floor(q.y * side) + 0.5f, 0.0f);
            }
        }
        return queries;
    }

    // Beside a point picked at random, closer than its neighbours usually are. On the grid half
    // way to the next one.
    Points queriesNearPoints(CloudKind kind, const Points& points, std::size_t count) {
        Points queries(count);
        const float step = 0.5f / std::sqrt(static_cast<float>(points.size()));
        for (Point& q : queries) {
            const Point p = points[pick(points.size())];
            switch (kind) {
            case CloudKind::uniform:
                q = Point(p.x + step * around(), p.y + step * around(), 0.0f);
                break;
            case CloudKind::layer: // log y is spread evenly, over log(1e5) = 11.5
                q = Point(p.x + step * around(), p.y * (1.0f + 11.5f * step * around()), 0.0f);
                break;
            case CloudKind::grid:
                q = Point(p.x + 0.5f, p.y, 0.0f);
                break;
            }
        }
        return queries;
    }

private:
    std::mt19937 engine_;
};

} // namespace qel_benchmark

#endif
