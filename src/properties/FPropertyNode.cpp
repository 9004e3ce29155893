#include <VantraCore/FPropertyNode.h>

namespace Tarvex::VantraCore {

// Empty vectors are all zeros, so these are usable before any dynamic initialisation runs.
Internal::FPropertyListData const FPropertyList::s_nullListData{};
Internal::FPropertyMapData const FPropertyMap::s_nullMapData{};

}  // namespace Tarvex::VantraCore
