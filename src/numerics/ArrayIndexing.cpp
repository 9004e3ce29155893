#include <VantraCore/ArrayIndexing.h>

#include <stdexcept>

namespace Tarvex::VantraCore {

namespace {

void checkIndexCount(std::vector<std::uint64_t> const &indices, ArrayDimensionsView dims) {
  if (indices.size() != dims.count) throw std::invalid_argument("Wrong number of indices.");
}

void checkIndexBounds(std::vector<std::uint64_t> const &indices, ArrayDimensionsView dims) {
  for (std::uint64_t k = 0; k < dims.count; ++k) {
    if (indices[k] >= dims[k]) throw std::out_of_range("Indices out of bounds.");
  }
}

// Clears `indices` and, when checked, refuses an offset that names no element.
void startIndices(std::vector<std::uint64_t> &indices, std::uint64_t offset, ArrayDimensionsView dims,
                  bool checkBounds) {
  indices.clear();
  if (checkBounds && (dims.count == 0 || offset >= elementCount(dims))) {
    throw std::invalid_argument("Too few indices.");
  }
}

// Writes the strides of `dims` into `indices`, growing from the dimension that varies fastest.
void fillStrides(std::vector<std::uint64_t> &indices, ArrayDimensionsView dims, bool lastFastest) {
  indices.resize(dims.count);
  std::uint64_t stride = 1;
  for (std::uint64_t n = 0; n < dims.count; ++n) {
    std::uint64_t const k = lastFastest ? dims.count - 1 - n : n;
    indices[k] = stride;
    stride *= dims[k];
  }
}

// The sum of index times stride, the strides growing from the dimension that varies fastest.
std::uint64_t offsetOf(std::vector<std::uint64_t> const &indices, ArrayDimensionsView dims, bool checkBounds,
                       bool lastFastest) {
  checkIndexCount(indices, dims);
  if (checkBounds) checkIndexBounds(indices, dims);
  std::uint64_t offset = 0;
  std::uint64_t stride = 1;
  for (std::uint64_t n = 0; n < dims.count; ++n) {
    std::uint64_t const k = lastFastest ? dims.count - 1 - n : n;
    offset += indices[k] * stride;
    stride *= dims[k];
  }
  return offset;
}

// One step of peeling an index off the remaining offset. A zero stride only arises from a shape
// with a zero size, which has no offsets; the index stays 0 rather than dividing by zero.
std::uint64_t peelIndex(std::uint64_t &remaining, std::uint64_t stride) {
  if (stride == 0) return 0;
  std::uint64_t const index = remaining / stride;
  remaining %= stride;
  return index;
}

}  // namespace

std::uint64_t ArrayIndexing::CalculateDimStrideRowMajor(std::uint64_t dim, ArrayDimensionsView dims) {
  if (dim >= dims.count) return 0;
  std::uint64_t stride = 1;
  for (std::uint64_t k = dim + 1; k < dims.count; ++k)
    stride *= dims[k];
  return stride;
}

std::uint64_t ArrayIndexing::CalculateDimStrideColumnMajor(std::uint64_t dim, ArrayDimensionsView dims) {
  if (dim >= dims.count) return 0;
  std::uint64_t stride = 1;
  for (std::uint64_t k = 0; k < dim; ++k)
    stride *= dims[k];
  return stride;
}

// The strides are built in `indices` itself and then replaced by the indices, so that the per-element
// callers allocate nothing once the vector has its capacity.
void ArrayIndexing::CalculateIndicesRowMajor(std::vector<std::uint64_t> &indices, std::uint64_t offset,
                                             ArrayDimensionsView dims, bool checkBounds) {
  startIndices(indices, offset, dims, checkBounds);
  fillStrides(indices, dims, true);
  for (std::uint64_t k = 0; k < dims.count; ++k)
    indices[k] = peelIndex(offset, indices[k]);
}

void ArrayIndexing::CalculateIndicesColumnMajor(std::vector<std::uint64_t> &indices, std::uint64_t offset,
                                                ArrayDimensionsView dims, bool checkBounds) {
  startIndices(indices, offset, dims, checkBounds);
  fillStrides(indices, dims, false);
  for (std::uint64_t k = dims.count; k-- > 0;) {
    indices[k] = dims[k] > 1 ? peelIndex(offset, indices[k]) : 0;
  }
}

std::uint64_t ArrayIndexing::calculateOffsetRowMajor(std::vector<std::uint64_t> const &indices,
                                                     ArrayDimensionsView dims, bool checkBounds) {
  return offsetOf(indices, dims, checkBounds, true);
}

std::uint64_t ArrayIndexing::calculateOffsetColumnMajor(std::vector<std::uint64_t> const &indices,
                                                        ArrayDimensionsView dims, bool checkBounds) {
  return offsetOf(indices, dims, checkBounds, false);
}

}  // namespace Tarvex::VantraCore
