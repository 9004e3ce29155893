#include <units/UnitGrammar.h>

#include <units/UnitSymbols.h>

#include <VantraCore/UnitString.h>

#include <locale>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

namespace {

// "a|b|c" of the rows' symbols; none of them holds a character the pattern would read specially.
template <class Rows>
std::string alternativesOf(Rows const &rows) {
  std::string text;
  for (auto const &row : rows) {
    if (!text.empty()) text += '|';
    text += row.symbol;
  }
  return text;
}

}  // namespace

std::string const &unitAtomPatternText() {
  // The degree sign, with an optional "C", is the last unit alternative; having no row, it reads as
  // dimensionless.
  static std::string const text = "^\\s*(" + alternativesOf(s_prefixes) + ")?(" +
                                  alternativesOf(s_unitSymbols) + "|\u00B0C?)(\\^[+-]?[1-9]\\d*)?";
  return text;
}

std::regex const &unitAtomRegex() {
  static std::regex const pattern = [] {
    std::regex made;
    made.imbue(std::locale::classic());
    made.assign(unitAtomPatternText(), std::regex::ECMAScript);
    return made;
  }();
  return pattern;
}

namespace {

// "\s" of the classic locale.
bool isPatternSpace(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

// Prefix and unit take at most 5 bytes, and "^", a sign and the first digit decide the exponent group;
// past that the group is a plain run of digits.
constexpr std::size_t s_atomWindow = 16;

std::string_view groupView(std::csub_match const &group) {
  if (!group.matched) return {};
  return std::string_view(group.first, static_cast<std::size_t>(group.second - group.first));
}

}  // namespace

bool matchUnitAtom(std::string_view text, UnitAtomGroups &groups) {
  // The library's backtracking matcher recurses once per repeated character, so a long run of blanks
  // or digits would exhaust the stack. Blanks are skipped here (no alternative begins with one, so
  // "\s*" takes them all anyway), the match runs on a short window, and a digit run cut by the window
  // is continued by hand ("\d*" is greedy and ends the pattern).
  std::size_t start = 0;
  while (start < text.size() && isPatternSpace(text[start]))
    ++start;
  char const *const first = text.data() + start;
  char const *const windowEnd = first + std::min(text.size() - start, s_atomWindow);
  std::cmatch match;
  if (!std::regex_search(first, windowEnd, match, unitAtomRegex(), std::regex_constants::match_continuous)) {
    return false;
  }
  groups.prefix = groupView(match[1]);
  groups.unit = groupView(match[2]);
  groups.exponent = groupView(match[3]);
  if (!groups.exponent.empty() && match[3].second == windowEnd) {
    char const *const textEnd = text.data() + text.size();
    char const *digitsEnd = windowEnd;
    while (digitsEnd != textEnd && isDigit(*digitsEnd))
      ++digitsEnd;
    groups.exponent =
        std::string_view(groups.exponent.data(), static_cast<std::size_t>(digitsEnd - match[3].first));
  }
  return true;
}

namespace {

// The validator's policy: the grammar alone, nothing computed.
struct ShapeOnly {
  struct Value {};
  static void atom(UnitAtomGroups const &, Value &) noexcept {}
  static void one(Value &) noexcept {}
  static void multiply(Value &, Value const &) noexcept {}
  static void divide(Value &, Value const &) noexcept {}
};

}  // namespace

bool validateIviUnitString(VxString const &text) {
  ShapeOnly::Value nothing;
  UnitTextForm form;
  return UnitGrammar<ShapeOnly>::text(std::string_view(text.data(), text.size()), nothing, form);
}

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
