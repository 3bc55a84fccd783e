#ifndef QEL_PARAMETRICCURVE_H
#define QEL_PARAMETRICCURVE_H

/// @file
/// Polylines with a parameter along them.

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <qel/Export.h>
#include <qel/LineSegment2D.h>
#include <qel/Point.h>

namespace qel {

/// A polyline in space with a parameter s along it.
///
/// s never decreases. Computed s is arc length over total length: 0 at the first point, exactly 1
/// at the last; supplied s is kept as given. At least two points, always.
///
///     ParametricCurve curve(points, ParametricCurve::dim3D);
///     double s = 0.0;
///     auto foot = curve.projectPoint(probe, s); // nearest place, and its s
///
/// A value type; coordinates are in the caller's unit. Float triplets are widened on the way in
/// and results narrowed on the way out; all work is done in double.
///
/// Threads: const members may be called on one curve from many threads, but for convertToART0() and
/// convertToART(), which store their axis. What printing and reports of intersections need is
/// global.
///
/// Errors are internal::error with class "ParametricCurve" and kind 4 unless a member says
/// otherwise. A member that throws leaves the curve as it was unless it says otherwise.
class QEL_API ParametricCurve {
public:
    /// How many leading components of a point are significant; the others are stored as 0.
    enum dim : int { dim1D = 0, dim2D = 1, dim3D = 2 };

    /// What s-values are computed from: the absolute differences of one component, the distance
    /// in space, or the point's number.
    enum normalization : int {
        normalizeX = 0,
        normalizeY = 1,
        normalizeZ = 2,
        normalizeArc = 3,
        normalizeUniform = 4, ///< refused by setPoints; see setPointsXnormalizeUniform
    };

    /// Where the s-values came from.
    enum parametrization : int { parametrizationComputed = 0, parametrizationSupplied = 1 };

    /// The precision whose spacing is the tolerance of eliminateDoublePoints.
    enum PrecisionUtils : int { singlePrecision = 0, doublePrecision = 1 };

    /// A chord of the simplification, and the vertex farthest from it.
    struct tEdge {
        int first = 0;         ///< index of the chord's first point
        int second = 0;        ///< index of the chord's last point
        int farthest = 0;      ///< vertex between them with the largest normal distance
        double distance = 0.0; ///< that distance
        bool skip = false;     ///< true if the chord is not to be split
    };

    // -- Building ----

    /// The straight curve from (0,0,0) to (1,1,1), three-dimensional.
    ParametricCurve();

    /// @see setPoints with the same arguments
    ParametricCurve(const Points& points, dim dimension);
    ParametricCurve(Points&& points, dim dimension);
    ParametricCurve(const FloatPoints& points, dim dimension);
    /// From braces: ParametricCurve curve({{0, 0, 0}, {3, 4, 0}}, ParametricCurve::dim2D);
    ParametricCurve(std::initializer_list<Point> points, dim dimension)
        : ParametricCurve(Points(points), dimension) {}
    ParametricCurve(std::initializer_list<Point> points, std::vector<double> svalues, dim dimension)
        : ParametricCurve(Points(points), std::move(svalues), dimension) {}
    ParametricCurve(const FloatPoints& points, normalization norm, dim dimension);
    ParametricCurve(const Points& points, const std::vector<double>& svalues, dim dimension);
    ParametricCurve(Points&& points, std::vector<double>&& svalues, dim dimension);
    ParametricCurve(const FloatPoints& points, const std::vector<double>& svalues, dim dimension);

    ParametricCurve(const ParametricCurve& other);
    ParametricCurve& operator=(const ParametricCurve& other);
    /// The source is left without points: it can be set, assigned to and destroyed.
    ParametricCurve(ParametricCurve&& other) noexcept;
    /// The source is left with this curve's points and s-values.
    ParametricCurve& operator=(ParametricCurve&& other) noexcept;
    virtual ~ParametricCurve();

    /// Sets the points and computes s as normalised arc length. O(n). Here and below, a vector that
    /// is moved in gets what the curve held in exchange, and memory is reused where it is enough.
    ///
    /// @throws internal::error  (method "Constructor") for fewer than two points, and (method
    ///     "setPoints") for a dimension that is none of the enumeration; in the second case the
    ///     curve deliberately keeps the new points and the dimension
    void setPoints(const Points& points, dim dimension);
    void setPoints(Points&& points, dim dimension);
    void setPoints(const FloatPoints& points, dim dimension);
    void setPoints(std::initializer_list<Point> points, dim dimension) {
        setPoints(Points(points), dimension);
    }

    /// Sets the points, with s computed from one component or from arc length and recorded as
    /// supplied. The length is not computed. O(n).
    ///
    /// @throws internal::error  as above, and (method "setPoints", before any change) for
    ///     normalizeUniform and for anything that is none of the enumeration
    void setPoints(const Points& points, normalization norm, dim dimension);
    void setPoints(const FloatPoints& points, normalization norm, dim dimension);
    void setPoints(std::initializer_list<Point> points, normalization norm, dim dimension) {
        setPoints(Points(points), norm, dimension);
    }

    /// Sets the points and s-values, which are kept as given. The length keeps its value. O(n).
    ///
    /// @throws internal::error  as the first overload, and (method "setPoints") if the counts
    ///     differ or s decreases; in the last case the curve deliberately keeps the new points
    ///     with the old s-values
    void setPoints(const Points& points, const std::vector<double>& svalues, dim dimension);
    void setPoints(Points&& points, std::vector<double>&& svalues, dim dimension);
    void setPoints(const FloatPoints& points, const std::vector<double>& svalues, dim dimension);
    void setPoints(std::initializer_list<Point> points, std::vector<double> svalues,
                   dim dimension) {
        setPoints(Points(points), std::move(svalues), dimension);
    }

    /// Sets points (x, 0, 0), (0, y, 0) or (0, 0, z) with s as normalised arc length; the curve is
    /// three-dimensional whichever component it fills. O(n).
    /// @throws internal::error  (method "Constructor") for fewer than two values
    void setPointsX(const std::vector<double>& values);
    void setPointsX(const std::vector<float>& values);
    void setPointsX(std::initializer_list<double> values) {
        setPointsX(std::vector<double>(values));
    }
    void setPointsY(const std::vector<double>& values);
    void setPointsY(const std::vector<float>& values);
    void setPointsY(std::initializer_list<double> values) {
        setPointsY(std::vector<double>(values));
    }
    void setPointsZ(const std::vector<double>& values);
    void setPointsZ(const std::vector<float>& values);
    void setPointsZ(std::initializer_list<double> values) {
        setPointsZ(std::vector<double>(values));
    }

    /// The same with s-values kept as given; the length keeps its value.
    /// @throws internal::error  also (method "setPoints") if the counts differ or s decreases
    void setPointsX(const std::vector<double>& values, const std::vector<double>& svalues);
    void setPointsY(const std::vector<double>& values, const std::vector<double>& svalues);
    void setPointsZ(const std::vector<double>& values, const std::vector<double>& svalues);

    /// Sets one-dimensional points (x, 0, 0) with equally spaced s. O(n).
    /// @throws internal::error  (method "Constructor") for fewer than two values
    void setPointsXnormalizeUniform(const std::vector<double>& values);

    // -- Points and s-values ----

    std::size_t getSize() const;
    dim getDimension() const;
    parametrization getParametrization() const;

    /// Total length found by the last computation of s-values; 0 if there was none. Same unit as
    /// the points.
    double getLength() const;

    /// True if the points were last given as double triplets.
    bool isCurveCreatedAsDouble() const;

    /// Origin and unit direction of the axis set by the last conversion; (0,0,0) and (0,0,1)
    /// before one.
    const Point& getAxisPoint() const;
    const Point& getAxisDirection() const;

    const Points& getCurve() const;
    /// The points, for range-based loops and algorithms.
    Points::const_iterator begin() const { return getCurve().begin(); }
    Points::const_iterator end() const { return getCurve().end(); }
    void getCurve(Points& points) const;
    const std::vector<double>& getSvalues() const;
    void getSvalues(std::vector<double>& svalues) const;

    /// The s-value of a point.
    /// @throws internal::error  (method "getSvalues") for an id that is not a point's
    double getSvalues(int id) const;
    /// The s-values of points, in the order of the ids.
    /// @throws internal::error  (method "getSvalues") for an empty list or an id not a point's
    std::vector<double> getSvalues(const std::vector<int>& ids) const;

    /// @throws internal::error  (method "getPointAtIndex") for an id that is not a point's
    Point getPointAtIndex(int id) const;
    Point getFirstPoint() const;
    Point getLastPoint() const;

    /// One component of every point; the triplet forms zero the other two.
    void getX(std::vector<double>& values) const;
    void getX(std::vector<float>& values) const;
    void getX(Points& values) const;
    void getX(FloatPoints& values) const;
    void getY(std::vector<double>& values) const;
    void getY(std::vector<float>& values) const;
    void getY(Points& values) const;
    void getY(FloatPoints& values) const;
    void getZ(std::vector<double>& values) const;
    void getZ(std::vector<float>& values) const;
    void getZ(Points& values) const;
    void getZ(FloatPoints& values) const;

    /// Bounding values. A NaN enters only as the first point's component. O(n).
    void getMinMax(double& xmin, double& xmax, double& ymin, double& ymax, double& zmin,
                   double& zmax) const;
    void getMinMaxX(double& min, double& max) const;
    void getMinMaxY(double& min, double& max) const;
    void getMinMaxZ(double& min, double& max) const;

    /// Index of the first point at which a component is smallest or largest. O(n).
    std::size_t getMinXid() const;
    std::size_t getMaxXid() const;
    std::size_t getMinYid() const;
    std::size_t getMaxYid() const;
    std::size_t getMinZid() const;
    std::size_t getMaxZid() const;

    // -- Evaluation at s ----

    /// Point at s; outside the range, the nearer end point. O(log n), no allocation.
    Point getPointAtParameter(double s) const;

    /// Index of the point whose s-value is nearest to s, the later one of two equally near; the
    /// first for s <= 0 and the last for s >= 1, whatever the curve's own range. O(log n).
    int getClosestToSvaluePoint(double s) const;

    // -- Projection ----

    /// Foot of q on the edges at the vertex nearest to q, and its s. Edges that do not touch that
    /// vertex are not examined. O(n), no allocation.
    Point projectPoint(const Point& q, double& s) const;
    Point projectPoint(const Point& q) const;
    FloatPoint projectPoint(const FloatPoint& q, float& s) const;
    FloatPoint projectPoint(const FloatPoint& q, double& s) const;
    FloatPoint projectPoint(const FloatPoint& q) const;
    /// From braces, three numbers: projectPoint({5, 4, 6}, s).
    Point projectPoint(const double (&q)[3], double& s) const {
        return projectPoint(Point(q[0], q[1], q[2]), s);
    }
    Point projectPoint(const double (&q)[3]) const { return projectPoint(Point(q[0], q[1], q[2])); }

    /// Index of the vertex nearest to q, the first of equally near ones. O(n), no allocation.
    int getClosestPoint(const Point& q) const;
    int getClosestPoint(const FloatPoint& q) const;
    int getClosestPoint(const double (&q)[3]) const {
        return getClosestPoint(Point(q[0], q[1], q[2]));
    }

    /// The s-values of other points, by projection onto this curve.
    ///
    /// @param normalize  sets the first s-value to 0 and the last to 1; the others stay as they are
    /// @throws internal::error  (method "getSvalues") for fewer than two points
    void getSvalues(const Points& points, std::vector<double>& svalues, bool normalize) const;

    /// Largest distance of the vertices strictly between i and j from the line through vertices i
    /// and j. O(j - i).
    ///
    /// @param[out] distance  the largest distance, 0 if none exceeds the tolerance
    /// @param[out] index     the first vertex at that distance, i if none
    /// @param[out] done      true if no vertex in between is farther than the tolerance, 1000
    ///     spacings of the chord's length
    /// On a chord no longer than the tolerance: the distance of the vertex nearest in s to the
    /// middle of the chord, from the chord's midpoint.
    void calculateNormalDistanceFromTwoPoints(int i, int j, double& distance, int& index,
                                              bool& done) const;

    // -- Pieces ----

    /// The piece between two parameter values, clamped to the curve's range, with the stored
    /// points in between and their s-values. Outputs are emptied first. O(log n) and the copy.
    /// @throws internal::error  (method "getCurve") if the clamped start is not below the end
    void getCurve(double sStart, double sEnd, Points& points, std::vector<double>& svalues) const;
    void getCurve(double sStart, double sEnd, FloatPoints& points,
                  std::vector<double>& svalues) const;
    void getCurve(double sStart, double sEnd, Points& points) const;
    void getCurve(double sStart, double sEnd, FloatPoints& points) const;

    /// The piece from the start of the curve to s.
    void getCurveBegin(double s, Points& points, std::vector<double>& svalues) const;
    void getCurveBegin(double s, Points& points) const;
    void getCurveBegin(double s, FloatPoints& points) const;

    /// The piece from s to the end of the curve.
    void getCurveEnd(double s, Points& points, std::vector<double>& svalues) const;
    void getCurveEnd(double s, Points& points) const;
    void getCurveEnd(double s, FloatPoints& points) const;

    /// Splits the curve, read as a closed loop, into the arc from first to second in the direction
    /// of increasing index and the arc from second back to first; both include both ends.
    /// @throws internal::error  (method "getCurve") for an index that is not a point's or equal
    ///     indices
    void getCurve(std::size_t first, std::size_t second, Points& forward, Points& backward) const;
    void getCurve(std::size_t first, std::size_t second, FloatPoints& forward,
                  FloatPoints& backward) const;

    /// The closed loop started and ended at a point: getSize() + 1 points.
    /// @throws internal::error  (method "getCurve") for an index that is not a point's
    void getCurve(std::size_t index, Points& points) const;
    void getCurve(std::size_t index, FloatPoints& points) const;

    /// The points first to second, both included.
    /// @throws internal::error  (method "getCurve") for an index that is not a point's or first
    ///     greater than second
    void getCurve(std::size_t first, std::size_t second, Points& points) const;
    void getCurve(std::size_t first, std::size_t second, FloatPoints& points) const;
    /// The same for any integers; a negative one is not a point's index.
    template <typename Index, typename = std::enable_if_t<std::is_integral<Index>::value>>
    void getCurve(Index first, Index second, Points& points) const {
        getCurve(static_cast<std::size_t>(first), static_cast<std::size_t>(second), points);
    }
    template <typename Index, typename = std::enable_if_t<std::is_integral<Index>::value>>
    void getCurve(Index first, Index second, FloatPoints& points) const {
        getCurve(static_cast<std::size_t>(first), static_cast<std::size_t>(second), points);
    }

    /// Trims a caller's points and s-values at both ends: drops leading and trailing runs in which
    /// s does not increase, seen from the s-value nearest the middle of the range; then widens the
    /// end s-values to the range. Does not read this curve.
    /// @throws internal::error  (method "Constructor") for fewer than two points, (method
    ///     "getCurveCleanEnds") for sStart not below sEnd, sizes that differ, or fewer than two
    ///     points left; the vectors are unchanged then
    void getCurveCleanEnds(Points& points, std::vector<double>& svalues, double sStart,
                           double sEnd) const;
    void getCurveCleanEnds(FloatPoints& points, std::vector<double>& svalues, double sStart,
                           double sEnd) const;

    // -- Sampling ----

    /// Points at count equal steps of s over 0..1; the end points are copied. O(count + n).
    /// @throws internal::error  (method "getCurveForEquidistantS") for count < 2
    void getCurveForEquidistantS(Points& points, int count) const;
    void getCurveForEquidistantS(FloatPoints& points, int count) const;

    /// Points at the given s-values, in any order; outside the range, the nearer end point. For m
    /// of them O(m log n) at most, O(m + n) in order.
    ///
    /// @param keepEnds  takes the curve's end points instead of the first and last s-value's
    /// @throws internal::error  (method "getCurveBySvalues") for fewer than two s-values
    void getCurveBySvalues(Points& points, const std::vector<double>& svalues, bool keepEnds) const;
    void getCurveBySvalues(FloatPoints& points, const std::vector<double>& svalues,
                           bool keepEnds) const;

    /// The x components of getCurveBySvalues, at the same cost.
    /// @throws internal::error  (method "getCurveXBySvalues") for fewer than two s-values
    void getCurveXBySvalues(std::vector<double>& xs, const std::vector<double>& svalues,
                            bool keepEnds) const;

    /// A new curve through the points of getCurveBySvalues, with computed s and this curve's
    /// dimension. The caller deletes it.
    /// @throws internal::error  as getCurveBySvalues
    ParametricCurve* createNewCurveBySvalues(const std::vector<double>& svalues,
                                             bool keepEnds) const;
    /// The same, owned by the pointer.
    std::unique_ptr<ParametricCurve> makeCurveBySvalues(const std::vector<double>& svalues,
                                                        bool keepEnds) const {
        return std::unique_ptr<ParametricCurve>(createNewCurveBySvalues(svalues, keepEnds));
    }

    /// The curve's points, with points inserted so that no step of s is longer than
    /// 1 / (count - 1); a copy of the curve for count < 2. The first s-value is 0, always. O(n)
    /// and the points inserted.
    /// @throws internal::error  (method "getCurveWithMinimumS") for more points than an int counts
    void getCurveWithMinimumS(Points& points, std::vector<double>& svalues, int count) const;
    void getCurveWithMinimumS(FloatPoints& points, std::vector<double>& svalues, int count) const;
    void getCurveWithMinimumS(Points& points, int count) const;
    void getCurveWithMinimumS(FloatPoints& points, int count) const;

    /// At each inner point, the step of s before it (forward) or after it (backward) over the sum
    /// of both; the end entries repeat their neighbours. Zeros for fewer than three points. O(n).
    void getRatioForward(std::vector<double>& ratios) const;
    void getRatioBackward(std::vector<double>& ratios) const;

    /// Cosines of count + 2 equally spaced angles in radians, both ends included. O(count).
    /// @throws internal::error  (method "getCosineCurveSample") for a negative count
    void getCosineCurveSample(int count, double from, double to, std::vector<double>& values) const;

    /// count + 2 equally spaced values, both ends included. O(count).
    /// @throws internal::error  (method "getLinearCurveSample") for a negative count
    void getLinearCurveSample(int count, double from, double to, std::vector<double>& values) const;

    // -- Inserting points ----
    // The stored points stay. O(n) and the points inserted. All throw internal::error, under the
    // member's name, before any change, for more points than an int counts.

    /// Splits every step of s longer than maxStep into equal parts no longer than it. s is
    /// interpolated and the parametrization kept.
    /// @throws data::invalid  (method "tesselateCurvebySdistance") for maxStep outside 0.0001..1
    void tesselateCurvebySdistance(double maxStep);

    /// Inserts into every interval as many equally spaced points as whole steps of s fit, less
    /// one, at most maxInserted; then computes s.
    /// @throws internal::error  (method "tesselateCurvebyNumber") for a step that is not positive
    ///     or a negative maxInserted
    void tesselateCurvebyNumber(int maxInserted, double step);

    /// Inserts into every interval as many equally spaced points as whole steps fit into its rise
    /// in y, less one; then computes s.
    /// @throws internal::error  (method "tesselateCurvebyMinYdistance") for a step that is not
    ///     positive
    void tesselateCurvebyMinYdistance(double step);

    /// Inserts count points (x, 0, 0) into every interval, x spaced by cosine and s equally.
    /// @throws internal::error  (method "tesselateXCurvebyCosine") for a negative count
    void tesselateXCurvebyCosine(int count);

    /// The same; in interval i, spreads[i] gives the shares of its range of s over which x stays
    /// at its start (first) and at its end (second).
    /// @throws internal::error  (method "tesselateXCurvebyCosine") for a negative count, a number
    ///     of pairs other than getSize() - 1, or a pair that is negative or adds up to 1 or more
    void tesselateXCurvebyCosine(int count, const std::vector<std::pair<double, double>>& spreads);

    // -- Cleaning ----
    // Each ends with s and length computed from the points that remain. O(n), no allocation but
    // for s-values that a curve has too few of.

    /// Drops inner points whose s is within 10^exponent spacings of the point kept before or the
    /// point after. The spacing is that of doubles if the curve was created from doubles.
    void eliminateDoublePoints(int exponent);
    void eliminateDoublePoints(int exponent, PrecisionUtils precision);

    /// Drops points that equal the point before them; of equal points alone two remain.
    void makeUnique();

    /// Drops inner points that do not lie strictly between the point kept before and the next one,
    /// measured along the chord between those.
    void makeContinuous();

    /// Reverses the order of the points.
    void reverseCurve();

    // -- Simplification ----

    /// Reduces the curve to at most count of its points, adding the one farthest from the chords
    /// between those kept until none is farther than the tolerance; then computes s. A count
    /// below 2 changes nothing. The last point added may be within the tolerance. The
    /// parametrization becomes computed only where the first chord settles the result. About
    /// O(n log count) where points split chords near their middle, O(n count) at worst.
    ///
    /// @param[out] ids        indices, before the change, of the points kept, increasing
    /// @param      tolerance  normal distance, same unit as the points
    /// @throws internal::error  (method "optimizeByNormalDistance") if supplied s-values outside
    ///     0..1, or so near its ends that a middle rounds to them, make it keep the same points
    ///     again without end
    void optimizeByNormalDistance(int count, std::vector<int>& ids, double tolerance);
    void optimizeByNormalDistance(int count, double tolerance);

    /// Largest normal distance of the curve from the polyline through its points at the given
    /// s-values, paired in the order given.
    /// @throws internal::error  (method "createNewCurveBySvalues") for fewer than two s-values
    double getMaximumNormalDistance(const std::vector<double>& svalues) const;

    /// The two sharpest corners between two indices: (angle between the directions to the
    /// neighbours in radians, index), a with the larger index and b with the smaller. The curve's
    /// ends are no corners; where no neighbour among the next four is far enough away to measure,
    /// the angle is 2 pi. O(second - first), no allocation.
    /// @throws internal::error  (method "findTwoPointsWithMinAngle") for an index that is not a
    ///     point's, equal indices, or fewer than two inner points in the range
    void findTwoPointsWithMinAngle(std::size_t first, std::size_t second,
                                   std::pair<double, std::size_t>& a,
                                   std::pair<double, std::size_t>& b) const;

    // -- Extrapolation ----
    // Along the direction of the end segments, by a fraction of the curve's length. All throw
    // internal::error (method "expandCurve") if the curve's length is zero. O(n).

    /// Moves the end points outward; then computes s.
    void expandCurveBothEnds(double fraction);
    void expandCurveBegin(double fraction);
    void expandCurveEnd(double fraction);

    /// Keeps the end points and adds one beyond each; then computes s.
    void expandCurveBothEndsExtraPoints(double fraction);

    // -- Axial, radial and angle coordinates ----
    // About the axis through a point along a direction, which is stored in the curve. All throw
    // data::invalid (method "setAxis") for a direction of no length, before anything is stored. A
    // point on the axis has the radial coordinate 0, and its angle is that of its neighbour. O(n).

    /// Every point as (axial, radial, 0).
    void convertToART0(const FloatPoint& point, const FloatPoint& direction, Points& out) const;
    void convertToART0(const FloatPoint& point, const FloatPoint& direction,
                       FloatPoints& out) const;
    /// Replaces the curve's points, then computes s.
    void convertToART0(const FloatPoint& point, const FloatPoint& direction);

    /// Every point as (axial, radial, angle in radians); the angle is theta0 at point refId and
    /// follows the curve from there without wrapping.
    /// @throws internal::error  (method "expandCurve") for a refId that is not a point's
    void convertToART(const FloatPoint& point, const FloatPoint& direction, Points& out, int refId,
                      double theta0) const;
    void convertToART(const FloatPoint& point, const FloatPoint& direction, FloatPoints& out,
                      int refId, double theta0) const;
    /// The same with angle 0 at the first point.
    void convertToART(const FloatPoint& point, const FloatPoint& direction, Points& out) const;
    void convertToART(const FloatPoint& point, const FloatPoint& direction, FloatPoints& out) const;
    /// Replaces the curve's points; s-values, parametrization and length stay.
    void convertToART(const FloatPoint& point, const FloatPoint& direction, int refId,
                      double theta0);
    void convertToART(const FloatPoint& point, const FloatPoint& direction);

    /// Turns every point about the axis through centre, by an angle in radians and the right-hand
    /// rule. A zero axis is used as it is. s-values and length stay. O(n), no allocation.
    void rotateAroundVector(const Point& centre, const Point& axis, double angle);

    /// Every point (x, y, z) becomes (s, x, z); s-values and length stay. O(n), no allocation.
    void storeSvaluetoXandXToY();

    // -- Intersection in the plane ----

    /// The first crossing, in point order, of the curve with a segment, both in x and y and in
    /// single precision; segments reach one ten-thousandth of their length beyond their ends. A
    /// curve that is not two-dimensional is reported through ErrorReporter (data::invalid, kind
    /// 8), once a call, and intersected all the same. O(n).
    ///
    /// @param[out] point  the crossing, with z = 0; untouched if there is none
    /// @return true if they cross
    bool intersectWithSegment(const LineSegment2D& segment, FloatPoint& point) const;

    /// The first crossing found by walking this curve's segments and, for each, the other's. Only
    /// the other's dimension is tested, and reported once for every segment tried. Near O(n + m)
    /// where few segments of the two lie close to each other.
    bool intersectWithCurve(const ParametricCurve& other, FloatPoint& point) const;

    // -- Text ----

    /// Writes one line for each point, "%15.9e %15.9e %15.9e", with five digits instead of nine
    /// if the curve was created from floats.
    /// @throws data::invalid  (class "QELStream") if the file cannot be opened or written
    void exportToFile(const std::string& path) const;

    /// Write to standard output: the title on its own line unless it is empty, then the points as
    /// exportToFile does, the s-values ("%18.9e"), or numbered points with s-values.
    void printCurve(const std::string& title) const;
    void printSvalues(const std::string& title) const;
    void printCurveAndSvalues(const std::string& title) const;

private:
    // -- Setters ----
    template <typename Source>
    void setComputed(const std::vector<Source>& points, dim dimension);
    template <typename Source>
    void setNormalised(const std::vector<Source>& points, normalization norm, dim dimension);
    template <typename Source>
    void setSupplied(const std::vector<Source>& points, const std::vector<double>& svalues,
                     dim dimension);
    template <typename T>
    void setComponent(double Point::*component, const std::vector<T>& values);
    void setComponent(double Point::*component, const std::vector<double>& values,
                      const std::vector<double>& svalues);

    // -- Their steps ----
    void makeRoom(std::size_t pointCount, std::size_t svalueCount);
    void setFields(dim dimension, parametrization origin, bool createdAsDouble);
    void copyFields(const ParametricCurve& other) noexcept;
    void computeSvalues();
    void exchange(Points& points, std::vector<double>& svalues) noexcept;
    void exchangeAndCalculateArcValue(Points& points);

    // -- Extrapolation and axis ----
    void expandCurve(bool atBegin, double fractionBegin, bool atEnd, double fractionEnd);
    void expandCurveExtraPoints(bool atBegin, double fractionBegin, bool atEnd, double fractionEnd);
    void setAxis(const FloatPoint& point, const FloatPoint& direction) const;
    template <typename Target>
    void prepareConversion(FloatPoint point, FloatPoint direction, std::vector<Target>& out) const;

    dim dimension_ = dim3D;
    parametrization parametrization_ = parametrizationComputed;
    double length_ = 0.0;
    std::vector<Point> points_;
    std::vector<double> svalues_;
    // The const conversions store the axis that they used.
    mutable Point axisPoint_{0.0, 0.0, 0.0};
    mutable Point axisDirection_{0.0, 0.0, 1.0};
    bool createdAsDouble_ = true;
};

} // namespace qel

#endif
