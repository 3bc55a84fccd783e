// The batch interface's functions of curves.
#include <qel/CurveCrossings.h>
#include <qel/CurveLocator.h>
#include <qel/CurveResampling.h>
#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "Curves.h"

namespace qel_checksums {
namespace {

using qel::CurveView;

void addPlace(Checksum& sum, const qel::CurveLocation& place) {
    sum.add(place.foot, place.s, place.edge, place.distance);
}

void location(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const qel::CurveLocator locator(curve);
    for (const Point& probe : probes(curve, random)) {
        addPlace(sum, locator.locate(probe));
        std::vector<qel::CurveLocation> places;
        locator.locateWithin(probe, 0.5, places);
        for (const qel::CurveLocation& place : places) {
            addPlace(sum, place);
        }
    }
}

void addCrossings(Checksum& sum, const std::vector<qel::CurveCrossing>& crossings) {
    sum.add(crossings.size());
    for (const qel::CurveCrossing& crossing : crossings) {
        sum.add(crossing.kind, crossing.begin, crossing.end, crossing.sBegin, crossing.sEnd);
        sum.add(crossing.edge, crossing.otherBegin, crossing.otherEnd, crossing.otherEdge);
    }
}

void crossings(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const CurveView view = curve; // first: of two curves with bad points, either may be refused
    const Points others = probes(curve, random);
    addCrossings(sum, qel::findCrossings(view, others));
    addCrossings(sum, qel::findCrossingsWithSegment(view, others[3], others[4]));
    addCrossings(sum, qel::findCrossingsWithLine(view, others[3], others[5]));
    addCrossings(sum, qel::findCrossingsWithPlane(view, others[4], others[5] - others[4]));
}

void simplification(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const CurveView view = curve;
    sum.add(qel::simplifyToError(view, random.between(0.0, 0.1)), qel::simplifyToError(view, 0.0));
    double error = -7.0;
    sum.addOutcome([&] { sum.add(qel::simplifyToCount(view, 3 + random.index(9), error)); });
    sum.add(error);
}

void area(const ParametricCurve& curve, Random&, Checksum& sum) {
    sum.add(qel::computeSignedArea(curve), qel::computeOrientation(curve));
}

void shape(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const std::vector<double> svalues = askedSvalues(curve, random);
    std::vector<double> curvature(svalues.size()), angle(svalues.size());
    Points tangent(svalues.size());
    qel::CurveShapeFields out;
    out.tangent = tangent;
    out.curvature = curvature;
    out.turningAngle = angle;
    qel::computeCurveShape(curve, svalues, out);
    sum.add(tangent, curvature, angle);
}

void resampling(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const std::vector<double> svalues = askedSvalues(curve, random);
    Points points(svalues.size());
    std::vector<double> data(2 * curve.getSize());
    for (double& value : data) {
        value = random.between(-3.0, 3.0);
    }
    std::vector<double> resampled(2 * svalues.size());
    qel::resampleCurve(curve, svalues, {data.data(), curve.getSize(), 2}, points,
                       {resampled.data(), svalues.size(), 2});
    sum.add(points, resampled);
}

} // namespace

void addBatchCurveOperations(Operations& operations) {
    constexpr Arithmetic kExact = Arithmetic::exact;
    operations.push_back(reading("CurveLocator.locate", kExact, location));
    operations.push_back(reading("CurveCrossings", kExact, crossings));
    operations.push_back(reading("CurveSimplification", kExact, simplification));
    operations.push_back(reading("CurveShape.area", kExact, area));
    operations.push_back(reading("CurveShape.computeCurveShape", Arithmetic::libm, shape));
    operations.push_back(reading("CurveResampling", kExact, resampling));
}

} // namespace qel_checksums
