#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>

#include "tessaline/raster_backend.h"

namespace tessaline::cli {

// Exit statuses shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitNotFound = 1;
inline constexpr int kExitUsage = 2;

// The whole text of FILE, or of standard input when FILE is "-". On failure prints one line
// "tessaline: cannot read FILE: reason" on standard error and returns nullopt.
std::optional<std::string> readDocument(const std::string& file);

// Prints "tessaline: MESSAGE" on standard error.
void printError(const std::string& message);

// `--backend native|cairo`: which rasterizer draws the images (native unless asked).
void addBackendOption(CLI::App& command, RasterBackend& backend);

// `-j,--jobs N` and `--backend NAME`, shared by every command that renders all symbols.
void addBatchOptions(CLI::App& command, int& jobs, RasterBackend& backend);

// Makes `run` the command's action: its result becomes the exit status, and an exception thrown
// on the way (a failed write deep in a writer) becomes one error line and status 2.
void setGuardedCallback(CLI::App& command, int& exitCode, std::function<int()> run);

}  // namespace tessaline::cli
