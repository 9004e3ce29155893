#pragma once

#include <string>

// What the message and reporting machinery shares about the exception being handled. Each of these
// must run inside a catch block.
namespace Tarvex::VantraCore::Internal {

// The gathered text of an enriched exception, else a handler's description, else what(), else
// "Unknown exception encountered.".
std::string currentExceptionMessage();

// The first non-empty description from the registered handlers, newest first; empty if none.
std::string describeWithHandlers();

// Lets each registered handler, newest first, throw an enriched form of the exception in flight.
// Returns when none recognises it.
void rethrowWithHandlers(std::string const &info);

}  // namespace Tarvex::VantraCore::Internal
