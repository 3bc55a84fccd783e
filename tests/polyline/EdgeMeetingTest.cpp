// What two edges have in common. The crossings of whole curves, which stand on it, are in
// CurveCrossingsTest.cpp.

#include <vector>

#include "polyline/EdgeMeeting.h"

#include <gtest/gtest.h>

namespace {

using qel::EdgeMeeting;
using qel::PathPlace;
using qel::PlanePath;
using Point = qel::TripletBase<double>;

PlanePath edge(const Point& from, const Point& to) {
    const std::vector<Point> points{from, to};
    return PlanePath(qel::CurveView(points), 1.0);
}

EdgeMeeting::Kind kindOf(const PlanePath& a, const PlanePath& b) {
    return meetEdges(a, 0, b, 0).kind;
}

TEST(EdgeMeeting, OfOneLineButApartIsNone) {
    const PlanePath first = edge({0, 0, 0}, {1, 2, 0});
    EXPECT_EQ(kindOf(first, edge({2, 4, 0}, {3, 6, 0})), EdgeMeeting::Kind::none);
    EXPECT_EQ(kindOf(first, edge({-1, -2, 0}, {-2, -4, 0})), EdgeMeeting::Kind::none);
}

TEST(EdgeMeeting, OfOneLineWithOneCommonEndIsThatVertex) {
    const EdgeMeeting meeting =
        meetEdges(edge({0, 0, 0}, {1, 2, 0}), 0, edge({2, 4, 0}, {1, 2, 0}), 0);
    EXPECT_EQ(meeting.kind, EdgeMeeting::Kind::point);
    EXPECT_EQ(meeting.begin.on, PathPlace::vertex(1));
    EXPECT_EQ(meeting.begin.onOther, PathPlace::vertex(1));
}

TEST(EdgeMeeting, OfOneLineInOppositeDirectionsIsTheirCommonPart) {
    const EdgeMeeting meeting =
        meetEdges(edge({0, 0, 0}, {2, 4, 0}), 0, edge({3, 6, 0}, {1, 2, 0}), 0);
    EXPECT_EQ(meeting.kind, EdgeMeeting::Kind::overlap);
    EXPECT_TRUE(meeting.isOpposed);
    EXPECT_EQ(meeting.begin.on, PathPlace::insideEdge(0));
    EXPECT_EQ(meeting.begin.onOther, PathPlace::vertex(1));
    EXPECT_EQ(meeting.end.on, PathPlace::vertex(1));
    EXPECT_EQ(meeting.end.onOther, PathPlace::insideEdge(0));
}

TEST(EdgeMeeting, OfParallelEdgesIsNone) {
    EXPECT_EQ(kindOf(edge({0, 0, 0}, {1, 2, 0}), edge({0, 1, 0}, {1, 3, 0})),
              EdgeMeeting::Kind::none);
}

TEST(EdgeMeeting, OfEdgesAcrossEachOtherIsInsideBoth) {
    const EdgeMeeting meeting =
        meetEdges(edge({0, 0, 0}, {2, 2, 0}), 0, edge({0, 2, 0}, {2, 0, 0}), 0);
    EXPECT_EQ(meeting.kind, EdgeMeeting::Kind::point);
    EXPECT_EQ(meeting.begin.on, PathPlace::insideEdge(0));
    EXPECT_EQ(meeting.begin.onOther, PathPlace::insideEdge(0));
}

} // namespace
