// The nearest vertex of a polyline: the reference implementation, and its fast path in lanes.
//
// Each lane keeps the first of its own points that is nearest, by the comparison of the reference
// implementation: a NaN never comes in. Of the lanes' points at the least distance the one with the
// lowest index is the answer. A first point at a distance of NaN or infinity is the answer itself
// unless a point is nearer than infinity, which no lane can then tell from one that is not.

#include "curve/NearestVertex.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "curve/SimdDistances.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

struct ReferenceKernel {
    QEL_KERNEL static std::size_t run(const Point* points, std::size_t count, const Point& q) {
        std::size_t nearest = 0;
        double least = squaredDistance(points[0], q);
        for (std::size_t i = 1; i < count; ++i) {
            const double d2 = squaredDistance(points[i], q);
            if (d2 < least) {
                least = d2;
                nearest = i;
            }
        }
        return nearest;
    }
};

#if defined(QEL_SHUFFLES)

constexpr std::size_t kMinPointsOfFourLanes = 32; // below, the reference is as fast
constexpr std::size_t kMinPointsOfEightLanes = 128;
constexpr std::size_t kMinPointsTogether = 12;

/// The nearest points of the lanes: the least distances, and the first of the points in the group
/// that brought each.
template <std::size_t width>
class NearestOfLanes {
public:
    QEL_KERNEL NearestOfLanes() : least_(Numbers{} + HUGE_VAL), group_{} {}

    QEL_KERNEL void take(const PointLanes<width>& points, std::size_t group, const Point& q) {
        const Numbers d2 = squaredDistances(points, q).value;
        const Integers isNearer = d2 < least_;
        least_ = d2 < least_ ? d2 : least_;
        group_ = isNearer ? Integers{} + static_cast<std::int64_t>(group) : group_;
    }

    /// Of the points at the least distance, the first.
    QEL_KERNEL std::size_t first() const {
        double least = HUGE_VAL;
        for (std::size_t lane = 0; lane < width; ++lane) {
            least = std::min(least, least_[lane]);
        }
        std::int64_t first = std::numeric_limits<std::int64_t>::max();
        for (std::size_t lane = 0; lane < width; ++lane) {
            const std::int64_t index = group_[lane] + static_cast<std::int64_t>(lane);
            first = least_[lane] == least ? std::min(first, index) : first;
        }
        return static_cast<std::size_t>(first);
    }

private:
    using Numbers = typename Register<double, width>::Type;
    using Integers = decltype(Numbers{} < Numbers{});

    Numbers least_;
    Integers group_;
};

/// Several probes at once.
template <std::size_t width, std::size_t probes>
struct LanesKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t count, const Point* q,
                               std::size_t* nearest) {
        NearestOfLanes<width> lanes[probes];
        for (std::size_t i = 0; i < count; i += width) {
            const std::size_t group = std::min(i, count - width); // those seen again change nothing
            const PointLanes<width> p = PointLanes<width>::read(points + group);
            for (std::size_t k = 0; k < probes; ++k) {
                lanes[k].take(p, group, q[k]);
            }
        }
        for (std::size_t k = 0; k < probes; ++k) {
            nearest[k] = squaredDistance(points[0], q[k]) < HUGE_VAL
                             ? lanes[k].first()
                             : ReferenceKernel::run(points, count, q[k]);
        }
    }
};

#endif

} // namespace

std::size_t nearestVertex(const Point* points, std::size_t count, const Point& q) {
#if defined(QEL_SHUFFLES)
    if (count >= kMinPointsOfFourLanes && vectorUnit() != VectorUnit::portable) {
        std::size_t nearest = 0;
        if (count >= kMinPointsOfEightLanes && vectorUnit() == VectorUnit::avx512) {
            runAvx512<LanesKernel<8, 1>>(points, count, &q, &nearest);
        } else {
            runAvx2<LanesKernel<4, 1>>(points, count, &q, &nearest);
        }
        return nearest;
    }
#endif
    return ReferenceKernel::run(points, count, q);
}

void nearestVertices(const Point* points, std::size_t count, const Point* probes,
                     std::size_t probeCount, std::size_t* nearest) {
    std::size_t k = 0;
#if defined(QEL_SHUFFLES)
    constexpr std::size_t kTogether = 4;
    if (count >= kMinPointsTogether && vectorUnit() != VectorUnit::portable) {
        for (; k + kTogether <= probeCount; k += kTogether) {
            if (vectorUnit() == VectorUnit::avx512) {
                runAvx512<LanesKernel<8, kTogether>>(points, count, probes + k, nearest + k);
            } else {
                runAvx2<LanesKernel<4, kTogether>>(points, count, probes + k, nearest + k);
            }
        }
    }
#endif
    for (; k < probeCount; ++k) {
        nearest[k] = nearestVertex(points, count, probes[k]);
    }
}

} // namespace qel
