#pragma once

#include <VantraCore/Path.h>
#include <VantraCore/VxString.h>

#include <atomic>
#include <mutex>

namespace Tarvex::VantraCore::Internal {

// The stem of the running executable, or empty when it cannot be read.
VxString executableStem();

// The temporary directory joined with `application` and `subName`, or with "Scratch" when that leaves
// nothing below it; created with its parents.
Experimental::Path makeScratchRoot(VxString const &application, VxString const &subName);

// A process that exists and has not exited. One that may not be signalled counts as gone.
bool isLiveProcess(int id);

// Removes the entries of `root` named after this process, a negative id or a dead process. Failures
// leave the entry for a later process.
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
