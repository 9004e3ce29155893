#include "Errors.h"

#include <iostream>

namespace vantra {

std::string quoted(std::string const &what) {
  return "'" + what + "'";
}

int reportFailure(std::string const &message) {
  std::string line = "vantra: " + message;
  for (char &c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  while (!line.empty() && line.back() == ' ')
    line.pop_back();
  std::cout.flush();
  std::cerr << line << '\n';
  return exitBadInput;
}

}  // namespace vantra
