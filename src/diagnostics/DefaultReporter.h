#pragma once

#include <VantraCore/ExceptionReporter.h>

namespace Tarvex::VantraCore::Internal {

// The reporter on standard error that the first report finds when no global reporter is set. Made
// on first call, registering itself as the active global reporter; lives to process exit.
Experimental::ExceptionReporterBase &defaultReporter();

}  // namespace Tarvex::VantraCore::Internal
