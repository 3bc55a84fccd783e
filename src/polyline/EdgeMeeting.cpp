#include "polyline/EdgeMeeting.h"

#include <algorithm>

namespace qel {
namespace {

// An edge with its coordinates along an axis.
struct Interval {
    std::size_t edge;
    double first;
    double last;

    double low() const { return std::min(first, last); }
    double high() const { return std::max(first, last); }
    bool isRising() const { return first <= last; }

    PathPlace placeAt(double coordinate) const {
        if (coordinate == first) {
            return PathPlace::vertex(edge);
        }
        return coordinate == last ? PathPlace::vertex(edge + 1) : PathPlace::insideEdge(edge);
    }
};

EdgeMeeting meetOnOneLine(const Interval& edge, const Interval& other) {
    const double low = std::max(edge.low(), other.low());
    const double high = std::min(edge.high(), other.high());
    EdgeMeeting meeting;
    if (low > high) {
        return meeting;
    }
    const CommonPlace atLow = {edge.placeAt(low), other.placeAt(low)};
    const CommonPlace atHigh = {edge.placeAt(high), other.placeAt(high)};
    meeting.kind = low == high ? EdgeMeeting::Kind::point : EdgeMeeting::Kind::overlap;
    meeting.begin = edge.isRising() ? atLow : atHigh;
    meeting.end = edge.isRising() ? atHigh : atLow;
    meeting.isOpposed = edge.isRising() != other.isRising();
    return meeting;
}

// Of an edge whose ends lie on these sides of a line that it meets in one point.
PathPlace placeAcross(std::size_t edge, int sideOfFirst, int sideOfLast) {
    if (sideOfFirst == 0) {
        return PathPlace::vertex(edge);
    }
    return sideOfLast == 0 ? PathPlace::vertex(edge + 1) : PathPlace::insideEdge(edge);
}

} // namespace

EdgeMeeting meetEdges(const PlanePath& path, std::size_t i, const PlanePath& other, std::size_t j) {
    const PlanePoint a = path[i], b = path[i + 1], c = other[j], d = other[j + 1];
    const int sideOfA = sideOf(c, d, a), sideOfB = sideOf(c, d, b);
    EdgeMeeting meeting;
    if (sideOfA * sideOfB > 0) {
        return meeting;
    }
    const int sideOfC = sideOf(a, b, c), sideOfD = sideOf(a, b, d);
    if (sideOfC * sideOfD > 0) {
        return meeting;
    }
    if (sideOfA != 0 || sideOfB != 0 || sideOfC != 0 || sideOfD != 0) {
        meeting.kind = EdgeMeeting::Kind::point;
        meeting.begin =
            meeting.end = {placeAcross(i, sideOfA, sideOfB), placeAcross(j, sideOfC, sideOfD)};
        return meeting;
    }
    if (a == b && c == d) { // two points, which are on one line whatever they are
        meeting.kind = a == c ? EdgeMeeting::Kind::point : EdgeMeeting::Kind::none;
        meeting.begin = meeting.end = {PathPlace::vertex(i), PathPlace::vertex(j)};
        return meeting;
    }
    const bool isUpright = a.x == b.x && c.x == d.x;
    return isUpright ? meetOnOneLine({i, a.y, b.y}, {j, c.y, d.y})
                     : meetOnOneLine({i, a.x, b.x}, {j, c.x, d.x});
}

} // namespace qel
