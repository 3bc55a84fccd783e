// The batch interface over curves: the nearest place on them, crossings, simplification, resampling
// and shape.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <qel/CurveCrossings.h>
#include <qel/CurveLocator.h>
#include <qel/CurveResampling.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "Curves.h"
#include "polyline/PlainLocator.h"

namespace {

using namespace qel_fuzz;

// Refused for what is wrong with it, under a class name of its own.
template <typename Action>
bool isRefused(const Action& action) {
    try {
        action();
    } catch (const qel::data::invalid& error) {
        require(!error.getMessage().empty(), "an error gives a reason");
        return true;
    }
    return false;
}

// Squares of such coordinates neither overflow nor underflow.
Points tamePoints(Input& input) {
    return input.list(2, 60, [&] {
        Point p;
        for (const int c : {0, 1, 2}) {
            const double value = input.moderate<double>();
            p.getRef(c) = std::abs(value) > 1e-60 && std::abs(value) < 1e60 ? value : 0.0;
        }
        return p;
    });
}

void checkLocator(Input& input) {
    const Points curve = tamePoints(input);
    const qel::CurveLocator locator(curve);
    const Values svalues = svaluesOf(curve);
    require(locator.size() + 1 == curve.size(), "an edge joins two vertices");
    const Points probes = tamePoints(input);
    Values s(probes.size());
    require(locator.locate(probes, {{}, s, {}, {}}) == probes.size(), "all probes are answered");
    std::vector<qel::CurveLocation> within;
    for (std::size_t k = 0; k < probes.size(); ++k) {
        const qel::CurveLocation expected = plainLocate(curve, svalues, probes[k]);
        require(samePlace(locator.locate(probes[k]), expected), "the nearest place");
        require(sameBits(s[k], expected.s), "one probe and many are answered alike");
        locator.locateWithin(probes[k], expected.distance, within);
        for (const qel::CurveLocation& place : within) {
            require(place.distance <= expected.distance, "places within a distance");
        }
        require(!within.empty(), "the nearest place is within its own distance");
    }
}

void checkCrossings(Input& input) {
    const Points a = input.triplets<double>(0, 30), b = input.triplets<double>(0, 30);
    isRefused([&] {
        double before = -std::numeric_limits<double>::infinity();
        for (const qel::CurveCrossing& c : qel::findCrossings(a, b)) {
            require(c.sBegin >= before, "crossings are in order");
            require(c.edge >= 0 && static_cast<std::size_t>(c.edge) + 1 < a.size(), "their edges");
            require(c.otherEdge >= 0 && static_cast<std::size_t>(c.otherEdge) + 1 < b.size(),
                    "the others' edges");
            before = c.sBegin;
        }
    });
    const Point p = input.triplet<double>(), q = input.triplet<double>();
    isRefused([&] { qel::findCrossingsWithSegment(a, p, q); });
    isRefused([&] { qel::findCrossingsWithLine(a, p, q); });
    isRefused([&] { qel::findCrossingsWithPlane(a, p, q); });
}

// Of the squared distance of a point from a segment, in two computations of it: machine epsilons of
// the squared distances from the ends.
double squaredRounding(const Points& segment, const Point& q) {
    const Point fromA = q - segment[0], fromB = q - segment[1];
    constexpr double kErrors = 32.0 * std::numeric_limits<double>::epsilon();
    return kErrors * (fromA.dot(fromA) + fromB.dot(fromB)) + std::numeric_limits<double>::min();
}

void checkSimplification(Input& input) {
    const Points curve = tamePoints(input);
    const double tolerance = input.number<double>();
    std::vector<std::size_t> kept;
    const bool refused = isRefused([&] { kept = qel::simplifyToError(curve, tolerance); });
    require(refused == !(tolerance >= 0.0), "a tolerance is not negative");
    if (refused) {
        return;
    }
    require(kept.front() == 0 && kept.back() + 1 == curve.size(), "the ends stay");
    for (std::size_t k = 1; k < kept.size(); ++k) {
        require(kept[k - 1] < kept[k], "vertices are kept in order");
        const Points chord = {curve[kept[k - 1]], curve[kept[k]]};
        for (std::size_t i = kept[k - 1] + 1; i < kept[k]; ++i) {
            const auto place = placeOnEdge(chord, {0.0, 1.0}, 0, curve[i]);
            const double most = tolerance * tolerance + squaredRounding(chord, curve[i]);
            require(squaredDistance(curve[i], place) <= most, "the error is kept to");
        }
    }
    double error = -1.0;
    isRefused([&] {
        const std::size_t count = input.count(0, curve.size() + 1);
        require(qel::simplifyToCount(curve, count, error).size() <= count, "the count is kept to");
        require(error >= 0.0, "the error is said");
    });
}

void checkSampling(Input& input) {
    const Points points = input.triplets<double>(0, 30);
    const Values svalues = input.numbers<double>(0, 12);
    Points sampled(svalues.size()), tangents(svalues.size());
    Values curvature(svalues.size()), angles(svalues.size());
    isRefused([&] {
        qel::resampleCurve(points, svalues, {}, sampled, {});
        const ParametricCurve curve(points, ParametricCurve::dim3D);
        for (std::size_t k = 0; k < svalues.size(); ++k) {
            require(sameBits(sampled[k], curve.getPointAtParameter(svalues[k])),
                    "a sample is the point at its s");
        }
        qel::computeCurveShape(points, svalues, {tangents, curvature, angles});
        for (std::size_t k = 0; k < svalues.size(); ++k) {
            require(!(curvature[k] < 0.0) && !(angles[k] < 0.0), "a curvature is not negative");
        }
    });
    isRefused([&] {
        const int orientation = qel::computeOrientation(points);
        require(orientation >= -1 && orientation <= 1, "an orientation is a sign");
        qel::computeSignedArea(points);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    using Check = void (*)(Input&);
    constexpr Check kChecks[] = {checkLocator, checkCrossings, checkSimplification, checkSampling};
    for (int checks = 0; input.hasMore() && checks < 4; ++checks) {
        kChecks[input.count(0, std::size(kChecks) - 1)](input);
    }
    return 0;
}
