import gc
import os
import sys

import numpy as np
import pytest

import vantracore
from conftest import document


def address(array):
    return array.__array_interface__["data"][0]


def resident_bytes():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def test_read_arrays_are_the_holders_memory():
    tree = vantracore.loads('{"a":' + document("double", [1, 2, 3], [3]) + "}")
    array = tree["a"]
    assert address(array) == vantracore._testing.holder_address(array)
    assert not array.flags.writeable
    with pytest.raises(ValueError, match="read-only"):
        array[0] = 5
    assert vantracore._testing.holder_address(np.zeros(3)) is None


def test_an_array_keeps_its_holder_alive():
    array = vantracore.loads(document("int64", list(range(1000)), [1000]))
    view = array[10:20]
    del array
    gc.collect()
    filler = [np.full(1000, -1) for _ in range(100)]  # reuses freed memory, if any was freed
    assert view.tolist() == list(range(10, 20))
    assert address(view) == vantracore._testing.holder_address(view.base) + 80
    del filler


def test_written_arrays_are_not_copied():
    for array in (np.arange(12.0).reshape(3, 4), np.asfortranarray(np.ones((3, 4), np.int8))):
        assert vantracore._testing.stored_address(array) == address(array)
    strided = np.arange(10)[::2]
    assert vantracore._testing.stored_address(strided) != address(strided)


def test_writing_lets_go_of_the_array():
    array = np.arange(100.0)
    before = sys.getrefcount(array)
    vantracore.dumps({"a": array, "b": [array, array]}, numbers="15")
    vantracore._testing.stored_address(array)
    assert sys.getrefcount(array) == before


def test_loading_a_128_mb_array_costs_the_array_alone():
    count = 16 * 1024 * 1024  # 128 MB of doubles
    text = '{"_data_":[' + "1," * (count - 1) + '1],"_dimensions_":[%d],"_wellknowntype_":"double"}' % count
    gc.collect()
    before = resident_bytes()
    array = vantracore.loads(text)
    growth = resident_bytes() - before
    assert array.nbytes == 128 * 1024 * 1024 and array[-1] == 1.0
    # The parse's own structures are gone; a copy of the array would add another 128 MB.
    assert growth < array.nbytes + 24 * 1024 * 1024, f"grew by {growth / 2**20:.0f} MB"
