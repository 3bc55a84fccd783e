// qel demo, and what happens to a run that is stopped.
#include "Pictures.h"
#include "Program.h"

namespace {

namespace fs = std::filesystem;

using DemoCommand = qel_test::Program;

TEST_F(DemoCommand, LeavesDataTablesAndPictures) {
    const auto run = qel("demo -o out --size 48");
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* file : {"flow.vti", "vortices.vti", "vortices.csv", "section.csv",
                             "section-25.vtp", "section.svg"}) {
        EXPECT_TRUE(fs::exists(folder / "out" / file)) << file;
        EXPECT_NE(run.out.find(file), std::string::npos) << file;
    }
    qel_test::expectPicture((folder / "out/vortices.png").string());
    qel_test::expectPicture((folder / "out/section.png").string());
    // The flow has no divergence but for the differences.
    const auto stats = statistics(text("out/vortices.csv"));
    EXPECT_LT(std::abs(stats.at("Divergence").mean), 1e-3);
    EXPECT_GT(stats.at("SwirlStrength").maximum, 2.0);
}

TEST_F(DemoCommand, AnInterruptStopsItCleanly) {
    // Once a file stands in its folder the program is at work, however long it took to start.
    const auto run =
        shell("'" QEL_PROGRAM "' demo -o out --size 260 & program=$!; "
              "while kill -0 $program && [ -z \"$(ls -A out 2>/dev/null)\" ]; do sleep 0.02; done; "
              "kill -INT $program; wait $program");
    EXPECT_EQ(run.status, 130);
    EXPECT_EQ(run.err.find("qel: error: interrupted"), 0U) << run.err;
    for (const auto& entry : fs::directory_iterator(folder / "out")) {
        EXPECT_NE(entry.path().filename().string().rfind(".qel-", 0), 0U);
        EXPECT_NE(entry.path().filename(), "vortices.vti");
    }
}

TEST_F(DemoCommand, CanLeaveOutThePictures) {
    const auto run = qel("demo -o out --size 12 --no-pictures");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_FALSE(fs::exists(folder / "out/vortices.png"));
}

} // namespace
