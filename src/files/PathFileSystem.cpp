#include <VantraCore/FileOperations.h>
#include <VantraCore/Path.h>
#include <files/PathInternal.h>

#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

// What a path names on this machine: status, the current directory, and changes to the tree.
namespace Tarvex::VantraCore {

namespace fs = std::filesystem;
using Experimental::Path;

namespace {

fs::file_status statusOf(Path const &path, bool followLinks) noexcept {
  try {
    std::error_code code;
    std::string const name = Internal::posixName(path);
    return followLinks ? fs::status(name, code) : fs::symlink_status(name, code);
  } catch (...) {
    return fs::file_status(fs::file_type::none);
  }
}

bool accessible(Path const &path, int mode) noexcept {
  try {
    return ::access(Internal::posixName(path).c_str(), mode) == 0;
  } catch (...) {
    return false;
  }
}

// Removes one entry, throwing "remove(p): invalid argument" when the system refuses.
bool removeEntry(Path const &path) {
  std::error_code code;
  bool const removed = fs::remove(Internal::posixName(path), code);
  if (code) Internal::throwFilesystemError("remove(p): invalid argument", path, code);
  return removed;
}

// Makes the directory unless it is one already; true if it is one afterwards.
template <class Make>
bool makeDirectory(Path const &path, char const *message, Make &&make) {
  if (path.is_directory()) return true;
  std::error_code code;
  make(Internal::posixName(path), code);
  if (code) Internal::throwFilesystemError(message, path, code);
  return path.is_directory();
}

}  // namespace

namespace Internal {

void throwFilesystemError(char const *message, Path const &path, std::error_code code) {
  throw fs::filesystem_error(message, fs::path(posixName(path)), code);
}

void throwFilesystemError(char const *message, Path const &path1, Path const &path2, std::error_code code) {
  throw fs::filesystem_error(message, fs::path(posixName(path1)), fs::path(posixName(path2)), code);
}

}  // namespace Internal

namespace Experimental {

Path Path::complete_path() const {
  return system_complete().normalize();
}
Path Path::physical_path() const {
  return complete_path();
}

Path Path::system_complete() const {
  if (is_absolute()) return *this;
  std::error_code code;
  fs::path const cwd = fs::current_path(code);
  if (code) {
    Internal::throwFilesystemError("absolute(p1, p2): current_path() couldn't get current working directory",
                                   *this, code);
  }
  Path const current = Internal::pathFromSystem(cwd.native());
  std::string const &text = Internal::textOf(*this);
  Internal::PathLayout const layout = Internal::layoutOf(text);
  std::string_view const rootName(text.data(), layout.rootNameEnd);
  Path const relative = Internal::storedPath(text.substr(layout.rootEnd));
  // Being relative, the path has no root directory: the current one's follows the shared root name.
  std::string_view const currentRootName(Internal::textOf(current).data(),
                                         Internal::layoutOf(Internal::textOf(current)).rootNameEnd);
  if (rootName.empty() || rootName == currentRootName) return Path(current) /= relative;
  // Another drive: its current directory, where the environment keeps one.
  VxString drive;
  if (getEnvVxstringAllowEmpty(VxString("=") + VxString(std::string(rootName)), &drive)) {
    return Path(drive) /= relative;
  }
  return Internal::storedPath(std::string(rootName) + '\\' + Internal::textOf(relative));
}

bool Path::exists() const {
  return fs::exists(statusOf(*this, true));
}
bool Path::is_directory() const {
  return fs::is_directory(statusOf(*this, true));
}
bool Path::is_regular_file() const {
  return fs::is_regular_file(statusOf(*this, true));
}
bool Path::is_readable() const {
  return accessible(*this, R_OK);
}
bool Path::is_writable() const {
  return accessible(*this, W_OK);
}

std::uint64_t Path::file_size() const {
  std::error_code code;
  std::uintmax_t const size = fs::file_size(Internal::posixName(*this), code);
  if (code) Internal::throwFilesystemError("file_size(p): invalid argument", *this, code);
  return size;
}

bool Path::equivalent(Path const &other) {
  if (compare_filenames(system_complete(), other.system_complete()) == 0) return true;
  std::error_code code;
  bool const same = fs::equivalent(Internal::posixName(*this), Internal::posixName(other), code);
  if (code) Internal::throwFilesystemError("equivalent(p1, p2): invalid arguments", *this, other, code);
  return same;
}

bool Path::is_contained_within_path(Path const &other) const {
  return system_complete().starts_with(other.system_complete());
}
bool Path::is_contained_within_path_physical(Path const &other) const {
  return physical_path().starts_with(other.physical_path());
}

Path Path::current_path() {
  std::error_code code;
  fs::path const cwd = fs::current_path(code);
  if (code) throw fs::filesystem_error("current_path(): can't get current working directory", code);
  return Internal::pathFromSystem(cwd.native());
}

bool Path::create_directory() const {
  return makeDirectory(
      *this, "create_directory(p): invalid argument",
      [](std::string const &name, std::error_code &code) { fs::create_directory(name, code); });
}

bool Path::create_directories() const {
  return makeDirectory(
      *this, "create_directories(p): invalid argument",
      [](std::string const &name, std::error_code &code) { fs::create_directories(name, code); });
}

bool Path::delete_directory() const {
  return is_directory() && removeEntry(*this);
}

bool Path::delete_file() const {
  bool const link = fs::is_symlink(statusOf(*this, false));
  if (!link && !exists()) return false;
  if (is_directory()) return false;
  return removeEntry(*this);
}

bool Path::delete_file_or_directory() const {
  if (!exists() && !fs::is_symlink(statusOf(*this, false))) return false;
  return removeEntry(*this);
}

bool Path::remove_all() const {
  std::error_code code;
  std::uintmax_t const removed = fs::remove_all(Internal::posixName(*this), code);
  if (code) Internal::throwFilesystemError("remove_all(p): invalid argument", *this, code);
  return removed > 0;
}
bool Path::removeAllFilesDirectoriesRecursively() const {
  return remove_all();
}

bool Path::rename(Path const &target) const {
  char const *const message = "rename(p1, p2): invalid arguments";
  std::string const from = Internal::posixName(*this);
  std::string const to = Internal::posixName(target);
  if (!fs::exists(statusOf(*this, false))) {
    Internal::throwFilesystemError(message, *this, target,
                                   std::make_error_code(std::errc::no_such_file_or_directory));
  }
  std::error_code code;
  if (fs::exists(statusOf(target, false))) {
    if (fs::equivalent(from, to, code) && !code) return true;
    if (!code) fs::remove(to, code);
    if (code) Internal::throwFilesystemError(message, *this, target, code);
  }
  fs::rename(from, to, code);
  if (code) Internal::throwFilesystemError(message, *this, target, code);
  return true;
}

std::FILE *Path::fopen(char const *mode) const {
  if (!mode) {
    errno = EINVAL;
    return nullptr;
  }
  std::FILE *stream = std::fopen(Internal::posixName(*this).c_str(), mode);
  std::string const &text = Internal::textOf(*this);
  if (!stream && text.size() >= 2 && text.find("..") != std::string::npos) {
    try {
      stream = std::fopen(Internal::posixName(complete_path()).c_str(), mode);
    } catch (std::exception const &) {
      // No current directory: the first answer stands.
    }
  }
  return stream;
}

}  // namespace Experimental

}  // namespace Tarvex::VantraCore
