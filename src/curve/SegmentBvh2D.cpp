#include "curve/SegmentBvh2D.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr float kSlack = 1.5e-4f;     // of the side along the axis
constexpr float kRounding = 0x1p-18f; // of the largest coordinate
constexpr float kUnderflow = 1e-36f;
constexpr float kFarthest = 1e18f;         // coordinates of regular segments
constexpr float kShortestSquared = 1e-36f; // lengths of regular segments

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::size_t kFan = SegmentBvh2D::kFan;
using Group = SegmentBvh2D::Group;

constexpr std::size_t groupsOf(std::size_t count) {
    return (count + kFan - 1) / kFan;
}

// The first if the other is NaN.
QEL_KERNEL float larger(float a, float b) {
    return b > a ? b : a;
}

QEL_KERNEL float smaller(float a, float b) {
    return b < a ? b : a;
}

// -- Boxes ----

// Rows of sides of as many boxes as go into the boxes of one group.
constexpr std::size_t kRow = kFan * kFan;

struct Rows {
    float lowX[kRow];
    float highX[kRow];
    float lowY[kRow];
    float highY[kRow];
};

// What a box around segments is widened by along each axis; infinite for irregular ones.
struct Widths {
    float x;
    float y;
};

QEL_KERNEL Widths widthsFor(const Box2D& box) {
    const float farthest = larger(larger(-box.lowX, box.highX), larger(-box.lowY, box.highY));
    const float rounding = kRounding * farthest + kUnderflow;
    const bool isRegular = farthest <= kFarthest;
    return {isRegular ? kSlack * (box.highX - box.lowX) + rounding : kInfinity,
            isRegular ? kSlack * (box.highY - box.lowY) + rounding : kInfinity};
}

QEL_KERNEL Box2D widened(const Box2D& box, const Widths& widths) {
    return widths.x < kInfinity ? Box2D{box.lowX - widths.x, box.highX + widths.x,
                                        box.lowY - widths.y, box.highY + widths.y}
                                : kWholePlane;
}

// What the range of a coordinate is extended by: empty for a segment without length, infinite for
// one whose length is irregular, which a NaN leaves, too.
QEL_KERNEL float extensionFor(float dx, float dy) {
    const float extension = dx * dx + dy * dy >= kShortestSquared ? 0.0f : kInfinity;
    return ((dx == 0.0f) & (dy == 0.0f)) ? -kInfinity : extension;
}

QEL_KERNEL float lowOf(float from, float to, float extension) {
    const float low = smaller(from, to) - extension;
    return low > -kInfinity ? low : -kInfinity;
}

QEL_KERNEL float highOf(float from, float to, float extension) {
    const float high = larger(from, to) + extension;
    return high < kInfinity ? high : kInfinity;
}

QEL_KERNEL void setRows(const float* x, const float* y, Rows& rows) {
    float extension[kRow];
    for (std::size_t k = 0; k < kRow; ++k) {
        extension[k] = extensionFor(x[k + 1] - x[k], y[k + 1] - y[k]);
    }
    for (std::size_t k = 0; k < kRow; ++k) {
        rows.lowX[k] = lowOf(x[k], x[k + 1], extension[k]);
        rows.highX[k] = highOf(x[k], x[k + 1], extension[k]);
        rows.lowY[k] = lowOf(y[k], y[k + 1], extension[k]);
        rows.highY[k] = highOf(y[k], y[k + 1], extension[k]);
    }
}

// The lesser or the greater of each two numbers.
template <float (*choose)(float, float), std::size_t count>
QEL_KERNEL void pairUp(const float* row, float* half) {
#pragma GCC unroll 1
    for (std::size_t k = 0; k < count; ++k) {
        half[k] = choose(row[2 * k], row[2 * k + 1]);
    }
}

// Joins each kFan sides to one.
template <float (*choose)(float, float)>
QEL_KERNEL void join(const float* row, float* sides) {
    static_assert(kFan == 8, "three times half as many");
    float half[kRow / 2];
    float quarter[kRow / 4];
    pairUp<choose, kRow / 2>(row, half);
    pairUp<choose, kRow / 4>(half, quarter);
    pairUp<choose, kRow / 8>(quarter, sides);
}

QEL_KERNEL void join(const Rows& rows, Group& group) {
    join<smaller>(rows.lowX, group.lowX);
    join<larger>(rows.highX, group.highX);
    join<smaller>(rows.lowY, group.lowY);
    join<larger>(rows.highY, group.highY);
}

QEL_KERNEL void widen(Group& group, float* widthsX, float* widthsY) {
#pragma GCC unroll 1
    for (std::size_t k = 0; k < kFan; ++k) {
        const Box2D box{group.lowX[k], group.highX[k], group.lowY[k], group.highY[k]};
        const Widths widths = widthsFor(box);
        widthsX[k] = widths.x;
        widthsY[k] = widths.y;
        group.lowX[k] = box.lowX - widths.x;
        group.highX[k] = box.highX + widths.x;
        group.lowY[k] = box.lowY - widths.y;
        group.highY[k] = box.highY + widths.y;
    }
}

// The x and y of the ends of segments, as they are rounded for these. After the last segment, its
// end is repeated.
template <std::size_t count>
struct Ends {
    float x[count + 1];
    float y[count + 1];

    QEL_KERNEL Ends(const Point* points, std::size_t segments) {
        const std::size_t there = std::min(count, segments);
        for (std::size_t k = 0; k <= there; ++k) {
            x[k] = static_cast<float>(points[k].x);
            y[k] = static_cast<float>(points[k].y);
        }
        for (std::size_t k = there + 1; k <= count; ++k) {
            x[k] = x[there];
            y[k] = y[there];
        }
    }
};

struct BuildKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t segments, float* widthsX,
                               float* widthsY, Group* groups, std::size_t count) {
        for (std::size_t g = 0; g < count; ++g) {
            const Ends<kRow> ends(points + g * kRow, segments - g * kRow);
            Rows rows;
            setRows(ends.x, ends.y, rows);
            join(rows, groups[g]);
            widen(groups[g], widthsX + g * kFan, widthsY + g * kFan);
        }
    }
};

// Leaves the first boxes of a group; NaN, which overlaps nothing, stands for the others.
void removeBoxes(Group& group, std::size_t count) {
    for (float* const sides : {group.lowX, group.highX, group.lowY, group.highY}) {
        std::fill(sides + count, sides + kFan, std::numeric_limits<float>::quiet_NaN());
    }
}

// The boxes of level - 1 that are in one box each of a group.
struct GatherKernel {
    QEL_KERNEL static void run(const Group* inner, std::size_t count, Group* groups) {
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        for (std::size_t first = 0; first < count; first += kFan) {
            Rows rows;
            for (float* const row : {rows.lowX, rows.highX, rows.lowY, rows.highY}) {
                std::fill_n(row, kRow, kNan);
            }
            for (std::size_t g = 0; g < std::min(kFan, count - first); ++g) {
                const Group& from = inner[first + g];
                std::copy_n(from.lowX, kFan, rows.lowX + g * kFan);
                std::copy_n(from.highX, kFan, rows.highX + g * kFan);
                std::copy_n(from.lowY, kFan, rows.lowY + g * kFan);
                std::copy_n(from.highY, kFan, rows.highY + g * kFan);
            }
            join(rows, groups[first / kFan]);
        }
    }
};

// -- Overlaps ----

QEL_KERNEL unsigned bitsOf(const int* overlaps) {
    int bits = 0;
    for (std::size_t k = 0; k < kFan; ++k) {
        bits |= overlaps[k] << k;
    }
    return static_cast<unsigned>(bits);
}

struct OverlapKernel {
    QEL_KERNEL static unsigned run(const Group* group, const Box2D* other) {
        const Box2D box = *other;
        int overlaps[kFan];
        for (std::size_t k = 0; k < kFan; ++k) {
            // As ints, whose conjunction needs no branches.
            const int lowX = group->lowX[k] <= box.highX;
            const int highX = box.lowX <= group->highX[k];
            const int lowY = group->lowY[k] <= box.highY;
            const int highY = box.lowY <= group->highY[k];
            overlaps[k] = lowX & highX & lowY & highY;
        }
        return bitsOf(overlaps);
    }
};

struct SegmentOverlapKernel {
    QEL_KERNEL static unsigned run(const Point* points, std::size_t segments, Widths widths,
                                   const Box2D* other) {
        const Ends<kFan> ends(points, segments);
        const Box2D box{other->lowX - widths.x, other->highX + widths.x, other->lowY - widths.y,
                        other->highY + widths.y};
        int overlaps[kFan];
        for (std::size_t k = 0; k < kFan; ++k) {
            const int lowX = smaller(ends.x[k], ends.x[k + 1]) <= box.highX;
            const int highX = box.lowX <= larger(ends.x[k], ends.x[k + 1]);
            const int lowY = smaller(ends.y[k], ends.y[k + 1]) <= box.highY;
            const int highY = box.lowY <= larger(ends.y[k], ends.y[k + 1]);
            overlaps[k] = lowX & highX & lowY & highY;
        }
        return bitsOf(overlaps);
    }
};

} // namespace

LineSegment2D planeSegment(const Points& points, std::size_t i) {
    const auto inPlane = [](const Point& p) {
        return Doublet(static_cast<float>(p.x), static_cast<float>(p.y));
    };
    return {inPlane(points[i]), inPlane(points[i + 1])};
}

Box2D boxOf(const LineSegment2D& segment) {
    const Doublet end = segment.getEnd();
    const Doublet& to = segment.toVector;
    const float extension = extensionFor(to.x, to.y);
    const Box2D box{
        lowOf(segment.start.x, end.x, extension), highOf(segment.start.x, end.x, extension),
        lowOf(segment.start.y, end.y, extension), highOf(segment.start.y, end.y, extension)};
    return widened(box, widthsFor(box));
}

// -- The hierarchy ----

SegmentBvh2D::SegmentBvh2D(const Point* points, std::size_t segments)
    : points_(points), segments_(segments) {
    std::size_t groups = 0;
    for (std::size_t boxes = groupsOf(segments_);; boxes = groupsOf(boxes)) {
        levelStart_[++top_] = groups;
        groups += groupsOf(boxes);
        if (boxes <= kFan) {
            break;
        }
    }
    const std::size_t first = groupsOf(groupsOf(segments_)); // groups of level 1
    widthsX_.resize(first * kFan);
    widthsY_.resize(first * kFan);
    groups_.resize(groups);
    onVectorUnit<BuildKernel>(points_, segments_, widthsX_.data(), widthsY_.data(), groups_.data(),
                              first);
    removeBoxes(groups_[first - 1], groupsOf(segments_) - (first - 1) * kFan);
    for (std::size_t level = 2; level <= top_; ++level) {
        onVectorUnit<GatherKernel>(&groups_[levelStart_[level - 1]],
                                   levelStart_[level] - levelStart_[level - 1],
                                   &groups_[levelStart_[level]]);
    }
}

Box2D SegmentBvh2D::box(std::size_t level, std::size_t number) const {
    const Group& group = groups_[levelStart_[level] + number / kFan];
    const std::size_t k = number % kFan;
    return {group.lowX[k], group.highX[k], group.lowY[k], group.highY[k]};
}

unsigned SegmentBvh2D::overlapping(std::size_t level, std::size_t group, const Box2D& box) const {
    if (level > 0) {
        return onVectorUnit<OverlapKernel>(&groups_[levelStart_[level] + group], &box);
    }
    const std::size_t first = group * kFan;
    const unsigned there = (1u << std::min(kFan, segments_ - first)) - 1;
    const Widths widths{widthsX_[group], widthsY_[group]};
    if (!(widths.x < kInfinity)) {
        return there; // a NaN would overlap nothing
    }
    if (widths.x == -kInfinity) { // segments of no length alone
        return box.lowX == -kInfinity ? there : 0;
    }
    return onVectorUnit<SegmentOverlapKernel>(points_ + first, segments_ - first, widths, &box) &
           there;
}

} // namespace qel
