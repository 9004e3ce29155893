#pragma once

#include <VantraCore/PropertyNode.h>

namespace vantra {

// `tree` with every duration and timestamp value replaced by strings of the same shape: "1.5 s",
// "2026-11-21T14:03:07.25Z". The console formatter draws no time values; people read these.
Tarvex::VantraCore::PropertyNode readableTimes(Tarvex::VantraCore::PropertyNode tree);

}  // namespace vantra
