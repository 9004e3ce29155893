#include "DocumentCheck.h"

#include "Errors.h"
#include "PathText.h"

#include <VantraCore/VantraCore.h>

#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <cmath>
#include <complex>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

// Walks the parsed events once, knowing where it is, and looks at each object holding "_data_".
class ReadingCheck : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return item(); }
  bool boolean(bool) override { return item(); }
  bool number_integer(number_integer_t value) override {
    return value < 0 ? dimension(0) : dimension(static_cast<std::uint64_t>(value));
  }
  bool number_unsigned(number_unsigned_t value) override { return dimension(value); }
  bool number_float(number_float_t, string_t const &) override { return dimension(0); }
  bool string(string_t &value) override {
    if (!m_frames.empty() && m_frames.back().isObject && m_frames.back().key == "_wellknowntype_") {
      m_frames.back().kind = value;
      m_frames.back().hasKind = true;
    }
    return item();
  }
  bool binary(binary_t &) override { return item(); }
  bool start_object(std::size_t) override {
    m_frames.emplace_back();
    m_frames.back().isObject = true;
    return true;
  }
  bool key(string_t &value) override {
    m_frames.back().key = value;
    return true;
  }
  bool end_object() override {
    check(m_frames.back());
    m_frames.pop_back();
    return item();
  }
  bool start_array(std::size_t) override {
    Frame array;
    if (!m_frames.empty() && m_frames.back().isObject) {
      Frame &owner = m_frames.back();
      if (owner.key == "_data_") array.role = Role::data;
      if (owner.key == "_dimensions_") {
        array.role = Role::dimensions;
        owner.hasDimensions = true;
      }
    }
    m_frames.push_back(array);
    return true;
  }
  bool end_array() override {
    Frame const done = m_frames.back();
    m_frames.pop_back();
    if (done.role == Role::data) m_frames.back().dataItems = done.index;
    if (done.role == Role::dimensions) m_frames.back().elements = done.product;
    return item();
  }
  bool parse_error(std::size_t, std::string const &, nlohmann::detail::exception const &) override {
    return false;
  }

  // Only the numbers of a "_dimensions_" array are looked at; any other is an item to count.
  bool readsNumbers() const { return !m_frames.empty() && m_frames.back().role == Role::dimensions; }
  std::vector<std::string> const &findings() const { return m_findings; }

 private:
  enum class Role { plain, data, dimensions };
  struct Frame {
    bool isObject = false;
    std::string key;              // an object's current member
    std::uint64_t index = 0;      // an array's count of items so far
    Role role = Role::plain;      // what an array is to the object holding it
    std::uint64_t product = 1;    // a dimensions array: the product of its entries
    bool hasKind = false;         // an object: its "_wellknowntype_"...
    std::string kind;
    bool hasDimensions = false;   // ...its element count...
    std::uint64_t elements = 1;
    std::uint64_t dataItems = 0;  // ...and the items of its "_data_" array
  };

  // One item ended inside the innermost container.
  bool item() {
    if (!m_frames.empty() && !m_frames.back().isObject) ++m_frames.back().index;
    return true;
  }

  bool dimension(std::uint64_t value) {
    if (!m_frames.empty() && m_frames.back().role == Role::dimensions) {
      Frame &dims = m_frames.back();
      dims.product = value != 0 && dims.product > UINT64_MAX / value ? UINT64_MAX : dims.product * value;
    }
    return item();
  }

  // The path of the innermost object, as --at takes it.
  std::string where() const {
    std::vector<std::string> steps;
    for (std::size_t i = 0; i + 1 < m_frames.size(); ++i)
      steps.push_back(m_frames[i].isObject ? m_frames[i].key : std::to_string(m_frames[i].index));
    return quoted(pathText(steps));
  }

  void check(Frame const &object) {
    if (object.hasKind && object.kind != "unknown" &&
        WellKnownType(VxStringView(object.kind.data(), object.kind.size())).value() ==
            WellKnownType().value())
      m_findings.push_back(where() + ": \"_wellknowntype_\" " + quoted(object.kind) +
                           " names no kind; the value reads as null");
    if (object.hasKind && object.dataItems > 0 && object.dataItems < object.elements)
      m_findings.push_back(where() + ": \"_data_\" holds " + std::to_string(object.dataItems) + " of " +
                           std::to_string(object.elements) + " elements; the rest read as zeros");
  }

  std::vector<Frame> m_frames;
  std::vector<std::string> m_findings;
};

template <class T>
std::uint64_t nonFinite(VxVariant const &value) {
  std::uint64_t count = 0;
  for (T const &element : value.asIterable<T>()) {
    if constexpr (isComplexElement<T>)
      count += !std::isfinite(element.real()) || !std::isfinite(element.imag());
    else
      count += !std::isfinite(element);
  }
  return count;
}

std::uint64_t nonFiniteCount(VxVariant const &value) {
  switch (value.wellKnownDataType().value()) {
    case Internal::WellKnownTypeValue::typeDouble:
      return nonFinite<double>(value);
    case Internal::WellKnownTypeValue::typeFloat:
      return nonFinite<float>(value);
    case Internal::WellKnownTypeValue::typeComplexDouble:
      return nonFinite<std::complex<double>>(value);
    case Internal::WellKnownTypeValue::typeComplexFloat:
      return nonFinite<std::complex<float>>(value);
    default:
      return 0;
  }
}

void checkWriting(PropertyNode const &node, std::vector<std::string> &steps) {
  switch (node.kind()) {
    case PropertyNodeKind::Value: {
      VxVariant const &value = node.value();
      std::string const where = quoted(pathText(steps));
      if (std::uint64_t const count = nonFiniteCount(value))
        warn(where + ": " + std::to_string(count) + " of " + std::to_string(value.numberOfElements()) +
             " numbers are not finite and are written as null; the document will not read back");
      break;
    }
    case PropertyNodeKind::List:
      for (std::size_t i = 0; i < node.list().size(); ++i) {
        steps.push_back(std::to_string(i));
        checkWriting(node.list()[i], steps);
        steps.pop_back();
      }
      break;
    case PropertyNodeKind::Map:
      for (PropertyMapEntry const &entry : node.map()) {
        steps.emplace_back(entry.key.data(), entry.key.length());
        checkWriting(entry.node, steps);
        steps.pop_back();
      }
      break;
    case PropertyNodeKind::Null:
      break;
  }
}

namespace ondemand = simdjson::ondemand;

// Hands the check the events of a document as the quick parser walks it on demand: no tree is built,
// and numbers outside "_dimensions_" are counted without being read. False where the walk fails; the
// events so far are then to be dropped.
class WalkEvents {
 public:
  explicit WalkEvents(ReadingCheck &check) : m_check(check) {}

  bool value(ondemand::value item) {
    ondemand::json_type type;
    if (item.type().get(type) != simdjson::SUCCESS) return false;
    switch (type) {
      case ondemand::json_type::array: {
        ondemand::array items;
        if (item.get_array().get(items) != simdjson::SUCCESS) return false;
        m_check.start_array(0);
        for (auto next : items) {
          ondemand::value inner;
          if (next.get(inner) != simdjson::SUCCESS || !value(inner)) return false;
        }
        m_check.end_array();
        return true;
      }
      case ondemand::json_type::object: {
        ondemand::object members;
        if (item.get_object().get(members) != simdjson::SUCCESS) return false;
        m_check.start_object(0);
        for (auto field : members) {
          std::string_view name;
          ondemand::value inner;
          if (field.unescaped_key().get(name) != simdjson::SUCCESS || field.value().get(inner) != simdjson::SUCCESS)
            return false;
          std::string key(name);
          m_check.key(key);
          if (!value(inner)) return false;
        }
        m_check.end_object();
        return true;
      }
      case ondemand::json_type::number:
        return number(item);
      case ondemand::json_type::string: {
        std::string_view text;
        if (item.get_string().get(text) != simdjson::SUCCESS) return false;
        std::string copy(text);
        return m_check.string(copy);
      }
      case ondemand::json_type::boolean: {
        bool truth = false;
        return item.get_bool().get(truth) == simdjson::SUCCESS && m_check.boolean(truth);
      }
      case ondemand::json_type::null:
        return m_check.null();
    }
    return false;
  }

 private:
  bool number(ondemand::value item) {
    if (!m_check.readsNumbers()) return m_check.number_float(0, m_none);
    ondemand::number_type type;
    if (item.get_number_type().get(type) != simdjson::SUCCESS) return false;
    switch (type) {
      case ondemand::number_type::signed_integer: {
        std::int64_t whole = 0;
        return item.get_int64().get(whole) == simdjson::SUCCESS && m_check.number_integer(whole);
      }
      case ondemand::number_type::unsigned_integer: {
        std::uint64_t whole = 0;
        return item.get_uint64().get(whole) == simdjson::SUCCESS && m_check.number_unsigned(whole);
      }
      case ondemand::number_type::floating_point_number: {
        double real = 0;
        return item.get_double().get(real) == simdjson::SUCCESS && m_check.number_float(real, m_none);
      }
    }
    return false;  // an integer beyond 64 bits
  }

  ReadingCheck &m_check;
  std::string m_none;
};

// A root array or object walked on demand; a root scalar holds nothing to check.
bool walkQuickly(char const *text, std::size_t length, ReadingCheck &check) {
  simdjson::padded_string const padded(text, length);
  ondemand::parser parser;
  ondemand::document document;
  ondemand::json_type type;
  if (parser.iterate(padded).get(document) != simdjson::SUCCESS || document.type().get(type) != simdjson::SUCCESS)
    return false;
  if (type != ondemand::json_type::array && type != ondemand::json_type::object) return true;
  ondemand::value root;
  return document.get_value().get(root) == simdjson::SUCCESS && WalkEvents(check).value(root);
}

}  // namespace

// The quick walk takes most documents; the few it cannot (a byte order mark, integers beyond 64 bits)
// go through the JSON library's parse.
std::vector<std::string> readingLosses(char const *text, std::size_t length) {
  ReadingCheck quick;
  if (walkQuickly(text, length, quick)) return quick.findings();
  ReadingCheck slow;
  nlohmann::json::sax_parse(text, text + length, &slow);
  return slow.findings();
}

void warnOfWritingLosses(PropertyNode const &tree) {
  std::vector<std::string> steps;
  checkWriting(tree, steps);
}

}  // namespace vantra
