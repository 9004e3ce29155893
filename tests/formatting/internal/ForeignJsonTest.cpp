#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <variant/ArrayHolders.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

using namespace Tarvex::VantraCore;
using nlohmann::json;

namespace {

// The compiler may name this file relative to the build folder, which holds the test program.
std::string const dataFolder = [] {
  namespace fs = std::filesystem;
  fs::path const data = fs::path(__FILE__).parent_path().parent_path() / "data";
  if (data.is_absolute()) return data.string() + "/";
  for (fs::path dir = fs::read_symlink("/proc/self/exe"); dir != dir.parent_path(); dir = dir.parent_path()) {
    if (fs::exists(dir / data / "unicode.json")) return (dir / data).string() + "/";
  }
  return data.string() + "/";
}();

// Equal as the low fidelity keeps plain JSON: empty containers turn null and numbers are doubles
// printed at 15 significant digits.
bool samePlain(json const &a, json const &b) {
  auto const empty = [](json const &j) {
    return j.is_null() || ((j.is_array() || j.is_object()) && j.empty());
  };
  if (empty(a) || empty(b)) return empty(a) && empty(b);
  if (a.is_number() && b.is_number()) {
    double const x = a.get<double>();
    double const y = b.get<double>();
    return std::fabs(x - y) <= 1e-14 * std::max(std::fabs(x), std::fabs(y));
  }
  if (a.type() != b.type() || a.size() != b.size()) return false;
  if (a.is_array()) return std::equal(a.begin(), a.end(), b.begin(), samePlain);
  if (a.is_object()) {
    return std::all_of(a.items().begin(), a.items().end(), [&](auto const &item) {
      return b.contains(item.key()) && samePlain(item.value(), b.at(item.key()));
    });
  }
  return a == b;
}

}  // namespace

// Documents as other programs write them: records from a web service, unicode, exponents, deep nesting.
TEST(ForeignJson, BothLenientReadersTakeItAndLowFidelityWritesItBack) {
  for (char const *name :
       {"repositories.json", "issues.json", "measurements.json", "deeply_nested.json", "unicode.json"}) {
    SCOPED_TRACE(name);
    std::ifstream file(dataFolder + name);
    ASSERT_TRUE(file.good());
    std::stringstream content;
    content << file.rdbuf();
    json const original = json::parse(content.str());

    PropertyNode const mid = JsonFormatterMidFidelity::deserializePropertyNode(content);
    EXPECT_EQ(mid.kind(), original.is_array() ? PropertyNodeKind::List : PropertyNodeKind::Map);

    PropertyNode const tree =
        JsonFormatterLowFidelity::deserializePropertyNode(VxString(content.str().c_str()));
    for (int indent : {-1, 2}) {
      std::string const written = JsonFormatterLowFidelity::serialize(tree, indent).data();
      EXPECT_TRUE(samePlain(original, json::parse(written))) << written;
    }
  }
}

// Custom kinds fail in every writer; the full one fails anywhere in a tree and leaves the stream untouched.
TEST(ForeignJson, WritersRefuseCustomKinds) {
  std::vector<std::uint64_t> const dims{2};
  VxVariant const custom =
      VxVariant::adoptHolder(Internal::CustomVectorVariantData<double>::create(dims, rowMajor, 2));
  EXPECT_THAT([&] { JsonFormatterLowFidelity::serialize(custom); }, throws<std::runtime_error>("unknown type"));
  auto const refused = throws<std::logic_error>("Cannot serialze custom types");
  EXPECT_THAT([&] { JsonFormatter::serialize(custom, -1); }, refused);
  PropertyMap map;
  map.insertOrAssign(InternedString("a"), PropertyNode(1.0));
  map.insertOrAssign(InternedString("z"), PropertyNode(PropertyList{PropertyNode(custom)}));
  std::ostringstream out;
  EXPECT_THAT([&] { JsonFormatter::serialize(PropertyNode(map), out, 2); }, refused);
  EXPECT_EQ(out.str(), "");
}
