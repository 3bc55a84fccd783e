import copy
import fractions

import numpy
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

import qel


@settings(deadline=None)
@given(
    arrays.arrays(numpy.float64, st.integers(1, 60), elements=st.floats(-1e300, 1e300)),
    st.integers(0, 60),
)
def test_sums_are_exact_however_a_field_is_split(values, cut):
    whole = qel.statistics(values)
    cut = min(cut, len(values))
    parts = qel.statistics(values[cut:], cut)
    parts.merge(qel.statistics(values[:cut]))
    assert parts == whole
    exact = sum(fractions.Fraction(v) for v in values)
    assert whole.sum == float(exact)
    assert whole.mean == float(exact / len(values))
    assert whole.min == values.min() and whole.max == values.max()
    assert whole.min_index == values.argmin() and whole.max_index == values.argmax()


@pytest.mark.parametrize("dtype", [numpy.float32, numpy.float64])
def test_undefined_values_and_nan_are_counted_apart(dtype):
    values = numpy.array([1, numpy.nan, numpy.finfo(dtype).max, 4], dtype=dtype)
    found = qel.statistics(values[::-1])
    assert (found.count, found.valid, found.undefined, found.not_a_number) == (4, 2, 1, 1)
    assert (found.min, found.max, found.mean, found.variance) == (1, 4, 2.5, 2.25)
    assert found.min_index == 3 and repr(found) == "<qel statistics: 2 valid of 4>"
    assert copy.copy(found) == found
    assert numpy.isnan(qel.statistics(values[:0]).min)


def test_triplets_have_statistics_of_components_and_length():
    values = numpy.array([[3, 4, 0], [0, 0, -1]], dtype=numpy.float32)
    found = qel.statistics(values)
    assert (found.x.max, found.y.sum, found.z.min, found.length.mean) == (3, 4, -1, 3)
    other = qel.statistics(values[1:], 1)
    other.merge(qel.statistics(values[:1]))
    assert other == found


def test_bad_values_are_refused():
    for bad in [[1.0, 2.0], numpy.arange(3), numpy.ma.masked_array([1.0])]:
        with pytest.raises(TypeError):
            qel.statistics(bad)
    for shape in [(), (2, 2), (2, 3, 1)]:
        with pytest.raises(ValueError):
            qel.statistics(numpy.zeros(shape))
    with pytest.raises(TypeError):
        qel.statistics(numpy.zeros(2)).merge(qel.statistics(numpy.zeros(2, numpy.float32)))
