// A module built apart from the library, by clang++ against libc++, linking nothing of VantraCore but
// its shared object. Strings and variants go back and forth through the C functions only: this side
// makes them in every element kind, the library reads, writes and converts them, this side reads
// what the library made, catches the library's failures as its own standard classes, and gives back
// every reference it took.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "UnitCompanion.h"

#ifndef _LIBCPP_VERSION
#error "the client proves the boundary only when its standard library is not the library's"
#endif

using namespace Tarvex::VantraCore;
namespace In = Tarvex::VantraCore::Internal;

namespace {

int failures = 0;
char const *context = "";

#define CHECK(condition)                                                                 \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      std::fprintf(stderr, "%s:%d [%s]: %s\n", __FILE__, __LINE__, context, #condition); \
      ++failures;                                                                        \
    }                                                                                    \
  } while (0)

// The reference count of a string's record, read from its header the way any module may lay it out.
std::uint32_t countOf(VxString const &text) {
  std::uint32_t count;
  std::memcpy(&count, text.c_str() - 16, sizeof count);
  return count;
}

bool contains(VxString const &text, std::string const &part) {
  return text.toStdString().find(part) != std::string::npos;
}

// The text of what `action` throws as this side's class E.
template <class E>
std::string caught(std::function<void()> const &action) {
  try {
    action();
  } catch (E const &e) {
    return e.what();
  } catch (...) {
    return "(another class)";
  }
  return "(nothing)";
}

// Whether the variant's elements are `values`; the range it lends is gone afterwards.
template <class T>
bool holds(VxVariantAbi const &variant, std::vector<T> const &values) {
  auto const elements = variant.asIterable<T>();
  return std::equal(values.begin(), values.end(), elements.begin(), elements.end());
}

template <class T>
constexpr bool isStdComplex =
    std::is_same_v<T, std::complex<float>> || std::is_same_v<T, std::complex<double>>;

// Element i of a sample array of T.
template <class T>
T sample(int i) {
  if constexpr (std::is_same_v<T, bool>) {
    return i % 2 == 1;
  } else if constexpr (std::is_same_v<T, VxString>) {
    return VxString("text " + std::to_string(i));
  } else if constexpr (std::is_same_v<T, Duration>) {
    return Duration(In::int128_t(i) * 1000);
  } else if constexpr (std::is_same_v<T, Timestamp>) {
    return Timestamp(Duration(In::int128_t(i) * 1000000));
  } else if constexpr (isStdComplex<T>) {
    return T(i, -i);
  } else if constexpr (std::is_class_v<T>) {
    using Part = decltype(T::re);
    return T(static_cast<Part>(i), static_cast<Part>(i % 2));
  } else {
    return static_cast<T>(i);
  }
}

// One element kind across the boundary and back.
template <class T>
void exchange() {
  using Kind = In::ElementKind<T>;
  context = Kind::name;
  std::vector<T> values;
  for (int i = 0; i < 6; ++i)
    values.push_back(sample<T>(i));

  VxVariantAbi const scalar(sample<T>(1));
  CHECK(scalar.isType<T>() && scalar.isScalarStorage() && scalar.at<T>(0) == sample<T>(1));

  VxVariantAbi array(values, {2, 3}, columnMajor);
  ArrayDimensionsView const dims = array.dimensions();
  CHECK(dims.count == 2 && dims[0] == 2 && dims[1] == 3 && array.dataOrdering() == columnMajor);
  CHECK(holds(array, values));

  // The library writes the document into a string of its own making.
  VxString const json = JsonFormatter::serialize(array);
  CHECK(countOf(json) == 1);
  CHECK(contains(json, std::string("\"_wellknowntype_\":\"") + Kind::name + '"') &&
        contains(json, "\"_dimensions_\":[2,3]") && contains(json, "\"columnMajor\""));

  // Writing a shared copy gives it a block of its own; once the copy is gone the holder is this
  // variant's alone again, so writing it keeps the block.
  {
    VxVariantAbi copy = array;
    T *block = copy.mutableStoredData<T>();
    CHECK(block != array.constStoredData<T>());
    block[0] = sample<T>(5);
    CHECK(array.at<T>(0) == sample<T>(0) && copy.at<T>(0) == sample<T>(5));
  }
  T const *before = array.constStoredData<T>();
  CHECK(array.mutableStoredData<T>() == before);

  // Numbers go to complex double and back by the library's conversion; the rest is refused with
  // the message this side builds.
  if constexpr (!In::IsInTypeList<T, In::OtherElementKinds>::value) {
    VxVariantAbi const wide = array.convertTo(wellKnownTypeOf<std::complex<double>>(), conversionCast);
    CHECK(wide.isType<std::complex<double>>() && wide.numberOfElements() == 6);
    CHECK(holds(wide.convertTo(wellKnownTypeOf<T>(), conversionCast), values));
  } else {
    std::string const expected = std::string("Cannot convert Tarvex::VantraCore::VxVariantAbi of type '") +
                                 Kind::messageName + "' (size: 6) to 'std::complex<double>'";
    CHECK(caught<std::runtime_error>(
              [&] { array.convertTo(wellKnownTypeOf<std::complex<double>>(), conversionCast); }) == expected);
  }
}

// Numbers written as text by the library, read here, parsed back by the library.
void numbersAsText() {
  context = "text";
  VxVariantAbi const numbers(std::vector<double>{0.5, 1, -2});
  VxVariantAbi const texts = numbers.convertTo(wellKnownTypeOf<VxString>(), conversionParse);
  VxString const *made = texts.constStoredData<VxString>();
  CHECK(made[0] == "0.5" && made[1] == "1.0" && made[2] == "-2.0" && countOf(made[1]) == 1);
  CHECK(texts.convertTo(wellKnownTypeOf<double>(), conversionParse).isIdenticalTo(numbers));
}

// A string made here and shared with the library's holders comes back to its own count.
void stringReferences() {
  context = "references";
  VxString const text("made on this side");
  {
    VxVariantAbi const one(text);
    VxVariantAbi const many(std::vector<VxString>(3, text));
    VxVariantAbi const shared = many;
    CHECK(countOf(text) == 5);
    CHECK(contains(JsonFormatter::serialize(shared, 0), "made on this side"));
    CHECK(one.get<VxString>() == text);
  }
  CHECK(countOf(text) == 1);
}

// Failures behind the C functions arrive as this side's standard classes with their texts.
void transportedFailures() {
  context = "failures";
  double const six[6] = {1, 2, 3, 4, 5, 6};
  CHECK(caught<std::invalid_argument>([] { VxString(nullptr, 3); }) == "VxString text is null");
  CHECK(caught<std::bad_alloc>([] { VxString("x", ~std::uint64_t(0) - 1); }) == std::bad_alloc().what());
  CHECK(caught<std::length_error>([&] {
          VxVariantAbi(six, 5, {2, 3}, rowMajor);
        }) == "dimensions do not match data length");
  VxVariantAbi array(six, 6, {2, 3}, rowMajor);
  CHECK(caught<std::length_error>([&] {
          array.reshape({4, 4});
        }) == "Cannot reshape array to given dimensions without reallocating.");
  VxVariantAbi const copy = array;
  CHECK(caught<std::runtime_error>([&] {
          array.reshape({3, 2});
        }) == "Reference count is greater than 1 - cannot reshape without reallocating.");
  CHECK(caught<std::runtime_error>(
            [&] { array.convertTo(WellKnownType(In::WellKnownTypeValue::typeCustom)); }) == "unknown type");
}

// A variant made here goes through the companion module into the library's unit conversion and back.
void unitsThroughTheCompanion() {
  context = "companion";
  std::int32_t const millivolts[6] = {1500, -250, 0, 4, 5, 6};
  VxVariantAbi const measured(millivolts, 6, {2, 3}, columnMajor);
  VxString const from("mV"), to("V");
  VxVariantAbi const volts = convertUnits(measured, from, to);
  CHECK(volts.isType<double>() && volts.dataOrdering() == columnMajor && volts.numberOfElements() == 6);
  CHECK(volts.isEquivalentTo(
      VxVariantAbi(std::vector<double>{1.5, -0.25, 0, 0.004, 0.005, 0.006}, {2, 3}, columnMajor),
      conversionLossless));
  CHECK(countOf(from) == 1 && countOf(to) == 1);

  CHECK(caught<std::runtime_error>([&] { convertUnits(measured, from, "m"); }) ==
        "To units are not commensurable - from: mV to m");
  // The companion's text is longer than the record carries.
  std::string const unknown(300, 'x');
  std::string const message = "Error constructing a unit from SI String " + unknown;
  CHECK(caught<std::runtime_error>([&] { convertUnits(measured, from, VxString(unknown)); }) ==
        message.substr(0, 199));
}

}  // namespace

int main() {
  In::forEachElementKind([](auto tag) { exchange<typename decltype(tag)::type>(); });
  numbersAsText();
  stringReferences();
  transportedFailures();
  unitsThroughTheCompanion();
  if (failures != 0) std::fprintf(stderr, "%d checks failed\n", failures);
  return failures == 0 ? 0 : 1;
}
