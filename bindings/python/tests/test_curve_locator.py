from concurrent.futures import ThreadPoolExecutor

import numpy
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

import qel


def nearest_distances(points, probes):
    a, b = points[:-1], points[1:]
    along = b - a
    squares = (along * along).sum(axis=1)
    t = ((probes[:, None] - a) * along).sum(axis=2) / numpy.where(squares > 0, squares, 1)
    feet = a + along * numpy.clip(t, 0, 1)[:, :, None]
    return numpy.sqrt(((probes[:, None] - feet) ** 2).sum(axis=2)).min(axis=1)


@settings(deadline=None)
@given(st.integers(2, 40), st.integers(0, 20), st.integers(1, 3), st.integers(0, 2**32 - 1))
def test_the_nearest_place_is_that_of_all_edges(n, m, stride, seed):
    random = numpy.random.default_rng(seed)
    points = random.normal(size=(n * stride, 3))[::stride]
    probes = random.normal(size=(m * stride, 3))[::-stride]
    places = qel.CurveLocator(points).locate(probes)
    numpy.testing.assert_allclose(places["distance"], nearest_distances(points, probes), 1e-9, 1e-12)
    gaps = numpy.linalg.norm(places["foot"] - probes, axis=1)
    numpy.testing.assert_allclose(gaps, places["distance"], 1e-9, 1e-12)


def test_a_probe_that_is_not_finite_has_no_place():
    points = numpy.array([[0.0, 0, 0], [1, 0, 0]])
    places = qel.CurveLocator(points).locate(numpy.array([[numpy.nan, 0, 0], [0.5, 1, 0]]))
    assert places["edge"].tolist() == [-1, 0]
    assert numpy.isnan(places["s"][0]) and places["s"][1] == 0.5


def test_threads_share_one_locator():
    random = numpy.random.default_rng(1)
    locator = qel.CurveLocator(qel.ParametricCurve(random.normal(size=(500, 3))))
    probes = random.normal(size=(2000, 3))
    expected = locator.locate(probes)["s"].tolist()
    with ThreadPoolExecutor(4) as pool:
        for places in pool.map(locator.locate, [probes] * 8):
            assert places["s"].tolist() == expected


def test_a_vertex_that_is_not_finite_is_refused():
    with pytest.raises(qel.DataInvalid):
        qel.CurveLocator(numpy.array([[0.0, 0, 0], [numpy.inf, 0, 0]]))
    with pytest.raises(TypeError):
        qel.CurveLocator([[0, 0, 0], [1, 0, 0]])
