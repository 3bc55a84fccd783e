// The first crossing of two polylines, by boxes around runs of consecutive segments.
//
// The pairs of segments are tried in the order of the plain double loop, less those whose boxes
// lie apart and which therefore cannot meet (PlaneBoxes.h says why, and what becomes of segments
// for which that does not hold). So the first pair that meets is the same one.

#include "curve/FirstCrossing.h"

#include <algorithm>

#include "curve/PlaneBoxes.h"

namespace qel {
namespace {

constexpr std::size_t kFewPairs = 32;       // not worth boxes
constexpr std::size_t kChunk = kRun * kRun; // segments walked together

// Boxes around the runs of a polyline's segments, around kRun of those, and so on up to one.
class BoxTree {
public:
    explicit BoxTree(const Points& points) {
        runs_.take(points.data(), points.size() - 1);
        const std::vector<PlaneBox>* below = &runs_.getBoxes();
        std::size_t levels = 0;
        for (std::size_t count = below->size(); count > 1; count = runsOf(count)) {
            ++levels;
        }
        upper_.reserve(levels);
        while (below->size() > 1) {
            upper_.push_back(joined(*below));
            below = &upper_.back();
        }
    }

    const PlaneRuns& getRuns() const { return runs_; }

    /// Appends the runs whose boxes overlap a box, in order.
    void collect(const PlaneBox& box, std::vector<std::size_t>& runs) const {
        collect(box, upper_.size(), 0, 1, runs);
    }

private:
    static std::vector<PlaneBox> joined(const std::vector<PlaneBox>& boxes) {
        std::vector<PlaneBox> around;
        around.reserve(runsOf(boxes.size()));
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            if (i % kRun == 0) {
                around.push_back(boxes[i]);
            } else {
                around.back().add(boxes[i]);
            }
        }
        return around;
    }

    // Among the boxes first to last - 1 of a level; level 0 is that of the runs.
    void collect(const PlaneBox& box, std::size_t level, std::size_t first, std::size_t last,
                 std::vector<std::size_t>& runs) const {
        const std::vector<PlaneBox>& boxes = level == 0 ? runs_.getBoxes() : upper_[level - 1];
        last = std::min(last, boxes.size());
        for (std::size_t n = first; n < last; ++n) {
            if (!boxes[n].overlaps(box)) {
                continue;
            }
            if (level == 0) {
                runs.push_back(n);
            } else {
                collect(box, level - 1, n * kRun, (n + 1) * kRun, runs);
            }
        }
    }

    PlaneRuns runs_;
    std::vector<std::vector<PlaneBox>> upper_;
};

// The lowest bit's number; bits is not 0.
std::size_t lowestBit(unsigned bits) {
    std::size_t k = 0;
    while ((bits & 1u) == 0) {
        bits >>= 1;
        ++k;
    }
    return k;
}

// Tests the segments of a run whose boxes overlap the other segment's, in order.
bool meetsInRun(const Points& points, const PlaneRuns& runs, std::size_t offset, std::size_t run,
                const LineSegment2D& other, const PlaneBox& box, Doublet& crossing) {
    for (unsigned bits = runs.overlapping(run, box); bits != 0; bits &= bits - 1) {
        const std::size_t segment = run * kRun + lowestBit(bits);
        if (segment < runs.getSegments() &&
            meetsAmong(points, offset + segment + 1, offset + segment + 1, other, crossing)) {
            return true;
        }
    }
    return false;
}

// Walks a polyline in chunks of kRun runs; of the other one, only what lies near a chunk, then
// near a run, then near a segment is looked at.
class CrossingSearch {
public:
    CrossingSearch(const Points& walked, const Points& others)
        : walked_(walked), others_(others), tree_(others) {}

    bool find(std::size_t& tried, Doublet& crossing) {
        const std::size_t count = walked_.size() - 1;
        for (std::size_t first = 0; first < count; first += kChunk) {
            chunk_.take(walked_.data() + first, std::min(kChunk, count - first));
            std::size_t segment = 0;
            if (findInChunk(first, segment, crossing)) {
                tried = first + segment + 1;
                return true;
            }
        }
        tried = count;
        return false;
    }

private:
    struct NearRun {
        std::size_t run;
        unsigned segments; // of the run walked, those that overlap it: bit k for segment k
    };

    bool findInChunk(std::size_t first, std::size_t& segment, Doublet& crossing) {
        const std::vector<PlaneBox>& boxes = chunk_.getBoxes();
        PlaneBox around = boxes[0];
        for (const PlaneBox& box : boxes) {
            around.add(box);
        }
        nearChunk_.clear();
        tree_.collect(around, nearChunk_);
        if (nearChunk_.empty()) {
            return false;
        }
        for (std::size_t run = 0; run < boxes.size(); ++run) {
            if (findInRun(first, run, segment, crossing)) {
                return true;
            }
        }
        return false;
    }

    bool findInRun(std::size_t first, std::size_t run, std::size_t& segment, Doublet& crossing) {
        nearRun_.clear();
        unsigned anyNear = 0;
        for (const std::size_t other : nearChunk_) {
            const PlaneBox& box = tree_.getRuns().getBoxes()[other];
            if (box.overlaps(chunk_.getBoxes()[run])) {
                nearRun_.push_back({other, chunk_.overlapping(run, box)});
                anyNear |= nearRun_.back().segments;
            }
        }
        for (; anyNear != 0; anyNear &= anyNear - 1) {
            const std::size_t k = lowestBit(anyNear);
            segment = run * kRun + k;
            if (segment < chunk_.getSegments() && meetsNearRuns(first, segment, k, crossing)) {
                return true;
            }
        }
        return false;
    }

    bool meetsNearRuns(std::size_t first, std::size_t segment, std::size_t bit,
                       Doublet& crossing) const {
        const PlaneBox box = chunk_.boxOf(segment);
        const LineSegment2D walked = planeSegment(walked_, first + segment + 1);
        for (const NearRun& near : nearRun_) {
            if ((near.segments >> bit & 1u) != 0 &&
                meetsInRun(others_, tree_.getRuns(), 0, near.run, walked, box, crossing)) {
                return true;
            }
        }
        return false;
    }

    const Points& walked_;
    const Points& others_;
    BoxTree tree_;
    PlaneRuns chunk_;
    std::vector<std::size_t> nearChunk_;
    std::vector<NearRun> nearRun_;
};

} // namespace

LineSegment2D planeSegment(const Points& points, std::size_t i) {
    const auto inPlane = [](const Point& p) {
        return Doublet(static_cast<float>(p.x), static_cast<float>(p.y));
    };
    return {inPlane(points[i - 1]), inPlane(points[i])};
}

bool meetsAmong(const Points& points, std::size_t first, std::size_t last,
                const LineSegment2D& other, Doublet& crossing) {
    for (std::size_t i = first; i <= last; ++i) {
        const LineSegment2D segment = planeSegment(points, i);
        double t = 0.0;
        if (segment.intersectWithLimits(other, t)) {
            crossing = segment.getPointAt(t);
            return true;
        }
    }
    return false;
}

bool findFirstCrossing(const Points& points, const LineSegment2D& other, Doublet& crossing) {
    const std::size_t count = points.size() < 2 ? 0 : points.size() - 1;
    if (count <= kFewPairs) {
        return meetsAmong(points, 1, count, other, crossing);
    }
    const PlaneBox box = boxOfSegment(other);
    PlaneRuns chunk;
    for (std::size_t first = 0; first < count; first += kChunk) {
        chunk.take(points.data() + first, std::min(kChunk, count - first));
        for (std::size_t run = 0; run < chunk.getBoxes().size(); ++run) {
            if (chunk.getBoxes()[run].overlaps(box) &&
                meetsInRun(points, chunk, first, run, other, box, crossing)) {
                return true;
            }
        }
    }
    return false;
}

bool findFirstCrossingPlainly(const Points& walked, const Points& others, std::size_t& tried,
                              Doublet& crossing) {
    for (tried = 1; tried < walked.size(); ++tried) {
        const LineSegment2D segment = planeSegment(walked, tried);
        if (others.size() > 1 && meetsAmong(others, 1, others.size() - 1, segment, crossing)) {
            return true;
        }
    }
    tried = walked.empty() ? 0 : walked.size() - 1;
    return false;
}

bool findFirstCrossing(const Points& walked, const Points& others, std::size_t& tried,
                       Doublet& crossing) {
    if (walked.size() < 2 || others.size() < 2 || walked.size() <= kFewPairs / others.size()) {
        return findFirstCrossingPlainly(walked, others, tried, crossing);
    }
    return CrossingSearch(walked, others).find(tried, crossing);
}

} // namespace qel
