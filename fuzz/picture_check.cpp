#include "fuzz/picture_check.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "fuzz/scratch_folder.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/exif_iso.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/picture_size.h"
#include "tools/pictures/png_file.h"

namespace {

constexpr int64_t kMostPixels = 1 << 12;  // larger ones would take most of a run

void check_jpeg(const tool::Picture& picture) {
  tool::Nv21Frame frame = tool::as_nv21(picture, {});
  // The original is an odd file when it cannot be written again.
  may_refuse([&] {
    try {
      static_cast<void>(tool::rewrite_jpeg(picture.origin->bytes, frame));
      for (uint8_t& sample : frame.data) sample = static_cast<uint8_t>(sample / 2 + 30);
      static_cast<void>(tool::rewrite_jpeg(picture.origin->bytes, frame));
    } catch (const tool::Failure& failure) {
      if (failure.status() != tool::kFailed) throw;
    }
  });
}

void check_picture(const tool::Picture& picture) {
  const tool::Size size = picture.size();
  if (!tool::is_legal_size(size.width, size.height)) std::abort();
  static_cast<void>(tool::as_nv21(picture, {}));
  static_cast<void>(tool::exif_iso(picture.metadata.exif));
  const tool::RgbImage image = tool::as_rgb(picture);
  const tool::Picture again = tool::decode_png("again", tool::encode_png(image, picture.metadata));
  if (std::get<tool::RgbImage>(again.pixels).pixels != image.pixels) std::abort();
  if (picture.origin && picture.origin->kind == tool::FileKind::kJpeg) check_jpeg(picture);
}

}  // namespace

std::string write_input(std::string name, const uint8_t* data, size_t size) {
  static const ScratchFolder folder;
  static std::string before;
  std::replace_if(name.begin(), name.end(), [](char c) { return c == '/' || c == '\0'; }, '.');
  std::string path = folder.write(name, data, size);
  if (path != before) unlink(before.c_str());
  before = path;
  return path;
}

void read_pictures(const std::string& path, const tool::ReadOptions& options) {
  const std::optional<tool::Size> size = tool::size_of_file(path, options);
  if (size && int64_t{size->width} * size->height > kMostPixels) return;
  may_refuse([&] {
    const auto input = tool::PictureInput::open(path, options);
    static_cast<void>(input->expected_frames());
    while (const std::optional<tool::Picture> picture = input->next()) check_picture(*picture);
  });
}
