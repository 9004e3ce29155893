#include "Testing.h"

#include "FromPython.h"
#include "ToPython.h"

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>

namespace py = pybind11;
using namespace pybind11::literals;
using namespace Tarvex::VantraCore;

namespace vantracore {

void addTesting(py::module_ &module) {
  py::module_ testing = module.def_submodule("_testing", "Helpers for the module's own tests.");
  testing.def(
      "holder_address",
      [](py::handle array) -> py::object {
        VxVariant const *const holder = holderOf(array);
        if (holder == nullptr) return py::none();
        return py::int_(reinterpret_cast<std::uintptr_t>(holder->constStoredData()));
      },
      "array"_a, "The address of the block of the holder behind an array that load made, else None.");
  testing.def(
      "stored_address",
      [](py::handle object) {
        VxVariant const value = valueFromPython(object);
        return reinterpret_cast<std::uintptr_t>(value.constStoredData());
      },
      "obj"_a, "The address of the block of the value that dump makes of obj.");
  testing.def(
      "raise_library",
      [](std::string const &type, std::string const &message) {
        if (type == "invalid_argument") throw std::invalid_argument(message);
        if (type == "out_of_range") throw std::out_of_range(message);
        if (type == "domain_error") throw std::domain_error(message);
        if (type == "range_error") throw std::range_error(message);
        if (type == "length_error") throw std::length_error(message);
        if (type == "logic_error") throw std::logic_error(message);
        if (type == "bad_alloc") throw std::bad_alloc();
        throw std::runtime_error(message);
      },
      "type"_a, "message"_a, "Throws the standard exception named by type, as the library would.");
}

}  // namespace vantracore
