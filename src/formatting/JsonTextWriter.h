#pragma once

#include <VantraCore/JsonFormatter.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvex::VantraCore::Internal {

// JSON text appended straight into one growing buffer, in the layout of the JSON library's printer:
// compact for a negative indent, else one member or element per line. Numbers and strings are printed
// here, not by the library, for speed and for the exact texts documents are compared by.
// A growing block of text that hands out room to write into, so numbers print in place.
class TextBuffer {
 public:
  TextBuffer() = default;
  TextBuffer(TextBuffer const &) = delete;
  TextBuffer &operator=(TextBuffer const &) = delete;
  ~TextBuffer();

  std::string_view view() const noexcept { return std::string_view(m_text, m_size); }
  // At least `bytes` writable bytes behind the text; advance() takes what was written.
  char *room(std::size_t bytes) {
    if (m_capacity - m_size < bytes) grow(bytes);
    return m_text + m_size;
  }
  void advance(std::size_t bytes) noexcept { m_size += bytes; }
  void push_back(char c) {
    *room(1) = c;
    ++m_size;
  }
  void append(std::string_view text) {
    std::memcpy(room(text.size()), text.data(), text.size());
    m_size += text.size();
  }
  void append(std::size_t count, char c) {
    std::memset(room(count), c, count);
    m_size += count;
  }
  void reserve(std::size_t bytes) { room(bytes); }
  // From now on, the text written so far goes to `sink` whenever the block is full, instead of the
  // block growing; flush() passes on the rest.
  void passOnTo(std::ostream &sink, std::size_t blockBytes) {
    m_sink = &sink;
    reserve(blockBytes);
  }
  void flush();

 private:
  // A text of 64 MiB and more is mapped on its own and grows by remapping, which moves pages instead
  // of copying them: a text of hundreds of megabytes is never resident twice over while it grows.
  // Below that, heap blocks that the allocator hands out again fault in no fresh pages.
  static constexpr std::size_t mappedFrom = std::size_t(64) << 20;
  void grow(std::size_t bytes);

  char *m_text = nullptr;
  std::ostream *m_sink = nullptr;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

class JsonTextWriter {
 public:
  explicit JsonTextWriter(int indent, JsonNumberText numbers = JsonNumberText::fifteenDigits)
      : m_indent(indent < 0 ? -1 : indent), m_shortest(numbers == JsonNumberText::shortestRoundTrip) {}

  std::string_view text() const noexcept { return m_text.view(); }
  void reserve(std::size_t bytes) { m_text.reserve(bytes); }
  // The text goes to `sink` a block at a time, the rest at flush(): text() then holds no more than
  // the current block.
  void passOnTo(std::ostream &sink, std::size_t blockBytes) { m_text.passOnTo(sink, blockBytes); }
  void flush() { m_text.flush(); }

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }
  // The name of the next member; its value follows.
  void key(std::string_view name);

  void null() { literal("null"); }
  void boolean(bool value) { literal(value ? "true" : "false"); }
  // Non-finite numbers are written as null.
  void number(double value);
  void number(float value);
  void integer(std::int64_t value);
  void unsignedInteger(std::uint64_t value);
  void string(std::string_view value);

 private:
  // The comma and line break that lead a member or element, where one is due.
  void beforeValue() { valueRoom(0); }
  // Room for a value of at most `bytes` bytes behind the separator that leads it, which is written
  // here: one reservation per number, however deep the indentation.
  char *valueRoom(std::size_t bytes) {
    if (m_afterKey || m_empty.empty()) {
      m_afterKey = false;
      return m_text.room(bytes);
    }
    std::size_t const indent = m_indent < 0 ? 0 : m_empty.size() * static_cast<std::size_t>(m_indent);
    char *const start = m_text.room(2 + indent + bytes);
    char *out = start;
    if (!m_empty.back()) *out++ = ',';
    m_empty.back() = false;
    if (m_indent >= 0) {
      *out++ = '\n';
      out = std::fill_n(out, indent, ' ');
    }
    m_text.advance(static_cast<std::size_t>(out - start));
    return out;
  }
  // A new line indented to the open containers; nothing in compact text.
  void lineBreak();
  template <class Integer>
  void wholeNumber(Integer value);
  void literal(std::string_view text) {
    beforeValue();
    m_text.append(text);
  }
  void open(char bracket) {
    beforeValue();
    m_text.push_back(bracket);
    m_empty.push_back(true);
  }
  void close(char bracket);
  void appendQuoted(std::string_view value);

  template <class Floating>
  void shortestNumber(Floating value);

  TextBuffer m_text;
  int m_indent;
  bool m_shortest;
  // Per open container: whether nothing has been written into it yet.
  std::vector<char> m_empty;
  bool m_afterKey = false;
};

}  // namespace Tarvex::VantraCore::Internal
