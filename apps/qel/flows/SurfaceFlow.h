#pragma once
// Flow on surfaces: planes cut from a volume, walls. Derivatives out of the surface are missing
// there, so that most quantities of the velocity gradient cannot be had.

#include "flows/FlowAnalysis.h"

namespace program {

/// Why the whole velocity gradient cannot be had from data whose cells are surfaces or lines; empty
/// if it can: in a volume, and in a plane of constant x, y or z that the velocity does not leave,
/// which is taken for a plane flow. "Does not leave" is up to the rounding of single precision.
std::string reasonAgainstGradient(const std::vector<Leaf>& leaves, const Velocity& velocity);

/// What the derivatives along a surface give.
struct InPlaneAnalysis {
    vtkSmartPointer<vtkDataObject> data; ///< the surfaces with the two fields added
    std::vector<Statistics> statistics;
};

/// The vorticity about the normal, n . curl u, as VorticityNormal, and the divergence of the
/// velocity within the surface, as DivergenceInPlane. Normals of a plane point along the axis to
/// which they are closest; those of other surfaces are consistent.
/// @throws UserError  if there is no surface with the velocity
InPlaneAnalysis analyseInPlane(vtkDataObject* flow, const Velocity& velocity);

} // namespace program
