#pragma once
// A picture that VTK draws off screen: surfaces and lines with axes and a colour bar, or a chart.

#include <filesystem>
#include <string>

#include <vtkActor.h>
#include <vtkBoundingBox.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkScalarsToColors.h>

namespace program {
namespace fs = std::filesystem;

constexpr int kPictureWidth = 1400;
constexpr int kPictureHeight = 900;

/// Things are added, the view of things in space is chosen, then all is drawn once.
class Picture {
public:
    Picture();

    void addLines(vtkPolyData* lines);
    /// Grey, and seen through.
    void addWall(vtkPolyData* surface);
    /// @param field  point array that gives the colours
    /// @param lit    whether light and shade show the shape
    void addColoured(vtkPolyData* surface, const std::string& field, vtkScalarsToColors* colours,
                     bool lit);
    void addColourBar(vtkScalarsToColors* colours, const std::string& title);
    void addTitle(const std::string& text);
    void addChart(vtkChartXY* chart);
    /// Comes before the chart.
    void addBehindChart(vtkAbstractContextItem* item) { scene_->AddItem(item); }

    /// Adds axes about the bounds, and looks at them from aslant.
    void viewSpace(const vtkBoundingBox& bounds);
    /// Adds axes, and looks from the front at the plane that the bounds are flat in.
    void viewPlane(const vtkBoundingBox& bounds);

    /// Draws all into a PNG file.
    ///
    /// VTK of the distributions draws through X alone, and ends the program where there is no
    /// display. Without one, xvfb-run starts one that lasts until the program ends.
    /// @throws UserError  if it cannot be drawn or written
    void drawPng(const fs::path& target);
    /// Draws charts alone into an SVG file, which takes no display.
    /// @throws UserError  if it cannot be written
    void drawSvg(const fs::path& target, const std::string& description);

private:
    vtkActor* add(vtkPolyData* data, double grey);
    /// @param flatAxis  the one that is not drawn in a plane; -1 in space
    void addAxes(const vtkBoundingBox& bounds, int flatAxis);
    void lookFrom(const double direction[3], const vtkBoundingBox& bounds);

    vtkNew<vtkContextScene> scene_; // of charts
    vtkNew<vtkRenderer> renderer_;
    vtkNew<vtkRenderWindow> window_;
};

} // namespace program
