#include "Kinds.h"

#include <VantraCore/Complex.h>
#include <VantraCore/detail/ElementKinds.h>

#include <complex>
#include <type_traits>
#include <utility>
#include <vector>

namespace py = pybind11;
using namespace Tarvex::VantraCore;

namespace vantracore {
namespace {

template <class T>
struct IntegerComplexParts {
  using type = void;
};
template <class Part>
struct IntegerComplexParts<Complex<Part, void>> {
  using type = Part;
};

template <class T>
py::dtype dtypeOf() {
  using Part = typename IntegerComplexParts<T>::type;
  if constexpr (std::is_void_v<Part>) {
    return py::dtype::of<T>();
  } else {
    py::list fields;
    fields.append(py::make_tuple("re", py::dtype::of<Part>()));
    fields.append(py::make_tuple("im", py::dtype::of<Part>()));
    return py::dtype::from_args(fields);
  }
}

using BlockKinds =
    Internal::ConcatTypeLists<Internal::TruthElementKinds, Internal::NumericElementKinds>::type;

// Built once and never freed: dtypes outlive the module's own teardown.
std::vector<std::pair<WellKnownType, py::dtype>> const &table() {
  static auto *const kinds = [] {
    auto *made = new std::vector<std::pair<WellKnownType, py::dtype>>();
    Internal::forEachElementKind<BlockKinds>([&](auto tag) {
      using T = typename decltype(tag)::type;
      made->emplace_back(wellKnownTypeOf<T>(), dtypeOf<T>());
    });
    return made;
  }();
  return *kinds;
}

}  // namespace

bool hasBlockDtype(WellKnownType kind) {
  return hasNumericBase(kind) && Internal::elementSize(kind) != 0;
}

py::dtype blockDtype(WellKnownType kind) {
  for (auto const &[known, dtype] : table()) {
    if (known == kind) return dtype;
  }
  throw std::logic_error("no NumPy dtype for this kind");
}

WellKnownType blockKind(py::dtype const &dtype) {
  for (auto const &[kind, known] : table()) {
    if (dtype.equal(known)) return kind;
  }
  return WellKnownType();
}

}  // namespace vantracore
