// Text in pictures.
#ifndef VOREL_TOOLS_REPORT_CAPTION_H_
#define VOREL_TOOLS_REPORT_CAPTION_H_

#include <cstdint>
#include <string>

#include "tools/pictures/picture.h"

namespace tool {

struct Rgb {
  uint8_t r;
  uint8_t g;
  uint8_t b;
};

// Pixels that `text` takes, its lines parted by '\n'. Each font pixel becomes `scale` x `scale`; at
// scale 2 capitals are 14 pixels high.
[[nodiscard]] Size caption_size(const std::string& text, int scale);

// Draws `text` with its top left corner at (x, y); what leaves the picture is cut off. Characters
// that the font does not have (it has ASCII) are boxes.
void draw_caption(RgbImage& image, int x, int y, const std::string& text, int scale, Rgb colour);

// The text in lines of at most `width` pixels, broken at blanks or, in words that are longer,
// between letters.
[[nodiscard]] std::string wrapped_caption(const std::string& text, int width, int scale);

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_CAPTION_H_
