#ifndef QEL_BENCHMARKS_FOUNDATION_CELLSHAPES_H
#define QEL_BENCHMARKS_FOUNDATION_CELLSHAPES_H

// Quadrilaterals with a point each.

#include <cstddef>
#include <vector>

#include <qel/NumericalUtils.h>

#include "support/ShapeRandom.h"

namespace qel_benchmark {

// Corners 1 to 4 at (s, t) = (0, 0), (1, 0), (0, 1), (1, 1), and a point.
struct Cell {
    double x[4], y[4];
    double px, py;
};

struct CellShape {
    const char* name;
    Cell (*make)(qel_test::ShapeRandom& random);
};

namespace cell_shapes {

// A unit square whose corners are moved by up to a distance; the point at s and t.
inline Cell skewed(qel_test::ShapeRandom& random, double shift, double s, double t) {
    Cell c{};
    for (int i = 0; i < 4; ++i) {
        c.x[i] = i % 2 + random.between(-shift, shift);
        c.y[i] = (i < 2 ? 0.0 : 1.0) + random.between(-shift, shift);
    }
    using qel::NumericalUtils;
    c.px = NumericalUtils::calculateValueInQuadFromSTD(s, t, c.x[0], c.x[1], c.x[2], c.x[3]);
    c.py = NumericalUtils::calculateValueInQuadFromSTD(s, t, c.y[0], c.y[1], c.y[2], c.y[3]);
    return c;
}

inline Cell inside(qel_test::ShapeRandom& random) {
    const double s = random.between(0.05, 0.95);
    return skewed(random, 0.2, s, random.between(0.05, 0.95));
}

inline Cell rectangle(qel_test::ShapeRandom& random) {
    const double s = random.unit();
    return skewed(random, 0.0, s, random.unit());
}

inline Cell outside(qel_test::ShapeRandom& random) {
    const double s = random.between(2.0, 3.0);
    return skewed(random, 0.2, s, random.unit());
}

// A millionth as high as wide.
inline Cell sliver(qel_test::ShapeRandom& random) {
    Cell c = inside(random);
    for (double& y : c.y) {
        y *= 1e-6;
    }
    c.py *= 1e-6;
    return c;
}

// All corners on a line: no parameters.
inline Cell flat(qel_test::ShapeRandom& random) {
    Cell c = inside(random);
    for (int i = 0; i < 4; ++i) {
        c.y[i] = c.x[i];
    }
    c.py = c.px;
    return c;
}

} // namespace cell_shapes

inline const std::vector<CellShape>& cellShapes() {
    static const std::vector<CellShape> shapes = {{"inside", cell_shapes::inside},
                                                  {"rectangle", cell_shapes::rectangle},
                                                  {"outside", cell_shapes::outside},
                                                  {"sliver", cell_shapes::sliver},
                                                  {"flat", cell_shapes::flat}};
    return shapes;
}

} // namespace qel_benchmark

#endif
