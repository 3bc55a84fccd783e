// Operations that change a curve: resampling, cleaning, extrapolation, conversion about an axis.
#include <cmath>

#include "Curves.h"

namespace qel_checksums {
namespace {

using Curve = ParametricCurve;
constexpr Arithmetic kExact = Arithmetic::exact;
constexpr Arithmetic kLibm = Arithmetic::libm;

// -- Inserting points ----

// About forty parts over the rise of the curve.
double riseStep(const Curve& curve) {
    double low = 0.0, high = 0.0;
    curve.getMinMaxY(low, high);
    const double step = (high - low) / 40.0;
    return step > 0.0 && std::isfinite(step) ? step : 1.0;
}

bool isFinite(const Curve& curve) {
    for (const Point& p : curve.getCurve()) {
        if (!std::isfinite(p.y) || std::fabs(p.y) > 1e300) {
            return false;
        }
    }
    return true;
}

void cosineSpreads(Curve& curve, Random& random, Checksum& sum) {
    std::vector<std::pair<double, double>> spreads;
    for (std::size_t i = 0; i + 1 < curve.getSize(); ++i) {
        const double share = random.between(0.0, 0.5);
        spreads.emplace_back(share, random.between(0.0, 0.4));
    }
    curve.tesselateXCurvebyCosine(4, spreads);
    addCurve(sum, curve);
    curve.tesselateXCurvebyCosine(4, spreads); // too few of them now
}

void addInsertions(Operations& operations) {
    operations.push_back(changing("ParametricCurve.tesselateCurvebySdistance", kExact,
                                  [](Curve& curve, Random& random, Checksum& sum) {
                                      curve.tesselateCurvebySdistance(random.between(0.01, 0.5));
                                      addCurve(sum, curve);
                                      curve.tesselateCurvebySdistance(2.0);
                                  }));
    operations.push_back(changing("ParametricCurve.tesselateCurvebyNumber", kExact,
                                  [](Curve& curve, Random& random, Checksum& sum) {
                                      curve.tesselateCurvebyNumber(5, random.between(0.001, 0.1));
                                      addCurve(sum, curve);
                                      curve.tesselateCurvebyNumber(5, 0.0);
                                  }));
    operations.push_back(changing("ParametricCurve.tesselateCurvebyMinYdistance", kExact,
                                  [](Curve& curve, Random&, Checksum& sum) {
                                      if (isFinite(curve)) { // else more points than memory holds
                                          curve.tesselateCurvebyMinYdistance(riseStep(curve));
                                      }
                                      addCurve(sum, curve);
                                      curve.tesselateCurvebyMinYdistance(-1.0);
                                  }));
    operations.push_back(changing("ParametricCurve.tesselateXCurvebyCosine", kLibm,
                                  [](Curve& curve, Random&, Checksum& sum) {
                                      curve.tesselateXCurvebyCosine(3);
                                      addCurve(sum, curve);
                                      curve.tesselateXCurvebyCosine(-1);
                                  }));
    operations.push_back(
        changing("ParametricCurve.tesselateXCurvebyCosineSpread", kLibm, cosineSpreads));
}

// -- Cleaning ----

void addCleaning(Operations& operations) {
    operations.push_back(changing(
        "ParametricCurve.eliminateDoublePoints", kExact, [](Curve& curve, Random&, Checksum& sum) {
            for (const int exponent : {0, 3, 10, 13}) {
                Curve single(curve);
                curve.eliminateDoublePoints(exponent);
                single.eliminateDoublePoints(exponent - 8, Curve::singlePrecision);
                addCurve(sum, curve);
                addCurve(sum, single);
            }
        }));
    operations.push_back(changing("ParametricCurve.makeUnique", kExact,
                                  [](Curve& curve, Random&, Checksum&) { curve.makeUnique(); }));
    operations.push_back(
        changing("ParametricCurve.makeContinuous", kExact,
                 [](Curve& curve, Random&, Checksum&) { curve.makeContinuous(); }));
    operations.push_back(changing("ParametricCurve.reverseCurve", kExact,
                                  [](Curve& curve, Random&, Checksum&) { curve.reverseCurve(); }));
}

// -- Extrapolation ----

using Expansion = void (Curve::*)(double);

Operation expansion(const char* name, Expansion expand) {
    return changing(name, kExact, [expand](Curve& curve, Random& random, Checksum& sum) {
        (curve.*expand)(random.between(0.0, 0.3));
        addCurve(sum, curve);
        (curve.*expand)(-0.01);
    });
}

void addExtrapolation(Operations& operations) {
    operations.push_back(
        expansion("ParametricCurve.expandCurveBothEnds", &Curve::expandCurveBothEnds));
    operations.push_back(expansion("ParametricCurve.expandCurveBegin", &Curve::expandCurveBegin));
    operations.push_back(expansion("ParametricCurve.expandCurveEnd", &Curve::expandCurveEnd));
    operations.push_back(expansion("ParametricCurve.expandCurveBothEndsExtraPoints",
                                   &Curve::expandCurveBothEndsExtraPoints));
}

// -- About an axis ----

FloatPoint axisDirection(Random& random) {
    return random.chance(0.1) ? FloatPoint() : random.floatPointBetween(-1.0f, 1.0f);
}

void toART0(Curve& curve, Random& random, Checksum& sum) {
    const FloatPoint point = random.floatPointBetween(-2.0f, 2.0f);
    const FloatPoint direction = axisDirection(random);
    Points out;
    FloatPoints single;
    curve.convertToART0(point, direction, out);
    curve.convertToART0(point, direction, single);
    sum.add(out, single);
    curve.convertToART0(point, direction);
}

template <typename Output>
void addART(const Curve& curve, const FloatPoint& point, const FloatPoint& direction, int refId,
            Checksum& sum) {
    Output out;
    curve.convertToART(point, direction, out, refId, 0.25);
    sum.add(out);
    curve.convertToART(point, direction, out);
    sum.add(out);
}

void toART(Curve& curve, Random& random, Checksum& sum) {
    const FloatPoint point = random.floatPointBetween(-2.0f, 2.0f);
    const FloatPoint direction = axisDirection(random);
    const int refId = static_cast<int>(random.index(curve.getSize()));
    addART<Points>(curve, point, direction, refId, sum);
    addART<FloatPoints>(curve, point, direction, refId, sum);
    Curve other(curve);
    other.convertToART(point, direction, refId, -0.5);
    addCurve(sum, other);
    curve.convertToART(point, direction);
    addCurve(sum, curve);
    curve.convertToART(point, direction, -1, 0.0);
}

void addAxial(Operations& operations) {
    operations.push_back(changing("ParametricCurve.convertToART0", kExact, toART0));
    operations.push_back(changing("ParametricCurve.convertToART", kLibm, toART));
    operations.push_back(changing(
        "ParametricCurve.rotateAroundVector", kLibm, [](Curve& curve, Random& random, Checksum&) {
            const Point centre = random.pointBetween(-2.0, 2.0);
            const Point axis = random.chance(0.1) ? Point() : random.pointBetween(-1.0, 1.0);
            curve.rotateAroundVector(centre, axis, random.between(-4.0, 4.0));
        }));
    operations.push_back(
        changing("ParametricCurve.storeSvaluetoXandXToY", kExact,
                 [](Curve& curve, Random&, Checksum&) { curve.storeSvaluetoXandXToY(); }));
}

} // namespace

void addCurveChangeOperations(Operations& operations) {
    addInsertions(operations);
    addCleaning(operations);
    addExtrapolation(operations);
    addAxial(operations);
}

} // namespace qel_checksums
