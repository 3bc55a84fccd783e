#ifndef QEL_PROGRAM_GEOJSON_H
#define QEL_PROGRAM_GEOJSON_H

/// @file
/// Reading of GeoJSON.

#include <string>
#include <vector>

#include "CurveSet.h"

namespace program {

struct GeoJson {
    std::vector<Line> lines; ///< line strings and the rings of polygons
    Points points;           ///< every position in the file, those of lines as well
};

/// Features without geometry are left out. Lines are named after the feature's property "name".
/// @throws UserError  if the file is no GeoJSON
GeoJson readGeoJson(const std::string& path);

} // namespace program

#endif
