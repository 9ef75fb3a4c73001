#include <CLI/CLI.hpp>

#include <iostream>

#include "cli_common.h"
#include "commands.h"

int main(int argc, char** argv) {
  CLI::App app{"tessaline: rasterizes the symbols of an SVG icon sprite into 256 x 256 PNG images"};
  app.name("tessaline");
  app.set_version_flag("--version", std::string("tessaline ") + TESSALINE_VERSION);
  app.require_subcommand(1);

  int exitCode = tessaline::cli::kExitOk;
  tessaline::cli::addListCommand(app, exitCode);
  tessaline::cli::addInspectCommand(app, exitCode);
  tessaline::cli::addRenderCommand(app, exitCode);
  tessaline::cli::addRenderAllCommand(app, exitCode);
  tessaline::cli::addSheetCommand(app, exitCode);
  tessaline::cli::addReportCommand(app, exitCode);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    // Usage errors: one clear line, exit status 2.
    std::string message = e.what();
    if (message.empty()) message = "invalid usage";
    tessaline::cli::printError(message + " (see tessaline --help)");
    return tessaline::cli::kExitUsage;
  }
  return exitCode;
}
