// A picture that VTK draws off screen: surfaces and lines with axes and a colour bar, or a chart.
#include "pictures/Picture.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include <X11/Xlib.h>
#include <vtkCamera.h>
#include <vtkContext2D.h>
#include <vtkContextActor.h>
#include <vtkCubeAxesActor.h>
#include <vtkPNGWriter.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkSVGContextDevice2D.h>
#include <vtkScalarBarActor.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>
#include <vtkUnsignedCharArray.h>
#include <vtkWindowToImageFilter.h>
#include <vtkXMLDataElement.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "console/VtkRun.h"
#include "writing/StagedOutput.h"

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

bool displayAnswers() {
    Display* display = XOpenDisplay(nullptr);
    if (display != nullptr) {
        XCloseDisplay(display);
    }
    return display != nullptr;
}

// Has xvfb-run start a display around a command that tells which one it is, and then waits until
// the other end of a pipe is closed. That is with the end of this program, however it comes.
bool startDisplay() {
    int lifeline[2] = {-1, -1};
    const int result = pipe2(lifeline, O_CLOEXEC);
    const std::string command =
        "exec setsid xvfb-run -a -s '-screen 0 1920x1200x24 -noreset' sh -c '"
        "echo $DISPLAY $XAUTHORITY; read end </dev/fd/" +
        std::to_string(dup(lifeline[0])) + "' 2>/dev/null"; // the copy is inherited
    static FILE* answer = popen(command.c_str(), "re");
    std::array<char, 64> display{};
    std::array<char, 256> authority{};
    if (result != 0 || answer == nullptr ||
        std::fscanf(answer, "%63s %255s", display.data(), authority.data()) != 2) {
        return false;
    }
    setenv("DISPLAY", display.data(), 1);
    setenv("XAUTHORITY", authority.data(), 1);
    return displayAnswers();
}

} // namespace

Picture::Picture() {
    renderer_->SetBackground(1.0, 1.0, 1.0);
    window_->SetSize(kPictureWidth, kPictureHeight);
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

void Picture::addChart(vtkChartXY* chart) {
    vtkNew<vtkContextActor> actor;
    scene_->AddItem(chart);
    actor->SetScene(scene_);
    renderer_->AddActor(actor);
    window_->SetMultiSamples(0); // they blur letters
}

void Picture::addAxes(const vtkBoundingBox& bounds, int flatAxis) {
    double sides[6];
    bounds.GetBounds(sides);
    vtkNew<vtkCubeAxesActor> axes;
    axes->SetBounds(sides);
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

void Picture::lookFrom(const double direction[3], const vtkBoundingBox& bounds) {
    double middle[3];
    double sides[6];
    bounds.GetCenter(middle);
    bounds.GetBounds(sides);
    vtkCamera* camera = renderer_->GetActiveCamera();
    camera->SetFocalPoint(middle);
    camera->SetPosition(middle[0] + direction[0], middle[1] + direction[1],
                        middle[2] + direction[2]);
    camera->SetWindowCenter(0.1, 0.0); // the colour bar stands on the right
    renderer_->ResetCamera(sides);
}

void Picture::viewSpace(const vtkBoundingBox& bounds) {
    const double size = bounds.GetDiagonalLength();
    const double direction[3] = {0.55 * size, -1.0 * size, 0.6 * size};
    renderer_->GetActiveCamera()->SetViewUp(0.0, 0.0, 1.0);
    lookFrom(direction, bounds);
    renderer_->GetActiveCamera()->Zoom(0.95);
    addAxes(bounds, -1);
}

void Picture::viewPlane(const vtkBoundingBox& bounds) {
    double extents[3];
    bounds.GetLengths(extents);
    const auto normal = static_cast<int>(std::min_element(extents, extents + 3) - extents);
    const int across = normal == 0 ? 1 : 0;
    const int up = normal == 2 ? 1 : 2;
    double direction[3] = {0.0, 0.0, 0.0};
    direction[normal] = (normal == 1 ? -1.0 : 1.0) * bounds.GetDiagonalLength();
    vtkCamera* camera = renderer_->GetActiveCamera();
    camera->SetViewUp(0.0, up == 1 ? 1.0 : 0.0, up == 2 ? 1.0 : 0.0);
    camera->ParallelProjectionOn();
    lookFrom(direction, bounds);
    const double aspect = 0.68 * kPictureWidth / kPictureHeight; // room for bar and labels
    camera->SetParallelScale(0.5 * std::max(1.3 * extents[up], extents[across] / aspect));
    addAxes(bounds, normal);
}

// -- Files ----

void Picture::drawPng(const fs::path& target) {
    refuseIf(!displayAnswers() && !startDisplay(),
             "no picture can be drawn: there is no X display, and xvfb-run, which would start one, "
             "is missing or fails (install the package xvfb)");
    window_->SetOffScreenRendering(1);
    renderer_->ResetCameraClippingRange();
    vtkNew<vtkWindowToImageFilter> image;
    image->SetInput(window_);
    image->ReadFrontBufferOff();
    vtkNew<vtkPNGWriter> writer;
    writer->SetInputConnection(image->GetOutputPort());
    writer->WriteToMemoryOn(); // a file that is not whole would go unnoticed
    run(writer, "drawing " + target.string(), [&] { writer->Write(); });
    vtkUnsignedCharArray* bytes = writer->GetResult();
    writeText(target, std::string(reinterpret_cast<const char*>(bytes->GetPointer(0)),
                                  static_cast<std::size_t>(bytes->GetNumberOfValues())));
}

void Picture::drawSvg(const fs::path& target, const std::string& description) {
    vtkNew<vtkXMLDataElement> definitions;
    definitions->SetName("defs");
    vtkNew<vtkXMLDataElement> drawing;
    drawing->SetName("g");
    drawing->SetAttribute("fill", "none");
    drawing->SetAttribute("stroke-linejoin", "round");
    vtkNew<vtkSVGContextDevice2D> device; // letters become outlines, the same everywhere
    device->SetSVGContext(drawing, definitions);
    vtkNew<vtkContext2D> painter;
    device->Begin(renderer_);
    painter->Begin(device);
    scene_->SetGeometry(window_->GetSize());
    scene_->Paint(painter);
    painter->End();
    device->GenerateDefinitions();
    std::ostringstream file;
    file << R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" )"
         << formatted(R"(width="%d" height="%d">)", kPictureWidth, kPictureHeight) << "\n<desc>"
         << description << "</desc>\n"
         << R"(<rect width="100%" height="100%" fill="white"/>)"
         << "\n";
    definitions->PrintXML(file, vtkIndent());
    drawing->PrintXML(file, vtkIndent());
    writeText(target, file.str() + "</svg>\n");
}

} // namespace program
