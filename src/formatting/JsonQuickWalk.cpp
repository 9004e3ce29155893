#include <formatting/JsonDocument.h>
#include <formatting/JsonQuickNumber.h>
#include <formatting/JsonQuickWalk.h>

#include <simdjson.h>

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <thread>

namespace Tarvex::VantraCore::Internal {
namespace {

namespace numbers = simdjson::builtin::numberparsing;

// Structural positions walked between reports: 256 KiB of them.
constexpr std::size_t reportStep = std::size_t(1) << 16;

// Positions the walk keeps between itself and those not yet found.
constexpr std::size_t followMargin = jsonReaderMaxDepth + 128;

// A number token this short cannot hold an integer beyond the tape's 48-bit payload, so its value
// is known to take one word before it is parsed.
constexpr std::size_t shortNumberSpan = 14;

// Signs are random in measured data: neither test branches on one.
bool startsNumber(std::uint8_t c) { return (static_cast<unsigned>(c - '0') < 10) | (c == '-'); }

// Digits then a point or an exponent: a double, whatever its length. Reads 9 bytes; a number with
// more than 7 whole digits is not taken for one.
bool looksFractional(std::uint8_t const *p) {
  p += *p == '-';
  std::uint64_t chunk;
  std::memcpy(&chunk, p, sizeof chunk);
  std::uint64_t const digits = chunk - 0x3030303030303030;
  std::uint64_t const notDigit = (digits | (digits + 0x7676767676767676)) & 0x8080808080808080;
  if (notDigit == 0) return false;
  auto const after = static_cast<std::uint8_t>(chunk >> (__builtin_ctzll(notDigit) & ~7));
  return (after == '.') | ((after | 0x20) == 'e');
}

class Walk {
 public:
  Walk(QuickWalkInput const &in, QuickWalkOutput &out)
      : m_in(in),
        m_out(out),
        m_tape(out.tape),
        m_count(in.progress == nullptr ? in.structuralCount : 0),
        m_limit(m_count),
        m_final(in.progress == nullptr) {
    m_open.reset(new std::size_t[jsonReaderMaxDepth]);
  }

  bool run() {
    bool const reporting = m_in.releaseWalked || m_in.walked != nullptr;
    std::size_t reportAt = reporting ? reportStep : std::numeric_limits<std::size_t>::max();
    std::size_t pos = 0;
    *m_tape++ = 0;  // the root's opening word, written last
  value:
    if (pos >= m_limit && !m_final && !follow(pos)) return false;
    if (pos >= m_count) return false;
    if (pos >= reportAt) {
      report(pos);
      reportAt += reportStep;
    }
    switch (m_in.text[m_in.structurals[pos]]) {
      case '[':
      case '{': {
        bool const array = m_in.text[m_in.structurals[pos]] == '[';
        if (!open(array ? JsonTape::array : JsonTape::object)) return false;
        if (++pos < m_count && m_in.text[m_in.structurals[pos]] == (array ? ']' : '}')) {
          ++pos;
          close();
          goto after;
        }
        if (array) goto value;
        goto key;
      }
      case '"':
        if (!string(pos)) return false;
        break;
      case 't':
        if (!atom(pos, "true", JsonTape::trueValue)) return false;
        break;
      case 'f':
        if (!atom(pos, "false", JsonTape::falseValue)) return false;
        break;
      case 'n':
        if (!atom(pos, "null", JsonTape::null)) return false;
        break;
      case '-':
      case '0':
      case '1':
      case '2':
      case '3':
      case '4':
      case '5':
      case '6':
      case '7':
      case '8':
      case '9':
        if (!number(pos)) return false;
        ++pos;
        // A run of numbers in an array, the bulk of a measurement document, past the general dispatch.
        if (m_depth > 0 && inArray()) pos = numberRun(pos, std::min(m_limit, reportAt));
        goto after;
      default:
        return false;
    }
    ++pos;
  after:
    if (m_depth == 0) {
      if (pos != m_count) return false;
      finish();
      return true;
    }
    if (pos >= m_count) return false;
    switch (m_in.text[m_in.structurals[pos++]]) {
      case ',':
        if (inArray()) goto value;
        goto key;
      case ']':
        if (!inArray()) return false;
        close();
        goto after;
      case '}':
        if (inArray()) return false;
        close();
        goto after;
      default:
        return false;
    }
  key:
    if (pos >= m_count || m_in.text[m_in.structurals[pos]] != '"' || !string(pos)) return false;
    if (++pos >= m_count || m_in.text[m_in.structurals[pos]] != ':') return false;
    ++pos;
    goto value;
  }

 private:
  // Where the token at `pos` ends at the latest: the next structural character, or the text's end.
  std::size_t tokenEnd(std::size_t pos) const {
    return pos + 1 < m_count ? m_in.structurals[pos + 1] : m_in.length;
  }

  // Waits until the positions are found well past `pos`, or all of them are; false when the search
  // refused the text. Between two values the walk reads at most a closing character per level, a key,
  // a colon and its look-ahead, all within followMargin.
  bool follow(std::size_t pos) {
    for (;;) {
      StructuralProgress::State const state = m_in.progress->state.load(std::memory_order_acquire);
      std::size_t const published = m_in.progress->published.load(std::memory_order_acquire);
      if (state == StructuralProgress::refused) return false;
      if (state == StructuralProgress::complete) {
        m_count = m_limit = published;
        m_final = true;
        return true;
      }
      if (published >= pos + 2 * followMargin) {
        m_count = published;
        m_limit = published - followMargin;
        return true;
      }
      std::this_thread::yield();
    }
  }
  // The token at `pos` where a parse may read quickReadAhead bytes past it: in place, or a copy of
  // the rest of the text followed by a space (a root scalar needs something to end it) and zeros.
  std::uint8_t const *readable(std::size_t pos) {
    std::size_t const start = m_in.structurals[pos];
    if (m_depth > 0 && tokenEnd(pos) + quickReadAhead <= m_in.capacity) return m_in.text + start;
    m_copy.assign(reinterpret_cast<char const *>(m_in.text) + start, m_in.length - start);
    m_copy.push_back(' ');
    m_copy.append(quickReadAhead, '\0');
    return reinterpret_cast<std::uint8_t const *>(m_copy.data());
  }

  // The numbers of "n,n,..." from `pos` (at the first comma) on, before `stop`, that can be left
  // pending: each a word, in a loop that keeps everything in registers. Returns where it stopped.
  std::size_t numberRun(std::size_t pos, std::size_t stop) {
    std::uint8_t const *const text = m_in.text;
    std::uint32_t const *const at = m_in.structurals;
    std::size_t const capacity = m_in.capacity;
    std::size_t const count = m_count;
    std::uint64_t *tape = m_tape;
    while (pos + 2 < stop) {
      std::size_t const start = at[pos + 1];
      std::size_t const end = at[pos + 2];
      // One branch for the three tests, each of which holds all through a run.
      if (!((text[at[pos]] == ',') & startsNumber(text[start]) & (end + quickReadAhead <= capacity)) ||
          (end - start > shortNumberSpan && !looksFractional(text + start))) {
        break;
      }
      // The text lies scattered through a stream too large for the cache.
      __builtin_prefetch(text + at[std::min(pos + 64, count)]);
      *tape++ = JsonTape::word(JsonTape::pendingNumber, start);
      pos += 2;
    }
    m_tape = tape;
    return pos;
  }

  bool open(JsonTape::Kind kind) {
    if (m_depth == jsonReaderMaxDepth) return false;
    m_open[m_depth++] = static_cast<std::size_t>(m_tape - m_out.tape);
    *m_tape++ = JsonTape::word(kind, 0);
    return true;
  }
  // The opening word learns where its container ends; the closing one points back to it.
  void close() {
    std::size_t const opening = m_open[--m_depth];
    bool const array = JsonTape::kindOf(m_out.tape[opening]) == JsonTape::array;
    *m_tape++ = JsonTape::word(array ? JsonTape::arrayEnd : JsonTape::objectEnd, opening);
    // Number parsers may be reading the opening word meanwhile.
    __atomic_fetch_or(&m_out.tape[opening], static_cast<std::uint64_t>(m_tape - m_out.tape), __ATOMIC_RELAXED);
  }
  bool inArray() const { return JsonTape::kindOf(m_out.tape[m_open[m_depth - 1]]) == JsonTape::array; }

  bool atom(std::size_t pos, char const *spelling, JsonTape::Kind kind) {
    std::size_t const start = m_in.structurals[pos];
    std::size_t const size = std::strlen(spelling);
    if (m_in.length - start < size || std::memcmp(m_in.text + start, spelling, size) != 0) return false;
    if (start + size != m_in.length && !endsScalar(m_in.text[start + size])) return false;
    *m_tape++ = JsonTape::word(kind, 0);
    return true;
  }

  bool string(std::size_t pos) {
    std::uint8_t const *const from = readable(pos) + 1;
    std::uint8_t *const length = m_out.strings + m_out.stringsLength;
    std::uint8_t *const to = length + sizeof(std::uint32_t);
    std::uint8_t *const end = m_in.unescape(m_in.parser, from, to);
    if (end == nullptr) return false;
    auto const size = static_cast<std::uint32_t>(end - to);
    std::memcpy(length, &size, sizeof size);
    *end = 0;
    *m_tape++ = JsonTape::word(JsonTape::string, m_out.stringsLength);
    m_out.stringsLength += sizeof size + size + 1;
    return true;
  }

  [[gnu::always_inline]] bool number(std::size_t pos) {
    std::size_t const start = m_in.structurals[pos];
    std::size_t const end = tokenEnd(pos);
    bool const inPlace = m_depth > 0 && end + quickReadAhead <= m_in.capacity;
    if (inPlace && (end - start <= shortNumberSpan || looksFractional(m_in.text + start))) {
      *m_tape++ = JsonTape::word(JsonTape::pendingNumber, start);
      return true;
    }
    JsonTape::NumberWriter writer{m_tape, m_out.wide};
    if (numbers::parse_number(readable(pos), writer) != simdjson::SUCCESS) return false;
    m_tape = writer.out;
    return true;
  }

  // Gives back the whole pages of positions before `pos`, which the walk never looks back at, and
  // lets the number parsers at the tape written so far.
  void report(std::size_t pos) {
    if (m_in.releaseWalked) {
      constexpr std::uintptr_t page = 4096;
      auto const from = (reinterpret_cast<std::uintptr_t>(m_in.structurals) + page - 1) & ~(page - 1);
      auto const to = reinterpret_cast<std::uintptr_t>(m_in.structurals + pos - 1) & ~(page - 1);
      if (to > from) madvise(reinterpret_cast<void *>(from), to - from, MADV_DONTNEED);
    }
    if (m_in.walked != nullptr)
      m_in.walked->store(static_cast<std::size_t>(m_tape - m_out.tape), std::memory_order_release);
  }

  void finish() {
    *m_tape++ = JsonTape::word(JsonTape::root, 0);
    m_out.tapeLength = static_cast<std::size_t>(m_tape - m_out.tape);
    // Number parsers may be reading the root's word already.
    __atomic_store_n(&m_out.tape[0], JsonTape::word(JsonTape::root, m_out.tapeLength), __ATOMIC_RELAXED);
  }

  QuickWalkInput const &m_in;
  QuickWalkOutput &m_out;
  std::uint64_t *m_tape;
  // Positions known, and the one before which the walk need not ask for more.
  std::size_t m_count;
  std::size_t m_limit;
  bool m_final;
  std::unique_ptr<std::size_t[]> m_open;
  std::size_t m_depth = 0;
  std::string m_copy;
};

// Takes a pending number's value when it fits one word, which the walk made sure of. A long number's
// double is appended by a copy of the writer, hence the pointer; it is finite, so it fits.
struct OneWord {
  std::uint64_t *word;
  bool fits = true;
  void append_s64(std::int64_t number) {
    fits = JsonTape::fitsSmall(number);
    *word = JsonTape::smallWord(number);
  }
  void append_u64(std::uint64_t number) {
    fits = number <= std::uint64_t(JsonTape::smallIntegerMax);
    *word = JsonTape::smallWord(static_cast<std::int64_t>(number));
  }
  void append_double(double number) {
    *word = JsonTape::doubleWord(number);
    fits = !JsonTape::boxed(*word);
  }
  void skip_double() {}
};

}  // namespace

bool walkJsonStructure(QuickWalkInput const &in, QuickWalkOutput &out) { return Walk(in, out).run(); }

bool parsePendingNumbers(std::uint8_t const *text, std::uint64_t *tape, std::size_t length) {
  constexpr std::uint64_t pending = JsonTape::word(JsonTape::pendingNumber, 0) >> JsonTape::kindShift;
  for (std::size_t at = 0; at < length; ++at) {
    std::uint64_t const word = __atomic_load_n(&tape[at], __ATOMIC_RELAXED);
    if ((word >> JsonTape::kindShift) != pending) continue;
    std::uint64_t const offset = word & JsonTape::payloadMask;
    std::uint8_t const *const start = text + offset;
    if (offset >= quickNumberLookBehind && quickNumberWord(start, tape[at])) continue;
    OneWord number{tape + at};
    if (numbers::parse_number(start, number) != simdjson::SUCCESS ||
        !number.fits) {
      return false;
    }
  }
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
