#pragma once
// What the coordinates of a curve are: Cartesian or cylindrical.

#include "curves/Curves.h"

namespace program {

/// Whether the names of the coordinates say that one of them is an angle, or a radius.
bool hasAngle(const NamedCurve& curve);
bool isCylindrical(const NamedCurve& curve);

/// "x,y,z" or, if one of them is an angle, their own names.
std::string coordinateNames(const NamedCurve& curve);

/// Replaces axial, radial and angular coordinates, which their names tell, by x, y and z. The axis
/// is the one that the axial coordinate is named after, else z; the angle turns about it from the
/// next of x, y and z. Without names the order is axial, radial, angular, and radial, angular of a
/// plane curve. s is computed anew.
/// @throws UserError  if the names are those of something else
void toCartesian(NamedCurve& curve);

/// Replaces x, y and z by axial, radial and angular coordinates about the axis through a point. The
/// angle follows the curve without wrapping. It is 0 where the next of x, y and z after the one
/// nearest to the direction points, as far as that is square to the axis. s-values stay.
/// @throws UserError  if the curve has cylindrical coordinates already
/// @throws qel::data::invalid  if the direction has no length
void toCylindrical(NamedCurve& curve, const Point& point, const Point& direction);

} // namespace program
