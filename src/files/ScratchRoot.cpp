#include <files/PathInternal.h>
#include <files/ScratchSystem.h>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Tarvex::VantraCore::Internal {

namespace fs = std::filesystem;
using Experimental::Path;

namespace {

Path temporaryDirectory() {
  std::error_code code;
  fs::path const name = fs::temp_directory_path(code);
  if (!code && !fs::is_directory(name, code) && !code) code = std::make_error_code(std::errc::not_a_directory);
  if (code) throw fs::filesystem_error("temp_directory_path(): can't find temp directory", name, code);
  return pathFromSystem(name.native());
}

// The elements of `path` after `directory`; empty when `path` does not lead below it.
std::vector<std::string> elementsBelow(Path path, Path directory) {
  std::string const inner = path.normalize().string().toStdString();
  std::string const outer = Path::add_separator(directory.normalize().string()).toStdString();
  std::vector<std::string> elements;
  if (inner.size() <= outer.size() || inner.compare(0, outer.size(), outer) != 0) return elements;
  for (std::size_t start = outer.size(); start <= inner.size();) {
    std::size_t const end = std::min(inner.find('\\', start), inner.size());
    elements.push_back(inner.substr(start, end - start));
    start = end + 1;
  }
  return elements;
}

[[noreturn]] void refuse(Path const &path, std::string const &reason) {
  throw std::runtime_error("Refusing scratch directory \"" + path.string().toStdString() + "\": " + reason + ".");
}

std::string octal(mode_t mode) {
  char text[8];
  std::snprintf(text, sizeof text, "%04o", static_cast<unsigned>(mode & 07777));
  return text;
}

// Made here or found: either way a directory, no link, of this user alone. Nothing below it can then
// be planted, read or removed by another user.
void makePrivateDirectory(Path const &path, Path const &root) {
  std::string const name = posixName(path);
  if (::mkdir(name.c_str(), 0700) != 0 && errno != EEXIST)
    throw std::runtime_error("Couldn't create directories for \"" + root.string().toStdString() + "\".");
  struct stat status {};
  if (::lstat(name.c_str(), &status) != 0)
    throw std::runtime_error("Couldn't create directories for \"" + root.string().toStdString() + "\".");
  if (S_ISLNK(status.st_mode)) refuse(path, "it is a symbolic link");
  if (!S_ISDIR(status.st_mode)) refuse(path, "it is not a directory");
  uid_t const user = ::geteuid();
  if (status.st_uid != user)
    refuse(path, "it belongs to user " + std::to_string(status.st_uid) + ", not to user " + std::to_string(user));
  if ((status.st_mode & 077) != 0)
    refuse(path, "other users have access to it (mode " + octal(status.st_mode) + ", not 0700)");
}

}  // namespace

Path makeScratchRoot(VxString const &application, VxString const &subName) {
  Path const temporary = temporaryDirectory();
  Path named = temporary;
  if (!application.empty()) named /= Path(application);
  if (!subName.empty()) named /= Path(subName);
  // Names such as "." or ".." must not make the temporary directory, or one above it, the root whose
  // numbered entries get reclaimed.
  std::vector<std::string> elements = elementsBelow(named, temporary);
  if (elements.empty()) elements = {"Scratch"};
  // The temporary directory is shared by every user: the one level made there is this user's alone.
  elements.front() += "-" + std::to_string(::geteuid());

  Path root = temporary;
  for (std::string const &element : elements)
    root /= Path(element);
  Path level = temporary;
  for (std::string const &element : elements)
    makePrivateDirectory(level /= Path(element), root);
  return root;
}

RootLock::RootLock(Path const &root) {
  std::string const name = posixName(root) + "/.lock";
  m_descriptor = ::open(name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (m_descriptor < 0) return;
  // A process stopped while holding the lock must not stop every later one from starting.
  auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() > deadline) {
      ::close(m_descriptor);
      m_descriptor = -1;
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

RootLock::~RootLock() {
  // Closing releases the lock; the file stays for the next process.
  if (m_descriptor >= 0) ::close(m_descriptor);
}

}  // namespace Tarvex::VantraCore::Internal
