#pragma once

#include <pybind11/pybind11.h>

#include <stdexcept>

namespace vantracore {

// An option the library does not offer yet; Python sees NotImplementedError.
class NotSupportedYet : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

// vantracore.Error and vantracore.DomainError, and the translation of the library's exceptions.
void addErrors(pybind11::module_ &module);

}  // namespace vantracore
