// VTK's windows, drawn off screen.
#include "pictures/Rendering.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include <X11/Xlib.h>
#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkRenderWindow.h>
#include <vtkUnsignedCharArray.h>
#include <vtkWindowToImageFilter.h>

#include "console/Interrupts.h"
#include "console/Messages.h"
#include "console/VtkRun.h"
#include "writing/StagedOutput.h"

namespace program {
namespace {

bool displayAnswers() {
    Display* display = XOpenDisplay(nullptr);
    if (display != nullptr) {
        XCloseDisplay(display);
    }
    return display != nullptr;
}

// Has xvfb-run start a display around a command that tells which one it is, and then waits until
// the other end of a pipe is closed. That is with the end of this program, however it comes.
bool startDisplay() {
    int lifeline[2] = {-1, -1};
    const int result = pipe2(lifeline, O_CLOEXEC);
    const std::string command =
        "exec setsid xvfb-run -a -s '-screen 0 1920x1200x24 -noreset' sh -c '"
        "echo $DISPLAY $XAUTHORITY; read end </dev/fd/" +
        std::to_string(dup(lifeline[0])) + "' 2>/dev/null"; // the copy is inherited
    static FILE* answer = popen(command.c_str(), "re");
    std::array<char, 64> display{};
    std::array<char, 256> authority{};
    if (result != 0 || answer == nullptr ||
        std::fscanf(answer, "%63s %255s", display.data(), authority.data()) != 2) {
        return false;
    }
    setenv("DISPLAY", display.data(), 1);
    setenv("XAUTHORITY", authority.data(), 1);
    return displayAnswers();
}

} // namespace

void renderToPng(vtkRenderWindow* window, const fs::path& target) {
    if (!displayAnswers() && !startDisplay()) {
        throwIfInterrupted();
        refuse("no picture can be drawn: there is no X display, and xvfb-run, which would start "
               "one, is missing or fails (install the package xvfb)");
    }
    window->SetOffScreenRendering(1);
    window->SetSize(kPictureWidth, kPictureHeight);
    vtkNew<vtkWindowToImageFilter> image;
    image->SetInput(window);
    image->ReadFrontBufferOff();
    vtkNew<vtkPNGWriter> writer;
    writer->SetInputConnection(image->GetOutputPort());
    writer->WriteToMemoryOn();
    run(writer, "drawing " + target.string(), [&] { writer->Write(); });
    vtkUnsignedCharArray* bytes = writer->GetResult();
    writeText(target, std::string(reinterpret_cast<const char*>(bytes->GetPointer(0)),
                                  static_cast<std::size_t>(bytes->GetNumberOfValues())));
}

} // namespace program
