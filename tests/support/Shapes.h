#ifndef QEL_TESTS_SUPPORT_SHAPES_H
#define QEL_TESTS_SUPPORT_SHAPES_H

// The collection of named shapes that tests and benchmarks share. Each makes n items from a fixed
// seed, for every n, and is printed by its name:
//
//     for (const CurveShape& shape : curveShapes()) {
//         SCOPED_TRACE(shape);
//         const ParametricCurve curve(shape.make(1000), ParametricCurve::dim3D);
//
//     INSTANTIATE_TEST_SUITE_P(Shapes, MyTest, testing::ValuesIn(cloudShapes()), nameOfShape);

#include "support/CloudShapes.h"
#include "support/CurveShapes.h"
#include "support/FieldShapes.h"
#include "support/GradientShapes.h"

#include <string>

namespace qel_test {

// Names the cases of a parametrised test after their shapes. A parameter of testing::TestParamInfo.
struct NameOfShape {
    template <typename Info>
    std::string operator()(const Info& info) const {
        return info.param.name;
    }
};
inline constexpr NameOfShape nameOfShape{};

} // namespace qel_test

#endif
