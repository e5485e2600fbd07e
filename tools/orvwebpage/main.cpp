#include <cstring>
#include <iostream>
#include <vector>

#include "Command.h"
#include "JsonOutput.h"
#include "ShownText.h"
#include "orvwebpage/OrvVersion.h"

namespace {

// Help shows value names as a user reads them: "--delay MS", not the
// validator's ranges or "TEXT:TEXT".
void PlainValueNames(CLI::App* app) {
  for (CLI::Option* option : app->get_options()) {
    if (option->get_type_size() == 0) continue;  // a flag
    std::string name;
    for (int i = 0;; i++) {
      CLI::Validator* validator = nullptr;
      try {
        validator = option->get_validator(i);
      } catch (const CLI::OptionNotFound&) {
        break;
      }
      if (!validator->get_description().empty()) name = validator->get_description();
      validator->description("");
    }
    if (option->get_positional())
      option->type_name("");
    else if (!name.empty())
      option->type_name(name);
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"orvwebpage: what the shape of URLs, links and pages says about a site"};
  app.set_version_flag("--version", ORV_VERSION);
  app.require_subcommand(1);

  const std::vector<Command (*)(CLI::App&)> factories = {
      AddUrlCommand,      AddKeysCommand,  AddSearchCommand, AddLinksCommand,
      AddEstimateCommand, AddNodesCommand, AddSizeCommand};
  std::vector<Command> commands;
  for (auto add : factories) commands.push_back(add(app));
  for (auto& command : commands) PlainValueNames(command.app);
  app.name("orvwebpage");
  app.footer("Run 'orvwebpage help COMMAND' for the options of one command.");

  if (argc >= 2 && std::strcmp(argv[1], "help") == 0) {
    CLI::App* shown = &app;
    if (argc >= 3) {
      for (auto& command : commands)
        if (command.app->get_name() == argv[2]) shown = command.app;
      if (shown == &app) {
        std::cerr << "orvwebpage: no command named " << ShownText(argv[2])
                  << "; run orvwebpage --help\n";
        return 2;
      }
    }
    std::cout << (shown == &app ? app.help() : shown->help("orvwebpage"));
    return 0;
  }
  if (argc >= 2 && argv[1][0] != '-') {
    bool known = false;
    for (auto& command : commands) known |= command.app->get_name() == argv[1];
    if (!known) {
      std::cerr << "orvwebpage: no command named " << ShownText(argv[1])
                << "; run orvwebpage --help\n";
      return 2;
    }
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "orvwebpage: " << ShownText(e.what()) << "\n";
    return 2;
  }

  try {
    for (auto& command : commands)
      if (command.app->parsed()) return command.run();
  } catch (const CommandError& e) {
    if (e.json) PrintJson(nlohmann::ordered_json{{"url", e.input}, {"error", e.reason}}, kOneLine);
    std::cerr << "orvwebpage: " << ShownText(e.what()) << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "orvwebpage: " << ShownText(e.what()) << "\n";
    return 1;
  }
  return 2;
}
