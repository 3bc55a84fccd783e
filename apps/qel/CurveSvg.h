#ifndef QEL_PROGRAM_CURVESVG_H
#define QEL_PROGRAM_CURVESVG_H

/// @file
/// Plots of curves as SVG.

#include <string>
#include <vector>

#include "CurveSet.h"
#include "PlotFrame.h"

namespace program {

/// Curves drawn alike, under one entry of the legend.
struct SvgLayer {
    std::string label;
    std::string colour;
    double width;
    bool marked; ///< points are marked where a curve has few
    const std::vector<NamedCurve>* curves;
};

/// The text of an SVG file with axes, a legend and the layers one above the other. Needs no
/// display; coordinates have a hundredth of a pixel.
std::string svgOf(const PlotFrame& frame, const std::string& title,
                  const std::vector<SvgLayer>& layers);

} // namespace program

#endif
