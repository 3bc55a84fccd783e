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
using Words = std::vector<std::string>;

constexpr const char* kNameColumn = "curve_name"; // in files, of curves that have a name

constexpr double kDegree = 3.14159265358979323846 / 180.0; // in radians

struct NamedCurve : vtkQELPolyline::Curve {
    std::string name;           ///< from the file; without, the file's own or "curve 1" and so on
    bool named = false;         ///< whether the name is from the file
    Words axes{};               ///< names of the coordinates, where the file has some
    double angleUnit = kDegree; ///< of angles among the coordinates and in operations, in radians
};
using Curves = std::vector<NamedCurve>;

/// A polyline as it stands in a file: points of any number, and what belongs to them.
struct Polyline {
    std::string name;
    Points points;
    std::vector<std::pair<std::string, Words>> texts; ///< named words, likewise
    Words axes; ///< names of the columns that are coordinates, if they have some
    /// Named numbers, one for each point.
    std::vector<std::pair<std::string, std::vector<double>>> columns;
    bool planar = false; ///< without z
};

} // namespace program
