#include "curve/VertexLanes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "curve/DistanceLanes.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr std::size_t kLanes = VertexLanes::kLanes;
using Group = VertexLanes::Group;

// The nearest vertex of each lane.
struct Nearest {
    double d2[kLanes];
    std::uint64_t group[kLanes];
};

QEL_KERNEL void lookAt(const Group& group, std::uint64_t number, const Point& q, Nearest& nearest) {
    for (std::size_t i = 0; i < kLanes; ++i) {
        const double x = group.x[i] - q.x;
        const double y = group.y[i] - q.y;
        const double z = group.z[i] - q.z;
        const double d2 = x * x + y * y + z * z;
        // All ones or none: as a choice it would become a branch on whether any lane is nearer.
        const std::uint64_t isNearer = std::uint64_t{0} - std::uint64_t{d2 < nearest.d2[i]};
        nearest.group[i] = (number & isNearer) | (nearest.group[i] & ~isNearer);
        nearest.d2[i] = d2 < nearest.d2[i] ? d2 : nearest.d2[i];
    }
}

// Of the lanes' vertices at the least distance, the first.
QEL_KERNEL std::size_t firstOf(const Nearest& nearest) {
    const double least = leastOf<kLanes>(nearest.d2);
    std::uint64_t first = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t i = 0; i < kLanes; ++i) {
        const std::uint64_t isLater = std::uint64_t{0} - std::uint64_t{nearest.d2[i] != least};
        first = std::min(first, (nearest.group[i] * kLanes + i) | isLater);
    }
    return static_cast<std::size_t>(first);
}

struct ScanKernel {
    QEL_KERNEL static std::size_t run(const Group* groups, std::size_t count, Point q) {
        // Nothing is less than a first distance of NaN. Where none is less than infinity, vertex 0
        // is the first of the vertices at infinity.
        const double first = squaredDistance({groups->x[0], groups->y[0], groups->z[0]}, q);
        if (std::isnan(first)) {
            return 0;
        }
        Nearest nearest;
        std::fill_n(nearest.d2, kLanes, HUGE_VAL);
        std::fill_n(nearest.group, kLanes, std::uint64_t{0});
        for (std::size_t number = 0; number < count; ++number) {
            lookAt(groups[number], number, q, nearest);
        }
        return firstOf(nearest);
    }
};

} // namespace

VertexLanes::VertexLanes(const Points& points) : groups_((points.size() - 1) / kLanes + 1) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 0; i < groups_.size() * kLanes; ++i) {
        const Point p = i < points.size() ? points[i] : Point(kNan, kNan, kNan);
        Group& group = groups_[i / kLanes];
        group.x[i % kLanes] = p.x;
        group.y[i % kLanes] = p.y;
        group.z[i % kLanes] = p.z;
    }
}

std::size_t VertexLanes::nearest(const Point& q) const {
    return onVectorUnit<ScanKernel>(groups_.data(), groups_.size(), q);
}

} // namespace qel
