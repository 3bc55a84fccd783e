// How far the vertices between two others lie from the chord between those.

#include "curve/NormalDistance.h"

#include <qel/NumericalUtils.h>

#include "curve/DeviationBounds.h"
#include "curve/FarthestVertex.h"
#include "foundation/MessageTokens.h"

namespace qel {
namespace {

constexpr double kChordFactor = 1000.0; // spacings of the chord's length

bool haveNoVertexBetween(int i, int j) {
    return i == j || static_cast<long long>(j) - i == 1;
}

void checkIndex(int index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count) {
        SystemMsg message("Requested index out of bounds =%1");
        throw internal::error("ParametricCurve", "calculateNormalDistanceFromTwoPoints",
                              message % index, argumentError);
    }
}

double chordTolerance(double length, bool createdAsDouble) {
    const double spacing =
        createdAsDouble ? NumericalUtils::spacing(length)
                        : static_cast<double>(NumericalUtils::spacing(static_cast<float>(length)));
    return kChordFactor * spacing;
}

} // namespace

void measureChordOfNoLength(const ParametricCurve& curve, ParametricCurve::tEdge& edge) {
    const int i = edge.first;
    const int j = edge.second;
    edge.distance = 0.0;
    edge.farthest = i;
    edge.skip = true;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    const Points& points = curve.getCurve();
    const std::vector<double>& svalues = curve.getSvalues();
    const auto first = static_cast<std::size_t>(i);
    const auto second = static_cast<std::size_t>(j);
    if (!(svalues[first] < svalues[second])) {
        return;
    }
    int index = curve.getClosestToSvaluePoint((svalues[second] + svalues[first]) * 0.5);
    if (index == i) {
        index = i + 1;
    }
    if (index == j) {
        index = j - 1;
    }
    const Point middle = (points[first] + points[second]) * 0.5;
    edge.distance = (points[static_cast<std::size_t>(index)] - middle).length();
    edge.farthest = index;
    edge.skip = false;
}

void measureChord(const ParametricCurve& curve, const DeviationBounds* bounds,
                  ParametricCurve::tEdge& edge) {
    const int i = edge.first;
    const int j = edge.second;
    edge.skip = true;
    edge.distance = 0.0;
    edge.farthest = i;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    const Points& points = curve.getCurve();
    checkIndex(i, points.size());
    checkIndex(j, points.size());
    Chord chord;
    chord.start = points[static_cast<std::size_t>(i)];
    chord.direction = chord.start - points[static_cast<std::size_t>(j)];
    chord.length = chord.direction.length();
    chord.tolerance = chordTolerance(chord.length, curve.isCurveCreatedAsDouble());
    if (chord.tolerance > chord.length) {
        measureChordOfNoLength(curve, edge);
        return;
    }
    if (i < j) {
        const std::size_t first = static_cast<std::size_t>(i) + 1;
        const auto last = static_cast<std::size_t>(j);
        FarthestVertex farthest{0.0, static_cast<std::size_t>(i)};
        if (bounds != nullptr) {
            takeFarthest(points, *bounds, first, last, chord, farthest);
        } else {
            takeFarthest(points, first, last, chord, farthest);
        }
        edge.distance = farthest.distance;
        edge.farthest = static_cast<int>(farthest.index);
        edge.skip = edge.farthest == i;
    }
}

void ParametricCurve::calculateNormalDistanceFromTwoPoints(int i, int j, double& distance,
                                                           int& index, bool& done) const {
    tEdge edge;
    edge.first = i;
    edge.second = j;
    measureChord(*this, nullptr, edge);
    distance = edge.distance;
    index = edge.farthest;
    done = edge.skip;
}

} // namespace qel
