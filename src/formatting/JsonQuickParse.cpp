#include <formatting/JsonDocument.h>

#include <simdjson.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

// The quick parse: a SIMD parser reads the text, and its tree is copied into the flat document. It only
// says yes or no; a refused text goes to the library's parse, which words the refusal.
namespace Tarvex::VantraCore::Internal {
namespace {

namespace dom = simdjson::dom;

class QuickDocumentBuilder {
 public:
  explicit QuickDocumentBuilder(JsonDocument &document) : m_document(document) {}

  // False for nesting beyond the limit.
  bool value(dom::element const &element, std::size_t depth) {
    switch (element.type()) {
      case dom::element_type::ARRAY: {
        if (depth >= jsonReaderMaxDepth) return false;
        std::size_t const at = open(JsonType::array);
        dom::array items;
        if (element.get(items) != simdjson::SUCCESS) return false;
        for (dom::element const item : items)
          if (!value(item, depth + 1)) return false;
        return close(at);
      }
      case dom::element_type::OBJECT: {
        if (depth >= jsonReaderMaxDepth) return false;
        std::size_t const at = open(JsonType::object);
        dom::object members;
        if (element.get(members) != simdjson::SUCCESS) return false;
        for (dom::key_value_pair const member : members) {
          pushString(JsonType::key, member.key);
          if (!value(member.value, depth + 1)) return false;
        }
        return close(at);
      }
      case dom::element_type::INT64: {
        // The library reads every integer without a sign as unsigned; so does this document.
        std::int64_t const number = element.get_int64().value_unsafe();
        if (number < 0) {
          push(JsonType::integer).integer = number;
        } else {
          push(JsonType::unsignedInteger).unsignedInteger = static_cast<std::uint64_t>(number);
        }
        return true;
      }
      case dom::element_type::UINT64:
        push(JsonType::unsignedInteger).unsignedInteger = element.get_uint64().value_unsafe();
        return true;
      case dom::element_type::DOUBLE:
        push(JsonType::floating).floating = element.get_double().value_unsafe();
        return true;
      case dom::element_type::STRING:
        pushString(JsonType::string, element.get_string().value_unsafe());
        return true;
      case dom::element_type::BOOL:
        push(JsonType::boolean).boolean = element.get_bool().value_unsafe();
        return true;
      case dom::element_type::NULL_VALUE:
        break;
    }
    push(JsonType::null).unsignedInteger = 0;
    return true;
  }

 private:
  JsonEntry &push(JsonType type) {
    m_document.entries.push_back(JsonEntry{type, {}});
    return m_document.entries.back();
  }
  void pushString(JsonType type, std::string_view text) {
    push(type).stringIndex = m_document.strings.size();
    m_document.strings.emplace_back(text);
  }
  std::size_t open(JsonType type) {
    push(type);
    return m_document.entries.size() - 1;
  }
  bool close(std::size_t at) {
    m_document.entries[at].end = m_document.entries.size();
    return true;
  }

  JsonDocument &m_document;
};

// The parser keeps its buffers from text to text, and so does the copy of a text with too little room
// behind it: fresh ones would first fault in as many pages as the text takes, each time. The parser's
// buffers run to about 13 times the text for a run of short numbers, so only small texts reuse them: a
// host thread that once read a large document must not hold on to hundreds of megabytes.
constexpr std::size_t reusedCapacity = std::size_t(1) << 20;

struct ReusedBuffers {
  dom::parser parser;
  std::unique_ptr<char[]> copy;
  std::size_t copyCapacity = 0;

  std::string_view padded(std::string_view text) {
    std::size_t const needed = text.size() + simdjson::SIMDJSON_PADDING;
    if (copyCapacity < needed) {
      copy.reset(new char[needed]);
      copyCapacity = needed;
    }
    std::memcpy(copy.get(), text.data(), text.size());
    std::memset(copy.get() + text.size(), 0, simdjson::SIMDJSON_PADDING);
    return std::string_view(copy.get(), text.size());
  }
};

}  // namespace

bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document) {
  thread_local ReusedBuffers reused;
  dom::parser ownParser;
  bool const reuse = text.size() <= reusedCapacity;
  dom::parser &parser = reuse ? reused.parser : ownParser;
  bool const padded = capacity >= text.size() + simdjson::SIMDJSON_PADDING;
  if (!padded && reuse) text = reused.padded(text);
  dom::element root;
  simdjson::error_code const error =
      padded || reuse ? parser.parse(text.data(), text.size(), false).get(root)
                      : parser.parse(text.data(), text.size(), true).get(root);
  if (error != simdjson::SUCCESS) return false;
  // Every entry of the flat document takes at least one word of the parser's tape, whose first word
  // holds the tape's length.
  document.entries.reserve(static_cast<std::size_t>(parser.doc.tape[0] & 0xffffffffffffffu));
  QuickDocumentBuilder builder(document);
  if (builder.value(root, 0)) return true;
  document = JsonDocument();
  return false;
}

}  // namespace Tarvex::VantraCore::Internal
