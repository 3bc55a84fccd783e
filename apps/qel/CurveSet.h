#ifndef QEL_PROGRAM_CURVESET_H
#define QEL_PROGRAM_CURVESET_H

/// @file
/// Curves as the program reads and writes them.

#include <string>
#include <utility>
#include <vector>

#include <vtkDataArray.h>
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

/// Named columns of numbers, one value for each point.
using Columns = std::vector<std::pair<std::string, std::vector<double>>>;

/// Point data with one array for each column.
vtkSmartPointer<vtkPointData> pointDataOf(const Columns& columns);

/// Lines as they stand in a file: points of any number, and what belongs to them.
struct Line {
    std::string name;
    Points points;
    Columns columns;
    bool planar = false; ///< without z
};

} // namespace program

#endif
