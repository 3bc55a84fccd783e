// qel vortex on files that the tests make.
#include "Flows.h"
#include "Pictures.h"
#include "Program.h"

#include <cmath>

#include <vtkDataSetWriter.h>
#include <vtkIntArray.h>
#include <vtkMultiBlockDataSet.h>
#include <vtkPointDataToCellData.h>
#include <vtkUnsignedCharArray.h>
#include <vtkXMLImageDataReader.h>
#include <vtkXMLImageDataWriter.h>
#include <vtkXMLMultiBlockDataReader.h>
#include <vtkXMLMultiBlockDataWriter.h>

namespace {

class VortexCommand : public qel_test::Program {
protected:
    void writeXml(const std::string& file, vtkImageData* image) const {
        writeData<vtkXMLImageDataWriter>(file, image);
    }
};

TEST_F(VortexCommand, WritesFieldsStatisticsAndAPicture) {
    writeXml("in.vti", qel_test::rotation(9, 9, 5));
    const auto run = qel("vortex in.vti -o out.vti --image out.png --stats stats.csv");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("point array velocity"), std::string::npos);
    EXPECT_NE(run.out.find("SwirlStrength"), std::string::npos);
    const auto stats = statistics(text("stats.csv"));
    ASSERT_EQ(stats.size(), 14U);
    EXPECT_NEAR(stats.at("Vorticity magnitude").mean, 2.0, 1e-5);
    EXPECT_NEAR(stats.at("Lambda2").minimum, -1.0, 1e-5);
    EXPECT_NEAR(stats.at("Q").maximum, 1.0, 1e-5);
    EXPECT_EQ(stats.at("SwirlStrength").valid, 9 * 9 * 5);

    vtkNew<vtkXMLImageDataReader> reader;
    reader->SetFileName((folder / "out.vti").c_str());
    reader->Update();
    EXPECT_EQ(reader->GetOutput()->GetPointData()->GetNumberOfArrays(), 15);
    EXPECT_NE(text("out.vti").find("vtkLZ4DataCompressor"), std::string::npos);
    qel_test::expectPicture((folder / "out.png").string());
    EXPECT_EQ(files(), (std::vector<std::string>{"in.vti", "out.png", "out.vti", "stats.csv"}));
}

TEST_F(VortexCommand, GivesTheSameBitsOnAnyNumberOfThreads) {
    writeXml("in.vti", qel_test::rotation(33, 32, 31)); // several blocks of points
    ASSERT_EQ(qel("vortex in.vti -o expected.vti --stats expected.csv").status, 0);
    for (const int threads : {1, 2, 4}) {
        const auto run =
            qel("vortex in.vti -o out.vti --stats stats.csv --threads " + std::to_string(threads));
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(text("stats.csv"), text("expected.csv")) << threads;
        EXPECT_TRUE(text("out.vti") == text("expected.vti")) << threads;
    }
}

TEST_F(VortexCommand, RefusesNumbersOfThreadsThatCannotBe) {
    writeXml("in.vti", qel_test::rotation(5, 5, 5));
    for (const std::string number : {"0", "-1", "5000", "many"}) {
        const auto run = qel("vortex in.vti --threads " + number);
        EXPECT_EQ(run.status, 2) << number;
        EXPECT_NE(run.err.find("--threads"), std::string::npos) << run.err;
    }
}

TEST_F(VortexCommand, WritesOnlyTheFieldsAskedFor) {
    writeXml("in.vti", qel_test::rotation(5, 5, 5));
    const auto run = qel("vortex in.vti --fields 'q, Divergence' -o out --image p.png --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(statistics(run.out).size(), 2U);
    vtkNew<vtkXMLImageDataReader> reader;
    reader->SetFileName((folder / "out.vti").c_str());
    reader->Update();
    EXPECT_EQ(reader->GetOutput()->GetPointData()->GetNumberOfArrays(), 3);
}

TEST_F(VortexCommand, DrawsPlaneFlowsAsContours) {
    writeXml("in.vti", qel_test::rotation(9, 9, 1));
    const auto run = qel("vortex in.vti --image p.png");
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(run.err.find("warning"), std::string::npos) << run.err;
    qel_test::expectPicture((folder / "p.png").string());
    EXPECT_NE(qel("vortex in.vti --image p.png --iso q=0.1").err.find("the value of --iso has no"),
              std::string::npos);
}

TEST_F(VortexCommand, ReadsLegacyFilesInTextAndBinary) {
    for (const bool binary : {false, true}) {
        vtkNew<vtkDataSetWriter> writer;
        writer->SetInputData(qel_test::rotation(5, 6, 4, "vectors"));
        writer->SetFileName((folder / "in.vtk").c_str());
        binary ? writer->SetFileTypeToBinary() : writer->SetFileTypeToASCII();
        writer->Write();
        const auto run = qel("vortex in.vtk --fields vorticity --stats -");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NEAR(statistics(run.out).at("Vorticity magnitude").maximum, 2.0, 1e-4);
    }
}

TEST_F(VortexCommand, KeepsTheBlocksOfAMultiBlockFile) {
    vtkNew<vtkMultiBlockDataSet> blocks;
    blocks->SetBlock(0, qel_test::rotation(5, 5, 5));
    blocks->SetBlock(1, qel_test::rotation(4, 5, 6));
    blocks->SetBlock(2, qel_test::rotation(4, 5, 1)); // a wall beside the volumes
    writeData<vtkXMLMultiBlockDataWriter>("in.vtm", blocks);
    const auto run = qel("vortex in.vtm --fields q -o out.vtm --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(statistics(run.out).at("Q").valid, 125 + 120);
    vtkNew<vtkXMLMultiBlockDataReader> reader;
    reader->SetFileName((folder / "out.vtm").c_str());
    reader->Update();
    auto* output = vtkMultiBlockDataSet::SafeDownCast(reader->GetOutput());
    ASSERT_EQ(output->GetNumberOfBlocks(), 3U);
}

TEST_F(VortexCommand, SeveralFilesBecomeBlocks) {
    writeXml("a.vti", qel_test::rotation(5, 5, 5));
    writeXml("b.vti", qel_test::rotation(4, 4, 4));
    const auto run = qel("vortex a.vti b.vti --fields q --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(statistics(run.out).at("Q").valid, 125 + 64);
}

// -- Finding the velocity ----

TEST_F(VortexCommand, TurnsMomentumAndDensityIntoVelocity) {
    auto image = qel_test::rotation(5, 5, 5, "Momentum");
    qel_test::addArray(image, "Density", 1, 4.0);
    writeXml("in.vti", image);
    const auto run = qel("vortex in.vti --fields vorticity --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("Momentum divided by Density"), std::string::npos);
    EXPECT_NEAR(statistics(run.out).at("Vorticity magnitude").mean, 0.5, 1e-5);
}

// Whole numbers divided by a density are none.
TEST_F(VortexCommand, TurnsMomentumInWholeNumbersIntoVelocity) {
    auto image = qel_test::rotation(5, 5, 5);
    vtkNew<vtkIntArray> momentum;
    momentum->SetName("Momentum");
    momentum->SetNumberOfComponents(3);
    for (int i = 0; i < 125; ++i) {
        momentum->InsertNextTuple3(-(i / 5 % 5), i % 5, 0);
    }
    image->GetPointData()->RemoveArray("velocity");
    image->GetPointData()->AddArray(momentum);
    qel_test::addArray(image, "Density", 1, 4.0);
    writeXml("in.vti", image);
    const auto run = qel("vortex in.vti --fields vorticity --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NEAR(statistics(run.out).at("Vorticity magnitude").minimum, 2.0, 1e-5);
    EXPECT_NEAR(statistics(run.out).at("Vorticity magnitude").maximum, 2.0, 1e-5);
}

TEST_F(VortexCommand, TakesVelocitiesOnCells) {
    vtkNew<vtkPointDataToCellData> cells;
    cells->SetInputData(qel_test::rotation(6, 6, 6));
    cells->Update();
    writeXml("in.vti", vtkImageData::SafeDownCast(cells->GetOutput()));
    const auto run = qel("vortex in.vti -o out.vti --stats - --image p.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("cell array velocity"), std::string::npos);
    EXPECT_EQ(statistics(run.out).at("Q").valid, 125);
    EXPECT_NEAR(statistics(run.out).at("Q").mean, 1.0, 1e-5);
}

TEST_F(VortexCommand, TakesVelocitiesOfTwoComponentsInAnyPlane) {
    for (const int normal : {0, 1, 2}) {
        SCOPED_TRACE(normal);
        vtkNew<vtkImageData> image;
        int size[3] = {8, 8, 8};
        size[normal] = 1;
        image->SetDimensions(size);
        vtkNew<vtkFloatArray> velocity;
        velocity->SetName("U");
        velocity->SetNumberOfComponents(normal == 2 ? 2 : 3);
        for (vtkIdType i = 0; i < 64; ++i) {
            const double* p = image->GetPoint(i);
            double u[3] = {p[2] - p[1], p[0] - p[2], p[1] - p[0]};
            u[normal] = 0.0; // a plane flow
            velocity->InsertNextTuple(u);
        }
        image->GetPointData()->AddArray(velocity);
        writeXml("in.vti", image);
        const auto run = qel("vortex in.vti --stats - --image p.png");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NEAR(statistics(run.out).at("Q").minimum, 1.0, 1e-5);
        EXPECT_NEAR(statistics(run.out).at("SwirlStrength").maximum, 1.0, 1e-5);
        qel_test::expectPicture((folder / "p.png").string());
    }
}

// A shear has no vortex; the rounding of its velocities makes some.
TEST_F(VortexCommand, TakesVorticesOfRoundingAwayAndCountsThem) {
    auto image = qel_test::rotation(9, 9, 9);
    vtkDataArray* velocity = image->GetPointData()->GetArray("velocity");
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        const double noise = 1e-6 * static_cast<double>(i * 7919 % 101 - 50) / 50.0;
        velocity->SetTuple3(i, 10.0 * image->GetPoint(i)[1], noise, -noise);
    }
    writeXml("in.vti", image);
    const auto with = qel("vortex in.vti --fields lambda2,swirl --stats with.csv");
    ASSERT_EQ(with.status, 0) << with.err;
    EXPECT_NE(with.out.find("set to 0 below the noise floor of 1e-06: "), std::string::npos)
        << with.out;
    EXPECT_EQ(statistics(text("with.csv")).at("Lambda2").minimum, 0.0);
    EXPECT_EQ(statistics(text("with.csv")).at("SwirlStrength").maximum, 0.0);
    const auto without = qel("vortex in.vti --fields lambda2,swirl --noise-floor 0 --stats -");
    EXPECT_LT(statistics(without.out).at("Lambda2").minimum, 0.0);
    EXPECT_GT(statistics(without.out).at("SwirlStrength").maximum, 0.0);
    EXPECT_EQ(without.err.find("noise floor"), std::string::npos);
    EXPECT_NE(qel("vortex in.vti --noise-floor 2").status, 0);
}

TEST_F(VortexCommand, NamesPointsWhoseGradientIsNotFinite) {
    auto image = qel_test::rotation(5, 5, 5);
    image->GetPointData()->GetArray("velocity")->SetComponent(62, 1, std::nan(""));
    writeXml("in.vti", image);
    const auto run = qel("vortex in.vti --fields q --stats - --image p.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("warning: 6 gradients are not finite and their points undefined: 37 57"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(statistics(run.out).at("Q").valid, 125 - 6);
}

TEST_F(VortexCommand, TakesTheOnlyVector) {
    auto image = qel_test::rotation(5, 5, 5, "wind");
    qel_test::addArray(image, "pressure", 1, 1.0);
    writeXml("in.vti", image);
    EXPECT_NE(qel("vortex in.vti").err.find("point array wind"), std::string::npos);
}

TEST_F(VortexCommand, TakesTheArrayThatIsNamed) {
    auto image = qel_test::rotation(5, 5, 5, "wind");
    qel_test::addArray(image, "velocity", 3, 1.0);
    writeXml("in.vti", image);
    EXPECT_NE(qel("vortex in.vti").err.find("point array velocity"), std::string::npos);
    const auto run = qel("vortex in.vti --velocity wind --fields swirl --stats -");
    EXPECT_NEAR(statistics(run.out).at("SwirlStrength").mean, 1.0, 1e-5);
}

TEST_F(VortexCommand, ListsTheArraysIfThereIsNoVelocity) {
    auto image = qel_test::rotation(5, 5, 5, "a");
    qel_test::addArray(image, "b", 3, 1.0);
    qel_test::addArray(image, "p", 1, 1.0);
    writeXml("in.vti", image);
    expectRefused("vortex in.vti", "no velocity is found; name one with --velocity: the arrays are "
                                   "a (point, 3 components), b (point, 3 components), p (point, "
                                   "1 component)");
    expectRefused("vortex in.vti --velocity c", "there is no array c; the arrays are a (point");
    expectRefused("vortex in.vti --velocity p", "the array p has not two or three components");
}

TEST_F(VortexCommand, LeavesHiddenPointsOutOfTheStatistics) {
    auto image = qel_test::rotation(5, 5, 5);
    vtkNew<vtkUnsignedCharArray> ghosts;
    ghosts->SetName("vtkGhostType");
    ghosts->SetNumberOfTuples(125);
    ghosts->FillValue(0);
    ghosts->SetValue(62, 2);
    image->GetPointData()->AddArray(ghosts);
    writeXml("in.vti", image);
    const auto run = qel("vortex in.vti --fields q --stats - --image p.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(statistics(run.out).at("Q").valid, 124);
    EXPECT_EQ(statistics(run.out).at("Q").undefined, 1);
    EXPECT_NEAR(statistics(run.out).at("Q").maximum, 1.0, 1e-5);
}

} // namespace
