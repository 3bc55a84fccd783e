#ifndef QEL_TESTS_SPATIAL_SAMPLEDCLOUD_H
#define QEL_TESTS_SPATIAL_SAMPLEDCLOUD_H

// Random clouds of a named kind, with random queries.

#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <qel/TripletBase.h>

#include "support/Samples.h"

namespace qel_test {

class SampledCloud {
public:
    using Point = qel::TripletBase<float>;

    // even, lattice, line (one x), repeated, circle, thickening (towards a corner, at every scale),
    // scaled (by any power of ten, some far from the origin), huge, denormal, not finite.
    SampledCloud(const std::string& kind, Samples<float>& samples, int count) : kind_(kind) {
        const bool isScaled = kind == "scaled";
        const float scale =
            isScaled ? std::pow(10.0f, static_cast<float>(samples.integer(-38, 36))) : 1.0f;
        const float shift = isScaled && samples.integer(0, 1) != 0 ? samples.plain() : 0.0f;
        for (int i = 0; i < count; ++i) {
            const Point p = point(samples);
            points.emplace_back(p.x * scale + shift, p.y * scale + shift, p.z);
        }
    }

    // On the points, half way between two of them, at the centre, anywhere, and far away.
    Point query(Samples<float>& samples) const {
        const auto pick = [&] {
            const auto last = static_cast<int>(points.size()) - 1;
            return points[static_cast<std::size_t>(samples.integer(0, last))];
        };
        const Point p = pick(), q = pick();
        switch (samples.integer(0, 8)) {
        case 0:
            return p;
        case 1:
            return Point((p.x + q.x) / 2, (p.y + q.y) / 2, 0.0f);
        case 2:
            return Point(p.x + (p.x - q.x), q.y, 0.0f);
        case 3:
            return Point(1000.0f * samples.plain(), 1000.0f * samples.plain(), 0.0f);
        case 4:
            return Point(samples.any(), samples.any(), 0.0f);
        case 5:
            return Point(p.x + 1e6f * (p.x - q.x), p.y + 1e6f * (q.y - p.y), 0.0f);
        case 6:
            return Point(0, 0, 0);
        default:
            return point(samples);
        }
    }

    std::vector<Point> points;

private:
    Point point(Samples<float>& samples) const {
        const auto whole = [&] { return static_cast<float>(samples.integer(-4, 4)); };
        const auto power = [&] { return std::ldexp(1.0f, -samples.integer(0, 148)); };
        const float x = samples.plain(), y = samples.plain(), z = samples.plain();
        if (kind_ == "even" || kind_ == "scaled") {
            return Point(x, y, z);
        }
        if (kind_ == "lattice") {
            return Point(whole(), whole(), z);
        }
        if (kind_ == "line") {
            return Point(3.0f, samples.integer(0, 1) != 0 ? whole() : y, 0.0f);
        }
        if (kind_ == "repeated") {
            return Point(0.5f * whole(), 0.25f * whole(), whole());
        }
        if (kind_ == "circle") {
            return Point(std::cos(x), std::sin(x), 0.0f);
        }
        if (kind_ == "thickening") {
            return Point(power(), power(), 0.0f);
        }
        if (kind_ == "huge") {
            return Point(3e37f * x, samples.integer(0, 1) == 0 ? 3e38f : -3e38f, 0.0f);
        }
        if (kind_ == "denormal") {
            return Point(whole() * 1.4e-45f, 1e-40f * y, 0.0f);
        }
        if (kind_ == "not finite") {
            return Point(samples.any(), samples.any(), samples.any());
        }
        throw std::invalid_argument(kind_);
    }

    std::string kind_;
};

inline const char* const kCloudKinds[] = {"even",     "lattice",    "line",   "repeated",
                                          "circle",   "thickening", "scaled", "huge",
                                          "denormal", "not finite"};

} // namespace qel_test

#endif
