#ifndef QEL_PROGRAM_DEMOFLOW_H
#define QEL_PROGRAM_DEMOFLOW_H

/// @file
/// A flow and a blade section from closed formulas.

#include <vtkImageData.h>
#include <vtkSmartPointer.h>

#include "CurveSet.h"

namespace program {

/// Two vortices of opposite sense, swaying and tapering along z, above a layer of shear: Burgers
/// vortices (a Gaussian core in balance with stretching along z) and a tanh profile of u in y. Free
/// of divergence.
///
/// A double array "velocity" on the points of [-3, 3] x [-3, 3] x [-2, 2].
/// @param size  points along x and y; two thirds of them along z
vtkSmartPointer<vtkImageData> demoFlow(int size);

/// The four-digit section 2412: thickness 12 % of the chord, camber 2 % at 40 %, from the trailing
/// edge over the upper side to the leading edge and back. Dense at both edges.
/// @param count  points on each side
Points demoSection(int count);

} // namespace program

#endif
