#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace vantra {

// A failure the tool explains itself: its message is the whole line the user sees.
class ToolError : public std::runtime_error {
 public:
  explicit ToolError(std::string const &message) : std::runtime_error(message) {}
};

// The reader of standard output went away (a broken pipe): the run ends without a word.
struct ReaderGone {};

// The text of `what` quoted for a message.
std::string quoted(std::string const &what);
// Preferred to std::quoted, which argument lookup finds for a modifiable string.
inline std::string quoted(std::string &what) {
  return quoted(static_cast<std::string const &>(what));
}

// Runs `step`; a library failure becomes a ToolError "<context>: <library message>", so the user
// learns both what the tool was doing and what went wrong.
template <class Step>
auto withContext(std::string const &context, Step &&step) -> decltype(step()) {
  try {
    return std::forward<Step>(step)();
  } catch (ToolError const &) {
    throw;
  } catch (std::bad_alloc const &) {
    // A document may ask for more elements than memory holds.
    throw ToolError(context + ": out of memory");
  } catch (std::exception const &failure) {
    throw ToolError(context + ": " + failure.what());
  }
}

// The exit code of a run that failed on bad input or could not write its output.
inline constexpr int exitBadInput = 2;

// Writes "vantra: <message>" as one line on standard error, whatever line breaks the message holds,
// and returns exitBadInput.
int reportFailure(std::string const &message);

// A loss the work can go on past (a number written as null, a kind the reader did not know): kept
// until releaseWarnings, so that --strict can refuse the output before any of it is written.
void warn(std::string const &message);

// Writes the kept warnings, one "vantra: warning: ..." line each. With `strict`, the first of them
// becomes a ToolError instead.
void releaseWarnings(bool strict);

// Ends the process as a broken pipe does: quietly, by the signal.
[[noreturn]] void endByBrokenPipe();

// Runs the tool's work and turns every exception into one line on standard error and exitBadInput.
template <class Work>
int runGuarded(Work &&work) noexcept {
  try {
    int const code = std::forward<Work>(work)();
    releaseWarnings(false);
    return code;
  } catch (ReaderGone const &) {
    endByBrokenPipe();
  } catch (std::bad_alloc const &) {
    return reportFailure("out of memory");
  } catch (std::exception const &failure) {
    return reportFailure(failure.what());
  } catch (...) {
    return reportFailure("unexpected failure");
  }
}

}  // namespace vantra
