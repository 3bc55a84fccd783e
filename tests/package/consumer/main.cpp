// An external consumer: calls the library, catches what it throws across the library's border, and
// installs a reporter of its own. Leaves with the number of things that went wrong.

#include <vector>

#include <qel/NumericalUtils.h>
#include <qel/ParametricCurve.h>
#include <qel/QELError.h>
#include <qel/QELException.h>
#include <qel/QELMatrix3base.h>
#include <qel/QELStream.h>
#include <qel/TripletBase.h>

#include "../Expect.h"

#if defined(__GLIBCXX__) && !defined(_GLIBCXX_ASSERTIONS)
#error "the package must switch the checked element access on"
#endif

namespace {

class Counter : public qel::ErrorReporter {
public:
    void report(const qel::Error&) override { ++count; }
    int count = 0;
};

template <typename Exception, typename Action>
bool throws(const Action& action) {
    try {
        action();
    } catch (const Exception&) {
        return true;
    }
    return false;
}

void checkLibrary() {
    expect(qel::NumericalUtils::spacing(50.0) == 10.0 * qel::NumericalUtils::spacing(5.0),
           "spacing");
    expect(qel::TripletBase<double>(3.0, 0.0, 4.0).length() == 5.0, "length");
    double s = 0.0;
    const qel::ParametricCurve diagonal;
    const auto foot = diagonal.projectPoint(qel::TripletBase<double>(2.0, 2.0, 2.0), s);
    expect(foot == diagonal.getLastPoint() && s == 1.0, "projection");
}

void checkExceptions() {
    const auto onePoint = [] {
        qel::ParametricCurve(std::vector<qel::TripletBase<double>>(1), qel::ParametricCurve::dim3D);
    };
    expect(throws<qel::internal::error>(onePoint), "internal::error from the library");
    const auto openNowhere = [] { qel::QELStream("/no/such/folder/file", 2, false); };
    expect(throws<qel::data::invalid>(openNowhere), "data::invalid from a support library");
    const auto badRow = [] { qel::QELMatrix3base<float>()[3][0] = 1.0f; };
    expect(throws<qel::Error>(badRow), "Error from a header");
}

void checkReporter() {
    Counter counter;
    qel::ErrorReporter* const before = qel::ErrorReporter::setInstance(&counter);
    qel::ErrorReporter::instance()->report(
        qel::data::invalid("Consumer", "main", "text", qel::reportedError));
    expect(qel::ErrorReporter::setInstance(before) == &counter, "reporter in force");
    expect(counter.count == 1, "report");
}

} // namespace

int main() {
    checkLibrary();
    checkExceptions();
    checkReporter();
    return failures;
}
