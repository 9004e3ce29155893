#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <pybind11/pybind11.h>

namespace vantracore {

// A tree as Python objects: maps as dicts in the map's order, lists as lists, null as None, values by
// valueToPython. Needs the GIL.
pybind11::object nodeToPython(Tarvex::VantraCore::PropertyNode const &node);

// A scalar as a Python scalar (bool, int, float, complex, str; a complex integer as a structured NumPy
// scalar with fields "re" and "im", a duration or timestamp as numpy.timedelta64 or datetime64). An
// array as a NumPy array of its shape, in C order for row-major data and Fortran order for
// column-major: over the holder's own block, read-only, for the numeric kinds; a copy for strings
// (object array) and times (64-bit counts in the finest unit that holds them exactly). The null
// variant is None. `unshared` says no one else holds the holder, so its array may be written.
pybind11::object valueToPython(Tarvex::VantraCore::VxVariant const &value, bool unshared = false);

// The variant behind an array made by valueToPython, or null for any other object.
Tarvex::VantraCore::VxVariant const *holderOf(pybind11::handle array);

}  // namespace vantracore
