// Many pictures on one, each with a caption.
#ifndef VOREL_TOOLS_REPORT_CONTACT_SHEET_H_
#define VOREL_TOOLS_REPORT_CONTACT_SHEET_H_

#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

struct Tile {
  RgbImage picture;
  std::string caption;  // lines parted by '\n'; long ones are broken to the tile's width
};

struct SheetStyle {
  std::string title = {};  // above all tiles
  int columns = 0;         // 0: as many as give about the shape of a screen
  int text_scale = 2;
};

// Tiles in reading order, each above its caption. Pictures may have different sizes and are not
// scaled. A sheet that is too large is a usage error.
[[nodiscard]] RgbImage contact_sheet(const std::vector<Tile>& tiles, const SheetStyle& style = {});

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_CONTACT_SHEET_H_
