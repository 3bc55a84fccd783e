#pragma once
// Reading of GeoJSON and GPX.

#include "curves/Curves.h"

namespace program {

struct GeoJson {
    std::vector<Polyline> polylines; ///< line strings and the rings of polygons
    Polyline positions;              ///< every position in the file, those of polylines as well;
                                     ///< with the names of features, if one of them has one
};

/// Features without geometry are left out. Lines are named after the feature's property "name".
/// @throws UserError  if the file is no GeoJSON
GeoJson readGeoJson(const std::string& path);

/// One polyline for each segment of a track and for each route: longitude and latitude in degrees
/// as x and y, the elevation in metres as a column "ele" if every point has one.
/// @throws UserError  if the file is no GPX
std::vector<Polyline> readGpx(const std::string& path);

} // namespace program
