// What pictures of flows and of curves have in common.
#include "Rendering.h"

#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkRenderWindow.h>
#include <vtkWindowToImageFilter.h>

#include "Console.h"
#include "StagedOutput.h"

namespace program {

void renderToPng(vtkRenderWindow* window, const std::filesystem::path& target) {
    StagedOutput staged(target);
    vtkNew<vtkWindowToImageFilter> image;
    image->SetInput(window);
    image->ReadFrontBufferOff();
    vtkNew<vtkPNGWriter> writer;
    writer->SetInputConnection(image->GetOutputPort());
    writer->SetFileName(staged.path().c_str());
    watched(writer, "drawing " + target.string(), [&] { writer->Write(); });
    staged.commit();
}

} // namespace program
