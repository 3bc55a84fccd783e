// Pieces of curves and samples along them.
#include <memory>

#include "Curves.h"

namespace qel_checksums {
namespace {

// Both forms of one output, of doubles and of floats, each with what it refuses.
template <typename Cut>
void addBoth(Checksum& sum, Cut cut) {
    Points points = {{9.0, 9.0, 9.0}};
    FloatPoints single = {{9.0f, 9.0f, 9.0f}};
    sum.addOutcome([&] { cut(points); });
    sum.add(points);
    sum.addOutcome([&] { cut(single); });
    sum.add(single);
}

void pieces(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const std::vector<double> asked = askedSvalues(curve, random);
    for (std::size_t k = 0; k + 1 < asked.size(); k += 3) {
        std::vector<double> svalues;
        const double from = asked[k], to = asked[k + 1];
        addBoth(sum, [&](auto& points) { curve.getCurve(from, to, points, svalues); });
        sum.add(svalues);
        addBoth(sum, [&](auto& points) { curve.getCurve(from, to, points); });
    }
}

void ends(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (const double s : askedSvalues(curve, random)) {
        Points points;
        std::vector<double> svalues;
        sum.addOutcome([&] { curve.getCurveBegin(s, points, svalues); });
        sum.add(points, svalues);
        sum.addOutcome([&] { curve.getCurveEnd(s, points, svalues); });
        sum.add(points, svalues);
        addBoth(sum, [&](auto& out) { curve.getCurveBegin(s, out); });
        addBoth(sum, [&](auto& out) { curve.getCurveEnd(s, out); });
    }
}

template <typename Output>
void addLoops(Checksum& sum, const ParametricCurve& curve, std::size_t first, std::size_t second) {
    Output forward, backward;
    sum.addOutcome([&] { curve.getCurve(first, second, forward, backward); });
    sum.add(forward, backward);
}

void piecesByIndex(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (int k = 0; k < 10; ++k) {
        const std::size_t first = random.index(curve.getSize() + 1);
        const std::size_t second = random.index(curve.getSize() + 1);
        addLoops<Points>(sum, curve, first, second);
        addLoops<FloatPoints>(sum, curve, first, second);
        addBoth(sum, [&](auto& points) { curve.getCurve(first, points); });
        addBoth(sum, [&](auto& points) { curve.getCurve(first, second, points); });
    }
}

template <typename Output>
void addCleanEnds(Checksum& sum, const ParametricCurve& curve, double from, double to) {
    Output points;
    std::vector<double> svalues;
    for (std::size_t i = 0; i < curve.getSize(); ++i) {
        points.emplace_back(curve.getCurve()[i]);
        // Runs back at both ends.
        const bool inside = i > 2 && i + 3 < curve.getSize();
        svalues.push_back(inside ? curve.getSvalues()[i] : 0.5);
    }
    sum.addOutcome([&] { curve.getCurveCleanEnds(points, svalues, from, to); });
    sum.add(points, svalues);
}

void cleanEnds(const ParametricCurve& curve, Random&, Checksum& sum) {
    addCleanEnds<std::vector<Point>>(sum, curve, 0.0, 1.0);
    addCleanEnds<std::vector<FloatPoint>>(sum, curve, 0.1, 0.8);
    addCleanEnds<std::vector<Point>>(sum, curve, 0.9, 0.1);
}

void equidistant(const ParametricCurve& curve, Random&, Checksum& sum) {
    for (const int count : {1, 2, 3, 50, 777}) {
        addBoth(sum, [&](auto& points) { curve.getCurveForEquidistantS(points, count); });
    }
}

void bySvalues(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const std::vector<double> asked = askedSvalues(curve, random);
    for (const bool keepEnds : {false, true}) {
        for (const std::vector<double>& svalues : {asked, unevenSvalues(333), {0.5}}) {
            addBoth(sum, [&](auto& points) { curve.getCurveBySvalues(points, svalues, keepEnds); });
            std::vector<double> xs = {9.0};
            sum.addOutcome([&] { curve.getCurveXBySvalues(xs, svalues, keepEnds); });
            sum.add(xs);
        }
    }
}

void newCurve(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const std::vector<double> asked = askedSvalues(curve, random);
    for (const bool keepEnds : {false, true}) {
        const std::unique_ptr<ParametricCurve> made(curve.createNewCurveBySvalues(asked, keepEnds));
        addCurve(sum, *made);
    }
    sum.addOutcome([&] { delete curve.createNewCurveBySvalues({0.5}, true); });
}

void minimumS(const ParametricCurve& curve, Random&, Checksum& sum) {
    for (const int count : {-1, 1, 2, 10, 300}) {
        std::vector<double> svalues;
        addBoth(sum, [&](auto& points) { curve.getCurveWithMinimumS(points, svalues, count); });
        sum.add(svalues);
        addBoth(sum, [&](auto& points) { curve.getCurveWithMinimumS(points, count); });
    }
}

void ratios(const ParametricCurve& curve, Random&, Checksum& sum) {
    std::vector<double> values;
    curve.getRatioForward(values);
    sum.add(values);
    curve.getRatioBackward(values);
    sum.add(values);
}

template <typename Sample>
void addSamples(Checksum& sum, Sample sample) {
    Random random(83);
    for (const int count : {-1, 0, 1, 10, 1000}) {
        std::vector<double> values;
        const double from = random.between(-4.0, 4.0), to = random.between(-4.0, 4.0);
        sum.addOutcome([&] { sample(count, from, to, values); });
        sum.add(values);
    }
}

} // namespace

void addCurvePieceOperations(Operations& operations) {
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back(reading("ParametricCurve.getCurve", exact, pieces));
    operations.push_back(reading("ParametricCurve.getCurveBeginEnd", exact, ends));
    operations.push_back(reading("ParametricCurve.getCurveByIndex", exact, piecesByIndex));
    operations.push_back(reading("ParametricCurve.getCurveCleanEnds", exact, cleanEnds));
    operations.push_back(reading("ParametricCurve.getCurveForEquidistantS", exact, equidistant));
    operations.push_back(reading("ParametricCurve.getCurveBySvalues", exact, bySvalues));
    operations.push_back(reading("ParametricCurve.createNewCurveBySvalues", exact, newCurve));
    operations.push_back(reading("ParametricCurve.getCurveWithMinimumS", exact, minimumS));
    operations.push_back(reading("ParametricCurve.getRatio", exact, ratios));
    operations.push_back(
        {"ParametricCurve.getLinearCurveSample", exact, [](Checksum& sum) {
             addSamples(sum, [](int count, double from, double to, std::vector<double>& values) {
                 ParametricCurve().getLinearCurveSample(count, from, to, values);
             });
         }});
    operations.push_back(
        {"ParametricCurve.getCosineCurveSample", Arithmetic::libm, [](Checksum& sum) {
             addSamples(sum, [](int count, double from, double to, std::vector<double>& values) {
                 ParametricCurve().getCosineCurveSample(count, from, to, values);
             });
         }});
}

} // namespace qel_checksums
