#include <formatting/JsonDocument.h>

#include <nlohmann/json.hpp>

#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The library's parse: the JSON library's parser fills the flat document through its event interface.
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

class DocumentBuilder {
 public:
  explicit DocumentBuilder(JsonDocument &document) : m_document(document) {}

  bool null() {
    push(JsonType::null).unsignedInteger = 0;
    return true;
  }
  bool boolean(bool value) {
    push(JsonType::boolean).boolean = value;
    return true;
  }
  bool number_integer(std::int64_t value) {
    push(JsonType::integer).integer = value;
    return true;
  }
  bool number_unsigned(std::uint64_t value) {
    push(JsonType::unsignedInteger).unsignedInteger = value;
    return true;
  }
  bool number_float(double value, std::string const &) {
    push(JsonType::floating).floating = value;
    return true;
  }
  bool string(std::string &value) {
    pushString(JsonType::string, value);
    return true;
  }
  bool key(std::string &value) {
    pushString(JsonType::key, value);
    return true;
  }
  bool binary(nlohmann::json::binary_t &) { return true; }  // text has no binary values
  bool start_object(std::size_t) {
    open(JsonType::object);
    return true;
  }
  bool start_array(std::size_t) {
    open(JsonType::array);
    return true;
  }
  bool end_object() {
    close();
    return true;
  }
  bool end_array() {
    close();
    return true;
  }
  bool parse_error(std::size_t, std::string const &, nlohmann::detail::exception const &error) {
    throw std::invalid_argument(withoutLibraryPrefix(error.what()));
  }

 private:
  JsonEntry &push(JsonType type) {
    m_document.entries.push_back(JsonEntry{type, {}});
    return m_document.entries.back();
  }
  void pushString(JsonType type, std::string &value) {
    push(type).stringIndex = m_document.strings.size();
    m_document.strings.push_back(std::move(value));
  }
  void open(JsonType type) {
    if (m_open.size() >= jsonReaderMaxDepth) {
      throw std::invalid_argument("parse error - document nested deeper than " +
                                  std::to_string(jsonReaderMaxDepth) + " levels");
    }
    m_open.push_back(m_document.entries.size());
    push(type);
  }
  void close() {
    m_document.entries[m_open.back()].end = m_document.entries.size();
    m_open.pop_back();
  }

  JsonDocument &m_document;
  std::vector<std::size_t> m_open;
};

}  // namespace

JsonDocument parseJsonDocumentByLibrary(std::string_view text) {
  JsonDocument document;
  DocumentBuilder builder(document);
  nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder);
  return document;
}

}  // namespace Tarvex::VantraCore::Internal
