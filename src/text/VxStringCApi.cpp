#include <VantraCore/VxString.h>
#include <text/StringTailRoom.h>
#include <text/TransportGuard.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

namespace Tarvex::VantraCore::Internal {

// The record's fixed header; the text and its NUL follow it in the same allocation.
struct VxStringRecord {
  std::atomic<std::uint32_t> count;
  std::uint32_t padding;
  std::uint64_t length;

  char *text() noexcept { return reinterpret_cast<char *>(this + 1); }
  char const *text() const noexcept { return reinterpret_cast<char const *>(this + 1); }
};

static_assert(sizeof(VxStringRecord) == 16, "the record header is 16 bytes");
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "the count is a plain 32-bit word");

}  // namespace Tarvex::VantraCore::Internal

using Tarvex::VantraCore::Internal::guardTransport;
using Tarvex::VantraCore::Internal::TransportRecord;
using Tarvex::VantraCore::Internal::VxStringRecord;
using Tarvex::VantraCore::Internal::VxStringRecordAndText;

namespace {

// Lengths that are negative as signed numbers are refused before the allocator is asked; that also
// keeps the record's size from wrapping.
constexpr std::uint64_t maxLength =
    0x7FFFFFFFFFFFFFFFull - sizeof(VxStringRecord) - Tarvex::VantraCore::Internal::readableBehindText(~0ull);

VxStringRecord *allocateRecord(std::uint64_t length) {
  if (length > maxLength) throw std::bad_alloc();
  std::uint64_t const behind = Tarvex::VantraCore::Internal::readableBehindText(length);
  void *memory = ::operator new(sizeof(VxStringRecord) + length + behind);
  auto *record = new (memory) VxStringRecord;
  // The room behind the NUL is zeroed, so that whoever reads it reads defined bytes.
  std::memset(record->text() + length + 1, 0, behind - 1);
  record->count.store(1);
  record->padding = 0;
  record->length = length;
  return record;
}

}  // namespace

extern "C" {

VxStringRecord *VxStringData_C_API_constructCString(TransportRecord *transport, char const *text,
                                                    std::uint64_t length) noexcept {
  return guardTransport(transport, [&] {
    if (text == nullptr && length != 0) throw std::invalid_argument("VxString text is null");
    VxStringRecord *record = allocateRecord(length);
    if (length != 0) std::memcpy(record->text(), text, length);
    record->text()[length] = '\0';
    return record;
  });
}

VxStringRecordAndText VxStringData_C_API_constructCStringWithSize(TransportRecord *transport,
                                                                  std::uint64_t length) noexcept {
  return guardTransport(transport, [&] {
    VxStringRecord *record = allocateRecord(length);
    return VxStringRecordAndText{record, record->text()};
  });
}

VxStringRecord *VxStringData_C_API_copy(VxStringRecord *record) noexcept {
  record->count.fetch_add(1);
  return record;
}

void VxStringData_C_API_destruct(VxStringRecord *record) noexcept {
  if (record == nullptr) return;
  if (record->count.fetch_sub(1) == 1) {
    record->~VxStringRecord();
    ::operator delete(record);
  }
}

char const *VxStringData_C_API_getConstDataPointer(VxStringRecord const *record) noexcept {
  return record->text();
}

std::uint64_t VxStringData_C_API_getLength(VxStringRecord const *record) noexcept {
  return record->length;
}

}  // extern "C"
