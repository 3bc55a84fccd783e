#include "curve/PlaneBoxes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr float kSlack = 1.5e-4f;     // of the larger side
constexpr float kRounding = 0x1p-18f; // of the largest coordinate
constexpr float kUnderflow = 1e-36f;
constexpr float kFarthest = 1e18f;         // coordinates of regular segments
constexpr float kShortestSquared = 1e-36f; // lengths of regular segments

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr PlaneBox kWholePlane{-kInfinity, kInfinity, -kInfinity, kInfinity};

QEL_KERNEL float larger(float a, float b) {
    return a > b ? a : b;
}

QEL_KERNEL float smaller(float a, float b) {
    return a < b ? a : b;
}

QEL_KERNEL PlaneBox widened(const PlaneBox& box, float width) {
    return {box.lowX - width, box.highX + width, box.lowY - width, box.highY + width};
}

// The width to add to a box around segments; infinite if they are irregular.
QEL_KERNEL float widthFor(const PlaneBox& box, bool hasIrregularLength) {
    const float side = larger(box.highX - box.lowX, box.highY - box.lowY);
    const float farthest = larger(larger(-box.lowX, box.highX), larger(-box.lowY, box.highY));
    return hasIrregularLength || !(farthest <= kFarthest)
               ? kInfinity
               : kSlack * side + kRounding * farthest + kUnderflow;
}

// Folds the upper half of twice Half values onto the lower one. By constant counts, which the
// compiler turns into a few whole vectors.
template <std::size_t Half>
QEL_KERNEL void fold(float* lows, float* highs) {
    for (std::size_t l = 0; l < Half; ++l) {
        lows[l] = smaller(lows[l], lows[l + Half]);
        highs[l] = larger(highs[l], highs[l + Half]);
    }
}

// Lowest and highest of kRun + 1 values.
QEL_KERNEL void findRange(const float* values, float& low, float& high) {
    static_assert(kRun == 16, "four folds");
    float lows[8];
    float highs[8];
    for (std::size_t l = 0; l < 8; ++l) {
        lows[l] = smaller(values[l], values[l + 8]);
        highs[l] = larger(values[l], values[l + 8]);
    }
    fold<4>(lows, highs);
    fold<2>(lows, highs);
    fold<1>(lows, highs);
    low = smaller(lows[0], values[kRun]);
    high = larger(highs[0], values[kRun]);
}

// A NaN leaves a segment without a length. It may also stay out of the range, which then is not
// used; an infinity does not.
QEL_KERNEL void boxOfRun(const float* x, const float* y, PlaneBox& box, float& width) {
    int irregular = 0;
    for (std::size_t k = 0; k < kRun; ++k) {
        const float dx = x[k + 1] - x[k];
        const float dy = y[k + 1] - y[k];
        const int hasLength = dx * dx + dy * dy >= kShortestSquared;
        const int isPoint = (dx == 0.0f) & (dy == 0.0f);
        irregular |= (hasLength | isPoint) ^ 1;
    }
    findRange(x, box.lowX, box.highX);
    findRange(y, box.lowY, box.highY);
    width = widthFor(box, irregular != 0);
    box = width < kInfinity ? widened(box, width) : kWholePlane;
}

QEL_KERNEL void fill(const Point* points, std::size_t count, float* x, float* y, PlaneBox* boxes,
                     float* widths) {
    for (std::size_t k = 0; k <= count; ++k) {
        x[k] = static_cast<float>(points[k].x);
        y[k] = static_cast<float>(points[k].y);
    }
    const std::size_t runs = runsOf(count);
    for (std::size_t k = count + 1; k <= runs * kRun; ++k) {
        x[k] = x[count];
        y[k] = y[count];
    }
    for (std::size_t run = 0; run < runs; ++run) {
        boxOfRun(x + run * kRun, y + run * kRun, boxes[run], widths[run]);
    }
}

QEL_KERNEL unsigned overlappingOf(const float* x, const float* y, float width,
                                  const PlaneBox& box) {
    int overlaps[kRun];
    int any = 0;
    for (std::size_t k = 0; k < kRun; ++k) {
        // As ints, whose conjunction needs no branches.
        const int lowX = smaller(x[k], x[k + 1]) - width <= box.highX;
        const int highX = box.lowX <= larger(x[k], x[k + 1]) + width;
        const int lowY = smaller(y[k], y[k + 1]) - width <= box.highY;
        const int highY = box.lowY <= larger(y[k], y[k + 1]) + width;
        overlaps[k] = lowX & highX & lowY & highY;
        any |= overlaps[k];
    }
    unsigned bits = 0;
    if (any != 0) {
        for (std::size_t k = 0; k < kRun; ++k) {
            bits |= static_cast<unsigned>(overlaps[k]) << k;
        }
    }
    return bits;
}

struct FillKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t count, float* x, float* y,
                               PlaneBox* boxes, float* widths) {
        fill(points, count, x, y, boxes, widths);
    }
};

struct OverlappingKernel {
    QEL_KERNEL static unsigned run(const float* x, const float* y, float width, PlaneBox box) {
        return overlappingOf(x, y, width, box);
    }
};

} // namespace

PlaneBox boxOfSegment(const LineSegment2D& segment) {
    const Doublet& from = segment.start;
    const Doublet to = segment.getEnd();
    const PlaneBox box{std::min(from.x, to.x), std::max(from.x, to.x), std::min(from.y, to.y),
                       std::max(from.y, to.y)};
    const float dx = segment.toVector.x;
    const float dy = segment.toVector.y;
    // A NaN, which the box may have passed over, leaves no length either.
    const bool isRegular = dx * dx + dy * dy >= kShortestSquared || segment.isZeroLength();
    const float width = widthFor(box, !isRegular);
    return width < kInfinity ? widened(box, width) : kWholePlane;
}

void PlaneRuns::take(const Point* points, std::size_t count) {
    const std::size_t runs = runsOf(count);
    segments_ = count;
    x_.resize(runs * kRun + 1);
    y_.resize(runs * kRun + 1);
    boxes_.resize(runs);
    widths_.resize(runs);
    onVectorUnit<FillKernel>(points, count, x_.data(), y_.data(), boxes_.data(), widths_.data());
}

PlaneBox PlaneRuns::boxOf(std::size_t segment) const {
    const float width = widths_[segment / kRun];
    if (!(width < kInfinity)) {
        return kWholePlane;
    }
    const std::size_t k = segment;
    return widened({smaller(x_[k], x_[k + 1]), larger(x_[k], x_[k + 1]), smaller(y_[k], y_[k + 1]),
                    larger(y_[k], y_[k + 1])},
                   width);
}

unsigned PlaneRuns::overlapping(std::size_t run, const PlaneBox& box) const {
    const float width = widths_[run];
    if (!(width < kInfinity)) {
        return (1u << kRun) - 1; // NaN would overlap nothing
    }
    return onVectorUnit<OverlappingKernel>(x_.data() + run * kRun, y_.data() + run * kRun, width,
                                           box);
}

} // namespace qel
