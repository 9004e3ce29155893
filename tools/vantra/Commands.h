#pragma once

#include <CLI/CLI.hpp>

namespace vantra {

// Each adds one subcommand to the tool, with its options and the work it does once parsed.
void addShowCommand(CLI::App &tool);
void addJsonCommand(CLI::App &tool);
void addConvertCommand(CLI::App &tool);
void addStatsCommand(CLI::App &tool);
void addPlotCommand(CLI::App &tool);
void addCsvCommands(CLI::App &tool);
void addUnitsCommand(CLI::App &tool);

}  // namespace vantra
