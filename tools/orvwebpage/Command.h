#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A subcommand: its CLI11 app (options bound to locals of the factory) and
// the action to run once it was chosen. The action returns the exit status.
struct Command {
  CLI::App* app = nullptr;
  std::function<int()> run;
};

// Anything that stops a command after parsing: exit status 1, one line on
// stderr. A command asked for JSON also prints {"url":...,"error":...} on
// stdout when it names the input it could not read.
struct CommandError : std::runtime_error {
  using std::runtime_error::runtime_error;
  CommandError(const std::string& source, const std::string& why, bool asJson)
      : std::runtime_error("cannot read " + source + ": " + why),
        input(source),
        reason(why),
        json(asJson) {}
  std::string input;
  std::string reason;
  bool json = false;
};

// Texts handed to the library have 32-bit lengths.
constexpr size_t kMaxTextSize = 0x7fffffff;

// Throws CommandError naming what (e.g. "line 3") when size is above kMaxTextSize.
void CheckTextSize(size_t size, const std::string& what);

// Contents of a file, or of stdin for "-"; a CommandError saying why not.
std::string ReadInput(const std::string& path, bool json = false);

// Calls visit with every line of text that is not empty, without its line
// break and without a CR before it.
void ForEachInputLine(const std::string& text, const std::function<void(std::string_view)>& visit);

// The arguments with each "-" replaced by the lines of stdin, one URL a line.
std::vector<std::string> WithStdinLines(const std::vector<std::string>& args);

// Where the help of commands that print keys sends the reader.
inline constexpr const char* kKeyNotation =
    "Keys are written in a notation of their own (\\$, ^\\$, /\\s, /\\d, /\\S, \\E, ^?): "
    "see \"Key notation\" in the README or the manual page.";

// Command factories, one per subcommand, each in a file of its own.
Command AddUrlCommand(CLI::App& parent);
Command AddKeysCommand(CLI::App& parent);
Command AddSearchCommand(CLI::App& parent);
Command AddLinksCommand(CLI::App& parent);
Command AddEstimateCommand(CLI::App& parent);
Command AddNodesCommand(CLI::App& parent);
Command AddSizeCommand(CLI::App& parent);
