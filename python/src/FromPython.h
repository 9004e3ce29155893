#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <pybind11/pybind11.h>

namespace vantracore {

// A Python object as a tree: dict (str keys) as a map in its order, list and tuple as a list, None as
// null, anything else as a value by valueFromPython. Needs the GIL.
Tarvex::VantraCore::PropertyNode nodeFromPython(pybind11::handle object);

// bool, int (64 bits, signed or else unsigned), float, complex and str as scalars of bool, int64,
// uint64, double, complexDouble and string; NumPy scalars and 0-d arrays as scalars of their own kind;
// NumPy arrays as arrays: without a copy for contiguous arrays of a numeric kind (their block is
// shared, and the array is kept alive by the value), converted for strings (str or object arrays of
// str) and datetime64 and timedelta64 (timestamps and durations). Anything else raises TypeError.
Tarvex::VantraCore::VxVariant valueFromPython(pybind11::handle object);

}  // namespace vantracore
