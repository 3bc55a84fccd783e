// What the program writes, what it leaves alone, and what it does where it cannot write.
#include "Flows.h"
#include "Program.h"

#include <vtkMultiBlockDataSet.h>
#include <vtkXMLImageDataWriter.h>
#include <vtkXMLMultiBlockDataReader.h>
#include <vtkXMLMultiBlockDataWriter.h>

namespace {

namespace fs = std::filesystem;

class Outputs : public qel_test::Program {
protected:
    void SetUp() override {
        qel_test::Program::SetUp();
        writeData<vtkXMLImageDataWriter>("flow.vti", qel_test::rotation(12, 12, 12));
        vtkNew<vtkMultiBlockDataSet> blocks;
        blocks->SetBlock(0, qel_test::rotation(9, 5, 5));
        blocks->SetBlock(1, qel_test::rotation(4, 5, 6));
        writeData<vtkXMLMultiBlockDataWriter>("blocks.vtm", blocks);
        write("curve.csv", "x,y\n0,0\n1,0\n1,1\n");
    }

    vtkIdType pointsOf(const std::string& file) const {
        vtkNew<vtkXMLMultiBlockDataReader> reader;
        reader->SetFileName((folder / file).c_str());
        reader->Update();
        return vtkMultiBlockDataSet::SafeDownCast(reader->GetOutput())->GetNumberOfPoints();
    }
};

TEST_F(Outputs, OneThatIsThereStaysIfTheRunFails) {
    const std::string flow = text("flow.vti");
    write("truncated.vti", flow.substr(0, flow.size() / 2));
    write("out.vti", "precious");
    EXPECT_EQ(qel("vortex truncated.vti -o out.vti").status, 2);
    EXPECT_EQ(text("out.vti"), "precious");
}

TEST_F(Outputs, MayBeInputs) {
    ASSERT_EQ(qel("vortex flow.vti --fields q -o flow.vti").status, 0);
    const auto again = qel("vortex flow.vti --fields q -o flow.vti");
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_NE(again.err.find("the input's array Q is replaced"), std::string::npos);
    ASSERT_EQ(qel("vortex blocks.vtm --fields q -o blocks.vtm").status, 0);
    EXPECT_EQ(pointsOf("blocks.vtm"), 9 * 5 * 5 + 4 * 5 * 6);
    ASSERT_EQ(qel("curve curve.csv --resample 9 -o curve.csv").status, 0);
    EXPECT_EQ(rows(text("curve.csv")).size(), 9U);
}

// Blocks go to a folder named after the file. One with anything else in it, such as the case that
// was read, is not ours.
TEST_F(Outputs, FoldersOfOthersAreLeftAlone) {
    fs::create_directory(folder / "case");
    write("case/blocks_0.vti", "mesh");
    write("case/notes.txt", "precious");
    for (const char* output : {"case", "case.vtm"}) {
        expectRefused(std::string("vortex blocks.vtm -o ") + output,
                      "there is something else of that name");
    }
    EXPECT_EQ(text("case/notes.txt"), "precious");
    write("file", "precious");
    expectRefused("vortex blocks.vtm -o file.vtm", "there is something else of that name");
    EXPECT_EQ(text("file"), "precious");
}

TEST_F(Outputs, BlocksOfAnEarlierRunAreReplaced) {
    ASSERT_EQ(qel("vortex blocks.vtm --fields q -o 'a.b result'").status,
              2); // an ending of its own
    ASSERT_EQ(qel("vortex blocks.vtm --fields q -o 'my result'").status, 0);
    write("my result/my result_7.vti", "of an earlier run with more blocks");
    const auto again = qel("vortex blocks.vtm --fields q -o 'my result'");
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(pointsOf("my result.vtm"), 9 * 5 * 5 + 4 * 5 * 6);
    EXPECT_FALSE(fs::exists(folder / "my result/my result_7.vti"));
}

TEST_F(Outputs, LinksAreWrittenThrough) {
    fs::create_directory(folder / "far");
    write("far/there.csv", "old");
    fs::create_symlink("far/there.csv", folder / "link.csv");
    ASSERT_EQ(qel("curve curve.csv -o link.csv").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(rows(text("far/there.csv")).size(), 3U);
}

// To rename a file over a device would take its place.
TEST_F(Outputs, DevicesAndPipesAreNoFiles) {
    ASSERT_EQ(shell("mkfifo pipe.csv").status, 0);
    expectRefused("curve curve.csv -o pipe.csv", "cannot write pipe.csv: it is no ordinary file");
    expectRefused("vortex flow.vti --stats pipe.csv", "it is no ordinary file");
    expectRefused("nearest curve.csv curve.csv -o pipe.csv", "it is no ordinary file");
}

// Open for reading alone, it takes nothing.
TEST_F(Outputs, StandardOutputThatCannotBeWrittenIsAnError) {
    for (const char* arguments : {"vortex flow.vti --stats -", "vortex flow.vti",
                                  "curve curve.csv --print", "nearest curve.csv curve.csv"}) {
        SCOPED_TRACE(arguments);
        const auto run = shell(std::string("qel ") + arguments + " 1</dev/null");
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err.find("qel: error: cannot write to standard output"), std::string::npos);
    }
}

TEST_F(Outputs, AFullDiskLeavesNothing) {
    const auto before = files();
    write("long.csv", [] {
        std::string rows = "x,y\n";
        for (int i = 0; i < 3000; ++i) {
            rows += std::to_string(i) + "," + std::to_string(i % 7) + "\n";
        }
        return rows;
    }());
    for (const char* arguments :
         {"vortex flow.vti -o out", "vortex flow.vti --image out.png", "vortex blocks.vtm -o out",
          "curve long.csv -o out.csv", "curve long.csv -o out.vtp", "curve long.csv -o out.vtk",
          "curve long.csv -o out.txt", "curve long.csv --image out.svg",
          "nearest long.csv long.csv -o out.csv"}) {
        SCOPED_TRACE(arguments);
        // A limit to the size of files stands in for it.
        const auto run = shell(std::string("ulimit -f 8; qel ") + arguments);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_NE(run.err.find("qel: error: "), std::string::npos) << run.err;
        fs::rename(folder / "long.csv", folder / "keep");
        EXPECT_EQ(files().size(), before.size() + 1);
        fs::rename(folder / "keep", folder / "long.csv");
    }
}

TEST_F(Outputs, GoToRelativePathsWithBlanks) {
    fs::create_directories(folder / "my flows/of today");
    fs::rename(folder / "flow.vti", folder / "my flows/flow 1.vti");
    const auto run =
        shell("cd 'my flows' && qel vortex 'flow 1.vti' -o '../my flows/of today/out 1' "
              "--stats 'of today/s 1.csv' --image 'of today/p 1.png'");
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* file : {"out 1.vti", "s 1.csv", "p 1.png"}) {
        EXPECT_TRUE(fs::exists(folder / "my flows/of today" / file)) << file;
    }
}

} // namespace
