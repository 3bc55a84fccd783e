import numpy
import pytest

import qel


def test_the_error_carries_class_method_message_and_kind():
    with pytest.raises(qel.DataInvalid) as caught:
        qel.simplify_to_error(numpy.array([[0.0, 0, 0], [1, 0, 0]]), -1.0)
    assert isinstance(caught.value, qel.Error)
    assert caught.value.class_name == "CurveSimplification"
    assert caught.value.method_name == "simplifyToError"
    assert caught.value.message == str(caught.value) != ""
    assert caught.value.kind == 4


def test_the_module_has_a_version():
    assert qel.__version__.count(".") == 2
