#include "tools/report/contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tools/files/failure.h"
#include "tools/report/caption.h"

namespace tool {
namespace {

constexpr int kMargin = 16;
constexpr int kCaptionGap = 6;  // between a picture and its caption
constexpr uint8_t kPaper = 24;
constexpr Rgb kInk{235, 235, 235};
constexpr double kScreenShape = 16.0 / 9.0;
// A caption under a small picture may be wider than it.
constexpr int kLeastLetters = 20;

struct Cell {
  const RgbImage* picture;
  std::string caption;
  int width;
  int height;
};

std::vector<Cell> cells_of(const std::vector<Tile>& tiles, int scale) {
  const int least_width = caption_size(std::string(kLeastLetters, 'x'), scale).width;
  std::vector<Cell> cells;
  for (const Tile& tile : tiles) {
    const int room = std::max(tile.picture.width, least_width);
    std::string caption = wrapped_caption(tile.caption, room, scale);
    const Size text = caption_size(caption, scale);
    cells.push_back({&tile.picture, std::move(caption), std::max(tile.picture.width, text.width),
                     tile.picture.height + (text.height > 0 ? kCaptionGap + text.height : 0)});
  }
  return cells;
}

// Left edges of the columns and top edges of the rows, and in front of the last the sheet's end.
struct Grid {
  Grid(const std::vector<Cell>& cells, size_t columns, int top) {
    std::vector<int64_t> widths(columns);
    std::vector<int64_t> heights((cells.size() + columns - 1) / columns);
    for (size_t i = 0; i < cells.size(); ++i) {
      widths[i % columns] = std::max<int64_t>(widths[i % columns], cells[i].width);
      heights[i / columns] = std::max<int64_t>(heights[i / columns], cells[i].height);
    }
    lefts = edges(widths, kMargin);
    tops = edges(heights, top);
  }

  static std::vector<int64_t> edges(const std::vector<int64_t>& lengths, int64_t first) {
    std::vector<int64_t> starts{first};
    for (const int64_t length : lengths) starts.push_back(starts.back() + length + kMargin);
    return starts;
  }

  [[nodiscard]] int64_t width() const { return lefts.back(); }
  [[nodiscard]] int64_t height() const { return tops.back(); }
  [[nodiscard]] double distance_from_screen() const {
    return std::abs(
        std::log(static_cast<double>(width()) / static_cast<double>(height()) / kScreenShape));
  }

  std::vector<int64_t> lefts;
  std::vector<int64_t> tops;
};

Grid best_grid(const std::vector<Cell>& cells, int columns, int top) {
  if (columns > 0) return {cells, static_cast<size_t>(columns), top};
  Grid best(cells, 1, top);
  for (size_t count = 2; count <= cells.size(); ++count) {
    Grid grid(cells, count, top);
    if (grid.distance_from_screen() < best.distance_from_screen()) best = std::move(grid);
  }
  return best;
}

void copy_picture(const RgbImage& picture, RgbImage& sheet, int left, int top) {
  for (int y = 0; y < picture.height; ++y) {
    std::memcpy(sheet.row(top + y) + 3 * static_cast<size_t>(left), picture.row(y),
                picture.stride());
  }
}

}  // namespace

RgbImage contact_sheet(const std::vector<Tile>& tiles, const SheetStyle& style) {
  const std::vector<Cell> cells = cells_of(tiles, style.text_scale);
  const Size title = caption_size(style.title, style.text_scale);
  const int top = kMargin + (title.height > 0 ? title.height + kMargin : 0);
  const Grid grid = best_grid(cells, style.columns, top);
  const int64_t width = std::max<int64_t>(grid.width(), title.width + 2 * kMargin);
  if (!is_legal_size(width, grid.height())) {
    throw usage_error("the contact sheet would be too large: " +
                      size_problem(width, grid.height()));
  }
  RgbImage sheet(static_cast<int>(width), static_cast<int>(grid.height()));
  std::fill(sheet.pixels.begin(), sheet.pixels.end(), kPaper);
  draw_caption(sheet, kMargin, kMargin, style.title, style.text_scale, kInk);
  const size_t columns = grid.lefts.size() - 1;
  for (size_t i = 0; i < cells.size(); ++i) {
    const int left = static_cast<int>(grid.lefts[i % columns]);
    const int cell_top = static_cast<int>(grid.tops[i / columns]);
    copy_picture(*cells[i].picture, sheet, left, cell_top);
    draw_caption(sheet, left, cell_top + cells[i].picture->height + kCaptionGap, cells[i].caption,
                 style.text_scale, kInk);
  }
  return sheet;
}

}  // namespace tool
