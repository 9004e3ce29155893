#pragma once

// Copy of an N-dimensional array into the other memory ordering, for the array holders.

#include <VantraCore/ArrayIndexing.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace Tarvex::VantraCore::Internal {

namespace OrderingConversionImpl {

// Square tiles, and blocks of tiles that keep the rows a block walks in the second-level cache:
// power-of-two row lengths put them all in one set of the first. Sizes measured with the benchmark.
template <typename E>
struct Tiling {
  static constexpr std::uint64_t tile = sizeof(E) == 1 ? 16 : sizeof(E) > 8 ? 4 : 8;
  static constexpr std::uint64_t block = sizeof(E) > 8 ? 128 : 256;
};

// b[c * ldb + r] = a[r * lda + c] for r < rows, c < cols: the loops of the tile edges.
template <typename E>
void transposeStrip(E const *a, std::uint64_t rows, std::uint64_t cols, std::uint64_t lda, E *b,
                    std::uint64_t ldb) {
  for (std::uint64_t c = 0; c < cols; ++c) {
    for (std::uint64_t r = 0; r < rows; ++r)
      b[c * ldb + r] = a[r * lda + c];
  }
}

// The same for a full tile, with bounds known to the compiler so that it unrolls.
template <typename E>
void transposeTile(E const *a, std::uint64_t lda, E *b, std::uint64_t ldb) {
  for (std::uint64_t c = 0; c < Tiling<E>::tile; ++c) {
    for (std::uint64_t r = 0; r < Tiling<E>::tile; ++r)
      b[c * ldb + r] = a[r * lda + c];
  }
}

template <typename E>
void transpose(E const *a, std::uint64_t rows, std::uint64_t cols, std::uint64_t lda, E *b,
               std::uint64_t ldb) {
  constexpr std::uint64_t tile = Tiling<E>::tile;
  constexpr std::uint64_t block = Tiling<E>::block;
  for (std::uint64_t r0 = 0; r0 < rows; r0 += block) {
    std::uint64_t const blockRows = std::min(block, rows - r0);
    for (std::uint64_t c0 = 0; c0 < cols; c0 += block) {
      std::uint64_t const blockCols = std::min(block, cols - c0);
      E const *blockIn = a + r0 * lda + c0;
      E *blockOut = b + c0 * ldb + r0;
      std::uint64_t r = 0;
      for (; r + tile <= blockRows; r += tile) {
        std::uint64_t c = 0;
        for (; c + tile <= blockCols; c += tile) {
          transposeTile(blockIn + r * lda + c, lda, blockOut + c * ldb + r, ldb);
        }
        transposeStrip(blockIn + r * lda + c, tile, blockCols - c, lda, blockOut + c * ldb + r, ldb);
      }
      transposeStrip(blockIn + r * lda, blockRows - r, blockCols, lda, blockOut + r, ldb);
    }
  }
}

// Sizes above 1 with their strides in both orderings. Dimensions of size 1 add nothing to either
// offset, so dropping them leaves the mapping as it is and puts unit strides at both ends.
struct ReducedShape {
  std::vector<std::uint64_t> sizes;
  std::vector<std::uint64_t> rowStrides;
  std::vector<std::uint64_t> columnStrides;

  explicit ReducedShape(ArrayDimensionsView dims) {
    for (std::uint64_t size : dims) {
      if (size > 1) sizes.push_back(size);
    }
    std::size_t const rank = sizes.size();
    rowStrides.resize(rank);
    columnStrides.resize(rank);
    std::uint64_t stride = 1;
    for (std::size_t k = 0; k < rank; ++k) {
      columnStrides[k] = stride;
      stride *= sizes[k];
    }
    stride = 1;
    for (std::size_t k = rank; k-- > 0;) {
      rowStrides[k] = stride;
      stride *= sizes[k];
    }
  }
};

// One whole pass over a shape without zeros: every multi-index once. `toColumns` copies from the
// row-major side to the column-major one, otherwise the other way. The first and last dimensions
// form the transposed planes; the middle ones are walked by an odometer.
template <typename E>
void convertWholePass(E const *source, E *destination, std::uint64_t total, ArrayDimensionsView dims,
                      bool toColumns) {
  ReducedShape const shape(dims);
  std::size_t const rank = shape.sizes.size();
  if (rank <= 1) {
    std::copy(source, source + total, destination);
    return;
  }
  std::uint64_t const firstSize = shape.sizes.front();
  std::uint64_t const lastSize = shape.sizes.back();
  std::uint64_t const rowPitch = shape.rowStrides.front();
  std::uint64_t const columnPitch = shape.columnStrides.back();
  std::uint64_t const planes = total / (firstSize * lastSize);

  std::vector<std::uint64_t> middle(rank, 0);
  std::uint64_t rowBase = 0;
  std::uint64_t columnBase = 0;
  for (std::uint64_t plane = 0; plane < planes; ++plane) {
    if (toColumns) {
      transpose(source + rowBase, firstSize, lastSize, rowPitch, destination + columnBase, columnPitch);
    } else {
      transpose(source + columnBase, lastSize, firstSize, columnPitch, destination + rowBase, rowPitch);
    }
    for (std::size_t k = rank - 1; k-- > 1;) {
      rowBase += shape.rowStrides[k];
      columnBase += shape.columnStrides[k];
      if (++middle[k] < shape.sizes[k]) break;
      rowBase -= shape.sizes[k] * shape.rowStrides[k];
      columnBase -= shape.sizes[k] * shape.columnStrides[k];
      middle[k] = 0;
    }
  }
}

// The odometer walk element by element, for passes that are cut short or run past the end of a
// buffer. Positions outside either buffer are skipped.
template <typename E>
void convertPartialPass(E const *source, std::uint64_t sourceCount, E *destination,
                        std::uint64_t destinationCount, std::uint64_t base, std::uint64_t length,
                        ArrayDimensionsView dims, bool toColumns) {
  std::vector<std::uint64_t> indices(dims.count, 0);
  for (std::uint64_t step = 0; step < length; ++step) {
    std::uint64_t const position = base + step;
    std::uint64_t const offset = ArrayIndexing::calculateOffsetColumnMajor(indices, dims, false);
    if (toColumns) {
      if (offset < destinationCount) destination[offset] = source[position];
    } else if (position < destinationCount && offset < sourceCount) {
      destination[position] = source[offset];
    }
    for (std::uint64_t k = dims.count; k-- > 0;) {
      if (++indices[k] < dims[k]) break;
      indices[k] = 0;
    }
  }
}

template <typename E>
void convertOrderingOf(E const *source, std::uint64_t sourceCount, DataOrdering sourceOrdering,
                       E *destination, std::uint64_t destinationCount, ArrayDimensionsView dims) {
  if (sourceOrdering != rowMajor && sourceOrdering != columnMajor) return;
  bool const toColumns = sourceOrdering == rowMajor;
  std::uint64_t total = 0;
  if (!checkedElementCount(dims, total)) {
    // More elements than any buffer holds: the walk ends long before the odometer could start over.
    convertPartialPass(source, sourceCount, destination, destinationCount, 0, sourceCount, dims, toColumns);
    return;
  }
  if (total == 0) return;
  // Past the shape's end the odometer starts over. From a row-major source every whole pass writes
  // the same offsets, so only the last one shows.
  std::uint64_t base = 0;
  if (toColumns && sourceCount / total > 1) base = (sourceCount / total - 1) * total;
  for (; base < sourceCount; base += total) {
    if (!toColumns && base >= destinationCount) return;
    std::uint64_t const length = std::min(total, sourceCount - base);
    bool const whole =
        length == total && (toColumns ? total <= destinationCount : total <= destinationCount - base);
    if (whole && toColumns) {
      convertWholePass(source + base, destination, total, dims, true);
    } else if (whole) {
      convertWholePass(source, destination + base, total, dims, false);
    } else {
      convertPartialPass(source, sourceCount, destination, destinationCount, base, length, dims, toColumns);
    }
  }
}

}  // namespace OrderingConversionImpl

// The element kinds that copy as plain bytes share one compiled walk per element size.
template <std::size_t Size>
void convertOrderingBytes(void const *source, std::uint64_t sourceCount, DataOrdering sourceOrdering,
                          void *destination, std::uint64_t destinationCount, ArrayDimensionsView dims);

extern template void convertOrderingBytes<1>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                             ArrayDimensionsView);
extern template void convertOrderingBytes<2>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                             ArrayDimensionsView);
extern template void convertOrderingBytes<4>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                             ArrayDimensionsView);
extern template void convertOrderingBytes<8>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                             ArrayDimensionsView);
extern template void convertOrderingBytes<16>(void const *, std::uint64_t, DataOrdering, void *,
                                              std::uint64_t, ArrayDimensionsView);

// Copies an array of `sourceOrdering` into `destination`, which is to hold the same shape in the other
// ordering. An odometer over `dims`, last index fastest, walks `sourceCount` steps and starts over at
// the end of the shape; each step pairs the sequential position with the column-major offset of
// the multi-index. From a row-major source the source is read in sequence and the destination written
// at the offset; from a column-major one the destination is written in sequence. Positions outside
// either buffer are skipped, a shape without elements copies nothing, and so does an ordering that is
// neither of the two.
template <typename T>
void convertOrdering(T const *source, std::uint64_t sourceCount, DataOrdering sourceOrdering, T *destination,
                     std::uint64_t destinationCount, ArrayDimensionsView dims) {
  constexpr std::size_t size = sizeof(T);
  if constexpr (std::is_trivially_copyable_v<T> &&
                (size == 1 || size == 2 || size == 4 || size == 8 || size == 16)) {
    convertOrderingBytes<size>(source, sourceCount, sourceOrdering, destination, destinationCount, dims);
  } else {
    OrderingConversionImpl::convertOrderingOf(source, sourceCount, sourceOrdering, destination,
                                              destinationCount, dims);
  }
}

}  // namespace Tarvex::VantraCore::Internal
