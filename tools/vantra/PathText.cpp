#include "PathText.h"

#include "Errors.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <vector>

namespace vantra {

using Tarvex::VantraCore::InternedString;
using Tarvex::VantraCore::PropertyPath;

namespace {

bool allDigits(std::string const &segment) {
  return std::all_of(segment.begin(), segment.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

}  // namespace

PropertyPath parsePropertyPath(std::string const &text) {
  std::vector<PropertyPath::Segment> segments;
  std::string::size_type start = text.empty() || text.front() != '/' ? 0 : 1;
  if (start == text.size()) return PropertyPath();
  for (;;) {
    std::string::size_type const slash = text.find('/', start);
    std::string const segment =
        text.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
    if (segment.empty()) throw ToolError("bad property path " + quoted(text) + ": empty segment");
    if (allDigits(segment)) {
      errno = 0;
      unsigned long long const index = std::strtoull(segment.c_str(), nullptr, 10);
      if (errno == ERANGE)
        throw ToolError("bad property path " + quoted(text) + ": index " + segment + " is too large");
      segments.emplace_back(static_cast<std::uint64_t>(index));
    } else {
      segments.emplace_back(InternedString(segment.data(), segment.size()));
    }
    if (slash == std::string::npos) break;
    start = slash + 1;
  }
  return PropertyPath(std::move(segments));
}

}  // namespace vantra
