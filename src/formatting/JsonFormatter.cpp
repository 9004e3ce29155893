#include <VantraCore/JsonFormatter.h>

#include <VantraCore/Complex.h>
#include <VantraCore/Time.h>
#include <VantraCore/detail/ElementKinds.h>

#include <formatting/FullFidelityJsonReader.h>
#include <formatting/JsonDocument.h>
#include <formatting/JsonKeys.h>
#include <formatting/JsonTreeWriter.h>

#include <algorithm>
#include <complex>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Tarvex::VantraCore {
namespace {

using Internal::int128_t;
namespace JsonKey = Internal::JsonKey;
using Internal::jsonText;
using Internal::JsonTextWriter;
using Internal::jsonToStream;
using Internal::jsonToStreamInBlocks;
using Internal::writeElement;

void writeSplit(JsonTextWriter &out, std::int64_t seconds, int128_t const &subseconds) {
  out.beginObject();
  out.key(JsonKey::seconds);
  out.integer(seconds);
  out.key(JsonKey::subseconds);
  out.unsignedInteger(subseconds.lower());
  out.endObject();
}

// A negative remainder folds into the second below, so subseconds stays within [0, 10^15).
void writeElement(JsonTextWriter &out, Duration const &value) {
  SplitSeconds const split = splitSeconds(value.count());
  writeSplit(out, split.seconds, split.subseconds);
}

// Unlike a duration, a negative quotient always steps one second down, exact or not: documents written
// so far carry that form, and readers restore the count from it either way.
void writeElement(JsonTextWriter &out, Timestamp const &value) {
  int128_t const count = value.time_since_epoch().count();
  int128_t const perSecond(femtosecondsPerSecond);
  int128_t quotient = count / perSecond;
  if (quotient < int128_t(0)) --quotient;
  auto const seconds = static_cast<std::int64_t>(quotient);
  writeSplit(out, seconds, count - int128_t(seconds) * perSecond);
}

template <class T>
void writeComplex(JsonTextWriter &out, T re, T im) {
  out.beginObject();
  out.key(JsonKey::imaginary);
  writeElement(out, im);
  out.key(JsonKey::real);
  writeElement(out, re);
  out.endObject();
}

template <class T>
void writeElement(JsonTextWriter &out, std::complex<T> const &value) {
  writeComplex(out, value.real(), value.imag());
}

template <class T>
void writeElement(JsonTextWriter &out, Complex<T, void> const &value) {
  writeComplex(out, value.re, value.im);
}

template <class Storage>
void writeVariant(JsonTextWriter &out, VxVariantGeneric<Storage> const &value) {
  WellKnownType const kind = value.wellKnownDataType();
  if (kind == Internal::WellKnownTypeValue::typeCustom)
    throw std::logic_error("Cannot serialze custom types");

  out.beginObject();
  out.key(JsonKey::data);
  bool const scalar = value.isScalarStorage();
  bool const null = kind == WellKnownType();
  if (null || value.numberOfElements() == 0) {
    out.null();
  } else {
    Internal::dispatchWellKnownType(kind, [&](auto tag) {
      using T = typename decltype(tag)::type;
      auto const elements = value.template asIterable<T>();
      if (scalar) {
        for (T const &element : elements)
          writeElement(out, element);
        return;
      }
      out.reserve(elements.size() * Internal::typicalElementBytes<T>());
      out.beginArray();
      for (T const &element : elements)
        writeElement(out, element);
      out.endArray();
    });
  }
  if (!null && !scalar) {
    DataOrdering const ordering = value.dataOrdering();
    if (ordering == rowMajor || ordering == columnMajor) {
      out.key(JsonKey::dataOrder);
      out.string(ordering == rowMajor ? JsonKey::rowMajor : JsonKey::columnMajor);
    }
    ArrayDimensionsView const dims = value.dimensions();
    if (dims.count > 0) {
      out.key(JsonKey::dimensions);
      out.beginArray();
      for (std::uint64_t const size : dims)
        out.unsignedInteger(size);
      out.endArray();
    }
  }
  out.key(JsonKey::wellKnownType);
  VxStringView const name = kind.toString();
  out.string(std::string_view(name.data(), name.size()));
  out.endObject();
}

void writeFullVariant(JsonTextWriter &out, VxVariant const &value) {
  writeVariant(out, value);
}

}  // namespace

VxString JsonFormatter::variantText(VxVariant const &value, int indent, JsonNumberText numbers) {
  return jsonText(indent, numbers, [&](JsonTextWriter &out) { writeVariant(out, value); });
}

VxString JsonFormatter::variantText(VxVariantAbi const &value, int indent, JsonNumberText numbers) {
  return jsonText(indent, numbers, [&](JsonTextWriter &out) { writeVariant(out, value); });
}

void JsonFormatter::variantToStream(VxVariant const &value, std::ostream &out, int indent,
                                    JsonNumberText numbers) {
  jsonToStream(out, indent, numbers, [&](JsonTextWriter &text) { writeVariant(text, value); });
}

void JsonFormatter::variantToStream(VxVariantAbi const &value, std::ostream &out, int indent,
                                    JsonNumberText numbers) {
  jsonToStream(out, indent, numbers, [&](JsonTextWriter &text) { writeVariant(text, value); });
}

VxString JsonFormatter::serialize(PropertyNode node, int indent, JsonNumberText numbers) {
  return jsonText(indent, numbers,
                  [&](JsonTextWriter &out) { Internal::writeNode(out, node, writeFullVariant); });
}

void JsonFormatter::serialize(PropertyNode node, std::ostream &out, int indent, JsonNumberText numbers) {
  jsonToStream(out, indent, numbers,
               [&](JsonTextWriter &text) { Internal::writeNode(text, node, writeFullVariant); });
}

VxString JsonFormatter::serialize(FPropertyNode node, int indent, JsonNumberText numbers) {
  return jsonText(indent, numbers,
                  [&](JsonTextWriter &out) { Internal::writeNode(out, node, writeFullVariant); });
}

void JsonFormatter::serialize(FPropertyNode node, std::ostream &out, int indent, JsonNumberText numbers) {
  jsonToStream(out, indent, numbers,
               [&](JsonTextWriter &text) { Internal::writeNode(text, node, writeFullVariant); });
}

void JsonFormatter::serializeInBlocks(PropertyNode const &node, std::ostream &out, int indent,
                                      JsonNumberText numbers) {
  jsonToStreamInBlocks(out, indent, numbers,
                       [&](JsonTextWriter &text) { Internal::writeNode(text, node, writeFullVariant); });
}

VxVariant JsonFormatter::deserializeVxVariant(std::istream &in, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(in, Internal::readFullVariant, {JsonArrays::asLists, maxFilledElements});
}

VxVariant JsonFormatter::deserializeVxVariant(VxString text, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readFullVariant, {JsonArrays::asLists, maxFilledElements});
}

PropertyNode JsonFormatter::deserializePropertyNode(std::istream &in, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(in, Internal::readFullNode, {JsonArrays::asLists, maxFilledElements});
}

PropertyNode JsonFormatter::deserializePropertyNode(VxString text, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readFullNode, {JsonArrays::asLists, maxFilledElements});
}

PropertyNode JsonFormatter::deserializePropertyNodeInPlace(VxStringView text, std::uint64_t maxFilledElements) {
  return Internal::readJsonDocument(text, Internal::readFullNode, {JsonArrays::asLists, maxFilledElements});
}

}  // namespace Tarvex::VantraCore
