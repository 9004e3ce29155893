// Property paths walked down a tree read from text: the mutable and the frozen tree must agree on
// every path, to the node found or the failure's class and message (but for the class name in it),
// and printing a path never fails.
// Input: a JSON document, a NUL byte, then the path's steps: a byte below 0x80 starts a name of that
// many following bytes (at most what is left), 0x80 and above an index of its low seven bits, and
// 0xFF a negative index, which must be refused when the step is made.
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/PropertyPath.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

std::vector<PropertyPath::Segment> stepsOf(std::uint8_t const *data, std::size_t size) {
  std::vector<PropertyPath::Segment> steps;
  for (std::size_t at = 0; at < size;) {
    std::uint8_t const step = data[at++];
    if (step == 0xFF) {
      try {
        steps.emplace_back(-static_cast<int>(at));
      } catch (std::invalid_argument const &) {
        continue;
      }
      std::abort();
    } else if (step & 0x80) {
      steps.emplace_back(static_cast<std::uint64_t>(step & 0x7F));
    } else {
      std::size_t const length = step < size - at ? step : size - at;
      steps.emplace_back(InternedString(reinterpret_cast<char const *>(data + at), length));
      at += length;
    }
  }
  return steps;
}

// The outcome of a walk as text: what was found, written out, or the failure's class and message.
template <class Node>
std::string walk(Node &root, PropertyPath const &path) {
  try {
    return std::string("found ") + JsonFormatterLowFidelity::serialize(resolvePropertyPath(root, path)).data();
  } catch (std::exception const &error) {
    // The frozen tree's accessors name their own class: "FPropertyNode is not a map".
    std::string message = error.what();
    if (message.rfind("FPropertyNode ", 0) == 0) message.erase(0, 1);
    return std::string(typeid(error).name()) + ": " + message;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  char const *text = reinterpret_cast<char const *>(data);
  auto const *nul = static_cast<std::uint8_t const *>(std::memchr(data, 0, size));
  std::size_t const textSize = nul ? nul - data : size;
  PropertyNode tree;
  try {
    tree = JsonFormatterLowFidelity::deserializePropertyNode(VxString(text, textSize));
  } catch (std::exception const &) {
    return 0;
  }
  try {
    PropertyPath const path(nul ? stepsOf(nul + 1, size - textSize - 1) : std::vector<PropertyPath::Segment>{});
    std::ostringstream printed;
    PrintTo(path, &printed);
    if (printed.str().front() != '{' || printed.str().back() != '}') std::abort();
    FPropertyNode const frozen(tree);
    if (walk(tree, path) != walk(frozen, path)) std::abort();
    // Every prefix of a path that resolves resolves too.
    if (walk(tree, path).rfind("found ", 0) == 0)
      for (std::size_t n = 0; n < path.size(); ++n)
        if (walk(tree, PropertyPath({path.begin(), path.begin() + n})).rfind("found ", 0) != 0) std::abort();
  } catch (...) {
    std::abort();
  }
  return 0;
}
