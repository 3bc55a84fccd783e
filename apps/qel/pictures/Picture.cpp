// A picture of surfaces and lines with axes, a colour bar and a title.
#include "pictures/Picture.h"

#include <algorithm>

#include <vtkCamera.h>
#include <vtkCubeAxesActor.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkScalarBarActor.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include "pictures/Rendering.h"

namespace program {
namespace {

void setStyle(vtkTextProperty* style, int size) {
    style->SetFontFamilyToArial();
    style->SetFontSize(size);
    style->SetColor(0.1, 0.1, 0.1);
    style->BoldOff();
    style->ItalicOff();
    style->ShadowOff();
}

} // namespace

Picture::Picture(const vtkBoundingBox& bounds) : bounds_(bounds) {
    renderer_->SetBackground(1.0, 1.0, 1.0);
    window_->SetMultiSamples(8);
    window_->AddRenderer(renderer_);
}

// -- Things in the picture ----

vtkActor* Picture::add(vtkPolyData* data, double grey) {
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(data);
    mapper->ScalarVisibilityOff();
    vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    actor->GetProperty()->SetColor(grey, grey, grey);
    renderer_->AddActor(actor);
    return actor;
}

void Picture::addLines(vtkPolyData* lines) {
    vtkProperty* style = add(lines, 0.15)->GetProperty();
    style->SetLineWidth(1.5F);
    style->LightingOff();
}

void Picture::addWall(vtkPolyData* surface) {
    add(surface, 0.6)->GetProperty()->SetOpacity(0.15);
}

void Picture::addColoured(vtkPolyData* surface, const std::string& field,
                          vtkScalarsToColors* colours, bool lit) {
    vtkActor* actor = add(surface, 1.0);
    actor->GetProperty()->SetLighting(lit);
    actor->GetProperty()->SetAmbient(0.25);
    actor->GetProperty()->SetDiffuse(0.8);
    vtkMapper* mapper = actor->GetMapper();
    mapper->ScalarVisibilityOn();
    mapper->SetScalarModeToUsePointFieldData();
    mapper->SelectColorArray(field.c_str());
    mapper->SetLookupTable(colours);
    mapper->UseLookupTableScalarRangeOn();
    mapper->InterpolateScalarsBeforeMappingOn();
}

void Picture::addColourBar(vtkScalarsToColors* colours, const std::string& title) {
    vtkNew<vtkScalarBarActor> bar;
    bar->SetLookupTable(colours);
    bar->SetTitle(title.c_str());
    bar->SetNumberOfLabels(6);
    bar->SetLabelFormat("%.3g");
    bar->SetPosition(0.87, 0.15);
    bar->SetWidth(0.1);
    bar->SetHeight(0.7);
    bar->SetUnconstrainedFontSize(true);
    setStyle(bar->GetTitleTextProperty(), 18);
    setStyle(bar->GetLabelTextProperty(), 16);
    bar->SetVerticalTitleSeparation(12);
    renderer_->AddActor2D(bar);
}

void Picture::addTitle(const std::string& text) {
    vtkNew<vtkTextActor> title;
    title->SetInput(text.c_str());
    setStyle(title->GetTextProperty(), 22);
    title->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
    title->SetPosition(0.03, 0.94);
    renderer_->AddActor2D(title);
}

void Picture::addAxes(int flatAxis) {
    double bounds[6];
    bounds_.GetBounds(bounds);
    vtkNew<vtkCubeAxesActor> axes;
    axes->SetBounds(bounds);
    axes->SetCamera(renderer_->GetActiveCamera());
    axes->SetXTitle("x");
    axes->SetYTitle("y");
    axes->SetZTitle("z");
    axes->SetFlyModeToOuterEdges();
    axes->SetUse2DMode(flatAxis >= 0 ? 1 : 0);
    axes->SetScreenSize(flatAxis >= 0 ? 14.0 : 12.0);
    for (int axis = 0; axis < 3; ++axis) {
        setStyle(axes->GetTitleTextProperty(axis), 16);
        setStyle(axes->GetLabelTextProperty(axis), 14);
    }
    for (vtkProperty* style : {axes->GetXAxesLinesProperty(), axes->GetYAxesLinesProperty(),
                               axes->GetZAxesLinesProperty()}) {
        style->SetColor(0.4, 0.4, 0.4);
    }
    axes->SetXAxisVisibility(flatAxis != 0);
    axes->SetYAxisVisibility(flatAxis != 1);
    axes->SetZAxisVisibility(flatAxis != 2);
    renderer_->AddActor(axes);
}

// -- The view of it ----

void Picture::lookFrom(const double direction[3]) {
    double middle[3];
    double bounds[6];
    bounds_.GetCenter(middle);
    bounds_.GetBounds(bounds);
    vtkCamera* camera = renderer_->GetActiveCamera();
    camera->SetFocalPoint(middle);
    camera->SetPosition(middle[0] + direction[0], middle[1] + direction[1],
                        middle[2] + direction[2]);
    renderer_->ResetCamera(bounds);
}

void Picture::drawSpace(const fs::path& target) {
    const double size = bounds_.GetDiagonalLength();
    const double direction[3] = {0.55 * size, -1.0 * size, 0.6 * size};
    renderer_->GetActiveCamera()->SetViewUp(0.0, 0.0, 1.0);
    lookFrom(direction);
    renderer_->GetActiveCamera()->Zoom(0.95);
    addAxes(-1);
    draw(target);
}

void Picture::drawPlane(const fs::path& target) {
    double extents[3];
    bounds_.GetLengths(extents);
    const auto normal = static_cast<int>(std::min_element(extents, extents + 3) - extents);
    const int across = normal == 0 ? 1 : 0;
    const int up = normal == 2 ? 1 : 2;
    double direction[3] = {0.0, 0.0, 0.0};
    direction[normal] = (normal == 1 ? -1.0 : 1.0) * bounds_.GetDiagonalLength();
    vtkCamera* camera = renderer_->GetActiveCamera();
    camera->SetViewUp(0.0, up == 1 ? 1.0 : 0.0, up == 2 ? 1.0 : 0.0);
    camera->ParallelProjectionOn();
    lookFrom(direction);
    const double aspect = 0.68 * kPictureWidth / kPictureHeight; // room for bar and labels
    camera->SetParallelScale(0.5 * std::max(1.3 * extents[up], extents[across] / aspect));
    addAxes(normal);
    draw(target);
}

void Picture::draw(const fs::path& target) {
    renderer_->GetActiveCamera()->SetWindowCenter(0.1, 0.0); // the colour bar stands on the right
    renderer_->ResetCameraClippingRange();
    renderToPng(window_, target);
}

} // namespace program
