#include <variant/BulkAllocation.h>

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <new>

namespace Tarvex::VantraCore::Internal {

namespace {

// Each block starts with the length of its mapping, 0 for one from operator new, so that release
// needs no size from the holder, whose fields are gone by then.
constexpr std::size_t prefix = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
static_assert(prefix >= sizeof(std::size_t), "the prefix holds the mapping's length");

std::size_t &mappedLength(void *block) noexcept {
  return *static_cast<std::size_t *>(block);
}

// The whole mapping is rounded to huge pages, so that its last page can be huge as well: at most one
// 2 MiB page more than the elements need. Mapping one page more than that leaves room to cut an
// aligned start out of it.
void *mapAligned(std::size_t length) {
  void *const raw =
      mmap(nullptr, length + hugePageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) throw std::bad_alloc();
  auto const rawStart = reinterpret_cast<std::uintptr_t>(raw);
  std::uintptr_t const start = (rawStart + hugePageSize - 1) & ~(std::uintptr_t(hugePageSize) - 1);
  std::size_t const head = start - rawStart;
  if (head != 0) munmap(raw, head);
  if (hugePageSize - head != 0) munmap(reinterpret_cast<void *>(start + length), hugePageSize - head);
  // Where huge pages are off, or the kernel has no advice of that name, the block stays as it is.
  madvise(reinterpret_cast<void *>(start), length, MADV_HUGEPAGE);
  return reinterpret_cast<void *>(start);
}

}  // namespace

BulkBlock allocateBulk(std::size_t bytes) {
  std::size_t total = 0;
  // Room for the rounding and the alignment is checked here, so that neither can overflow later.
  if (__builtin_add_overflow(bytes, prefix + 2 * hugePageSize, &total)) throw std::bad_alloc();
  total -= 2 * hugePageSize;
  if (total < bulkMappingThreshold) {
    void *const block = ::operator new(total);
    mappedLength(block) = 0;
    return {static_cast<char *>(block) + prefix, false};
  }
  std::size_t const length = (total + hugePageSize - 1) & ~(hugePageSize - 1);
  void *const block = mapAligned(length);
  mappedLength(block) = length;
  return {static_cast<char *>(block) + prefix, true};
}

void releaseBulk(void *memory) noexcept {
  if (memory == nullptr) return;
  void *const block = static_cast<char *>(memory) - prefix;
  std::size_t const length = mappedLength(block);
  if (length == 0) {
    ::operator delete(block);
  } else {
    munmap(block, length);
  }
}

}  // namespace Tarvex::VantraCore::Internal
