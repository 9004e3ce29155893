#include <numerics/OrderingConversion.h>

#include <cstring>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {

namespace {

// Stand-ins for the element kinds of one size. They may alias any type and assume no alignment, so
// they can copy a complex<float> as well as a double.
template <typename Bits, std::size_t Count = 1>
struct __attribute__((may_alias, packed)) Word {
  Bits bits[Count];
};

template <std::size_t Size>
using WordOf = std::conditional_t<
    Size == 1, Word<std::uint8_t>,
    std::conditional_t<Size == 2, Word<std::uint16_t>,
                       std::conditional_t<Size == 4, Word<std::uint32_t>, Word<std::uint64_t, Size / 8>>>>;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the word transposes number bytes from the low end");

// Swaps units of `Unit` bytes between the rows of a square held in words, `Unit / Size` rows apart.
template <std::size_t Size, std::size_t Unit>
void swapUnits(std::uint64_t (&rows)[8 / Size]) {
  constexpr std::size_t span = Unit / Size;
  constexpr std::uint64_t mask = Unit == 1   ? 0x00FF00FF00FF00FFu
                                 : Unit == 2 ? 0x0000FFFF0000FFFFu
                                             : 0xFFFFFFFFu;
  for (std::size_t pair = 0; pair < 8 / Size; pair += 2 * span) {
    for (std::size_t k = pair; k < pair + span; ++k) {
      std::uint64_t const swapped = ((rows[k] >> (8 * Unit)) ^ rows[k + span]) & mask;
      rows[k + span] ^= swapped;
      rows[k] ^= swapped << (8 * Unit);
    }
  }
  if constexpr (2 * Unit < 8) swapUnits<Size, 2 * Unit>(rows);
}

// Transposes a square of 8 / Size elements on a side through 64-bit words: one load and one store
// per row, and the element swaps in registers.
template <std::size_t Size>
void transposeInWords(unsigned char const *a, std::uint64_t lda, unsigned char *b, std::uint64_t ldb) {
  std::uint64_t rows[8 / Size];
  for (std::size_t k = 0; k < 8 / Size; ++k)
    std::memcpy(&rows[k], a + k * lda, 8);
  swapUnits<Size, Size>(rows);
  for (std::size_t k = 0; k < 8 / Size; ++k)
    std::memcpy(b + k * ldb, &rows[k], 8);
}

// A tile of the narrow kinds as squares of words.
template <typename Narrow>
void transposeTileInWords(Narrow const *a, std::uint64_t lda, Narrow *b, std::uint64_t ldb) {
  constexpr std::uint64_t tile = OrderingConversionImpl::Tiling<Narrow>::tile;
  constexpr std::uint64_t side = 8 / sizeof(Narrow);
  static_assert(tile % side == 0, "a tile is made of whole squares");
  for (std::uint64_t r = 0; r < tile; r += side) {
    for (std::uint64_t c = 0; c < tile; c += side) {
      transposeInWords<sizeof(Narrow)>(
          reinterpret_cast<unsigned char const *>(a + r * lda + c), lda * sizeof(Narrow),
          reinterpret_cast<unsigned char *>(b + c * ldb + r), ldb * sizeof(Narrow));
    }
  }
}

}  // namespace

namespace OrderingConversionImpl {

template <>
void transposeTile<WordOf<1>>(WordOf<1> const *a, std::uint64_t lda, WordOf<1> *b, std::uint64_t ldb) {
  transposeTileInWords(a, lda, b, ldb);
}
template <>
void transposeTile<WordOf<2>>(WordOf<2> const *a, std::uint64_t lda, WordOf<2> *b, std::uint64_t ldb) {
  transposeTileInWords(a, lda, b, ldb);
}

}  // namespace OrderingConversionImpl

template <std::size_t Size>
void convertOrderingBytes(void const *source, std::uint64_t sourceCount, DataOrdering sourceOrdering,
                          void *destination, std::uint64_t destinationCount, ArrayDimensionsView dims) {
  using Word = WordOf<Size>;
  static_assert(sizeof(Word) == Size && alignof(Word) == 1, "a word must copy any element of its size");
  OrderingConversionImpl::convertOrderingOf(static_cast<Word const *>(source), sourceCount, sourceOrdering,
                                            static_cast<Word *>(destination), destinationCount, dims);
}

template void convertOrderingBytes<1>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                      ArrayDimensionsView);
template void convertOrderingBytes<2>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                      ArrayDimensionsView);
template void convertOrderingBytes<4>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                      ArrayDimensionsView);
template void convertOrderingBytes<8>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                      ArrayDimensionsView);
template void convertOrderingBytes<16>(void const *, std::uint64_t, DataOrdering, void *, std::uint64_t,
                                       ArrayDimensionsView);

}  // namespace Tarvex::VantraCore::Internal
