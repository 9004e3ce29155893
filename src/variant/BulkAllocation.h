#pragma once

// Memory for element blocks. Large blocks are mapped on their own, 2 MiB-aligned and advised for
// transparent huge pages: a fresh 128 MiB array then faults in 64 pages instead of 32768, and it
// arrives zeroed, so a holder of default values needs no pass of its own over it.

#include <cstddef>

namespace Tarvex::VantraCore::Internal {

// Blocks of this many bytes and more are mapped; smaller ones come from operator new.
inline constexpr std::size_t bulkMappingThreshold = std::size_t(4) << 20;
inline constexpr std::size_t hugePageSize = std::size_t(2) << 20;

struct BulkBlock {
  void *memory;  // aligned for any fundamental type
  bool zeroed;   // every byte is already 0
};

// `bytes` of memory, released only by releaseBulk. Throws std::bad_alloc when there is none.
BulkBlock allocateBulk(std::size_t bytes);
void releaseBulk(void *memory) noexcept;

}  // namespace Tarvex::VantraCore::Internal
