// tessaline render FILE KEY [-o OUT.png] [--json]
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "cli_common.h"
#include "commands.h"
#include "safe_file_name.h"
#include "tessaline/tessaline.h"

namespace tessaline::cli {
namespace {

struct RenderOptions {
  std::string file;
  std::string key;
  std::string output;
  bool json = false;
  RasterBackend backend = RasterBackend::Native;
};

int runRender(const RenderOptions& options) {
  const std::optional<std::string> document = readDocument(options.file);
  if (!document) return kExitUsage;

  const SVGFile svgFile(*document);
  const TessalineResponse response = svgFile.getUIImageForKey(options.key, options.backend);

  if (response.bitmap()) {
    const std::string output = options.output.empty() ? safeFileName(options.key) : options.output;
    if (!response.bitmap()->writePng(output)) {
      printError("cannot write " + output);
      return kExitUsage;
    }
  }

  if (options.json) {
    nlohmann::ordered_json result;
    result["key"] = options.key;
    result["bitmap"] = response.bitmap().has_value();
    result["errors"] = response.errors();
    // Replace rather than throw on bytes that are not UTF-8: keys come from arbitrary documents.
    std::cout << result.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
  } else {
    for (const std::string& error : response.errors()) std::cout << error << '\n';
  }
  std::cout.flush();
  return response.bitmap() ? kExitOk : kExitNotFound;
}

}  // namespace

void addRenderCommand(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<RenderOptions>();
  CLI::App* command = app.add_subcommand(
      "render", "Render one symbol into a 256 x 256 PNG and print its error texts");
  command->add_option("FILE", options->file, "SVG document, or - for standard input")->required();
  command->add_option("KEY", options->key, "id of the symbol to render")->required();
  command->add_option("-o,--output", options->output,
                      "PNG file to write (default: the key's safe file name, here)");
  command->add_flag("--json", options->json,
                    "print {\"key\", \"bitmap\", \"errors\"} as one JSON object instead");
  addBackendOption(*command, options->backend);
  command->callback([options, &exitCode] { exitCode = runRender(*options); });
}

}  // namespace tessaline::cli
