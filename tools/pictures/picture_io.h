// Reading and writing pictures and video by file name.
#ifndef VOREL_TOOLS_PICTURES_PICTURE_IO_H_
#define VOREL_TOOLS_PICTURES_PICTURE_IO_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/jpeg_file.h"
#include "tools/pictures/picture.h"
#include "tools/pictures/picture_name.h"

namespace tool {

struct ReadOptions {
  std::optional<Size> size;    // of raw frames
  std::optional<Range> range;  // of raw and y4m files, and of the YUV that RGB is converted to
  std::optional<Matrix> matrix;

  [[nodiscard]] Colour colour() const {
    return {range.value_or(Range::kFull), matrix.value_or(Matrix::kBt601)};
  }
};

// A source of one picture, or of the frames of a video.
class PictureInput {
 public:
  // An unknown extension, a file that cannot be read or is damaged: input error. PNG and JPEG files
  // are told apart by their contents.
  static std::unique_ptr<PictureInput> open(const std::string& path, const ReadOptions& options);
  virtual ~PictureInput() = default;

  // The next picture; nothing after the last.
  [[nodiscard]] virtual std::optional<Picture> next() = 0;
  // The YUV that the pictures are in, or should be converted to.
  [[nodiscard]] virtual Colour colour() const = 0;
  // Nothing when it cannot be known.
  [[nodiscard]] virtual std::optional<int> expected_frames() const = 0;
};

// The first picture of a file.
[[nodiscard]] Picture read_picture(const std::string& path, const ReadOptions& options);

// Where pictures go. Nothing appears at `path` before `finish`.
class PictureOutput {
 public:
  // An unknown extension is a usage error, a place that cannot be written an output error.
  static std::unique_ptr<PictureOutput> open(const std::string& path,
                                             int jpeg_quality = kDefaultJpegQuality);
  virtual ~PictureOutput() = default;

  // Only y4m files take more than one picture.
  virtual void write(const Picture& picture) = 0;
  virtual void finish() = 0;
};

// Refuses outputs that are one of the inputs, unless `force`, and outputs named twice. Even with
// `force` an input is only replaced as a whole, when the result is complete.
void check_outputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                   bool force);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PICTURE_IO_H_
