#ifndef QEL_FUZZ_CURVES_H
#define QEL_FUZZ_CURVES_H

// Curves for the fuzzer, and what every one of them holds to.

#include <cmath>
#include <cstddef>
#include <vector>

#include <qel/ParametricCurve.h>
#include <qel/QELError.h>

#include "Input.h"
#include "curve/ReferenceCurve.h"
#include "support/Curves.h"

namespace qel_fuzz {

using namespace qel_test;

/// Numbers without order among them: what is searched for by halves is found nowhere in particular.
inline bool hasNaN(const Values& values) {
    for (const double value : values) {
        if (std::isnan(value)) {
            return true;
        }
    }
    return false;
}

/// s-values that mostly do not decrease, of any range.
inline Values svaluesFor(Input& input, std::size_t n) {
    Values svalues = {input.flag() ? 0.0 : input.number<double>()};
    while (svalues.size() < n) {
        const double step = input.number<double>();
        svalues.push_back(svalues.back() + (input.integer(0, 50) == 0 ? step : std::abs(step)));
    }
    return svalues;
}

inline ParametricCurve::dim dimension(Input& input) {
    return static_cast<ParametricCurve::dim>(input.integer(0, 2));
}

/// A place at, beside or between the s-values.
inline double parameter(Input& input, const Values& svalues) {
    const double at = svalues[input.count(0, svalues.size() - 1)];
    switch (input.integer(0, 4)) {
    case 0:
        return at;
    case 1:
        return std::nextafter(at, input.flag() ? -10.0 : 10.0);
    case 2:
        return input.number<double>();
    default:
        return (at + svalues[input.count(0, svalues.size() - 1)]) * 0.5;
    }
}

/// The number of whole steps that fit between one value and the next, all together; NaN among them
/// gives NaN.
inline double stepsBetween(const Values& values, double step) {
    double steps = 0.0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double rise = std::abs(values[i] - values[i - 1]);
        steps += rise / step;
    }
    return steps;
}

/// True if so many points fit into little memory, or are so many that they must be refused.
inline bool isCheapOrRefused(double points) {
    return points < 2000.0 || points > 1e11;
}

/// Takes the errors that are reported, so that nothing is written.
class SilentReporter : public qel::ErrorReporter {
public:
    SilentReporter() : before_(setInstance(this)) {}
    ~SilentReporter() override { setInstance(before_); }
    SilentReporter(const SilentReporter&) = delete;
    SilentReporter& operator=(const SilentReporter&) = delete;

    void report(const qel::Error& error) override {
        require(error.getType() == qel::reportedError, "what is reported is of the kind reported");
        ++reports;
    }

    int reports = 0;

private:
    ErrorReporter* before_;
};

} // namespace qel_fuzz

#endif
