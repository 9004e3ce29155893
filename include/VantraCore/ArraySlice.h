#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Export.h>
#include <VantraCore/IndexSet.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

// A sub-array: one IndexSet per dimension. Positions come out sorted and distinct, whatever the
// order of the items.
using ArraySlice = std::vector<IndexSet>;

// In which order the elements of a slice are enumerated.
enum UseDataOrdering : std::uint32_t {
  useRowMajor = 0,
  useColumnMajor = 1,
  useStorageOrdering = 2,  // the array's own ordering: storage is walked in ascending offsets
};

// The slice that picks the one element at `indices`.
VANTRACORE_API ArraySlice ArraySliceFromIndices(std::vector<std::uint64_t> const &indices);

namespace Internal {

// The storage offsets a slice selects, in enumeration order, and the shape of the result.
class VANTRACORE_API SliceFlattener {
 public:
  // One set per dimension of `dims`. Throws std::invalid_argument "slice dimensions don't match
  // VxVariant dimensions", "slice dimensions are out of bounds" (an item invalid against its
  // dimension, checked dimension by dimension before that dimension is expanded) and "invalid
  // UseDataOrdering". At rank 1 the positions are the offsets and `use` is not looked at.
  SliceFlattener(ArraySlice const &slice, ArrayDimensionsView dims, DataOrdering ordering,
                 UseDataOrdering use);
  // The set's positions are linear positions in the whole array, in the ordering `use` names. Items
  // are not asked isValid: a position beyond the array throws std::out_of_range "Index value
  // out-of-range" from its expansion, as does any position when the array has no elements and the
  // orderings differ. Note that `{set}` selects this form: a slice of rank 1 is `ArraySlice{set}`.
  SliceFlattener(IndexSet const &set, ArrayDimensionsView dims, DataOrdering ordering, UseDataOrdering use);

  std::vector<std::uint64_t> const &offsets() const noexcept { return m_offsets; }
  std::vector<std::uint64_t> const &dimensions() const noexcept { return m_dimensions; }

 private:
  std::vector<std::uint64_t> m_offsets;
  std::vector<std::uint64_t> m_dimensions;
};

// The positions of all items of `set` against `size`, ascending and distinct: items may overlap
// freely, and a slice can neither reorder nor repeat.
inline std::vector<std::uint64_t> expandIndexSet(IndexSet const &set, std::uint64_t size) {
  std::vector<std::uint64_t> positions;
  for (auto const &item : set) {
    std::vector<std::uint64_t> const more = item->expand(size);
    positions.insert(positions.end(), more.begin(), more.end());
  }
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return positions;
}

// The positions of each dimension, with the checks of SliceFlattener: each dimension's items are asked
// isValid before that dimension is expanded, one dimension after the other.
inline std::vector<std::vector<std::uint64_t>> expandArraySlice(ArraySlice const &slice,
                                                                ArrayDimensionsView dims) {
  if (dims.count != slice.size())
    throw std::invalid_argument("slice dimensions don't match VxVariant dimensions");
  std::vector<std::vector<std::uint64_t>> positions(slice.size());
  for (std::size_t k = 0; k < slice.size(); ++k) {
    for (auto const &item : slice[k]) {
      if (!item->isValid(dims[k])) throw std::invalid_argument("slice dimensions are out of bounds");
    }
    positions[k] = expandIndexSet(slice[k], dims[k]);
  }
  return positions;
}

// The number of elements the positions select. A count beyond 64 bits fits in no vector.
inline std::uint64_t sliceElementCount(std::vector<std::vector<std::uint64_t>> const &positions) {
  std::vector<std::uint64_t> sizes;
  sizes.reserve(positions.size());
  for (auto const &list : positions)
    sizes.push_back(list.size());
  std::uint64_t count = 0;
  if (!checkedElementCount(sizes, count)) throw std::length_error("vector<T> too long");
  return count;
}

// Multiplies each dimension's positions by its stride in storage, so that an offset is a sum of one
// term per dimension. Any ordering but columnMajor counts as rowMajor.
inline void scaleToStorageStrides(std::vector<std::vector<std::uint64_t>> &positions,
                                  ArrayDimensionsView dims, DataOrdering ordering) {
  for (std::size_t k = 0; k < positions.size(); ++k) {
    std::uint64_t const stride = ordering == columnMajor
                                     ? ArrayIndexing::CalculateDimStrideColumnMajor(k, dims)
                                     : ArrayIndexing::CalculateDimStrideRowMajor(k, dims);
    for (std::uint64_t &position : positions[k])
      position *= stride;
  }
}

// Calls line(base) for every combination of one term from each list but the fastest one, in odometer
// order, with `base` the sum of those terms. The fastest list is the first with `firstFastest`, else
// the last; the others turn in order away from it. Nothing happens when a list is empty or there is
// none.
template <class Line>
void forEachSliceLine(std::vector<std::vector<std::uint64_t>> const &terms, bool firstFastest, Line &&line) {
  std::size_t const rank = terms.size();
  if (rank == 0) return;
  for (auto const &list : terms) {
    if (list.empty()) return;
  }
  auto const dim = [&](std::size_t speed) { return firstFastest ? speed : rank - 1 - speed; };
  std::vector<std::size_t> place(rank, 0);
  std::uint64_t base = 0;
  for (std::size_t speed = 1; speed < rank; ++speed)
    base += terms[dim(speed)][0];
  for (;;) {
    line(base);
    std::size_t speed = 1;
    for (; speed < rank; ++speed) {
      std::size_t const k = dim(speed);
      base -= terms[k][place[k]];
      if (++place[k] == terms[k].size()) place[k] = 0;
      base += terms[k][place[k]];
      if (place[k] != 0) break;
    }
    if (speed == rank) return;
  }
}

// Copies the elements of `source` that a slice selects into `destination`, in storage order: `terms`
// are the slice's positions scaled to the storage strides of `ordering`. Along the fastest dimension,
// whose stride is 1, runs of consecutive positions go as one block for kinds that copy as bytes.
template <class T>
void copySliceElements(T const *source, std::vector<std::vector<std::uint64_t>> const &terms,
                       DataOrdering ordering, T *destination) {
  if (terms.empty()) return;
  bool const firstFastest = ordering == columnMajor;
  std::vector<std::uint64_t> const &inner = firstFastest ? terms.front() : terms.back();
  // Each run as its first position and length.
  std::vector<std::pair<std::uint64_t, std::uint64_t>> runs;
  for (std::size_t j = 0; j < inner.size(); ++j) {
    if (runs.empty() || inner[j] != runs.back().first + runs.back().second)
      runs.emplace_back(inner[j], 1);
    else
      ++runs.back().second;
  }
  bool const single = runs.size() == inner.size();
  forEachSliceLine(terms, firstFastest, [&](std::uint64_t base) {
    T const *from = source + base;
    if (single) {
      for (std::uint64_t position : inner)
        *destination++ = from[position];
      return;
    }
    for (auto const &run : runs) {
      if constexpr (std::is_trivially_copyable_v<T>) {
        std::memcpy(static_cast<void *>(destination), from + run.first, run.second * sizeof(T));
        destination += run.second;
      } else {
        destination = std::copy(from + run.first, from + run.first + run.second, destination);
      }
    }
  });
}

}  // namespace Internal
}  // namespace Tarvex::VantraCore
