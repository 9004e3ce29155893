#include <VantraCore/FileOperations.h>
#include <files/PathInternal.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

namespace Tarvex::VantraCore::Experimental {

namespace {

// Runs `call` with the POSIX form of `name`; a name that cannot convert gives `failure` with errno set.
template <class Result, class Call>
Result withPosixName(VxString const &name, Result failure, Call &&call) {
  std::string posix;
  try {
    posix = Internal::posixName(Path(name));
  } catch (std::filesystem::filesystem_error const &error) {
    errno = error.code().value();
    return failure;
  } catch (std::bad_alloc const &) {
    errno = ENOMEM;
    return failure;
  }
  return call(posix.c_str());
}

// The non-throwing form of a Path operation: 0 when it answers true.
template <class Operation>
int zeroIfTrue(Operation &&operation) noexcept {
  try {
    return operation() ? 0 : -1;
  } catch (...) {
    return -1;
  }
}

}  // namespace

int accessUtf8(VxString const &name, int mode) {
  return withPosixName(name, -1, [&](char const *posix) { return ::access(posix, mode); });
}

int chdirUtf8(Path const &dir) {
  try {
    return ::chdir(Internal::posixName(dir).c_str());
  } catch (std::bad_alloc const &) {
    errno = ENOMEM;
    return -1;
  }
}

int chmodUtf8(VxString const &name, int mode) {
  return withPosixName(name, -1,
                       [&](char const *posix) { return ::chmod(posix, static_cast<mode_t>(mode)); });
}

std::uint64_t fileSizeUtf8(VxString const &name) {
  try {
    return Path(name).file_size();
  } catch (...) {
    return 0;
  }
}

std::FILE *freopenUtf8(VxString const &name, VxString const &mode, std::FILE *stream) {
  if (!stream) {
    errno = EINVAL;
    return nullptr;
  }
  return withPosixName(name, static_cast<std::FILE *>(nullptr),
                       [&](char const *posix) { return std::freopen(posix, mode.c_str(), stream); });
}

VxString getCwdUtf8() {
  return Path::current_path().string();
}

int mPathUtf8(VxString const &name) {
  return zeroIfTrue([&] { return Path(name).create_directories(); });
}

int mkdirUtf8(VxString const &name) {
  return zeroIfTrue([&] { return Path(name).create_directory(); });
}

int openUtf8(VxString const &name, int flags, int mode) {
  return withPosixName(name, -1, [&](char const *posix) { return ::open(posix, flags, mode); });
}

int removeUtf8(VxString const &name) {
  return unlinkUtf8(name);
}

int renameUtf8(VxString const &from, VxString const &to) {
  return zeroIfTrue([&] { return Path(from).rename(Path(to)); });
}

int rmdirUtf8(VxString const &name) {
  return zeroIfTrue([&] { return Path(name).delete_directory(); });
}

int statUtf8(VxString const &name, struct stat *out) {
  if (!out) {
    errno = EFAULT;
    return -1;
  }
  return withPosixName(name, -1, [&](char const *posix) { return ::stat(posix, out); });
}

int unlinkUtf8(VxString const &name) {
  return zeroIfTrue([&] { return Path(name).delete_file(); });
}

DirectorySaver::DirectorySaver() : m_originalCwd(Path::current_path()) {}
DirectorySaver::DirectorySaver(DirectorySaver const &other) = default;
DirectorySaver &DirectorySaver::operator=(DirectorySaver const &other) = default;

DirectorySaver::~DirectorySaver() {
  try {
    chdirUtf8(m_originalCwd);
  } catch (...) {
    // Nothing to do about it in a destructor.
  }
}

bool DirectorySaver::changeDir(Path const &dir) const {
  return chdirUtf8(dir) == 0;
}
Path const &DirectorySaver::getOriginalCwd() const {
  return m_originalCwd;
}

// The environment holds bytes here, so names and values pass as they stand.
VxString getEnvVxstring(VxString const &name) {
  VxString value;
  getEnvVxstringAllowEmpty(name, &value);
  return value;
}

bool getEnvVxstringAllowEmpty(VxString const &name, VxString *value) {
  char const *const found = std::getenv(name.c_str());
  if (!found || *found == '\0') return false;
  if (value) *value = VxString(found);
  return true;
}

void putEnvVxstring(VxString const &name, VxString const &value) {
  if (::setenv(name.c_str(), value.c_str(), 1) != 0) throw std::bad_alloc();
}

}  // namespace Tarvex::VantraCore::Experimental
