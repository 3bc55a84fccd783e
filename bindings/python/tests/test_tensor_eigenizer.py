import numpy
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

import qel

FUNCTIONS = [qel.invariant_q, qel.divergence, qel.discriminant, qel.lambda2]


def field(n, seed=0):
    return numpy.random.default_rng(seed).normal(size=(n, 3, 3)).astype(numpy.float32)


@settings(deadline=None)
@given(st.integers(0, 60), st.integers(0, 2**32 - 1))
def test_quantities_are_those_of_the_eigenvalues(n, seed):
    gradients = field(n, seed)
    t = gradients.astype(float)
    trace = numpy.trace(t, axis1=1, axis2=2)
    q = 0.5 * (trace**2 - numpy.trace(t @ t, axis1=1, axis2=2))
    numpy.testing.assert_allclose(qel.divergence(gradients), trace, 1e-4, 1e-5)
    numpy.testing.assert_allclose(qel.invariant_q(gradients), q, 1e-4, 1e-4)
    transposed = t.transpose(0, 2, 1)
    s, w = (t + transposed) / 2, (t - transposed) / 2
    middle = numpy.linalg.eigvalsh(s @ s + w @ w)[:, 1] if n else numpy.zeros(0)
    numpy.testing.assert_allclose(qel.lambda2(gradients), middle, 1e-3, 1e-3)


def test_swirl_strength_of_a_solid_rotation():
    gradients = numpy.array([[0, -3, 0, 3, 0, 0, 0, 0, 1]], dtype=numpy.float32)
    swirl, real = qel.swirl_strength(gradients)
    numpy.testing.assert_allclose([swirl[0], real[0]], [3, 1], 1e-5)


@pytest.mark.parametrize("function", FUNCTIONS)
def test_layout_and_block_do_not_change_a_bit(function):
    gradients = field(10000)
    expected = function(gradients).tobytes()
    assert function(gradients.reshape(-1, 9)).tobytes() == expected
    assert function(numpy.asfortranarray(gradients)).tobytes() == expected
    assert function(gradients[::-1])[::-1].tobytes() == expected
    parts = [function(gradients[i : i + 777]) for i in range(0, 10000, 777)]
    assert numpy.concatenate(parts).tobytes() == expected


@pytest.mark.parametrize("function", FUNCTIONS)
def test_out_is_written_and_returned(function):
    gradients = field(100)
    table = numpy.full((100, 2), 7, dtype=numpy.float32)
    out = table[:, 1]
    assert function(gradients, out=out) is out
    assert out.tobytes() == function(gradients).tobytes() and (table[:, 0] == 7).all()


def test_a_bad_out_is_refused_and_left_alone():
    gradients = field(4)
    read_only = numpy.zeros(4, dtype=numpy.float32)
    read_only.flags.writeable = False
    broadcast = numpy.lib.stride_tricks.as_strided(read_only.copy(), (4,), (0,))
    for out in [read_only, gradients[:, 0, 0], numpy.zeros(5, dtype=numpy.float32), broadcast]:
        before = out.copy()
        with pytest.raises(ValueError):
            qel.lambda2(gradients, out=out)
        assert (out == before).all()
    with pytest.raises(TypeError):
        qel.lambda2(gradients, out=numpy.zeros(4))


@pytest.mark.parametrize("function", FUNCTIONS + [qel.swirl_strength])
def test_bad_gradients_are_refused(function):
    with pytest.raises(TypeError, match="astype"):
        function(field(4).astype(float))
    with pytest.raises(TypeError):
        function(field(4).tolist())
    with pytest.raises(TypeError):
        function(field(4).astype(">f4"))
    for shape in [(9,), (4, 8), (4, 3, 2), (1, 4, 3, 3)]:
        with pytest.raises(ValueError):
            function(numpy.zeros(shape, dtype=numpy.float32))
