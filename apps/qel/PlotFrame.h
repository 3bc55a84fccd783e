#ifndef QEL_PROGRAM_PLOTFRAME_H
#define QEL_PROGRAM_PLOTFRAME_H

/// @file
/// The part of the plane that a plot of curves shows.

#include <array>
#include <cstddef>
#include <vector>

#include "CurveSet.h"

namespace program {

constexpr std::array<const char*, 3> kAxisNames{"x", "y", "z"};
constexpr std::size_t kMarkedPoints = 400; ///< curves of more are drawn as lines only

/// The two axes of a plot and the ranges along them.
struct PlotFrame {
    std::array<std::size_t, 2> axes{0, 1};
    std::array<double, 2> low{0.0, 0.0};
    std::array<double, 2> high{1.0, 1.0};
};

/// The plane of the two longest extents of all curves, with room around them, in a frame of the
/// given size in pixels; one unit is as long on both axes.
/// @throws UserError  if that is beyond the range of numbers
PlotFrame frameOf(const std::vector<const std::vector<NamedCurve>*>& curves, double width,
                  double height);

} // namespace program

#endif
