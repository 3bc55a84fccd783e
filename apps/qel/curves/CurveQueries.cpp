// The operations of qel curve that print something and change nothing.
#include "curves/CurveQueries.h"

#include <algorithm>
#include <memory>

#include <vtkBoundingBox.h>

#include <qel/CurveCrossings.h>
#include <qel/CurveLocator.h>
#include <qel/CurveShape.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "curves/Arguments.h"
#include "reading/CurveReading.h"

namespace program {
namespace {

bool isFlat(const NamedCurve& curve) {
    const Points& points = curve.curve.getCurve();
    return std::all_of(points.begin(), points.end(), [](const Point& p) { return p.z == 0.0; });
}

void printCrossing(const std::string& other, const qel::CurveCrossing& crossing) {
    const bool isPoint = crossing.kind == qel::CurveCrossing::Kind::point;
    out() << quoted(other) << (isPoint ? ",point," : ",overlap,") << text(crossing.begin) << ","
          << shortest(crossing.sBegin) << "," << shortest(crossing.otherBegin) << ","
          << text(crossing.end) << "," << shortest(crossing.sEnd) << ","
          << shortest(crossing.otherEnd) << "\n";
}

Point farthestFrom(const Point& from, const Points& points) {
    return *std::max_element(points.begin(), points.end(), [&](const Point& a, const Point& b) {
        return (a - from).length() < (b - from).length();
    });
}

// One row of the table of thickness. The crossings of a flat section with a plane lie on a line,
// of which the two that are farthest apart are the ends.
void printThickness(const NamedCurve& curve, int axis, double value) {
    Point point;
    Point normal;
    point.getRef(axis) = value;
    normal.getRef(axis) = 1.0;
    Points places;
    const auto crossings = qel::findCrossingsWithPlane(curve.curve, point, normal);
    for (const qel::CurveCrossing& crossing : crossings) {
        places.push_back(crossing.begin);
        places.push_back(crossing.end);
    }
    out() << shortest(value) << "," << crossings.size();
    if (places.empty()) {
        out() << ",,,,,,,\n";
        return;
    }
    const Point from = farthestFrom(places.front(), places);
    const Point to = farthestFrom(from, places);
    out() << "," << shortest((to - from).length()) << "," << text(from) << "," << text(to) << "\n";
}

struct Steps {
    std::size_t shortest = 0; // indices of the points where they begin
    std::size_t longest = 0;
    std::size_t repeated = 0;
};

double stepAt(const Points& points, std::size_t i) {
    return (points[i + 1] - points[i]).length();
}

Steps stepsOf(const Points& points) {
    Steps steps;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        steps.shortest = stepAt(points, i) < stepAt(points, steps.shortest) ? i : steps.shortest;
        steps.longest = stepAt(points, i) > stepAt(points, steps.longest) ? i : steps.longest;
        steps.repeated += points[i + 1] == points[i] ? 1 : 0;
    }
    return steps;
}

} // namespace

CurveStep project(const Words& words) {
    const auto probes = std::make_shared<Points>(readPoints(words[0], {}).points);
    return [probes](NamedCurve& curve) {
        out() << "# " << curve.name << "\nx,y,z,foot_x,foot_y,foot_z,s,distance\n";
        const qel::CurveLocator locator(curve.curve);
        for (const Point& probe : *probes) {
            const qel::CurveLocation place = locator.locate(probe);
            out() << text(probe) << "," << text(place.foot) << "," << shortest(place.s) << ","
                  << shortest(place.distance) << "\n";
        }
        out() << std::flush;
    };
}

CurveStep intersect(const Words& words) {
    const auto others = std::make_shared<Curves>(readCurves({words[0]}, {}));
    return [others](NamedCurve& curve) {
        for (const NamedCurve& other : *others) {
            qel::TripletBase<float> crossing;
            const bool found = curve.curve.intersectWithCurve(other.curve, crossing);
            out() << curve.name << " x " << other.name << ": "
                  << (found ? text(Point(crossing)) : "no crossing") << std::endl;
        }
    };
}

CurveStep listCrossings(const Words& words) {
    const auto others = std::make_shared<Curves>(readCurves({words[0]}, {}));
    return [others](NamedCurve& curve) {
        out() << "# " << curve.name
              << "\nother,kind,x,y,z,s,other_s,end_x,end_y,end_z,end_s,end_other_s\n";
        for (const NamedCurve& other : *others) {
            refuseIf(!isFlat(curve) || !isFlat(other),
                     "crossings are found in x and y, but there is z; --dim 2 drops it");
            for (const auto& crossing : qel::findCrossings(curve.curve, other.curve)) {
                printCrossing(other.name, crossing);
            }
        }
        out() << std::flush;
    };
}

CurveStep measureThickness(const Words& words) {
    Words parts = splitAt(',', words[0]);
    const std::string axes = "xyz";
    const std::size_t axis = parts[0].size() == 1 ? axes.find(lower(parts[0])) : std::string::npos;
    refuseIf(axis == std::string::npos || parts.size() < 2, "\"", words[0],
             "\" is no axis (x, y or z) with places along it, such as x,0.25,0.5");
    std::vector<double> values;
    std::transform(parts.begin() + 1, parts.end(), std::back_inserter(values), numberOf);
    return [axis, name = axes.substr(axis, 1), values](NamedCurve& curve) {
        out() << "# " << curve.name << "\n"
              << name << ",crossings,thickness,from_x,from_y,from_z,to_x,to_y,to_z\n";
        for (const double value : values) {
            printThickness(curve, static_cast<int>(axis), value);
        }
        out() << std::flush;
    };
}

CurveStep describe(const Words&) {
    return [](NamedCurve& curve) {
        const Points& points = curve.curve.getCurve();
        const qel::CurveView view(curve.curve);
        vtkBoundingBox box;
        for (const Point& p : points) {
            box.AddPoint(p.x, p.y, p.z);
        }
        const Steps steps = stepsOf(points);
        const auto step = [&](std::size_t i) {
            return joined(shortest(stepAt(points, i)), " (from point ", i, ")");
        };
        const vtkBoundingBox& b = box;
        out() << "# " << curve.name << "\npoints: " << points.size() << "\nlength: "
              << shortest(qel::ParametricCurve(points, curve.curve.getDimension()).getLength())
              << "\nclosed: " << (view.isClosed() ? "yes" : "no")
              << "\narea: " << shortest(qel::computeSignedArea(view))
              << "\nlower corner: " << text({b.GetBound(0), b.GetBound(2), b.GetBound(4)})
              << "\nupper corner: " << text({b.GetBound(1), b.GetBound(3), b.GetBound(5)})
              << "\nrepeated points: " << steps.repeated
              << "\nsmallest step: " << step(steps.shortest)
              << "\nlargest step: " << step(steps.longest) << std::endl;
    };
}

CurveStep print(const Words&) {
    return [](NamedCurve& curve) {
        out() << std::flush;
        curve.curve.printCurveAndSvalues(curve.name);
        out() << std::flush;
    };
}

} // namespace program
