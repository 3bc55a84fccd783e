#include "curve/CurveInput.h"

namespace qel_benchmark {

CurveWorks& curveWorks() {
    static CurveWorks works;
    return works;
}

} // namespace qel_benchmark

int main(int argc, char** argv) {
    qel_benchmark::Program program(argc, argv, "polyline");
    qel_benchmark::curveWorks().measure(program, qel_test::curveShapes());
}
