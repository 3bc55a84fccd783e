import pickle

import numpy
import pytest

import qel

POINTS = numpy.array([[0.0, 0, 0], [1, 0, 0], [2, 1, 0], [3, 1, 0], [3, 4, 0]])


def arc(n=33):
    t = numpy.linspace(0, numpy.pi, n)
    return qel.ParametricCurve(numpy.column_stack([numpy.cos(t), numpy.sin(t), 0 * t]))


def test_s_comes_from_a_component_or_arc_length():
    by_x = qel.ParametricCurve(POINTS, normalization="x")
    assert by_x.svalues.tolist() == [0, 1 / 3, 2 / 3, 1, 1]
    assert by_x.parametrization == "supplied"
    assert qel.ParametricCurve(POINTS).parametrization == "computed"
    with pytest.raises(ValueError, match="normalization"):
        qel.ParametricCurve(POINTS, normalization="w")
    with pytest.raises(ValueError, match="not both"):
        qel.ParametricCurve(POINTS, numpy.linspace(0, 1, 5), normalization="x")


def test_a_curve_along_one_axis_is_made_from_its_values():
    values = numpy.array([0.0, 1, 4])
    for i, make in enumerate(
        [qel.ParametricCurve.from_x, qel.ParametricCurve.from_y, qel.ParametricCurve.from_z]
    ):
        curve = make(values)
        assert curve.points[:, i].tolist() == [0, 1, 4] and curve.length == 4
        assert curve.svalues.tolist() == [0, 0.25, 1]
        assert make(values, numpy.array([0, 0.5, 1.0])).svalues.tolist() == [0, 0.5, 1]
    uniform = qel.ParametricCurve.from_x_uniform(values)
    assert uniform.svalues.tolist() == [0, 0.5, 1] and uniform.dimension == 1
    with pytest.raises(qel.InternalError):
        qel.ParametricCurve.from_x(values[:1])


def test_a_curve_whose_s_values_are_supplied_has_no_length():
    values = numpy.array([0.0, 1, 4])
    svalues = numpy.array([0, 0.5, 1.0])
    for curve in (
        qel.ParametricCurve(POINTS, normalization="x"),
        qel.ParametricCurve(POINTS, numpy.linspace(0, 1, 5)),
        qel.ParametricCurve.from_y(values, svalues),
        qel.ParametricCurve.from_x_uniform(values),
    ):
        assert curve.length == 0


def test_properties_read_what_the_curve_holds():
    curve = qel.ParametricCurve(POINTS.astype(numpy.float32))
    assert not curve.created_as_double and qel.ParametricCurve(POINTS).created_as_double
    assert curve.x.tolist() == POINTS[:, 0].tolist() and not curve.x.flags.writeable
    assert curve.first_point.tolist() == [0, 0, 0] and curve.last_point.tolist() == [3, 4, 0]
    assert curve.axis_point.tolist() == [0, 0, 0] and curve.axis_direction.tolist() == [0, 0, 1]
    low, high = curve.bounds()
    assert low.tolist() == [0, 0, 0] and high.tolist() == [3, 4, 0]
    assert curve.index_of_largest("x") == 3 and curve.index_of_smallest("y") == 0
    with pytest.raises(ValueError, match="component"):
        curve.index_of_largest("w")


def test_vertices_and_s_values_are_read_by_index():
    curve = qel.ParametricCurve(POINTS)
    assert curve.point_at_index(2).tolist() == [2, 1, 0]
    assert curve.svalue_at_index(4) == 1.0
    assert curve.svalues_at_indices([4, 0]) == pytest.approx([1, 0])
    assert curve.nearest_to_svalue(0.01) == 0
    for call in (
        lambda: curve.point_at_index(5),
        lambda: curve.point_at_index(-1),
        lambda: curve.svalue_at_index(-1),
        lambda: curve.svalues_at_indices([]),
    ):
        with pytest.raises(qel.InternalError):
            call()


def test_pieces_have_points_and_s_values():
    curve = arc()
    points, svalues = curve.sub_curve_with_svalues(0.25, 0.75)
    assert len(points) == len(svalues) and svalues[0] == 0.25 and svalues[-1] == 0.75
    assert points.tolist() == curve.sub_curve(0.25, 0.75).tolist()
    begin, s = curve.begin_to(0.5)
    assert begin[0].tolist() == curve.first_point.tolist() and s[-1] == 0.5
    end, s = curve.end_from(0.5)
    assert end[-1].tolist() == curve.last_point.tolist() and s[0] == 0.5
    with pytest.raises(qel.InternalError):
        curve.sub_curve(0.5, 0.5)


def test_a_loop_is_split_and_started_elsewhere():
    curve = qel.ParametricCurve(POINTS)
    forward, backward = curve.split_loop(1, 3)
    assert forward.tolist() == POINTS[1:4].tolist()
    assert backward.tolist() == POINTS[[3, 4, 0, 1]].tolist()
    assert curve.loop_from(3).tolist() == POINTS[[3, 4, 0, 1, 2, 3]].tolist()
    assert curve.points_between(1, 2).tolist() == POINTS[1:3].tolist()
    for call in (
        lambda: curve.split_loop(1, 1),
        lambda: curve.loop_from(-1),
        lambda: curve.points_between(-1, 2),
        lambda: curve.points_between(3, 2),
    ):
        with pytest.raises(qel.InternalError):
            call()


def test_ends_are_cleaned():
    svalues = numpy.array([0.0, 0, 0.5, 1, 1])
    points, cleaned = qel.ParametricCurve.clean_ends(POINTS, svalues, 0.0, 1.0)
    assert len(points) == len(cleaned) == 3 and cleaned.tolist() == [0, 0.5, 1]
    with pytest.raises(qel.InternalError):
        qel.ParametricCurve.clean_ends(POINTS, svalues, 1.0, 0.0)


def test_points_are_sampled_at_s_values():
    curve = arc()
    svalues = numpy.array([0.9, 0.1, 0.5])
    points = curve.points_at_svalues(svalues)
    assert points.tolist() == [curve.point_at_parameter(s).tolist() for s in svalues]
    assert curve.x_at_svalues(svalues).tolist() == points[:, 0].tolist()
    kept = curve.points_at_svalues(svalues, keep_ends=True)
    assert kept[0].tolist() == curve.first_point.tolist()
    resampled = curve.resampled(svalues)
    assert resampled.points.tolist() == points.tolist() and resampled.svalues[-1] == 1
    points, steps = curve.points_with_minimum_s(101)
    assert len(points) == len(steps) and numpy.diff(steps).max() <= 0.01 + 1e-15
    assert len(curve.ratio_forward()) == len(curve.ratio_backward()) == len(curve)
    for call in (curve.points_at_svalues, curve.x_at_svalues, curve.resampled):
        with pytest.raises(qel.InternalError):
            call(svalues[:1])
        with pytest.raises(TypeError, match="float64"):
            call(svalues.astype(numpy.float32))


def test_samples_include_both_ends():
    assert qel.ParametricCurve.linear_samples(1, 0, 1).tolist() == [0, 0.5, 1]
    assert qel.ParametricCurve.cosine_samples(0, 0, numpy.pi).tolist() == [1, -1]
    with pytest.raises(qel.InternalError):
        qel.ParametricCurve.linear_samples(-1, 0, 1)


def test_points_are_inserted():
    curve = qel.ParametricCurve(POINTS)
    assert numpy.diff(curve.tessellated_by_s_distance(0.01).svalues).max() <= 0.01 + 1e-12
    assert len(curve.tessellated_by_number(2, 0.01)) == 5 + 4 * 2
    assert len(curve.tessellated_by_min_y_distance(1.0)) == 7
    line = qel.ParametricCurve.from_x(numpy.array([0.0, 1, 3]))
    assert len(line.tessellated_x_by_cosine(3)) == 9
    assert len(line.tessellated_x_by_cosine(3, [(0.1, 0.2), (0, 0)])) == 9
    with pytest.raises(qel.InternalError):
        line.tessellated_x_by_cosine(3, [(0.1, 0.2)])
    with pytest.raises(qel.DataInvalid):
        curve.tessellated_by_s_distance(2.0)
    assert len(curve) == 5


def test_repeated_and_backward_points_are_dropped():
    doubled = qel.ParametricCurve(POINTS[[0, 1, 1, 2, 3, 4]])
    assert len(doubled.without_repeated_points()) == 5
    for precision in (None, "single", "double"):
        assert len(doubled.without_double_points(1, precision)) == 5
    with pytest.raises(ValueError, match="precision"):
        doubled.without_double_points(1, "half")
    back = qel.ParametricCurve(numpy.array([[0.0, 0, 0], [2, 0, 0], [1, 0, 0], [3, 0, 0]]))
    assert len(back.made_continuous()) < 4 and len(back) == 4


def test_the_vertices_that_matter_are_kept():
    curve = arc(129)
    simple, ids = curve.optimized_by_normal_distance(9, 1e-9)
    assert ids.dtype == numpy.int64 and len(ids) == len(simple) == 9
    assert simple.points.tolist() == curve.points[ids].tolist()
    assert 0 < curve.maximum_normal_distance(curve.svalues[ids].copy()) < 0.1
    distance, index, done = curve.normal_distance_from_chord(0, 128)
    assert distance == pytest.approx(1.0) and index == 64 and not done
    for i, j in ((-1, 2), (0, 129), (3, 2)):
        with pytest.raises(IndexError):
            curve.normal_distance_from_chord(i, j)


def test_the_sharpest_corners_are_found():
    square = numpy.array([[0.0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0.5, 0]])
    (angle, index), (other, before) = qel.ParametricCurve(square).sharpest_corners(0, 3)
    assert (index, before) == (2, 1) and angle == other == pytest.approx(numpy.pi / 2)


def test_ends_are_moved_and_extended():
    curve = qel.ParametricCurve(numpy.array([[0.0, 0, 0], [2, 0, 0], [4, 0, 0]]))
    assert curve.expanded_at_begin(0.5).x.tolist() == [-2, 2, 4]
    assert curve.expanded_at_end(0.5).x.tolist() == [0, 2, 6]
    assert curve.expanded_by_extra_points(0.5).x.tolist() == [-2, 0, 2, 4, 6]


def test_a_curve_is_turned_about_an_axis_and_seen_from_it():
    curve = arc()
    turned = curve.rotated((0, 0, 0), (0, 0, 1), numpy.pi / 2)
    assert turned.points[0] == pytest.approx([0, 1, 0]) and turned.length == curve.length
    flat = curve.to_axial_radial((0, 0, 0), (0, 0, 1))
    assert flat.y == pytest.approx(numpy.ones(33), abs=1e-6)
    round_about = curve.to_axial_radial_angle((0, 0, 0), (0, 0, 1), 0, 1.0)
    assert round_about.z[0] == 1.0 and abs(round_about.z[-1] - 1) == pytest.approx(numpy.pi)
    assert curve.with_s_as_x_and_x_as_y().x.tolist() == curve.svalues.tolist()
    with pytest.raises(qel.DataInvalid):
        curve.to_axial_radial((0, 0, 0), (0, 0, 0))
    with pytest.raises(qel.InternalError):
        curve.to_axial_radial_angle((0, 0, 0), (0, 0, 1), 99)


def test_crossings_in_the_plane_are_found():
    curve = qel.ParametricCurve(POINTS, dimension=2)
    assert curve.intersect_with_segment((0.5, -1), (0.5, 1)).tolist() == [0.5, 0, 0]
    assert curve.intersect_with_segment((9, -1, 0), (9, 1, 0)) is None
    other = qel.ParametricCurve(numpy.array([[0.5, -1, 0], [0.5, 1, 0]]), dimension=2)
    assert curve.intersect_with_curve(other).tolist() == [0.5, 0, 0]


def test_s_values_of_other_points_come_from_projection():
    curve = qel.ParametricCurve.from_x(numpy.array([0.0, 1, 2]))
    probes = numpy.array([[0.5, 1, 0], [1, 1, 0], [1.5, -1, 0]])
    assert curve.svalues_of_points(probes).tolist() == [0.25, 0.5, 0.75]
    assert curve.svalues_of_points(probes, normalize=True).tolist() == [0, 0.5, 1]


def test_a_curve_is_written_as_text(tmp_path, capsys):
    curve = qel.ParametricCurve(POINTS)
    path = tmp_path / "curve.dat"
    curve.export_to_file(str(path))
    assert numpy.loadtxt(path).tolist() == POINTS.tolist()
    curve.print_points("blade")
    assert capsys.readouterr().out.splitlines()[0] == "blade"
    curve.print_svalues()
    assert len(capsys.readouterr().out.splitlines()) == 5
    curve.print_points_and_svalues()
    assert len(capsys.readouterr().out.splitlines()) == 5
    with pytest.raises(qel.DataInvalid):
        curve.export_to_file(str(tmp_path / "none" / "curve.dat"))


@pytest.mark.parametrize(
    "curve",
    [
        arc(),
        qel.ParametricCurve(POINTS.astype(numpy.float32) / 3),
        qel.ParametricCurve(POINTS, dimension=2),
        qel.ParametricCurve(POINTS, normalization="x"),
        qel.ParametricCurve.from_x_uniform(numpy.array([0.0, 3, 4])),
        arc().expanded(0.3),
        arc().rotated((0, 0, 0), (1, 2, 3), 0.7),
        arc().to_axial_radial_angle((0, 0, 0), (0, 0, 1)),
    ],
)
def test_a_pickled_curve_is_the_same_curve(curve):
    again = pickle.loads(pickle.dumps(curve))
    assert again.points.tobytes() == curve.points.tobytes()
    assert again.svalues.tobytes() == curve.svalues.tobytes()
    assert again.length == curve.length and again.dimension == curve.dimension
    assert again.created_as_double == curve.created_as_double


def test_a_turned_curve_is_pickled_whatever_the_angle():
    curve = qel.ParametricCurve(numpy.array([[0.0, 0, 0], [3, 4, 1]]))
    for angle in numpy.linspace(0, 3, 50):
        turned = curve.rotated((1, 0, 0), (1, 2, 3), angle)
        again = pickle.loads(pickle.dumps(turned))
        assert again.points.tobytes() == turned.points.tobytes()
        assert again.length == turned.length


def test_a_curve_whose_points_left_its_plane_is_not_pickled():
    bent = qel.ParametricCurve(POINTS, dimension=2).rotated((0, 0, 0), (1, 0, 0), 1.0)
    with pytest.raises(ValueError, match="pickled"):
        pickle.dumps(bent)
