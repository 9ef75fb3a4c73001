#include <iostream>
#include <memory>
#include <string>

#include "cli_common.h"
#include "commands.h"
#include "definition_json.h"
#include "json_writer.h"
#include "parse/svg_definition.h"
#include "tessaline/svg_file.h"

namespace tessaline::cli {
namespace {

struct InspectOptions {
  std::string file;
  std::string key;
  bool hasKey = false;
};

int runInspect(const InspectOptions& options) {
  const std::optional<std::string> text = readDocument(options.file);
  if (!text) return kExitUsage;
  const SVGFile document(*text);
  if (document.symbolDefinitions.empty()) printError("no symbols found");

  if (!options.hasKey) {
    writeJson(std::cout, documentJson(document));
    std::cout.flush();
    return kExitOk;
  }
  auto found = document.symbolDefinitions.find(options.key);
  if (found == document.symbolDefinitions.end()) {
    printError("no symbol with key \"" + options.key + "\" in " + options.file);
    return kExitNotFound;
  }
  writeJson(std::cout, definitionJson(*found->second));
  std::cout.flush();
  return kExitOk;
}

}  // namespace

void addInspectCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand(
      "inspect", "Print the parsed symbol table of FILE as JSON, or only the definition of KEY");
  auto options = std::make_shared<InspectOptions>();
  command->add_option("FILE", options->file, "SVG document, or - for standard input")->required();
  CLI::Option* key = command->add_option("KEY", options->key, "print only this symbol (exact id)");
  command->callback([options, key, &exitCode] {
    options->hasKey = key->count() > 0;
    exitCode = runInspect(*options);
  });
}

}  // namespace tessaline::cli
