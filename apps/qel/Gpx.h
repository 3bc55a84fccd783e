#ifndef QEL_PROGRAM_GPX_H
#define QEL_PROGRAM_GPX_H

/// @file
/// Reading of GPX.

#include <string>
#include <vector>

#include "CurveSet.h"

namespace program {

/// One line for each segment of a track and for each route: longitude and latitude in degrees as x
/// and y, the elevation in metres as a column "ele" if every point has one.
/// @throws UserError  if the file is no GPX
std::vector<Line> readGpx(const std::string& path);

} // namespace program

#endif
