// tessaline sheet FILE -o OUT.png [--columns N] [--cell PX] [-j N]
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "cli_common.h"
#include "commands.h"
#include "contact_sheet.h"
#include "raster_ops.h"
#include "symbol_batch.h"
#include "tessaline/tessaline.h"

namespace tessaline::cli {
namespace {

struct SheetOptions {
  std::string file;
  std::string output;
  int columns = ContactSheet::kDefaultColumns;
  int cell = ContactSheet::kDefaultCell;
  int jobs = 0;  // 0: one worker per hardware thread
  RasterBackend backend = RasterBackend::Native;
};

int runSheet(const SheetOptions& options) {
  const std::optional<std::string> document = readDocument(options.file);
  if (!document) return kExitUsage;

  const SVGFile svgFile(*document);
  const std::vector<std::string> keys = keysInTableOrder(svgFile);
  const ContactSheet sheet(keys.size(), options.columns, options.cell);

  // Each worker scales its own render down at once, so a large sprite never holds more than one
  // full-size image per worker.
  std::vector<SheetCell> cells(keys.size());
  renderKeysInParallel(svgFile, keys, static_cast<unsigned>(options.jobs), options.backend,
                       [&](std::size_t index, TessalineResponse response) {
                         SheetCell& cell = cells[index];
                         cell.key = keys[index];
                         cell.hasErrors = !response.errors().empty();
                         if (response.bitmap()) {
                           cell.thumbnail = raster::resizeBoxFiltered(
                               *response.bitmap(), sheet.iconSize(), sheet.iconSize());
                         }
                       });

  if (!sheet.compose(cells).writePng(options.output)) {
    printError("cannot write " + options.output);
    return kExitUsage;
  }
  return kExitOk;
}

}  // namespace

void addSheetCommand(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<SheetOptions>();
  CLI::App* command = app.add_subcommand(
      "sheet", "Render every symbol into one PNG contact sheet, labelled by key, errors in red");
  command->add_option("FILE", options->file, "SVG document, or - for standard input")->required();
  command->add_option("-o,--output", options->output, "PNG file to write")->required();
  command
      ->add_option("--columns", options->columns,
                   "cells per row (fewer when there are fewer symbols)")
      ->check(CLI::Range(1, ContactSheet::kMaxColumns))
      ->capture_default_str();
  command
      ->add_option("--cell", options->cell, "width of a cell in pixels; the key is written below")
      ->check(CLI::Range(ContactSheet::kMinCell, ContactSheet::kMaxCell))
      ->capture_default_str();
  addBatchOptions(*command, options->jobs, options->backend);
  setGuardedCallback(*command, exitCode, [options] { return runSheet(*options); });
}

}  // namespace tessaline::cli
