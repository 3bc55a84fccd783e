// Reading of GeoJSON.
#include "GeoJson.h"

#include <fstream>

#include <nlohmann/json.hpp>

#include "Console.h"

namespace program {
namespace {

using Json = nlohmann::json;

constexpr int kDeepest = 100; // collections of geometries in each other

class GeoJsonReader {
public:
    GeoJson result;

    void readObject(const Json& object, const std::string& name, int depth = 0) {
        if (depth > kDeepest) {
            throw UserError("geometries are nested too deeply");
        }
        const std::string type = object.at("type").get<std::string>();
        if (type == "FeatureCollection") {
            for (const Json& feature : object.at("features")) {
                readObject(feature, "", depth + 1);
            }
        } else if (type == "Feature") {
            const Json& geometry = object.at("geometry");
            if (!geometry.is_null()) {
                readObject(geometry, nameOf(object), depth + 1);
            }
        } else if (type == "GeometryCollection") {
            for (const Json& geometry : object.at("geometries")) {
                readObject(geometry, name, depth + 1);
            }
        } else {
            readGeometry(type, object.at("coordinates"), name);
        }
    }

private:
    static std::string nameOf(const Json& feature) {
        if (!feature.contains("properties") || !feature["properties"].is_object()) {
            return "";
        }
        const auto name = feature["properties"].find("name");
        return name != feature["properties"].end() && name->is_string() ? name->get<std::string>()
                                                                        : "";
    }

    void readGeometry(const std::string& type, const Json& coordinates, const std::string& name) {
        if (type == "Point") {
            readPosition(coordinates);
        } else if (type == "MultiPoint") {
            for (const Json& position : coordinates) {
                readPosition(position);
            }
        } else if (type == "LineString") {
            readLine(coordinates, name);
        } else if (type == "MultiLineString" || type == "Polygon") {
            for (const Json& line : coordinates) {
                readLine(line, name);
            }
        } else if (type == "MultiPolygon") {
            for (const Json& polygon : coordinates) {
                readGeometry("Polygon", polygon, name);
            }
        } else {
            throw UserError("there is no geometry \"" + type + "\" in GeoJSON");
        }
    }

    void readLine(const Json& positions, const std::string& name) {
        Line line;
        line.name = name;
        line.planar = true;
        for (const Json& position : positions) {
            line.points.push_back(readPosition(position));
            line.planar = line.planar && position.size() < 3;
        }
        result.lines.push_back(line);
    }

    Point readPosition(const Json& position) {
        const Point point(position.at(0).get<double>(), position.at(1).get<double>(),
                          position.size() > 2 ? position.at(2).get<double>() : 0.0);
        result.points.push_back(point);
        return point;
    }
};

} // namespace

GeoJson readGeoJson(const std::string& path) {
    std::ifstream file(path);
    GeoJsonReader reader;
    try {
        reader.readObject(Json::parse(file), "");
    } catch (const Json::exception& error) {
        throw UserError(path + " is no GeoJSON, or damaged: " + error.what());
    } catch (const UserError& error) {
        throw UserError(path + ": " + error.what());
    }
    return reader.result;
}

} // namespace program
