#include "FromPython.h"

#include "Kinds.h"
#include "NumpyStorage.h"
#include "TimeUnits.h"

#include <VantraCore/InternedString.h>
#include <VantraCore/detail/ElementKinds.h>

#include <pybind11/numpy.h>

#include <complex>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace py = pybind11;
using namespace pybind11::literals;
using namespace Tarvex::VantraCore;

namespace vantracore {
namespace {

py::module_ numpy() {
  return py::module_::import("numpy");
}

[[noreturn]] void raise(PyObject *type, std::string const &message) {
  PyErr_SetString(type, message.c_str());
  throw py::error_already_set();
}

std::string typeName(py::handle object) {
  return py::str(py::type::handle_of(object).attr("__name__"));
}

// The UTF-8 bytes of a str; lone surrogates (bytes that were no UTF-8 when read) go back as they came.
VxString utf8(py::handle text) {
  Py_ssize_t length = 0;
  if (char const *const bytes = PyUnicode_AsUTF8AndSize(text.ptr(), &length))
    return VxString(bytes, static_cast<std::uint64_t>(length));
  PyErr_Clear();
  PyObject *const encoded = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
  if (encoded == nullptr) throw py::error_already_set();
  py::bytes const owned = py::reinterpret_steal<py::bytes>(encoded);
  return VxString(PyBytes_AS_STRING(encoded), static_cast<std::uint64_t>(PyBytes_GET_SIZE(encoded)));
}

VxVariant integerScalar(py::handle number) {
  int overflow = 0;
  long long const value = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
  if (overflow == 0) {
    if (value == -1 && PyErr_Occurred()) throw py::error_already_set();
    return VxVariant(static_cast<std::int64_t>(value));
  }
  if (overflow > 0) {
    unsigned long long const unsignedValue = PyLong_AsUnsignedLongLong(number.ptr());
    if (!PyErr_Occurred()) return VxVariant(static_cast<std::uint64_t>(unsignedValue));
    PyErr_Clear();
  }
  raise(PyExc_OverflowError, "int " + std::string(py::str(number)) + " does not fit 64 bits");
}

std::vector<std::uint64_t> shapeOf(py::array const &array) {
  return std::vector<std::uint64_t>(array.shape(), array.shape() + array.ndim());
}

// A value made element by element from a C-ordered array: a scalar when the caller's array had no
// dimensions.
template <class T, class Element>
VxVariant elementwise(py::array const &array, bool scalar, Element const &element) {
  if (scalar) return VxVariant(element(0));
  VxVariant result = VxVariant::withShape<T>(shapeOf(array));
  T *const out = result.mutableStoredData<T>();
  for (py::ssize_t i = 0; i < array.size(); ++i)
    out[i] = element(i);
  return result;
}

// Timestamps and durations from datetime64 and timedelta64, through their NumPy unit.
template <class Time>
VxVariant timeVariant(py::array array) {
  char const *const what = std::is_same_v<Time, Duration> ? "timedelta64" : "datetime64";
  py::tuple const unit = numpy().attr("datetime_data")(array.dtype());
  TicksPerStep const scale = ticksPerStep(unit[0].cast<std::string>(), unit[1].cast<std::int64_t>());
  bool const scalar = array.ndim() == 0;  // ascontiguousarray gives at least one dimension
  array = numpy().attr("ascontiguousarray")(array);
  auto const *steps = static_cast<std::int64_t const *>(array.data());
  return elementwise<Time>(array, scalar, [&](py::ssize_t i) {
    return Time(Duration(countOf(stepsToTicks(steps[i], scale, what))));
  });
}

VxVariant stringVariant(py::array array) {
  bool const scalar = array.ndim() == 0;
  array = numpy().attr("ascontiguousarray")(array, "dtype"_a = "O");
  auto *const *items = static_cast<PyObject *const *>(array.data());
  return elementwise<VxString>(array, scalar, [&](py::ssize_t i) {
    py::handle const item(items[i]);
    if (!PyUnicode_Check(item.ptr()))
      raise(PyExc_TypeError, "a string array holds only str, not " + typeName(item));
    return utf8(item);
  });
}

VxVariant blockScalar(py::array const &array, WellKnownType kind) {
  return Internal::dispatchWellKnownType(kind, [&](auto tag) {
    using T = typename decltype(tag)::type;
    return VxVariant(*static_cast<T const *>(array.data()));
  });
}

VxVariant arrayVariant(py::array array) {
  char const code = array.dtype().kind();
  if (code == 'M') return timeVariant<Timestamp>(array);
  if (code == 'm') return timeVariant<Duration>(array);
  if (code == 'U' || code == 'O') return stringVariant(array);
  WellKnownType kind = blockKind(array.dtype());
  if (kind == WellKnownType() && !array.dtype().attr("isnative").cast<bool>()) {
    array = array.attr("astype")(array.dtype().attr("newbyteorder")("="));
    kind = blockKind(array.dtype());
  }
  if (kind == WellKnownType())
    raise(PyExc_TypeError, "NumPy arrays of dtype " + std::string(py::str(array.dtype())) + " have no element kind");
  if (array.ndim() == 0) return blockScalar(array, kind);
  if ((array.flags() & (py::array::c_style | py::array::f_style)) == 0)
    array = numpy().attr("ascontiguousarray")(array);
  return variantOverArray(array, kind);
}

}  // namespace

VxVariant valueFromPython(py::handle object) {
  if (PyBool_Check(object.ptr())) return VxVariant(object.ptr() == Py_True);
  if (PyLong_Check(object.ptr())) return integerScalar(object);
  if (PyFloat_Check(object.ptr())) return VxVariant(PyFloat_AS_DOUBLE(object.ptr()));
  if (PyComplex_Check(object.ptr())) {
    Py_complex const value = PyComplex_AsCComplex(object.ptr());
    return VxVariant(std::complex<double>(value.real, value.imag));
  }
  if (PyUnicode_Check(object.ptr())) return VxVariant(utf8(object));
  if (py::isinstance<py::array>(object)) return arrayVariant(py::reinterpret_borrow<py::array>(object));
  if (py::isinstance(object, numpy().attr("generic"))) return arrayVariant(numpy().attr("asarray")(object));
  raise(PyExc_TypeError, "cannot store an object of type " + typeName(object));
}

PropertyNode nodeFromPython(py::handle object) {
  if (object.is_none()) return PropertyNode();
  if (PyDict_Check(object.ptr())) {
    PropertyNode node{PropertyMap()};
    for (auto const &[key, child] : py::reinterpret_borrow<py::dict>(object)) {
      if (!PyUnicode_Check(key.ptr())) raise(PyExc_TypeError, "keys must be str, not " + typeName(key));
      VxString const name = utf8(key);
      node.set(InternedString(name.data(), name.length()), nodeFromPython(child));
    }
    return node;
  }
  if (PyList_Check(object.ptr()) || PyTuple_Check(object.ptr())) {
    PropertyList list;
    py::sequence const items = py::reinterpret_borrow<py::sequence>(object);
    list.reserve(items.size());
    for (py::handle const item : items)
      list.push_back(nodeFromPython(item));
    return PropertyNode(std::move(list));
  }
  return PropertyNode(valueFromPython(object));
}

}  // namespace vantracore
