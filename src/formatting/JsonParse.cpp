#include <formatting/JsonDocument.h>
#include <text/StringTailRoom.h>

#include <algorithm>
#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>

// Which parse reads a text: the quick one, else the library's, under one rule of what is JSON.
namespace Tarvex::VantraCore::Internal {
namespace {

// The library stops at a NUL byte as at the end of the text; the quick parse, like the grammar,
// refuses one after the value. Any NUL in a text that the library took stands there.
[[noreturn]] void refuseTrailingNul(std::string_view text, std::size_t at) {
  std::size_t const lineStart = text.rfind('\n', at) + 1;  // 0 when there is no earlier line
  std::size_t const line = 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + at, '\n'));
  throw std::invalid_argument("parse error at line " + std::to_string(line) + ", column " +
                              std::to_string(at - lineStart + 1) +
                              ": syntax error while parsing value - unexpected NUL byte after the value; "
                              "expected end of input");
}

JsonDocument parseText(std::string_view text, std::size_t capacity) {
  JsonDocument document;
  if (parseJsonDocumentQuickly(text, capacity, document)) return document;
  document = parseJsonDocumentByLibrary(text);
  std::size_t const nul = text.find('\0');
  if (nul != std::string_view::npos) refuseTrailingNul(text, nul);
  return document;
}

// The whole stream, leaving room behind the text for the quick parse. A stream that can tell its size
// is read into one allocation of that size: growing a string copies it, and for a moment holds both
// copies, which for a large document is the peak of the whole reading.
std::string readAll(std::istream &in) {
  std::streambuf &source = *in.rdbuf();
  std::string text;
  std::streamoff const start = source.pubseekoff(0, std::ios::cur, std::ios::in);
  std::streamoff const end = start < 0 ? std::streamoff(-1) : std::streamoff(source.pubseekoff(0, std::ios::end, std::ios::in));
  if (end >= start && source.pubseekoff(start, std::ios::beg, std::ios::in) == start) {
    text.reserve(static_cast<std::size_t>(end - start) + stringTailRoom);
  }
  std::size_t size = 0;
  std::size_t block = 1 << 16;
  for (;;) {
    // Whatever room the string has, and at least a block more.
    text.resize(std::max(text.capacity(), size + block));
    std::size_t const wanted = text.size() - size;
    auto const read = static_cast<std::size_t>(source.sgetn(&text[size], static_cast<std::streamsize>(wanted)));
    size += read;
    if (read < wanted) break;
    block = std::min<std::size_t>(size, std::size_t(1) << 26);
  }
  text.resize(size);
  in.setstate(std::ios::eofbit);
  return text;
}

}  // namespace

JsonDocument parseJsonDocument(std::istream &in) {
  if (!in.good()) throw std::invalid_argument("stream error");
  std::string const text = readAll(in);
  return parseText(text, text.capacity());
}

JsonDocument parseJsonDocument(VxString const &text) {
  return parseText(std::string_view(text.data(), text.length()), text.length() + readableBehindText(text.length()));
}

JsonDocument parseJsonDocument(VxStringView text) {
  return parseText(std::string_view(text.data(), text.length()), text.length());
}

}  // namespace Tarvex::VantraCore::Internal
