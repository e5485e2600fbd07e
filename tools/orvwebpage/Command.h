#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

// A subcommand: its CLI11 app (options bound to locals of the factory) and
// the action to run once it was chosen. The action returns the exit status.
struct Command {
  CLI::App* app = nullptr;
  std::function<int()> run;
};

// Anything that stops a command after parsing: exit status 1, one line on stderr.
struct CommandError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Contents of a file, or of stdin for "-".
std::string ReadInput(const std::string& path);

// Calls visit with every line of text that is not empty, without its line
// break and without a CR before it.
void ForEachInputLine(const std::string& text, const std::function<void(std::string_view)>& visit);

// Command factories, one per subcommand, each in a file of its own.
Command AddUrlCommand(CLI::App& parent);
Command AddKeysCommand(CLI::App& parent);
Command AddSearchCommand(CLI::App& parent);
Command AddLinksCommand(CLI::App& parent);
Command AddEstimateCommand(CLI::App& parent);
Command AddNodesCommand(CLI::App& parent);
Command AddSizeCommand(CLI::App& parent);
