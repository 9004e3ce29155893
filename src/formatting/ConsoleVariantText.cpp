#include "ConsoleVariantText.h"

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/ElementKinds.h>

#include <algorithm>
#include <charconv>
#include <complex>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

namespace Tarvex::VantraCore::Internal {
namespace {

using Numbers = ConsoleOptions::Numbers;

// The type each element kind prints through: a time kind goes to int64_t, whose conversion refuses it.
template <class T>
using PrintedAs = std::conditional_t<
    std::is_same_v<T, VxString> || std::is_same_v<T, bool>, T,
    std::conditional_t<isComplexElement<T>, std::complex<double>,
                       std::conditional_t<isFloatingKind(wellKnownTypeOf<T>()), double,
                                          std::conditional_t<isUnsignedKind(wellKnownTypeOf<T>()),
                                                             std::uint64_t, std::int64_t>>>>;

// One printed element: strings quoted, floating numbers as the options ask, the rest through the
// stream. A float element came to double exactly, so its shortest text is taken as a float's: 0.1f
// prints "0.1", not the seventeen digits of the double.
class ElementText {
 public:
  ElementText(ConsoleOptions const &options, WellKnownType kind)
      : m_numbers(options.numbers),
        m_digits(std::clamp(options.significantDigits, 1, 17)),
        m_float(realPartKind(kind) == WellKnownTypeValue::typeFloat) {}

  void write(std::ostream &out, double value) const {
    if (m_numbers == Numbers::stream) {
      out << value;
      return;
    }
    char text[64];
    std::to_chars_result const written =
        m_numbers == Numbers::significantDigits
            ? std::to_chars(text, std::end(text), value, std::chars_format::general, m_digits)
        : m_float ? std::to_chars(text, std::end(text), static_cast<float>(value))
                  : std::to_chars(text, std::end(text), value);
    out.write(text, written.ptr - text);
  }
  void write(std::ostream &out, std::complex<double> const &value) const {
    if (m_numbers == Numbers::stream) {
      out << value;
      return;
    }
    out << '(';
    write(out, value.real());
    out << ',';
    write(out, value.imag());
    out << ')';
  }
  void write(std::ostream &out, VxString const &value) const {
    out << '\'';
    out.write(value.data(), static_cast<std::streamsize>(value.size()));
    out << '\'';
  }
  template <class T>
  void write(std::ostream &out, T const &value) const {
    out << value;
  }

 private:
  Numbers m_numbers;
  int m_digits;
  bool m_float;
};

bool printsLogically(ArrayDimensionsView dims, DataOrdering ordering, ConsoleOptions const &options) {
  return options.order == ConsoleOptions::Order::logical && ordering == DataOrdering::columnMajor &&
         dims.count > 1;
}

// Storage offsets of the first `count` elements in row-major order of a column-major array: an
// odometer over the indices, the last running fastest.
std::vector<std::uint64_t> logicalOffsets(ArrayDimensionsView dims, std::uint64_t count) {
  std::vector<std::uint64_t> strides(dims.count, 1);
  for (std::uint64_t d = 1; d < dims.count; ++d)
    strides[d] = strides[d - 1] * dims.sizes[d - 1];
  std::vector<std::uint64_t> indices(dims.count, 0);
  std::vector<std::uint64_t> offsets;
  offsets.reserve(count);
  std::uint64_t offset = 0;
  while (offsets.size() < count) {
    offsets.push_back(offset);
    for (std::uint64_t d = dims.count; d-- > 0;) {
      if (++indices[d] < dims.sizes[d]) {
        offset += strides[d];
        break;
      }
      offset -= (indices[d] - 1) * strides[d];
      indices[d] = 0;
    }
  }
  return offsets;
}

// The elements to print, `count` of them, in the order asked: the value itself when that is all of it
// as stored, else a flat copy of just those elements, so that a long array costs what it shows.
template <class T, class Storage>
VxVariantGeneric<Storage> shownElements(VxVariantGeneric<Storage> const &value, std::uint64_t count,
                                        bool logical) {
  if (!logical && count == value.numberOfElements()) return value;
  auto shown = VxVariantGeneric<Storage>::template withShape<T>({count});
  T const *from = value.template constStoredData<T>();
  T *to = shown.template mutableStoredData<T>();
  if (logical) {
    for (std::uint64_t const offset : logicalOffsets(value.dimensions(), count))
      *to++ = from[offset];
  } else {
    std::copy(from, from + count, to);
  }
  return shown;
}

// The shown elements as P. A refused conversion fails with the message about the whole value.
template <class P, class Storage>
auto printable(VxVariantGeneric<Storage> const &shown, VxVariantGeneric<Storage> const &value) {
  VxVariantGeneric<Storage> const converted = shown.tryConvertTo(wellKnownTypeOf<P>(), conversionCast);
  if (converted.isNull()) value.convertTo(wellKnownTypeOf<P>(), conversionCast);
  return converted.template asIterable<P>();
}

template <class Elements>
void writeElements(std::ostream &out, Elements const &elements, std::uint64_t shown, std::uint64_t left,
                   bool bracketed, ElementText const &text) {
  if (bracketed) out << '[';
  char const *separator = "";
  for (auto it = elements.begin(); it != elements.begin() + shown; ++it) {
    out << separator;
    text.write(out, *it);
    separator = ", ";
  }
  if (left != 0) out << separator << "... " << std::to_string(left) << " more";
  if (bracketed) out << ']';
}

// "double[2x3] ", with the ordering when the elements come as stored and that is column-major; a
// scalar's kind alone.
void writeShape(std::ostream &out, WellKnownType kind, ArrayDimensionsView dims, bool scalar,
                bool columnMajorShown) {
  VxStringView const name = kind.toString();
  out.write(name.data(), static_cast<std::streamsize>(name.size()));
  if (!scalar) {
    std::string shape = "[";
    for (std::uint64_t d = 0; d < dims.count; ++d)
      shape += (d == 0 ? "" : "x") + std::to_string(dims.sizes[d]);
    out << shape << (columnMajorShown ? " column-major]" : "]");
  }
  out << ' ';
}

bool showsShape(ArrayDimensionsView dims, ConsoleOptions const &options) {
  return options.shapes == ConsoleOptions::Shapes::always ||
         (options.shapes == ConsoleOptions::Shapes::rank2AndAbove && dims.count > 1);
}

template <class Storage>
void writeVariant(std::ostream &out, VxVariantGeneric<Storage> const &value, ConsoleOptions const &options) {
  std::uint64_t const count = value.numberOfElements();
  if (count == 0 && value.isNull()) {
    out << "null";
    return;
  }
  ArrayDimensionsView const dims = value.dimensions();
  WellKnownType const kind = value.wellKnownDataType();
  bool const logical = printsLogically(dims, value.dataOrdering(), options);
  if (showsShape(dims, options))
    writeShape(out, kind, dims, value.isScalarStorage(),
               !logical && dims.count > 1 && value.dataOrdering() == DataOrdering::columnMajor);
  if (count == 0) {
    out << "[]";
    return;
  }
  std::uint64_t const shown = std::min(count, options.maxElements);
  bool const bracketed =
      shown < count || !std::all_of(dims.begin(), dims.end(), [](std::uint64_t size) { return size == 1; });
  ElementText const text(options, kind);
  findElementKind(
      kind,
      [&](auto tag) {
        using T = typename decltype(tag)::type;
        using P = PrintedAs<T>;
        if constexpr (std::is_same_v<T, bool>) out << std::boolalpha;
        // Converted before anything is written, so a refused kind leaves no opening bracket behind.
        auto const elements = printable<P>(shownElements<T>(value, shown, logical), value);
        writeElements(out, elements, shown, count - shown, bracketed, text);
      },
      // A kind outside the list (a custom one) goes the way of the signed integers, converted whole.
      [&] {
        VxVariantGeneric<Storage> const whole =
            value.convertTo(wellKnownTypeOf<std::int64_t>(), conversionCast);
        auto const elements =
            shownElements<std::int64_t>(whole, shown, logical).template asIterable<std::int64_t>();
        writeElements(out, elements, shown, count - shown, bracketed, text);
      });
}

}  // namespace

void writeConsoleVariant(std::ostream &out, VxVariant const &value, ConsoleOptions const &options) {
  writeVariant(out, value, options);
}

void writeConsoleVariant(std::ostream &out, VxVariantAbi const &value, ConsoleOptions const &options) {
  writeVariant(out, value, options);
}

}  // namespace Tarvex::VantraCore::Internal
