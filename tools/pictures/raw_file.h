// Raw 4:2:0 frames: bare samples, one frame after the other.
#ifndef VOREL_TOOLS_PICTURES_RAW_FILE_H_
#define VOREL_TOOLS_PICTURES_RAW_FILE_H_

#include <optional>
#include <string>

#include "tools/files/input_file.h"
#include "tools/pictures/picture.h"
#include "tools/pictures/raw_layout.h"
#include "tools/pictures/read_options.h"

namespace tool {

// Reads frames whose size is the one of the options, else one that the file's name spells and its
// length confirms. The library's dumps of frames of odd height, which end with half a chroma row,
// are read too. Warns once when the chroma looks like another layout's.
class RawReader {
 public:
  RawReader(InputFile file, const std::string& path, const ReadOptions& options);

  // The next frame; nothing after the last. A cut frame throws.
  [[nodiscard]] std::optional<Picture> next();
  // Nothing when only the end of a pipe will tell.
  [[nodiscard]] std::optional<int> expected_frames() const { return frames_; }
  [[nodiscard]] Layout layout() const { return shape_.layout; }

 private:
  InputFile file_;
  Colour colour_;
  RawShape shape_;
  std::optional<int> frames_;
  int frames_read_ = 0;
};

// The one NV21 frame of a file.
[[nodiscard]] Nv21Frame read_raw(const std::string& path, std::optional<Size> size, Colour colour);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_RAW_FILE_H_
