#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/Path.h>
#include <VantraCore/VxString.h>

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>

namespace Tarvex::VantraCore::Experimental {

// The C file functions with UTF-8 names. Each name goes through Path, so "/" and "\" both separate.
// The results and errno are those of the POSIX call; a name that is not valid UTF-8 fails with errno
// EILSEQ. The forms built on Path operations answer 0 or -1 (0 for fileSizeUtf8) and throw nothing.
VANTRACORE_API int accessUtf8(VxString const &name, int mode);
VANTRACORE_API int chdirUtf8(Path const &dir);
VANTRACORE_API int chmodUtf8(VxString const &name, int mode);
VANTRACORE_API std::uint64_t fileSizeUtf8(VxString const &name);
VANTRACORE_API std::FILE *freopenUtf8(VxString const &name, VxString const &mode, std::FILE *stream);
// The current directory with "\" separators; throws as Path::current_path.
VANTRACORE_API VxString getCwdUtf8();
// 0 if the directory and its missing parents exist afterwards.
VANTRACORE_API int mPathUtf8(VxString const &name);
// 0 if the directory exists afterwards, also when it existed before.
VANTRACORE_API int mkdirUtf8(VxString const &name);
VANTRACORE_API int openUtf8(VxString const &name, int flags, int mode);
VANTRACORE_API int removeUtf8(VxString const &name);
VANTRACORE_API int renameUtf8(VxString const &from, VxString const &to);
// Only empty directories.
VANTRACORE_API int rmdirUtf8(VxString const &name);
VANTRACORE_API int statUtf8(VxString const &name, struct stat *out);
// Files and links, never directories.
VANTRACORE_API int unlinkUtf8(VxString const &name);

// Puts the current directory of its construction back when it goes out of scope, silently.
class VANTRACORE_API DirectorySaver {
 public:
  // Throws as Path::current_path.
  DirectorySaver();
  DirectorySaver(DirectorySaver const &other);
  DirectorySaver &operator=(DirectorySaver const &other);
  ~DirectorySaver();

  // Changes the current directory; the saved one stays what the destructor returns to.
  bool changeDir(Path const &dir) const;
  Path const &getOriginalCwd() const;

 private:
  Path m_originalCwd;
};

// The value, or empty when the variable is not set.
VANTRACORE_API VxString getEnvVxstring(VxString const &name);
// True and *value written when the variable is set to a non-empty value. An empty value answers false,
// like an unset variable.
VANTRACORE_API bool getEnvVxstringAllowEmpty(VxString const &name, VxString *value);
// Sets the variable for this process; a refusal (an empty name or one with "=") throws std::bad_alloc.
VANTRACORE_API void putEnvVxstring(VxString const &name, VxString const &value);

}  // namespace Tarvex::VantraCore::Experimental
