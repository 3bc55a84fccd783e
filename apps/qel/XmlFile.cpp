// XML files of any kind as trees.
#include "XmlFile.h"

#include <vtkNew.h>
#include <vtkXMLDataElement.h>
#include <vtkXMLDataParser.h>

#include "VtkMessages.h"

namespace program {

vtkSmartPointer<vtkXMLDataElement> readXml(const std::string& path, const std::string& root) {
    vtkNew<vtkXMLDataParser> parser;
    parser->SetFileName(path.c_str());
    VtkMessages::instance().clear();
    vtkXMLDataElement* element = parser->Parse() == 0 ? nullptr : parser->GetRootElement();
    return element != nullptr && root == element->GetName() ? element : nullptr;
}

} // namespace program
