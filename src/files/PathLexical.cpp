#include <VantraCore/Path.h>
#include <VantraCore/StringUtilities.h>
#include <files/CaseMapping.h>
#include <files/PathInternal.h>

#include <utf8.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The grammar of stored names: "\" separated, a root name ("C:" or "\\server") and a root directory.
// Nothing here asks the file system.
namespace Tarvex::VantraCore {

namespace fs = std::filesystem;
using Experimental::Path;
using Internal::layoutOf;
using Internal::PathLayout;
using Internal::storedPath;
using Internal::textOf;

namespace {

bool isSeparator(char c) noexcept {
  return Path::is_separator(c);
}

[[noreturn]] void throwInvalidText() {
  throw fs::filesystem_error("invalid char filename argument",
                             std::make_error_code(std::errc::illegal_byte_sequence));
}

// Text from a caller: UTF-8 up to its first NUL, stored with "\" separators.
std::string storedFromUtf8(char const *data, std::size_t length) {
  if (void const *nul = std::memchr(data, '\0', length)) length = static_cast<char const *>(nul) - data;
  if (!utf8::is_valid(data, data + length)) throwInvalidText();
  std::string text(data, length);
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

std::string withSeparator(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

std::vector<std::string_view> elementsOf(std::string_view text, std::size_t from) {
  std::vector<std::string_view> elements;
  std::size_t at = from;
  while (at < text.size()) {
    while (at < text.size() && isSeparator(text[at]))
      ++at;
    std::size_t const begin = at;
    while (at < text.size() && !isSeparator(text[at]))
      ++at;
    if (at > begin) elements.push_back(text.substr(begin, at - begin));
  }
  return elements;
}

std::string_view lastElement(std::string_view text) noexcept {
  std::size_t const root = layoutOf(text).rootEnd;
  std::size_t end = text.size();
  while (end > root && isSeparator(text[end - 1]))
    --end;
  std::size_t begin = end;
  while (begin > root && !isSeparator(text[begin - 1]))
    --begin;
  return text.substr(begin, end - begin);
}

bool isDotElement(std::string_view element) noexcept {
  return element == "." || element == "..";
}

std::string_view filenameOf(std::string_view text) noexcept {
  std::string_view const element = lastElement(text);
  return isDotElement(element) ? std::string_view() : element;
}

std::string_view extensionOf(std::string_view text) noexcept {
  std::string_view const name = filenameOf(text);
  std::size_t const dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot);
}

std::string_view stemOf(std::string_view text) noexcept {
  std::string_view const name = filenameOf(text);
  return name.substr(0, name.size() - extensionOf(text).size());
}

// The joining rule of operator/=: one "\" between, none after a root name or a separator.
void appendElement(std::string &text, std::string_view element) {
  if (!text.empty() && !element.empty() && text.back() != ':' && !isSeparator(text.back()) &&
      !isSeparator(element.front())) {
    text += '\\';
  }
  std::size_t const from = text.size();
  text.append(element);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), '/', '\\');
}

}  // namespace

namespace Internal {

Path storedPath(std::string text) {
  return Path::from_fs_path(fs::path(std::move(text)));
}

PathLayout layoutOf(std::string_view text) noexcept {
  PathLayout layout;
  if (text.size() > 2 && isSeparator(text[0]) && isSeparator(text[1]) && !isSeparator(text[2])) {
    layout.rootNameEnd = text.size();
    for (std::size_t i = 3; i < text.size(); ++i) {
      if (isSeparator(text[i])) {
        layout.rootNameEnd = i;
        break;
      }
    }
  } else if (std::size_t const colon = text.find(':'); colon != std::string_view::npos) {
    layout.rootNameEnd = colon + 1;
  }
  bool const rootDirectory = layout.rootNameEnd < text.size() && isSeparator(text[layout.rootNameEnd]);
  layout.rootEnd = layout.rootNameEnd + (rootDirectory ? 1 : 0);
  return layout;
}

std::string posixName(Path const &path) {
  return withSeparator(textOf(path), '\\', '/');
}

Path pathFromSystem(std::string const &name) {
  return storedPath(withSeparator(name, '/', '\\'));
}

}  // namespace Internal

namespace Experimental {

VxString fixFilenameSlashes(VxString const &name) {
  char const *const first = std::find(name.begin(), name.end(), '\\');
  if (first == name.end()) return name;
  return VxString::build(name.size(),
                         [&](char *out) { std::replace_copy(name.begin(), name.end(), out, '\\', '/'); });
}

struct Path::FromFSPath {};

Path::Path(VxString const &text) : m_path(storedFromUtf8(text.data(), text.size())) {}
Path::Path(std::string const &text) : m_path(storedFromUtf8(text.data(), text.size())) {}
Path::Path(char const *text) : m_path(storedFromUtf8(text ? text : "", text ? std::strlen(text) : 0)) {}
Path::Path(fs::path const &path, FromFSPath *) : m_path(path) {}
Path::Path(fs::path &&path, FromFSPath *) : m_path(std::move(path)) {}

void Path::assign(Path const &other) {
  if (this != &other) m_path = other.m_path;
}
void Path::swap(Path &other) noexcept {
  m_path.swap(other.m_path);
}
void Path::clear() noexcept {
  m_path.clear();
}

Path Path::from_fs_path(fs::path const &path) {
  return Path(path, static_cast<FromFSPath *>(nullptr));
}
Path Path::from_fs_path(fs::path &&path) {
  return Path(std::move(path), static_cast<FromFSPath *>(nullptr));
}

Path::operator VxString() const {
  return VxString(textOf(*this));
}
VxString Path::native() const {
  return *this;
}
VxString Path::string() const {
  return *this;
}
VxString Path::u8string() const {
  return *this;
}
VxString Path::generic() const {
  return VxString(withSeparator(textOf(*this), '\\', '/'));
}
VxString Path::generic_string() const {
  return generic();
}
VxString Path::generic_u8string() const {
  return generic();
}

std::wstring Path::wstring() const {
  std::string const &text = textOf(*this);
  if (!utf8::is_valid(text.begin(), text.end())) throwInvalidText();
  return toWString(VxString(text));
}
std::u16string Path::u16string() const {
  std::string const &text = textOf(*this);
  if (!utf8::is_valid(text.begin(), text.end())) throwInvalidText();
  return toUtf16(VxString(text));
}
std::wstring Path::generic_wstring() const {
  std::wstring text = wstring();
  std::replace(text.begin(), text.end(), L'\\', L'/');
  return text;
}
std::u16string Path::generic_u16string() const {
  std::u16string text = u16string();
  std::replace(text.begin(), text.end(), u'\\', u'/');
  return text;
}

Path Path::root_name() const {
  return storedPath(textOf(*this).substr(0, layoutOf(textOf(*this)).rootNameEnd));
}

Path Path::root_directory() const {
  PathLayout const layout = layoutOf(textOf(*this));
  return storedPath(textOf(*this).substr(layout.rootNameEnd, layout.rootEnd - layout.rootNameEnd));
}

Path Path::root_path() const {
  return storedPath(textOf(*this).substr(0, layoutOf(textOf(*this)).rootEnd));
}
Path Path::relative_path() const {
  return storedPath(textOf(*this).substr(layoutOf(textOf(*this)).rootEnd));
}

Path Path::parent_path() const {
  std::string const &text = textOf(*this);
  std::size_t const rootEnd = layoutOf(text).rootEnd;
  std::vector<std::string_view> const elements = elementsOf(text, rootEnd);
  std::string parent = text.substr(0, rootEnd);
  for (std::size_t i = 0; i + 1 < elements.size(); ++i)
    appendElement(parent, elements[i]);
  return storedPath(std::move(parent));
}

Path Path::filename() const {
  return storedPath(std::string(filenameOf(textOf(*this))));
}
Path Path::stem() const {
  return storedPath(std::string(stemOf(textOf(*this))));
}
Path Path::extension() const {
  return storedPath(std::string(extensionOf(textOf(*this))));
}

bool Path::has_extension() const {
  return !extensionOf(textOf(*this)).empty();
}
bool Path::has_filename() const {
  return !filenameOf(textOf(*this)).empty();
}
bool Path::has_parent_path() const {
  return !parent_path().empty();
}
bool Path::has_relative_path() const {
  return layoutOf(textOf(*this)).rootEnd < textOf(*this).size();
}
bool Path::has_root_directory() const {
  PathLayout const layout = layoutOf(textOf(*this));
  return layout.rootEnd > layout.rootNameEnd;
}
bool Path::has_root_name() const {
  return layoutOf(textOf(*this)).rootNameEnd > 0;
}
bool Path::has_root_path() const {
  return layoutOf(textOf(*this)).rootEnd > 0;
}
bool Path::has_stem() const {
  return !stemOf(textOf(*this)).empty();
}

Path &Path::operator/=(Path const &other) {
  std::string text = textOf(*this);
  appendElement(text, textOf(other));
  m_path = std::move(text);
  return *this;
}
Path &Path::append(Path const &other) {
  return *this /= other;
}

Path &Path::operator+=(Path const &other) {
  m_path = textOf(*this) + textOf(other);
  return *this;
}
Path &Path::concat(Path const &other) {
  return *this += other;
}

Path &Path::append_path(Path const &other) {
  return *this = resolve_path(other);
}

Path &Path::normalize() {
  std::string const &text = textOf(*this);
  if (text.empty()) return *this;
  bool const clean = text.find("\\\\") == std::string::npos && text.find("\\.") == std::string::npos &&
                     text.find(".\\") == std::string::npos && text.find('/') == std::string::npos &&
                     text.back() != '\\' && text.back() != '.';
  if (clean) return *this;

  PathLayout const layout = layoutOf(text);
  std::vector<std::string_view> kept;
  std::size_t climbs = 0;
  for (std::string_view const element : elementsOf(text, layout.rootEnd)) {
    if (element == ".") continue;
    if (element != "..") {
      kept.push_back(element);
    } else if (kept.empty()) {
      ++climbs;
    } else {
      kept.pop_back();
    }
  }
  std::string normal = text.substr(0, layout.rootEnd);
  for (; climbs > 0; --climbs)
    appendElement(normal, "..");
  for (std::string_view const element : kept)
    appendElement(normal, element);
  m_path = std::move(normal);
  return *this;
}

Path &Path::remove_filename() {
  std::string const &text = textOf(*this);
  std::size_t const rootEnd = layoutOf(text).rootEnd;
  std::vector<std::string_view> const elements = elementsOf(text, rootEnd);
  if (elements.size() + (rootEnd > 0 ? 1 : 0) <= 1) return *this;
  std::size_t const keep =
      elements.size() >= 2 ? static_cast<std::size_t>(elements[elements.size() - 2].data() - text.data()) +
                                 elements[elements.size() - 2].size()
                           : rootEnd;
  m_path = text.substr(0, keep);
  return *this;
}

Path &Path::remove_extension() {
  return replace_extension(Path());
}

Path &Path::replace_extension(Path const &extension) {
  std::string const &text = textOf(*this);
  if (!extension.empty()) {
    std::string_view const dotted = textOf(extension);
    std::string name(stemOf(text));
    if (dotted.front() != '.') name += '.';
    name.append(dotted);
    std::string replaced = textOf(parent_path());
    appendElement(replaced, name);
    m_path = std::move(replaced);
    return *this;
  }
  for (std::size_t at = text.size(); at-- > 0;) {
    if (isSeparator(text[at])) break;
    if (text[at] == '.') {
      m_path = storedFromUtf8(text.data(), at);
      break;
    }
  }
  return *this;
}

Path Path::resolve_path(Path const &relative) const {
  std::string const &base = textOf(*this);
  std::string const &other = textOf(relative);
  PathLayout const baseLayout = layoutOf(base);
  PathLayout const otherLayout = layoutOf(other);
  bool const otherRootName = otherLayout.rootNameEnd > 0;
  bool const otherRootDirectory = otherLayout.rootEnd > otherLayout.rootNameEnd;
  std::string resolved;
  if (otherRootName && otherRootDirectory) {
    resolved = other;
  } else if (otherRootName) {
    std::string_view const baseRootName(base.data(), baseLayout.rootNameEnd);
    std::string_view const otherRootNameText(other.data(), otherLayout.rootNameEnd);
    if (baseRootName.empty() || Internal::compareUpperCase(baseRootName, otherRootNameText) == 0) {
      resolved = otherRootNameText;
      appendElement(resolved, std::string_view(base).substr(baseRootName.size(),
                                                            baseLayout.rootEnd - baseRootName.size()));
      appendElement(resolved, std::string_view(base).substr(baseLayout.rootEnd));
      appendElement(resolved, std::string_view(other).substr(otherLayout.rootEnd));
    } else {
      resolved = other;
    }
  } else if (otherRootDirectory) {
    resolved = base.substr(0, baseLayout.rootNameEnd);
    appendElement(resolved, other);
  } else {
    resolved = base;
    appendElement(resolved, other);
  }
  return storedPath(std::move(resolved)).normalize();
}

Path Path::get_valid_automount_path() const {
  return *this;
}

Path Path::make_relative_path(Path const &path, Path const &base, bool *made, int maxUp) {
  if (made) *made = false;
  Path unchanged(path);
  unchanged.normalize();
  std::string const &pathText = textOf(path);
  std::string const &baseText = textOf(base);
  std::size_t const pathRoot = layoutOf(pathText).rootEnd;
  std::size_t const baseRoot = layoutOf(baseText).rootEnd;
  if (pathRoot == 0 || baseRoot == 0 || !path.is_absolute() || !base.is_absolute() ||
      Internal::compareUpperCase(std::string_view(pathText).substr(0, pathRoot),
                                 std::string_view(baseText).substr(0, baseRoot)) != 0) {
    return unchanged;
  }
  std::vector<std::string_view> const pathElements = elementsOf(pathText, pathRoot);
  std::vector<std::string_view> const baseElements = elementsOf(baseText, baseRoot);
  std::size_t common = 0;
  while (common < pathElements.size() && common < baseElements.size() &&
         Internal::compareUpperCase(pathElements[common], baseElements[common]) == 0) {
    ++common;
  }
  std::size_t const climbs = baseElements.size() - common;
  if (common == 0 || maxUp < 0 || climbs > static_cast<std::size_t>(maxUp)) return unchanged;

  std::string relative;
  for (std::size_t i = 0; i < climbs; ++i)
    appendElement(relative, "..");
  for (std::size_t i = common; i < pathElements.size(); ++i)
    appendElement(relative, pathElements[i]);
  if (made) *made = true;
  return storedPath(std::move(relative)).normalize();
}

bool Path::empty() const noexcept {
  return m_path.empty();
}
bool Path::is_absolute() const {
  return has_root_directory();
}
bool Path::is_relative() const {
  return !is_absolute();
}

bool Path::equal_filenames(Path const &other) const {
  return compare_filenames(*this, other) == 0;
}
bool Path::equal_filenames(Path const &a, Path const &b) {
  return compare_filenames(a, b) == 0;
}
int Path::compare_filenames(Path const &a, Path const &b) {
  return Internal::compareUpperCase(textOf(a), textOf(b));
}

bool Path::starts_with(Path const &prefix) const {
  return Internal::startsWithUpperCase(textOf(*this), textOf(prefix));
}

bool Path::is_separator(int c) noexcept {
  return c == '/' || c == '\\';
}
bool Path::ends_with_separator() const noexcept {
  return !m_path.empty() && isSeparator(textOf(*this).back());
}
bool Path::ends_with_separator(VxStringView text) noexcept {
  return text.size() > 0 && isSeparator(text.data()[text.size() - 1]);
}
VxString Path::add_separator(VxString const &text) {
  return ends_with_separator(text) ? text : text + "\\";
}

}  // namespace Experimental

}  // namespace Tarvex::VantraCore
