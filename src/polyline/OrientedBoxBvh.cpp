#include "polyline/OrientedBoxBvh.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <qel/TripletBase.h>

namespace qel {
namespace {

using Point = TripletBase<double>;
using Corners = std::array<Point, OrientedBoxBvh::kCorners>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Point unitAlong(const Point& p) {
    const double length = std::sqrt(p.dot(p));
    return length > 0.0 ? p * (1.0 / length) : Point(1.0, 0.0, 0.0);
}

// A unit vector across another: also across the axis along which that has the least component.
Point unitAcross(const Point& u) {
    const double x = std::fabs(u.x), y = std::fabs(u.y), z = std::fabs(u.z);
    const Point axis = x <= y && x <= z ? Point(1, 0, 0) : y <= z ? Point(0, 1, 0) : Point(0, 0, 1);
    return unitAlong(u.cross(axis));
}

// In coordinates along a direction and across it, about a point.
class OrientedBox {
public:
    OrientedBox(const Point& origin, const Point& direction) : origin_(origin) {
        axes_[0] = unitAlong(direction);
        axes_[1] = unitAcross(axes_[0]);
        axes_[2] = axes_[0].cross(axes_[1]);
        low_.fill(kInfinity);
        high_.fill(-kInfinity);
    }

    void include(const Point& p) {
        const Point d = p - origin_;
        for (std::size_t k = 0; k < 3; ++k) {
            const double value = axes_[k].dot(d);
            low_[k] = std::min(low_[k], value);
            high_[k] = std::max(high_[k], value);
        }
    }

    Corners corners() const {
        Corners corners;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            corners[i] = origin_;
            for (std::size_t k = 0; k < 3; ++k) {
                corners[i] += axes_[k] * ((i >> k) % 2 == 0 ? low_[k] : high_[k]);
            }
        }
        return corners;
    }

private:
    Point origin_;
    std::array<Point, 3> axes_;
    std::array<double, 3> low_;
    std::array<double, 3> high_;
};

// From the mean of the first half of pointAt(first), ..., pointAt(end - 1) to that of the second:
// of a zig-zag the direction of its middle, whose ends may lie on either side.
template <typename PointAt>
Point directionOf(std::size_t first, std::size_t end, const PointAt& pointAt) {
    const std::size_t half = (end - first) / 2;
    Point sum(0.0, 0.0, 0.0);
    for (std::size_t i = 0; i < half; ++i) {
        sum += pointAt(end - 1 - i) - pointAt(first + i);
    }
    return sum;
}

Corners boxOfVertices(const VertexArrays<3>& vertices, std::size_t first, std::size_t end) {
    const auto vertexAt = [&](std::size_t i) {
        return Point(vertices.axis(0)[i], vertices.axis(1)[i], vertices.axis(2)[i]);
    };
    OrientedBox box(vertexAt(first), directionOf(first, end, vertexAt));
    for (std::size_t i = first; i < end; ++i) {
        box.include(vertexAt(i));
    }
    return box.corners();
}

Corners boxOfNodes(const OrientedBoxBvh::Level& level, std::size_t first, std::size_t end) {
    const auto cornerAt = [&](std::size_t i, std::size_t k) {
        return Point(level.corner(k, 0)[i], level.corner(k, 1)[i], level.corner(k, 2)[i]);
    };
    const auto middleAt = [&](std::size_t i) {
        return (cornerAt(i, 0) + cornerAt(i, OrientedBoxBvh::kCorners - 1)) * 0.5;
    };
    OrientedBox box(middleAt(first), directionOf(first, end, middleAt));
    for (std::size_t i = first; i < end; ++i) {
        for (std::size_t k = 0; k < OrientedBoxBvh::kCorners; ++k) {
            box.include(cornerAt(i, k));
        }
    }
    return box.corners();
}

// boxOf(first, end) for every group of so many of the elements.
template <typename BoxOf>
OrientedBoxBvh::Level levelOf(std::size_t elements, std::size_t group, const BoxOf& boxOf) {
    OrientedBoxBvh::Level level;
    level.count = (elements + group - 1) / group;
    for (Buffer<double>& array : level.coordinates) {
        array = Buffer<double>(level.count + OrientedBoxBvh::kFanOut);
        std::fill_n(array.begin() + level.count, OrientedBoxBvh::kFanOut,
                    std::numeric_limits<double>::quiet_NaN());
    }
    for (std::size_t i = 0; i < level.count; ++i) {
        const std::size_t first = i * group;
        const Corners corners = boxOf(first, std::min(first + group, elements));
        for (std::size_t k = 0; k < corners.size(); ++k) {
            level.coordinates[3 * k][i] = corners[k].x;
            level.coordinates[3 * k + 1][i] = corners[k].y;
            level.coordinates[3 * k + 2][i] = corners[k].z;
        }
    }
    return level;
}

} // namespace

OrientedBoxBvh::OrientedBoxBvh(const VertexArrays<3>& vertices) {
    levels_.push_back(
        levelOf(vertices.vertices(), kLeafVertices, [&](std::size_t first, std::size_t end) {
            return boxOfVertices(vertices, first, end);
        }));
    while (levels_.back().count > kFanOut) {
        const Level& below = levels_.back();
        levels_.push_back(levelOf(below.count, kFanOut, [&](std::size_t first, std::size_t end) {
            return boxOfNodes(below, first, end);
        }));
    }
}

} // namespace qel
