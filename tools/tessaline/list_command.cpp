#include <iostream>
#include <memory>
#include <string>

#include "cli_common.h"
#include "commands.h"
#include "tessaline/svg_file.h"

namespace tessaline::cli {
namespace {

int runList(const std::string& file) {
  const std::optional<std::string> text = readDocument(file);
  if (!text) return kExitUsage;
  const SVGFile document(*text);
  if (document.symbolDefinitions.empty()) printError("no symbols found");
  // The table is ordered by byte order of its keys.
  for (const auto& entry : document.symbolDefinitions) std::cout << entry.first << '\n';
  std::cout.flush();
  return kExitOk;
}

}  // namespace

void addListCommand(CLI::App& app, int& exitCode) {
  CLI::App* command =
      app.add_subcommand("list", "Print every symbol key of FILE, one per line, in byte order");
  auto file = std::make_shared<std::string>();
  command->add_option("FILE", *file, "SVG document, or - for standard input")->required();
  command->callback([file, &exitCode] { exitCode = runList(*file); });
}

}  // namespace tessaline::cli
