#include "curve/SegmentBvh2D.h"

#include <algorithm>
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
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr std::size_t kFan = SegmentBvh2D::kFan;

// The first if the other is NaN.
QEL_KERNEL float larger(float a, float b) {
    return b > a ? b : a;
}

QEL_KERNEL float smaller(float a, float b) {
    return b < a ? b : a;
}

// What the range of a coordinate is extended by: empty for a segment without length, infinite for
// one whose length is irregular, which a NaN leaves, too.
QEL_KERNEL float extensionFor(float dx, float dy) {
    const float extension = dx * dx + dy * dy >= kShortestSquared ? 0.0f : kInfinity;
    return ((dx == 0.0f) & (dy == 0.0f)) ? -kInfinity : extension;
}

QEL_KERNEL Box2D rangeOf(float x0, float y0, float x1, float y1, float extension) {
    return {larger(-kInfinity, smaller(x0, x1) - extension),
            smaller(kInfinity, larger(x0, x1) + extension),
            larger(-kInfinity, smaller(y0, y1) - extension),
            smaller(kInfinity, larger(y0, y1) + extension)};
}

// Chosen side by side, without a branch. An empty box stays empty.
QEL_KERNEL Box2D widened(const Box2D& range) {
    const float farthest =
        larger(larger(-range.lowX, range.highX), larger(-range.lowY, range.highY));
    const bool isRegular = farthest <= kFarthest;
    const float rounding = kRounding * farthest + kUnderflow;
    const float x = kSlack * (range.highX - range.lowX) + rounding;
    const float y = kSlack * (range.highY - range.lowY) + rounding;
    const Box2D box{range.lowX - x, range.highX + x, range.lowY - y, range.highY + y};
    return {isRegular ? box.lowX : -kInfinity, isRegular ? box.highX : kInfinity,
            isRegular ? box.lowY : -kInfinity, isRegular ? box.highY : kInfinity};
}

constexpr std::size_t kBlock = kFan * kFan; // segments in the boxes of a group

// -- Rows of sides: lowX of each box; a row's length on, highX of each; then lowY and highY ----

QEL_KERNEL Box2D boxAt(const float* sides, std::size_t row) {
    return {sides[0], sides[row], sides[2 * row], sides[3 * row]};
}

QEL_KERNEL void setBox(const Box2D& box, float* sides, std::size_t row) {
    sides[0] = box.lowX;
    sides[row] = box.highX;
    sides[2 * row] = box.lowY;
    sides[3 * row] = box.highY;
}

// Boxes of segments, not yet widened; those behind the last segment are empty.
template <std::size_t row>
QEL_KERNEL void setRanges(const Point* points, std::size_t segments, float* sides) {
    float x[row + 1];
    float y[row + 1];
    const std::size_t count = std::min(row, segments);
    for (std::size_t k = 0; k <= count; ++k) {
        x[k] = static_cast<float>(points[k].x);
        y[k] = static_cast<float>(points[k].y);
    }
    std::fill(x + count + 1, x + row + 1, x[count]);
    std::fill(y + count + 1, y + row + 1, y[count]);
    for (std::size_t k = 0; k < row; ++k) {
        const float extension = extensionFor(x[k + 1] - x[k], y[k + 1] - y[k]);
        setBox(rangeOf(x[k], y[k], x[k + 1], y[k + 1], extension), sides + k, row);
    }
}

QEL_KERNEL void widen(float* sides, std::size_t row) {
    for (std::size_t k = 0; k < kFan; ++k) {
        setBox(widened(boxAt(sides + k, row)), sides + k, row);
    }
}

// The lesser or the greater of each two numbers; the first if the second is NaN.
template <float (*choose)(float, float), std::size_t count>
QEL_KERNEL void pairUp(const float* row, float* half) {
#pragma GCC unroll 1
    for (std::size_t k = 0; k < count; ++k) {
        half[k] = choose(row[2 * k], row[2 * k + 1]);
    }
}

// Of each kFan numbers.
template <float (*choose)(float, float)>
QEL_KERNEL void joinRow(const float* row, float* joined) {
    static_assert(kFan == 8, "three times half as many");
    float half[kBlock / 2];
    float quarter[kBlock / 4];
    pairUp<choose, kBlock / 2>(row, half);
    pairUp<choose, kBlock / 4>(half, quarter);
    pairUp<choose, kBlock / 8>(quarter, joined);
}

// The box around each kFan of a block of boxes.
QEL_KERNEL void join(const float* inner, std::size_t innerRow, float* outer, std::size_t row) {
    joinRow<smaller>(inner, outer);
    joinRow<larger>(inner + innerRow, outer + row);
    joinRow<smaller>(inner + 2 * innerRow, outer + 2 * row);
    joinRow<larger>(inner + 3 * innerRow, outer + 3 * row);
}

struct FirstLevelKernel {
    QEL_KERNEL static void run(const Point* points, std::size_t segments, float* sides,
                               std::size_t row) {
        for (std::size_t first = 0; first < segments; first += kBlock, sides += kFan) {
            float inner[4 * kBlock];
            setRanges<kBlock>(points + first, segments - first, inner);
            join(inner, kBlock, sides, row);
            widen(sides, row);
        }
    }
};

struct LevelKernel {
    QEL_KERNEL static void run(const float* inner, std::size_t boxes, float* sides,
                               std::size_t row) {
        for (std::size_t first = 0; first < boxes; first += kBlock) {
            join(inner + first, row, sides + first / kFan, row);
        }
    }
};

struct OverlapKernel {
    QEL_KERNEL static unsigned run(const float* sides, std::size_t row, const Box2D* other) {
        const Box2D box = *other;
        int overlaps[kFan];
        for (std::size_t k = 0; k < kFan; ++k) {
            // As ints, whose conjunction needs no branches.
            const int lowX = sides[k] <= box.highX;
            const int highX = box.lowX <= sides[k + row];
            const int lowY = sides[k + 2 * row] <= box.highY;
            const int highY = box.lowY <= sides[k + 3 * row];
            overlaps[k] = lowX & highX & lowY & highY;
        }
        int bits = 0;
        for (std::size_t k = 0; k < kFan; ++k) {
            bits |= overlaps[k] << k;
        }
        return static_cast<unsigned>(bits);
    }
};

QEL_KERNEL void setSegmentBoxes(const Point* points, std::size_t segments, float* sides) {
    setRanges<kFan>(points, segments, sides);
    widen(sides, kFan);
    for (std::size_t k = segments; k < kFan; ++k) {
        setBox({kNan, kNan, kNan, kNan}, sides + k, kFan);
    }
}

struct SegmentOverlapKernel {
    QEL_KERNEL static unsigned run(const Point* points, std::size_t segments, const Box2D* other) {
        float sides[4 * kFan];
        setSegmentBoxes(points, segments, sides);
        return OverlapKernel::run(sides, kFan, other);
    }
};

struct PairsKernel {
    QEL_KERNEL static std::uint64_t run(const Point* points, std::size_t segments,
                                        const Point* others, std::size_t otherSegments) {
        float sides[4 * kFan];
        float otherSides[4 * kFan];
        setSegmentBoxes(points, segments, sides);
        setSegmentBoxes(others, otherSegments, otherSides);
        std::uint64_t pairs = 0;
        for (std::size_t i = 0; i < kFan; ++i) {
            const Box2D box = boxAt(sides + i, kFan);
            pairs |= std::uint64_t{OverlapKernel::run(otherSides, kFan, &box)} << i * kFan;
        }
        return pairs;
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
    return widened(rangeOf(segment.start.x, segment.start.y, end.x, end.y,
                           extensionFor(segment.toVector.x, segment.toVector.y)));
}

SegmentBvh2D::SegmentBvh2D(const Point* points, std::size_t segments)
    : points_(points), segments_(segments) {
    std::size_t boxes = segments;
    do {
        boxes = (boxes + kFan - 1) / kFan;
        levelStart_[++top_] = count_;
        count_ += (boxes + kBlock - 1) / kBlock * kBlock; // whole blocks
    } while (boxes > kFan);
    sides_.assign(4 * count_, kNan);
    float* const sides = sides_.data();
    onVectorUnit<FirstLevelKernel>(points, segments, sides, count_);
    const std::size_t groups = (segments + kFan - 1) / kFan;
    for (std::size_t k = groups; k % kFan != 0; ++k) {
        setBox({kNan, kNan, kNan, kNan}, sides + k, count_);
    }
    for (std::size_t level = 2; level <= top_; ++level) {
        onVectorUnit<LevelKernel>(static_cast<const float*>(sides) + levelStart_[level - 1],
                                  levelStart_[level] - levelStart_[level - 1],
                                  sides + levelStart_[level], count_);
    }
}

Box2D SegmentBvh2D::box(std::size_t level, std::size_t number) const {
    return boxAt(&sides_[levelStart_[level] + number], count_);
}

unsigned SegmentBvh2D::overlapping(std::size_t level, std::size_t group, const Box2D& box) const {
    const std::size_t first = group * kFan;
    return level == 0
               ? onVectorUnit<SegmentOverlapKernel>(points_ + first, segments_ - first, &box)
               : onVectorUnit<OverlapKernel>(&sides_[levelStart_[level] + first], count_, &box);
}

std::uint64_t SegmentBvh2D::overlappingPairs(std::size_t group, const SegmentBvh2D& other,
                                             std::size_t otherGroup) const {
    const std::size_t first = group * kFan;
    const std::size_t otherFirst = otherGroup * kFan;
    return onVectorUnit<PairsKernel>(points_ + first, segments_ - first, other.points_ + otherFirst,
                                     other.segments_ - otherFirst);
}

} // namespace qel
