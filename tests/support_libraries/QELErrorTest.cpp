// The message classes and the process-wide reporter.

#include <qel/QELError.h>

#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Errors.h"
#include "support/Slots.h"
#include "support/StandardStreams.h"

namespace {

using qel_test::describe;
using qel_test::standardErrorOf;

// -- Messages ----

TEST(SystemMsg, StartsWithItsTextAndNoTokenFilled) {
    const qel::SystemMsg message("Index (%1) out of range %2");
    EXPECT_EQ(message.tokenCount, 0);
    EXPECT_EQ(message.text, "Index (%1) out of range %2");
}

TEST(SystemMsg, HoldsTheCounterBeforeTheText) {
    const qel::SystemMsg message("text");
    EXPECT_EQ(static_cast<const void*>(&message.tokenCount), &message);
    EXPECT_EQ(sizeof(message.tokenCount), 4u);
    EXPECT_GT(static_cast<const void*>(&message.text), &message.tokenCount);
}

TEST(SystemMsg, ConvertsToItsCurrentText) {
    qel::SystemMsg message("before");
    EXPECT_EQ(static_cast<std::string>(message), "before");
    message.text = "after";
    const std::string converted = message;
    EXPECT_EQ(converted, "after");
}

TEST(SystemMsg, IsNotMadeFromATextUnasked) {
    EXPECT_FALSE((std::is_convertible<std::string, qel::SystemMsg>::value));
}

TEST(UserMsg, StartsWithBothTextsAlike) {
    const qel::UserMsg message("Null pointer to %1.", nullptr);
    EXPECT_EQ(message.shown.text, "Null pointer to %1.");
    EXPECT_EQ(message.logged.text, "Null pointer to %1.");
    EXPECT_EQ(message.shown.tokenCount, 0);
    EXPECT_EQ(message.logged.tokenCount, 0);
}

TEST(UserMsg, ConvertsToTheTextShown) {
    qel::UserMsg message("text", nullptr);
    message.shown.text = "shown";
    message.logged.text = "logged";
    const std::string converted = message;
    EXPECT_EQ(converted, "shown");
}

TEST(UserMsg, LeavesItsFlagAlone) {
    bool flag = true;
    const qel::UserMsg message("text", &flag);
    EXPECT_TRUE(flag);
    flag = false;
    EXPECT_EQ(static_cast<std::string>(message), "text");
    EXPECT_FALSE(flag);
}

// -- Reporter ----

class Recorder : public qel::ErrorReporter {
public:
    void report(const qel::Error& error) override { reported.push_back(describe(error)); }
    std::vector<std::string> reported;
};

const qel::data::invalid kCondition("ParametricCurve", "intersectWithSegment", "Not plane.",
                                    qel::reportedError);

// Whatever a test installs is taken out again.
class ErrorReporter : public ::testing::Test {
protected:
    ~ErrorReporter() override { qel::ErrorReporter::setInstance(nullptr); }
};

TEST_F(ErrorReporter, IsThereWithoutBeingInstalled) {
    ASSERT_NE(qel::ErrorReporter::instance(), nullptr);
    EXPECT_EQ(qel::ErrorReporter::instance(), qel::ErrorReporter::instance());
}

TEST_F(ErrorReporter, HostsReporterTakesTheErrorWhole) {
    Recorder recorder;
    qel::ErrorReporter::setInstance(&recorder);
    EXPECT_EQ(qel::ErrorReporter::instance(), &recorder);
    qel::ErrorReporter::instance()->report(kCondition);
    EXPECT_EQ(recorder.reported, std::vector<std::string>{describe(kCondition)});
}

TEST_F(ErrorReporter, SetInstanceReturnsTheOneBefore) {
    qel::ErrorReporter* const builtIn = qel::ErrorReporter::instance();
    Recorder first;
    Recorder second;
    EXPECT_EQ(qel::ErrorReporter::setInstance(&first), builtIn);
    EXPECT_EQ(qel::ErrorReporter::setInstance(&second), &first);
    EXPECT_EQ(qel::ErrorReporter::setInstance(nullptr), &second);
    EXPECT_EQ(qel::ErrorReporter::instance(), builtIn);
}

TEST_F(ErrorReporter, NullRestoresTheBuiltInOneAlsoTwice) {
    qel::ErrorReporter* const builtIn = qel::ErrorReporter::instance();
    EXPECT_EQ(qel::ErrorReporter::setInstance(nullptr), builtIn);
    EXPECT_EQ(qel::ErrorReporter::setInstance(nullptr), builtIn);
    EXPECT_EQ(qel::ErrorReporter::instance(), builtIn);
}

TEST_F(ErrorReporter, BuiltInOneWritesOneLineForEachErrorAndCounts) {
    qel::ErrorReporter* const builtIn = qel::ErrorReporter::instance();
    const std::size_t before = builtIn->getReportCount();
    EXPECT_EQ(standardErrorOf([&] {
                  builtIn->report(kCondition);
                  builtIn->report(qel::internal::error("A", "b", "c", qel::argumentError));
              }),
              "ParametricCurve::intersectWithSegment: Not plane. (kind 8)\n"
              "A::b: c (kind 4)\n");
    EXPECT_EQ(builtIn->getReportCount(), before + 2);
}

TEST_F(ErrorReporter, HostsReporterKeepsTheBuiltInOneQuiet) {
    qel::ErrorReporter* const builtIn = qel::ErrorReporter::instance();
    const std::size_t before = builtIn->getReportCount();
    Recorder recorder;
    qel::ErrorReporter::setInstance(&recorder);
    EXPECT_EQ(standardErrorOf([] { qel::ErrorReporter::instance()->report(kCondition); }), "");
    EXPECT_EQ(builtIn->getReportCount(), before);
    EXPECT_EQ(recorder.getReportCount(), 0u);
}

TEST_F(ErrorReporter, ReportIsTheSecondVirtualOperationBehindTheDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor<qel::ErrorReporter>::value);
    EXPECT_EQ(qel_test::slotOf(&qel::ErrorReporter::report), qel_test::kFirstSlotAfterDestructor);
}

} // namespace
