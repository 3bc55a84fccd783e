// The output file stream: what reaches the file, and what is refused.

#include <qel/QELStream.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Errors.h"
#include "support/FullDisk.h"
#include "support/StandardStreams.h"

namespace {

using qel::QELStream;
using qel_test::standardErrorOf;
using qel_test::throwsInvalid;

constexpr int kWrite = 2;

bool exists(const std::string& path) {
    return std::ifstream(path).is_open();
}

std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

// A path of its own for each test, removed before and after it.
class QELStreamTest : public ::testing::Test {
protected:
    QELStreamTest()
        : path_(::testing::TempDir() + "qel_stream_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name()) {
        std::remove(path_.c_str());
    }
    ~QELStreamTest() override { std::remove(path_.c_str()); }

    const std::string path_;
};

TEST_F(QELStreamTest, WritesLinesToTheFile) {
    QELStream stream(path_, kWrite, false);
    stream << "first\n" << 2.5 << "\n";
    stream.close();
    EXPECT_EQ(contentOf(path_), "first\n2.5\n");
}

TEST_F(QELStreamTest, FlagTranslatesLineEndsIntoTheSystemsOwn) {
    QELStream stream(path_, kWrite, true);
    stream << "a\nb\n";
    stream.close();
#if defined(_WIN32)
    EXPECT_EQ(contentOf(path_), "a\r\nb\r\n");
#else
    EXPECT_EQ(contentOf(path_), "a\nb\n");
#endif
}

TEST_F(QELStreamTest, ConstructionEmptiesAnExistingFile) {
    std::ofstream(path_) << "what was there before";
    QELStream stream(path_, kWrite, false);
    stream.close();
    EXPECT_TRUE(exists(path_));
    EXPECT_EQ(contentOf(path_), "");
}

TEST_F(QELStreamTest, DestructionClosesAFileThatWasNotClosed) {
    { QELStream(path_, kWrite, false) << "written"; }
    EXPECT_EQ(contentOf(path_), "written");
}

TEST_F(QELStreamTest, IsClosedAfterClose) {
    QELStream stream(path_, kWrite, false);
    EXPECT_TRUE(stream.is_open());
    stream.close();
    EXPECT_FALSE(stream.is_open());
}

TEST_F(QELStreamTest, RefusesToCloseTwice) {
    QELStream stream(path_, kWrite, false);
    stream.close();
    EXPECT_THAT([&] { stream.close(); },
                throwsInvalid("QELStream", "close", "Cannot write file " + path_));
}

TEST_F(QELStreamTest, RefusesEveryModeButTwoAndTouchesNoFile) {
    for (const int mode : {-1, 0, 1, 3}) {
        SCOPED_TRACE(mode);
        EXPECT_THAT([&] { QELStream(path_, mode, false); },
                    throwsInvalid("QELStream", "constructor",
                                  "Unknown mode " + std::to_string(mode) + " for file " + path_));
        EXPECT_FALSE(exists(path_));
    }
}

TEST_F(QELStreamTest, RefusesAPathInAMissingFolder) {
    const std::string path = path_ + "/missing/file.txt";
    EXPECT_THAT([&] { QELStream(path, kWrite, false); },
                throwsInvalid("QELStream", "constructor", "Cannot open file " + path));
}

TEST_F(QELStreamTest, RefusesAnEmptyPathAndAFolder) {
    EXPECT_THAT([] { QELStream("", kWrite, false); },
                throwsInvalid("QELStream", "constructor", "Cannot open file "));
    const std::string folder = ::testing::TempDir();
    EXPECT_THAT([&] { QELStream(folder, kWrite, false); },
                throwsInvalid("QELStream", "constructor", "Cannot open file " + folder));
}

// On a full disk an ordinary stream loses what it held back and says nothing.
TEST_F(QELStreamTest, CloseReportsAFullDisk) {
    if (!qel_test::FullDisk::isAvailable) {
        GTEST_SKIP() << "the size of files cannot be limited on this system";
    }
    [[maybe_unused]] const qel_test::FullDisk full;
    QELStream stream(path_, kWrite, false);
    stream << "held back until the file is closed";
    EXPECT_TRUE(stream.good());
    EXPECT_THAT([&] { stream.close(); },
                throwsInvalid("QELStream", "close", "Cannot write file " + path_));
}

TEST_F(QELStreamTest, CloseReportsAnEarlierFailureToWrite) {
    QELStream stream(path_, kWrite, false);
    stream.setstate(std::ios::badbit);
    EXPECT_THAT([&] { stream.close(); },
                throwsInvalid("QELStream", "close", "Cannot write file " + path_));
    EXPECT_FALSE(stream.is_open());
}

TEST_F(QELStreamTest, DestructionOfAFailedStreamIsSilent) {
    EXPECT_EQ(standardErrorOf([&] {
                  QELStream stream(path_, kWrite, false);
                  stream.setstate(std::ios::badbit);
              }),
              "");
}

TEST_F(QELStreamTest, IsAnOrdinaryOutputStream) {
    EXPECT_TRUE((std::is_base_of<std::ofstream, QELStream>::value));
}

} // namespace
