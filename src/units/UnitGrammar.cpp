#include <units/UnitGrammar.h>

#include <units/UnitSymbols.h>

#include <VantraCore/UnitString.h>

#include <algorithm>
#include <locale>
#include <string_view>

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
  std::size_t const windowSize = std::min(text.size() - start, s_atomWindow);
  // The pattern reads a copy of the window in which the Greek mu is the micro sign; the groups are
  // taken back onto `text` at the same positions.
  char window[s_atomWindow];
  std::copy_n(first, windowSize, window);
  std::string_view const windowText(window, windowSize);
  for (std::size_t at = windowText.find(s_greekMu); at != std::string_view::npos;
       at = windowText.find(s_greekMu, at + s_greekMu.size()))
    std::copy(s_microSign.begin(), s_microSign.end(), window + at);
  char const *const windowEnd = window + windowSize;
  std::cmatch match;
  if (!std::regex_search(static_cast<char const *>(window), windowEnd, match, unitAtomRegex(),
                         std::regex_constants::match_continuous)) {
    return false;
  }
  auto const inText = [&](std::csub_match const &group) {
    return group.matched
               ? std::string_view(first + (group.first - window), static_cast<std::size_t>(group.length()))
               : std::string_view();
  };
  groups.prefix = inText(match[1]);
  groups.unit = inText(match[2]);
  groups.exponent = inText(match[3]);
  if (!groups.exponent.empty() && match[3].second == windowEnd) {
    char const *const textEnd = text.data() + text.size();
    char const *digitsEnd = first + windowSize;
    while (digitsEnd != textEnd && isDigit(*digitsEnd))
      ++digitsEnd;
    groups.exponent = std::string_view(groups.exponent.data(),
                                       static_cast<std::size_t>(digitsEnd - groups.exponent.data()));
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
