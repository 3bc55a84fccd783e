#pragma once
// A picture of surfaces and lines with axes, a colour bar and a title.

#include <filesystem>
#include <string>

#include <vtkActor.h>
#include <vtkBoundingBox.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkScalarsToColors.h>

namespace program {
namespace fs = std::filesystem;

/// Things are added, then all is drawn once: in space, seen from aslant, or as the plane that the
/// bounds are flat in, seen from the front.
class Picture {
public:
    explicit Picture(const vtkBoundingBox& bounds);

    void addLines(vtkPolyData* lines);
    /// Grey, and seen through.
    void addWall(vtkPolyData* surface);
    /// @param field  point array that gives the colours
    /// @param lit    whether light and shade show the shape
    void addColoured(vtkPolyData* surface, const std::string& field, vtkScalarsToColors* colours,
                     bool lit);
    void addColourBar(vtkScalarsToColors* colours, const std::string& title);
    void addTitle(const std::string& text);

    void drawSpace(const fs::path& target);
    void drawPlane(const fs::path& target);

private:
    vtkActor* add(vtkPolyData* data, double grey);
    /// @param flatAxis  the one that is not drawn in a plane; -1 in space
    void addAxes(int flatAxis);
    void lookFrom(const double direction[3]);
    void draw(const fs::path& target);

    vtkBoundingBox bounds_;
    vtkNew<vtkRenderer> renderer_;
    vtkNew<vtkRenderWindow> window_;
};

} // namespace program
