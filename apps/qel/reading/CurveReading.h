#pragma once
// Reading of curves and of points.

#include "curves/Curves.h"

namespace program {

/// What to take from a file of curves.
struct CurveSelection {
    /// Names or numbers of the columns that are coordinates. Those of GeoJSON and GPX are x, y, z
    /// and the point data; VTK data have none.
    std::vector<std::string> columns;
    /// Names or numbers, from 1 on, of the curves; all if empty.
    std::vector<std::string> curves;
};

/// Reads files of text columns, CSV, GeoJSON (lines and rings), GPX (tracks and routes: longitude,
/// latitude, elevation as point data) or the lines of VTK data, segments joined. Lines of fewer
/// than two points are left out with a warning; so are point data that not all curves have. The
/// path - is standard input.
/// @throws UserError  if a file cannot be read, has no curve, or not the curves asked for
Curves readCurves(const std::vector<std::string>& paths, const CurveSelection& selection);

/// Points without lines between them.
struct PointCloud {
    Points points;
    Words labels; ///< words that stand beside the points, such as names; or empty
    bool planar;  ///< without z
};

/// All points of such a file, in order; of GeoJSON, also those that are no lines. Labels are the
/// first column of words, or the names of features.
/// @throws UserError  if the file cannot be read, has no point, or one that is not finite
PointCloud readPoints(const std::string& path, const std::vector<std::string>& columns);

} // namespace program
