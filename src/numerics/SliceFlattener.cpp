#include <VantraCore/ArraySlice.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace Tarvex::VantraCore {

ArraySlice ArraySliceFromIndices(std::vector<std::uint64_t> const &indices) {
  ArraySlice slice;
  slice.reserve(indices.size());
  for (std::uint64_t index : indices)
    slice.emplace_back(IndexValue(index));
  return slice;
}

namespace Internal {

namespace {

DataOrdering enumerationOrdering(UseDataOrdering use, DataOrdering ordering) {
  switch (use) {
    case useRowMajor:
      return rowMajor;
    case useColumnMajor:
      return columnMajor;
    case useStorageOrdering:
      return ordering;
  }
  throw std::invalid_argument("invalid UseDataOrdering");
}

}  // namespace

SliceFlattener::SliceFlattener(ArraySlice const &slice, ArrayDimensionsView dims, DataOrdering ordering,
                               UseDataOrdering use) {
  std::vector<std::vector<std::uint64_t>> terms = expandArraySlice(slice, dims);
  m_dimensions.reserve(terms.size());
  for (auto const &positions : terms)
    m_dimensions.push_back(positions.size());
  if (terms.size() == 1) {
    m_offsets = std::move(terms[0]);
    return;
  }
  bool const firstFastest = enumerationOrdering(use, ordering) == columnMajor;
  scaleToStorageStrides(terms, dims, ordering);
  m_offsets.resize(sliceElementCount(terms));
  std::uint64_t *out = m_offsets.data();
  std::vector<std::uint64_t> const &inner = firstFastest ? terms.front() : terms.back();
  forEachSliceLine(terms, firstFastest, [&](std::uint64_t base) {
    for (std::uint64_t term : inner)
      *out++ = base + term;
  });
}

SliceFlattener::SliceFlattener(IndexSet const &set, ArrayDimensionsView dims, DataOrdering ordering,
                               UseDataOrdering use) {
  std::uint64_t const total = elementCount(dims);
  std::vector<std::uint64_t> positions = expandIndexSet(set, total);
  m_dimensions.push_back(positions.size());
  DataOrdering const enumeration = enumerationOrdering(use, ordering);
  auto const spread = std::count_if(dims.begin(), dims.end(), [](std::uint64_t size) { return size >= 2; });
  if ((spread <= 1 && total != 0) || enumeration == ordering) {
    m_offsets = std::move(positions);
    return;
  }
  // Without elements no position names one, and the index arithmetic below would divide by a zero
  // stride.
  if (total == 0 && !positions.empty()) throw std::out_of_range("Index value out-of-range");
  m_offsets.reserve(positions.size());
  std::vector<std::uint64_t> indices;
  for (std::uint64_t position : positions) {
    if (enumeration == columnMajor)
      ArrayIndexing::CalculateIndicesColumnMajor(indices, position, dims, false);
    else
      ArrayIndexing::CalculateIndicesRowMajor(indices, position, dims, false);
    m_offsets.push_back(ordering == columnMajor
                            ? ArrayIndexing::calculateOffsetColumnMajor(indices, dims, false)
                            : ArrayIndexing::calculateOffsetRowMajor(indices, dims, false));
  }
}

}  // namespace Internal
}  // namespace Tarvex::VantraCore
