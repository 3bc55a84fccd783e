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

// Walks both hierarchies from the top. Each group of boxes of the walked polyline is handed, in
// order, those groups of the other one that it may meet.
class CrossingSearch {
public:
    CrossingSearch(const Points& walked, const Points& others)
        : walked_(walked),
          others_(others),
          walkedBvh_(walked.data(), walked.size() - 1),
          othersBvh_(others.data(), others.size() - 1) {}

    bool find(std::size_t& tried, Doublet& crossing) {
        std::size_t level = othersBvh_.top();
        near_.push_back({0, walkedBvh_.overlapping(walkedBvh_.top(), 0, kWholePlane)});
        std::size_t first = 0;
        for (; level > walkedBvh_.top(); --level) {
            const std::size_t last = near_.size();
            for (; first < last; ++first) {
                expand(near_[first], level, kWholePlane, walkedBvh_.top(), 0);
            }
        }
        const bool isFound = findInGroup(walkedBvh_.top(), 0, level, first, crossing);
        tried = isFound ? segment_ + 1 : walked_.size() - 1;
        return isFound;
    }

private:
    // A group of the other polyline near a group of the walked one.
    struct NearGroup {
        std::size_t group;
        unsigned boxes; // of the walked group, those that it overlaps: bit k for box k
    };

    // The groups near a walked one, of a level that is not above its own, stand in near_ from the
    // first on.
    bool findInGroup(std::size_t level, std::size_t group, std::size_t otherLevel,
                     std::size_t first, Doublet& crossing) {
        const std::size_t last = near_.size();
        unsigned boxes = 0;
        for (std::size_t n = first; n < last; ++n) {
            boxes |= near_[n].boxes;
        }
        for (; boxes != 0; boxes &= boxes - 1) {
            const auto k = static_cast<std::size_t>(lowestBit(boxes));
            const std::size_t number = group * kFan + k;
            bool isFound = false;
            if (level == 0) {
                isFound = meetsNear(number, k, first, crossing);
            } else {
                const Box2D box = walkedBvh_.box(level, number);
                for (std::size_t n = first; n < last; ++n) {
                    if ((near_[n].boxes >> k & 1u) == 0) {
                        continue;
                    }
                    if (otherLevel == level) {
                        expand(near_[n], level, box, level - 1, number);
                    } else {
                        push(near_[n].group, othersBvh_.boxOfGroup(otherLevel, near_[n].group),
                             level - 1, number);
                    }
                }
                const std::size_t innerLevel = otherLevel == level ? level - 1 : otherLevel;
                isFound = findInGroup(level - 1, number, innerLevel, last, crossing);
                near_.resize(last);
            }
            if (isFound) {
                return true;
            }
        }
        return false;
    }

    // Adds the groups in a group of the other polyline, as far as they overlap a box, that are near
    // a walked group.
    void expand(NearGroup near, std::size_t otherLevel, const Box2D& box, std::size_t level,
                std::size_t group) {
        for (unsigned bits = othersBvh_.overlapping(otherLevel, near.group, box); bits != 0;
             bits &= bits - 1) {
            const std::size_t inner = near.group * kFan + static_cast<std::size_t>(lowestBit(bits));
            push(inner, othersBvh_.box(otherLevel, inner), level, group);
        }
    }

    void push(std::size_t otherGroup, const Box2D& otherBox, std::size_t level, std::size_t group) {
        const unsigned boxes = walkedBvh_.overlapping(level, group, otherBox);
        if (boxes != 0) {
            near_.push_back({otherGroup, boxes});
        }
    }

    // Tests a walked segment, number k of its group, with those that its box overlaps.
    bool meetsNear(std::size_t segment, std::size_t k, std::size_t first, Doublet& crossing) {
        const LineSegment2D walked = planeSegment(walked_, segment);
        const Box2D box = boxOf(walked);
        for (std::size_t n = first; n < near_.size(); ++n) {
            if ((near_[n].boxes >> k & 1u) == 0) {
                continue;
            }
            const std::size_t group = near_[n].group;
            for (unsigned bits = othersBvh_.overlapping(0, group, box); bits != 0;
                 bits &= bits - 1) {
                if (meets(others_, group * kFan + static_cast<std::size_t>(lowestBit(bits)), walked,
                          crossing)) {
                    segment_ = segment;
                    return true;
                }
            }
        }
        return false;
    }

    const Points& walked_;
    const Points& others_;
    SegmentBvh2D walkedBvh_;
    SegmentBvh2D othersBvh_;
    std::vector<NearGroup> near_;
    std::size_t segment_ = 0; // of the walked polyline, the one that meets
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
