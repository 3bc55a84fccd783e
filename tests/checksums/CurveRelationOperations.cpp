// Simplification, corners, intersections in the plane, and text.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <qel/LineSegment2D.h>
#include <qel/QELError.h>

#include "Curves.h"
#include "support/StandardStreams.h"

namespace qel_checksums {
namespace {

constexpr Arithmetic kExact = Arithmetic::exact;
constexpr Arithmetic kLibm = Arithmetic::libm;

// -- Simplification ----

void simplify(ParametricCurve& curve, Random& random, Checksum& sum) {
    const double tolerance = random.chance(0.5) ? 0.0 : curve.getLength() * 1e-3;
    ParametricCurve other(curve);
    other.optimizeByNormalDistance(15, tolerance);
    addCurve(sum, other);
    std::vector<int> ids;
    curve.optimizeByNormalDistance(100, ids, tolerance);
    sum.add(ids);
    curve.optimizeByNormalDistance(1, ids, tolerance);
    sum.add(ids);
}

void maximumDistance(const ParametricCurve& curve, Random& random, Checksum& sum) {
    sum.add(curve.getMaximumNormalDistance(askedSvalues(curve, random)));
    sum.add(curve.getMaximumNormalDistance({0.0, 0.5, 1.0}));
    sum.add(curve.getMaximumNormalDistance({0.5}));
}

void corners(const ParametricCurve& curve, Random& random, Checksum& sum) {
    for (int k = 0; k < 10; ++k) {
        const std::size_t first = random.index(curve.getSize() + 1);
        const std::size_t second = random.index(curve.getSize() + 1);
        std::pair<double, std::size_t> a(-7.0, 7), b(-8.0, 8);
        sum.addOutcome([&] { curve.findTwoPointsWithMinAngle(first, second, a, b); });
        sum.add(a, b);
    }
}

// -- Intersection ----

// Takes the reports of a call, as results of it.
class Reports : public qel::ErrorReporter {
public:
    explicit Reports(Checksum& sum) : sum_(sum), before_(setInstance(this)) {}
    ~Reports() override { setInstance(before_); }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    void report(const qel::Error& error) override {
        sum_.add(error.getClassName(), error.getMethodName(), error.getMessage(), error.getType());
    }

private:
    Checksum& sum_;
    qel::ErrorReporter* before_;
};

qel::Doublet placeNear(const ParametricCurve& curve, Random& random) {
    const Point& vertex = curve.getCurve()[random.index(curve.getSize())];
    return {static_cast<float>(vertex.x) + random.floatBetween(-1.0f, 1.0f),
            static_cast<float>(vertex.y) + random.floatBetween(-1.0f, 1.0f)};
}

void withSegments(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const Reports reports(sum);
    for (int k = 0; k < 20; ++k) {
        const qel::Doublet from = placeNear(curve, random);
        FloatPoint crossing(-7.0f, -7.0f, -7.0f);
        sum.add(curve.intersectWithSegment({from, placeNear(curve, random)}, crossing), crossing);
    }
}

// The curve itself, moved and turned by a quarter: short, as the plain walk takes n times m steps.
void withCurves(const ParametricCurve& curve, Random& random, Checksum& sum) {
    const Reports reports(sum);
    for (int k = 0; k < 3; ++k) {
        const Point shift = random.pointBetween(-0.5, 0.5);
        Points turned;
        for (std::size_t i = 0; i < curve.getSize() && i < 300; ++i) {
            const Point& p = curve.getCurve()[i];
            turned.push_back(Point(p.y, -p.x, 0.0) + shift);
        }
        const ParametricCurve other(turned, ParametricCurve::dim2D);
        FloatPoint crossing(-7.0f, -7.0f, -7.0f);
        sum.add(curve.intersectWithCurve(other, crossing), crossing);
    }
}

// -- Text ----

void listings(const ParametricCurve& curve, Random&, Checksum& sum) {
    const qel_test::CapturedStandardOutput output;
    curve.printCurve("title");
    curve.printSvalues("");
    curve.printCurveAndSvalues("title");
    sum.add(output.text());
}

// A file of this process alone: the tests of several units run at once.
std::string freshPath() {
    static const unsigned process = std::random_device()();
    const std::string name = "qel_checksums_" + std::to_string(process) + ".txt";
    return (std::filesystem::temp_directory_path() / name).string();
}

void exported(const ParametricCurve& curve, Random&, Checksum& sum) {
    const std::string path = freshPath();
    curve.exportToFile(path);
    std::ifstream file(path, std::ios::binary);
    sum.add(std::string(std::istreambuf_iterator<char>(file), {}));
    file.close();
    std::filesystem::remove(path);
    curve.exportToFile("/no such folder/curve.txt");
}

} // namespace

void addCurveRelationOperations(Operations& operations) {
    operations.push_back(changing("ParametricCurve.optimizeByNormalDistance", kExact, simplify));
    operations.push_back(
        reading("ParametricCurve.getMaximumNormalDistance", kExact, maximumDistance));
    operations.push_back(reading("ParametricCurve.findTwoPointsWithMinAngle", kLibm, corners));
    operations.push_back(reading("ParametricCurve.intersectWithSegment", kExact, withSegments));
    operations.push_back(reading("ParametricCurve.intersectWithCurve", kExact, withCurves));
    operations.push_back(reading("ParametricCurve.print", kExact, listings));
    operations.push_back(reading("ParametricCurve.exportToFile", kExact, exported));
}

} // namespace qel_checksums
