#pragma once

#include <pybind11/pybind11.h>

namespace vantracore {

// vantracore._testing: what the tests need to see of the library's memory.
void addTesting(pybind11::module_ &module);

}  // namespace vantracore
