#ifndef QEL_TESTS_INTEGRATIONS_FLOWS_H
#define QEL_TESTS_INTEGRATIONS_FLOWS_H

// Data sets with velocities, and what the filter makes of them.

#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <vtkCallbackCommand.h>
#include <vtkDataSetAttributes.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>

#include <vtkQELVortexFilter.h>

namespace qel_test {

using vtkQELVortex::FieldInfo;
using Image = vtkSmartPointer<vtkImageData>;

constexpr int kPoints = vtkDataObject::FIELD_ASSOCIATION_POINTS;
constexpr int kCells = vtkDataObject::FIELD_ASSOCIATION_CELLS;

// -- Builders ----

inline Image makeImage(int nx, int ny, int nz) {
    auto image = Image::New();
    image->SetDimensions(nx, ny, nz);
    image->SetOrigin(-1.0, 0.5, 2.0);
    image->SetSpacing(0.1, 0.3, 0.7);
    return image;
}

// Adds an array "u" of the rows of a matrix times the position.
inline void addLinearVelocity(vtkImageData* image, const double t[3][3]) {
    vtkNew<vtkDoubleArray> u;
    u->SetName("u");
    u->SetNumberOfComponents(3);
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        double p[3];
        image->GetPoint(i, p);
        double v[3];
        for (int row = 0; row < 3; ++row) {
            v[row] = t[row][0] * p[0] + t[row][1] * p[1] + t[row][2] * p[2];
        }
        u->InsertNextTuple(v);
    }
    image->GetPointData()->AddArray(u);
}

template <typename Array>
void addRandomArray(vtkDataSet* data, int association, const char* name, int components,
                    double scale = 1.0) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-scale, scale);
    vtkNew<Array> array;
    array->SetName(name);
    array->SetNumberOfComponents(components);
    array->SetNumberOfTuples(data->GetNumberOfElements(association));
    for (vtkIdType i = 0; i < array->GetNumberOfTuples(); ++i) {
        for (int c = 0; c < components; ++c) {
            array->SetComponent(i, c, value(random));
        }
    }
    data->GetAttributes(association)->AddArray(array);
}

inline vtkSmartPointer<vtkQELVortexFilter> filterOn(vtkDataObject* data, int association = kPoints,
                                                    const char* name = "u") {
    auto filter = vtkSmartPointer<vtkQELVortexFilter>::New();
    filter->SetInputData(data);
    filter->SetInputArrayToProcess(0, 0, 0, association, name);
    return filter;
}

inline vtkFloatArray* field(vtkDataObject* output, const char* name, int association = kPoints) {
    auto* array = vtkFloatArray::SafeDownCast(
        vtkDataSet::SafeDownCast(output)->GetAttributes(association)->GetArray(name));
    EXPECT_NE(array, nullptr) << name;
    return array;
}

inline void expectSameFields(vtkDataSet* a, vtkDataSet* b, int association) {
    for (const FieldInfo& info : vtkQELVortex::fields()) {
        vtkFloatArray* left = field(a, info.array, association);
        vtkFloatArray* right = field(b, info.array, association);
        ASSERT_EQ(left->GetNumberOfValues(), right->GetNumberOfValues());
        vtkIdType different = 0;
        for (vtkIdType i = 0; i < left->GetNumberOfValues(); ++i) {
            different += std::memcmp(left->GetPointer(i), right->GetPointer(i), sizeof(float)) != 0;
        }
        EXPECT_EQ(different, 0) << info.array;
    }
}

// Keeps the text of an object's events.
class Listener {
public:
    Listener(vtkObject* object, unsigned long event) {
        command_->SetClientData(this);
        command_->SetCallback([](vtkObject*, unsigned long, void* self, void* message) {
            auto* listener = static_cast<Listener*>(self);
            ++listener->count;
            if (message != nullptr) {
                listener->text += static_cast<const char*>(message);
            }
        });
        object->AddObserver(event, command_);
    }
    int count = 0;
    std::string text;

private:
    vtkNew<vtkCallbackCommand> command_;
};

} // namespace qel_test

#endif
