#pragma once

#include <VantraCore/Path.h>

#include <string>
#include <system_error>

namespace Tarvex::VantraCore::Internal {

// The name the system calls take: the stored text with "\" as "/".
std::string posixName(Experimental::Path const &path);

// A name the system gave, stored with "\" separators as it stands, without a UTF-8 check.
Experimental::Path pathFromSystem(std::string const &name);

[[noreturn]] void throwFilesystemError(char const *message, Experimental::Path const &path,
                                       std::error_code code);
[[noreturn]] void throwFilesystemError(char const *message, Experimental::Path const &path1,
                                       Experimental::Path const &path2, std::error_code code);

}  // namespace Tarvex::VantraCore::Internal
