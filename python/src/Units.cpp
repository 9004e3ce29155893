#include "Units.h"

#include "FromPython.h"
#include "LibraryOptions.h"
#include "ToPython.h"

#include <VantraCore/SystemOfUnits.h>

#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;
using namespace pybind11::literals;
using namespace Tarvex::VantraCore;
using Experimental::SystemOfUnits;
using Experimental::Unit;
using Experimental::UnitType;

namespace vantracore {
namespace {

std::string plain(VxString const &text) {
  return text.toStdString();
}

Unit unitNamed(std::string const &text) {
  return SystemOfUnits::instance().getUnitsFromString(VxString(text));
}

Unit unitOf(py::handle unit) {
  if (py::isinstance<Unit>(unit)) return unit.cast<Unit>();
  if (py::isinstance<py::str>(unit)) return unitNamed(unit.cast<std::string>());
  throw py::type_error("a unit is a vantracore.Unit or its text");
}

py::object convert(py::object const &values, py::object const &from, py::object const &to) {
  Unit const source = unitOf(from);
  Unit const target = unitOf(to);
  py::array const array = py::module_::import("numpy").attr("asarray")(values);
  // Held here until the conversion is done, so the library never writes into the caller's array.
  VxVariant const input = valueFromPython(array);
  VxVariant result;
  {
    py::gil_scoped_release released;
    result = convertElements(source, target, input);
  }
  // A fresh array is the caller's to write; one that still is the input's block is not.
  return valueToPython(result, result.constStoredData() != input.constStoredData());
}

// The quantities of the named units, each once, in the order of the first unit named for it.
std::vector<UnitType> quantities() {
  std::vector<UnitType> found;
  for (Unit const &unit : SystemOfUnits::instance().getAllUnits()) {
    UnitType const &type = unit.getUnitType();
    if (std::find(found.begin(), found.end(), type) == found.end()) found.push_back(type);
  }
  return found;
}

std::vector<std::string> units(std::optional<std::string> const &quantity) {
  std::vector<std::string> names;
  bool known = !quantity;
  for (UnitType const &type : quantities()) {
    if (quantity && plain(type.getName()) != *quantity) continue;
    known = true;
    for (VxString const &name : SystemOfUnits::instance().getUnitNames(type))
      names.push_back(plain(name));
  }
  if (!known) throw py::value_error("unknown quantity '" + *quantity + "'");
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

void addUnits(py::module_ &module) {
  py::class_<Unit>(module, "Unit", R"(A unit of measure: a name of the system of units ("mV", "dBm", "Celsius")
or a unit text ("kg*m/s^2"), as `vantra units` takes them. Its values x are, in SI,
scale * x + offset, or scale * 10^(x / log_multiplier) + offset for a logarithmic unit.)")
      .def(py::init(&unitNamed), "text"_a, "The unit named or written by text; an unknown text raises vantracore.Error.")
      .def_property_readonly("label", [](Unit const &unit) { return plain(unit.getUnitsLabel()); },
                             "The text the unit is shown with.")
      .def_property_readonly("quantity", [](Unit const &unit) { return plain(unit.getUnitType().getName()); },
                             "The physical quantity, such as \"electric potential\".")
      .def_property_readonly(
          "dimensions", [](Unit const &unit) { return plain(unit.getUnitType().getDimensions().SIUnitsString()); },
          "The SI dimensions as text, such as \"m^2*kg/(s^3*A)\"; \"1\" for none.")
      .def_property_readonly("scale", &Unit::getScale, "SI units per unit.")
      .def_property_readonly("offset", &Unit::getOffset, "The SI value of the unit's zero.")
      .def_property_readonly("log_multiplier", &Unit::getLogMultiplier,
                             "10 or 20 for decibels; 0 for a linear unit.")
      .def_property_readonly("is_logarithmic", &Unit::isLogarithmic, "Whether values are decibels of the scale.")
      .def("__str__", [](Unit const &unit) { return plain(unit.getUnitsLabel()); })
      .def("__repr__", [](Unit const &unit) { return "Unit('" + plain(unit.getUnitsLabel()) + "')"; })
      .def(py::self == py::self)
      .def(py::self != py::self);

  module.def("convert", &convert, "values"_a, "from_unit"_a, "to_unit"_a,
             R"(values, given in from_unit, expressed in to_unit: a float or complex for a number, a
NumPy array of the same shape (float64, or complex128 for complex values) for anything array-like.
Units are vantracore.Unit objects or their texts. Every element goes through the unit formula (scale,
offset, logarithm); units of other dimensions raise vantracore.Error. The GIL is released while the
library converts.)");
  module.def("units", &units, "quantity"_a = py::none(),
             R"(The names of the system of units, sorted; with quantity (such as "electric potential")
only those of that quantity. An unknown quantity raises ValueError.)");
}

}  // namespace vantracore
