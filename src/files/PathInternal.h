#pragma once

#include <VantraCore/Path.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace Tarvex::VantraCore::Internal {

// The stored text, with "\" separators.
inline std::string const &textOf(Experimental::Path const &path) noexcept {
  return path.fs_path().native();
}

// Stored as it stands: no UTF-8 check, no separator change.
Experimental::Path storedPath(std::string text);

// Where the root name ("C:", "\\server") and the root directory end.
struct PathLayout {
  std::size_t rootNameEnd = 0;
  std::size_t rootEnd = 0;
};
PathLayout layoutOf(std::string_view text) noexcept;

// The name the system calls take: the stored text with "\" as "/".
std::string posixName(Experimental::Path const &path);

// A name the system gave, stored with "\" separators as it stands, without a UTF-8 check.
Experimental::Path pathFromSystem(std::string const &name);

[[noreturn]] void throwFilesystemError(char const *message, Experimental::Path const &path,
                                       std::error_code code);
[[noreturn]] void throwFilesystemError(char const *message, Experimental::Path const &path1,
                                       Experimental::Path const &path2, std::error_code code);

}  // namespace Tarvex::VantraCore::Internal
