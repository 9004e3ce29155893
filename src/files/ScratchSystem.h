#pragma once

#include <VantraCore/Path.h>
#include <VantraCore/VxString.h>

#include <atomic>
#include <mutex>

namespace Tarvex::VantraCore::Internal {

// The stem of the running executable, or empty when it cannot be read.
VxString executableStem();

// The temporary directory joined with `application` and `subName`, or with "Scratch" when that leaves
// nothing below it, the first element carrying "-" and the user id. Each level is made with mode 0700;
// one that exists must be a directory, no link, of this user with no access for others.
Experimental::Path makeScratchRoot(VxString const &application, VxString const &subName);

// Serialises, across processes, the reclaim of a root and the making of a process directory in it, so
// that no reclaim removes a directory made after it found that id dead. The kernel releases it when
// the process dies. Not locked when the lock file cannot be opened or another holds it for seconds.
class RootLock {
 public:
  explicit RootLock(Experimental::Path const &root);
  ~RootLock();
  RootLock(RootLock const &) = delete;
  RootLock &operator=(RootLock const &) = delete;
  bool locked() const { return m_descriptor >= 0; }

 private:
  int m_descriptor = -1;
};

// A process that exists and has not exited. One that may not be signalled counts as gone.
bool isLiveProcess(int id);

// Removes the entries of `root` named after this process, a negative id or a dead process, never
// following a link. Failures leave the entry for a later process. Call it with the root locked.
void reclaimStaleDirectories(Experimental::Path const &root);

// The per-process state behind makeUniqueScratchDirectory, set up once by the first call.
class ScratchSystem {
 public:
  Experimental::Path makeUniqueDirectory(VxString const &name);

 private:
  void start();
  void initialise();

  // A once-flag that a throwing initialiser leaves unset, so that the next call tries again.
  // std::call_once promises that too, but some runtimes (and the thread sanitizer) then block.
  std::mutex m_starting;
  std::atomic<bool> m_started{false};
  VxString m_application;
  VxString m_subName;
  Experimental::Path m_root;
  Experimental::Path m_processDirectory;
};

}  // namespace Tarvex::VantraCore::Internal
