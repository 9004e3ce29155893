#include "NumpyStorage.h"

#include <VantraCore/ExternalVariantStorage.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace py = pybind11;
using namespace Tarvex::VantraCore;

namespace vantracore {
namespace {

class NumpyStorage final : public ExternalVariantStorageInterface {
 public:
  NumpyStorage(py::array const &array, WellKnownType kind)
      : m_array(array), m_kind(kind), m_block(const_cast<void *>(array.data())) {
    for (py::ssize_t axis = 0; axis < array.ndim(); ++axis)
      m_dimensions.push_back(static_cast<std::uint64_t>(array.shape(axis)));
    bool const rowMajor = (array.flags() & py::array::c_style) != 0;
    m_ordering = rowMajor ? Tarvex::VantraCore::rowMajor : columnMajor;
  }

  std::uint64_t numberAllocatedElements() const override { return elementCount(dimensions()); }
  ArrayDimensionsView dimensions() const override { return m_dimensions; }
  DataOrdering dataOrdering() const override { return m_ordering; }
  WellKnownType wellKnownDataType() const override { return m_kind; }
  void reshapeNoRealloc(ArrayDimensionsView dims) override {
    if (elementCount(dims) != elementCount(dimensions()))
      throw std::length_error("Cannot reshape array to given dimensions without reallocating.");
    m_dimensions.assign(dims.begin(), dims.end());
  }
  void const *constStoredData() const override { return m_block; }
  // Reached only through a holder this module made and never hands out, which nothing writes.
  void *mutableStoredData() override { return m_block; }
  // The holder may die on a thread that has given up the GIL, or on one Python never saw.
  void release() override {
    py::gil_scoped_acquire gil;
    delete this;
  }

 private:
  ~NumpyStorage() = default;

  py::array m_array;
  WellKnownType m_kind;
  void *m_block;
  std::vector<std::uint64_t> m_dimensions;
  DataOrdering m_ordering = Tarvex::VantraCore::rowMajor;
};

}  // namespace

VxVariant variantOverArray(py::array const &array, WellKnownType kind) {
  auto *storage = new NumpyStorage(array, kind);
  Internal::IVariantData *holder = nullptr;
  try {
    holder = Internal::constructVariantExternal(storage);
  } catch (...) {
    storage->release();
    throw;
  }
  return VxVariant::adoptHolder(holder);
}

}  // namespace vantracore
