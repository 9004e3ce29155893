#pragma once

#include <VantraCore/PropertyPath.h>

#include <string>

namespace vantra {

// A property path from text: segments separated by "/", a segment of digits being a list index and
// any other a map key. A leading "/" is allowed; "" and "/" name the root. An empty segment or an
// index too large for 64 bits throws ToolError.
Tarvex::VantraCore::PropertyPath parsePropertyPath(std::string const &text);

}  // namespace vantra
