// XML files of any kind as trees.
#include "XmlFile.h"

#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkXMLDataElement.h>
#include <vtkXMLDataParser.h>

#include "VtkMessages.h"

namespace program {
namespace {

constexpr int kDeepest = 100;

// Keeps the tree shallow: one is taken apart by recursion, for which the stack may be too small.
class ShallowParser : public vtkXMLDataParser {
public:
    static ShallowParser* New();
    vtkTypeMacro(ShallowParser, vtkXMLDataParser)

    bool sawTooDeep() const { return sawTooDeep_; }

protected:
    void StartElement(const char* name, const char** attributes) override {
        if (++depth_ <= kDeepest) {
            Superclass::StartElement(name, attributes);
        } else {
            sawTooDeep_ = true;
        }
    }
    void EndElement(const char* name) override {
        if (depth_-- <= kDeepest) {
            Superclass::EndElement(name);
        }
    }

private:
    int depth_ = 0;
    bool sawTooDeep_ = false;
};

vtkStandardNewMacro(ShallowParser);

} // namespace

vtkSmartPointer<vtkXMLDataElement> readXml(const std::string& path, const std::string& root) {
    vtkNew<ShallowParser> parser;
    parser->SetFileName(path.c_str());
    VtkMessages::instance().clear();
    if (parser->Parse() == 0 || parser->sawTooDeep()) {
        return nullptr;
    }
    vtkXMLDataElement* element = parser->GetRootElement();
    return element != nullptr && root == element->GetName() ? element : nullptr;
}

} // namespace program
