#include "tools/pictures/scaled.h"

#include <libyuv/scale_rgb.h>

#include <algorithm>

#include "tools/files/failure.h"

namespace tool {

RgbImage scaled_to(const RgbImage& image, int side) {
  const int longer = std::max(image.width, image.height);
  const auto fit = [&](int length) {
    return std::max(static_cast<int>(static_cast<int64_t>(length) * side / longer), 1);
  };
  RgbImage result(fit(image.width), fit(image.height));
  const libyuv::FilterMode filter = longer > side ? libyuv::kFilterBox : libyuv::kFilterNone;
  if (libyuv::RGBScale(image.pixels.data(), static_cast<int>(image.stride()), image.width,
                       image.height, result.pixels.data(), static_cast<int>(result.stride()),
                       result.width, result.height, filter) != 0) {
    throw Failure(kFailed, "a picture could not be scaled");
  }
  return result;
}

}  // namespace tool
