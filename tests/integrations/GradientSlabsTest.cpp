// Gradients slab by slab against the gradient of the whole.
#include <vtkPoints.h>
#include <vtkRectilinearGrid.h>
#include <vtkStructuredGrid.h>

#include "Flows.h"

namespace {

using namespace qel_test;

vtkSmartPointer<vtkDataSet> rectilinearLike(vtkImageData* image) {
    auto grid = vtkSmartPointer<vtkRectilinearGrid>::New();
    int n[3];
    image->GetDimensions(n);
    grid->SetDimensions(n);
    vtkSmartPointer<vtkDoubleArray> axes[3];
    for (int axis = 0; axis < 3; ++axis) {
        axes[axis] = vtkSmartPointer<vtkDoubleArray>::New();
        for (int i = 0; i < n[axis]; ++i) {
            axes[axis]->InsertNextValue(0.3 * i + 0.02 * i * i);
        }
    }
    grid->SetXCoordinates(axes[0]);
    grid->SetYCoordinates(axes[1]);
    grid->SetZCoordinates(axes[2]);
    return grid;
}

vtkSmartPointer<vtkDataSet> curvilinearLike(vtkImageData* image) {
    auto grid = vtkSmartPointer<vtkStructuredGrid>::New();
    int n[3];
    image->GetDimensions(n);
    grid->SetDimensions(n);
    vtkNew<vtkPoints> points;
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        double p[3];
        image->GetPoint(i, p);
        points->InsertNextPoint(p[0] + 0.05 * p[1] * p[1], p[1] + 0.1 * p[2], p[2] - 0.2 * p[0]);
    }
    grid->SetPoints(points);
    return grid;
}

void expectSlabsLikeTheWhole(vtkDataSet* data, int association) {
    addRandomArray<vtkDoubleArray>(data, association, "u", 3);
    auto whole = filterOn(data, association);
    whole->SetSlabSize(VTK_ID_MAX);
    whole->Update();
    for (const vtkIdType size : {1, 30, 100}) {
        SCOPED_TRACE(size);
        auto slabs = filterOn(data, association);
        slabs->SetSlabSize(size);
        slabs->Update();
        expectSameFields(whole->GetOutput(), slabs->GetOutput(), association);
    }
}

TEST(GradientSlabs, GiveWhatTheWholeGives) {
    for (const int association : {kPoints, kCells}) {
        SCOPED_TRACE(association == kPoints ? "points" : "cells");
        expectSlabsLikeTheWhole(makeImage(5, 6, 9), association);
        expectSlabsLikeTheWhole(rectilinearLike(makeImage(5, 6, 9)), association);
        expectSlabsLikeTheWhole(curvilinearLike(makeImage(5, 6, 9)), association);
    }
}

// Layers are along y if there is one layer of z only.
TEST(GradientSlabs, OfPlaneGridsGiveWhatTheWholeGives) {
    expectSlabsLikeTheWhole(makeImage(6, 9, 1), kPoints);
    expectSlabsLikeTheWhole(curvilinearLike(makeImage(6, 9, 1)), kPoints);
    expectSlabsLikeTheWhole(makeImage(40, 1, 1), kPoints);
}

} // namespace
