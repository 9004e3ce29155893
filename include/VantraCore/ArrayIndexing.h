#pragma once

#include <VantraCore/Export.h>

#include <cstdint>
#include <vector>

namespace Tarvex::VantraCore {

// In which order a flat run of elements holds an N-dimensional array. The numbers cross module
// boundaries as unsigned 32-bit values.
enum DataOrdering : std::uint32_t {
  rowMajor = 0,     // the last index varies fastest
  columnMajor = 1,  // the first index varies fastest
};

// Non-owning view of a shape, passed by value: two words, pointer then rank.
struct ArrayDimensionsView {
  std::uint64_t const *sizes = nullptr;
  std::uint64_t count = 0;

  ArrayDimensionsView() noexcept = default;
  ArrayDimensionsView(std::uint64_t const *sizes_, std::uint64_t count_) noexcept
      : sizes(sizes_), count(count_) {}
  // Views the vector's current buffer; the view dangles once the vector changes or goes.
  ArrayDimensionsView(std::vector<std::uint64_t> const &dims) noexcept
      : sizes(dims.data()), count(dims.size()) {}

  std::uint64_t operator[](std::uint64_t dim) const noexcept { return sizes[dim]; }
  std::uint64_t const *begin() const noexcept { return sizes; }
  std::uint64_t const *end() const noexcept { return sizes + count; }
};

// Element count of a shape: the product of its sizes, but 0 (not 1) for a shape without dimensions.
inline std::uint64_t elementCount(ArrayDimensionsView dims) noexcept {
  if (dims.count == 0) return 0;
  std::uint64_t product = 1;
  for (std::uint64_t size : dims)
    product *= size;
  return product;
}

// The element count of a shape as elementCount gives it, or nothing when the product does not fit
// 64 bits; a zero among the sizes gives 0 whatever the others are. Callers phrase their own refusal.
inline bool checkedElementCount(ArrayDimensionsView dims, std::uint64_t &count) noexcept {
  count = 0;
  if (dims.count == 0) return true;
  for (std::uint64_t size : dims)
    if (size == 0) return true;
  std::uint64_t product = 1;
  for (std::uint64_t size : dims)
    if (__builtin_mul_overflow(product, size, &product)) return false;
  count = product;
  return true;
}

// Arithmetic between multi-indices and flat offsets. With `checkBounds` false the functions trust
// their input, which is what the per-element loops pass; the index count of calculateOffset* is
// checked regardless.
class VANTRACORE_API ArrayIndexing {
 public:
  ArrayIndexing &operator=(ArrayIndexing const &) = default;

  // 0 for a dimension beyond the rank.
  static std::uint64_t CalculateDimStrideRowMajor(std::uint64_t dim, ArrayDimensionsView dims);
  static std::uint64_t CalculateDimStrideColumnMajor(std::uint64_t dim, ArrayDimensionsView dims);

  // Fills `indices` (emptied first, capacity kept) with the multi-index of `offset`. Throws
  // std::invalid_argument "Too few indices." when checked and the offset or rank is unusable.
  static void CalculateIndicesRowMajor(std::vector<std::uint64_t> &indices, std::uint64_t offset,
                                       ArrayDimensionsView dims, bool checkBounds);
  // Dimensions of size 0 or 1 keep index 0.
  static void CalculateIndicesColumnMajor(std::vector<std::uint64_t> &indices, std::uint64_t offset,
                                          ArrayDimensionsView dims, bool checkBounds);

  // Throws std::invalid_argument "Wrong number of indices." when the count differs from the rank,
  // and, when checked, std::out_of_range "Indices out of bounds.".
  static std::uint64_t calculateOffsetRowMajor(std::vector<std::uint64_t> const &indices,
                                               ArrayDimensionsView dims, bool checkBounds);
  static std::uint64_t calculateOffsetColumnMajor(std::vector<std::uint64_t> const &indices,
                                                  ArrayDimensionsView dims, bool checkBounds);
};

}  // namespace Tarvex::VantraCore
