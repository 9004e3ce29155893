import io
import os
import pathlib

import numpy as np
import pytest

import vantracore
from conftest import document


def test_complex_kinds():
    pairs = [{"re": 1, "im": -2}, {"re": 3, "im": 4}]
    floating = vantracore.loads(document("complexFloat", pairs, [2]))
    assert floating.dtype == np.complex64 and floating.tolist() == [1 - 2j, 3 + 4j]
    assert vantracore.loads(document("complexDouble", pairs, [2])).dtype == np.complex128
    integer = vantracore.loads(document("complexInt16", pairs, [2]))
    assert integer.dtype.names == ("re", "im") and integer.dtype["re"] == np.int16
    assert integer["re"].tolist() == [1, 3] and integer["im"].tolist() == [-2, 4]
    unsigned = vantracore.loads(document("complexUnsignedInt64", [{"re": 2**64 - 1, "im": 0}], [1]))
    assert unsigned["re"][0] == 2**64 - 1 and unsigned.dtype["im"] == np.uint64
    truth = vantracore.loads(document("complexBool", [{"re": True, "im": False}], [1]))
    assert truth.dtype["re"] == np.bool_ and truth[0]["re"]


def test_shape_and_order():
    flat = list(range(6))
    rows = vantracore.loads(document("int32", flat, [2, 3], "rowMajor"))
    assert rows.shape == (2, 3) and rows.flags.c_contiguous and rows[1, 0] == 3
    columns = vantracore.loads(document("int32", flat, [2, 3], "columnMajor"))
    assert columns.shape == (2, 3) and columns.flags.f_contiguous and not columns.flags.c_contiguous
    assert columns[1, 0] == 1 and columns[0, 1] == 2


def test_scalars_are_python_scalars():
    assert vantracore.loads(document("int8", 300)) == 44  # the reader narrows without a check
    assert type(vantracore.loads(document("unsignedInt64", 2**64 - 1))) is int
    assert vantracore.loads(document("float", 0.5)) == 0.5
    assert vantracore.loads(document("complexDouble", {"re": 1, "im": 2})) == 1 + 2j
    assert vantracore.loads(document("bool", True)) is True
    assert vantracore.loads(document("string", "µV")) == "µV"
    pair = vantracore.loads(document("complexInt8", {"re": 5, "im": -1}))
    assert (pair["re"], pair["im"]) == (5, -1)
    assert vantracore.loads(document("unknown", None)) is None


def test_strings():
    array = vantracore.loads(document("string", ["a", "ß", ""], [3]))
    assert array.dtype == object and array.tolist() == ["a", "ß", ""]
    grid = vantracore.loads(document("string", ["a", "b", "c", "d"], [2, 2], "columnMajor"))
    assert grid.tolist() == [["a", "c"], ["b", "d"]]


def split(seconds, subseconds):
    return {"seconds": seconds, "subseconds": subseconds}


def test_times_take_the_finest_exact_unit():
    assert vantracore.loads(document("duration", split(1, 5 * 10**14))) == np.timedelta64(1500, "ms")
    durations = vantracore.loads(document("duration", [split(1, 1), split(-1, 0)], [2]))
    assert durations.dtype == np.dtype("m8[fs]") and durations[0] == np.timedelta64(10**15 + 1, "fs")
    stamp = vantracore.loads(document("timestamp", split(1700000000, 123456789 * 10**6)))
    assert stamp == np.datetime64("2023-11-14T22:13:20.123456789") and stamp.dtype == np.dtype("M8[ns]")
    stamps = vantracore.loads(document("timestamp", [split(1700000000, 0), split(0, 0)], [2]))
    assert stamps.dtype == np.dtype("M8[ns]")
    assert stamps.tolist() == [1700000000 * 10**9, 0]


def test_time_no_64_bit_unit_holds_names_the_value():
    with pytest.raises(OverflowError, match="timestamp 1700000000000000000000001 fs"):
        vantracore.loads(document("timestamp", split(1700000000, 1)))


def test_trees():
    text = ('{"name":{"_data_":"probe","_wellknowntype_":"string"},'
            '"channels":[{"_data_":[1,2],"_dimensions_":[2],"_wellknowntype_":"double"},null]}')
    tree = vantracore.loads(text)
    assert set(tree) == {"name", "channels"} and tree["name"] == "probe"
    assert tree["channels"][0].tolist() == [1.0, 2.0] and tree["channels"][1] is None


def test_plain_json_in_lower_fidelities():
    text = '{"unit":"mV","samples":[1,2.5],"ok":true,"none":null}'
    low = vantracore.loads(text, fidelity="low", arrays="lists")
    assert low == {"unit": "mV", "samples": [1.0, 2.5], "ok": True, "none": None}
    mid = vantracore.loads('{"a":{"_data_":[1,2,3]},"b":[1,"x"]}', fidelity="mid", arrays="lists")
    assert mid["a"].dtype == np.float64 and mid["b"] == [1.0, "x"]


def test_plain_arrays_as_arrays():
    text = '{"unit":"mV","samples":[1,2,3],"matrix":[[1.5,2],[3,4]]}'
    tree = vantracore.loads(text, fidelity="low", arrays="variants")
    assert tree["samples"].dtype == np.int64 and tree["samples"].tolist() == [1, 2, 3]
    assert tree["matrix"].shape == (2, 2) and tree["matrix"].dtype == np.float64


def test_declared_elements_are_capped():
    huge = document("double", [1, 2], [300000000])
    for fidelity in ("full", "mid"):
        with pytest.raises(vantracore.Error, match=r"shape \[300000000\] holding 2 items"):
            vantracore.loads(huge, fidelity=fidelity)
    small = document("int32", [1, 2], [5])
    assert vantracore.loads(small, max_elements=3).tolist() == [1, 2, 0, 0, 0]
    with pytest.raises(vantracore.Error, match="the 2 elements allowed"):
        vantracore.loads(small, fidelity="mid", max_elements=2)


def test_sources(tmp_path):
    text = document("int32", [7], [1])
    path = tmp_path / "doc.json"
    path.write_text(text)
    assert vantracore.load(str(path)).tolist() == [7]
    assert vantracore.load(pathlib.Path(path)).tolist() == [7]
    with open(path, "rb") as file:
        assert vantracore.load(file).tolist() == [7]
    assert vantracore.load(io.BytesIO(text.encode())).tolist() == [7]
    assert vantracore.loads(text.encode()).tolist() == [7]
    assert vantracore.loads(bytearray(text.encode())).tolist() == [7]
    with open(path, "r") as file, pytest.raises(TypeError, match="rb"):
        vantracore.load(file)
    with pytest.raises(FileNotFoundError):
        vantracore.load(tmp_path / "missing.json")
    with pytest.raises(IsADirectoryError):
        vantracore.load(tmp_path)
    # A path that states no size is read to its end.
    reading, writing = os.pipe()
    os.write(writing, text.encode())
    os.close(writing)
    try:
        assert vantracore.load(f"/dev/fd/{reading}").tolist() == [7]
    finally:
        os.close(reading)
