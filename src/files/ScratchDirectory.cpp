#include <VantraCore/ScratchDirectory.h>
#include <files/PathInternal.h>
#include <files/ScratchSystem.h>

#include <errno.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tarvex::VantraCore {

namespace fs = std::filesystem;
using Experimental::Path;

namespace {

struct ScratchNames {
  std::mutex mutex;
  VxString application;
  VxString subName;
};

ScratchNames &storedNames() {
  static ScratchNames names;
  return names;
}

// A process that has exited but was not yet reaped still answers signals.
bool hasExited(int id) {
  std::ifstream stat("/proc/" + std::to_string(id) + "/stat");
  std::string line;
  if (!std::getline(stat, line)) return false;
  std::size_t const commandEnd = line.rfind(')');
  if (commandEnd == std::string::npos || commandEnd + 2 >= line.size()) return false;
  char const state = line[commandEnd + 2];
  return state == 'Z' || state == 'X';
}

[[noreturn]] void throwFailedToCreate(Path const &path) {
  throw std::runtime_error("Failed to create directory \"" + path.string().toStdString() + "\".");
}

// Made by mkdir, which never follows a link, so a name taken by anything at all counts as taken, and
// of two threads racing for one name only one gets it.
bool madeDirectory(Path const &path) {
  if (::mkdir(Internal::posixName(path).c_str(), 0777) == 0) return true;
  if (errno != EEXIST) throwFailedToCreate(path);
  return false;
}

bool isOwnDirectory(Path const &path) {
  struct stat status {};
  return ::lstat(Internal::posixName(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid();
}

}  // namespace

namespace Internal {

VxString executableStem() {
  try {
    std::error_code code;
    fs::path const executable = fs::read_symlink("/proc/self/exe", code);
    if (code) return VxString();
    return Path(VxString(executable.native())).stem().string();
  } catch (...) {
    return VxString();
  }
}

bool isLiveProcess(int id) {
  // No such process, or one this process may not signal: both count as gone.
  if (id <= 0 || ::kill(id, 0) != 0) return false;
  return !hasExited(id);
}

void reclaimStaleDirectories(Path const &root) {
  try {
    int const self = static_cast<int>(::getpid());
    std::error_code code;
    fs::directory_iterator entries(posixName(root), code);
    for (fs::directory_iterator const end; !code && entries != end; entries.increment(code)) {
      try {
        std::string const name = entries->path().filename().native();
        std::size_t used = 0;
        int const id = std::stoi(name, &used);
        if (used != name.size()) continue;
        if (id == self || id < 0 || (id > 0 && !isLiveProcess(id))) {
          std::error_code ignored;
          fs::remove_all(entries->path(), ignored);
        }
      } catch (...) {
        // Not a process id, or not removable now: left for a later process.
      }
    }
  } catch (...) {
    // Reclaiming is tidiness; the scratch system works without it.
  }
}

Path ScratchSystem::makeUniqueDirectory(VxString const &name) {
  start();
  Path candidate = m_processDirectory.resolve_path(Path(name));
  for (std::uint64_t k = 1; candidate.exists() || !madeDirectory(candidate); ++k) {
    candidate = m_processDirectory.resolve_path(Path(name + VxString(std::to_string(k))));
  }
  return candidate.normalize();
}

void ScratchSystem::start() {
  if (m_started.load(std::memory_order_acquire)) return;
  std::lock_guard<std::mutex> const lock(m_starting);
  if (m_started.load(std::memory_order_relaxed)) return;
  initialise();
  m_started.store(true, std::memory_order_release);
}

void ScratchSystem::initialise() {
  ScratchNames &names = storedNames();
  {
    std::lock_guard<std::mutex> const lock(names.mutex);
    m_application = names.application;
    m_subName = names.subName;
  }
  if (m_application.empty()) m_application = executableStem();
  m_root = makeScratchRoot(m_application, m_subName);
  RootLock const lock(m_root);
  // Without the lock a reclaim could remove a directory another process has just made.
  if (lock.locked()) reclaimStaleDirectories(m_root);
  m_processDirectory = m_root.resolve_path(Path(std::to_string(::getpid())));
  // Left behind when it could not be reclaimed: still this process's, if it is a plain directory.
  if (!madeDirectory(m_processDirectory) && !isOwnDirectory(m_processDirectory))
    throwFailedToCreate(m_processDirectory);
}

}  // namespace Internal

namespace Experimental {

void setScratchDirectoryAppName(VxString application, VxString subName) {
  ScratchNames &names = storedNames();
  std::lock_guard<std::mutex> const lock(names.mutex);
  names.application = std::move(application);
  names.subName = std::move(subName);
}

Path makeUniqueScratchDirectory(VxString name) {
  static Internal::ScratchSystem system;
  return system.makeUniqueDirectory(name);
}

}  // namespace Experimental

}  // namespace Tarvex::VantraCore
