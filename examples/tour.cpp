// A short walk through what VantraCore offers so far: shared strings, interned names, text
// utilities, 128-bit integers, femtosecond time values, element kinds, array indexing and variants.
#include <VantraCore/VantraCore.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <vector>

using namespace Tarvex::VantraCore;

int main() {
  // Strings share one record: copying is an atomic increment, never a copy of the text.
  VxString const channel = "Voltage";
  VxString const label = channel + " [mV]";
  VxString const copy = label;
  std::cout << "label:      " << label << " (" << label.length()
            << " bytes, shared: " << (copy.data() == label.data() ? "yes" : "no") << ")\n";

  // Equal names are interned once and compare by address.
  InternedString const a("Scale");
  InternedString const b(VxStringView(VxString("Scale")));
  std::cout << "interned:   two \"Scale\" names share " << (a == b ? "one address" : "nothing") << "\n";

  // Small text chores.
  for (VxString const &token : tokenize("3.5, 12,,1e3", ", ", false)) {
    nonstd::optional<int> const rounded = toInt(token);
    std::cout << "token:      " << padString(addQuotes(token), 8) << " -> "
              << (rounded ? fromInt(*rounded) : VxString("(none)")) << '\n';
  }
  std::cout << "double:     " << fromDouble(1500, DoubleFormat::scientificUpper, 2) << '\n';

  // 128-bit integers wrap like the built-in ones and print in any base from 2 to 16.
  Internal::uint128_t const big = Internal::uint128_t(1, 0) * 1000000007u;
  std::cout << "uint128:    " << big.str() << " = 0x" << big.str(16) << '\n';

  // Durations and timestamps count femtoseconds in 128 bits.
  Duration const tick = std::chrono::duration_cast<Duration>(std::chrono::nanoseconds(1));
  std::cout << "duration:   1 ns = " << tick.count().str() << " fs\n";

  // Element kinds have one code, one text and one dispatch.
  WellKnownType const common = WellKnownType::getCommonWellKnownType(wellKnownTypeOf<std::int32_t>(),
                                                                     wellKnownTypeOf<std::uint32_t>());
  std::cout << "kinds:      int32 with unsignedInt32 -> " << common.toString() << '\n';
  std::size_t const bytes =
      Internal::dispatchWellKnownType(WellKnownType(VxStringView("complexDouble")),
                                      [](auto tag) { return sizeof(typename decltype(tag)::type); });
  std::cout << "            complexDouble elements take " << bytes << " bytes\n";

  // Row-major and column-major offsets of one element of a 2x3x4 array.
  std::vector<std::uint64_t> const dims{2, 3, 4};
  std::vector<std::uint64_t> const at{1, 0, 2};
  std::cout << "indexing:   [1,0,2] in 2x3x4 is offset "
            << ArrayIndexing::calculateOffsetRowMajor(at, ArrayDimensionsView(dims), true) << " row-major, "
            << ArrayIndexing::calculateOffsetColumnMajor(at, ArrayDimensionsView(dims), true)
            << " column-major\n";

  // A variant holds a scalar or an array of any element kind; loops read its block in place.
  VxVariant const counts(std::vector<std::int32_t>{3, 1, 4, 1, 5, 9}, {2, 3});
  double sum = 0;
  for (double x : counts.asIterable<double>(conversionLossless))  // converted once, then read in place
    sum += x;
  VxVariant const scaled = counts.convertTo(wellKnownTypeOf<float>());
  std::cout << "variant:    2x3 int32 sums to " << sum << "; as float, element 5 is " << scaled.at<float>(5)
            << '\n';

  // Property trees hold variants under interned names; a frozen copy is shared read-only.
  PropertyNode channelNode{PropertyMap()};
  channelNode.set(InternedString("name"), label);
  channelNode.set(InternedString("samples"), counts);
  FPropertyNode const frozen(channelNode);
  std::cout << "tree:       " << frozen.map().size() << " entries, name is "
            << frozen.map().at(InternedString("name")).value().get<VxString>() << '\n';
  return 0;
}
