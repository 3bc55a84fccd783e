// Arguments of operations on curves, and what the operations print.
#include "curves/Arguments.h"

#include <cmath>
#include <iostream>

#include "console/Messages.h"
#include "console/Progress.h"
#include "console/Text.h"

namespace program {

double numberOf(const std::string& word) {
    const std::optional<double> value = asNumber(word);
    refuseIf(!value.has_value() || !std::isfinite(*value), "\"", word, "\" is no number");
    return *value;
}

int countOf(const std::string& word) {
    const double value = numberOf(word);
    refuseIf(value != std::floor(value) || std::abs(value) > 1e9, "\"", word,
             "\" is no whole number");
    return static_cast<int>(value);
}

Point triplet(const std::string& word) {
    const Words parts = splitAt(',', word);
    refuseIf(parts.size() != 3, "\"", word, "\" is no point or direction x,y,z");
    return {numberOf(parts[0]), numberOf(parts[1]), numberOf(parts[2])};
}

std::string text(const Point& p) {
    return shortest(p.x) + "," + shortest(p.y) + "," + shortest(p.z);
}

std::ostream& out() {
    wipeBar();
    return std::cout;
}

} // namespace program
