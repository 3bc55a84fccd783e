// What pictures of flows and of curves have in common.
#include "Rendering.h"

#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkRenderWindow.h>
#include <vtkUnsignedCharArray.h>
#include <vtkWindowToImageFilter.h>

#include "Console.h"
#include "StagedOutput.h"

namespace program {

void renderToPng(vtkRenderWindow* window, const std::filesystem::path& target) {
    vtkNew<vtkWindowToImageFilter> image;
    image->SetInput(window);
    image->ReadFrontBufferOff();
    vtkNew<vtkPNGWriter> writer;
    writer->SetInputConnection(image->GetOutputPort());
    writer->WriteToMemoryOn();
    watched(writer, "drawing " + target.string(), [&] { writer->Write(); });
    vtkUnsignedCharArray* bytes = writer->GetResult();
    writeText(target, std::string(reinterpret_cast<const char*>(bytes->GetPointer(0)),
                                  static_cast<std::size_t>(bytes->GetNumberOfValues())));
}

} // namespace program
