// Path parsing and the lexical operations: no crash, and no exception but the filesystem error of
// text that is not UTF-8. Input: one byte for maxUp, then two texts split at the first NUL byte.
#include <VantraCore/Path.h>
#include <VantraCore/StringUtilities.h>

#include <cstdint>
#include <cstring>
#include <filesystem>

using namespace Tarvex::VantraCore;
using Tarvex::VantraCore::Experimental::Path;

namespace {

void takeApart(Path const &path) {
  Path parts[] = {path.root_name(),   path.root_directory(), path.root_path(), path.relative_path(),
                  path.parent_path(), path.filename(),       path.stem(),      path.extension()};
  (void)parts;
  (void)(path.has_extension() + path.has_filename() + path.has_parent_path() + path.has_relative_path() +
         path.has_root_directory() + path.has_root_name() + path.has_root_path() + path.has_stem() +
         path.is_absolute() + path.ends_with_separator());
  VxString texts[] = {path.generic(), VxString(path), toVxString(path.u16string()),
                      toVxString(path.generic_wstring())};
  (void)texts;
  Path edited = path;
  edited.normalize();
  edited = path;
  edited.remove_filename();
  edited = path;
  edited.replace_extension(Path("x"));
  edited.remove_extension();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size == 0) return 0;
  int const maxUp = data[0] % 8 - 1;
  char const *first = reinterpret_cast<char const *>(data + 1);
  std::size_t const rest = size - 1;
  char const *nul = static_cast<char const *>(std::memchr(first, 0, rest));
  std::size_t const firstSize = nul ? nul - first : rest;
  VxString const textA(first, firstSize);
  VxString const textB(nul ? nul + 1 : first + rest, nul ? rest - firstSize - 1 : 0);
  try {
    Path const a(textA);
    Path const b(textB);
    takeApart(a);
    takeApart(b);
    Path joined = a;
    joined /= b;
    joined += b;
    takeApart(joined);
    takeApart(a.resolve_path(b));
    bool made = false;
    takeApart(Path::make_relative_path(a, b, &made, maxUp));
    (void)(Path::compare_filenames(a, b) + a.starts_with(b) + Path::equal_filenames(a, b));
    (void)a.complete_path();
  } catch (std::filesystem::filesystem_error const &) {
    // Text that is not UTF-8.
  }
  return 0;
}
