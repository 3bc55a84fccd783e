// A flow that is large enough for its memory to be measured.
#include <cmath>
#include <string>

#include <sys/resource.h>

#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkXMLImageDataWriter.h>

#include "Program.h"

namespace {

// Every field, a scalar or a vector of floats, for each point, and the velocity.
constexpr double kBytesPerPoint = 4.0 * (11 + 3 * 3 + 3);

class LargeFlow : public qel_test::Program {
protected:
    // A vortex in a cube of n points along each edge.
    void writeVortex(const std::string& file, int n) const {
        vtkNew<vtkImageData> image;
        image->SetDimensions(n, n, n);
        const double step = 2.0 / (n - 1);
        image->SetSpacing(step, step, step);
        vtkNew<vtkFloatArray> velocity;
        velocity->SetName("velocity");
        velocity->SetNumberOfComponents(3);
        velocity->SetNumberOfTuples(image->GetNumberOfPoints());
        vtkIdType point = 0;
        for (int k = 0; k < n; ++k) {
            for (int j = 0; j < n; ++j) {
                const double y = step * j - 1.0;
                for (int i = 0; i < n; ++i) {
                    const double x = step * i - 1.0;
                    const double rate = std::exp(-x * x - y * y);
                    velocity->SetTuple3(point++, -y * rate, x * rate, 0.1 * step * k);
                }
            }
        }
        image->GetPointData()->AddArray(velocity);
        vtkNew<vtkXMLImageDataWriter> writer;
        writer->SetInputData(image);
        writer->SetCompressorTypeToNone();
        writer->SetDataModeToAppended();
        writer->EncodeAppendedDataOff();
        writer->SetFileName((folder / file).c_str());
        ASSERT_EQ(writer->Write(), 1);
    }

    // The most memory, in bytes, that any run of the program has had so far.
    static double peak() {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return 1024.0 * static_cast<double>(usage.ru_maxrss);
    }
};

TEST_F(LargeFlow, TakesLittleMoreMemoryThanItsArrays) {
    writeVortex("small.vti", 5);
    ASSERT_EQ(qel("vortex small.vti -o out.vti").status, 0);
    const double programAlone = peak();
    constexpr int n = 180;
    writeVortex("large.vti", n);
    ASSERT_EQ(qel("vortex large.vti -o out.vti").status, 0);
    EXPECT_LT(peak() - programAlone, 1.2 * kBytesPerPoint * n * n * n);
    EXPECT_GT(peak() - programAlone, 0.8 * kBytesPerPoint * n * n * n); // measured at all
}

} // namespace
