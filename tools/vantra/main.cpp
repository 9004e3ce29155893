// vantra: reads measurement documents, re-encodes them, converts their units and draws them.
#include "Commands.h"
#include "Errors.h"

#include <CLI/CLI.hpp>

#include <string>

int main(int argc, char **argv) {
  return vantra::runGuarded([&] {
    CLI::App tool{"Reads, re-encodes, converts and draws VantraCore measurement documents.", "vantra"};
    tool.require_subcommand(1);
    vantra::addShowCommand(tool);
    vantra::addJsonCommand(tool);
    vantra::addConvertCommand(tool);
    vantra::addUnitsCommand(tool);
    try {
      tool.parse(argc, argv);
    } catch (CLI::ParseError const &request) {
      // --help and --help-all arrive here too, with exit code 0.
      if (request.get_exit_code() == 0) return tool.exit(request);
      return vantra::reportFailure(std::string(request.what()) + " (see --help)");
    }
    return 0;
  });
}
