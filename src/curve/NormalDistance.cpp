// How far the vertices between two others stray from the chord between those.

#include <qel/ParametricCurve.h>

#include <qel/NumericalUtils.h>

#include "curve/FarthestVertex.h"
#include "curve/RunSegments.h"
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

void ParametricCurve::calculateDistanceFromTwoPoints(int i, int j, double& distance, int& index,
                                                     bool& done) const {
    distance = 0.0;
    index = i;
    done = true;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    const auto first = static_cast<std::size_t>(i);
    const auto second = static_cast<std::size_t>(j);
    if (!(svalues_[first] < svalues_[second])) {
        return;
    }
    index = getClosestToSvaluePoint((svalues_[second] + svalues_[first]) * 0.5);
    if (index == i) {
        index = i + 1;
    }
    if (index == j) {
        index = j - 1;
    }
    const Point middle = (points_[first] + points_[second]) * 0.5;
    distance = (points_[static_cast<std::size_t>(index)] - middle).length();
    done = false;
}

void ParametricCurve::calculateNormalDistanceFromTwoPoints(int i, int j, double& distance,
                                                           int& index, bool& done) const {
    tEdge edge;
    edge.first = i;
    edge.second = j;
    measureChord(edge, nullptr);
    distance = edge.distance;
    index = edge.farthest;
    done = edge.skip;
}

// Fills in the farthest vertex of a chord, its distance and whether there is none. With the runs
// of the curve's points, long chords are much faster.
void ParametricCurve::measureChord(tEdge& edge, const RunSegments* runs) const {
    const int i = edge.first;
    const int j = edge.second;
    edge.skip = true;
    edge.distance = 0.0;
    edge.farthest = i;
    if (haveNoVertexBetween(i, j)) {
        return;
    }
    checkIndex(i, points_.size());
    checkIndex(j, points_.size());
    Chord chord;
    chord.start = points_[static_cast<std::size_t>(i)];
    chord.direction = chord.start - points_[static_cast<std::size_t>(j)];
    chord.length = chord.direction.length();
    chord.tolerance = chordTolerance(chord.length, createdAsDouble_);
    if (chord.tolerance > chord.length) {
        calculateDistanceFromTwoPoints(i, j, edge.distance, edge.farthest, edge.skip);
        return;
    }
    if (i < j) {
        const std::size_t first = static_cast<std::size_t>(i) + 1;
        const auto last = static_cast<std::size_t>(j);
        FarthestVertex farthest{0.0, static_cast<std::size_t>(i)};
        if (runs != nullptr) {
            takeFarthest(points_, *runs, first, last, chord, farthest);
        } else {
            takeFarthest(points_, first, last, chord, farthest);
        }
        edge.distance = farthest.distance;
        edge.farthest = static_cast<int>(farthest.index);
        edge.skip = edge.farthest == i;
    }
}

} // namespace qel
