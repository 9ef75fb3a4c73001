#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/image.h"

namespace tessaline::cli {

// One symbol on the sheet: its key, its render already scaled to `ContactSheet::iconSize()`
// (absent when the response had no bitmap) and whether the response carried error texts.
struct SheetCell {
  std::string key;
  std::optional<Image> thumbnail;
  bool hasErrors = false;
};

// The grid of a contact sheet: `columns` cells across (fewer when there are fewer symbols), each
// `cell` pixels wide and `cell + labelHeight()` tall, the icon on a light checkerboard above its
// key. Cells of symbols with errors get a red frame and a red top-right corner; symbols without
// a bitmap get a grey cross where the icon would be.
class ContactSheet {
 public:
  static constexpr int kDefaultColumns = 8;
  static constexpr int kDefaultCell = 96;
  static constexpr int kMinCell = 24;
  static constexpr int kMaxCell = 1024;
  static constexpr int kMaxColumns = 1000;

  ContactSheet(std::size_t count, int columns, int cell);

  int columns() const { return columns_; }
  int rows() const { return rows_; }
  int cell() const { return cell_; }
  int labelHeight() const;
  // Side of the square each render is scaled down to before it is placed in its cell.
  int iconSize() const;
  int width() const { return columns_ * cell_; }
  int height() const { return rows_ * (cell_ + labelHeight()); }

  // Draws the sheet; `cells` must hold `count` entries in the order they should appear. With no
  // cells at all the sheet is one empty cell labelled "no symbols".
  Image compose(const std::vector<SheetCell>& cells) const;

 private:
  int labelScale() const;
  int padding() const;
  void drawCell(Image& sheet, int left, int top, const SheetCell& cell) const;

  int columns_;
  int rows_;
  int cell_;
};

}  // namespace tessaline::cli
