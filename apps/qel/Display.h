#ifndef QEL_PROGRAM_DISPLAY_H
#define QEL_PROGRAM_DISPLAY_H

/// @file
/// An X display to draw on.

#include <sys/types.h>

namespace program {

/// Where there is no X display, a private Xvfb that lives as long as this object.
///
/// VTK of the distributions draws through X alone, and ends the program where there is no display.
class Display {
public:
    /// @throws UserError  if there is no display and Xvfb is missing or does not start
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

private:
    void startServer();

    pid_t server_ = -1;
};

} // namespace program

#endif
