#pragma once

#include <pybind11/pybind11.h>

namespace vantracore {

// load, loads, dump and dumps, with their docstrings.
void addDocuments(pybind11::module_ &module);

}  // namespace vantracore
