import concurrent.futures

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


@pytest.mark.parametrize("dtype", [numpy.float32, numpy.float64])
def test_a_solid_rotation_with_stretching(dtype):
    gradients = numpy.array([[0, -3, 0, 3, 0, 0, 0, 0, 1]], dtype=dtype)
    swirl, real = qel.swirl_strength(gradients), qel.real_eigenvalue(gradients)
    assert swirl.dtype == real.dtype == dtype
    numpy.testing.assert_allclose([swirl[0], real[0]], [3, 1], 1e-5)
    assert qel.vorticity(gradients).tolist() == [[0, 0, 6]]


def test_doubles_are_analysed_in_double():
    gradients = field(500).astype(float)
    t = gradients
    s, w = (t + t.transpose(0, 2, 1)) / 2, (t - t.transpose(0, 2, 1)) / 2
    middle = numpy.linalg.eigvalsh(s @ s + w @ w)[:, 1]
    numpy.testing.assert_allclose(qel.lambda2(gradients), middle, 1e-11, 1e-11)
    pairs = numpy.abs(numpy.linalg.eigvals(t).imag).max(axis=1)
    numpy.testing.assert_allclose(qel.swirl_strength(gradients), pairs, 1e-7, 1e-7)


# -- Many fields at once ----

NAMES = ["invariant_q", "lambda2", "swirl_strength", "vorticity", "helicity", "strain_magnitude"]


def test_many_fields_are_those_taken_alone():
    gradients, velocity = field(5000), field(5000, 1)[:, 0]
    found, counts = qel.analyze_gradients(gradients, NAMES, velocity)
    assert list(found) == NAMES and counts["analyzed"] == 5000
    for name in ["invariant_q", "lambda2", "swirl_strength", "vorticity"]:
        assert found[name].tobytes() == getattr(qel, name)(gradients).tobytes()
    helicity = (found["vorticity"].astype(float) * velocity).sum(axis=1)
    numpy.testing.assert_allclose(found["helicity"], helicity, 1e-4, 1e-5)


def test_fields_are_written_where_that_is_asked_for():
    gradients = field(50)
    table = numpy.zeros((50, 4), dtype=numpy.float32)
    found, _ = qel.analyze_gradients(
        gradients, ["vorticity", "lambda2"], out={"vorticity": table[:, :3], "lambda2": table[:, 3]}
    )
    assert found["lambda2"].base is table
    assert (table[:, 3] == qel.lambda2(gradients)).all()
    assert (table[:, :3] == qel.vorticity(gradients)).all()
    with pytest.raises(ValueError, match="not asked for"):
        qel.analyze_gradients(gradients, ["lambda2"], out={"vorticity": table[:, :3]})
    with pytest.raises(qel.DataInvalid):
        qel.analyze_gradients(
            gradients, ["lambda2", "invariant_q"],
            out={"lambda2": table[:, 0], "invariant_q": table[:, 0]},
        )


def test_options_reach_the_analysis():
    shear = numpy.zeros((3, 9))
    shear[:, 1] = 1.0
    shear[:, 3] = -1e-20
    found, counts = qel.analyze_gradients(shear, ["swirl_strength"], noise_floor=1e-14)
    assert (found["swirl_strength"] == 0).all() and counts["below_floor"] == 3
    tiny = (field(10) * 1e-12).astype(numpy.float32)
    found, _ = qel.analyze_gradients(tiny, ["swirl_strength"], scaled=True)
    expected = qel.swirl_strength(tiny.astype(float))
    numpy.testing.assert_allclose(found["swirl_strength"], expected, 1e-3, 1e-16)
    with pytest.raises(qel.DataInvalid, match="noise floor"):
        qel.analyze_gradients(tiny, ["lambda2"], noise_floor=-1.0)
    with pytest.raises(qel.DataInvalid, match="velocity"):
        qel.analyze_gradients(tiny, ["helicity"])
    with pytest.raises(ValueError, match="lambda2"):
        qel.analyze_gradients(tiny, ["lambda_2"])
    with pytest.raises(TypeError):
        qel.analyze_gradients(tiny, "lambda2")


def test_progress_adds_up_to_one_and_may_stop():
    gradients = field(300000)
    shares = []
    qel.analyze_gradients(gradients, ["lambda2"], progress=shares.append)
    assert len(shares) > 1 and abs(sum(shares) - 1) < 1e-12 and min(shares) >= 0
    _, counts = qel.analyze_gradients(gradients, ["lambda2"], progress=lambda share: False)
    assert 0 < counts["analyzed"] < 300000
    with pytest.raises(ZeroDivisionError):
        qel.analyze_gradients(gradients, ["lambda2"], progress=lambda share: 1 / 0)
    with pytest.raises(TypeError):
        qel.analyze_gradients(gradients, ["lambda2"], progress=3)


def test_threads_analyse_one_array():
    gradients = field(50000)
    expected = qel.lambda2(gradients).tobytes()
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        results = list(pool.map(lambda _: qel.lambda2(gradients).tobytes(), range(8)))
    assert results == [expected] * 8


# -- One field alone ----


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
        function(field(4).astype(int))
    with pytest.raises(TypeError):
        function(field(4).tolist())
    with pytest.raises(TypeError):
        function(field(4).astype(">f4"))
    for shape in [(9,), (4, 8), (4, 3, 2), (1, 4, 3, 3)]:
        with pytest.raises(ValueError):
            function(numpy.zeros(shape, dtype=numpy.float32))
