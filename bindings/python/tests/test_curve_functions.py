import numpy
import pytest

import qel

SQUARE = numpy.array([[0.0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 0]])


def test_crossings_of_a_square_and_a_line():
    line = numpy.array([[-1, 0.5, 0], [2, 0.5, 0]], dtype=numpy.float32)
    found = qel.find_crossings(SQUARE, line)
    assert [c["kind"] for c in found] == ["point", "point"]
    assert [c["edge"] for c in found] == [1, 3]
    assert [c["begin"].tolist() for c in found] == [[1, 0.5, 0], [0, 0.5, 0]]


def test_simplification_keeps_corners():
    points = numpy.array([[0.0, 0, 0], [1, 0, 0], [2, 0, 0], [2, 3, 0]])
    kept = qel.simplify_to_error(points, 0.01)
    assert kept.dtype == numpy.int64 and kept.tolist() == [0, 2, 3]


def test_shape_of_a_circle():
    angle = numpy.linspace(0, 2 * numpy.pi, 65)
    circle = numpy.stack([2 * numpy.cos(angle), 2 * numpy.sin(angle), 0 * angle], axis=1)
    circle[-1] = circle[0]
    shape = qel.curve_shape(qel.ParametricCurve(circle))
    numpy.testing.assert_allclose(shape["curvature"], 0.5, 1e-9)
    numpy.testing.assert_allclose(shape["turning_angle"], 2 * numpy.pi / 64, 1e-9)
    numpy.testing.assert_allclose((shape["tangent"] * circle).sum(axis=1), 0, atol=1e-9)


def test_area_is_signed():
    assert qel.signed_area(SQUARE) == 1.0 and qel.signed_area(SQUARE[::-1]) == -1.0


@pytest.mark.parametrize("function", [qel.curve_shape, qel.signed_area])
def test_bad_curves_are_refused(function):
    with pytest.raises(qel.DataInvalid):
        function(SQUARE[:1])
    with pytest.raises(TypeError):
        function(SQUARE.astype(int))
    with pytest.raises(ValueError):
        function(SQUARE[:, :2])


def test_crossings_with_segments_lines_and_planes():
    inside = qel.find_crossings_with_segment(SQUARE, (0.5, 0.5, 0), (2, 0.5, 0))
    assert [c["begin"].tolist() for c in inside] == [[1, 0.5, 0]]
    assert inside[0]["other_begin"] == pytest.approx(1 / 3)
    assert len(qel.find_crossings_with_line(SQUARE, (0.5, 0.5, 0), (2, 0.5, 0))) == 2
    assert len(qel.find_crossings_with_plane(SQUARE, (0.5, 0, 0), (1, 0, 0))) == 2
    with pytest.raises(qel.DataInvalid):
        qel.find_crossings_with_line(SQUARE, (0, 0, 0), (0, 0, 0))
    with pytest.raises(qel.DataInvalid):
        qel.find_crossings_with_plane(SQUARE, (0, 0, 0), (0, 0, 0))


def test_shape_is_taken_at_s_values():
    shape = qel.curve_shape(SQUARE, numpy.array([0.125, 0.375]))
    assert shape["tangent"].shape == (2, 3) and shape["curvature"].shape == (2,)
    assert abs(shape["tangent"][0][0]) > abs(shape["tangent"][0][1])
    with pytest.raises(qel.DataInvalid):
        qel.curve_shape(SQUARE, numpy.array([numpy.nan]))


def test_orientation_is_the_sign_of_the_area():
    assert qel.orientation(SQUARE) == 1 and qel.orientation(SQUARE[::-1]) == -1
    assert qel.orientation(SQUARE[[0, 1, 0]]) == 0
