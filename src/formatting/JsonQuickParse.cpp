#include <formatting/JsonDocument.h>

#include <text/StringTailRoom.h>
#include <variant/BulkAllocation.h>

#include <simdjson.h>

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

// The quick parse: a SIMD parser reads the text, and the readers walk its tape where it lies. It only
// says yes or no; a refused text goes to the library's parse, which words the refusal.
namespace Tarvex::VantraCore::Internal {
namespace {

namespace dom = simdjson::dom;

static_assert(stringTailRoom >= simdjson::SIMDJSON_PADDING, "long strings leave the parser room to read ahead");

// Small texts reuse one parser per thread: fresh buffers would first fault in as many pages as the
// text takes, each time. The buffers run to about 13 times the text for a run of short numbers, so a
// large text gets buffers of its own, released with its document: a host thread that once read a large
// document must not hold on to hundreds of megabytes.
constexpr std::size_t reusedCapacity = std::size_t(1) << 20;

// A text with too little room behind it for the parser's reads, copied with that room.
class PaddedCopy {
 public:
  PaddedCopy() = default;
  PaddedCopy(PaddedCopy const &) = delete;
  PaddedCopy &operator=(PaddedCopy const &) = delete;
  ~PaddedCopy() { releaseBulk(m_memory); }

  std::string_view of(std::string_view text) {
    std::size_t const needed = text.size() + simdjson::SIMDJSON_PADDING;
    if (m_capacity < needed) {
      releaseBulk(m_memory);
      m_memory = nullptr;
      m_memory = allocateBulk(needed).memory;
      m_capacity = needed;
    }
    auto *const copy = static_cast<char *>(m_memory);
    std::memcpy(copy, text.data(), text.size());
    std::memset(copy + text.size(), 0, simdjson::SIMDJSON_PADDING);
    return std::string_view(copy, text.size());
  }

 private:
  void *m_memory = nullptr;
  std::size_t m_capacity = 0;
};

struct ParseBuffers {
  dom::parser parser;
  PaddedCopy copy;
  bool busy = false;
};

// Huge pages for a large text's fresh buffers, where the kernel grants them: a buffer then faults in
// a page per 2 MiB instead of per 4 KiB. The advice covers the whole pages inside each buffer.
void adviseHugePages(void const *start, std::size_t bytes) {
  constexpr std::uintptr_t page = 4096;
  auto const first = (reinterpret_cast<std::uintptr_t>(start) + page - 1) & ~(page - 1);
  auto const last = (reinterpret_cast<std::uintptr_t>(start) + bytes) & ~(page - 1);
  if (last > first) madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
}

bool allocateForLargeText(dom::parser &parser, std::size_t size) {
  // The parser's own buffers, and the tape it would otherwise allocate when parsing begins.
  if (parser.allocate(size, jsonReaderMaxDepth) != simdjson::SUCCESS ||
      parser.doc.allocate(size) != simdjson::SUCCESS) {
    return false;
  }
  // The sizes the parser gives its buffers for a capacity of `size`.
  adviseHugePages(parser.doc.tape.get(), (size + 3) * sizeof(std::uint64_t));
  adviseHugePages(parser.doc.string_buf.get(), 5 * size / 3);
  adviseHugePages(parser.implementation->structural_indexes.get(), size * sizeof(std::uint32_t));
  return true;
}

// The parser buffers for one text: the thread's own when the text is small and they are free, else
// fresh ones. The owner gives the thread's buffers back when the document goes.
std::shared_ptr<ParseBuffers> buffersFor(std::size_t size) {
  thread_local ParseBuffers reused;
  if (size <= reusedCapacity && !reused.busy) {
    // The parser grows to the texts it meets, keeping the depth it was given first.
    if (reused.parser.max_depth() != jsonReaderMaxDepth &&
        reused.parser.allocate(size, jsonReaderMaxDepth) != simdjson::SUCCESS) {
      return nullptr;
    }
    reused.busy = true;
    return std::shared_ptr<ParseBuffers>(&reused, [](ParseBuffers *buffers) { buffers->busy = false; });
  }
  auto fresh = std::make_shared<ParseBuffers>();
  if (!allocateForLargeText(fresh->parser, size)) return nullptr;
  return fresh;
}

}  // namespace

bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document) {
  std::shared_ptr<ParseBuffers> const buffers = buffersFor(text.size());
  if (buffers == nullptr) return false;
  if (capacity < text.size() + simdjson::SIMDJSON_PADDING) text = buffers->copy.of(text);
  dom::element root;
  if (buffers->parser.parse(text.data(), text.size(), false).get(root) != simdjson::SUCCESS) return false;
  document.tape = buffers->parser.doc.tape.get();
  document.strings = buffers->parser.doc.string_buf.get();
  // A container's word holds a count above the 32 bits of its end.
  document.endMask = 0xffffffffu;
  document.owner = buffers;
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
