import pytest

import vantracore
from conftest import document

LIBRARY_EXCEPTIONS = [
    ("invalid_argument", "bad", ValueError),
    ("out_of_range", "Key not found: x", KeyError),
    ("out_of_range", "List index out of range: 5", IndexError),
    ("domain_error", "type must be number, but is null", vantracore.DomainError),
    ("range_error", "overflow", OverflowError),
    ("length_error", "dimensions do not match data length", vantracore.Error),
    ("logic_error", "Cannot deserialize custom types", vantracore.Error),
    ("runtime_error", "unknown type", vantracore.Error),
]


@pytest.mark.parametrize("name, message, expected", LIBRARY_EXCEPTIONS)
def test_library_exceptions_map_to_python(name, message, expected):
    with pytest.raises(expected) as raised:
        vantracore._testing.raise_library(name, message)
    assert message in str(raised.value)


def test_hierarchy():
    assert issubclass(vantracore.Error, RuntimeError)
    assert issubclass(vantracore.DomainError, ArithmeticError)
    with pytest.raises(MemoryError):
        vantracore._testing.raise_library("bad_alloc", "")


def test_documents_raise_with_the_library_messages():
    with pytest.raises(ValueError, match="^parse error"):
        vantracore.loads('{"a": ')
    with pytest.raises(ValueError, match="^parse error"):
        vantracore.loads(document("double", [1.0, 2.0], [2])[:-3])
    with pytest.raises(vantracore.DomainError, match="type must be number, but is string"):
        vantracore.loads(document("double", ["x"], [1]))
    with pytest.raises(vantracore.Error, match="VxVariant dimensions less than actual data items"):
        vantracore.loads(document("int32", [1, 2]))
    with pytest.raises(vantracore.Error, match="wellKnownType key missing"):
        vantracore.loads('{"a":{"_data_":1}}')


def test_options_are_checked():
    with pytest.raises(ValueError, match='fidelity must be "full", "mid" or "low", not "high"'):
        vantracore.loads("null", fidelity="high")
    with pytest.raises(ValueError, match='arrays must be "variants" or "lists"'):
        vantracore.loads("null", arrays="arrays")
    with pytest.raises(TypeError, match="str or a bytes-like object"):
        vantracore.loads(5)
