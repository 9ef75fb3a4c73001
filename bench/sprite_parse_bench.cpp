// Parsing whole fetched sprites: throughput in bytes per second of document text, and what the
// parsed table keeps on the heap relative to the document's size.
#include <expat.h>
#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "bench_data.h"
#include "tessaline/tessaline.h"

namespace tessaline::bench {
namespace {

// Google Benchmark prints bytes_per_second in units of 2^20 bytes ("M/s"). The parse target is
// in decimal megabytes per second, so the rate is also given as "MB", 10^6 bytes per second.
void setDocumentsParsed(benchmark::State& state, std::size_t documentBytes) {
  const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(documentBytes);
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
  state.counters["MB"] = benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsRate);
}

void BM_ParseSprite(benchmark::State& state) {
  const std::optional<std::string> text = loadSpriteFor(state);
  if (!text) return;
  std::size_t symbols = 0;
  for (auto _ : state) {
    auto file = std::make_unique<SVGFile>(*text);
    symbols = file->symbolDefinitions.size();
    benchmark::DoNotOptimize(symbols);
    // Parsing is what is measured; freeing the table is not part of it.
    state.PauseTiming();
    file.reset();
    state.ResumeTiming();
  }
  setDocumentsParsed(state, text->size());
  state.counters["symbols"] = static_cast<double>(symbols);
  // Heap held by one parsed file, as a multiple of the document's size (the text itself is
  // allocated before the measurement and not counted).
  const std::size_t before = mallinfo2().uordblks;
  {
    const SVGFile file(*text);
    state.counters["heap_x_doc"] =
        static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(text->size());
  }
}
BENCHMARK(BM_ParseSprite)->DenseRange(0, kSpriteCount - 1)->Unit(benchmark::kMillisecond);

// The same documents through expat alone with empty handlers for elements and text: the floor
// any XML-based parse stands on, and the machine-independent yardstick for BM_ParseSprite
// (scripts compare the two rates rather than megabytes per second across machines). Handed the
// whole text as one final piece, expat skips the line counting it does over every piece not
// marked final, which the library, handing it pieces to bound its buffer, pays.
void BM_ExpatScanSprite(benchmark::State& state) {
  const std::optional<std::string> text = loadSpriteFor(state);
  if (!text) return;
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    // A fixed salt for expat's attribute hash tables keeps the yardstick steady from run to run.
    XML_SetHashSalt(parser, 1);
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
    benchmark::DoNotOptimize(
        XML_Parse(parser, text->data(), static_cast<int>(text->size()), XML_TRUE));
    XML_ParserFree(parser);
  }
  setDocumentsParsed(state, text->size());
}
BENCHMARK(BM_ExpatScanSprite)->DenseRange(0, kSpriteCount - 1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessaline::bench
