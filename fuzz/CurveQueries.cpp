// What is read from a curve, compared with its definition. s-values that NaN leaves without order
// are read without comparing.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "Curves.h"
#include "Refusals.h"

namespace {

using namespace qel_fuzz;

const char* const kClass = "ParametricCurve";

ParametricCurve curveOf(Input& input) {
    const Points points = input.triplets<double>(2, 60);
    const auto dim = dimension(input);
    if (input.flag()) {
        return ParametricCurve(points, dim);
    }
    Values svalues = svaluesFor(input, points.size());
    ParametricCurve curve;
    if (refuses(kClass, [&] { curve.setPoints(points, svalues, dim); })) {
        std::sort(svalues.begin(), svalues.end()); // decreased, so none is NaN before that
        return hasNaN(svalues) ? ParametricCurve(points, dim)
                               : ParametricCurve(points, svalues, dim);
    }
    return curve;
}

// -- Definitions ----

struct Foot {
    Point point;
    double s;
};

double squaredDistance(const Point& a, const Point& b) {
    return referenceDot(a - b, a - b);
}

Foot footOnEdge(const Points& p, const Values& s, std::size_t i, std::size_t j, const Point& q) {
    using qel::NumericalUtils;
    const double d2i = squaredDistance(p[i], q), d2j = squaredDistance(p[j], q);
    const Point e = p[j] - p[i];
    const double squaredLength = referenceDot(e, e);
    const double tolerance = 100.0 * NumericalUtils::spacing(squaredLength);
    if (!(tolerance < d2j)) {
        return {p[j], s[j]};
    }
    if (!(tolerance < d2i)) {
        return {p[i], s[i]};
    }
    const double a = (d2i - d2j + squaredLength) * 0.5;
    if (squaredLength < 100.0 * NumericalUtils::spacing(a)) {
        return {(p[j] + p[i]) * 0.5, (s[j] + s[i]) * 0.5};
    }
    const double t = a / squaredLength;
    return t > 0.0 ? Foot{p[i] + e * t, s[i] + (s[j] - s[i]) * t} : Foot{p[i], s[i]};
}

std::size_t nearestVertex(const Points& p, const Point& q) {
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < p.size(); ++i) {
        nearest = squaredDistance(p[i], q) < squaredDistance(p[nearest], q) ? i : nearest;
    }
    return nearest;
}

Foot projected(const Points& p, const Values& s, const Point& q) {
    const std::size_t last = p.size() - 1;
    if (last == 1 && p[0] == p[1]) {
        return {p[0], 0.0};
    }
    const std::size_t k = nearestVertex(p, q);
    if (k == 0 || k == last) {
        return footOnEdge(p, s, k, k == 0 ? 1 : last - 1, q);
    }
    const Foot a = footOnEdge(p, s, k, k - 1, q), b = footOnEdge(p, s, k, k + 1, q);
    const double da = referenceLength(q - a.point), db = referenceLength(q - b.point);
    if (da == db) {
        return {p[k], s[k]};
    }
    return db > da ? a : b;
}

void appendPiece(const Points& p, const Values& s, double a, double b, Points& points,
                 Values& svalues) {
    std::size_t lo = 0, hi = 0, lastLo = 0, lastHi = 0;
    const Point first = referenceInterpolated(p, s, a, lo, hi);
    const Point last = referenceInterpolated(p, s, b, lastLo, lastHi);
    if (hi > lastLo || first != p[hi]) {
        points.push_back(first);
        svalues.push_back(a);
    }
    for (std::size_t i = hi; i <= lastLo; ++i) {
        points.push_back(p[i]);
        svalues.push_back(s[i]);
    }
    points.push_back(last);
    svalues.push_back(b);
    if (points.size() >= 3 && points.back() == points[points.size() - 2]) {
        points.pop_back();
        svalues.pop_back();
    }
}

// -- Queries ----

void checkEvaluation(Input& input, const ParametricCurve& curve) {
    const Points& p = curve.getCurve();
    const Values& s = curve.getSvalues();
    const Values at = input.list(0, 12, [&] { return parameter(input, s); });
    const bool keepEnds = input.flag();
    Points points;
    const bool refused = refuses(kClass, [&] { curve.getCurveBySvalues(points, at, keepEnds); });
    require(refused == (at.size() < 2), "two s-values are asked for at least");
    for (std::size_t i = 0; i < at.size() && !hasNaN(s); ++i) {
        const Point expected = referenceAt(p, s, at[i]);
        require(sameBits(curve.getPointAtParameter(at[i]), expected), "the point at s");
        const bool isEnd = keepEnds && (i == 0 || i + 1 == at.size());
        require(refused || sameBits(points[i], !isEnd   ? expected
                                               : i == 0 ? p.front()
                                                        : p.back()),
                "the points at many s");
    }
}

void checkNearestInS(Input& input, const ParametricCurve& curve) {
    const Values& s = curve.getSvalues();
    const double at = parameter(input, s);
    const int nearest = curve.getClosestToSvaluePoint(at);
    const int last = static_cast<int>(s.size()) - 1;
    require(nearest >= 0 && nearest <= last, "the vertex nearest in s is one of the curve's");
    if (hasNaN(s)) {
        return;
    }
    if (!(at > 0.0) || !(at < 1.0)) {
        require(nearest == (at > 0.0 ? last : 0), "s outside 0 to 1 is nearest to an end");
    } else if (s.front() < at && at < s.back()) {
        std::size_t lo = 0, hi = 0;
        referenceBracket(s, at, lo, hi);
        const bool takesLow = std::abs(at - s[lo]) < std::abs(at - s[hi]);
        require(static_cast<std::size_t>(nearest) == (takesLow ? lo : hi),
                "the vertex nearest in s is that of the reference");
    }
}

void checkProjection(Input& input, const ParametricCurve& curve) {
    const Points& p = curve.getCurve();
    const bool isVertex = input.integer(0, 3) == 0;
    const Point q = isVertex ? p[input.count(0, p.size() - 1)] : input.triplet<double>();
    require(static_cast<std::size_t>(curve.getClosestPoint(q)) == nearestVertex(p, q),
            "the nearest vertex is the first at the least distance");
    const Foot expected = projected(p, curve.getSvalues(), q);
    double s = -1.0;
    const Point foot = curve.projectPoint(q, s);
    require(sameBits(foot, expected.point) && sameBits(s, expected.s),
            "the foot is that of the reference");
}

void checkPiece(Input& input, const ParametricCurve& curve) {
    const Values& s = curve.getSvalues();
    const double from = parameter(input, s), to = parameter(input, s);
    Points points, expected;
    Values svalues, expectedSvalues;
    const bool refused = refuses(kClass, [&] { curve.getCurve(from, to, points, svalues); });
    if (hasNaN(s) || std::isnan(from) || std::isnan(to)) {
        return;
    }
    const double a = std::max(s.front(), std::min(from, s.back()));
    const double b = std::max(s.front(), std::min(to, s.back()));
    require(refused == !(a < b), "a piece has a start below its end");
    if (!refused) {
        appendPiece(curve.getCurve(), s, a, b, expected, expectedSvalues);
        require(bool(sameBitsInAll(points, expected)), "the points of the piece");
        require(bool(sameBitsInAll(svalues, expectedSvalues)), "the s-values of the piece");
    }
}

void checkLoops(Input& input, const ParametricCurve& curve) {
    const Points& p = curve.getCurve();
    const std::size_t n = p.size();
    const std::size_t i = input.count(0, n), j = input.count(0, n);
    Points forward, backward, loop, range;
    const bool isPair = i < n && j < n && i != j;
    require(refuses(kClass, [&] { curve.getCurve(i, j, forward, backward); }) != isPair,
            "arcs have two ends");
    require(refuses(kClass, [&] { curve.getCurve(i, loop); }) == (i >= n), "a loop has a start");
    require(refuses(kClass, [&] { curve.getCurve(i, j, range); }) == !(i <= j && j < n),
            "a range has two ends in order");
    for (std::size_t k = 0; k < loop.size(); ++k) {
        require(loop.size() == n + 1 && sameBits(loop[k], p[(i + k) % n]), "the loop");
    }
    for (std::size_t k = 0; k < range.size(); ++k) {
        require(range.size() == j - i + 1 && sameBits(range[k], p[i + k]), "the range");
    }
    if (isPair) {
        require(forward.size() + backward.size() == n + 2, "the arcs share their ends");
        for (std::size_t k = 0; k < n; ++k) {
            const Point& arc = k < forward.size() ? forward[k] : backward[k + 1 - forward.size()];
            require(sameBits(arc, p[(i + k) % n]), "the arcs go round");
        }
    }
}

void checkBounds(const ParametricCurve& curve) {
    const Points& p = curve.getCurve();
    Point low, high;
    curve.getMinMax(low.x, high.x, low.y, high.y, low.z, high.z);
    const std::size_t least[] = {curve.getMinXid(), curve.getMinYid(), curve.getMinZid()};
    const std::size_t most[] = {curve.getMaxXid(), curve.getMaxYid(), curve.getMaxZid()};
    for (int c = 0; c < 3; ++c) {
        std::size_t lowest = 0, highest = 0;
        for (std::size_t i = 1; i < p.size(); ++i) {
            lowest = p[lowest].getRef(c) > p[i].getRef(c) ? i : lowest;
            highest = p[i].getRef(c) > p[highest].getRef(c) ? i : highest;
        }
        require(least[c] == lowest && most[c] == highest, "the extreme points come first");
        require(sameBits(low.getRef(c), p[lowest].getRef(c)) &&
                    sameBits(high.getRef(c), p[highest].getRef(c)),
                "the bounds are those of the extreme points");
    }
}

void checkSampling(Input& input, const ParametricCurve& curve) {
    const int count = input.integer(-1, 40);
    Points points;
    const bool refused = refuses(kClass, [&] { curve.getCurveForEquidistantS(points, count); });
    require(refused == (count < 2), "two points are asked for at least");
    for (std::size_t k = 1; k + 1 < points.size() && !hasNaN(curve.getSvalues()); ++k) {
        const double h = 1.0 / (count - 1);
        require(sameBits(points[k], curve.getPointAtParameter(static_cast<double>(k) * h)),
                "equal steps of s");
    }
    Values svalues, forward, backward;
    if (isCheapOrRefused(stepsBetween(curve.getSvalues(), 1.0) * count)) {
        refuses(kClass, [&] { curve.getCurveWithMinimumS(points, svalues, count); });
    }
    curve.getRatioForward(forward);
    curve.getRatioBackward(backward);
    require(forward.size() == curve.getSize() && backward.size() == curve.getSize(),
            "every point has ratios");
}

void checkShape(Input& input, const ParametricCurve& curve) {
    const auto n = static_cast<int>(curve.getSize());
    const int i = input.integer(0, n - 1), j = input.integer(i, n - 1);
    double distance = -1.0;
    int index = -1;
    bool done = false;
    curve.calculateNormalDistanceFromTwoPoints(i, j, distance, index, done);
    require(index >= 0 && index < n, "the farthest vertex is one of the curve's");
    require(!(distance < 0.0), "a distance is not negative");
    std::pair<double, std::size_t> a, b;
    refuses(kClass, [&] {
        curve.findTwoPointsWithMinAngle(input.count(0, curve.getSize()),
                                        static_cast<std::size_t>(j), a, b);
        require(b.second < a.second && a.second < curve.getSize(), "two corners in order");
    });
    refuses(kClass, [&] {
        const Values at = input.list(0, 8, [&] { return parameter(input, curve.getSvalues()); });
        const double largest = curve.getMaximumNormalDistance(at);
        require(!(largest < 0.0), "a largest distance is not negative");
    });
}

void checkCrossings(Input& input, const ParametricCurve& curve) {
    SilentReporter reporter;
    const qel::Doublet a(input.number<float>(), input.number<float>());
    const qel::Doublet b(input.number<float>(), input.number<float>());
    FloatPoint point(7, 8, 9);
    const bool crosses = curve.intersectWithSegment(qel::LineSegment2D(a, b), point);
    require(crosses ? point.z == 0.0f : point == FloatPoint(7, 8, 9),
            "the point is set where there is a crossing");
    require(reporter.reports == (curve.getDimension() == ParametricCurve::dim2D ? 0 : 1),
            "a curve that is not plane is reported");
    const ParametricCurve other = curveOf(input);
    curve.intersectWithCurve(other, point);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const ParametricCurve curve = curveOf(input);
    using Check = void (*)(Input&, const ParametricCurve&);
    constexpr Check kChecks[] = {checkEvaluation, checkNearestInS, checkProjection, checkPiece,
                                 checkLoops,      checkSampling,   checkShape,      checkCrossings};
    checkBounds(curve);
    for (int queries = 0; input.hasMore() && queries < 20; ++queries) {
        kChecks[input.count(0, std::size(kChecks) - 1)](input, curve);
    }
    return 0;
}
