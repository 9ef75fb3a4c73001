// tessaline report FILE -o DIR [-j N]
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "cli_common.h"
#include "commands.h"
#include "html_report.h"
#include "safe_file_name.h"
#include "symbol_batch.h"
#include "tessaline/tessaline.h"

namespace tessaline::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kImageFolder = "images";
constexpr const char* kPageName = "index.html";

struct ReportOptions {
  std::string file;
  std::string directory;
  int jobs = 0;  // 0: one worker per hardware thread
  RasterBackend backend = RasterBackend::Native;
};

bool createFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder)) {
    printError("cannot create " + folder.string() +
               (error ? ": " + error.message() : ": not a folder"));
    return false;
  }
  return true;
}

bool writeText(const fs::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (!out) {
    printError("cannot write " + path.string());
    return false;
  }
  return true;
}

int runReport(const ReportOptions& options) {
  const std::optional<std::string> document = readDocument(options.file);
  if (!document) return kExitUsage;

  const fs::path directory(options.directory);
  if (!createFolder(directory / kImageFolder)) return kExitUsage;

  const SVGFile svgFile(*document);
  const std::vector<std::string> keys = keysInTableOrder(svgFile);
  ReportPage page;
  page.documentName =
      options.file == "-" ? "standard input" : fs::path(options.file).filename().string();
  page.version = TESSALINE_VERSION;
  page.entries.resize(keys.size());

  // Workers write their PNGs straight away and keep only the error texts.
  std::vector<std::optional<std::string>> failures(keys.size());
  renderKeysInParallel(svgFile, keys, static_cast<unsigned>(options.jobs), options.backend,
                       [&](std::size_t index, TessalineResponse response) {
                         ReportEntry& entry = page.entries[index];
                         entry.key = keys[index];
                         entry.errors = response.errors();
                         if (!response.bitmap()) return;
                         const std::string relative =
                             std::string(kImageFolder) + "/" + safeFileName(entry.key);
                         if (response.bitmap()->writePng((directory / relative).string())) {
                           entry.imagePath = relative;
                         } else {
                           failures[index] = "cannot write " + (directory / relative).string();
                         }
                       });
  for (const std::optional<std::string>& failure : failures) {
    if (failure) {
      printError(*failure);
      return kExitUsage;
    }
  }
  return writeText(directory / kPageName, renderReportHtml(page)) ? kExitOk : kExitUsage;
}

}  // namespace

void addReportCommand(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<ReportOptions>();
  CLI::App* command = app.add_subcommand(
      "report", "Write a static HTML page of every symbol's image, key and error texts");
  command->add_option("FILE", options->file, "SVG document, or - for standard input")->required();
  command
      ->add_option("-o,--output", options->directory,
                   "folder to write index.html and images/ into (created if missing)")
      ->required();
  addBatchOptions(*command, options->jobs, options->backend);
  setGuardedCallback(*command, exitCode, [options] { return runReport(*options); });
}

}  // namespace tessaline::cli
