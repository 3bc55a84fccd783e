// CGNS files, written by the CGNS library itself, against the same flow in VTK's format.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkStructuredGrid.h>
#include <vtkXMLStructuredGridReader.h>
#include <vtkXMLStructuredGridWriter.h>
#include <vtk_cgns.h>

// clang-format off
#include VTK_CGNS(cgnslib.h)
// clang-format on

#include "Program.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSize[3] = {9, 8, 7};

struct Named {
    std::string name;
    std::vector<double> values;
};

// A twisted block of points with a flow that varies on it.
struct Flow {
    std::array<Named, 3> coordinates{
        {{"CoordinateX", {}}, {"CoordinateY", {}}, {"CoordinateZ", {}}}};
    std::array<Named, 3> velocity{{{"VelocityX", {}}, {"VelocityY", {}}, {"VelocityZ", {}}}};
    std::vector<double> density;

    Flow() {
        for (int k = 0; k < kSize[2]; ++k) {
            for (int j = 0; j < kSize[1]; ++j) {
                for (int i = 0; i < kSize[0]; ++i) {
                    add(0.5 * i + 0.1 * j, 0.25 * j + 0.05 * k * k, 0.5 * k + 0.02 * i * i);
                }
            }
        }
    }

private:
    void add(double x, double y, double z) {
        const double point[3] = {x, y, z};
        const double u[3] = {std::sin(x) - y * z, x + 0.5 * z * z, std::cos(y) * x};
        for (std::size_t c = 0; c < 3; ++c) {
            coordinates[c].values.push_back(point[c]);
            velocity[c].values.push_back(u[c]);
        }
        density.push_back(2.0 + 0.1 * x);
    }
};

Named momentum(const Flow& flow, std::size_t c) {
    Named result{std::string("Momentum") + "XYZ"[c], flow.velocity[c].values};
    for (std::size_t i = 0; i < result.values.size(); ++i) {
        result.values[i] *= flow.density[i];
    }
    return result;
}

class Cgns : public qel_test::Program {
protected:
    // A file with one zone, or two that are alike.
    void writeCgns(const std::string& name, int storage, const std::vector<Named>& solution,
                   int zones = 1) const {
        cg_set_file_type(storage);
        int file = 0;
        int base = 0;
        ASSERT_EQ(cg_open((folder / name).c_str(), CG_MODE_WRITE, &file), CG_OK) << cg_get_error();
        cg_base_write(file, "Base", 3, 3, &base);
        for (int i = 1; i <= zones; ++i) {
            writeZone(file, base, "Zone" + std::to_string(i), solution);
        }
        ASSERT_EQ(cg_close(file), CG_OK) << cg_get_error();
    }

    void writeZone(int file, int base, const std::string& name,
                   const std::vector<Named>& solution) const {
        cgsize_t size[9] = {kSize[0], kSize[1], kSize[2], kSize[0] - 1, kSize[1] - 1, kSize[2] - 1,
                            0,        0,        0};
        int zone = 0;
        int grid = 0;
        int step = 0;
        int id = 0;
        cg_zone_write(file, base, name.c_str(), size, CG_Structured, &zone);
        cg_grid_write(file, base, zone, "GridCoordinates", &grid);
        for (const Named& axis : flow_.coordinates) {
            cg_coord_write(file, base, zone, CG_RealDouble, axis.name.c_str(), axis.values.data(),
                           &id);
        }
        cg_sol_write(file, base, zone, "Flow", CG_Vertex, &step);
        for (const Named& field : solution) {
            ASSERT_EQ(cg_field_write(file, base, zone, step, CG_RealDouble, field.name.c_str(),
                                     field.values.data(), &id),
                      CG_OK)
                << cg_get_error();
        }
    }

    std::vector<Named> velocityAndDensity() const {
        return {
            flow_.velocity[0], flow_.velocity[1], flow_.velocity[2], {"Density", flow_.density}};
    }

    void writeXml(const std::string& name) const {
        vtkNew<vtkPoints> points;
        points->SetDataTypeToDouble();
        vtkNew<vtkDoubleArray> velocity;
        velocity->SetName("Velocity");
        velocity->SetNumberOfComponents(3);
        for (std::size_t i = 0; i < flow_.density.size(); ++i) {
            points->InsertNextPoint(flow_.coordinates[0].values[i], flow_.coordinates[1].values[i],
                                    flow_.coordinates[2].values[i]);
            velocity->InsertNextTuple3(flow_.velocity[0].values[i], flow_.velocity[1].values[i],
                                       flow_.velocity[2].values[i]);
        }
        vtkNew<vtkStructuredGrid> grid;
        grid->SetDimensions(kSize);
        grid->SetPoints(points);
        grid->GetPointData()->AddArray(velocity);
        writeData<vtkXMLStructuredGridWriter>(name, grid);
    }

    vtkSmartPointer<vtkStructuredGrid> read(const std::string& name) const {
        vtkNew<vtkXMLStructuredGridReader> reader;
        reader->SetFileName((folder / name).c_str());
        reader->Update();
        return reader->GetOutput();
    }

    // The results of two runs, value by value.
    void expectSameFields(const std::string& one, const std::string& other,
                          double tolerance) const {
        const auto a = read(one);
        const auto b = read(other);
        for (const char* name : {"Q", "QCriterion", "Divergence", "Vorticity", "Helicity",
                                 "Lambda2", "SwirlStrength", "SwirlNormal"}) {
            SCOPED_TRACE(name);
            auto* x = vtkFloatArray::SafeDownCast(a->GetPointData()->GetArray(name));
            auto* y = vtkFloatArray::SafeDownCast(b->GetPointData()->GetArray(name));
            ASSERT_NE(x, nullptr);
            ASSERT_NE(y, nullptr);
            ASSERT_EQ(x->GetNumberOfValues(), y->GetNumberOfValues());
            for (vtkIdType i = 0; i < x->GetNumberOfValues(); ++i) {
                ASSERT_NEAR(x->GetValue(i), y->GetValue(i), tolerance) << i;
            }
        }
    }

    Flow flow_;
};

TEST_F(Cgns, GivesWhatTheSameGridGivesInXml) {
    writeXml("flow.vts");
    ASSERT_EQ(qel("vortex flow.vts -o xml.vts").status, 0);
    for (const int storage : {CG_FILE_HDF5, CG_FILE_ADF}) {
        writeCgns("flow.cgns", storage, velocityAndDensity());
        const auto run = qel("vortex flow.cgns -o cgns.vts");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.err.find("point array Velocity"), std::string::npos) << run.err;
        expectSameFields("cgns.vts", "xml.vts", 0.0);
    }
}

TEST_F(Cgns, MomentumIsDividedByDensity) {
    writeXml("flow.vts");
    ASSERT_EQ(qel("vortex flow.vts -o xml.vts").status, 0);
    writeCgns(
        "flow.cgns", CG_FILE_HDF5,
        {momentum(flow_, 0), momentum(flow_, 1), momentum(flow_, 2), {"Density", flow_.density}});
    const auto run = qel("vortex flow.cgns -o cgns.vts");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("Momentum divided by Density"), std::string::npos) << run.err;
    expectSameFields("cgns.vts", "xml.vts", 1e-4);
}

TEST_F(Cgns, ZonesBecomeBlocksAndTheEndingDoesNotMatter) {
    writeCgns("flow.dat", CG_FILE_HDF5, velocityAndDensity(), 2);
    const auto run = qel("vortex flow.dat --fields q --stats - -o out");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(statistics(run.out).at("Q").valid, 2 * kSize[0] * kSize[1] * kSize[2]);
    EXPECT_TRUE(fs::exists(folder / "out.vtm"));
}

TEST_F(Cgns, DamagedFilesAreRefused) {
    for (const int storage : {CG_FILE_HDF5, CG_FILE_ADF}) {
        writeCgns("flow.cgns", storage, velocityAndDensity());
        const std::string whole = text("flow.cgns");
        for (const std::size_t size : {whole.size() / 50, whole.size() / 4, whole.size() / 2}) {
            write("short.cgns", whole.substr(0, size));
            expectRefused("vortex short.cgns -o out", "short.cgns is damaged or no CGNS file");
        }
    }
    write("foreign.cgns", "\x89HDF\r\n\x1a\n and then something else\n");
    expectRefused("vortex foreign.cgns", "foreign.cgns is damaged or no CGNS file");
}

} // namespace
