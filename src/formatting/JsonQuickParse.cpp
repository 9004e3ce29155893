#include <formatting/JsonDocument.h>
#include <formatting/JsonQuickWalk.h>

#include <variant/BulkAllocation.h>

#include <simdjson.h>

#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

// The quick parse: a SIMD pass finds the text's structural characters, a walk over them writes the
// tape, and the numbers it leaves pending are parsed beside it by helper threads for a large text, or
// after it for a small one. It only says yes or no; a refused text goes to the library's parse, which
// words the refusal.
namespace Tarvex::VantraCore::Internal {
namespace {

namespace dom = simdjson::dom;

// Small texts reuse one set of buffers per thread: fresh ones would first fault in as many pages as
// the text takes, each time. A large text gets buffers of its own, released with its document: a host
// thread that once read a large document must not hold on to hundreds of megabytes.
constexpr std::size_t reusedCapacity = std::size_t(1) << 20;

// Threads that parse numbers beside the walk of a large text, at most.
constexpr unsigned maxNumberHelpers = 3;

// A block of T that grows to what a text needs; mapped, and advised for huge pages, when large.
template <class T>
class Room {
 public:
  Room() = default;
  Room(Room const &) = delete;
  Room &operator=(Room const &) = delete;
  ~Room() { releaseBulk(m_memory); }

  T *atLeast(std::size_t count) {
    if (m_count < count) {
      releaseBulk(m_memory);
      m_memory = nullptr;
      m_count = 0;
      m_memory = allocateBulk(count * sizeof(T)).memory;
      m_count = count;
    }
    return static_cast<T *>(m_memory);
  }

 private:
  void *m_memory = nullptr;
  std::size_t m_count = 0;
};

struct ParseBuffers {
  std::unique_ptr<dom::parser> parser = std::make_unique<dom::parser>();
  Room<std::uint64_t> tape;
  Room<std::uint8_t> strings;
  std::vector<std::uint64_t> wide;
  bool busy = false;
};

// The buffers for one text: the thread's own when the text is small and they are free, else fresh
// ones. The owner gives the thread's buffers back when the document goes.
std::shared_ptr<ParseBuffers> buffersFor(std::size_t size) {
  thread_local ParseBuffers reused;
  if (size <= reusedCapacity && !reused.busy) {
    reused.busy = true;
    return std::shared_ptr<ParseBuffers>(&reused, [](ParseBuffers *buffers) { buffers->busy = false; });
  }
  return std::make_shared<ParseBuffers>();
}

// Huge pages for a large text's structural positions, where the kernel grants them.
void adviseHugePages(void const *start, std::size_t bytes) {
  constexpr std::uintptr_t page = 4096;
  auto const first = (reinterpret_cast<std::uintptr_t>(start) + page - 1) & ~(page - 1);
  auto const last = (reinterpret_cast<std::uintptr_t>(start) + bytes) & ~(page - 1);
  if (last > first) madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
}

// Finds the structural characters; false for a text that is not UTF-8, holds an unclosed string or a
// control character in one, or is too large for the parser.
bool findStructurals(dom::parser &parser, std::string_view text, bool large) {
  if (text.empty()) return false;
  if ((!parser.implementation || parser.capacity() < text.size()) &&
      parser.allocate(text.size(), jsonReaderMaxDepth) != simdjson::SUCCESS) {
    return false;
  }
  if (large) adviseHugePages(parser.implementation->structural_indexes.get(), text.size() * sizeof(std::uint32_t));
  auto const *const bytes = reinterpret_cast<std::uint8_t const *>(text.data());
  return parser.implementation->stage1(bytes, text.size(), simdjson::stage1_mode::regular) == simdjson::SUCCESS;
}

std::uint8_t *unescape(void const *parser, std::uint8_t const *from, std::uint8_t *to) {
  return static_cast<dom::parser const *>(parser)->implementation->parse_string(from, to);
}

// The pending numbers of a tape, parsed a slice at a time by helper threads while the walk goes on,
// and by the walking thread too once the walk is done.
class NumberParsers {
 public:
  NumberParsers(std::uint8_t const *text, std::uint64_t *tape, unsigned helpers) : m_text(text), m_tape(tape) {
    try {
      for (unsigned k = 0; k < helpers; ++k)
        m_helpers.emplace_back([this] { parse(); });
    } catch (std::system_error const &) {
      // fewer helpers, or none: the walking thread parses what they would have
    }
  }
  NumberParsers(NumberParsers const &) = delete;
  NumberParsers &operator=(NumberParsers const &) = delete;
  ~NumberParsers() { finish(0); }

  std::atomic<std::size_t> *walked() { return m_helpers.empty() ? nullptr : &m_walked; }
  // The walk ended with `length` words of tape, or with none when it failed; true when every number
  // of the tape parsed.
  bool finish(std::size_t length) {
    if (m_finished) return !m_failed.load();
    m_finished = true;
    m_walked.store(length, std::memory_order_release);
    m_done.store(true, std::memory_order_release);
    parse();
    for (std::thread &helper : m_helpers)
      helper.join();
    return !m_failed.load();
  }

 private:
  static constexpr std::size_t slice = std::size_t(1) << 14;

  // Takes slices in turn, each once the walk has passed it, until the tape ends.
  void parse() {
    for (;;) {
      std::size_t const from = m_next.fetch_add(slice);
      std::size_t end;
      for (;;) {
        bool const done = m_done.load(std::memory_order_acquire);
        end = m_walked.load(std::memory_order_acquire);
        if (end >= from + slice || done) break;
        std::this_thread::yield();
      }
      if (from >= end) return;
      if (!parsePendingNumbers(m_text, m_tape + from, std::min(end, from + slice) - from)) m_failed.store(true);
    }
  }

  std::uint8_t const *m_text;
  std::uint64_t *m_tape;
  std::atomic<std::size_t> m_walked{0};
  std::atomic<std::size_t> m_next{0};
  std::atomic<bool> m_done{false};
  std::atomic<bool> m_failed{false};
  bool m_finished = false;
  std::vector<std::thread> m_helpers;
};

}  // namespace

bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document) {
  std::shared_ptr<ParseBuffers> const buffers = buffersFor(text.size());
  bool const large = text.size() > reusedCapacity;
  if (!findStructurals(*buffers->parser, text, large)) return false;
  auto const &structure = *buffers->parser->implementation;
  std::size_t const count = structure.n_structural_indexes;

  QuickWalkOutput out;
  out.tape = buffers->tape.atLeast(quickTapeRoom(count));
  out.strings = buffers->strings.atLeast(quickStringRoom(text.size(), count));
  buffers->wide.clear();
  out.wide = &buffers->wide;
  auto const *const bytes = reinterpret_cast<std::uint8_t const *>(text.data());
  unsigned const cores = std::max(1u, std::thread::hardware_concurrency());
  unsigned const helpers = large ? std::min(maxNumberHelpers, cores - 1) : 0;
  NumberParsers numbers(bytes, out.tape, helpers);

  QuickWalkInput const in{bytes,
                          text.size(),
                          capacity,
                          structure.structural_indexes.get(),
                          count,
                          &unescape,
                          buffers->parser.get(),
                          large,
                          numbers.walked()};
  bool const walked = walkJsonStructure(in, out);
  // The structural positions are done with; a large text's go while the numbers are parsed.
  if (walked && large) buffers->parser.reset();
  if (!numbers.finish(walked ? out.tapeLength : 0) || !walked) return false;

  document.tape = out.tape;
  document.strings = out.strings;
  document.wide = buffers->wide.data();
  document.owner = buffers;
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
