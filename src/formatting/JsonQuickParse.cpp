#include <formatting/JsonDocument.h>
#include <formatting/JsonQuickWalk.h>

#include <variant/BulkAllocation.h>

#include <simdjson.h>

#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>
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

// A text this large is searched for its structural characters a slice at a time on a helper thread,
// the walk following behind; the helper then parses numbers.
constexpr std::size_t followedFrom = std::size_t(4) << 20;
constexpr std::size_t searchSlice = std::size_t(1) << 20;
// Positions a search may write past those it found.
constexpr std::size_t searchSlack = 128;

// A block of T that grows to what a text needs; mapped, and advised for huge pages, when large.
template <class T>
class Room {
 public:
  Room() = default;
  Room(Room const &) = delete;
  Room &operator=(Room const &) = delete;
  ~Room() { releaseBulk(m_memory); }

  void release() {
    releaseBulk(m_memory);
    m_memory = nullptr;
    m_count = 0;
  }
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
  Room<std::uint32_t> positions;  // of a followed text
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

// A parser whose search takes a text of `size` bytes; false when there is none that large.
bool readyFor(dom::parser &parser, std::size_t size) {
  return (parser.implementation && parser.capacity() >= size) ||
         parser.allocate(size, jsonReaderMaxDepth) == simdjson::SUCCESS;
}

// Finds the structural characters of bytes [0, size) into the parser's position list; an error for a
// text that is not UTF-8, or holds an unclosed string or a control character in one.
simdjson::error_code search(dom::parser &parser, std::uint8_t const *bytes, std::size_t size) {
  return parser.implementation->stage1(bytes, size, simdjson::stage1_mode::regular);
}

// Finds the structural positions of a text into `all` a slice at a time, publishing each slice's.
// A slice ends just after a comma, which leaves the search no state to carry over, unless the comma
// lies in a string: then the slice's search ends inside one and says so, and the rest of the text is
// searched as one slice. The parser's search writes where its position list points, so it is pointed
// into `all` for each slice; what a search writes past its own positions, the next one overwrites.
void searchInSlices(dom::parser &parser, std::uint8_t const *bytes, std::size_t size, std::uint32_t *all,
                    StructuralProgress &progress) {
  auto &searcher = *parser.implementation;
  std::uint32_t *const own = searcher.structural_indexes.release();
  std::size_t from = 0, found = 0;
  bool sliced = true;
  auto state = StructuralProgress::complete;
  while (from < size) {
    std::size_t end = size;
    if (sliced && size - from > searchSlice) {
      std::size_t const least = from + searchSlice;
      auto const *const comma = static_cast<std::uint8_t const *>(std::memchr(bytes + least, ',', size - least));
      if (comma != nullptr) end = static_cast<std::size_t>(comma - bytes) + 1;
    }
    searcher.structural_indexes.reset(all + found);
    simdjson::error_code const result = search(parser, bytes + from, end - from);
    (void)searcher.structural_indexes.release();
    if (result == simdjson::UNCLOSED_STRING && end < size) {
      sliced = false;
      continue;
    }
    if (result != simdjson::SUCCESS) {
      state = StructuralProgress::refused;
      break;
    }
    std::uint32_t *const slice = all + found;
    std::size_t const count = searcher.n_structural_indexes;
    auto const offset = static_cast<std::uint32_t>(from);
    for (std::size_t k = 0; k < count; ++k)
      slice[k] += offset;
    found += count;
    progress.published.store(found, std::memory_order_release);
    from = end;
  }
  searcher.structural_indexes.reset(own);
  progress.state.store(state, std::memory_order_release);
}

std::uint8_t *unescape(void const *parser, std::uint8_t const *from, std::uint8_t *to) {
  return static_cast<dom::parser const *>(parser)->implementation->parse_string(from, to);
}

// The pending numbers of a tape, parsed a slice at a time by helper threads while the walk goes on,
// and by the walking thread too once the walk is done.
class NumberParsers {
 public:
  // The first helper runs `first` before it parses numbers.
  NumberParsers(std::uint8_t const *text, std::uint64_t *tape, unsigned helpers,
                std::function<void()> const &first)
      : m_text(text), m_tape(tape) {
    try {
      for (unsigned k = 0; k < helpers; ++k) {
        m_helpers.emplace_back([this, task = k == 0 ? first : std::function<void()>()] {
          if (task) task();
          parse();
        });
      }
    } catch (std::exception const &) {
      // No thread or no memory for one: fewer helpers, or none, and the walking thread does their work.
    }
  }
  NumberParsers(NumberParsers const &) = delete;
  NumberParsers &operator=(NumberParsers const &) = delete;
  ~NumberParsers() { finish(0); }

  std::atomic<std::size_t> *walked() { return m_helpers.empty() ? nullptr : &m_walked; }
  bool started() const { return !m_helpers.empty(); }
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
  if (text.empty()) return false;
  std::shared_ptr<ParseBuffers> const buffers = buffersFor(text.size());
  bool const large = text.size() > reusedCapacity;
  dom::parser &parser = *buffers->parser;
  if (!readyFor(parser, text.size())) return false;
  auto const *const bytes = reinterpret_cast<std::uint8_t const *>(text.data());
  unsigned const cores = std::max(1u, std::thread::hardware_concurrency());
  unsigned const helpers = large ? std::min(maxNumberHelpers, cores - 1) : 0;
  bool const followed = helpers > 0 && text.size() >= followedFrom;

  // A followed text's rooms are sized for as many positions as it has bytes, the most it can have;
  // only the pages written are ever backed.
  std::uint32_t *positions = nullptr;
  std::size_t count = text.size();
  if (followed) {
    positions = buffers->positions.atLeast(text.size() + searchSlack);
    adviseHugePages(positions, text.size() * sizeof(std::uint32_t));
  } else {
    positions = parser.implementation->structural_indexes.get();
    if (large) adviseHugePages(positions, text.size() * sizeof(std::uint32_t));
    if (search(parser, bytes, text.size()) != simdjson::SUCCESS) return false;
    count = parser.implementation->n_structural_indexes;
  }
  QuickWalkOutput out;
  out.tape = buffers->tape.atLeast(quickTapeRoom(count));
  out.strings = buffers->strings.atLeast(quickStringRoom(text.size(), count));
  buffers->wide.clear();
  out.wide = &buffers->wide;

  StructuralProgress progress;
  auto const searchAll = [&] { searchInSlices(parser, bytes, text.size(), positions, progress); };
  NumberParsers numbers(bytes, out.tape, helpers, followed ? std::function<void()>(searchAll) : nullptr);
  if (followed && !numbers.started()) searchAll();

  QuickWalkInput const in{bytes,     text.size(), capacity, positions,           count,
                          &unescape, &parser,     large,    numbers.walked(), followed ? &progress : nullptr};
  bool const walked = walkJsonStructure(in, out);
  // The structural positions are done with; a large text's go while the numbers are parsed. The
  // search has ended when the walk does, for the walk waits for its last position.
  if (walked && large) {
    buffers->parser.reset();
    buffers->positions.release();
  }
  if (!numbers.finish(walked ? out.tapeLength : 0) || !walked) return false;

  document.tape = out.tape;
  document.strings = out.strings;
  document.wide = buffers->wide.data();
  document.owner = buffers;
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
