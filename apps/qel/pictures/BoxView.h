#pragma once
// Curves in space, seen from aslant: where their points lie in the picture, and the box about them.

#include <array>
#include <functional>
#include <string>
#include <vector>

#include <vtkBoundingBox.h>
#include <vtkContextItem.h>

#include "curves/Curves.h"

namespace program {

/// Parallel projection, of which z of the box points up.
class BoxView {
public:
    explicit BoxView(const vtkBoundingBox& box);

    /// Across and up, from the centre of the box; z is 0.
    Point project(const Point& p) const;
    /// The corner with the lower (0) or upper (1) bound of each coordinate.
    Point corner(int x, int y, int z) const;

private:
    vtkBoundingBox box_;
    Point centre_;
    Point right_;
    Point up_;
};

/// The edges of the box with the names of the axes and the bounds.
class BoxItem : public vtkContextItem {
public:
    static BoxItem* New();
    vtkTypeMacro(BoxItem, vtkContextItem)

    /// In pixels.
    struct Line {
        std::array<float, 4> ends; // x and y of both
    };
    struct Label {
        float x;
        float y;
        int justification; // of vtkTextProperty
        std::string text;
    };

    std::vector<Line> lines;
    std::vector<Label> labels;

    bool Paint(vtkContext2D* painter) override;
};

/// Fills the item.
/// @param pixelsOf   gives the place of a projected point in the picture
/// @param axisNames  of the three coordinates
void showBox(BoxItem* item, const vtkBoundingBox& box, const BoxView& view,
             const std::function<std::array<double, 2>(const Point&)>& pixelsOf,
             const Words& axisNames);

} // namespace program
