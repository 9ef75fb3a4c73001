// Measures one hostile document class in a process of its own, so that the peak resident size
// belongs to that class alone: `tessaline_hostile_measure NAME` prints one JSON line with the
// document size, the time to parse it, render every symbol and free it, and the peak memory.
// With --row it prints the same figures as one Markdown table row instead.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "hostile_documents.h"
#include "tessaline/tessaline.h"

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double peakResidentMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

}  // namespace

int main(int argc, char** argv) {
  using namespace tessaline;
  const bool row = argc == 3 && std::string(argv[2]) == "--row";
  if (argc != 2 && !row) {
    std::fprintf(stderr, "usage: tessaline_hostile_measure NAME [--row]\n");
    return 2;
  }
  std::optional<testing::HostileCase> chosen;
  for (const testing::HostileCase& c : testing::hostileCases()) {
    if (c.name == argv[1]) chosen = c;
  }
  if (!chosen) {
    std::fprintf(stderr, "tessaline_hostile_measure: unknown class %s\n", argv[1]);
    return 2;
  }

  std::string document = testing::makeHostileDocument(chosen->kind);
  const double baselineMegabytes = peakResidentMegabytes();

  auto start = Clock::now();
  auto file = std::make_optional<SVGFile>(document);
  const double parseMs = millisecondsSince(start);
  const double parsedPeakMegabytes = peakResidentMegabytes();

  start = Clock::now();
  std::size_t errors = 0;
  std::size_t bitmaps = 0;
  for (const auto& entry : file->symbolDefinitions) {
    const TessalineResponse response = file->getUIImageForKey(entry.first);
    errors += response.errors().size();
    bitmaps += response.bitmap() ? 1 : 0;
  }
  const double renderMs = millisecondsSince(start);

  start = Clock::now();
  const std::size_t symbols = file->symbolDefinitions.size();
  file.reset();
  const double freeMs = millisecondsSince(start);

  const nlohmann::json line{
      {"class", chosen->name},
      {"document_mb", static_cast<double>(document.size()) / (1 << 20)},
      {"symbols", symbols},
      {"bitmaps", bitmaps},
      {"errors", errors},
      {"parse_ms", parseMs},
      {"render_all_ms", renderMs},
      {"free_ms", freeMs},
      {"peak_rss_mb", peakResidentMegabytes()},
      // Growth of the peak while parsing, which is what the parsed table costs (the document
      // text itself is counted in the baseline).
      {"parse_growth_mb", parsedPeakMegabytes - baselineMegabytes},
  };
  if (row) {
    std::printf("| %s | %.1f MB | %zu | %.0f ms | %.0f ms | %.0f ms | %.0f MB | %.1fx |\n",
                std::string(chosen->name).c_str(), static_cast<double>(document.size()) / (1 << 20),
                symbols, parseMs, renderMs, freeMs, peakResidentMegabytes(),
                (parsedPeakMegabytes - baselineMegabytes) /
                    (static_cast<double>(document.size()) / (1 << 20)));
  } else {
    std::printf("%s\n", line.dump().c_str());
  }
  return 0;
}
