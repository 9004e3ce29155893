#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace Tarvex::VantraCore::Experimental {

// The text with every "\" replaced by "/", byte by byte. Text without "\" comes back sharing its record.
VANTRACORE_API VxString fixFilenameSlashes(VxString const &name);

// A file name as UTF-8 text whose separator is always stored as "\", whatever the input used; "/" and
// "\" are both accepted everywhere. The lexical rules know drive ("C:") and network ("\\server") root
// names. Operations that touch the file system use the POSIX form of the text, "\" becoming "/", so
// "/tmp/x" is stored as "\tmp\x" and counts as absolute.
//
// Text that is not valid UTF-8 throws std::filesystem::filesystem_error "invalid char filename
// argument". Failing file operations throw std::filesystem::filesystem_error with the operation's
// message ("remove(p): invalid argument" and so on) and the system's error code.
class VANTRACORE_API Path {
 public:
  Path() = default;
  Path(VxString const &text);
  Path(std::string const &text);
  Path(char const *text);
  Path(Path const &other) = default;
  Path(Path &&other) noexcept = default;
  Path &operator=(Path const &other) = default;
  Path &operator=(Path &&other) noexcept = default;
  ~Path() = default;

  void assign(Path const &other);
  void swap(Path &other) noexcept;
  void clear() noexcept;

  // Wraps a standard path value as it stands: the one way a Path can hold "/" separators.
  static Path from_fs_path(std::filesystem::path const &path);
  static Path from_fs_path(std::filesystem::path &&path);
  std::filesystem::path const &fs_path() const noexcept { return m_path; }
  operator std::filesystem::path const &() const noexcept { return m_path; }

  // UTF-8 with "\" separators.
  operator VxString() const;
  VxString native() const;
  VxString string() const;
  VxString u8string() const;
  // UTF-8 with "/" separators.
  VxString generic() const;
  VxString generic_string() const;
  VxString generic_u8string() const;
  // Wide (UTF-32 here) and UTF-16 text, with "\" and with "/".
  std::wstring wstring() const;
  std::u16string u16string() const;
  std::wstring generic_wstring() const;
  std::u16string generic_u16string() const;

  // Lexical parts. An element is a run of non-separators after the root path.
  Path root_name() const;
  Path root_directory() const;
  Path root_path() const;
  Path relative_path() const;
  // The root path and all elements but the last.
  Path parent_path() const;
  // The last element; empty when it is "." or "..".
  Path filename() const;
  Path stem() const;
  // From the last "." of the last element, with the dot: ".profile" is all extension.
  Path extension() const;

  bool has_extension() const;
  bool has_filename() const;
  bool has_parent_path() const;
  bool has_relative_path() const;
  bool has_root_directory() const;
  bool has_root_name() const;
  bool has_root_path() const;
  bool has_stem() const;

  // Appends with one "\" between where needed. An absolute argument does not replace the path:
  // "C:\a" / "D:\x" is "C:\a\D:\x". resolve_path is the replacing join.
  Path &operator/=(Path const &other);
  Path &append(Path const &other);
  // Plain text append.
  Path &operator+=(Path const &other);
  Path &concat(Path const &other);
  // This path becomes resolve_path(other).
  Path &append_path(Path const &other);
  // Drops "." elements, folds "x\.." pairs and separators at the end; ".." above the root is kept.
  Path &normalize();
  // Removes the last element and the separators before it, never the root path; a path of one
  // element, a root counting as one, stays.
  Path &remove_filename();
  Path &remove_extension();
  // "ext" and ".ext" both give one dot; an empty extension cuts the text at its last "." unless a
  // separator comes first.
  Path &replace_extension(Path const &extension);
  // system_complete() then normalize().
  Path complete_path() const;
  // The same as complete_path(): no links are resolved.
  Path physical_path() const;
  // Absolute paths as they are, relative ones against the current directory.
  Path system_complete() const;
  // `relative` resolved against this path, normalised: an absolute argument replaces, a root name
  // alone ("D:x") keeps this path's directories when the root names agree.
  Path resolve_path(Path const &relative) const;
  Path get_valid_automount_path() const;
  // `path` relative to `base` with at most maxUp ".." elements; both absolute under the same root and
  // sharing at least one element. Otherwise a normalised copy of `path`, and *made false.
  static Path make_relative_path(Path const &path, Path const &base, bool *made, int maxUp);

  bool empty() const noexcept;
  bool is_absolute() const;
  bool is_relative() const;
  // The status queries answer false on any failure.
  bool exists() const;
  bool is_directory() const;
  bool is_regular_file() const;
  bool is_readable() const;
  bool is_writable() const;
  std::uint64_t file_size() const;
  // True without touching the file system when the complete paths compare equal.
  bool equivalent(Path const &other);
  bool equal_filenames(Path const &other) const;
  static bool equal_filenames(Path const &a, Path const &b);
  // Case-insensitive comparison of the whole texts as UTF-16 units: -1, 0 or 1. "a/b" and "a\b" differ.
  static int compare_filenames(Path const &a, Path const &b);
  // Case-insensitive text prefix: "C:\abc" starts with "C:\ab".
  bool starts_with(Path const &prefix) const;
  bool is_contained_within_path(Path const &other) const;
  bool is_contained_within_path_physical(Path const &other) const;
  static bool is_separator(int c) noexcept;
  bool ends_with_separator() const noexcept;
  static bool ends_with_separator(VxStringView text) noexcept;
  // The text, with "\" added unless it ends with a separator.
  static VxString add_separator(VxString const &text);
  static Path current_path();

  // True if the path is a directory afterwards.
  bool create_directory() const;
  bool create_directories() const;
  // False for anything but a directory.
  bool delete_directory() const;
  // False for a directory or a missing path; links are removed themselves.
  bool delete_file() const;
  bool delete_file_or_directory() const;
  // True if at least one entry went; a missing path gives false.
  bool remove_all() const;
  bool removeAllFilesDirectoriesRecursively() const;
  // Replaces another file at `target`; renaming onto the same file does nothing.
  bool rename(Path const &target) const;
  // The C stream, or null. A name with ".." that fails is tried once more as its complete path.
  std::FILE *fopen(char const *mode) const;

 private:
  struct FromFSPath;
  Path(std::filesystem::path const &path, FromFSPath *);
  Path(std::filesystem::path &&path, FromFSPath *);

  std::filesystem::path m_path;
};

}  // namespace Tarvex::VantraCore::Experimental
