#ifndef QEL_TESTS_APPS_FLOWS_H
#define QEL_TESTS_APPS_FLOWS_H

// Flows with known gradients, in memory.

#include <string>

#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkRectilinearGrid.h>
#include <vtkSmartPointer.h>

namespace qel_test {

// Gives the points of a data set a rotation about z at the rate 1.
template <typename Data>
Data turning(Data data, const std::string& name = "velocity") {
    vtkNew<vtkDoubleArray> velocity;
    velocity->SetName(name.c_str());
    velocity->SetNumberOfComponents(3);
    for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
        double p[3];
        data->GetPoint(i, p);
        velocity->InsertNextTuple3(-p[1], p[0], 0.0);
    }
    data->GetPointData()->AddArray(velocity);
    return data;
}

// Rotation about z at the rate 1: vorticity 2, Q 1, lambda2 -1, swirl strength 1 everywhere.
inline vtkSmartPointer<vtkImageData> rotation(int nx, int ny, int nz,
                                              const std::string& name = "velocity") {
    auto image = vtkSmartPointer<vtkImageData>::New();
    image->SetDimensions(nx, ny, nz);
    image->SetOrigin(-1.0, -1.0, 0.0);
    image->SetSpacing(0.25, 0.25, 0.5);
    return turning(image, name);
}

// The same points and data as a rectilinear grid.
inline vtkSmartPointer<vtkRectilinearGrid> rectilinear(vtkImageData* image) {
    auto grid = vtkSmartPointer<vtkRectilinearGrid>::New();
    grid->SetDimensions(image->GetDimensions());
    vtkSmartPointer<vtkDoubleArray> along[3];
    for (int axis = 0; axis < 3; ++axis) {
        along[axis] = vtkSmartPointer<vtkDoubleArray>::New();
        for (int i = 0; i < image->GetDimensions()[axis]; ++i) {
            along[axis]->InsertNextValue(image->GetOrigin()[axis] + i * image->GetSpacing()[axis]);
        }
    }
    grid->SetXCoordinates(along[0]);
    grid->SetYCoordinates(along[1]);
    grid->SetZCoordinates(along[2]);
    grid->GetPointData()->ShallowCopy(image->GetPointData());
    return grid;
}

// Adds an array of one or three components filled with a value.
inline void addArray(vtkDataSet* data, const std::string& name, int components, double value) {
    vtkNew<vtkFloatArray> array;
    array->SetName(name.c_str());
    array->SetNumberOfComponents(components);
    array->SetNumberOfTuples(data->GetNumberOfPoints());
    array->Fill(value);
    data->GetPointData()->AddArray(array);
}

} // namespace qel_test

#endif
