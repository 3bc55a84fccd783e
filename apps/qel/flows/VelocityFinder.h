#pragma once
// Which array of a flow solution is the velocity.

#include <vtkDataArray.h>

#include "flows/Leaves.h"

namespace program {

struct Velocity {
    std::string name;
    int association = vtkDataObject::FIELD_ASSOCIATION_POINTS;
    std::string origin;  ///< in words, such as "point array U"
    std::string density; ///< of a momentum that is yet to be divided; otherwise empty
};

/// Finds the velocity: the array of that name, or without one, in this order, an array with a
/// usual name, momentum and density, or the only array of three components. Arrays on points come
/// before those on cells.
/// @throws UserError  listing the arrays that are there, if there is none
Velocity findVelocity(const std::vector<Leaf>& leaves, const std::string& wanted);

/// The velocity of one data set, divided by the density where need be; null if it has none.
vtkSmartPointer<vtkDataArray> velocityOf(vtkDataSet* data, const Velocity& velocity);

} // namespace program
