#include "curve/ParameterWalk.h"

namespace qel {

bool ParameterWalk::inOrder(const std::vector<double>& svalues) {
    bool ordered = true;
    for (std::size_t i = 1; i < svalues.size(); ++i) {
        ordered &= svalues.data()[i - 1] <= svalues.data()[i]; // all of them, so that lanes help
    }
    return ordered;
}

Bracket ParameterWalk::farBracket(const std::vector<double>& svalues, double s) {
    return bracketOf(svalues, s);
}

} // namespace qel
