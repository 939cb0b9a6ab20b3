#include "tools/pictures/side_by_side.h"

#include <algorithm>
#include <cstring>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr int kGap = 8;
constexpr uint8_t kGapGrey = 128;

void copy_zoomed(const RgbImage& image, const Crop& crop, int zoom, RgbImage& result, int left) {
  for (int y = 0; y < crop.height * zoom; ++y) {
    const uint8_t* src = image.row(crop.y + y / zoom) + 3 * static_cast<size_t>(crop.x);
    uint8_t* dst = result.row(y) + 3 * static_cast<size_t>(left);
    for (int x = 0; x < crop.width * zoom; ++x) {
      std::memcpy(dst + 3 * static_cast<size_t>(x), src + 3 * static_cast<size_t>(x / zoom), 3);
    }
  }
}

}  // namespace

RgbImage side_by_side(const std::vector<const RgbImage*>& images, std::optional<Crop> crop,
                      int zoom) {
  const RgbImage& first = *images.front();
  const Crop part = crop.value_or(Crop{0, 0, first.width, first.height});
  if (part.x < 0 || part.y < 0 || part.width < 1 || part.height < 1 ||
      part.width > first.width - part.x || part.height > first.height - part.y) {
    throw usage_error("--crop leaves the picture, which has " +
                      size_text({first.width, first.height}) + " pixels");
  }
  const auto count = static_cast<int64_t>(images.size());
  const int64_t width = count * part.width * zoom + (count - 1) * kGap;
  const int64_t height = static_cast<int64_t>(part.height) * zoom;
  if (!is_legal_size(width, height)) {
    throw usage_error(
        "the side-by-side picture would be too large; use --crop or a smaller --zoom");
  }
  RgbImage result(static_cast<int>(width), static_cast<int>(height));
  std::fill(result.pixels.begin(), result.pixels.end(), kGapGrey);
  int left = 0;
  for (const RgbImage* image : images) {
    copy_zoomed(*image, part, zoom, result, left);
    left += part.width * zoom + kGap;
  }
  return result;
}

}  // namespace tool
