// A curve as text, byte for byte.

#include <qel/ParametricCurve.h>

#include <cfloat>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <qel/QELStream.h>

#include "support/Curves.h"
#include "support/Errors.h"
#include "support/FullDisk.h"
#include "support/StandardStreams.h"

namespace {

using namespace qel_test;

template <typename... Values>
std::string formatted(const char* format, Values... values) {
    char buffer[4096];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

// A file of this test's own, removed at the end.
class TemporaryFile {
public:
    TemporaryFile()
        : path_(std::filesystem::path(::testing::TempDir()) /
                formatted("qel_text_%d_%s", static_cast<int>(::getpid()),
                          ::testing::UnitTest::GetInstance()->current_test_info()->name())) {}
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::string path() const { return path_.string(); }
    std::string content() const {
        std::ifstream file(path_, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

private:
    std::filesystem::path path_;
};

template <typename Print>
std::string printed(const Print& print) {
    const CapturedStandardOutput out;
    print();
    return out.text();
}

std::string pointLines(const ParametricCurve& curve, const char* format) {
    std::string text;
    for (const Point& p : curve.getCurve()) {
        text += formatted(format, p.x, p.y, p.z);
    }
    return text;
}

constexpr const char* kDoubleFormat = "%15.9e %15.9e %15.9e\n";
constexpr const char* kFloatFormat = "%15.5e %15.5e %15.5e\n";

// -- Files ----

TEST(TextOutput, FileHoldsOneLineForEachPointAndNoHeader) {
    const TemporaryFile file;
    ParametricCurve().exportToFile(file.path());
    EXPECT_EQ(file.content(), "0.000000000e+00 0.000000000e+00 0.000000000e+00\n"
                              "1.000000000e+00 1.000000000e+00 1.000000000e+00\n");
}

TEST(TextOutput, CurveFromFloatsIsWrittenWithFiveDigits) {
    const TemporaryFile file;
    const FloatPoints points{{0.1f, -2.0f, 3e10f}, {1.0f, 0.0f, 0.0f}};
    ParametricCurve(points, ParametricCurve::dim3D).exportToFile(file.path());
    EXPECT_EQ(file.content(), "    1.00000e-01    -2.00000e+00     3.00000e+10\n"
                              "    1.00000e+00     0.00000e+00     0.00000e+00\n");
}

TEST(TextOutput, FileThatExistsIsReplaced) {
    const TemporaryFile file;
    std::ofstream(file.path()) << std::string(10000, 'x');
    ParametricCurve().exportToFile(file.path());
    EXPECT_EQ(file.content(), pointLines(ParametricCurve(), kDoubleFormat));
}

TEST(TextOutput, NumbersAreFormattedAsPrintfDoes) {
    RandomCurves random(51);
    Points points{{DBL_MAX, -DBL_MAX, DBL_MIN},
                  {5e-324, -0.0, 0.5},
                  {std::numeric_limits<double>::infinity(),
                   -std::numeric_limits<double>::infinity(),
                   std::numeric_limits<double>::quiet_NaN()},
                  {DBL_EPSILON, 1.2345678905, 1.2345678915},
                  {9.9999999995, 9.999995, 99999.95}};
    for (int i = 0; i < 20000; ++i) {
        points.push_back(random.point(std::pow(10.0, random.uniform(-300.0, 300.0))));
    }
    const TemporaryFile file;
    ParametricCurve curve(points, ParametricCurve::dim3D);
    curve.exportToFile(file.path());
    EXPECT_EQ(file.content(), pointLines(curve, kDoubleFormat));
    const ParametricCurve single(narrowed(points), ParametricCurve::dim3D);
    single.exportToFile(file.path());
    EXPECT_EQ(file.content(), pointLines(single, kFloatFormat));
}

// C libraries differ in what they print for it.
TEST(TextOutput, NotANumberKeepsItsSign) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const TemporaryFile file;
    const Points points = {{std::copysign(nan, -1.0), std::copysign(nan, 1.0), 0.0}, {0, 0, 0}};
    const ParametricCurve curve(points, ParametricCurve::dim3D);
    curve.exportToFile(file.path());
    const std::string firstLine = "           -nan             nan 0.000000000e+00\n";
    EXPECT_EQ(file.content().substr(0, firstLine.size()), firstLine);
}

TEST(TextOutput, FileThatCannotBeOpenedIsAnError) {
    const std::string path = ::testing::TempDir() + "qel_no_such_folder/curve.txt";
    EXPECT_THAT([&] { ParametricCurve().exportToFile(path); },
                throwsInvalid("QELStream", "constructor", "Cannot open file " + path));
    EXPECT_THAT(
        [&] { ParametricCurve().exportToFile(::testing::TempDir()); },
        throwsInvalid("QELStream", "constructor", "Cannot open file " + ::testing::TempDir()));
    EXPECT_THAT([&] { ParametricCurve().exportToFile(""); },
                throwsInvalid("QELStream", "constructor", "Cannot open file "));
}

// Few bytes fail when the file is closed, many while they are written.
TEST(TextOutput, FullDiskIsAnError) {
    if (!FullDisk::isAvailable) {
        GTEST_SKIP() << "the size of files cannot be limited on this system";
    }
    const TemporaryFile file;
    const auto refused = throwsInvalid("QELStream", "close", "Cannot write file " + file.path());
    const ParametricCurve many(Points(50000, Point(1, 2, 3)), ParametricCurve::dim3D);
    [[maybe_unused]] const FullDisk full;
    EXPECT_THAT([&] { ParametricCurve().exportToFile(file.path()); }, refused);
    EXPECT_THAT([&] { many.exportToFile(file.path()); }, refused);
}

TEST(TextOutput, StreamKnowsNoOtherModeThanWriting) {
    const TemporaryFile file;
    EXPECT_THAT(
        [&] { qel::QELStream(file.path(), 1, false); },
        throwsInvalid("QELStream", "constructor", "Unknown mode 1 for file " + file.path()));
    EXPECT_FALSE(std::filesystem::exists(file.path()));
}

// -- Standard output ----

TEST(TextOutput, PrintedCurveHasATitleUnlessItIsEmpty) {
    const ParametricCurve curve;
    const std::string lines = pointLines(curve, kDoubleFormat);
    EXPECT_EQ(printed([&] { curve.printCurve("blade 3"); }), "blade 3\n" + lines);
    EXPECT_EQ(printed([&] { curve.printCurve(""); }), lines);
    EXPECT_EQ(printed([&] { curve.printCurve(" "); }), " \n" + lines);
    const ParametricCurve single(narrowed(curve.getCurve()), ParametricCurve::dim3D);
    EXPECT_EQ(printed([&] { single.printCurve(""); }), pointLines(single, kFloatFormat));
}

TEST(TextOutput, PrintedSvaluesAreAlignedInEighteenCharacters) {
    const ParametricCurve curve;
    const std::string lines = "   0.000000000e+00\n   1.000000000e+00\n";
    EXPECT_EQ(printed([&] { curve.printSvalues(""); }), lines);
    EXPECT_EQ(printed([&] { curve.printSvalues("s"); }), "s\n" + lines);
}

TEST(TextOutput, NumberedPointsKeepTheirOddBlanks) {
    const std::string text = printed([] { ParametricCurve().printCurveAndSvalues("c"); });
    const std::string zero = "      0.0000000e+00";
    const std::string one = "      1.0000000e+00";
    EXPECT_EQ(text, "c\n"
                    "  0" +
                        zero + zero + zero + " " + zero + " \n" + "  1" + one + one + one + " " +
                        one + " \n");
    EXPECT_EQ(printed([] { ParametricCurve().printCurveAndSvalues(""); }), text.substr(2));
}

TEST(TextOutput, PrintedNumbersAreFormattedAsPrintfDoes) {
    RandomCurves random(52);
    Points points;
    for (int i = 0; i < 1200; ++i) {
        points.push_back(random.point(std::pow(10.0, random.uniform(-300.0, 300.0))));
    }
    const ParametricCurve curve(points, random.svalues(points.size()), ParametricCurve::dim3D);
    std::string numbered;
    std::string svalues;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point& p = points[i];
        const double s = curve.getSvalues()[i];
        numbered +=
            formatted("%3d %18.7e %18.7e %18.7e  %18.7e \n", static_cast<int>(i), p.x, p.y, p.z, s);
        svalues += formatted("%18.9e\n", s);
    }
    EXPECT_EQ(printed([&] { curve.printCurveAndSvalues(""); }), numbered);
    EXPECT_EQ(printed([&] { curve.printSvalues(""); }), svalues);
    EXPECT_EQ(printed([&] { curve.printCurve(""); }), pointLines(curve, kDoubleFormat));
}

TEST(TextOutput, StateOfStandardOutputDoesNotEnter) {
    const std::string expected = printed([] { ParametricCurve().printCurve("t"); });
    const CapturedStandardOutput out;
    std::cout.width(40);
    ParametricCurve().printCurve("t");
    std::cout.width(0);
    EXPECT_EQ(out.text(), expected);
}

// Every line is flushed, so that text which others write meanwhile falls between lines.
TEST(TextOutput, PrintedLinesAreFlushed) {
    struct Counter : std::stringbuf {
        int flushes = 0;
        int sync() override {
            ++flushes;
            return std::stringbuf::sync();
        }
    } counter;
    std::streambuf* before = std::cout.rdbuf(&counter);
    ParametricCurve().printCurve("t");
    std::cout.rdbuf(before);
    EXPECT_EQ(counter.flushes, 3);
}

} // namespace
