// qel vortex on planes cut from a volume and on surfaces.
#include "Flows.h"
#include "Program.h"

#include <cmath>
#include <functional>

#include <vtkCellData.h>
#include <vtkPlaneSource.h>
#include <vtkPointDataToCellData.h>
#include <vtkPolyData.h>
#include <vtkSphereSource.h>
#include <vtkXMLImageDataWriter.h>
#include <vtkXMLPolyDataReader.h>
#include <vtkXMLPolyDataWriter.h>

namespace {

using Formula = std::function<std::array<double, 3>(const double*)>;

void addVelocity(vtkDataSet* data, const Formula& velocity) {
    vtkNew<vtkDoubleArray> array;
    array->SetName("velocity");
    array->SetNumberOfComponents(3);
    for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
        array->InsertNextTuple(velocity(data->GetPoint(i)).data());
    }
    data->GetPointData()->AddArray(array);
}

// Its vorticity is the velocity itself (Arnold, Beltrami and Childress).
std::array<double, 3> abc(const double* p) {
    return {std::sin(p[2]) + 0.5 * std::cos(p[1]), 0.8 * std::sin(p[0]) + std::cos(p[2]),
            0.5 * std::sin(p[1]) + 0.8 * std::cos(p[0])};
}

std::array<double, 3> rotationAboutZ(const double* p) {
    return {-p[1], p[0], 0.0};
}

vtkSmartPointer<vtkImageData> planeAt(double z, const Formula& velocity) {
    auto plane = vtkSmartPointer<vtkImageData>::New();
    plane->SetDimensions(101, 101, 1);
    plane->SetSpacing(0.0625, 0.0625, 1.0);
    plane->SetOrigin(0.0, 0.0, z);
    addVelocity(plane, velocity);
    return plane;
}

class SurfaceFlow : public qel_test::Program {
protected:
    vtkSmartPointer<vtkPolyData> inPlane(const std::string& input) const {
        const auto run = qel("vortex " + input + " --in-plane -o out.vtp --stats stats.csv");
        EXPECT_EQ(run.status, 0) << run.err;
        vtkNew<vtkXMLPolyDataReader> reader;
        reader->SetFileName((folder / "out.vtp").c_str());
        reader->Update();
        return reader->GetOutput();
    }

    void writeSurface(vtkPolyData* surface) const {
        writeData<vtkXMLPolyDataWriter>("in.vtp", surface);
    }
};

TEST_F(SurfaceFlow, APlaneCutFromAVolumeIsRefused) {
    writeData<vtkXMLImageDataWriter>("cut.vti", planeAt(0.7, abc));
    expectRefused("vortex cut.vti", "a plane that the velocity leaves (component z): derivatives "
                                    "along z are missing; --in-plane");
    EXPECT_EQ(files(), (std::vector<std::string>{"cut.vti"}));
}

TEST_F(SurfaceFlow, APlaneFlowIsAnalysedWhole) {
    writeData<vtkXMLImageDataWriter>("plane.vti", planeAt(0.7, rotationAboutZ));
    const auto run = qel("vortex plane.vti --fields q --stats -");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NEAR(statistics(run.out).at("Q").mean, 1.0, 1e-5);
}

TEST_F(SurfaceFlow, InPlaneGivesVorticityAboutTheNormalAndDivergence) {
    writeData<vtkXMLImageDataWriter>("cut.vti", planeAt(0.7, abc));
    const auto surface = inPlane("cut.vti");
    vtkDataArray* vorticity = surface->GetPointData()->GetArray("VorticityNormal");
    vtkDataArray* divergence = surface->GetPointData()->GetArray("DivergenceInPlane");
    ASSERT_NE(vorticity, nullptr);
    ASSERT_NE(divergence, nullptr);
    for (vtkIdType i = 0; i < surface->GetNumberOfPoints(); ++i) {
        const double* const p = surface->GetPoint(i);
        EXPECT_NEAR(vorticity->GetTuple1(i), abc(p)[2], 0.05) << p[0] << " " << p[1];
        EXPECT_NEAR(divergence->GetTuple1(i), 0.0, 1e-5);
    }
    EXPECT_EQ(surface->GetPointData()->GetArray("Q"), nullptr);
    EXPECT_EQ(surface->GetPointData()->GetArray("Vorticity"), nullptr);
    const auto found = statistics(text("stats.csv"));
    EXPECT_EQ(found.size(), 2U);
    EXPECT_EQ(found.at("VorticityNormal").valid, surface->GetNumberOfPoints());
}

TEST_F(SurfaceFlow, ASlantedPlaneHasOneNormal) {
    vtkNew<vtkPlaneSource> plane;
    plane->SetResolution(10, 10);
    plane->SetOrigin(0.0, 0.0, 0.0);
    plane->SetPoint1(0.0, 1.0, 0.0);
    plane->SetPoint2(1.0, 0.0, 0.75); // the normal that faces z is (-0.6, 0, 0.8)
    plane->Update();
    addVelocity(plane->GetOutput(), rotationAboutZ);
    writeSurface(plane->GetOutput());
    expectRefused("vortex in.vtp", "surfaces in space: derivatives out of them are missing");
    const auto surface = inPlane("in.vtp");
    vtkDataArray* vorticity = surface->GetPointData()->GetArray("VorticityNormal");
    ASSERT_NE(vorticity, nullptr);
    for (vtkIdType i = 0; i < surface->GetNumberOfPoints(); ++i) {
        EXPECT_NEAR(vorticity->GetTuple1(i), 1.6, 1e-4);
    }
}

TEST_F(SurfaceFlow, OnASphereNormalsPointOutwards) {
    vtkNew<vtkSphereSource> sphere;
    sphere->SetThetaResolution(60);
    sphere->SetPhiResolution(60);
    sphere->Update();
    addVelocity(sphere->GetOutput(), rotationAboutZ);
    writeSurface(sphere->GetOutput());
    expectRefused("vortex in.vtp", "surfaces in space");
    const auto surface = inPlane("in.vtp");
    vtkDataArray* vorticity = surface->GetPointData()->GetArray("VorticityNormal");
    ASSERT_NE(vorticity, nullptr);
    for (vtkIdType i = 0; i < surface->GetNumberOfPoints(); ++i) {
        EXPECT_NEAR(vorticity->GetTuple1(i), 2.0 * surface->GetPoint(i)[2] / 0.5, 0.02);
    }
}

TEST_F(SurfaceFlow, OnCellsVelocityIsAnalysedOnCells) {
    vtkNew<vtkPointDataToCellData> onCells;
    onCells->SetInputData(planeAt(0.7, abc));
    onCells->Update();
    writeData<vtkXMLImageDataWriter>("cut.vti", vtkImageData::SafeDownCast(onCells->GetOutput()));
    const auto surface = inPlane("cut.vti");
    vtkDataArray* vorticity = surface->GetCellData()->GetArray("VorticityNormal");
    ASSERT_NE(vorticity, nullptr);
    EXPECT_EQ(vorticity->GetNumberOfTuples(), 100 * 100);
    EXPECT_NEAR(vorticity->GetTuple1(50 * 100 + 50),
                0.5 * std::sin(50.5 * 0.0625) + 0.8 * std::cos(50.5 * 0.0625), 0.01);
}

TEST_F(SurfaceFlow, InPlaneIsForSurfacesAndItsOwnFields) {
    writeData<vtkXMLImageDataWriter>("volume.vti", qel_test::rotation(5, 5, 5));
    expectRefused("vortex volume.vti --in-plane", "--in-plane is for surfaces");
    expectRefused("vortex volume.vti --in-plane --fields q", "does not go with --fields");
    expectRefused("vortex volume.vti --in-plane --image p.png", "does not go with --fields");
}

} // namespace
