#pragma once

#include <pybind11/pybind11.h>

namespace vantracore {

// vantracore.Unit, convert and units, with their docstrings.
void addUnits(pybind11::module_ &module);

}  // namespace vantracore
