#include <VantraCore/InternedString.h>
#include <text/InternedStringSet.h>

#include <cstddef>
#include <cstring>
#include <mutex>
#include <new>

namespace Tarvex::VantraCore {

namespace {

// Made by the first manager and torn down by the last, outside the ordinary order of statics. The
// counter is plain: managers are made and destroyed only by the module's static start and end,
// which run on one thread.
int g_managerCount = 0;
alignas(Internal::InternedStringSet) unsigned char g_setStorage[sizeof(Internal::InternedStringSet)];
alignas(std::mutex) unsigned char g_mutexStorage[sizeof(std::mutex)];

Internal::InternedStringSet &theSet() noexcept {
  return *std::launder(reinterpret_cast<Internal::InternedStringSet *>(g_setStorage));
}
std::mutex &theMutex() noexcept {
  return *std::launder(reinterpret_cast<std::mutex *>(g_mutexStorage));
}

}  // namespace

Internal::InternedStringSetManager::InternedStringSetManager() {
  if (g_managerCount++ == 0) {
    new (g_setStorage) Internal::InternedStringSet();
    new (g_mutexStorage) std::mutex();
  }
}

Internal::InternedStringSetManager::~InternedStringSetManager() {
  if (--g_managerCount == 0) {
    theSet().~InternedStringSet();
    theMutex().~mutex();
  }
}

namespace {

// Each thread remembers the names it interned last, by a cheap slot of length and end bytes. A name
// met again, the common case when documents are read, is then found by comparing bytes, without the
// hash or the lock. Elements never move or go while the set lives, so a remembered view stays valid.
struct RecentName {
  char const *data;
  std::uint64_t length;
};
constexpr std::size_t recentSlots = 16;
thread_local RecentName t_recentNames[recentSlots];

RecentName &recentSlot(char const *text, std::uint64_t length) noexcept {
  std::size_t const ends = length == 0 ? 0 : static_cast<unsigned char>(text[0]) * 7u +
                                                 static_cast<unsigned char>(text[length - 1]);
  return t_recentNames[(length + ends) % recentSlots];
}

}  // namespace

VxStringView InternedString::create(char const *text, std::uint64_t length) {
  if (text == nullptr) length = 0;
  RecentName &recent = recentSlot(text, length);
  if (recent.data != nullptr && recent.length == length && (length == 0 || std::memcmp(recent.data, text, length) == 0))
    return VxStringView(recent.data, length);
  // Hashed before the lock: the byte loop overlaps taking the lock, and nobody waits on it.
  std::uint64_t const hash = Internal::fnv1aHash(VxStringView(text, length));
  std::lock_guard<std::mutex> const lock(theMutex());
  VxStringView const element = theSet().intern(text, length, hash).view();
  recent = RecentName{element.data(), element.size()};
  return element;
}

}  // namespace Tarvex::VantraCore
