#ifndef QEL_TESTS_POLYLINE_CROSSINGMATCHERS_H
#define QEL_TESTS_POLYLINE_CROSSINGMATCHERS_H

// What crossings are to be, all of their members.

#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <qel/CurveCrossings.h>

namespace qel_test {

using Point = qel::TripletBase<double>;
using Points = std::vector<Point>;
using Crossings = std::vector<qel::CurveCrossing>;

// s-values that are the indices of the vertices.
inline std::vector<double> indices(std::size_t n) {
    std::vector<double> svalues(n);
    std::iota(svalues.begin(), svalues.end(), 0.0);
    return svalues;
}

inline testing::Matcher<const qel::CurveCrossing&>
pointAt(const Point& p, double s, double otherS, std::int64_t edge, std::int64_t otherEdge) {
    return testing::AllOf(
        testing::Field("kind", &qel::CurveCrossing::kind, qel::CurveCrossing::Kind::point),
        testing::Field("begin", &qel::CurveCrossing::begin, p),
        testing::Field("end", &qel::CurveCrossing::end, p),
        testing::Field("sBegin", &qel::CurveCrossing::sBegin, s),
        testing::Field("sEnd", &qel::CurveCrossing::sEnd, s),
        testing::Field("otherBegin", &qel::CurveCrossing::otherBegin, otherS),
        testing::Field("otherEnd", &qel::CurveCrossing::otherEnd, otherS),
        testing::Field("edge", &qel::CurveCrossing::edge, edge),
        testing::Field("otherEdge", &qel::CurveCrossing::otherEdge, otherEdge));
}

inline testing::Matcher<const qel::CurveCrossing&>
overlap(const Point& begin, const Point& end, std::pair<double, double> s,
        std::pair<double, double> otherS, std::int64_t edge, std::int64_t otherEdge) {
    return testing::AllOf(
        testing::Field("kind", &qel::CurveCrossing::kind, qel::CurveCrossing::Kind::overlap),
        testing::Field("begin", &qel::CurveCrossing::begin, begin),
        testing::Field("end", &qel::CurveCrossing::end, end),
        testing::Field("sBegin", &qel::CurveCrossing::sBegin, s.first),
        testing::Field("sEnd", &qel::CurveCrossing::sEnd, s.second),
        testing::Field("otherBegin", &qel::CurveCrossing::otherBegin, otherS.first),
        testing::Field("otherEnd", &qel::CurveCrossing::otherEnd, otherS.second),
        testing::Field("edge", &qel::CurveCrossing::edge, edge),
        testing::Field("otherEdge", &qel::CurveCrossing::otherEdge, otherEdge));
}

} // namespace qel_test

#endif
