// Reading of GPX.
#include "Gpx.h"

#include <cstdlib>
#include <cstring>

#include <vtkXMLDataElement.h>

#include "Console.h"
#include "XmlFile.h"

namespace program {
namespace {

std::vector<vtkXMLDataElement*> nested(vtkXMLDataElement* element, const char* name) {
    std::vector<vtkXMLDataElement*> found;
    for (int i = 0; i < element->GetNumberOfNestedElements(); ++i) {
        vtkXMLDataElement* child = element->GetNestedElement(i);
        if (std::strcmp(child->GetName(), name) == 0) {
            found.push_back(child);
        }
    }
    return found;
}

std::string textOf(vtkXMLDataElement* element, const char* name) {
    const auto found = nested(element, name);
    const char* text = found.empty() ? nullptr : found.front()->GetCharacterData();
    return text == nullptr ? "" : text;
}

Line lineOf(vtkXMLDataElement* segment, const char* pointName, const std::string& name,
            const std::string& path) {
    Line line;
    line.name = name;
    line.planar = true;
    std::vector<double> elevations;
    for (vtkXMLDataElement* point : nested(segment, pointName)) {
        double lon = 0.0;
        double lat = 0.0;
        if (point->GetScalarAttribute("lon", lon) == 0 ||
            point->GetScalarAttribute("lat", lat) == 0) {
            throw UserError(path + " has a point without lon and lat");
        }
        line.points.emplace_back(lon, lat, 0.0);
        const std::string elevation = textOf(point, "ele");
        if (!elevation.empty()) {
            elevations.push_back(std::strtod(elevation.c_str(), nullptr));
        }
    }
    if (!elevations.empty() && elevations.size() == line.points.size()) {
        line.columns.emplace_back("ele", elevations);
    }
    return line;
}

} // namespace

std::vector<Line> readGpx(const std::string& path) {
    const auto root = readXml(path, "gpx");
    if (root == nullptr) {
        throw UserError(path + " is no GPX, or damaged");
    }
    std::vector<Line> lines;
    for (vtkXMLDataElement* track : nested(root, "trk")) {
        for (vtkXMLDataElement* segment : nested(track, "trkseg")) {
            lines.push_back(lineOf(segment, "trkpt", textOf(track, "name"), path));
        }
    }
    for (vtkXMLDataElement* route : nested(root, "rte")) {
        lines.push_back(lineOf(route, "rtept", textOf(route, "name"), path));
    }
    return lines;
}

} // namespace program
