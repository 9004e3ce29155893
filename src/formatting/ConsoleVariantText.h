#pragma once

#include <VantraCore/ConsoleFormatter.h>
#include <VantraCore/VxVariant.h>

#include <iosfwd>

// One variant's console text, for the tree drawing and the formatter's own members.
namespace Tarvex::VantraCore::Internal {

void writeConsoleVariant(std::ostream &out, VxVariant const &value, ConsoleOptions const &options);
void writeConsoleVariant(std::ostream &out, VxVariantAbi const &value, ConsoleOptions const &options);

}  // namespace Tarvex::VantraCore::Internal
