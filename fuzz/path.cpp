// Path parsing and the lexical operations: no crash, and no exception but the filesystem error of
// text that is not UTF-8. Input: one byte for maxUp, then two texts split at the first NUL byte.
#include <VantraCore/Path.h>
#include <VantraCore/StringUtilities.h>

#include <files/PathInternal.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

using namespace Tarvex::VantraCore;
using Tarvex::VantraCore::Experimental::fixFilenameSlashes;
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

// The other spellings and joins follow the ones takeApart and the caller use: the plain and UTF-8
// names are the text, the generic ones its "/" form, the system's name that form too, read back as
// the same path; append is /=, concat is +=, append_path is resolve_path.
void otherSpellings(Path const &a, Path const &b) {
  VxString const text(a);
  VxString const generic = a.generic();
  if (a.native() != text || a.string() != text || a.u8string() != text || a.generic_string() != generic ||
      a.generic_u8string() != generic || toVxString(a.generic_u16string()) != generic ||
      fixFilenameSlashes(text) != generic || VxString(Internal::posixName(a)) != generic ||
      VxString(Path::from_fs_path(a.fs_path())) != text ||
      VxString(Path(std::string(text.data(), text.size()))) != text ||
      VxString(Internal::pathFromSystem(Internal::posixName(a))) != text)
    std::abort();
  if (a.is_relative() == a.is_absolute() || a.equal_filenames(b) != Path::equal_filenames(a, b) ||
      Path::ends_with_separator(VxStringView(text.data(), text.size())) != a.ends_with_separator() ||
      !Path::ends_with_separator(Path::add_separator(text)) || VxString(a.get_valid_automount_path()) != text)
    std::abort();
  Path appended = a, concatenated = a, resolved = a, joined = a;
  appended.append(b);
  concatenated.concat(b);
  resolved.append_path(b);
  joined /= b;
  if (VxString(appended) != VxString(joined) || VxString(concatenated) != VxString(Path(a) += b) ||
      VxString(resolved) != VxString(a.resolve_path(b)))
    std::abort();
  Path swapped;
  swapped.assign(a);
  swapped.swap(appended);
  swapped.clear();
  if (!swapped.empty() || VxString(appended) != text) std::abort();
  static_cast<void>(a.is_contained_within_path(b) + a.is_contained_within_path_physical(b));
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
  // Wrapped as they stand, texts need not be UTF-8: the comparisons read them all the same.
  Path const rawA = Path::from_fs_path(std::filesystem::path(std::string(textA.data(), textA.size())));
  Path const rawB = Path::from_fs_path(std::filesystem::path(std::string(textB.data(), textB.size())));
  (void)(Path::compare_filenames(rawA, rawB) + rawA.starts_with(rawB));
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
    otherSpellings(a, b);
  } catch (std::filesystem::filesystem_error const &) {
    // Text that is not UTF-8.
  }
  return 0;
}
