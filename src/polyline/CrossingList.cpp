#include "polyline/CrossingList.h"

#include <algorithm>

namespace qel {
namespace {

// A vertex belongs to the edge behind it, so that what meets there is counted once; the end of an
// open path to the last edge.
bool isOwned(const PlanePath& path, std::size_t edge, PathPlace place) {
    return place != PathPlace::vertex(edge + 1) || (edge + 1 == path.edges() && !path.isClosed());
}

bool beginsBefore(const CommonStretch& a, const CommonStretch& b) {
    return a.begin == b.begin ? a.isOpposed < b.isOpposed : a.begin < b.begin;
}

} // namespace

void CrossingList::take(std::size_t edge, std::size_t otherEdge) {
    const EdgeMeeting meeting = meetEdges(path_, edge, other_, otherEdge);
    switch (meeting.kind) {
    case EdgeMeeting::Kind::none:
        return;
    case EdgeMeeting::Kind::point:
        if (isOwned(path_, edge, meeting.begin.on) &&
            isOwned(other_, otherEdge, meeting.begin.onOther)) {
            points_.push_back(meeting.begin);
        }
        return;
    case EdgeMeeting::Kind::overlap:
        stretches_.push_back({meeting.begin, meeting.end, meeting.isOpposed, edge, otherEdge});
        return;
    }
}

void CrossingList::finish() {
    if (!stretches_.empty()) {
        dropPointsOnStretches();
        joinStretches();
    }
}

// What two edges share beside a stretch of a third lies at one of its ends. The closing vertex of
// a closed path has two numbers there, and one among points.
void CrossingList::dropPointsOnStretches() {
    std::vector<CommonPlace> ends;
    ends.reserve(2 * stretches_.size());
    for (const CommonStretch& stretch : stretches_) {
        for (const CommonPlace& end : {stretch.begin, stretch.end}) {
            ends.push_back({path_.nameOf(end.on), other_.nameOf(end.onOther)});
        }
    }
    std::sort(ends.begin(), ends.end());
    const auto isEnd = [&](const CommonPlace& point) {
        return std::binary_search(ends.begin(), ends.end(), point);
    };
    points_.erase(std::remove_if(points_.begin(), points_.end(), isEnd), points_.end());
}

// A stretch has one continuation at most: the next edge of either path is given by the place and
// by whether they are opposed. None leads through a closing vertex, whose numbers differ.
void CrossingList::joinStretches() {
    std::sort(stretches_.begin(), stretches_.end(), beginsBefore);
    const std::size_t none = stretches_.size();
    std::vector<std::size_t> next(stretches_.size(), none);
    std::vector<bool> isContinuation(stretches_.size(), false);
    for (std::size_t i = 0; i < stretches_.size(); ++i) {
        CommonStretch sought = stretches_[i];
        sought.begin = sought.end;
        const auto found =
            std::lower_bound(stretches_.begin(), stretches_.end(), sought, beginsBefore);
        if (found != stretches_.end() && !beginsBefore(sought, *found)) {
            next[i] = static_cast<std::size_t>(found - stretches_.begin());
            isContinuation[next[i]] = true;
        }
    }
    std::vector<CommonStretch> joined;
    for (std::size_t i = 0; i < stretches_.size(); ++i) {
        if (!isContinuation[i]) {
            joined.push_back(stretches_[i]);
            for (std::size_t k = next[i]; k != none; k = next[k]) {
                joined.back().end = stretches_[k].end;
            }
        }
    }
    stretches_ = std::move(joined);
}

} // namespace qel
