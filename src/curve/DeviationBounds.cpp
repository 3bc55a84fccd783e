#include "curve/DeviationBounds.h"

#include <cmath>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kRun = DeviationBounds::kRun;
constexpr double kOfDeviation = 1.0 + 0x1p-40; // beyond the roundings of a residual's length
constexpr double kOfOffsets = 0x1p-48;         // beyond those of its components

// How far the vertices lie from the segment between the first and the last of a run.
QEL_KERNEL double deviationOf(const Point* run) {
    const Point a = run[0];
    const Point e = run[kRun] - a;
    const double ee = e.dot(e);
    const double inverse = ee > 0.0 ? 1.0 / ee : 0.0;
    double residual[kRun];
    double offset[kRun];
    for (std::size_t k = 0; k < kRun; ++k) {
        const double x = run[k].x - a.x;
        const double y = run[k].y - a.y;
        const double z = run[k].z - a.z;
        const double foot = (x * e.x + y * e.y + z * e.z) * inverse;
        // Any place on the segment bounds the distance; this is about the nearest.
        const double atMostOne = foot < 1.0 ? foot : 1.0;
        const double t = atMostOne > 0.0 ? atMostOne : 0.0;
        const double dx = x - e.x * t;
        const double dy = y - e.y * t;
        const double dz = z - e.z * t;
        residual[k] = dx * dx + dy * dy + dz * dz;
        offset[k] = x * x + y * y + z * z;
    }
    for (std::size_t width = kRun / 2; width > 0; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            residual[k] = residual[k] > residual[k + width] ? residual[k] : residual[k + width];
            offset[k] += offset[k + width]; // more than the largest; NaN if one is
        }
    }
    const double deviation =
        std::sqrt(residual[0]) * kOfDeviation + (std::sqrt(offset[0]) + std::sqrt(ee)) * kOfOffsets;
    return offset[0] < kInfinity && ee < kInfinity ? deviation : kInfinity;
}

struct DeviationKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t count, double* deviations) {
        for (std::size_t r = 0; r < count; ++r) {
            deviations[r] = deviationOf(points + r * kRun);
        }
    }
};

// Ends and deviations of runs, from the first that is asked for.
struct Runs {
    const double* x;
    const double* y;
    const double* z;
    const double* deviation;
};

struct BoundsKernel {
    QEL_KERNEL static void run(Runs runs, std::size_t count, Chord chord, double* bounds) {
        constexpr double kOfOffset = 0x1p-50;
        constexpr double kOfBound = 1.0 + 0x1p-40;
        double ww[DeviationBounds::kMaxRuns + 1];
        double d2[DeviationBounds::kMaxRuns + 1];
        const Point start = chord.start;
        const Point e = chord.direction;
        const double inverse = 1.0 / chord.length;
        for (std::size_t k = 0; k <= count; ++k) {
            const double x = runs.x[k] - start.x;
            const double y = runs.y[k] - start.y;
            const double z = runs.z[k] - start.z;
            const double along = (x * e.x + y * e.y + z * e.z) * inverse;
            ww[k] = x * x + y * y + z * z;
            const double bound = ww[k] * (1.0 + kBoundSlack) - along * along;
            d2[k] = bound < 0.0 ? 0.0 : bound;
        }
        for (std::size_t k = 0; k < count; ++k) {
            const double deviation = runs.deviation[k];
            const double offset = std::sqrt(ww[k] + ww[k + 1]) + deviation; // NaN if one is
            const double farther = d2[k] > d2[k + 1] ? d2[k] : d2[k + 1];
            const double distance = std::sqrt(farther) + deviation + offset * kOfOffset;
            const double bound = (distance * distance + offset * offset * kBoundSlack) * kOfBound;
            bounds[k] = bound < kInfinity ? bound : kInfinity;
        }
    }
};

} // namespace

DeviationBounds::DeviationBounds(const Points& points)
    : deviations_(points.empty() ? 0 : (points.size() - 1) / kRun) {
    x_.reserve(size() + 1);
    y_.reserve(size() + 1);
    z_.reserve(size() + 1);
    for (std::size_t k = 0; k < points.size(); k += kRun) {
        x_.push_back(points[k].x);
        y_.push_back(points[k].y);
        z_.push_back(points[k].z);
    }
    onVectorUnit<DeviationKernel>(points.data(), size(), deviations_.data());
}

void DeviationBounds::squaredBounds(const Chord& chord, std::size_t first, std::size_t count,
                                    double* bounds) const {
    const Runs runs = {x_.data() + first, y_.data() + first, z_.data() + first,
                       deviations_.data() + first};
    onVectorUnit<BoundsKernel>(runs, count, chord, bounds);
}

} // namespace qel
