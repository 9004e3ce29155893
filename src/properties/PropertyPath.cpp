#include <VantraCore/PropertyPath.h>

#include <ostream>

namespace Tarvex::VantraCore {

void PrintTo(PropertyPath const &path, std::ostream *os) {
  *os << '{';
  char const *separator = "";
  for (PropertyPath::Segment const &segment : path) {
    *os << separator;
    if (segment.isIndex()) {
      *os << segment.index();
    } else {
      InternedString const name = segment.name();
      os->write(name.data(), static_cast<std::streamsize>(name.length()));
    }
    separator = ", ";
  }
  *os << '}';
}

}  // namespace Tarvex::VantraCore
