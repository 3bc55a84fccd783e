#include "curve/RunBoxes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "curve/DistanceLanes.h"
#include "platform/LowestBit.h"
#include "platform/VectorDispatch.h"

namespace qel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kRun = RunBoxes::kRun;
constexpr std::size_t kFan = RunBoxes::kFan;
static_assert(kRun <= 64, "a word has a bit for each vertex of a run");

// A box of level l holds the vertices whose index shifted right by this is the box's number.
constexpr std::size_t levelBits(std::size_t level) {
    return RunBoxes::kRunBits + RunBoxes::kFanBits * level;
}

constexpr std::size_t boxesAt(std::size_t level, std::size_t vertexCount) {
    return ((vertexCount - 1) >> levelBits(level)) + 1;
}

// -- Search ----

struct Best {
    double d2;
    std::size_t index;
};

// Boxes still to be looked into. A row for each field, as what was just written is read back at
// once, which is fast for whole words only.
struct Stack {
    static constexpr std::size_t kDepth = RunBoxes::kMaxLevels * kFan;

    double d2[kDepth]; // no vertex inside is nearer
    std::size_t level[kDepth];
    std::size_t number[kDepth];
    std::size_t depth = 0;
};

// True if a vertex at a squared distance of d2 or more, with an index of first or more, may come
// before the best. Without branches: which boxes are near is hard to predict.
QEL_KERNEL bool mayPrecede(double d2, std::size_t first, const Best& best) {
    return (d2 < best.d2) | ((d2 == best.d2) & (first < best.index));
}

QEL_KERNEL void searchRun(const RunBoxes::View& view, std::size_t run, const Point& q, Best& best) {
    // The last run is looked at from kRun vertices before the end; the vertices seen twice, or
    // without need, change nothing.
    const std::size_t first = std::min(run * kRun, view.count - kRun);
    double d2[kRun];
    for (std::size_t i = 0; i < kRun; ++i) {
        const double d = squaredDistance(view.points[first + i], q);
        d2[i] = d < kInfinity ? d : kInfinity; // a NaN is never the least
    }
    const double least = leastOf<kRun>(d2);
    if (mayPrecede(least, first, best)) {
        std::uint64_t nearest = 0; // a bit for each vertex that is
        for (std::size_t i = 0; i < kRun; ++i) {
            nearest |= (d2[i] == least ? std::uint64_t{1} : std::uint64_t{0}) << i;
        }
        const std::size_t index = first + static_cast<std::size_t>(lowestBit(nearest));
        if (mayPrecede(least, index, best)) {
            best = {least, index};
        }
    }
}

QEL_KERNEL double larger(double a, double b) {
    return a > b ? a : b;
}

// Squared distances of q from the eight boxes, in the order of operations of the distances
// themselves. Sides may be infinite but q is not, so no NaN arises.
QEL_KERNEL void squaredGaps(const RunBoxes::Boxes& boxes, const Point& q, double* d2) {
    for (std::size_t i = 0; i < kFan; ++i) {
        const double x = larger(larger(boxes.lo[0][i] - q.x, q.x - boxes.hi[0][i]), 0.0);
        const double y = larger(larger(boxes.lo[1][i] - q.y, q.y - boxes.hi[1][i]), 0.0);
        const double z = larger(larger(boxes.lo[2][i] - q.z, q.z - boxes.hi[2][i]), 0.0);
        d2[i] = x * x + y * y + z * z;
    }
}

QEL_KERNEL void swapWithTop(Stack& stack, std::size_t place) {
    const std::size_t top = stack.depth - 1;
    std::swap(stack.d2[place], stack.d2[top]);
    std::swap(stack.number[place], stack.number[top]);
}

// Puts the boxes inside a box that may matter on the stack, the nearest on top. Without branches
// up to there, as it is hard to predict which they are. Boxes that are not there are infinitely
// far away and never matter: the best is nearer, or it is vertex 0.
QEL_KERNEL void pushInner(const RunBoxes::Boxes& boxes, std::size_t level, std::size_t number,
                          const Point& q, const Best& best, Stack& stack) {
    double d2[kFan];
    squaredGaps(boxes, q, d2);
    const bool atBest = (number << levelBits(level)) < best.index;
    std::size_t matters[kFan];
    for (std::size_t i = 0; i < kFan; ++i) {
        matters[i] = (d2[i] < best.d2) | (atBest & (d2[i] == best.d2)) ? 1 : 0;
    }
    const std::size_t bottom = stack.depth;
    for (std::size_t i = 0; i < kFan; ++i) {
        stack.d2[stack.depth] = d2[i];
        stack.level[stack.depth] = level - 1;
        stack.number[stack.depth] = number * kFan + i;
        stack.depth += matters[i];
    }
    for (std::size_t i = bottom; i + 1 < stack.depth; ++i) {
        if (stack.d2[i] < stack.d2[stack.depth - 1]) {
            swapWithTop(stack, i);
        }
    }
}

QEL_KERNEL std::size_t search(const RunBoxes::View& view, const Point& q, std::size_t guess) {
    Best best{(view.points[0] - q).dot(view.points[0] - q), 0};
    // Nothing is less than a first distance of NaN, and a q that is not finite has no distance
    // less than infinity.
    if (std::isnan(best.d2) || !std::isfinite(q.x) || !std::isfinite(q.y) || !std::isfinite(q.z)) {
        return 0;
    }
    const std::size_t guessed = guess / kRun;
    searchRun(view, guessed, q, best);
    Stack stack;
    std::size_t level = view.top;
    std::size_t number = 0;
    for (;;) {
        if (level > 0) {
            pushInner(view.boxes[view.levelStart[level] + number], level, number, q, best, stack);
        } else if (number != guessed) {
            searchRun(view, number, q, best);
        }
        do {
            if (stack.depth == 0) {
                return best.index;
            }
            --stack.depth;
            level = stack.level[stack.depth];
            number = stack.number[stack.depth];
        } while (!mayPrecede(stack.d2[stack.depth], number << levelBits(level), best));
    }
}

struct SearchKernel {
    QEL_KERNEL static std::size_t run(RunBoxes::View view, Point q, std::size_t guess) {
        return search(view, q, guess);
    }
};

} // namespace

// -- Building ----

RunBoxes::Boxes::Boxes() {
    for (std::size_t component = 0; component < 3; ++component) {
        std::fill_n(lo[component], kFan, kInfinity);
        std::fill_n(hi[component], kFan, -kInfinity);
    }
}

RunBoxes::RunBoxes(const Points& points) : points_(points) {
    std::size_t boxCount = 0;
    while (boxesAt(top_, points.size()) > 1 || top_ == 0) {
        levelStart_[++top_] = boxCount;
        boxCount += boxesAt(top_, points.size());
    }
    boxes_.resize(boxCount);
    buildRuns();
    for (std::size_t level = 2; level <= top_; ++level) {
        buildLevel(level);
    }
}

// Boxes of the runs. A NaN belongs to no box: it is never the nearest.
void RunBoxes::buildRuns() {
    for (std::size_t run = 0; run * kRun < points_.size(); ++run) {
        Point low(kInfinity, kInfinity, kInfinity);
        Point high(-kInfinity, -kInfinity, -kInfinity);
        const std::size_t end = std::min((run + 1) * kRun, points_.size());
        for (const Point* p = &points_[run * kRun]; p != points_.data() + end; ++p) {
            low = {p->x < low.x ? p->x : low.x, p->y < low.y ? p->y : low.y,
                   p->z < low.z ? p->z : low.z};
            high = {p->x > high.x ? p->x : high.x, p->y > high.y ? p->y : high.y,
                    p->z > high.z ? p->z : high.z};
        }
        Boxes& boxes = boxes_[run / kFan];
        const std::size_t i = run % kFan;
        boxes.lo[0][i] = low.x;
        boxes.lo[1][i] = low.y;
        boxes.lo[2][i] = low.z;
        boxes.hi[0][i] = high.x;
        boxes.hi[1][i] = high.y;
        boxes.hi[2][i] = high.z;
    }
}

// Boxes of level - 1, gathered from the boxes inside them.
void RunBoxes::buildLevel(std::size_t level) {
    for (std::size_t number = 0; number < boxesAt(level - 1, points_.size()); ++number) {
        const Boxes& inner = boxes_[levelStart_[level - 1] + number];
        Boxes& outer = boxes_[levelStart_[level] + number / kFan];
        for (std::size_t component = 0; component < 3; ++component) {
            outer.lo[component][number % kFan] =
                *std::min_element(inner.lo[component], inner.lo[component] + kFan);
            outer.hi[component][number % kFan] =
                *std::max_element(inner.hi[component], inner.hi[component] + kFan);
        }
    }
}

std::size_t RunBoxes::nearestVertex(const Point& q, std::size_t guess) const {
    const View view{points_.data(), points_.size(), boxes_.data(), levelStart_.data(), top_};
    return onVectorUnit<SearchKernel>(view, q, guess);
}

} // namespace qel
