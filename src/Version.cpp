#include <VantraCore/Version.h>

namespace Tarvex::VantraCore {

char const *libraryVersion() noexcept {
  return VANTRACORE_VERSION_STRING;
}

}  // namespace Tarvex::VantraCore
