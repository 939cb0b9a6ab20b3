// Pictures and videos from and to files and streams of any supported kind.
#ifndef VOREL_TOOLS_PICTURES_PICTURE_IO_H_
#define VOREL_TOOLS_PICTURES_PICTURE_IO_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/jpeg_file.h"
#include "tools/pictures/picture.h"
#include "tools/pictures/picture_name.h"
#include "tools/pictures/read_options.h"

namespace tool {

// A source of one picture, or of the frames of a video.
class PictureInput {
 public:
  // The kind is what the extension says; PNG and JPEG files are told apart by their contents.
  // Standard input ("-") and pipes without an extension are what their first bytes say, else raw.
  // An unknown extension, a file that cannot be read or is damaged: input error.
  static std::unique_ptr<PictureInput> open(const std::string& path, const ReadOptions& options);
  virtual ~PictureInput() = default;

  // The next picture; nothing after the last.
  [[nodiscard]] virtual std::optional<Picture> next() = 0;
  // The YUV that the pictures are in, or should be converted to.
  [[nodiscard]] virtual Colour colour() const = 0;
  // Nothing when it cannot be known.
  [[nodiscard]] virtual std::optional<int> expected_frames() const = 0;
  [[nodiscard]] virtual FileKind kind() const = 0;
  // Of raw frames.
  [[nodiscard]] virtual std::optional<Layout> layout() const { return std::nullopt; }
};

// The first picture of a file.
[[nodiscard]] Picture read_picture(const std::string& path, const ReadOptions& options);

// Warns of what a picture's file holds and the picture does not.
void warn_of_losses(const std::string& path, const Picture& picture);

struct WriteOptions {
  // Of JPEG files. Not given: pictures that come from a JPEG file keep its tables and sampling,
  // others get kDefaultJpegQuality.
  std::optional<int> quality = {};
  std::optional<Layout> layout = {};      // of raw frames whose name does not say it
  FileKind stream_kind = FileKind::kPng;  // of standard output
};

// Where pictures go. Nothing appears at `path` before `finish`.
class PictureOutput {
 public:
  // "-" is standard output. An unknown extension is a usage error, a place that cannot be written
  // an output error.
  static std::unique_ptr<PictureOutput> open(const std::string& path,
                                             const WriteOptions& options = {});
  virtual ~PictureOutput() = default;

  // Only y4m and raw files take more than one picture.
  virtual void write(const Picture& picture) = 0;
  // Writes a picture whose pixels are as they came: byte for byte when it comes from a file of this
  // kind.
  void write_unchanged(const Picture& picture);
  virtual void finish() = 0;

 protected:
  [[nodiscard]] virtual bool takes_bytes_of(const Origin& origin) const = 0;
  virtual void write_bytes(const std::vector<uint8_t>& bytes) = 0;
};

// Refuses outputs that are one of the inputs, unless `force`, and outputs named twice. Even with
// `force` an input is only replaced as a whole, when the result is complete.
void check_outputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                   bool force);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PICTURE_IO_H_
