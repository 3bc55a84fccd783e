#ifndef QEL_TESTS_ACCURACY_FLOWS_H
#define QEL_TESTS_ACCURACY_FLOWS_H

// Velocity gradients of flows that are known in closed form, at points spread over each flow.

#include <array>
#include <vector>

namespace qel_accuracy {

using Real = long double;
using Gradient = std::array<Real, 9>; // T_ij = du_i/dx_j, row by row

struct Flow {
    const char* name;
    std::vector<Gradient> gradients; // of size 1 or so
};

const std::vector<Flow>& flows();

} // namespace qel_accuracy

#endif
