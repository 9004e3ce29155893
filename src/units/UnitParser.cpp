#include <VantraCore/Unit.h>

#include <stdexcept>

namespace Tarvex::VantraCore::Experimental {

Unit Unit::fromIviUnitString(VxString const &) {
  throw std::logic_error("unit text parsing is not built yet");
}

void Unit::parseAndSetSiUnits(VxString const &) {
  throw std::logic_error("unit text parsing is not built yet");
}

Unit UnitType::getBaseMKSUnits() const {
  throw std::logic_error("unit text parsing is not built yet");
}

}  // namespace Tarvex::VantraCore::Experimental
