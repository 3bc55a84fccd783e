// An external consumer: the vortex filter on a flow that turns, and lines as a curve. Leaves with
// the number of things that went wrong.

#include <cmath>

#include <vtkCellArray.h>
#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

#include <vtkQELPolyline.h>
#include <vtkQELVortexFilter.h>

#include "../Expect.h"

namespace {

// Rotation about z at the rate 1.
void checkVortexFilter() {
    vtkNew<vtkImageData> image;
    image->SetDimensions(5, 5, 5);
    vtkNew<vtkDoubleArray> velocity;
    velocity->SetName("U");
    velocity->SetNumberOfComponents(3);
    for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i) {
        double p[3];
        image->GetPoint(i, p);
        velocity->InsertNextTuple3(-p[1], p[0], 0.0);
    }
    image->GetPointData()->AddArray(velocity);
    vtkNew<vtkQELVortexFilter> filter;
    filter->SetInputData(image);
    filter->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS, "U");
    filter->Update();
    vtkDataArray* lambda2 = filter->GetOutput()->GetPointData()->GetArray("Lambda2");
    expect(lambda2 != nullptr && lambda2->GetNumberOfTuples() == 125, "array of lambda2");
    expect(lambda2 != nullptr && std::abs(lambda2->GetTuple1(62) + 1.0) < 1e-5, "lambda2");
}

void checkPolyline() {
    vtkNew<vtkPoints> points;
    points->InsertNextPoint(0.0, 0.0, 0.0);
    points->InsertNextPoint(3.0, 4.0, 0.0);
    vtkNew<vtkCellArray> cells;
    const vtkIdType ids[2] = {0, 1};
    cells->InsertNextCell(2, ids);
    vtkNew<vtkPolyData> lines;
    lines->SetPoints(points);
    lines->SetLines(cells);
    const auto curves = vtkQELPolyline::FromPolyData(lines);
    expect(curves.size() == 1 && curves[0].curve.getLength() == 5.0, "curve of a line");
}

} // namespace

int main() {
    checkVortexFilter();
    checkPolyline();
    return failures;
}
