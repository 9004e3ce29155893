#pragma once

// The unit text grammar, shared by the validator (which only answers yes or no) and the parser (which
// also computes dimensions and scale). One walker, two value policies, so the two can never disagree
// on what is well-formed.

#include <algorithm>
#include <cstddef>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

// The whole atom pattern, "^\s*" + prefix "?" + unit + exponent "?", the prefix and unit groups
// listing the symbols of UnitSymbols.h.
std::string const &unitAtomPatternText();
// The atom pattern compiled once, ECMAScript, in the classic locale.
std::regex const &unitAtomRegex();

// The three groups of one atom match; `exponent` keeps its "^".
struct UnitAtomGroups {
  std::string_view prefix;
  std::string_view unit;
  std::string_view exponent;

  // What the atom consumes: the blanks skipped in front are not counted.
  std::size_t length() const noexcept { return prefix.size() + unit.size() + exponent.size(); }
};

// Applies the atom pattern at the start of `text`. Same answer as a plain std::regex_search over the
// whole text, but with bounded work and stack depth whatever the text's length.
bool matchUnitAtom(std::string_view text, UnitAtomGroups &groups);

// How a whole text was read.
enum class UnitTextForm { empty, decibel, logarithm, linear };

// The recursive descent of the grammar over a value policy `Ops`:
//   using Value;                                  dimensions and scale, or nothing
//   static void atom(UnitAtomGroups const &, Value &);   may throw (exponent beyond int)
//   static void one(Value &);                     the bare "1" of an expression
//   static void multiply(Value &, Value const &); left times right
//   static void divide(Value &, Value const &);   left over right
// Each step takes the input, fills the value and the unread rest, and answers whether it matched.
template <class Ops>
struct UnitGrammar {
  using Value = typename Ops::Value;

  // Parentheses nest by recursion; deeper texts are refused rather than risk the stack.
  static constexpr int maxNesting = 200;

  static bool atom(std::string_view s, Value &value, std::string_view &rest) {
    if (s.empty()) return false;
    UnitAtomGroups groups;
    if (!matchUnitAtom(s, groups)) return false;
    Ops::atom(groups, value);
    rest = s.substr(std::min(s.size(), groups.length()));
    return true;
  }

  static bool factor(std::string_view s, Value &value, std::string_view &rest, int depth) {
    if (s.empty() || s.front() != '(') return atom(s, value, rest);
    if (depth >= maxNesting) return false;
    if (!expression(s.substr(1), value, rest, depth + 1)) return false;
    // A missing ")" is left for the caller's check of the rest.
    if (!rest.empty() && rest.front() == ')') rest.remove_prefix(1);
    return true;
  }

  // "a*b*c" reads as a*(b*c). The chain is walked in a loop so that a long product cannot exhaust the
  // stack, and folded from the right so the scale rounds as the right-nested reading does.
  static bool product(std::string_view s, Value &value, std::string_view &rest, int depth) {
    if (!factor(s, value, rest, depth)) return false;
    if (rest.empty() || rest.front() != '*') return true;
    std::vector<Value> operands;
    std::string_view tail = rest;
    while (!tail.empty() && tail.front() == '*') {
      operands.emplace_back();
      if (!factor(tail.substr(1), operands.back(), tail, depth)) return false;
    }
    for (std::size_t i = operands.size() - 1; i > 0; --i)
      Ops::multiply(operands[i - 1], operands[i]);
    Ops::multiply(value, operands.front());
    rest = tail;
    return true;
  }

  static bool expression(std::string_view s, Value &value, std::string_view &rest, int depth) {
    if (!product(s, value, rest, depth)) {
      if (s.empty() || s.front() != '1') return false;
      rest = s.substr(1);
      Ops::one(value);
    }
    if (rest.empty() || rest.front() != '/') return true;
    Value denominator{};
    std::string_view denominatorRest;
    if (!factor(rest.substr(1), denominator, denominatorRest, depth)) return false;
    rest = denominatorRest;
    Ops::divide(value, denominator);
    return true;
  }

  // The whole text: empty, "dB(" expression ")", "log(" expression ")", or an expression.
  static bool text(std::string_view s, Value &value, UnitTextForm &form) {
    std::string_view rest;
    for (auto [opening, wrapped] : {std::pair{std::string_view("dB("), UnitTextForm::decibel},
                                    std::pair{std::string_view("log("), UnitTextForm::logarithm}}) {
      if (s.substr(0, opening.size()) == opening) {
        form = wrapped;
        // The expression's own answer does not matter: only a lone ")" may follow it.
        expression(s.substr(opening.size()), value, rest, 0);
        return rest == ")";
      }
    }
    if (s.empty()) {
      form = UnitTextForm::empty;
      return true;
    }
    form = UnitTextForm::linear;
    return expression(s, value, rest, 0) && rest.empty();
  }
};

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
