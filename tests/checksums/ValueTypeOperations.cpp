// Triplets, matrices, vectors and segments of the plane.
#include <sstream>

#include <qel/Doublet.h>
#include <qel/LineSegment2D.h>
#include <qel/QELMatrix3base.h>
#include <qel/QELMatrix4.h>
#include <qel/TripletBase.h>
#include <qel/Vector.h>

#include "Inputs.h"
#include "Operations.h"

namespace qel_checksums {
namespace {

constexpr std::size_t kCount = 500;

template <typename Value>
std::string textOf(const Value& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

// Calls use(a, b, factor) for triplets of which some are zero, undefined or not finite.
template <typename Use>
void forTriplets(Use use) {
    const FloatPoints values = fieldTriplets(kCount, 31, true);
    Random random(32);
    for (std::size_t i = 0; i + 1 < values.size(); ++i) {
        const double factor = random.chance(0.05) ? 0.0 : random.between(-3.0, 3.0);
        use(values[i], values[i + 1], factor);
        use(Point(values[i]) * 1.1, Point(values[i + 1]) * 0.7, factor);
    }
}

void addTripletOperations(Operations& operations) {
    operations.push_back({"TripletBase.arithmetic", Arithmetic::exact, [](Checksum& sum) {
                              forTriplets([&](auto a, auto b, double factor) {
                                  sum.add(a + b, a - b, -a, a * factor, factor * a);
                                  sum.add(a == b, a != b, a.isUndefined());
                                  auto c = a;
                                  c += b;
                                  c -= a * 0.5;
                                  c *= factor;
                                  sum.add(c);
                              });
                          }});
    operations.push_back({"TripletBase.division", Arithmetic::exact, [](Checksum& sum) {
                              forTriplets([&](auto a, auto b, double factor) {
                                  sum.addOutcome([&] { sum.add(a / factor); });
                                  sum.addOutcome([&] { sum.add(b /= factor); });
                              });
                          }});
    operations.push_back({"TripletBase.products", Arithmetic::exact, [](Checksum& sum) {
                              forTriplets(
                                  [&](auto a, auto b, double) { sum.add(a.dot(b), a.cross(b)); });
                          }});
    operations.push_back({"TripletBase.length", Arithmetic::exact, [](Checksum& sum) {
                              forTriplets([&](auto a, auto, double) {
                                  sum.add(a.length());
                                  a.normalize();
                                  sum.add(a);
                              });
                          }});
    operations.push_back({"TripletBase.getRef", Arithmetic::exact, [](Checksum& sum) {
                              const Point p(1.0, 2.0, 3.0);
                              for (int i = -1; i < 4; ++i) {
                                  sum.addOutcome([&] { sum.add(p.getRef(i)); });
                              }
                          }});
    operations.push_back({"TripletBase.text", Arithmetic::exact, [](Checksum& sum) {
                              forTriplets([&](auto a, auto, double) { sum.add(textOf(a)); });
                          }});
}

// -- Matrices ----

qel::QELMatrix3base<float> matrix3(Random& random) {
    qel::QELMatrix3base<float> m;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m[i][j] = random.floatBetween(-2.0f, 2.0f);
        }
    }
    return m;
}

qel::QELMatrix4 matrix4(Random& random) {
    qel::QELMatrix4 m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            m[i][j] = random.floatBetween(-2.0f, 2.0f);
        }
    }
    return m;
}

void addMatrix(Checksum& sum, const qel::QELMatrix4& m) {
    for (int i = 0; i < 4; ++i) {
        sum.add(m[i][0], m[i][1], m[i][2], m[i][3]);
    }
}

template <typename T>
void addMatrix(Checksum& sum, const qel::QELMatrix3base<T>& m) {
    for (int i = 0; i < 3; ++i) {
        sum.add(m[i][0], m[i][1], m[i][2]);
    }
}

void matrix3Operations(Checksum& sum) {
    Random random(33);
    for (std::size_t k = 0; k < kCount; ++k) {
        const qel::QELMatrix3base<float> single = matrix3(random);
        qel::QELMatrix3base<double> wide;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                wide[i][j] = static_cast<double>(single[i][j]) * 1.1;
            }
        }
        sum.add(single.determinant(), wide.determinant());
    }
    qel::QELMatrix3base<double> m;
    sum.addOutcome([&] { m[3][0] = 1.0; });
}

void matrix4Building(Checksum& sum) {
    Random random(34);
    qel::QELMatrix4 m(matrix3(random));
    addMatrix(sum, m);
    m.setTranslationMatrix(random.floatPointBetween(-5.0f, 5.0f));
    addMatrix(sum, m);
    m.setIdentity();
    addMatrix(sum, m);
    m.setZero();
    addMatrix(sum, m);
    sum.addOutcome([&] { m[-1][0] = 1.0f; });
}

void matrix4Products(Checksum& sum) {
    Random random(35);
    for (std::size_t k = 0; k < kCount; ++k) {
        const qel::QELMatrix4 a = matrix4(random);
        qel::QELMatrix4 b = matrix4(random);
        qel::QELMatrix4 product;
        a.multMat(product, b);
        addMatrix(sum, product);
        addMatrix(sum, a * b);
        const FloatPoint p = random.floatPointBetween(-5.0f, 5.0f);
        FloatPoint moved;
        a.multVec(moved, p);
        sum.add(moved, a * p);
        sum.addOutcome([&] { a.multMat(b, b); });
    }
}

void matrix4Homogeneous(Checksum& sum) {
    Random random(36);
    for (std::size_t k = 0; k < kCount; ++k) {
        qel::QELMatrix4 m = matrix4(random);
        sum.add(m.isHomogeneous());
        addMatrix(sum, m.homogenize());
        sum.add(m.isHomogeneous());
    }
}

void matrix4Minors(Checksum& sum) {
    Random random(37);
    for (std::size_t k = 0; k < kCount; ++k) {
        const qel::QELMatrix4 m = matrix4(random);
        sum.add(m.determinant());
        const int row = static_cast<int>(random.index(5));
        const int column = static_cast<int>(random.index(5));
        sum.addOutcome([&] { addMatrix(sum, m.subMatrix(row, column)); });
    }
}

// -- The plane and space ----

void add(Checksum& sum, const qel::Doublet& d) {
    sum.add(d.getX(), d.getY());
}

void add(Checksum& sum, const qel::Vector& v) {
    sum.add(v.getX(), v.getY(), v.getZ());
}

qel::Doublet doublet(Random& random) {
    if (random.chance(0.05)) {
        return {};
    }
    const float x = random.floatBetween(-10.0f, 10.0f);
    return {x, random.floatBetween(-10.0f, 10.0f)};
}

void doubletOperations(Checksum& sum) {
    Random random(38);
    for (std::size_t k = 0; k < kCount; ++k) {
        qel::Doublet a = doublet(random);
        const qel::Doublet b = doublet(random);
        const double factor = random.between(-3.0, 3.0);
        for (const qel::Doublet& d : {a + b, a - b, a * factor, factor * a, a.normal(), a.unit()}) {
            add(sum, d);
        }
        sum.add(a.sqlength(), a.length(), a.dotProduct(b), a == b, a != b, a.isZero(), textOf(a));
        a += b;
        a *= factor;
        a -= b;
        add(sum, a);
        a.set(1.0f, 2.0f);
        add(sum, a);
    }
}

qel::Vector spaceVector(Random& random) {
    if (random.chance(0.05)) {
        return {};
    }
    const Point p = random.pointBetween(-10.0, 10.0);
    return {p.x, p.y, p.z};
}

void vectorOperations(Checksum& sum) {
    Random random(39);
    for (std::size_t k = 0; k < kCount; ++k) {
        qel::Vector a = spaceVector(random);
        const qel::Vector b = spaceVector(random);
        const double factor = random.chance(0.05) ? 0.0 : random.between(-3.0, 3.0);
        for (const qel::Vector& v :
             {a + b, a - b, -a, a * factor, a.perp(), qel::Vector::cross(a, b)}) {
            add(sum, v);
        }
        sum.add(a.length(), a * b);
        a += b;
        a *= factor;
        a -= b;
        a /= factor;
        add(sum, a);
        a.normalize();
        add(sum, a);
        a.Set(1.0, 2.0, 3.0);
        add(sum, a);
    }
}

template <typename Use>
void forSegments(Use use) {
    Random random(40);
    for (std::size_t k = 0; k < kCount; ++k) {
        const qel::Doublet start = doublet(random);
        const qel::LineSegment2D a(start, random.chance(0.05) ? start : doublet(random));
        const qel::Doublet other = doublet(random);
        // A share of parallel ones.
        const qel::LineSegment2D b(other, random.chance(0.1) ? other + a.getToVector() * 2.0
                                                             : doublet(random));
        use(a, b, random);
    }
}

void addSegmentOperations(Operations& operations) {
    using Segment = qel::LineSegment2D;
    operations.push_back({"LineSegment2D.places", Arithmetic::exact, [](Checksum& sum) {
                              forSegments([&](const Segment& a, const Segment& b, Random& random) {
                                  add(sum, a.getStart());
                                  add(sum, a.getEnd());
                                  add(sum, a.getPointAt(random.between(-1.0, 2.0)));
                                  sum.add(a.getT(b.getStart()), a.isZeroLength(), textOf(a));
                              });
                          }});
    operations.push_back({"LineSegment2D.line", Arithmetic::exact, [](Checksum& sum) {
                              forSegments([&](const Segment& a, const Segment&, Random&) {
                                  qel::Doublet n;
                                  double c = -1.0;
                                  a.nearOrigin(n, c);
                                  add(sum, n);
                                  add(sum, a.unitNormal());
                                  sum.add(c);
                              });
                          }});
    operations.push_back({"LineSegment2D.intersect", Arithmetic::exact, [](Checksum& sum) {
                              forSegments([&](const Segment& a, const Segment& b, Random&) {
                                  double t = -7.0;
                                  sum.add(a.intersect(b, t), t);
                                  sum.add(a.intersectWithLimits(b, t), t);
                              });
                          }});
    operations.push_back(
        {"LineSegment2D.intersectWithCircle", Arithmetic::exact, [](Checksum& sum) {
             forSegments([&](const Segment& a, const Segment& b, Random& random) {
                 double t1 = -7.0, t2 = -8.0;
                 const double radius = random.between(0.0, 10.0);
                 sum.add(a.intersectWithCircle(b.getStart(), radius, t1, t2), t1, t2);
             });
         }});
}

} // namespace

void addValueTypeOperations(Operations& operations) {
    addTripletOperations(operations);
    operations.push_back({"QELMatrix3base", Arithmetic::exact, matrix3Operations});
    operations.push_back({"QELMatrix4.building", Arithmetic::exact, matrix4Building});
    operations.push_back({"QELMatrix4.products", Arithmetic::exact, matrix4Products});
    operations.push_back({"QELMatrix4.homogenize", Arithmetic::exact, matrix4Homogeneous});
    operations.push_back({"QELMatrix4.minors", Arithmetic::exact, matrix4Minors});
    operations.push_back({"Doublet", Arithmetic::exact, doubletOperations});
    operations.push_back({"Vector", Arithmetic::exact, vectorOperations});
    addSegmentOperations(operations);
}

} // namespace qel_checksums
