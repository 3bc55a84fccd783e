#ifndef QEL_PROGRAM_RENDERING_H
#define QEL_PROGRAM_RENDERING_H

/// @file
/// What pictures of flows and of curves have in common.

#include <filesystem>

class vtkRenderWindow;

namespace program {

constexpr int kPictureWidth = 1400;
constexpr int kPictureHeight = 900;

/// Draws a window off screen into a PNG file that is whole or not there.
/// @throws UserError  if it cannot be drawn or written
void renderToPng(vtkRenderWindow* window, const std::filesystem::path& target);

} // namespace program

#endif
