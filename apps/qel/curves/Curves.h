#pragma once
// Curves as the program reads and writes them.

#include <string>
#include <utility>
#include <vector>

#include <vtkPointData.h>
#include <vtkSmartPointer.h>

#include <qel/TripletBase.h>
#include <vtkQELPolyline.h>

namespace program {

using Point = qel::TripletBase<double>;
using Points = std::vector<Point>;

struct NamedCurve : vtkQELPolyline::Curve {
    std::string name; ///< from the file; without, the file's own or "curve 1" and so on
};
using Curves = std::vector<NamedCurve>;

/// A polyline as it stands in a file: points of any number, and what belongs to them.
struct Polyline {
    std::string name;
    Points points;
    /// Named numbers, one for each point.
    std::vector<std::pair<std::string, std::vector<double>>> columns;
    bool planar = false; ///< without z
};

} // namespace program
