#ifndef vtkQELPolyline_h
#define vtkQELPolyline_h

/// @file
/// Conversions between VTK's lines and parametric curves.

#include <vector>

#include <vtkObject.h>
#include <vtkSmartPointer.h>

#include <qel/ParametricCurve.h>

class vtkPointData;
class vtkPolyData;

/// Conversions between the lines of a vtkPolyData and qel::ParametricCurve, with point data.
///
///     auto curves = vtkQELPolyline::FromPolyData(slice);
///     curves[0].curve.reverseCurve();
///     auto result = vtkQELPolyline::ToPolyData(curves);
///
/// Static functions only.
class vtkQELPolyline : public vtkObject {
public:
    static vtkQELPolyline* New();
    vtkTypeMacro(vtkQELPolyline, vtkObject)

    vtkQELPolyline(const vtkQELPolyline&) = delete;
    vtkQELPolyline& operator=(const vtkQELPolyline&) = delete;

    /// A curve, and the data of its points: as many tuples as the curve has points, or no array.
    struct Curve {
        qel::ParametricCurve curve;
        vtkSmartPointer<vtkPointData> data;
    };

    /// One curve for each line or polyline of at least two points, in the order of the cells. If
    /// all lines are single segments they are joined first.
    static std::vector<Curve>
    FromPolyData(vtkPolyData* lines,
                 qel::ParametricCurve::dim dimension = qel::ParametricCurve::dim3D);

    /// One polyline for each curve, with the point data and the s-values in an array named "s".
    /// Only arrays that every curve has are kept. Points are in double precision.
    static vtkSmartPointer<vtkPolyData> ToPolyData(const std::vector<Curve>& curves);

    /// Lines joined where exactly two of them meet, in whatever order and direction they come:
    /// open ones from their end with the lower point id, loops closed by their first point. Points
    /// with equal coordinates are one; lines of no length and repeated ones are left out. O(n).
    static vtkSmartPointer<vtkPolyData> JoinSegments(vtkPolyData* lines);

    /// Data at new values of s, linear between the given ones; outside them, the nearer end's.
    /// @param svalues  of the source's points, never decreasing
    static vtkSmartPointer<vtkPointData> Interpolate(vtkPointData* source,
                                                     const std::vector<double>& svalues,
                                                     const std::vector<double>& newSvalues);

    /// Data of some points, in the order of the ids.
    static vtkSmartPointer<vtkPointData> Select(vtkPointData* source,
                                                const std::vector<vtkIdType>& ids);

protected:
    vtkQELPolyline() = default;
    ~vtkQELPolyline() override = default;
};

#endif
