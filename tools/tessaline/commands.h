#pragma once

#include <CLI/CLI.hpp>

namespace tessaline::cli {

// Each subcommand registers itself on the app and stores its exit status in `exitCode` when run.
void addListCommand(CLI::App& app, int& exitCode);
void addInspectCommand(CLI::App& app, int& exitCode);
void addRenderCommand(CLI::App& app, int& exitCode);
void addRenderAllCommand(CLI::App& app, int& exitCode);
void addSheetCommand(CLI::App& app, int& exitCode);
void addReportCommand(CLI::App& app, int& exitCode);

}  // namespace tessaline::cli
