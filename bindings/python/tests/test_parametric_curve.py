import copy
import gc

import numpy
import pytest

import qel

POINTS = numpy.array([[0.0, 0, 0], [3, 4, 0], [3, 4, 12]])


def test_a_curve_evaluates_and_projects():
    curve = qel.ParametricCurve(POINTS)
    assert len(curve) == 3 and curve.length == 17.0 and curve.dimension == 3
    assert curve.point_at_parameter(0.5).tolist() == [3, 4, 3.5]
    foot, s = curve.project_point((5, 4, 6))
    assert foot.tolist() == [3, 4, 6] and s == pytest.approx(11 / 17, abs=1e-15)
    assert curve.closest_point(POINTS[2]) == 2
    assert "3 points" in repr(curve)
    assert [list(p) for p in curve] == POINTS.tolist()


@pytest.mark.parametrize("dtype", [numpy.float32, numpy.float64])
def test_points_of_any_strides_are_read_as_they_are(dtype):
    table = numpy.arange(60, dtype=dtype).reshape(5, 12) ** 2
    view = table[::-1, 9:2:-3]
    assert qel.ParametricCurve(view).points.tolist() == view.tolist()


def test_views_are_read_only_and_keep_their_curve():
    curve = qel.ParametricCurve(POINTS)
    points, svalues = curve.points, curve.svalues
    del curve
    gc.collect()
    assert points.tolist() == POINTS.tolist() and svalues.tolist() == [0, 5 / 17, 1]
    for view in (points, svalues):
        assert not view.flags.writeable
        with pytest.raises(ValueError):
            view[0] = 1


def test_operations_return_new_curves():
    curve = qel.ParametricCurve(POINTS)
    assert curve.reversed().points.tolist() == POINTS[::-1].tolist()
    assert curve.expanded(0.5).length == 34.0
    assert curve.points.tolist() == POINTS.tolist()
    doubled = qel.ParametricCurve(POINTS[[0, 1, 1, 2]])
    assert len(doubled.without_double_points(1)) == 3
    assert curve.equidistant_points(3).tolist() == [[0, 0, 0], [3, 4, 3.5], [3, 4, 12]]
    piece = curve.sub_curve(0.5, 1.0)
    assert piece[0].tolist() == pytest.approx([3, 4, 3.5]) and piece[-1].tolist() == [3, 4, 12]


def test_supplied_s_values_are_kept():
    curve = qel.ParametricCurve(POINTS, numpy.array([0.0, 0.5, 1.0]), dimension=2)
    assert curve.svalues.tolist() == [0, 0.5, 1] and curve.dimension == 2


def test_a_curve_is_its_own_copy():
    curve = qel.ParametricCurve(POINTS)
    assert copy.copy(curve) is curve and copy.deepcopy(curve) is curve


@pytest.mark.parametrize(
    "points",
    [
        POINTS.tolist(),
        POINTS.astype(int),
        POINTS.astype(object),
        POINTS.astype(POINTS.dtype.newbyteorder()),
        numpy.ma.masked_array(POINTS),
        None,
    ],
)
def test_what_is_no_array_of_floats_is_a_type_error(points):
    with pytest.raises(TypeError, match="points"):
        qel.ParametricCurve(points)


def test_a_wrong_dtype_is_refused_with_the_conversion():
    with pytest.raises(TypeError, match=r"points.astype\(numpy.float32\)"):
        qel.ParametricCurve(POINTS.astype(int))


@pytest.mark.parametrize("dtype", ["float32", "float64"])
def test_another_byte_order_is_refused_with_its_own_conversion(dtype):
    points = POINTS.astype(dtype)
    foreign = points.astype(points.dtype.newbyteorder())
    with pytest.raises(TypeError, match=rf"byte order; write points.astype\(numpy.{dtype}\)"):
        qel.ParametricCurve(foreign)


@pytest.mark.parametrize("shape", [(9,), (3, 2), (1, 3, 3), (0,)])
def test_a_wrong_shape_is_a_value_error(shape):
    with pytest.raises(ValueError, match="shape"):
        qel.ParametricCurve(numpy.zeros(shape))


@pytest.mark.parametrize("probe", [(1, 2), (1, 2, 3, 4), "abc", 5, (1, 2, None)])
def test_what_is_no_point_is_refused(probe):
    with pytest.raises((TypeError, ValueError)):
        qel.ParametricCurve(POINTS).closest_point(probe)


def test_no_points_are_refused_by_the_library():
    with pytest.raises(qel.Error):
        qel.ParametricCurve(numpy.zeros((0, 3))).point_at_parameter(0.5)


def test_a_dimension_is_one_two_or_three():
    with pytest.raises(ValueError):
        qel.ParametricCurve(POINTS, dimension=4)
