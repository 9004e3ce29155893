#pragma once

#include <atomic>
#include <mutex>
#include <system_error>

namespace Tarvex::VantraCore::Internal {

// A plain mutex that refuses to be locked again by the thread holding it, throwing
// std::system_error(resource_deadlock_would_occur) instead of hanging. Reports run under these
// locks, so a report from inside a report through the same list fails rather than freezes.
// Constant-initialised, so it is ready before any static constructor runs.
class DeadlockCheckedMutex {
 public:
  constexpr DeadlockCheckedMutex() noexcept = default;
  DeadlockCheckedMutex(DeadlockCheckedMutex const &) = delete;
  DeadlockCheckedMutex &operator=(DeadlockCheckedMutex const &) = delete;

  void lock() {
    // Only the calling thread ever stores its own marker, so seeing it means this thread holds the
    // lock; any other value (another owner, or none) means waiting is safe.
    if (m_owner.load(std::memory_order_relaxed) == threadMarker())
      throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
    m_mutex.lock();
    m_owner.store(threadMarker(), std::memory_order_relaxed);
  }

  void unlock() noexcept {
    m_owner.store(nullptr, std::memory_order_relaxed);
    m_mutex.unlock();
  }

 private:
  // An address unique to each live thread.
  static void const *threadMarker() noexcept {
    static thread_local char const marker = 0;
    return &marker;
  }

  std::mutex m_mutex;
  std::atomic<void const *> m_owner{nullptr};
};

}  // namespace Tarvex::VantraCore::Internal
