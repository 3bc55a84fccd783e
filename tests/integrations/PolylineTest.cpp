// Conversions between lines of VTK and curves.
#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <vtkCellArray.h>
#include <vtkDoubleArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

#include <vtkQELPolyline.h>

namespace {

using Lines = std::vector<std::vector<vtkIdType>>;
using Points = std::vector<qel::TripletBase<double>>;

vtkSmartPointer<vtkPolyData> makeLines(const Points& points, const Lines& lines) {
    auto data = vtkSmartPointer<vtkPolyData>::New();
    vtkNew<vtkPoints> coordinates;
    coordinates->SetDataTypeToDouble();
    vtkNew<vtkDoubleArray> height;
    height->SetName("height");
    for (const auto& p : points) {
        coordinates->InsertNextPoint(p.x, p.y, p.z);
        height->InsertNextValue(10.0 * p.x + p.y);
    }
    vtkNew<vtkCellArray> cells;
    for (const auto& line : lines) {
        cells->InsertNextCell(static_cast<vtkIdType>(line.size()), line.data());
    }
    data->SetPoints(coordinates);
    data->SetLines(cells);
    data->GetPointData()->AddArray(height);
    return data;
}

double heightAt(const vtkQELPolyline::Curve& curve, vtkIdType point) {
    return curve.data->GetArray("height")->GetComponent(point, 0);
}

TEST(Polyline, LinesBecomeCurvesWithTheirPointData) {
    const auto curves = vtkQELPolyline::FromPolyData(
        makeLines({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {3, 5, 0}}, {{0, 1, 2, 3}, {2, 0}, {1}}));
    ASSERT_EQ(curves.size(), 2U); // a line of one point is none
    EXPECT_EQ(curves[0].curve.getSize(), 4U);
    EXPECT_EQ(curves[0].curve.getSvalues()[1], 0.125);
    EXPECT_EQ(heightAt(curves[0], 3), 35.0);
    EXPECT_EQ(curves[1].curve.getFirstPoint().x, 3.0);
    EXPECT_EQ(heightAt(curves[1], 1), 0.0);
}

TEST(Polyline, ThereAndBackKeepsPointsAndData) {
    auto lines = makeLines({{0.1, 0.2, 0.3}, {1, 0, 0}, {3, 0, 7}, {3, 5, 0}}, {{0, 1, 2}, {2, 3}});
    const auto curves = vtkQELPolyline::FromPolyData(lines);
    const auto again = vtkQELPolyline::FromPolyData(vtkQELPolyline::ToPolyData(curves));
    ASSERT_EQ(again.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_TRUE(again[i].curve.getCurve() == curves[i].curve.getCurve());
        EXPECT_EQ(again[i].curve.getSvalues(), curves[i].curve.getSvalues());
        EXPECT_EQ(heightAt(again[i], 1), heightAt(curves[i], 1));
        EXPECT_EQ(again[i].data->GetArray("s")->GetComponent(1, 0),
                  curves[i].curve.getSvalues()[1]);
    }
}

TEST(Polyline, ToLinesGoTheDataThatAllCurvesHave) {
    auto curves = vtkQELPolyline::FromPolyData(
        makeLines({{0, 0, 0}, {1, 0, 0}, {3, 0, 7}, {3, 5, 0}}, {{0, 1, 2}, {2, 3}}));
    for (const std::size_t owner : {0U, 1U}) {
        auto some = curves;
        // In front, so that the arrays of the two curves stand at different places.
        vtkNew<vtkPointData> data;
        vtkNew<vtkDoubleArray> own;
        own->SetName("own");
        own->SetNumberOfTuples(static_cast<vtkIdType>(some[owner].curve.getSize()));
        own->Fill(-1.0);
        data->AddArray(own);
        data->AddArray(some[owner].data->GetArray("height"));
        some[owner].data = data;
        const auto lines = vtkQELPolyline::ToPolyData(some);
        EXPECT_EQ(lines->GetPointData()->GetArray("own"), nullptr);
        vtkDataArray* height = lines->GetPointData()->GetArray("height");
        ASSERT_EQ(height->GetNumberOfTuples(), 5);
        EXPECT_EQ(height->GetComponent(1, 0), 10.0);
        EXPECT_EQ(height->GetComponent(4, 0), 35.0);
    }
    curves[1].data = vtkSmartPointer<vtkPointData>::New();
    EXPECT_EQ(vtkQELPolyline::ToPolyData(curves)->GetPointData()->GetNumberOfArrays(), 1);
    EXPECT_EQ(vtkQELPolyline::ToPolyData({})->GetNumberOfPoints(), 0);
}

TEST(Polyline, ShuffledSegmentsAreJoined) {
    Points points;
    for (int i = 0; i < 60; ++i) {
        points.emplace_back(0.5 * i, i % 7, 0.0);
    }
    Lines segments;
    for (vtkIdType i = 0; i < 39; ++i) {
        segments.push_back({i, i + 1}); // 0 to 39, open
    }
    for (vtkIdType i = 40; i < 60; ++i) {
        segments.push_back({i, i + 1 < 60 ? i + 1 : 40}); // a loop
    }
    std::mt19937 random(3);
    std::shuffle(segments.begin(), segments.end(), random);
    for (auto& segment : segments) {
        if (random() % 2 == 0) {
            std::swap(segment[0], segment[1]);
        }
    }
    const auto curves = vtkQELPolyline::FromPolyData(makeLines(points, segments));
    ASSERT_EQ(curves.size(), 2U);
    EXPECT_EQ(curves[0].curve.getSize(), 40U);
    EXPECT_EQ(curves[1].curve.getSize(), 21U);
    EXPECT_TRUE(curves[1].curve.getFirstPoint() == curves[1].curve.getLastPoint());
    for (const auto& curve : curves) {
        for (std::size_t i = 0; i < curve.curve.getSize(); ++i) {
            const auto p = curve.curve.getCurve()[i];
            EXPECT_EQ(heightAt(curve, static_cast<vtkIdType>(i)), 10.0 * p.x + p.y);
        }
    }
}

// As slices from some programs: each segment with points of its own.
TEST(Polyline, SegmentsWithRepeatedPointsAreJoined) {
    const auto curves = vtkQELPolyline::FromPolyData(
        makeLines({{2, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 1, 0}},
                  {{0, 1}, {2, 3}, {4, 5}}));
    ASSERT_EQ(curves.size(), 1U);
    EXPECT_EQ(curves[0].curve.getSize(), 4U);
}

TEST(Polyline, LinesEndWhereThreeMeet) {
    const auto joined = vtkQELPolyline::JoinSegments(
        makeLines({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {2, -1, 0}, {3, 2, 0}},
                  {{0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 4}, {3, 3}}));
    EXPECT_EQ(joined->GetNumberOfLines(), 3); // the repeated and the empty segment are left out
}

TEST(Polyline, InterpolatesBetweenAndClampsBeyondTheEnds) {
    auto lines = makeLines({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0, 1, 2, 3}});
    const std::vector<double> s{0.0, 0.5, 0.5, 1.0};
    const auto data = vtkQELPolyline::Interpolate(lines->GetPointData(), s,
                                                  {-1.0, 0.0, 0.25, 0.5, 0.75, 1.0, 2.0});
    const std::vector<double> expected{0.0, 0.0, 5.0, 10.0, 15.0, 20.0, 20.0};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_DOUBLE_EQ(data->GetArray("height")->GetComponent(static_cast<vtkIdType>(i), 0),
                         expected[i]);
    }
}

TEST(Polyline, DataWithoutLinesGivesNoCurve) {
    vtkNew<vtkPolyData> empty;
    EXPECT_TRUE(vtkQELPolyline::FromPolyData(empty).empty());
    EXPECT_EQ(vtkQELPolyline::ToPolyData({})->GetNumberOfPoints(), 0);
}

} // namespace
