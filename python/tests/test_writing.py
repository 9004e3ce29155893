import io
import json

import numpy as np
import pytest

import vantracore

KINDS = {
    "bool": np.array([True, False, True]),
    "int8": np.array([-128, 0, 127], np.int8),
    "int16": np.array([-32768, 1, 32767], np.int16),
    "int32": np.array([-2**31, 1, 2**31 - 1], np.int32),
    "int64": np.array([-2**63, 1, 2**63 - 1], np.int64),
    "unsignedInt8": np.array([0, 1, 255], np.uint8),
    "unsignedInt16": np.array([0, 1, 65535], np.uint16),
    "unsignedInt32": np.array([0, 1, 2**32 - 1], np.uint32),
    "unsignedInt64": np.array([0, 1, 2**64 - 1], np.uint64),
    "float": np.array([0.5, -2.25, 3e38], np.float32),
    "double": np.array([0.5, -2.25, 1e300]),
    "complexFloat": np.array([1 + 2j, -0.5j, 3], np.complex64),
    "complexDouble": np.array([1 + 2j, -0.5j, 3]),
    "string": np.array(["a", "µV", ""], dtype=object),
    "duration": np.array([1, -2, 3], "m8[ns]"),
    "timestamp": np.array(["2024-02-29T12:00:00", "1969-12-31T23:59:59.5", "2000-01-01"], "M8[ms]"),
}
for width in (8, 16, 32, 64):
    for prefix, base in (("complexInt", "i"), ("complexUnsignedInt", "u")):
        pair = np.dtype([("re", f"{base}{width // 8}"), ("im", f"{base}{width // 8}")])
        KINDS[f"{prefix}{width}"] = np.array([(1, 2), (3, 4), (0, 5)], pair)
KINDS["complexBool"] = np.array([(True, False), (False, True), (True, True)], [("re", "?"), ("im", "?")])


def written_kind(value):
    return json.loads(vantracore.dumps(value, numbers="15"))["_wellknowntype_"]


@pytest.mark.parametrize("kind", sorted(KINDS))
def test_every_kind_round_trips(kind):
    array = KINDS[kind]
    assert written_kind(array) == kind
    back = vantracore.loads(vantracore.dumps({"x": array}, numbers="15"))["x"]
    assert back.shape == array.shape and (back == array).all()
    if kind not in ("duration", "timestamp"):  # those come back in the finest exact unit
        assert back.dtype == array.dtype


@pytest.mark.parametrize("order", ["C", "F"])
def test_shape_and_order_round_trip(order):
    array = np.asarray(np.arange(24, dtype=np.int16).reshape(2, 3, 4), order=order)
    text = vantracore.dumps(array, numbers="15")
    assert json.loads(text)["_dataorder_"] == ("rowMajor" if order == "C" else "columnMajor")
    assert json.loads(text)["_dimensions_"] == [2, 3, 4]
    back = vantracore.loads(text)
    assert np.array_equal(back, array) and back.flags[f"{order}_CONTIGUOUS"]


def test_arrays_that_need_a_copy():
    strided = np.arange(10.0)[::3]
    assert vantracore.loads(vantracore.dumps(strided, numbers="15")).tolist() == [0, 3, 6, 9]
    swapped = np.array([1, 258], ">i2")
    assert vantracore.loads(vantracore.dumps(swapped, numbers="15")).tolist() == [1, 258]
    texts = np.array(["ab", "c"])
    assert vantracore.loads(vantracore.dumps(texts, numbers="15")).tolist() == ["ab", "c"]
    empty = vantracore.loads(vantracore.dumps({"e": np.zeros((0, 3))}, numbers="15"))["e"]
    assert empty.size == 0 and empty.dtype == np.float64


def test_scalars():
    assert written_kind(True) == "bool" and written_kind(-5) == "int64"
    assert written_kind(2**64 - 1) == "unsignedInt64" and written_kind(1.5) == "double"
    assert written_kind(1j) == "complexDouble" and written_kind("x") == "string"
    assert written_kind(np.float32(1)) == "float" and written_kind(np.uint8(1)) == "unsignedInt8"
    assert written_kind(np.array(3, np.int16)) == "int16"
    assert written_kind(np.timedelta64(3, "s")) == "duration"
    with pytest.raises(OverflowError, match="does not fit 64 bits"):
        vantracore.dumps(2**64)
    doc = {"b": True, "i": -7, "f": 0.25, "z": 1 - 1j, "s": "ß", "n": None, "l": [1, (2, "x")]}
    assert vantracore.loads(vantracore.dumps(doc, numbers="15")) == {**doc, "n": None, "l": [1, [2, "x"]]}


def test_times():
    stamp = np.datetime64("2024-02-29T12:00:00.123456789")
    text = vantracore.dumps(stamp, numbers="15")
    assert json.loads(text)["_data_"] == {"seconds": 1709208000, "subseconds": 123456789 * 10**6}
    assert vantracore.loads(text) == stamp
    weeks = vantracore.loads(vantracore.dumps(np.timedelta64(2, "W"), numbers="15"))
    assert weeks.dtype == np.dtype("m8[ps]") and weeks == np.timedelta64(14 * 86400 * 10**12, "ps")
    with pytest.raises(ValueError, match="NaT"):
        vantracore.dumps(np.datetime64("NaT", "s"))
    with pytest.raises(ValueError, match="no fixed length"):
        vantracore.dumps(np.array([1], "m8[M]"))
    with pytest.raises(ValueError, match="no whole number of femtoseconds"):
        vantracore.dumps(np.timedelta64(1, "as"))


def test_refused_objects():
    with pytest.raises(TypeError, match="keys must be str, not int"):
        vantracore.dumps({1: 2})
    with pytest.raises(TypeError, match="cannot store an object of type set"):
        vantracore.dumps({"a": {1}})
    with pytest.raises(TypeError, match="float16"):
        vantracore.dumps(np.zeros(2, np.float16))
    with pytest.raises(TypeError, match="only str"):
        vantracore.dumps(np.array(["a", 1], dtype=object))


def test_text_options():
    assert vantracore.dumps(0.1 + 0.2) == '{"_data_":0.30000000000000004,"_wellknowntype_":"double"}'
    assert vantracore.dumps(0.1 + 0.2, numbers="15") == '{"_data_":0.3,"_wellknowntype_":"double"}'
    assert vantracore.dumps({"a": 1}, indent=2, numbers="15") == \
        '{\n  "a": {\n    "_data_": 1,\n    "_wellknowntype_": "int64"\n  }\n}'
    plain = vantracore.dumps({"m": np.array([[1, 2], [3, 4]], order="F")}, fidelity="low", numbers="15")
    assert plain == '{"m":[[1,2],[3,4]]}'
    with pytest.raises(ValueError, match='numbers must be "roundtrip" or "15", not "16"'):
        vantracore.dumps(1, numbers="16")
    with pytest.raises(ValueError, match="indent"):
        vantracore.dumps(1, indent=-1)


def test_targets(tmp_path):
    path = tmp_path / "out.json"
    vantracore.dump({"µ": "x"}, path, numbers="15")
    assert vantracore.load(path) == {"µ": "x"}
    buffer = io.BytesIO()
    vantracore.dump([1.5], buffer, fidelity="low", numbers="15")
    assert buffer.getvalue() == b"[1.5]"
    with pytest.raises(FileNotFoundError):
        vantracore.dump(1, tmp_path / "missing" / "out.json", numbers="15")
