// The font of captions.
#ifndef VOREL_TOOLS_REPORT_CAPTION_FONT_H_
#define VOREL_TOOLS_REPORT_CAPTION_FONT_H_

namespace tool {

inline constexpr int kGlyphWidth = 5;
inline constexpr int kGlyphHeight = 9;  // the last two rows are below the base line

// Whether a pixel of a character is set. Characters that are not in ASCII are boxes.
[[nodiscard]] bool glyph_pixel(char character, int x, int y);

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_CAPTION_FONT_H_
