#ifndef QEL_TESTS_ACCURACY_MEASUREMENTS_H
#define QEL_TESTS_ACCURACY_MEASUREMENTS_H

// The errors of the library's quantities, measured against closed forms.

#include <string>
#include <vector>

namespace qel_accuracy {

// The largest errors of a quantity of the gradient T over all points of a flow, each relative to
// |T| (Frobenius norm) to the power of the quantity's unit.
struct FlowRow {
    std::string flow;
    std::string quantity;
    double inFloat;        // gradients of size 1, as they are
    double inScaledFloat;  // sizes from 1e-12 to 1e12, scaled
    double inScaledDouble; // the same
};

std::vector<FlowRow> measureFlows();

// The relative error of the length of a polyline with n edges between points of a curve.
struct LengthRow {
    std::string curve;
    double coarse; // n = 128
    double fine;   // n = 1024
    // log2 of the ratio of the errors at 512 and at 1024.
    double order;
};

std::vector<LengthRow> measureLengths();

} // namespace qel_accuracy

#endif
