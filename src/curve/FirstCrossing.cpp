// The first crossing of two polylines.
//
// The pairs of segments are tried in the order of the reference implementation, less those whose
// boxes lie apart and which therefore cannot meet (SegmentBvh2D.h says why, and what becomes of
// segments for which that does not hold). So the first pair that meets is the same one.

#include "curve/FirstCrossing.h"

#include <algorithm>
#include <vector>

#include "curve/SegmentBvh2D.h"
#include "platform/LowestBit.h"

namespace qel {
namespace {

constexpr std::size_t kFewPairs = 32;           // not worth boxes
constexpr std::size_t kSegmentsTogether = 1024; // in one hierarchy, of those to meet one segment
constexpr std::size_t kFan = SegmentBvh2D::kFan;

bool meets(const Points& points, std::size_t i, const LineSegment2D& other, Doublet& crossing) {
    const LineSegment2D segment = planeSegment(points, i);
    double t = 0.0;
    if (!segment.intersectWithLimits(other, t)) {
        return false;
    }
    crossing = segment.getPointAt(t);
    return true;
}

bool meetsAny(const Points& points, const LineSegment2D& other, Doublet& crossing) {
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        if (meets(points, i, other, crossing)) {
            return true;
        }
    }
    return false;
}

// Calls test(i) for the segments that overlap a box, in order, until it returns true.
template <typename Test>
bool anyOverlapping(const SegmentBvh2D& bvh, std::size_t level, std::size_t group, const Box2D& box,
                    const Test& test) {
    for (unsigned bits = bvh.overlapping(level, group, box); bits != 0; bits &= bits - 1) {
        const std::size_t number = group * kFan + static_cast<std::size_t>(lowestBit(bits));
        if (level == 0 ? test(number) : anyOverlapping(bvh, level - 1, number, box, test)) {
            return true;
        }
    }
    return false;
}

// Walks down the hierarchy of one polyline, in order. To each box it takes along, in order, groups
// of the other polyline: those with a box that overlaps this one.
class CrossingSearch {
public:
    CrossingSearch(const Points& walked, const Points& others)
        : walked_(walked),
          others_(others),
          walkedBvh_(walked.data(), walked.size() - 1),
          othersBvh_(others.data(), others.size() - 1) {}

    bool find(std::size_t& tried, Doublet& crossing) {
        std::size_t otherLevel = othersBvh_.top();
        std::size_t first = 0;
        for (; otherLevel > walkedBvh_.top(); --otherLevel) {
            const std::size_t last = near_.size();
            takeAlong(kWholePlane, otherLevel, true, first, last);
            first = last;
        }
        const bool isFound = findInGroup(walkedBvh_.top(), 0, otherLevel, first, crossing);
        tried = isFound ? segment_ + 1 : walked_.size() - 1;
        return isFound;
    }

private:
    // The groups near that of the walked polyline, of a level that is not above its own, stand in
    // near_ from the first on.
    bool findInGroup(std::size_t level, std::size_t group, std::size_t otherLevel,
                     std::size_t first, Doublet& crossing) {
        const std::size_t last = near_.size();
        const bool goesDown = otherLevel == level;
        bool isFound = false;
        for (unsigned bits = walkedBvh_.overlapping(level, group, kWholePlane);
             bits != 0 && !isFound; bits &= bits - 1) {
            const std::size_t number = group * kFan + static_cast<std::size_t>(lowestBit(bits));
            takeAlong(walkedBvh_.box(level, number), otherLevel, goesDown, first, last);
            if (near_.size() > last) {
                const std::size_t inner = goesDown ? otherLevel - 1 : otherLevel;
                isFound = level == 1 ? meetsNear(number, last, crossing)
                                     : findInGroup(level - 1, number, inner, last, crossing);
            }
            near_.resize(last);
        }
        return isFound;
    }

    // Appends those of some groups that overlap a box; or, to go down, their boxes that do: these
    // are the groups of the level below.
    void takeAlong(const Box2D& box, std::size_t otherLevel, bool goesDown, std::size_t first,
                   std::size_t last) {
        for (std::size_t n = first; n < last; ++n) {
            const std::size_t group = near_[n];
            unsigned bits = othersBvh_.overlapping(otherLevel, group, box);
            if (bits != 0 && !goesDown) {
                near_.push_back(group);
                continue;
            }
            for (; bits != 0; bits &= bits - 1) {
                near_.push_back(group * kFan + static_cast<std::size_t>(lowestBit(bits)));
            }
        }
    }

    // Tests the segments of a group, in order, with those near that their boxes overlap.
    bool meetsNear(std::size_t group, std::size_t first, Doublet& crossing) {
        pairs_.clear();
        for (std::size_t n = first; n < near_.size(); ++n) {
            pairs_.push_back(walkedBvh_.overlappingPairs(group, othersBvh_, near_[n]));
        }
        for (std::size_t i = 0; i < kFan; ++i) {
            segment_ = group * kFan + i;
            for (std::size_t n = 0; n < pairs_.size(); ++n) {
                for (std::uint64_t bits = pairs_[n] >> i * kFan & kGroupBits; bits != 0;
                     bits &= bits - 1) {
                    const std::size_t other =
                        near_[first + n] * kFan + static_cast<std::size_t>(lowestBit(bits));
                    if (meets(others_, other, planeSegment(walked_, segment_), crossing)) {
                        return true;
                    }
                }
            }
        }
        return false;
    }

    static constexpr std::uint64_t kGroupBits = (1U << kFan) - 1;

    const Points& walked_;
    const Points& others_;
    SegmentBvh2D walkedBvh_;
    SegmentBvh2D othersBvh_;
    std::vector<std::size_t> near_{0}; // the top group, at first
    std::vector<std::uint64_t> pairs_; // of a group of segments and each of those near
    std::size_t segment_ = 0;          // of the walked polyline, tested last
};

} // namespace

bool findFirstCrossing(const Points& points, const LineSegment2D& other, Doublet& crossing) {
    if (points.size() <= kFewPairs) {
        return meetsAny(points, other, crossing);
    }
    const Box2D box = boxOf(other);
    for (std::size_t first = 0; first + 1 < points.size(); first += kSegmentsTogether) {
        const SegmentBvh2D bvh(&points[first],
                               std::min(kSegmentsTogether, points.size() - 1 - first));
        const bool isFound = anyOverlapping(bvh, bvh.top(), 0, box, [&](std::size_t i) {
            return meets(points, first + i, other, crossing);
        });
        if (isFound) {
            return true;
        }
    }
    return false;
}

bool findFirstCrossingByPairs(const Points& walked, const Points& others, std::size_t& tried,
                              Doublet& crossing) {
    for (tried = 1; tried < walked.size(); ++tried) {
        if (meetsAny(others, planeSegment(walked, tried - 1), crossing)) {
            return true;
        }
    }
    tried = walked.empty() ? 0 : walked.size() - 1;
    return false;
}

bool findFirstCrossing(const Points& walked, const Points& others, std::size_t& tried,
                       Doublet& crossing) {
    if (walked.size() < 2 || others.size() < 2 || walked.size() <= kFewPairs / others.size()) {
        return findFirstCrossingByPairs(walked, others, tried, crossing);
    }
    return CrossingSearch(walked, others).find(tried, crossing);
}

} // namespace qel
