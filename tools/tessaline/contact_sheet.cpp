#include "contact_sheet.h"

#include <algorithm>

#include "bitmap_font.h"
#include "raster_ops.h"

namespace tessaline::cli {

namespace {

using raster::BitmapFont;

constexpr Rgba kBackground{255, 255, 255, 255};
constexpr Rgba kCheckerLight{255, 255, 255, 255};
constexpr Rgba kCheckerDark{233, 233, 233, 255};
constexpr Rgba kGridLine{208, 208, 208, 255};
constexpr Rgba kLabel{32, 32, 32, 255};
constexpr Rgba kErrorMark{215, 38, 61, 255};
constexpr Rgba kErrorLabel{176, 0, 32, 255};
constexpr Rgba kMissingFill{240, 240, 240, 255};
constexpr Rgba kMissingCross{154, 154, 154, 255};

constexpr const char* kEmptyLabel = "no symbols";

// Pixels above and below the label text, at label scale 1.
constexpr int kLabelMargin = 4;

}  // namespace

ContactSheet::ContactSheet(std::size_t count, int columns, int cell)
    : columns_(static_cast<int>(std::clamp<std::size_t>(count, 1, std::max(1, columns)))),
      rows_(static_cast<int>(std::max<std::size_t>(1, (count + columns_ - 1) / columns_))),
      cell_(std::clamp(cell, kMinCell, kMaxCell)) {}

// Labels double in size on large cells so that they stay readable next to the icons.
int ContactSheet::labelScale() const {
  return cell_ >= 192 ? 2 : 1;
}

int ContactSheet::labelHeight() const {
  return (BitmapFont::kGlyphHeight + 2 * kLabelMargin) * labelScale();
}

int ContactSheet::padding() const {
  return std::max(2, cell_ / 12);
}

int ContactSheet::iconSize() const {
  return cell_ - 2 * padding();
}

Image ContactSheet::compose(const std::vector<SheetCell>& cells) const {
  Image sheet(width(), height());
  raster::fillRect(sheet, 0, 0, width(), height(), kBackground);
  if (cells.empty()) {
    drawCell(sheet, 0, 0, SheetCell{kEmptyLabel, std::nullopt, false});
    return sheet;
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const int column = static_cast<int>(i % static_cast<std::size_t>(columns_));
    const int row = static_cast<int>(i / static_cast<std::size_t>(columns_));
    drawCell(sheet, column * cell_, row * (cell_ + labelHeight()), cells[i]);
  }
  return sheet;
}

void ContactSheet::drawCell(Image& sheet, int left, int top, const SheetCell& cell) const {
  const int cellHeight = cell_ + labelHeight();
  const int pad = padding();
  const int icon = iconSize();

  // Grid lines on the right and bottom edges; neighbours draw the others.
  raster::fillRect(sheet, left + cell_ - 1, top, 1, cellHeight, kGridLine);
  raster::fillRect(sheet, left, top + cellHeight - 1, cell_, 1, kGridLine);

  if (cell.thumbnail) {
    raster::fillCheckerboard(sheet, left + pad, top + pad, icon, icon, std::max(2, icon / 10),
                             kCheckerLight, kCheckerDark);
    raster::compositeOver(sheet, *cell.thumbnail, left + pad, top + pad);
  } else {
    raster::fillRect(sheet, left + pad, top + pad, icon, icon, kMissingFill);
    raster::drawCross(sheet, left + pad, top + pad, icon, icon, std::max(1, icon / 40),
                      kMissingCross);
  }

  const int scale = labelScale();
  const std::string label = BitmapFont::fitText(cell.key, cell_ - 2 * pad, scale);
  const int labelX = left + (cell_ - BitmapFont::textWidth(label, scale)) / 2;
  const int labelY = top + cell_ + kLabelMargin * scale - scale;
  BitmapFont::drawText(sheet, labelX, labelY, label, cell.hasErrors ? kErrorLabel : kLabel, scale);

  if (cell.hasErrors) {
    const int thickness = std::max(2, cell_ / 40);
    raster::strokeRect(sheet, left, top, cell_, cellHeight, thickness, kErrorMark);
    raster::fillTopRightTriangle(sheet, left + cell_, top, std::max(8, cell_ / 5), kErrorMark);
  }
}

}  // namespace tessaline::cli
