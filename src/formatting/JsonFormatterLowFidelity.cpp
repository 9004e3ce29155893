#include <VantraCore/JsonFormatterLowFidelity.h>

#include <VantraCore/Time.h>
#include <VantraCore/detail/ElementKinds.h>

#include <formatting/ForeignJsonReader.h>
#include <formatting/JsonDocument.h>
#include <formatting/JsonTreeWriter.h>

#include <climits>
#include <cstdio>
#include <ctime>
#include <vector>

namespace Tarvex::VantraCore {
namespace {

using Internal::int128_t;
using Internal::JsonTextWriter;
using Internal::writeElement;

// The tick count as decimal text: no JSON number holds 128 bits.
void writeElement(JsonTextWriter &out, Duration const &value) {
  out.string(value.count().str());
}

// The asctime text of the UTC second, line feed included; the fraction is dropped. A second whose
// year no calendar text can hold writes null.
void writeElement(JsonTextWriter &out, Timestamp const &value) {
  int128_t const seconds = value.time_since_epoch().count() / int128_t(femtosecondsPerSecond);
  auto const whole = static_cast<std::time_t>(static_cast<std::int64_t>(seconds));
  std::tm calendar{};
  if (int128_t(std::int64_t(whole)) != seconds || gmtime_r(&whole, &calendar) == nullptr ||
      calendar.tm_year > INT_MAX - 1900) {
    return out.null();
  }
  char text[26];
  if (asctime_r(&calendar, text) != nullptr) return out.string(text);
  // asctime_r has room for four-digit years only; longer ones take asctime's layout all the same.
  static char const days[][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static char const months[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  char wide[64];
  int const length = std::snprintf(
      wide, sizeof wide, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", days[calendar.tm_wday], months[calendar.tm_mon],
      calendar.tm_mday, calendar.tm_hour, calendar.tm_min, calendar.tm_sec, 1900 + calendar.tm_year);
  out.string(std::string_view(wide, static_cast<std::size_t>(length)));
}

// Nested arrays, one level per dimension, in logical row-major index order whatever the storage
// ordering: an odometer over the outer indices, walking storage by stride.
template <class T>
void writeNested(JsonTextWriter &out, T const *data, ArrayDimensionsView dims, DataOrdering ordering) {
  std::size_t const last = dims.count - 1;
  std::vector<std::uint64_t> stride(dims.count, 1);
  if (ordering == columnMajor) {
    for (std::size_t k = 1; k <= last; ++k)
      stride[k] = stride[k - 1] * dims[k - 1];
  } else {
    for (std::size_t k = last; k > 0; --k)
      stride[k - 1] = stride[k] * dims[k];
  }
  std::vector<std::uint64_t> place(dims.count, 0);
  std::uint64_t base = 0;
  for (std::size_t k = 0; k <= last; ++k)
    out.beginArray();
  for (;;) {
    for (std::uint64_t j = 0; j < dims[last]; ++j)
      writeElement(out, data[base + j * stride[last]]);
    std::size_t k = last;
    for (;;) {
      out.endArray();
      if (k == 0) return;
      --k;
      base += stride[k];
      if (++place[k] < dims[k]) break;
      base -= stride[k] * dims[k];
      place[k] = 0;
    }
    for (std::size_t open = k + 1; open <= last; ++open)
      out.beginArray();
  }
}

template <class Storage>
void writePlainVariant(JsonTextWriter &out, VxVariantGeneric<Storage> const &value) {
  WellKnownType const kind = value.wellKnownDataType();
  if (kind == WellKnownType() || value.numberOfElements() == 0) return out.null();
  Internal::dispatchWellKnownType(kind, [&](auto tag) {
    using T = typename decltype(tag)::type;
    if constexpr (isComplexElement<T>) {
      out.null();
    } else {
      auto const elements = value.template asIterable<T>();
      if (value.isScalarStorage()) {
        writeElement(out, *elements.begin());
      } else {
        out.reserve(elements.size() * Internal::typicalElementBytes<T>());
        writeNested(out, elements.begin(), value.dimensions(), value.dataOrdering());
      }
    }
  });
}

void writePlainValue(JsonTextWriter &out, VxVariant const &value) {
  writePlainVariant(out, value);
}

}  // namespace

VxString JsonFormatterLowFidelity::variantText(VxVariant const &value, int indent, JsonNumberText numbers) {
  return Internal::jsonText(indent, numbers, [&](JsonTextWriter &out) { writePlainVariant(out, value); });
}

VxString JsonFormatterLowFidelity::variantText(VxVariantAbi const &value, int indent,
                                               JsonNumberText numbers) {
  return Internal::jsonText(indent, numbers, [&](JsonTextWriter &out) { writePlainVariant(out, value); });
}

void JsonFormatterLowFidelity::variantToStream(VxVariant const &value, std::ostream &out, int indent,
                                               JsonNumberText numbers) {
  Internal::jsonToStream(out, indent, numbers, [&](JsonTextWriter &text) { writePlainVariant(text, value); });
}

void JsonFormatterLowFidelity::variantToStream(VxVariantAbi const &value, std::ostream &out, int indent,
                                               JsonNumberText numbers) {
  Internal::jsonToStream(out, indent, numbers, [&](JsonTextWriter &text) { writePlainVariant(text, value); });
}

VxString JsonFormatterLowFidelity::serialize(PropertyNode node, int indent, JsonNumberText numbers) {
  return Internal::jsonText(indent, numbers,
                            [&](JsonTextWriter &out) { Internal::writeNode(out, node, writePlainValue); });
}

void JsonFormatterLowFidelity::serialize(PropertyNode node, std::ostream &out, int indent,
                                         JsonNumberText numbers) {
  Internal::jsonToStream(out, indent, numbers,
                         [&](JsonTextWriter &text) { Internal::writeNode(text, node, writePlainValue); });
}

VxString JsonFormatterLowFidelity::serialize(FPropertyNode node, int indent, JsonNumberText numbers) {
  return Internal::jsonText(indent, numbers,
                            [&](JsonTextWriter &out) { Internal::writeNode(out, node, writePlainValue); });
}

void JsonFormatterLowFidelity::serialize(FPropertyNode node, std::ostream &out, int indent,
                                         JsonNumberText numbers) {
  Internal::jsonToStream(out, indent, numbers,
                         [&](JsonTextWriter &text) { Internal::writeNode(text, node, writePlainValue); });
}

void JsonFormatterLowFidelity::serializeInBlocks(PropertyNode const &node, std::ostream &out, int indent,
                                                 JsonNumberText numbers) {
  Internal::jsonToStreamInBlocks(out, indent, numbers,
                                 [&](JsonTextWriter &text) { Internal::writeNode(text, node, writePlainValue); });
}

VxVariant JsonFormatterLowFidelity::deserializeVxVariant(std::istream &in) {
  return Internal::readJsonDocument(in, Internal::readPlainVariant);
}

VxVariant JsonFormatterLowFidelity::deserializeVxVariant(VxString text) {
  return Internal::readJsonDocument(text, Internal::readPlainVariant);
}

PropertyNode JsonFormatterLowFidelity::deserializePropertyNode(std::istream &in, JsonArrays arrays) {
  return Internal::readJsonDocument(in, Internal::readPlainNode, {arrays, jsonUnboundedFill});
}

PropertyNode JsonFormatterLowFidelity::deserializePropertyNode(VxString text, JsonArrays arrays) {
  return Internal::readJsonDocument(text, Internal::readPlainNode, {arrays, jsonUnboundedFill});
}

PropertyNode JsonFormatterLowFidelity::deserializePropertyNodeInPlace(VxStringView text, JsonArrays arrays) {
  return Internal::readJsonDocument(text, Internal::readPlainNode, {arrays, jsonUnboundedFill});
}

}  // namespace Tarvex::VantraCore
