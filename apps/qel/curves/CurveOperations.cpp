// The operations of qel curve.
//
// Each changes a curve through the library and carries the point data along: points that are kept
// keep theirs, points that are made get theirs by interpolation in s.
#include "curves/CurveOperations.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include <vtkDoubleArray.h>
#include <vtkNew.h>

#include <qel/CurveShape.h>
#include <qel/CurveSimplification.h>

#include "console/Messages.h"
#include "console/Text.h"
#include "curves/Arguments.h"
#include "curves/Axes.h"
#include "curves/CurveQueries.h"

namespace program {
namespace {

using Curve = qel::ParametricCurve;
using Step = CurveStep;
using Ids = std::vector<vtkIdType>;

constexpr int kCleanExponent = 2; // points nearer in s than 100 spacings are one

// -- Point data ----

// The points that are left of those before, found again in order; the last is the last.
Ids keptPoints(const Points& before, const Points& after) {
    Ids ids;
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < after.size(); ++i) {
        while (at + 1 < before.size() && before[at] != after[i]) {
            ++at;
        }
        ids.push_back(static_cast<vtkIdType>(at));
        at = std::min(at + 1, before.size() - 1);
    }
    ids.push_back(static_cast<vtkIdType>(before.size()) - 1);
    return ids;
}

void select(NamedCurve& curve, const Ids& ids) {
    curve.data = vtkQELPolyline::Select(curve.data, ids);
}

// An operation without arguments that drops points.
auto dropping(const std::function<void(Curve&)>& change) {
    return [change](const Words&) -> Step {
        return [change](NamedCurve& curve) {
            const Points before = curve.curve.getCurve();
            change(curve.curve);
            select(curve, keptPoints(before, curve.curve.getCurve()));
        };
    };
}

// A step that moves points and keeps their number.
Step moving(const std::function<void(Curve&)>& change) {
    return [change](NamedCurve& curve) { change(curve.curve); };
}

// -- Steps ----

Step setDimension(const Words& words) {
    const int dimension = countOf(words[0]);
    refuseIf(dimension < 1 || dimension > 3, "a curve has 1, 2 or 3 dimensions, not ", words[0]);
    return moving([dimension](Curve& curve) {
        const Points points = curve.getCurve();
        curve.setPoints(points, static_cast<Curve::dim>(dimension - 1));
    });
}

Step reverse(const Words&) {
    return [](NamedCurve& curve) {
        curve.curve.reverseCurve();
        Ids ids(curve.curve.getSize());
        std::iota(ids.rbegin(), ids.rend(), 0);
        select(curve, ids);
    };
}

Step resample(const Words& words) {
    const int count = countOf(words[0]);
    return [count](NamedCurve& curve) {
        Points points;
        curve.curve.getCurveForEquidistantS(points, count);
        std::vector<double> svalues;
        svalues.reserve(points.size());
        for (int i = 0; i < count; ++i) {
            svalues.push_back(static_cast<double>(i) / (count - 1));
        }
        curve.data = vtkQELPolyline::Interpolate(curve.data, curve.curve.getSvalues(), svalues);
        curve.curve.setPoints(points, curve.curve.getDimension());
    };
}

Step tessellate(const Words& words) {
    const double step = numberOf(words[0]);
    return [step](NamedCurve& curve) {
        const std::vector<double> before = curve.curve.getSvalues();
        curve.curve.tesselateCurvebySdistance(step);
        curve.data = vtkQELPolyline::Interpolate(curve.data, before, curve.curve.getSvalues());
    };
}

Step cut(const Words& words) {
    const double from = numberOf(words[0]);
    const double to = numberOf(words[1]);
    refuseIf(std::min(from, to) < 0.0 || std::max(from, to) > 1.0, words[0], " to ", words[1],
             " reaches beyond the ends of the curve, which are at 0 and 1");
    return [from, to](NamedCurve& curve) {
        Points points;
        std::vector<double> svalues;
        curve.curve.getCurve(from, to, points, svalues);
        curve.data = vtkQELPolyline::Interpolate(curve.data, curve.curve.getSvalues(), svalues);
        curve.curve.setPoints(points, curve.curve.getDimension());
    };
}

Step extend(const Words& words) {
    const double fraction = numberOf(words[0]);
    if (fraction < 0.0) {
        warn("--extend ", words[0], " shortens the curve");
    }
    return moving([fraction](Curve& curve) { curve.expandCurveBothEnds(fraction); });
}

// Keeps the points that an index list names, and prints it.
Step keeping(const std::function<std::vector<std::size_t>(const NamedCurve&)>& choose) {
    return [choose](NamedCurve& curve) {
        const Points before = curve.curve.getCurve();
        Points after;
        Ids ids;
        for (const std::size_t id : choose(curve)) {
            after.push_back(before[id]);
            ids.push_back(static_cast<vtkIdType>(id));
        }
        out() << curve.name << ": kept " << ids.size() << " of " << before.size() << " points:";
        for (const vtkIdType id : ids) {
            out() << " " << id;
        }
        out() << std::endl;
        curve.curve.setPoints(after, curve.curve.getDimension());
        select(curve, ids);
    };
}

double toleranceOf(const std::string& word) {
    const double tolerance = numberOf(word);
    refuseIf(tolerance < 0.0, "the tolerance ", word, " is below zero");
    return tolerance;
}

Step simplify(const Words& words) {
    const Words parts = splitAt(',', words[0]);
    refuseIf(parts.size() > 2, "\"", words[0],
             "\" is no number of points, nor one with a tolerance");
    refuseIf(countOf(parts[0]) < 2, "--simplify keeps at least two points, not ", parts[0]);
    const auto most = static_cast<std::size_t>(countOf(parts[0]));
    const auto tolerance = parts.size() == 2 ? std::optional(toleranceOf(parts[1])) : std::nullopt;
    return keeping([most, tolerance](const NamedCurve& curve) {
        if (tolerance.has_value()) {
            auto kept = qel::simplifyToError(curve.curve, *tolerance);
            if (kept.size() <= most) {
                return kept;
            }
        }
        double error = 0.0;
        auto kept = qel::simplifyToCount(curve.curve, most, error);
        if (tolerance.has_value()) {
            warn(curve.name, ": ", most, " points leave an error of ", error, ", more than ",
                 *tolerance);
        }
        return kept;
    });
}

Step simplifyTo(const Words& words) {
    return keeping([tolerance = toleranceOf(words[0])](const NamedCurve& curve) {
        return qel::simplifyToError(curve.curve, tolerance);
    });
}

Step rotate(const Words& words) {
    const Point centre = triplet(words[0]);
    const Point axis = triplet(words[1]);
    const double angle = numberOf(words[2]);
    const double length = axis.length();
    refuseIf(length == 0.0, "the axis ", words[1], " has no length");
    return [centre, unit = axis / length, angle](NamedCurve& curve) {
        refuseIf(isCylindrical(curve), "the coordinates are ", listed(curve.axes),
                 ", which cannot be turned as if they were Cartesian; --cylindrical converts them");
        curve.curve.rotateAroundVector(centre, unit, angle * curve.angleUnit);
    };
}

Step toAxialRadialTheta(const Words& words) {
    return [point = triplet(words[0]), direction = triplet(words[1])](NamedCurve& curve) {
        toCylindrical(curve, point, direction);
    };
}

// Adds point data of the shape, which compute() writes.
Step adding(const char* name, int components,
            const std::function<void(const qel::CurveView&, double*)>& compute) {
    return [name, components, compute](NamedCurve& curve) {
        const qel::CurveView view(curve.curve);
        vtkNew<vtkDoubleArray> array;
        array->SetName(name);
        array->SetNumberOfComponents(components);
        array->SetNumberOfTuples(static_cast<vtkIdType>(view.size()));
        compute(view, array->GetPointer(0));
        curve.data->AddArray(array);
    };
}

Step addCurvature(const Words&) {
    return adding("Curvature", 1, [](const qel::CurveView& curve, double* values) {
        qel::CurveShapeFields fields;
        fields.curvature = {values, curve.size()};
        qel::computeCurveShape(curve, fields);
    });
}

Step addTangent(const Words&) {
    return adding("Tangent", 3, [](const qel::CurveView& curve, double* values) {
        qel::CurveShapeFields fields;
        fields.tangent = {values, curve.size()};
        qel::computeCurveShape(curve, fields);
    });
}

} // namespace

const std::vector<CurveOperation>& curveOperations() {
    static const std::vector<CurveOperation> operations{
        {"--dim", 1, "N", "Keep the first N coordinates, set the others to zero", setDimension},
        {"--clean", 0, "", "Drop points that coincide in s",
         dropping([](Curve& curve) { curve.eliminateDoublePoints(kCleanExponent); })},
        {"--unique", 0, "", "Drop points equal to the one before",
         dropping([](Curve& curve) { curve.makeUnique(); })},
        {"--continuous", 0, "", "Drop points that double back",
         dropping([](Curve& curve) { curve.makeContinuous(); })},
        {"--reverse", 0, "", "Reverse the order of the points", reverse},
        {"--resample", 1, "N", "N points at equal steps of s", resample},
        {"--tessellate", 1, "DS", "Insert points until no step of s is longer than DS", tessellate},
        {"--cut", 2, "S0 S1", "Keep the piece between two values of s", cut},
        {"--extend", 1, "F", "Move both ends outward by F times the length", extend},
        {"--simplify", 1, "N[,TOL]",
         "Keep at most N points, fewer if that leaves none farther off than TOL; prints the kept "
         "indices",
         simplify, true},
        {"--simplify-to", 1, "TOL",
         "Drop points as long as none lies farther than TOL from the lines that remain; prints the "
         "kept indices",
         simplifyTo, true},
        {"--rotate", 3, "CENTRE AXIS ANGLE",
         "Turn by an angle about the axis (x,y,z) through a point (x,y,z)", rotate},
        {"--art", 2, "POINT DIRECTION",
         "Convert to axial, radial and angular coordinates about the axis through a point (x,y,z)",
         toAxialRadialTheta},
        {"--curvature", 0, "", "Add the curvature to the point data", addCurvature},
        {"--tangent", 0, "", "Add the unit tangent to the point data", addTangent},
        {"--project", 1, "POINTS", "Print the nearest place on the curve for points of a file",
         project, true},
        {"--intersect", 1, "OTHER", "Print the first crossing with the curves of a file", intersect,
         true},
        {"--crossings", 1, "OTHER",
         "Print all crossings with the curves of a file in x and y, with both values of s",
         listCrossings, true},
        {"--thickness", 1, "AXIS,VALUE...",
         "Print how far apart the outermost crossings with planes are, such as those at x,0.25,0.5",
         measureThickness, true},
        {"--info", 0, "",
         "Print the points, length, area, bounding box, repeated points and longest steps",
         describe, true},
        {"--print", 0, "", "Print the points with their values of s", print, true},
    };
    return operations;
}

} // namespace program
