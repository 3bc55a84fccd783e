#pragma once
// VTK's windows, drawn off screen.

#include <filesystem>

class vtkRenderWindow;

namespace program {
namespace fs = std::filesystem;

constexpr int kPictureWidth = 1400;
constexpr int kPictureHeight = 900;

/// Draws a window into a PNG file of the usual size.
///
/// VTK of the distributions draws through X alone, and ends the program where there is no display.
/// Without one, xvfb-run starts one that lasts until the program ends.
/// @throws UserError  if it cannot be drawn or written
void renderToPng(vtkRenderWindow* window, const fs::path& target);

} // namespace program
