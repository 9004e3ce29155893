#include "ToPython.h"

#include "Kinds.h"
#include "TimeUnits.h"

#include <VantraCore/detail/ElementKinds.h>

#include <pybind11/numpy.h>

#include <complex>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace py = pybind11;
using namespace Tarvex::VantraCore;

namespace vantracore {
namespace {

constexpr char holderName[] = "vantracore.holder";

py::str text(char const *data, std::uint64_t length) {
  // Bytes that are no UTF-8 come through as lone surrogates, and go back out unchanged.
  PyObject *decoded = PyUnicode_DecodeUTF8(data, static_cast<Py_ssize_t>(length), "surrogateescape");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

std::vector<py::ssize_t> shapeOf(VxVariant const &value) {
  ArrayDimensionsView const dims = value.dimensions();
  std::vector<py::ssize_t> shape(dims.begin(), dims.end());
  if (shape.empty()) shape.push_back(0);  // an array without dimensions holds nothing
  return shape;
}

std::vector<py::ssize_t> stridesOf(std::vector<py::ssize_t> const &shape, py::ssize_t itemSize,
                                   DataOrdering ordering) {
  std::vector<py::ssize_t> strides(shape.size());
  py::ssize_t step = itemSize;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    std::size_t const axis = ordering == columnMajor ? i : shape.size() - 1 - i;
    strides[axis] = step;
    step *= std::max<py::ssize_t>(shape[axis], 1);
  }
  return strides;
}

// A fresh NumPy array laid out as the holder's block, to be filled in storage order.
py::array freshArray(VxVariant const &value, py::dtype const &dtype) {
  std::vector<py::ssize_t> const shape = shapeOf(value);
  return py::array(dtype, shape, stridesOf(shape, dtype.itemsize(), value.dataOrdering()));
}

py::object blockArray(VxVariant const &value, bool unshared) {
  py::dtype const dtype = blockDtype(value.wellKnownDataType());
  std::vector<py::ssize_t> const shape = shapeOf(value);
  py::capsule const owner(new VxVariant(value), holderName, [](PyObject *capsule) {
    delete static_cast<VxVariant *>(PyCapsule_GetPointer(capsule, holderName));
  });
  py::array array(dtype, shape, stridesOf(shape, dtype.itemsize(), value.dataOrdering()),
                  value.constStoredData(), owner);
  // A shared holder's block is every copy's: a write through the array would change them all.
  if (!unshared) py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return std::move(array);
}

template <class Time>
constexpr char const *timeWord() {
  return std::is_same_v<Time, Duration> ? "duration" : "timestamp";
}

template <class Time>
Ticks ticksOfElement(Time const &element) {
  if constexpr (std::is_same_v<Time, Duration>)
    return ticksOf(element.count());
  else
    return ticksOf(element.time_since_epoch().count());
}

template <class Time>
py::dtype timeDtype(std::size_t unit) {
  std::string const code = std::is_same_v<Time, Duration> ? "m8[" : "M8[";
  return py::dtype(code + timeUnit(unit).name + "]");
}

template <class Time>
py::object timeArray(VxVariant const &value) {
  std::uint64_t const count = value.numberOfElements();
  Time const *elements = value.constStoredData<Time>();
  std::vector<Ticks> ticks(count);
  for (std::uint64_t i = 0; i < count; ++i)
    ticks[i] = ticksOfElement(elements[i]);
  std::size_t const unit = exactTimeUnit(ticks.data(), ticks.size(), timeWord<Time>());
  py::array array = freshArray(value, timeDtype<Time>(unit));
  auto *out = static_cast<std::int64_t *>(array.mutable_data());
  for (std::uint64_t i = 0; i < count; ++i)
    out[i] = static_cast<std::int64_t>(ticks[i] / timeUnit(unit).ticks);
  return std::move(array);
}

py::object stringArray(VxVariant const &value) {
  py::array array = freshArray(value, py::dtype("O"));
  auto **slots = static_cast<PyObject **>(array.mutable_data());
  VxString const *elements = value.constStoredData<VxString>();
  for (std::uint64_t i = 0, count = value.numberOfElements(); i < count; ++i) {
    PyObject *const previous = slots[i];
    slots[i] = text(elements[i].data(), elements[i].length()).release().ptr();
    Py_XDECREF(previous);
  }
  return std::move(array);
}

template <class T>
py::object scalarToPython(T const &element) {
  if constexpr (std::is_same_v<T, bool>) {
    return py::bool_(element);
  } else if constexpr (std::is_integral_v<T>) {
    return py::int_(element);
  } else if constexpr (std::is_floating_point_v<T>) {
    return py::float_(static_cast<double>(element));
  } else if constexpr (std::is_same_v<T, std::complex<float>> || std::is_same_v<T, std::complex<double>>) {
    return py::reinterpret_steal<py::object>(PyComplex_FromDoubles(element.real(), element.imag()));
  } else if constexpr (std::is_same_v<T, VxString>) {
    return text(element.data(), element.length());
  } else if constexpr (std::is_same_v<T, Duration> || std::is_same_v<T, Timestamp>) {
    Ticks const ticks = ticksOfElement(element);
    std::size_t const unit = exactTimeUnit(&ticks, 1, timeWord<T>());
    char const *const type = std::is_same_v<T, Duration> ? "timedelta64" : "datetime64";
    return py::module_::import("numpy").attr(type)(static_cast<std::int64_t>(ticks / timeUnit(unit).ticks),
                                                   timeUnit(unit).name);
  } else {
    // An integer complex: a structured scalar of its own, copied out of the holder.
    py::array const one(blockDtype(wellKnownTypeOf<T>()), {py::ssize_t{1}}, &element);
    return one[py::int_(0)];
  }
}

}  // namespace

py::object valueToPython(VxVariant const &value, bool unshared) {
  WellKnownType const kind = value.wellKnownDataType();
  if (value.isNull()) return py::none();
  return Internal::dispatchWellKnownType(kind, [&](auto tag) -> py::object {
    using T = typename decltype(tag)::type;
    if (value.isScalarStorage()) return scalarToPython(value.constStoredData<T>()[0]);
    if constexpr (std::is_same_v<T, VxString>)
      return stringArray(value);
    else if constexpr (std::is_same_v<T, Duration> || std::is_same_v<T, Timestamp>)
      return timeArray<T>(value);
    else
      return blockArray(value, unshared);
  });
}

py::object nodeToPython(PropertyNode const &node) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      return valueToPython(node.value());
    case PropertyNodeKind::List: {
      PropertyList const &items = node.list();
      py::list list(items.size());
      for (std::size_t i = 0; i < items.size(); ++i)
        list[i] = nodeToPython(items[i]);
      return std::move(list);
    }
    case PropertyNodeKind::Map: {
      py::dict dict;
      for (PropertyMap::Entry const &entry : node.map())
        dict[text(entry.key.data(), entry.key.length())] = nodeToPython(entry.node);
      return std::move(dict);
    }
    case PropertyNodeKind::Null:
      break;
  }
  return py::none();
}

VxVariant const *holderOf(py::handle array) {
  if (!py::isinstance<py::array>(array)) return nullptr;
  py::handle const base = py::detail::array_proxy(array.ptr())->base;
  if (base.ptr() == nullptr || !PyCapsule_IsValid(base.ptr(), holderName)) return nullptr;
  return static_cast<VxVariant const *>(PyCapsule_GetPointer(base.ptr(), holderName));
}

}  // namespace vantracore
