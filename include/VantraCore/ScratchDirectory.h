#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/Path.h>
#include <VantraCore/VxString.h>

namespace Tarvex::VantraCore::Experimental {

// Names the scratch root: temporary directory, `application` (the executable's stem when empty, or
// "Scratch" when neither gives a name), then `subName`. Only calls before the process's first
// makeUniqueScratchDirectory count.
VANTRACORE_API void setScratchDirectoryAppName(VxString application, VxString subName);

// A new directory below this process's scratch directory (the root and the decimal process id):
// `name`, or the first free of `name` followed by 1, 2, ... Returned normalised. The first call sets
// the scratch system up and removes directories that dead processes left in the root; should that
// fail it throws, and the next call tries again. A failed creation throws std::runtime_error
// "Failed to create directory \"<path>\".".
VANTRACORE_API Path makeUniqueScratchDirectory(VxString name);

}  // namespace Tarvex::VantraCore::Experimental
