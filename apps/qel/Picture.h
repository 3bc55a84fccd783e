#ifndef QEL_PROGRAM_PICTURE_H
#define QEL_PROGRAM_PICTURE_H

/// @file
/// A picture of surfaces and lines with axes, a colour bar and a title.

#include <filesystem>
#include <string>

#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

namespace program {

/// Things are added, then all is drawn once: in space, seen from aslant, or as the plane that the
/// bounds are flat in, seen from the front.
class Picture {
public:
    explicit Picture(const double bounds[6]);

    void addLines(vtkPolyData* lines);
    /// Grey, and seen through.
    void addWall(vtkPolyData* surface);
    /// @param field  point array that gives the colours
    /// @param lit    whether light and shade show the shape
    void addColoured(vtkPolyData* surface, const std::string& field, vtkLookupTable* colours,
                     bool lit);
    void addColourBar(vtkLookupTable* colours, const std::string& title);
    void addTitle(const std::string& text);

    void drawSpace(const std::filesystem::path& target);
    void drawPlane(const std::filesystem::path& target);

private:
    double extent(int axis) const { return bounds_[2 * axis + 1] - bounds_[2 * axis]; }
    double middle(int axis) const { return 0.5 * (bounds_[2 * axis] + bounds_[2 * axis + 1]); }
    double diagonal() const;
    int flatAxis() const;

    void addAxes(bool plane);
    void finish(const std::filesystem::path& target);

    double bounds_[6];
    vtkNew<vtkRenderer> renderer_;
    vtkNew<vtkRenderWindow> window_;
};

} // namespace program

#endif
