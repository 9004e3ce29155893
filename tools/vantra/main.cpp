// vantra: reads measurement documents, re-encodes them, converts their units and draws them.
#include "Commands.h"
#include "Errors.h"

#include <VantraCore/Version.h>

#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>
#include <string>

namespace {

// Some CLI11 messages name what went wrong in its own words; these name what the user typed.
std::string parseFailure(CLI::App &tool, CLI::ParseError const &failure, int argc, char **argv) {
  if (argc > 1 && argv[1][0] != '-' && tool.get_subcommands([&](CLI::App *command) {
                                            return command->get_name() == argv[1];
                                          }).empty())
    return "unknown command " + vantra::quoted(argv[1]);
  return failure.what();
}

}  // namespace

int main(int argc, char **argv) {
  // A reader that goes away is noticed as a failed write, not a signal in the middle of one.
  std::signal(SIGPIPE, SIG_IGN);
  return vantra::runGuarded([&] {
    CLI::App tool{"Reads, re-encodes, converts, draws and exports VantraCore measurement documents.",
                  "vantra"};
    tool.require_subcommand(1);
    tool.set_version_flag("--version",
                          std::string("vantra ") + VANTRACORE_VERSION_STRING + ", library " +
                              Tarvex::VantraCore::libraryVersion());
    vantra::addShowCommand(tool);
    vantra::addJsonCommand(tool);
    vantra::addConvertCommand(tool);
    vantra::addStatsCommand(tool);
    vantra::addPlotCommand(tool);
    vantra::addCsvCommands(tool);
    vantra::addUnitsCommand(tool);
    try {
      tool.parse(argc, argv);
    } catch (CLI::ParseError const &request) {
      // --help, --help-all and --version arrive here too, with exit code 0.
      if (request.get_exit_code() == 0) return tool.exit(request);
      return vantra::reportFailure(parseFailure(tool, request, argc, argv) + " (see --help)");
    }
    return 0;
  });
}
