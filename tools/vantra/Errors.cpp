#include "Errors.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace vantra {

namespace {

std::vector<std::string> &keptWarnings() {
  static std::vector<std::string> kept;
  return kept;
}

std::string oneLine(std::string line) {
  for (char &c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  while (!line.empty() && line.back() == ' ')
    line.pop_back();
  return line;
}

}  // namespace

std::string quoted(std::string const &what) {
  return "'" + what + "'";
}

int reportFailure(std::string const &message) {
  releaseWarnings(false);
  std::cerr << oneLine("vantra: " + message) << '\n';
  return exitBadInput;
}

void warn(std::string const &message) {
  keptWarnings().push_back(message);
}

void releaseWarnings(bool strict) {
  std::vector<std::string> warnings;
  warnings.swap(keptWarnings());
  if (strict && !warnings.empty()) throw ToolError(warnings.front() + " (refused by --strict)");
  for (std::string const &message : warnings)
    std::cerr << oneLine("vantra: warning: " + message) << '\n';
}

void endByBrokenPipe() {
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  std::_Exit(128 + SIGPIPE);
}

}  // namespace vantra
