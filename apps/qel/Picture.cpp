// A picture of surfaces and lines with axes, a colour bar and a title.
#include "Picture.h"

#include <algorithm>
#include <cmath>

#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkCubeAxesActor.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkScalarBarActor.h>
#include <vtkSmartPointer.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include "Rendering.h"

namespace program {
namespace {

constexpr double kWallOpacity = 0.15;

vtkSmartPointer<vtkTextProperty> textStyle(int size) {
    auto style = vtkSmartPointer<vtkTextProperty>::New();
    style->SetFontFamilyToArial();
    style->SetFontSize(size);
    style->SetColor(0.1, 0.1, 0.1);
    return style;
}

// Of one colour.
vtkSmartPointer<vtkActor> plainActor(vtkPolyData* data, double grey) {
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(data);
    mapper->ScalarVisibilityOff();
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    actor->GetProperty()->SetColor(grey, grey, grey);
    return actor;
}

} // namespace

Picture::Picture(const double bounds[6]) {
    std::copy(bounds, bounds + 6, bounds_);
    renderer_->SetBackground(1.0, 1.0, 1.0);
    window_->SetOffScreenRendering(1);
    window_->SetMultiSamples(8);
    window_->SetSize(kPictureWidth, kPictureHeight);
    window_->AddRenderer(renderer_);
}

// -- Things in the picture ----

void Picture::addLines(vtkPolyData* lines) {
    const auto actor = plainActor(lines, 0.15);
    actor->GetProperty()->SetLineWidth(1.5F);
    actor->GetProperty()->LightingOff();
    renderer_->AddActor(actor);
}

void Picture::addWall(vtkPolyData* surface) {
    const auto actor = plainActor(surface, 0.6);
    actor->GetProperty()->SetOpacity(kWallOpacity);
    renderer_->AddActor(actor);
}

void Picture::addColoured(vtkPolyData* surface, const std::string& field, vtkLookupTable* colours,
                          bool lit) {
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(surface);
    mapper->SetScalarModeToUsePointFieldData();
    mapper->SelectColorArray(field.c_str());
    mapper->SetLookupTable(colours);
    mapper->UseLookupTableScalarRangeOn();
    mapper->InterpolateScalarsBeforeMappingOn();
    vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    actor->GetProperty()->SetLighting(lit);
    actor->GetProperty()->SetAmbient(0.25);
    actor->GetProperty()->SetDiffuse(0.8);
    renderer_->AddActor(actor);
}

void Picture::addColourBar(vtkLookupTable* colours, const std::string& title) {
    vtkNew<vtkScalarBarActor> bar;
    bar->SetLookupTable(colours);
    bar->SetTitle(title.c_str());
    bar->SetNumberOfLabels(6);
    bar->SetLabelFormat("%.3g");
    bar->SetPosition(0.87, 0.15);
    bar->SetWidth(0.1);
    bar->SetHeight(0.7);
    bar->SetUnconstrainedFontSize(true);
    bar->GetTitleTextProperty()->ShallowCopy(textStyle(18));
    bar->GetLabelTextProperty()->ShallowCopy(textStyle(16));
    bar->SetVerticalTitleSeparation(12);
    renderer_->AddActor2D(bar);
}

void Picture::addTitle(const std::string& text) {
    vtkNew<vtkTextActor> title;
    title->SetInput(text.c_str());
    title->SetTextProperty(textStyle(22));
    title->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
    title->SetPosition(0.03, 0.94);
    renderer_->AddActor2D(title);
}

void Picture::addAxes(bool plane) {
    vtkNew<vtkCubeAxesActor> axes;
    axes->SetBounds(bounds_);
    axes->SetCamera(renderer_->GetActiveCamera());
    axes->SetXTitle("x");
    axes->SetYTitle("y");
    axes->SetZTitle("z");
    axes->SetFlyModeToOuterEdges();
    axes->SetScreenSize(plane ? 14.0 : 12.0);
    if (plane) {
        axes->SetUse2DMode(1);
    }
    for (int axis = 0; axis < 3; ++axis) {
        axes->GetTitleTextProperty(axis)->ShallowCopy(textStyle(16));
        axes->GetLabelTextProperty(axis)->ShallowCopy(textStyle(14));
    }
    axes->GetXAxesLinesProperty()->SetColor(0.4, 0.4, 0.4);
    axes->GetYAxesLinesProperty()->SetColor(0.4, 0.4, 0.4);
    axes->GetZAxesLinesProperty()->SetColor(0.4, 0.4, 0.4);
    const int flat = plane ? flatAxis() : -1;
    axes->SetXAxisVisibility(flat != 0);
    axes->SetYAxisVisibility(flat != 1);
    axes->SetZAxisVisibility(flat != 2);
    renderer_->AddActor(axes);
}

// -- The view of it ----

double Picture::diagonal() const {
    return std::sqrt(extent(0) * extent(0) + extent(1) * extent(1) + extent(2) * extent(2));
}

int Picture::flatAxis() const {
    const double extents[3] = {extent(0), extent(1), extent(2)};
    return static_cast<int>(std::min_element(extents, extents + 3) - extents);
}

void Picture::drawSpace(const std::filesystem::path& target) {
    vtkCamera* camera = renderer_->GetActiveCamera();
    const double size = diagonal();
    camera->SetFocalPoint(middle(0), middle(1), middle(2));
    camera->SetPosition(middle(0) + 0.55 * size, middle(1) - 1.0 * size, middle(2) + 0.6 * size);
    camera->SetViewUp(0.0, 0.0, 1.0);
    renderer_->ResetCamera(bounds_);
    camera->Zoom(0.95);
    addAxes(false);
    finish(target);
}

void Picture::drawPlane(const std::filesystem::path& target) {
    vtkCamera* camera = renderer_->GetActiveCamera();
    const int normal = flatAxis();
    double position[3] = {middle(0), middle(1), middle(2)};
    position[normal] += (normal == 1 ? -1.0 : 1.0) * diagonal();
    camera->SetFocalPoint(middle(0), middle(1), middle(2));
    camera->SetPosition(position);
    camera->SetViewUp(0.0, normal == 2 ? 1.0 : 0.0, normal == 2 ? 0.0 : 1.0);
    camera->ParallelProjectionOn();
    renderer_->ResetCamera(bounds_);
    const int across = normal == 0 ? 1 : 0;
    const int up = normal == 2 ? 1 : 2;
    const double aspect = 0.68 * kPictureWidth / kPictureHeight; // room for bar and labels
    camera->SetParallelScale(0.5 * std::max(1.3 * extent(up), extent(across) / aspect));
    addAxes(true);
    finish(target);
}

void Picture::finish(const std::filesystem::path& target) {
    renderer_->GetActiveCamera()->SetWindowCenter(0.1, 0.0); // the colour bar stands on the right
    renderer_->ResetCameraClippingRange();
    renderToPng(window_, target);
}

} // namespace program
