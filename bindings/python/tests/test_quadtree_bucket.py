import concurrent.futures

import numpy
import pytest

import qel


def cloud(n, seed=0):
    return numpy.random.default_rng(seed).normal(size=(n, 3)).astype(numpy.float32)


def test_the_nearest_points_are_those_of_a_scan():
    points, probes = cloud(500), cloud(200, 1)
    found = qel.QuadtreeBucket(points).nearest(probes)
    steps = probes[:, None, :2] - points[None, :, :2]
    distances = (steps * steps).sum(axis=2)
    assert found.dtype == numpy.int64
    numpy.testing.assert_allclose(distances[range(200), found], distances.min(axis=1), 1e-6)


def test_any_layout_and_limits_are_taken():
    points = cloud(300)
    expected = qel.QuadtreeBucket(points).nearest(points)
    assert (expected == numpy.arange(300)).all()
    bucket = qel.QuadtreeBucket(numpy.asfortranarray(points), max_depth=24, bucket_capacity=1)
    assert len(bucket) == 300
    assert (bucket.nearest(points[::-1]) == expected[::-1]).all()


def test_threads_take_turns():
    points = cloud(2000)
    bucket = qel.QuadtreeBucket(points)
    expected = bucket.nearest(points).tobytes()
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        results = list(pool.map(lambda _: bucket.nearest(points).tobytes(), range(8)))
    assert results == [expected] * 8


def test_bad_points_and_probes_are_refused():
    with pytest.raises(qel.InternalError, match="empty"):
        qel.QuadtreeBucket(numpy.zeros((0, 3), dtype=numpy.float32))
    with pytest.raises(TypeError, match="astype"):
        qel.QuadtreeBucket(cloud(3).astype(float))
    with pytest.raises(ValueError):
        qel.QuadtreeBucket(cloud(3)[:, :2])
    bucket = qel.QuadtreeBucket(cloud(3))
    with pytest.raises(qel.DataInvalid):
        bucket.nearest(numpy.full((1, 3), numpy.nan, dtype=numpy.float32))
    with pytest.raises(TypeError):
        bucket.nearest([[0, 0, 0]])
