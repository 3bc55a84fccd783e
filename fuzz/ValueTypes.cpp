// Laws of the small value types: triplets, vectors of the plane and of space, matrices, segments.

#include <cmath>
#include <cstddef>
#include <sstream>

#include <qel/Doublet.h>
#include <qel/LineSegment2D.h>
#include <qel/QELMatrix4.h>
#include <qel/Vector.h>

#include "Input.h"
#include "Refusals.h"
#include "support/Bits.h"

namespace {

using namespace qel_fuzz;
using qel::Doublet;
using qel::LineSegment2D;
using qel::QELMatrix4;
using qel::Vector;
using qel_test::sameBits;

bool same(const Doublet& a, const Doublet& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y);
}

bool same(const Vector& a, const Vector& b) {
    return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

Doublet doublet(Input& input) {
    const float x = input.number<float>();
    return {x, input.number<float>()};
}

template <typename T>
void checkTriplets(Input& input) {
    const auto a = input.triplet<T>(), b = input.triplet<T>();
    const double factor = input.number<double>();
    auto sum = a, difference = a, product = a, quotient = a;
    require(sameBits(sum += b, a + b) && sameBits(a + b, b + a), "sums of triplets");
    require(sameBits(difference -= b, a - b) && sameBits(a - b, a + (-b)), "differences");
    require(sameBits(product *= factor, a * factor) && sameBits(a * factor, factor * a),
            "products with a factor");
    const bool refused = refuses("Triplet", [&] { quotient /= factor; });
    require(refused == (factor == 0.0), "zero divides nothing");
    require(sameBits(quotient, refused ? a : a / factor), "quotients");
    require(sameBits(a.dot(b), b.dot(a)), "a scalar product has no order");
    const auto square = a.dot(a);
    require(a.isUndefined() || sameBits(a.length(), std::sqrt(square)), "a length");
    const int i = input.integer(-2, 4);
    require(refuses("Triplet", [&] { a.getRef(i); }) == (i < 0 || i > 2), "three components");
}

void checkDoublets(Input& input) {
    const Doublet a = doublet(input), b = doublet(input);
    const double factor = input.number<double>();
    Doublet sum = a, difference = a, product = a;
    require(same(sum += b, a + b) && same(a + b, b + a), "sums of plane vectors");
    require(same(difference -= b, a - b), "differences of plane vectors");
    require(same(product *= factor, a * factor) && same(a * factor, factor * a),
            "products of plane vectors");
    require((a == b) != (a != b), "equal or not");
    require(sameBits(a.dotProduct(b), b.dotProduct(a)), "scalar products");
    require(!(a.sqlength() < 0.0) && !(a.length() < 0.0), "lengths are not negative");
    a.unit();
    a.normal();
    std::ostringstream written, inserted;
    a.write(written);
    inserted << a;
    require(written.str() == inserted.str() && !written.str().empty(), "texts of plane vectors");
}

void checkVectors(Input& input) {
    const auto x = input.triplet<double>(), y = input.triplet<double>();
    const Vector a(x.x, x.y, x.z), b(y.x, y.y, y.z);
    const double factor = input.number<double>();
    Vector sum = a, difference = a, product = a, quotient = a, unit = a;
    require(same(sum += b, a + b) && same(a + b, b + a), "sums of vectors");
    require(same(difference -= b, a - b), "differences of vectors");
    require(same(product *= factor, a * factor), "products of vectors");
    quotient /= factor;
    require(sameBits(a * b, b * a), "scalar products of vectors");
    const Vector c = Vector::cross(a, b), d = Vector::cross(b, a);
    require(c.x == -d.x || std::isnan(c.x), "a vector product changes sign with the order");
    unit.normalize();
    a.perp();
    require(!(a.length() < 0.0), "lengths of vectors are not negative");
}

void checkMatrices(Input& input) {
    QELMatrix4 a, b, product, identity;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            a[row][column] = input.number<float>();
            b[row][column] = input.number<float>();
        }
    }
    a.multMat(product, b);
    const QELMatrix4 again = a * b;
    const auto p = input.triplet<float>();
    qel::TripletBase<float> out;
    a.multVec(out, p);
    require(!a.isHomogeneous() || sameBits(out, a * p), "both products with a point");
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            require(sameBits(product[row][column], again[row][column]), "both products");
        }
    }
    require(refuses("QELMatrix4", [&] { a.multMat(b, b); }), "an argument takes no result");
    const int row = input.integer(-2, 5), column = input.integer(-2, 5);
    const bool isInside = row >= 0 && row < 4 && column >= 0 && column < 4;
    require(refuses("QELMatrix4", [&] { a.subMatrix(row, column); }) != isInside, "minors");
    identity.setIdentity();
    require(identity.determinant() == 1.0f && identity.isHomogeneous(), "the identity");
    a.determinant();
    a.homogenize();
}

void checkSegments(Input& input) {
    const LineSegment2D a(doublet(input), doublet(input)), b(doublet(input), doublet(input));
    double t = -7.0, limited = -7.0, t1 = 0.0, t2 = 0.0;
    const bool crosses = a.intersect(b, t), within = a.intersectWithLimits(b, limited);
    require(!within || (crosses && sameBits(t, limited)), "within its limits a segment is a line");
    a.intersectWithCircle(doublet(input), input.number<double>(), t1, t2);
    a.getT(doublet(input));
    a.getPointAt(input.number<double>());
    Doublet normal;
    double distance = 0.0;
    a.nearOrigin(normal, distance);
    require(same(a.getStart(), a.start), "a segment starts at its start");
    std::ostringstream written, inserted;
    a.write(written);
    inserted << a;
    require(written.str() == inserted.str(), "texts of segments");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    using Check = void (*)(Input&);
    constexpr Check kChecks[] = {checkTriplets<float>, checkTriplets<double>, checkDoublets,
                                 checkVectors,         checkMatrices,         checkSegments};
    for (int checks = 0; input.hasMore() && checks < 12; ++checks) {
        kChecks[input.count(0, std::size(kChecks) - 1)](input);
    }
    return 0;
}
