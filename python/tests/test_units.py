import numpy as np
import pytest

import vantracore


def test_unit_properties():
    unit = vantracore.Unit("mV")
    assert (unit.label, unit.quantity, unit.dimensions) == ("mV", "electric potential", "m^2*kg/(s^3*A)")
    assert (unit.scale, unit.offset, unit.is_logarithmic) == (0.001, 0.0, False)
    assert str(unit) == "mV" and repr(unit) == "Unit('mV')"
    assert vantracore.Unit("dBm").is_logarithmic and vantracore.Unit("dBm").quantity == "power"
    assert vantracore.Unit("kg*m/s^2").quantity == "force"
    assert vantracore.Unit("V") == vantracore.Unit("V") != vantracore.Unit("mV")
    with pytest.raises(vantracore.Error, match="Error constructing a unit from SI String nonsense!"):
        vantracore.Unit("nonsense!")


def test_convert_keeps_shape_and_order_and_applies_the_formula_to_every_element():
    assert vantracore.convert(1500, "mV", "V") == 1.5
    assert vantracore.convert(1 + 2j, "V", "mV") == 1000 + 2000j
    columns = np.asfortranarray(np.arange(6, dtype=np.int32).reshape(2, 3))
    volts = vantracore.convert(columns, vantracore.Unit("mV"), "V")
    assert volts.dtype == np.float64 and volts.shape == (2, 3) and volts.flags.f_contiguous
    assert np.allclose(volts, columns / 1000)
    assert vantracore.convert([[1, 2]], "V", "mV").tolist() == [[1000.0, 2000.0]]
    # Units whose SI texts agree convert too: Celsius and kelvin, km/h and m/s.
    assert vantracore.convert([0, 100], "Celsius", "K").tolist() == [273.15, 373.15]
    assert vantracore.convert(36, "km/h", "m/s") == pytest.approx(10)
    assert vantracore.convert(0, "dBm", "W") == pytest.approx(0.001)


def test_convert_leaves_its_input_alone():
    values = np.array([1.0, 2.0])
    result = vantracore.convert(values, "V", "mV")
    assert values.tolist() == [1.0, 2.0]
    result[0] = 5  # a fresh array of the caller's own
    assert values[0] == 1.0


def test_convert_refusals_keep_the_library_messages():
    with pytest.raises(vantracore.Error, match="To units are not commensurable - from: mV to kg"):
        vantracore.convert(1, "mV", "kg")
    with pytest.raises(vantracore.Error, match="Failed convering units from mV to V"):
        vantracore.convert(["a"], "mV", "V")
    with pytest.raises(TypeError):
        vantracore.convert(1, 3, "V")


def test_units():
    names = vantracore.units()
    assert names == sorted(names) and {"mV", "dBm", "Celsius"} <= set(names)
    assert vantracore.units("electric potential") == ["V", "dBV", "dBmV", "dBµV", "kV", "mV", "nV", "pV", "µV"]
    with pytest.raises(ValueError, match="unknown quantity 'speed'"):
        vantracore.units("speed")
