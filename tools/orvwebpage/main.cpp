#include <iostream>
#include <vector>

#include "Command.h"
#include "orvwebpage/OrvVersion.h"

int main(int argc, char** argv) {
  CLI::App app{"orvwebpage: what the shape of URLs, links and pages says about a site"};
  app.set_version_flag("--version", ORV_VERSION);
  app.require_subcommand(1);

  const std::vector<Command (*)(CLI::App&)> factories = {
      AddUrlCommand,      AddKeysCommand,  AddSearchCommand, AddLinksCommand,
      AddEstimateCommand, AddNodesCommand, AddSizeCommand};
  std::vector<Command> commands;
  for (auto add : factories) commands.push_back(add(app));

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "orvwebpage: " << e.what() << "\n";
    return 2;
  }

  try {
    for (auto& command : commands)
      if (command.app->parsed()) return command.run();
  } catch (const std::exception& e) {
    std::cerr << "orvwebpage: " << e.what() << "\n";
    return 1;
  }
  return 2;
}
