#include "Documents.h"
#include "Errors.h"
#include "Testing.h"
#include "Units.h"

#include <pybind11/numpy.h>

PYBIND11_MODULE(vantracore, module) {
  module.doc() = R"(Measurement documents of the VantraCore library as Python objects.

load, loads, dump and dumps read and write JSON documents: maps as dicts, lists as lists, array values
as NumPy arrays over the library's own memory. Unit, convert and units give the library's units.
Failures keep the library's messages: ValueError, KeyError, IndexError, OverflowError,
vantracore.DomainError and vantracore.Error.)";
  // NumPy's C interface is looked up once, here, rather than on the first array of some thread.
  pybind11::module_::import("numpy");
  vantracore::addErrors(module);
  vantracore::addDocuments(module);
  vantracore::addUnits(module);
  vantracore::addTesting(module);
}
