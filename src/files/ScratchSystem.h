#pragma once

#include <VantraCore/Path.h>
#include <VantraCore/VxString.h>

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
  void initialise();

  std::once_flag m_started;
  VxString m_application;
  VxString m_subName;
  Experimental::Path m_root;
  Experimental::Path m_processDirectory;
};

}  // namespace Tarvex::VantraCore::Internal
