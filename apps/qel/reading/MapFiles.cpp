// Reading of GeoJSON and GPX.
#include "reading/MapFiles.h"

#include <fstream>

#include <nlohmann/json.hpp>
#include <vtk_pugixml.h>

#include "console/Messages.h"
#include "console/Text.h"

namespace program {
namespace {

// -- GeoJSON ----

using Json = nlohmann::json;

constexpr int kMaxDepth = 100; // of collections of geometries in each other

struct GeoJsonReader {
    GeoJson result;
    Words names; // of the positions
    bool anyName = false;

    void readObject(const Json& object, const std::string& name, int depth = 0) {
        refuseIf(depth > kMaxDepth, "geometries are nested too deeply");
        const std::string type = object.at("type").get<std::string>();
        if (type == "FeatureCollection" || type == "GeometryCollection") {
            for (const Json& part : object.at(type[0] == 'F' ? "features" : "geometries")) {
                readObject(part, name, depth + 1);
            }
        } else if (type != "Feature") {
            readGeometry(type, object.at("coordinates"), name);
        } else if (!object.at("geometry").is_null()) {
            static const Json::json_pointer kName("/properties/name");
            const bool named = object.contains(kName) && object[kName].is_string();
            readObject(object["geometry"], named ? object[kName].get<std::string>() : "",
                       depth + 1);
        }
    }

    void readGeometry(const std::string& type, const Json& coordinates, const std::string& name) {
        if (type == "Point") {
            readPosition(coordinates, name);
        } else if (type == "LineString") {
            Polyline polyline;
            polyline.name = name;
            polyline.planar = true;
            for (const Json& position : coordinates) {
                polyline.points.push_back(readPosition(position, name));
                polyline.planar = polyline.planar && position.size() < 3;
            }
            result.polylines.push_back(polyline);
        } else {
            refuseIf(type != "MultiPoint" && type != "MultiLineString" && type != "Polygon" &&
                         type != "MultiPolygon",
                     "there is no geometry \"", type, "\" in GeoJSON");
            for (const Json& part : coordinates) {
                readGeometry(type == "Polygon" ? "LineString" : type.substr(5), part, name);
            }
        }
    }

    Point readPosition(const Json& position, const std::string& name) {
        Polyline& all = result.positions;
        all.points.emplace_back(position.at(0).get<double>(), position.at(1).get<double>(),
                                position.size() > 2 ? position.at(2).get<double>() : 0.0);
        all.planar = (all.planar || all.points.size() == 1) && position.size() < 3;
        names.push_back(name);
        anyName = anyName || !name.empty();
        return all.points.back();
    }
};

// -- GPX ----

Polyline polylineOf(const pugi::xml_node& segment, const char* pointName, const std::string& name,
                    const std::string& path) {
    Polyline polyline;
    polyline.name = name;
    polyline.planar = true;
    std::vector<double> elevations;
    for (const pugi::xml_node& point : segment.children(pointName)) {
        const std::optional<double> lon = asNumber(point.attribute("lon").value());
        const std::optional<double> lat = asNumber(point.attribute("lat").value());
        refuseIf(!lon.has_value() || !lat.has_value(), path, " has a point without lon and lat");
        polyline.points.emplace_back(*lon, *lat, 0.0);
        if (const pugi::xml_node elevation = point.child("ele")) {
            elevations.push_back(elevation.text().as_double());
        }
    }
    if (!elevations.empty() && elevations.size() == polyline.points.size()) {
        polyline.columns.emplace_back("ele", elevations);
    }
    return polyline;
}

} // namespace

GeoJson readGeoJson(const std::string& path) {
    std::ifstream file(path);
    GeoJsonReader reader;
    try {
        reader.readObject(Json::parse(file), "");
    } catch (const Json::exception& error) {
        refuse(path, " is no GeoJSON, or damaged: ", error.what());
    } catch (const UserError& error) {
        refuse(path, ": ", error.what());
    }
    if (reader.anyName) {
        reader.result.positions.texts.emplace_back("name", reader.names);
    }
    return reader.result;
}

std::vector<Polyline> readGpx(const std::string& path) {
    pugi::xml_document file;
    const bool parsed = file.load_file(path.c_str());
    const pugi::xml_node root = file.child("gpx");
    refuseIf(!parsed || !root, path, " is no GPX, or damaged");
    std::vector<Polyline> polylines;
    for (const pugi::xml_node& track : root.children("trk")) {
        for (const pugi::xml_node& segment : track.children("trkseg")) {
            polylines.push_back(polylineOf(segment, "trkpt", track.child_value("name"), path));
        }
    }
    for (const pugi::xml_node& route : root.children("rte")) {
        polylines.push_back(polylineOf(route, "rtept", route.child_value("name"), path));
    }
    return polylines;
}

} // namespace program
