// Evaluation at s, projection, distances from chords.
#include "Curves.h"

namespace qel_checksums {
namespace {

void evaluation(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (const double s : askedSvalues(curve, random)) {
        sum.add(curve.getPointAtParameter(s));
    }
}

void closestToSvalue(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (const double s : askedSvalues(curve, random)) {
        sum.add(curve.getClosestToSvaluePoint(s));
    }
}

void projection(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (const Point& probe : probes(curve, random)) {
        double s = -7.0, sOfFloat = -7.0;
        float single = -7.0f;
        const FloatPoint narrow(probe);
        sum.add(curve.projectPoint(probe, s), s, curve.projectPoint(probe));
        sum.add(curve.projectPoint(narrow, single), single);
        sum.add(curve.projectPoint(narrow, sOfFloat), sOfFloat, curve.projectPoint(narrow));
    }
}

void closestPoint(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (const Point& probe : probes(curve, random)) {
        sum.add(curve.getClosestPoint(probe), curve.getClosestPoint(FloatPoint(probe)));
    }
}

void svaluesOfOthers(const ParametricCurve& curve, Random& random, Checksum& sum) {
    std::vector<double> svalues;
    const Points others = probes(curve, random);
    curve.getSvalues(others, svalues, false);
    sum.add(svalues);
    curve.getSvalues(others, svalues, true);
    sum.add(svalues);
    sum.addOutcome([&] { curve.getSvalues(Points(1), svalues, true); });
    sum.add(svalues);
}

void normalDistance(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const int n = static_cast<int>(curve.getSize());
    for (int k = 0; k < 40; ++k) {
        const int i = static_cast<int>(random.index(curve.getSize() - 1));
        const int j = i + 1 + static_cast<int>(random.index(static_cast<std::size_t>(n - 1 - i)));
        double distance = -7.0;
        int index = -7;
        bool done = false;
        sum.addOutcome(
            [&] { curve.calculateNormalDistanceFromTwoPoints(i, j, distance, index, done); });
        sum.add(distance, index, done);
    }
}

} // namespace

void addCurveQueryOperations(Operations& operations) {
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back(reading("ParametricCurve.getPointAtParameter", exact, evaluation));
    operations.push_back(
        reading("ParametricCurve.getClosestToSvaluePoint", exact, closestToSvalue));
    operations.push_back(reading("ParametricCurve.projectPoint", exact, projection));
    operations.push_back(reading("ParametricCurve.getClosestPoint", exact, closestPoint));
    operations.push_back(reading("ParametricCurve.getSvaluesOfPoints", exact, svaluesOfOthers));
    operations.push_back(
        reading("ParametricCurve.calculateNormalDistanceFromTwoPoints", exact, normalDistance));
}

} // namespace qel_checksums
