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

// The text of `what` quoted for a message.
std::string quoted(std::string const &what);

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

// The exit code of a run that failed on bad input.
inline constexpr int exitBadInput = 2;

// Writes "vantra: <message>" as one line on standard error, whatever line breaks the message holds,
// and returns exitBadInput.
int reportFailure(std::string const &message);

// Runs the tool's work and turns every exception into one line on standard error and exitBadInput.
template <class Work>
int runGuarded(Work &&work) noexcept {
  try {
    return std::forward<Work>(work)();
  } catch (std::bad_alloc const &) {
    return reportFailure("out of memory");
  } catch (std::exception const &failure) {
    return reportFailure(failure.what());
  } catch (...) {
    return reportFailure("unexpected failure");
  }
}

}  // namespace vantra
