// How the samples of a raw 4:2:0 frame lie in a file.
#ifndef VOREL_TOOLS_PICTURES_RAW_LAYOUT_H_
#define VOREL_TOOLS_PICTURES_RAW_LAYOUT_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

// "nv21", …; what --layout takes.
[[nodiscard]] const char* layout_name(Layout layout);
[[nodiscard]] std::optional<Layout> parse_layout(const std::string& name);

// What the extension stands for; nothing for one that says no more than "raw".
[[nodiscard]] std::optional<Layout> layout_of_name(const std::string& path);

// Luma rows of `stride` bytes, then chroma: rows of pairs as long as luma's, or two planes with
// rows of half that length.
struct RawShape {
  Size size{};
  Layout layout = Layout::kNv21;
  int stride = 0;  // bytes, at least `least_stride`; 0 for dense rows

  [[nodiscard]] size_t luma_stride() const;
  [[nodiscard]] size_t chroma_stride() const;  // of a row of pairs, or of one plane's row
  [[nodiscard]] size_t bytes() const;
};
[[nodiscard]] int least_stride(Size size);

// `bytes` of a whole frame.
[[nodiscard]] Nv21Frame unpack_raw(const std::vector<uint8_t>& bytes, const RawShape& shape,
                                   Colour colour);
// Dense rows.
[[nodiscard]] std::vector<uint8_t> pack_raw(const Nv21Frame& frame, Layout layout);

// The layout that the chroma of a frame looks like when that is another kind (pairs or planes) than
// the one it was read as. Which of U and V comes first cannot be seen.
[[nodiscard]] std::optional<Layout> likelier_layout(const std::vector<uint8_t>& bytes,
                                                    const RawShape& shape);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_RAW_LAYOUT_H_
