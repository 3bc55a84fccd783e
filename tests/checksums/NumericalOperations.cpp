// Machine spacing and the quadrilateral.
#include <limits>

#include <qel/NumericalUtils.h>

#include "Inputs.h"
#include "Operations.h"

namespace qel_checksums {
namespace {

using Utils = qel::NumericalUtils;

void spacing(Checksum& sum) {
    Random random(51);
    double scale = 1e-300;
    for (int k = 0; k < 600; ++k) {
        const double x = scale * random.between(-10.0, 10.0);
        sum.add(Utils::spacing(x), Utils::spacing(static_cast<float>(x)));
        scale *= 10.0;
    }
    for (const double x :
         {0.0, -0.0, 0.1, 1.0, 10.0, 100.0, std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        sum.add(Utils::spacing(x), Utils::spacing(static_cast<float>(x)));
    }
}

void valueInQuad(Checksum& sum) {
    Random random(52);
    for (int k = 0; k < 500; ++k) {
        const Point st = random.pointBetween(-0.5, 1.5);
        const Point f = random.pointBetween(-10.0, 10.0);
        const double f4 = random.between(-10.0, 10.0);
        sum.add(Utils::calculateValueInQuadFromSTD(st.x, st.y, f.x, f.y, f.z, f4));
        const FloatPoint narrow(f);
        sum.add(Utils::calculateValueInQuadFromST(static_cast<float>(st.x),
                                                  static_cast<float>(st.y), narrow.x, narrow.y,
                                                  narrow.z, static_cast<float>(f4)));
    }
}

// Corners 1 to 4 at (0, 0), (1, 0), (0, 1), (1, 1), each moved; with a large shift some are folded
// or degenerate.
struct Quad {
    Point c1, c2, c3, c4;
};

Quad quad(Random& random) {
    const double shift = random.chance(0.5) ? 0.3 : 1.5;
    const auto corner = [&](double x, double y) {
        return random.pointBetween(-shift, shift) + Point(x, y, 0.0);
    };
    Quad q;
    q.c1 = corner(0.0, 0.0);
    q.c2 = corner(1.0, 0.0);
    q.c3 = corner(0.0, 1.0);
    q.c4 = random.chance(0.1) ? q.c1 : corner(1.0, 1.0);
    return q;
}

template <typename T, typename Search>
void searchInQuads(Checksum& sum, Search search) {
    Random random(53);
    for (int k = 0; k < 500; ++k) {
        const Quad q = quad(random);
        const Point p = random.pointBetween(-0.2, 1.2);
        const int maxIterations = static_cast<int>(random.index(30)) - 1;
        T s = T(-1), t = T(-1);
        bool outside = false, converged = false, singular = false;
        search(s, t, static_cast<T>(p.x), static_cast<T>(p.y), static_cast<T>(q.c1.x),
               static_cast<T>(q.c1.y), static_cast<T>(q.c2.x), static_cast<T>(q.c2.y),
               static_cast<T>(q.c3.x), static_cast<T>(q.c3.y), static_cast<T>(q.c4.x),
               static_cast<T>(q.c4.y), outside, converged, singular, maxIterations, T(0.1),
               T(1e-6));
        sum.add(s, t, outside, converged, singular);
    }
}

} // namespace

void addNumericalOperations(Operations& operations) {
    operations.push_back({"NumericalUtils.spacing", Arithmetic::exact, spacing});
    operations.push_back({"NumericalUtils.calculateValueInQuad", Arithmetic::exact, valueInQuad});
    operations.push_back(
        {"NumericalUtils.searchForSTinQuadD", Arithmetic::exact,
         [](Checksum& sum) { searchInQuads<double>(sum, Utils::searchForSTinQuadD); }});
    operations.push_back({"NumericalUtils.searchForSTinQuad", Arithmetic::exact, [](Checksum& sum) {
                              searchInQuads<float>(sum, Utils::searchForSTinQuad);
                          }});
}

} // namespace qel_checksums
