import numpy
import pytest

import qel


def test_spacing_follows_the_decade():
    assert qel.spacing(1.0) == numpy.finfo(numpy.float64).eps
    assert qel.spacing(1.0, "single") == numpy.finfo(numpy.float32).eps
    assert qel.spacing(50.0) == pytest.approx(10 * qel.spacing(1.0))
    with pytest.raises(ValueError, match="precision"):
        qel.spacing(1.0, "half")


def test_a_quadrilateral_maps_there_and_back():
    corners = numpy.array([[0.0, 0], [2, 0.1], [0.2, 1], [2.5, 1.5]])
    x, y = (qel.value_in_quad(0.3, 0.8, *corners[:, i]) for i in (0, 1))
    found = qel.parameters_in_quad(x, y, corners)
    assert found["converged"] and not found["outside"] and not found["singular"]
    assert (found["s"], found["t"]) == pytest.approx((0.3, 0.8))
    assert qel.parameters_in_quad(9, 9, corners)["outside"]
    with pytest.raises(ValueError, match="shape"):
        qel.parameters_in_quad(x, y, corners[:3])
    with pytest.raises(TypeError, match="float64"):
        qel.parameters_in_quad(x, y, corners.astype(numpy.float32))
