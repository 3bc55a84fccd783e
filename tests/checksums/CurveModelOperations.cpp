// Curves built, and what they hold.
#include "Curves.h"

namespace qel_checksums {
namespace {

constexpr ParametricCurve::normalization kNormalizations[] = {
    ParametricCurve::normalizeX, ParametricCurve::normalizeY, ParametricCurve::normalizeZ,
    ParametricCurve::normalizeArc, ParametricCurve::normalizeUniform};

// The points of every input as one component's values.
template <typename Use>
void forValues(Use use) {
    for (const CurveInput& input : curveInputs()) {
        std::vector<double> values;
        std::vector<float> single;
        for (const Point& p : input.points) {
            values.push_back(p.x);
            single.push_back(static_cast<float>(p.x));
        }
        use(values, single);
    }
}

void constructors(Checksum& sum) {
    addCurve(sum, ParametricCurve());
    for (const CurveInput& input : curveInputs()) {
        const FloatPoints single = narrowed(input.points);
        const std::vector<double> svalues = unevenSvalues(input.points.size());
        for (const ParametricCurve::dim dimension : kDimensions) {
            addCurve(sum, ParametricCurve(input.points, dimension));
            addCurve(sum, ParametricCurve(single, dimension));
            addCurve(sum, ParametricCurve(input.points, svalues, dimension));
            addCurve(sum, ParametricCurve(single, svalues, dimension));
            for (const ParametricCurve::normalization norm : kNormalizations) {
                sum.addOutcome([&] { addCurve(sum, ParametricCurve(single, norm, dimension)); });
            }
        }
    }
}

void setPoints(Checksum& sum) {
    ParametricCurve curve;
    for (const CurveInput& input : curveInputs()) {
        const FloatPoints single = narrowed(input.points);
        std::vector<double> svalues = unevenSvalues(input.points.size());
        curve.setPoints(input.points, ParametricCurve::dim2D);
        addCurve(sum, curve);
        curve.setPoints(single, ParametricCurve::dim3D);
        addCurve(sum, curve);
        curve.setPoints(input.points, svalues, ParametricCurve::dim3D);
        curve.setPoints(single, svalues, ParametricCurve::dim1D);
        addCurve(sum, curve);
        for (const ParametricCurve::normalization norm : kNormalizations) {
            sum.addOutcome([&] { curve.setPoints(input.points, norm, ParametricCurve::dim3D); });
            addCurve(sum, curve);
            sum.addOutcome([&] { curve.setPoints(single, norm, ParametricCurve::dim2D); });
            addCurve(sum, curve);
        }
        svalues.pop_back();
        sum.addOutcome([&] { curve.setPoints(single, svalues, ParametricCurve::dim1D); });
        addCurve(sum, curve);
    }
    sum.addOutcome([&] { curve.setPoints(Points(1), ParametricCurve::dim3D); });
    addCurve(sum, curve);
}

void setComponents(Checksum& sum) {
    ParametricCurve curve;
    forValues([&](const std::vector<double>& values, const std::vector<float>& single) {
        const std::vector<double> svalues = unevenSvalues(values.size());
        const auto after = [&](auto&& change) {
            change();
            addCurve(sum, curve);
        };
        after([&] { curve.setPointsX(values); });
        after([&] { curve.setPointsY(values); });
        after([&] { curve.setPointsZ(values); });
        after([&] { curve.setPointsX(single); });
        after([&] { curve.setPointsY(single); });
        after([&] { curve.setPointsZ(single); });
        after([&] { curve.setPointsX(values, svalues); });
        after([&] { curve.setPointsY(values, svalues); });
        after([&] { curve.setPointsZ(values, svalues); });
        after([&] { curve.setPointsXnormalizeUniform(values); });
    });
}

// Copies and the plain getters.
void reads(const ParametricCurve& curve, Random& random, Checksum& sum) {
    ParametricCurve copy(curve);
    addCurve(sum, copy);
    copy = ParametricCurve();
    addCurve(sum, copy);
    Points points;
    std::vector<double> svalues;
    curve.getCurve(points);
    curve.getSvalues(svalues);
    sum.add(points, svalues, curve.getFirstPoint(), curve.getLastPoint());
    std::vector<int> ids;
    for (int k = 0; k < 5; ++k) {
        ids.push_back(static_cast<int>(random.index(curve.getSize())));
        sum.add(curve.getPointAtIndex(ids.back()), curve.getSvalues(ids.back()));
    }
    sum.add(curve.getSvalues(ids));
    ids.push_back(static_cast<int>(curve.getSize()));
    sum.addOutcome([&] { sum.add(curve.getPointAtIndex(-1)); });
    sum.addOutcome([&] { sum.add(curve.getSvalues(ids)); });
    sum.addOutcome([&] { sum.add(curve.getSvalues(ids.back())); });
}

template <typename Values>
void addComponents(Checksum& sum, const ParametricCurve& curve) {
    Values values;
    curve.getX(values);
    sum.add(values);
    curve.getY(values);
    sum.add(values);
    curve.getZ(values);
    sum.add(values);
}

void components(const ParametricCurve& curve, Random&, Checksum& sum) {
    addComponents<std::vector<double>>(sum, curve);
    addComponents<std::vector<float>>(sum, curve);
    addComponents<Points>(sum, curve);
    addComponents<FloatPoints>(sum, curve);
}

void extents(const ParametricCurve& curve, Random&, Checksum& sum) {
    double low[3] = {}, high[3] = {};
    curve.getMinMax(low[0], high[0], low[1], high[1], low[2], high[2]);
    sum.add(low[0], high[0], low[1], high[1], low[2], high[2]);
    curve.getMinMaxX(low[0], high[0]);
    curve.getMinMaxY(low[1], high[1]);
    curve.getMinMaxZ(low[2], high[2]);
    sum.add(low[0], high[0], low[1], high[1], low[2], high[2]);
    sum.add(curve.getMinXid(), curve.getMaxXid(), curve.getMinYid(), curve.getMaxYid(),
            curve.getMinZid(), curve.getMaxZid());
}

} // namespace

void addCurveModelOperations(Operations& operations) {
    constexpr Arithmetic exact = Arithmetic::exact;
    operations.push_back({"ParametricCurve.constructors", exact, constructors});
    operations.push_back({"ParametricCurve.setPoints", exact, setPoints});
    operations.push_back({"ParametricCurve.setPointsXYZ", exact, setComponents});
    operations.push_back(reading("ParametricCurve.reads", exact, reads));
    operations.push_back(reading("ParametricCurve.getXYZ", exact, components));
    operations.push_back(reading("ParametricCurve.extents", exact, extents));
}

} // namespace qel_checksums
