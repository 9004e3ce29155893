#include <VantraCore/ScratchDirectory.h>
#include <files/PathInternal.h>
#include <files/ScratchSystem.h>

#include <signal.h>
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

bool createdDirectory(Path const &path) {
  try {
    return path.create_directory();
  } catch (fs::filesystem_error const &) {
    return false;
  }
}

[[noreturn]] void throwFailedToCreate(Path const &path) {
  throw std::runtime_error("Failed to create directory \"" + path.string().toStdString() + "\".");
}

bool isBelow(Path path, Path directory) {
  std::string const &inner = path.normalize().fs_path().native();
  std::string const outer = Path::add_separator(directory.normalize().string()).toStdString();
  return inner.size() > outer.size() && inner.compare(0, outer.size(), outer) == 0;
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

Path makeScratchRoot(VxString const &application, VxString const &subName) {
  std::error_code code;
  fs::path const temporaryName = fs::temp_directory_path(code);
  if (!code && !fs::is_directory(temporaryName, code) && !code)
    code = std::make_error_code(std::errc::not_a_directory);
  if (code)
    throw fs::filesystem_error("temp_directory_path(): can't find temp directory", temporaryName, code);

  Path const temporary = pathFromSystem(temporaryName.native());
  Path root = temporary;
  if (!application.empty()) root /= Path(application);
  if (!subName.empty()) root /= Path(subName);
  // Names such as "." or ".." must not make the temporary directory, or one above it, the root whose
  // numbered entries get reclaimed.
  if (!isBelow(root, temporary)) root = Path(temporary) /= Path("Scratch");

  bool made = false;
  try {
    made = root.create_directories();
  } catch (fs::filesystem_error const &) {
  }
  if (!made)
    throw std::runtime_error("Couldn't create directories for \"" + root.string().toStdString() + "\".");
  return root;
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
  for (std::uint64_t k = 1; candidate.exists(); ++k) {
    candidate = m_processDirectory.resolve_path(Path(name + VxString(std::to_string(k))));
  }
  if (!createdDirectory(candidate)) throwFailedToCreate(candidate);
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
  reclaimStaleDirectories(m_root);
  m_processDirectory = m_root.resolve_path(Path(std::to_string(::getpid())));
  if (!createdDirectory(m_processDirectory)) throwFailedToCreate(m_processDirectory);
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
