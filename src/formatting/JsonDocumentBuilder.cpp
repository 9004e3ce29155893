#include <formatting/JsonDocument.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The library's parse: the JSON library's parser writes the document's tape through its event interface.
// Slower than the quick parse, it words every refusal; nesting beyond the limit is refused here too.
namespace Tarvex::VantraCore::Internal {
namespace {

std::string withoutLibraryPrefix(char const *what) {
  char const *text = what;
  if (*text == '[') {
    if (char const *close = std::strstr(text, "] ")) text = close + 2;
  }
  std::string result(text);
  if (result.rfind("parse error", 0) != 0) result.insert(0, "parse error - ");
  return result;
}

// The tape and the string buffer that the library's parse writes, owned by its document.
struct LibraryTape {
  std::vector<std::uint64_t> tape;
  std::vector<std::uint8_t> strings;
  std::vector<std::uint64_t> wide;
};

class DocumentBuilder {
 public:
  explicit DocumentBuilder(LibraryTape &out) : m_out(out) { m_out.tape.push_back(0); }

  bool null() { return constant(JsonTape::null); }
  bool boolean(bool value) { return constant(value ? JsonTape::trueValue : JsonTape::falseValue); }
  bool number_integer(std::int64_t value) {
    if (value == 0) return constant(JsonTape::signedZero);
    return number([value](JsonTape::NumberWriter &writer) { writer.append_s64(value); });
  }
  bool number_unsigned(std::uint64_t value) {
    return number([value](JsonTape::NumberWriter &writer) { writer.append_u64(value); });
  }
  bool number_float(double value, std::string const &) {
    return number([value](JsonTape::NumberWriter &writer) { writer.append_double(value); });
  }
  bool string(std::string &value) {
    m_out.tape.push_back(JsonTape::word(JsonTape::string, m_out.strings.size()));
    auto const length = static_cast<std::uint32_t>(value.size());
    if (length != value.size()) throw std::length_error("parse error - string longer than 4 GiB");
    std::uint8_t bytes[sizeof length];
    std::memcpy(bytes, &length, sizeof length);
    m_out.strings.insert(m_out.strings.end(), bytes, bytes + sizeof length);
    m_out.strings.insert(m_out.strings.end(), value.begin(), value.end());
    m_out.strings.push_back(0);
    return true;
  }
  bool key(std::string &value) { return string(value); }
  bool binary(nlohmann::json::binary_t &) { return true; }  // text has no binary values
  bool start_object(std::size_t) { return open(JsonTape::object); }
  bool start_array(std::size_t) { return open(JsonTape::array); }
  bool end_object() { return close(JsonTape::objectEnd); }
  bool end_array() { return close(JsonTape::arrayEnd); }
  bool parse_error(std::size_t, std::string const &, nlohmann::detail::exception const &error) {
    throw std::invalid_argument(withoutLibraryPrefix(error.what()));
  }

  void finish() {
    std::size_t const length = m_out.tape.size() + 1;
    m_out.tape[0] = JsonTape::word(JsonTape::root, length);
    m_out.tape.push_back(JsonTape::word(JsonTape::root, 0));
  }

 private:
  bool constant(JsonTape::Kind kind) {
    m_out.tape.push_back(JsonTape::word(kind, 0));
    return true;
  }
  // A number's word, as the quick parse writes it.
  template <class Write>
  bool number(Write const &write) {
    std::uint64_t word;
    JsonTape::NumberWriter writer{&word, &m_out.wide};
    write(writer);
    m_out.tape.push_back(word);
    return true;
  }
  bool open(JsonTape::Kind kind) {
    if (m_open.size() >= jsonReaderMaxDepth) {
      throw std::invalid_argument("parse error - document nested deeper than " +
                                  std::to_string(jsonReaderMaxDepth) + " levels");
    }
    m_open.push_back(m_out.tape.size());
    m_out.tape.push_back(JsonTape::word(kind, 0));
    return true;
  }
  // The opening word learns where its container ends; the closing one points back to it.
  bool close(JsonTape::Kind kind) {
    std::size_t const opening = m_open.back();
    m_open.pop_back();
    m_out.tape.push_back(JsonTape::word(kind, opening));
    m_out.tape[opening] |= m_out.tape.size();
    return true;
  }

  LibraryTape &m_out;
  std::vector<std::size_t> m_open;
};

}  // namespace

JsonDocument parseJsonDocumentByLibrary(std::string_view text) {
  auto out = std::make_shared<LibraryTape>();
  DocumentBuilder builder(*out);
  nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder);
  builder.finish();
  JsonDocument document;
  document.tape = out->tape.data();
  document.strings = out->strings.data();
  document.wide = out->wide.data();
  document.owner = std::move(out);
  return document;
}

}  // namespace Tarvex::VantraCore::Internal
