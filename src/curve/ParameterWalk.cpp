#include "curve/ParameterWalk.h"

namespace qel {

bool ParameterWalk::inOrder(const std::vector<double>& svalues) {
    bool ordered = true;
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        ordered &= svalues.data()[i - 1] <= svalues.data()[i]; // all of them, so that lanes help
    }
    return ordered;
}

Point ParameterWalk::at(double s) {
    return pointAtParameter(points_, svalues_, s, hi_);
}

} // namespace qel
