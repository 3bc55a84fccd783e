// Machine spacing: the machine epsilon scaled to the decade of a number.

#include "foundation/MachineSpacing.h"

#include <qel/NumericalUtils.h>

namespace qel {

double NumericalUtils::spacing(double x) {
    return spacingAt(x);
}

float NumericalUtils::spacing(float x) {
    return spacingAt(x);
}

} // namespace qel
