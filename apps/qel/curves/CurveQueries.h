#pragma once
// The operations of qel curve that print something and change nothing.

#include "curves/CurveOperations.h"

namespace program {

/// Each prints a line with the name of the curve and a table in CSV, or a list. All throw UserError
/// if the arguments are not what they should be.
CurveStep project(const Words& words);
CurveStep intersect(const Words& words);
CurveStep listCrossings(const Words& words);
CurveStep measureThickness(const Words& words);
CurveStep describe(const Words& words);
CurveStep print(const Words& words);

} // namespace program
