#include "tools/report/caption.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "tools/files/utf8.h"
#include "tools/report/caption_font.h"

namespace tool {
namespace {

constexpr int kLetterGap = 1;
constexpr int kLineGap = 2;
constexpr char kUnknown = '\x7f';

// One byte a character.
std::string glyphs_of(const std::string& text) {
  std::string glyphs;
  for (size_t i = 0; i < text.size();) {
    const size_t length = std::max<size_t>(utf8_length(text, i), 1);
    const bool is_drawn = length == 1 && ((text[i] >= ' ' && text[i] <= '~') || text[i] == '\n');
    glyphs += is_drawn ? text[i] : kUnknown;
    i += length;
  }
  return glyphs;
}

std::vector<std::string> lines_of(const std::string& glyphs) {
  std::vector<std::string> lines;
  std::istringstream stream(glyphs);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

int width_of(size_t letters, int scale) {
  if (letters == 0) return 0;
  return (static_cast<int>(letters) * (kGlyphWidth + kLetterGap) - kLetterGap) * scale;
}

void draw_block(RgbImage& image, int left, int top, int scale, Rgb colour) {
  for (int y = std::max(top, 0); y < std::min(top + scale, image.height); ++y) {
    for (int x = std::max(left, 0); x < std::min(left + scale, image.width); ++x) {
      uint8_t* pixel = image.row(y) + 3 * static_cast<size_t>(x);
      pixel[0] = colour.r;
      pixel[1] = colour.g;
      pixel[2] = colour.b;
    }
  }
}

void draw_glyph(RgbImage& image, int left, int top, char glyph, int scale, Rgb colour) {
  for (int y = 0; y < kGlyphHeight; ++y) {
    for (int x = 0; x < kGlyphWidth; ++x) {
      if (!glyph_pixel(glyph, x, y)) continue;
      draw_block(image, left + x * scale, top + y * scale, scale, colour);
    }
  }
}

}  // namespace

Size caption_size(const std::string& text, int scale) {
  const std::vector<std::string> lines = lines_of(glyphs_of(text));
  if (lines.empty()) return {0, 0};
  size_t longest = 0;
  for (const std::string& line : lines) longest = std::max(longest, line.size());
  const int count = static_cast<int>(lines.size());
  return {width_of(longest, scale), (count * (kGlyphHeight + kLineGap) - kLineGap) * scale};
}

void draw_caption(RgbImage& image, int x, int y, const std::string& text, int scale, Rgb colour) {
  for (const std::string& line : lines_of(glyphs_of(text))) {
    int left = x;
    for (const char glyph : line) {
      draw_glyph(image, left, y, glyph, scale, colour);
      left += (kGlyphWidth + kLetterGap) * scale;
    }
    y += (kGlyphHeight + kLineGap) * scale;
  }
}

std::string wrapped_caption(const std::string& text, int width, int scale) {
  const int letter = (kGlyphWidth + kLetterGap) * scale;
  const size_t room = static_cast<size_t>(std::max((width + kLetterGap * scale) / letter, 1));
  std::string wrapped;
  for (std::string line : lines_of(glyphs_of(text))) {
    while (line.size() > room) {
      const size_t blank = line.find_last_of(' ', room);
      const bool fits = blank != std::string::npos && blank > 0;
      wrapped += line.substr(0, fits ? blank : room) + "\n";
      line.erase(0, fits ? blank + 1 : room);
    }
    wrapped += line + "\n";
  }
  if (!wrapped.empty()) wrapped.pop_back();
  return wrapped;
}

}  // namespace tool
