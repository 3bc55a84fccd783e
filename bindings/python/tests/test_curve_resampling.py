import numpy
import pytest

import qel

POINTS = numpy.array([[0.0, 0, 0], [1, 0, 0], [3, 0, 0]])
SVALUES = numpy.array([1.0, 0.5, 0.0, 2.0])


@pytest.mark.parametrize("curve", [POINTS, qel.ParametricCurve(POINTS)])
def test_points_and_data_are_linear_in_s(curve):
    points = qel.resample_curve(curve, SVALUES)
    assert points.tolist() == [[3, 0, 0], [1.5, 0, 0], [0, 0, 0], [3, 0, 0]]
    table = numpy.array([[0.0, 5], [1, 5], [3, 5]])
    points, data = qel.resample_curve(curve, SVALUES, table)
    assert data[:, 0] == pytest.approx(points[:, 0]) and data[:, 1].tolist() == [5] * 4


def test_tables_of_any_strides_are_read_where_they_lie():
    wide = numpy.arange(24.0).reshape(6, 4)
    view = wide[::-2, ::2]
    expected = qel.resample_curve(POINTS, SVALUES, view.copy())[1]
    assert qel.resample_curve(POINTS, SVALUES, view)[1].tolist() == expected.tolist()


def test_what_does_not_fit_is_refused():
    with pytest.raises(qel.DataInvalid):
        qel.resample_curve(POINTS, SVALUES, numpy.zeros((4, 2)))
    with pytest.raises(qel.DataInvalid):
        qel.resample_curve(POINTS, numpy.array([numpy.nan]))
    with pytest.raises(ValueError, match="shape"):
        qel.resample_curve(POINTS, SVALUES, numpy.zeros(3))
    with pytest.raises(TypeError, match="float64"):
        qel.resample_curve(POINTS, SVALUES, numpy.zeros((3, 2), numpy.float32))


def test_a_curve_is_simplified_to_a_count():
    t = numpy.linspace(0, 3, 200)
    points = numpy.column_stack([t, numpy.sin(t), 0 * t])
    kept, error = qel.simplify_to_count(points, 12)
    assert len(kept) <= 12 and kept[0] == 0 and kept[-1] == 199 and 0 < error < 0.05
    assert set(qel.simplify_to_error(points, error)) <= set(range(200))
    with pytest.raises(qel.DataInvalid):
        qel.simplify_to_count(points, 1)


def test_simplification_reports_progress_and_stops():
    t = numpy.linspace(0, 300, 200000)
    points = numpy.column_stack([t, numpy.sin(t), 0 * t])
    shares = []
    qel.simplify_to_error(points, 1e-9, progress=shares.append)
    assert sum(shares) == pytest.approx(1.0)
    assert len(qel.simplify_to_error(points, 1e-9, progress=lambda share: False)) == 0
