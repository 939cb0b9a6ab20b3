#include "tests/tools/test_pictures.h"

#include "tools/pictures/picture_io.h"

tool::RgbImage gradient_picture(int width, int height) {
  tool::RgbImage image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* pixel = image.row(y) + 3 * x;
      pixel[0] = static_cast<uint8_t>(40 + 160 * x / width);
      pixel[1] = static_cast<uint8_t>(220 - 170 * y / height);
      pixel[2] = static_cast<uint8_t>(x > width / 2 && y > height / 2 ? 200 : 60);
    }
  }
  return image;
}

tool::Nv21Frame patterned_frame(int width, int height) {
  tool::Nv21Frame frame(width, height);
  for (size_t i = 0; i < frame.data.size(); ++i) {
    frame.data[i] = static_cast<uint8_t>(16 + (i * 37 + i / 256 * 11) % 220);
  }
  return frame;
}

namespace {

void save_picture(const std::string& path, const tool::Picture& picture) {
  const auto output = tool::PictureOutput::open(path);
  output->write(picture);
  output->finish();
}

}  // namespace

void save(const std::string& path, const tool::RgbImage& image) { save_picture(path, {image, {}}); }

void save(const std::string& path, const tool::Nv21Frame& frame) {
  save_picture(path, {frame, {}});
}

uint64_t digest(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3u;
  return hash;
}
