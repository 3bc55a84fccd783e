// The nearest of many points, in double precision.
#include "points/NearestPoints.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <nanoflann.hpp>

namespace program {
namespace {

// What nanoflann reads points through. They are scaled by a power of two, so that squares neither
// overflow nor lose a difference that the points have.
struct ScaledPoints {
    const Points& points;
    int exponent;

    double scaled(double coordinate) const { return std::ldexp(coordinate, -exponent); }

    // The names are nanoflann's.
    std::size_t kdtree_get_point_count() const { return points.size(); }
    double kdtree_get_pt(std::size_t i, std::size_t axis) const {
        const Point& p = points[i];
        return scaled(axis == 0 ? p.x : axis == 1 ? p.y : p.z);
    }
    template <typename Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

int exponentOf(const Points& points, const Points& queries) {
    double largest = std::numeric_limits<double>::min();
    for (const Points* const list : {&points, &queries}) {
        for (const Point& p : *list) {
            largest = std::max({largest, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
        }
    }
    return std::ilogb(largest);
}

// What nanoflann puts the points that it visits into: the nearest so far, the farthest in front (a
// heap). Distances are measured without squares of small differences: of points at equal
// distance the one with the lowest index has to win.
class Nearest {
public:
    Nearest(const Points& points, const Point& query, bool planar, int exponent,
            const NeighbourLimits& limits)
        : points_(points), query_(query), planar_(planar), exponent_(exponent), limits_(limits) {}

    // The names are nanoflann's.
    bool full() const { return found_.size() >= limits_.count; }
    std::size_t size() const { return found_.size(); }
    bool addPoint(double, std::size_t index) {
        const Neighbour neighbour{index, distanceOf(points_[index])};
        if (neighbour.distance > limits_.radius || (full() && !isNearer(neighbour, found_[0]))) {
            return true;
        }
        if (full()) {
            std::pop_heap(found_.begin(), found_.end(), isNearer);
            found_.pop_back();
        }
        found_.push_back(neighbour);
        std::push_heap(found_.begin(), found_.end(), isNearer);
        return true;
    }
    // The scaled square that a point must be below to be visited: more than that of the farthest
    // found, so that rounding leaves out none at the same distance.
    double worstDist() const {
        constexpr double kRounding = 1e-12; // many times that of the squares
        const double reach = full() ? std::min(found_[0].distance, limits_.radius) : limits_.radius;
        const double scaled = std::ldexp(reach, -exponent_);
        return scaled * scaled * (1.0 + kRounding) + std::numeric_limits<double>::min();
    }

    std::vector<Neighbour> inOrder() && {
        std::sort_heap(found_.begin(), found_.end(), isNearer);
        return std::move(found_);
    }

private:
    static bool isNearer(const Neighbour& a, const Neighbour& b) {
        return a.distance < b.distance || (a.distance == b.distance && a.index < b.index);
    }

    double distanceOf(const Point& p) const {
        return std::hypot(p.x - query_.x, p.y - query_.y, planar_ ? 0.0 : p.z - query_.z);
    }

    const Points& points_;
    const Point query_;
    const bool planar_;
    const int exponent_;
    const NeighbourLimits limits_;
    std::vector<Neighbour> found_;
};

} // namespace

class NearestPoints::Tree {
public:
    virtual ~Tree() = default;
    virtual std::vector<Neighbour> find(const Point& query,
                                        const NeighbourLimits& limits) const = 0;
};

template <int kDimensions>
class NearestPoints::TreeIn : public Tree {
public:
    TreeIn(const Points& points, const Points& queries)
        : points_{points, exponentOf(points, queries)}, index_(kDimensions, points_) {
        index_.buildIndex();
    }

    std::vector<Neighbour> find(const Point& query, const NeighbourLimits& limits) const override {
        Nearest nearest(points_.points, query, kDimensions == 2, points_.exponent, limits);
        const double place[] = {points_.scaled(query.x), points_.scaled(query.y),
                                points_.scaled(query.z)};
        index_.findNeighbors(nearest, place, nanoflann::SearchParams());
        return std::move(nearest).inOrder();
    }

private:
    using Metric = nanoflann::L2_Simple_Adaptor<double, ScaledPoints>;
    using Index =
        nanoflann::KDTreeSingleIndexAdaptor<Metric, ScaledPoints, kDimensions, std::size_t>;

    ScaledPoints points_;
    Index index_;
};

NearestPoints::NearestPoints(const Points& points, const Points& queries, bool planar)
    : queries_(queries) {
    if (planar) {
        tree_ = std::make_unique<const TreeIn<2>>(points, queries);
    } else {
        tree_ = std::make_unique<const TreeIn<3>>(points, queries);
    }
}

NearestPoints::~NearestPoints() = default;

std::vector<Neighbour> NearestPoints::find(std::size_t query, const NeighbourLimits& limits) const {
    return tree_->find(queries_[query], limits);
}

} // namespace program
