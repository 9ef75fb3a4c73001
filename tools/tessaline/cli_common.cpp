#include "cli_common.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace tessaline::cli {

void printError(const std::string& message) {
  std::cerr << "tessaline: " << message << '\n';
}

void addBackendOption(CLI::App& command, RasterBackend& backend) {
  command
      .add_option_function<std::string>(
          "--backend",
          [&backend](const std::string& name) {
            backend = name == "cairo" ? RasterBackend::Cairo : RasterBackend::Native;
          },
          "rasterizer: native (the default, fastest) or cairo (the reference)")
      // The check also folds the spelling to the listed one.
      ->check(CLI::IsMember({"native", "cairo"}, CLI::ignore_case))
      ->type_name("NAME");
}

std::optional<std::string> readDocument(const std::string& file) {
  if (file == "-") {
    std::ostringstream contents;
    contents << std::cin.rdbuf();
    if (std::cin.bad()) {
      printError("cannot read standard input");
      return std::nullopt;
    }
    return contents.str();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    printError("cannot read " + file + ": " + std::strerror(errno));
    return std::nullopt;
  }
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  } catch (const std::ios_base::failure&) {
    // The stream buffer throws on a failed read, such as reading a directory.
    printError("cannot read " + file + ": " + std::strerror(errno));
    return std::nullopt;
  }
  if (in.bad()) {
    printError("cannot read " + file + ": " + std::strerror(errno));
    return std::nullopt;
  }
  return text;
}

void addBatchOptions(CLI::App& command, int& jobs, RasterBackend& backend) {
  command.add_option("-j,--jobs", jobs, "worker threads (default: the machine's hardware threads)")
      ->check(CLI::Range(1, 256));
  addBackendOption(command, backend);
}

void setGuardedCallback(CLI::App& command, int& exitCode, std::function<int()> run) {
  command.callback([run = std::move(run), &exitCode] {
    try {
      exitCode = run();
    } catch (const std::exception& e) {
      printError(e.what());
      exitCode = kExitUsage;
    }
  });
}

}  // namespace tessaline::cli
