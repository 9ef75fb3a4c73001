// tessaline render-all FILE -o DIR [-j N]
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "cli_common.h"
#include "commands.h"
#include "safe_file_name.h"
#include "tessaline/tessaline.h"

namespace tessaline::cli {
namespace {

struct RenderAllOptions {
  std::string file;
  std::string directory;
  int jobs = 0;  // 0: one worker per hardware thread
  RasterBackend backend = RasterBackend::Native;
};

// What one symbol produced.
struct Rendered {
  std::string key;
  std::string fileName;
  std::vector<std::string> errors;
  std::optional<std::string> failure;  // why the PNG could not be written
};

// "[#####.....] 12/40" on standard error, redrawn in place; only for a terminal, so logs and pipes
// stay clean.
class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total) : total_(total), enabled_(::isatty(STDERR_FILENO) == 1) {}

  void advance() {
    if (!enabled_) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    ++done_;
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = total_ == 0 ? kWidth : done_ * kWidth / total_;
    std::string bar(filled, '#');
    bar.append(kWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %zu/%zu", bar.c_str(), done_, total_);
    std::fflush(stderr);
  }

  void finish() {
    if (enabled_ && done_ > 0) std::fputc('\n', stderr);
  }

 private:
  const std::size_t total_;
  const bool enabled_;
  std::size_t done_ = 0;
  std::mutex mutex_;
};

void renderOne(const SVGFile& svgFile, RasterBackend backend,
               const std::filesystem::path& directory, Rendered& out) {
  const TessalineResponse response = svgFile.getUIImageForKey(out.key, backend);
  out.errors = response.errors();
  out.fileName = safeFileName(out.key);
  const std::string path = (directory / out.fileName).string();
  if (!response.bitmap()) {
    out.failure = "no image for " + out.key;
  } else if (!response.bitmap()->writePng(path)) {
    out.failure = "cannot write " + path;
  }
}

bool writeIndex(const std::filesystem::path& directory, const std::vector<Rendered>& results) {
  nlohmann::ordered_json index = nlohmann::ordered_json::array();
  for (const Rendered& each : results) {
    nlohmann::ordered_json entry;
    entry["key"] = each.key;
    entry["file"] = each.fileName;
    entry["errors"] = each.errors;
    index.push_back(std::move(entry));
  }
  const std::filesystem::path path = directory / "index.json";
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << index.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
  out.close();
  if (!out) {
    printError("cannot write " + path.string());
    return false;
  }
  return true;
}

int runRenderAll(const RenderAllOptions& options) {
  const std::optional<std::string> document = readDocument(options.file);
  if (!document) return kExitUsage;

  const std::filesystem::path directory(options.directory);
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error || !std::filesystem::is_directory(directory)) {
    printError("cannot create " + options.directory +
               (error ? ": " + error.message() : ": not a folder"));
    return kExitUsage;
  }

  const SVGFile svgFile(*document);
  // The table is ordered by key, so the index comes out sorted without further work.
  std::vector<Rendered> results;
  results.reserve(svgFile.symbolDefinitions.size());
  for (const auto& entry : svgFile.symbolDefinitions) results.push_back({entry.first, {}, {}, {}});

  unsigned workers = options.jobs > 0 ? static_cast<unsigned>(options.jobs)
                                      : std::max(1u, std::thread::hardware_concurrency());
  workers = static_cast<unsigned>(std::min<std::size_t>(workers, results.size()));

  ProgressBar progress(results.size());
  std::atomic<std::size_t> next{0};
  auto work = [&] {
    for (std::size_t i = next++; i < results.size(); i = next++) {
      try {
        renderOne(svgFile, options.backend, directory, results[i]);
      } catch (const std::exception& e) {
        results[i].failure = std::string("cannot render ") + results[i].key + ": " + e.what();
      }
      progress.advance();
    }
  };
  std::vector<std::thread> pool;
  pool.reserve(workers);
  for (unsigned i = 0; i < workers; ++i) pool.emplace_back(work);
  for (std::thread& thread : pool) thread.join();
  progress.finish();

  bool ok = true;
  for (const Rendered& each : results) {
    if (each.failure) {
      printError(*each.failure);
      ok = false;
    }
  }
  if (!writeIndex(directory, results)) ok = false;
  return ok ? kExitOk : kExitUsage;
}

}  // namespace

void addRenderAllCommand(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<RenderAllOptions>();
  CLI::App* command = app.add_subcommand(
      "render-all", "Render every symbol into a folder of PNGs with an index.json of errors");
  command->add_option("FILE", options->file, "SVG document, or - for standard input")->required();
  command
      ->add_option("-o,--output", options->directory, "folder to write into (created if missing)")
      ->required();
  addBatchOptions(*command, options->jobs, options->backend);
  setGuardedCallback(*command, exitCode, [options] { return runRenderAll(*options); });
}

}  // namespace tessaline::cli
