#include <VantraCore/InternedString.h>
#include <text/InternedStringSet.h>

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

VxStringView InternedString::create(char const *text, std::uint64_t length) {
  if (text == nullptr) length = 0;
  // Hashed before the lock: the byte loop overlaps taking the lock, and nobody waits on it.
  std::uint64_t const hash = Internal::fnv1aHash(VxStringView(text, length));
  std::lock_guard<std::mutex> const lock(theMutex());
  VxString const &element = theSet().intern(text, length, hash);
  return element.view();
}

}  // namespace Tarvex::VantraCore
