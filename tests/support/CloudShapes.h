#ifndef QEL_TESTS_SUPPORT_CLOUDSHAPES_H
#define QEL_TESTS_SUPPORT_CLOUDSHAPES_H

// Named clouds of points in the plane, and queries for their nearest points.

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

using CloudPoint = qel::TripletBase<float>;
using CloudPoints = std::vector<CloudPoint>;

struct CloudShape {
    const char* name;
    // n points with z = 0, for every n.
    CloudPoints (*make)(std::size_t n);
};

inline std::ostream& operator<<(std::ostream& os, const CloudShape& shape) {
    return os << shape.name;
}

namespace cloud_shapes {

inline constexpr std::uint64_t kSeed = 20261123;

template <typename Place>
CloudPoints points(std::size_t n, const Place& place) {
    ShapeRandom random(kSeed);
    CloudPoints points(n);
    for (std::size_t i = 0; i < n; ++i) {
        points[i] = place(random, i);
    }
    return points;
}

// Spread evenly over the unit square.
inline CloudPoints even(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const float x = random.unitFloat();
        return CloudPoint(x, random.unitFloat(), 0.0f);
    });
}

// A lattice of places a unit apart, the points dealt to them in turn, in random order.
inline CloudPoints lattice(std::size_t n, std::size_t side) {
    CloudPoints lattice = points(n, [side](ShapeRandom&, std::size_t i) {
        const std::size_t row = i / side % side;
        return CloudPoint(static_cast<float>(i % side), static_cast<float>(row), 0.0f);
    });
    ShapeRandom(kSeed).shuffle(lattice);
    return lattice;
}

inline std::size_t sideOf(std::size_t n) {
    return std::max<std::size_t>(
        1, static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(n)))));
}

inline CloudPoints grid(std::size_t n) {
    return lattice(n, sideOf(n));
}

// 256 places, many points at each.
inline CloudPoints massTies(std::size_t n) {
    return lattice(n, 16);
}

// A mesh at a wall: spread evenly along it, and by decades from 1e-5 to 1 across.
inline CloudPoints wallLayer(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const float x = random.unitFloat();
        return CloudPoint(x, std::pow(10.0f, -5.0f * random.unitFloat()), 0.0f);
    });
}

// About the origin, in random order.
inline CloudPoints circle(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const double angle = random.between(0.0, 6.283185307179586);
        return CloudPoint(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)),
                          0.0f);
    });
}

// As many places at random as there are points at each of them.
inline CloudPoints equalClusters(std::size_t n) {
    const CloudPoints places = even(sideOf(n));
    return points(
        n, [&](ShapeRandom& random, std::size_t) { return places[random.index(places.size())]; });
}

// Nearly all within a thousandth of the extent.
inline CloudPoints cluster(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t i) {
        const float scale = i % 100 == 0 ? 1.0f : 1e-3f;
        const float x = scale * random.unitFloat();
        return CloudPoint(x, scale * random.unitFloat(), 0.0f);
    });
}

inline CloudPoints equalPoints(std::size_t n) {
    return CloudPoints(n, CloudPoint(0.3f, 0.7f, 0.0f));
}

inline CloudPoints line(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const float t = random.unitFloat();
        return CloudPoint(t, 2.0f * t, 0.0f);
    });
}

inline CloudPoints equalX(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        return CloudPoint(0.5f, random.unitFloat(), 0.0f);
    });
}

// Half of the points in a square of a hundred-thousandth of the other's side.
inline CloudPoints twoScales(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t i) {
        const float scale = i % 2 == 0 ? 1.0f : 1e-5f;
        const float x = scale * random.unitFloat();
        return CloudPoint(x, scale * random.unitFloat(), 0.0f);
    });
}

inline CloudPoints denormal(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const float x = 1e-39f * random.unitFloat();
        return CloudPoint(x, 1e-39f * random.unitFloat(), 0.0f);
    });
}

// Each hundredth point has a NaN for its x or y.
inline CloudPoints nanAmong(std::size_t n) {
    CloudPoints points = even(n);
    for (std::size_t i = std::min<std::size_t>(n / 2, 50); i > 0 && i < n; i += 100) {
        points[i].getRef(static_cast<int>(i / 100 % 2)) = std::numeric_limits<float>::quiet_NaN();
    }
    return points;
}

// The square so far off that a raster of 16 by 16 places is left of it.
inline CloudPoints hugeOffset(std::size_t n) {
    return points(n, [](ShapeRandom& random, std::size_t) {
        const float x = 1e6f + random.unitFloat();
        return CloudPoint(x, 1e6f + random.unitFloat(), 0.0f);
    });
}

// Smallest and largest of the finite x and y.
struct Box {
    CloudPoint low{0.0f, 0.0f, 0.0f};
    CloudPoint high{0.0f, 0.0f, 0.0f};
};

inline Box boxOf(const CloudPoints& cloud) {
    constexpr float kMax = std::numeric_limits<float>::max();
    Box box{CloudPoint(kMax, kMax, 0.0f), CloudPoint(-kMax, -kMax, 0.0f)};
    for (const CloudPoint& p : cloud) { // comparisons that NaN fails
        box.low.x = p.x < box.low.x ? p.x : box.low.x;
        box.low.y = p.y < box.low.y ? p.y : box.low.y;
        box.high.x = p.x > box.high.x ? p.x : box.high.x;
        box.high.y = p.y > box.high.y ? p.y : box.high.y;
    }
    return box.low.x <= box.high.x && box.low.y <= box.high.y ? box : Box();
}

inline const std::vector<CloudShape>& all() {
    static const std::vector<CloudShape> shapes = {
        {"even", even},
        {"grid", grid},
        {"wall_layer", wallLayer},
        {"circle", circle},
        {"cluster", cluster},
        {"equal_clusters", equalClusters},
        {"mass_ties", massTies},
        {"equal_points", equalPoints},
        {"line", line},
        {"equal_x", equalX},
        {"two_scales", twoScales},
        {"denormal", denormal},
        {"nan_among", nanAmong},
        {"huge_offset", hugeOffset},
    };
    return shapes;
}

} // namespace cloud_shapes

inline const std::vector<CloudShape>& cloudShapes() {
    return cloud_shapes::all();
}

// The shape of that name, which must exist.
inline const CloudShape& cloudShape(const std::string& name) {
    return *std::find_if(cloudShapes().begin(), cloudShapes().end(),
                         [&](const CloudShape& shape) { return shape.name == name; });
}

// Anywhere in the box of the points; on lattices half way between four places, a tie each. On the
// circle all are the centre.
inline CloudPoints queriesAnywhere(const CloudShape& shape, const CloudPoints& cloud,
                                   std::size_t count) {
    const std::string name = shape.name;
    const cloud_shapes::Box box = cloud_shapes::boxOf(cloud);
    const bool betweenPlaces = name == "grid" || name == "mass_ties";
    ShapeRandom random(cloud_shapes::kSeed + 1);
    CloudPoints queries(count);
    for (CloudPoint& q : queries) {
        if (name != "circle") {
            q.x = box.low.x + (box.high.x - box.low.x) * random.unitFloat();
            q.y = box.low.y + (box.high.y - box.low.y) * random.unitFloat();
        }
        if (betweenPlaces) {
            q = CloudPoint(std::floor(q.x) + 0.5f, std::floor(q.y) + 0.5f, 0.0f);
        }
    }
    return queries;
}

// Each beside a point picked at random, closer than its neighbours usually are; on lattices half
// way to the next place.
inline CloudPoints queriesNearPoints(const CloudShape& shape, const CloudPoints& cloud,
                                     std::size_t count) {
    if (cloud.empty()) {
        return {};
    }
    const std::string name = shape.name;
    const cloud_shapes::Box box = cloud_shapes::boxOf(cloud);
    const float step = 0.5f / std::sqrt(static_cast<float>(cloud.size()));
    ShapeRandom random(cloud_shapes::kSeed + 2);
    CloudPoints queries(count);
    for (CloudPoint& q : queries) {
        const CloudPoint p = cloud[random.index(cloud.size())];
        const float x = step * random.around();
        const float y = step * random.around();
        if (name == "grid" || name == "mass_ties") {
            q = CloudPoint(p.x + 0.5f, p.y, 0.0f);
        } else if (name == "wall_layer") { // log y is spread evenly, over log(1e5) = 11.5
            q = CloudPoint(p.x + x, p.y * (1.0f + 11.5f * y), 0.0f);
        } else {
            q = CloudPoint(p.x + x * (box.high.x - box.low.x), p.y + y * (box.high.y - box.low.y),
                           0.0f);
        }
        if (!(std::isfinite(q.x) && std::isfinite(q.y))) { // beside a point that is not finite
            q = box.low;
        }
    }
    return queries;
}

// A million extents away, from where rounding makes many points equally far.
inline CloudPoints queriesFarOff(const CloudShape&, const CloudPoints& cloud, std::size_t count) {
    const cloud_shapes::Box box = cloud_shapes::boxOf(cloud);
    const float extent = std::max(box.high.x - box.low.x, box.high.y - box.low.y);
    ShapeRandom random(cloud_shapes::kSeed + 3);
    CloudPoints queries(count);
    for (CloudPoint& q : queries) {
        const double angle = random.between(0.0, 6.283185307179586);
        q = CloudPoint(box.low.x + 1e6f * extent * static_cast<float>(std::cos(angle)),
                       box.low.y + 1e6f * extent * static_cast<float>(std::sin(angle)), 0.0f);
    }
    return queries;
}

} // namespace qel_test

#endif
