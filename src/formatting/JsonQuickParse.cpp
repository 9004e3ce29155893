#include <formatting/JsonDocument.h>
#include <formatting/JsonQuickWalk.h>

#include <variant/BulkAllocation.h>

#include <simdjson.h>

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

// The quick parse: a SIMD pass finds the text's structural characters, a walk over them writes the
// tape, and the numbers are parsed last, on several threads for a large text. It only says yes or
// no; a refused text goes to the library's parse, which words the refusal.
namespace Tarvex::VantraCore::Internal {
namespace {

namespace dom = simdjson::dom;

// Small texts reuse one set of buffers per thread: fresh ones would first fault in as many pages as
// the text takes, each time. A large text gets buffers of its own, released with its document: a host
// thread that once read a large document must not hold on to hundreds of megabytes.
constexpr std::size_t reusedCapacity = std::size_t(1) << 20;

// Numbers parsed on one thread before another is worth starting.
constexpr std::size_t numbersPerThread = std::size_t(1) << 18;
constexpr unsigned maxNumberThreads = 4;

// Positions of a large text's structural characters given back while the walk goes on, so that they
// and the tape that replaces them are not resident together: 2 MiB of them at a time.
constexpr std::size_t releaseStep = hugePageSize / sizeof(std::uint32_t);

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

// The pending numbers, in as many slices of the tape as there are threads worth starting.
bool parseNumbers(std::uint8_t const *text, std::uint64_t *tape, std::size_t length, std::size_t pending) {
  unsigned const threads = static_cast<unsigned>(std::min<std::size_t>(
      {pending / numbersPerThread + 1, std::max(1u, std::thread::hardware_concurrency()), maxNumberThreads}));
  std::size_t const slice = length / threads + 1;
  std::vector<char> parsed(threads, false);
  std::vector<std::thread> helpers;
  for (unsigned k = 1; k < threads; ++k) {
    std::size_t const from = std::min(length, k * slice);
    std::size_t const size = std::min(length - from, slice);
    try {
      helpers.emplace_back([&parsed, k, text, tape, from, size] { parsed[k] = parsePendingNumbers(text, tape + from, size); });
    } catch (std::system_error const &) {
      parsed[k] = parsePendingNumbers(text, tape + from, size);  // no thread to be had: on this one
    }
  }
  parsed[0] = parsePendingNumbers(text, tape, std::min(length, slice));
  for (std::thread &helper : helpers)
    helper.join();
  return std::all_of(parsed.begin(), parsed.end(), [](char ok) { return ok; });
}

}  // namespace

bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document) {
  std::shared_ptr<ParseBuffers> const buffers = buffersFor(text.size());
  bool const large = text.size() > reusedCapacity;
  if (!findStructurals(*buffers->parser, text, large)) return false;
  auto const &structure = *buffers->parser->implementation;
  std::size_t const count = structure.n_structural_indexes;

  QuickWalkInput const in{reinterpret_cast<std::uint8_t const *>(text.data()),
                          text.size(),
                          capacity,
                          structure.structural_indexes.get(),
                          count,
                          &unescape,
                          buffers->parser.get(),
                          large ? releaseStep : 0};
  QuickWalkOutput out;
  out.tape = buffers->tape.atLeast(quickTapeRoom(count));
  out.strings = buffers->strings.atLeast(quickStringRoom(text.size(), count));
  buffers->wide.clear();
  out.wide = &buffers->wide;
  if (!walkJsonStructure(in, out)) return false;
  // The structural positions are done with; a large text's go before the numbers are parsed.
  if (large) buffers->parser.reset();
  if (out.pendingNumbers > 0 && !parseNumbers(in.text, out.tape, out.tapeLength, out.pendingNumbers)) return false;

  document.tape = out.tape;
  document.strings = out.strings;
  document.wide = buffers->wide.data();
  document.owner = buffers;
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
