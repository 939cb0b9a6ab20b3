#include "tools/pictures/picture_io.h"

#include "tools/files/atomic_file.h"
#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/foreign_kind.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/raw_file.h"
#include "tools/pictures/y4m_file.h"

namespace tool {
namespace {

constexpr size_t kMaxCodedBytes = size_t{1} << 30;

class StillInput : public PictureInput {
 public:
  StillInput(Picture picture, Colour colour) : picture_(std::move(picture)), colour_(colour) {}
  std::optional<Picture> next() override {
    std::optional<Picture> result;
    picture_.swap(result);
    return result;
  }
  Colour colour() const override { return colour_; }
  std::optional<int> expected_frames() const override { return 1; }

 private:
  std::optional<Picture> picture_;
  Colour colour_;
};

class VideoInput : public PictureInput {
 public:
  VideoInput(const std::string& path, const ReadOptions& options)
      : reader_(path, options.colour(), options.range.has_value()) {}
  std::optional<Picture> next() override {
    std::optional<Nv21Frame> frame = reader_.next();
    if (!frame) return std::nullopt;
    Picture picture{std::move(*frame), {}};
    picture.metadata.y4m_tags = reader_.tags();
    return picture;
  }
  Colour colour() const override { return reader_.colour(); }
  std::optional<int> expected_frames() const override { return reader_.expected_frames(); }

 private:
  Y4mReader reader_;
};

Picture read_coded(const std::string& path) {
  const std::vector<uint8_t> bytes = read_file(path, kMaxCodedBytes);
  if (is_png(bytes)) return decode_png(path, bytes);
  if (is_jpeg(bytes)) return decode_jpeg(path, bytes);
  if (bytes.empty()) throw input_error(path, "is empty");
  const std::string foreign = foreign_kind(path, bytes);
  throw input_error(
      path, "is neither a PNG nor a JPEG picture" + (foreign.empty() ? "" : " but " + foreign));
}

// Keeps the one picture of a file until it is written.
class StillOutput : public PictureOutput {
 public:
  explicit StillOutput(const std::string& path) : path_(path), file_(path) {}
  void write(const Picture& picture) final {
    if (written_) {
      throw usage_error(path_ + ": holds one picture, but the input has more frames; write a .y4m");
    }
    file_.write(encode(picture));
    written_ = true;
  }
  void finish() final { file_.commit(); }

 protected:
  virtual std::vector<uint8_t> encode(const Picture& picture) = 0;

 private:
  std::string path_;
  AtomicFile file_;
  bool written_ = false;
};

class PngOutput : public StillOutput {
  using StillOutput::StillOutput;
  std::vector<uint8_t> encode(const Picture& picture) override {
    return encode_png(as_rgb(picture), picture.metadata);
  }
};

class JpegOutput : public StillOutput {
 public:
  JpegOutput(const std::string& path, int quality) : StillOutput(path), quality_(quality) {}

 private:
  std::vector<uint8_t> encode(const Picture& picture) override {
    return encode_jpeg(as_nv21(picture, {}), quality_, picture.metadata);
  }
  int quality_;
};

// RGB pictures go into raw and y4m files as full-range BT.601; who wants another YUV converts them
// before.
Nv21Frame frame_of(const Picture& picture) {
  if (const auto* frame = std::get_if<Nv21Frame>(&picture.pixels)) return *frame;
  return as_nv21(picture, {});
}

class RawOutput : public StillOutput {
  using StillOutput::StillOutput;
  std::vector<uint8_t> encode(const Picture& picture) override { return frame_of(picture).data; }
};

class VideoOutput : public PictureOutput {
 public:
  explicit VideoOutput(const std::string& path) : writer_(path) {}
  void write(const Picture& picture) override {
    writer_.write(frame_of(picture), picture.metadata.y4m_tags);
  }
  void finish() override { writer_.finish(); }

 private:
  Y4mWriter writer_;
};

}  // namespace

std::unique_ptr<PictureInput> PictureInput::open(const std::string& path,
                                                 const ReadOptions& options) {
  const std::optional<FileKind> kind = kind_of_name(path);
  if (!kind) {
    const std::string foreign = foreign_kind(path);
    throw input_error(path, foreign.empty() ? std::string("unknown extension; pictures end in ") +
                                                  known_extensions()
                                            : "unknown extension: is " + foreign);
  }
  switch (*kind) {
    case FileKind::kRaw:
      return std::make_unique<StillInput>(
          Picture{read_raw(path, options.size, options.colour()), {}}, options.colour());
    case FileKind::kY4m:
      return std::make_unique<VideoInput>(path, options);
    case FileKind::kPng:
    case FileKind::kJpeg:
      break;
  }
  return std::make_unique<StillInput>(read_coded(path), options.colour());
}

Picture read_picture(const std::string& path, const ReadOptions& options) {
  std::optional<Picture> picture = PictureInput::open(path, options)->next();
  if (!picture) throw input_error(path, "holds no frame");
  return std::move(*picture);
}

std::unique_ptr<PictureOutput> PictureOutput::open(const std::string& path, int jpeg_quality) {
  const std::optional<FileKind> kind = kind_of_name(path);
  if (!kind) {
    throw usage_error(path + ": unknown extension; pictures are written as " + known_extensions());
  }
  switch (*kind) {
    case FileKind::kPng:
      return std::make_unique<PngOutput>(path);
    case FileKind::kJpeg:
      return std::make_unique<JpegOutput>(path, jpeg_quality);
    case FileKind::kRaw:
      return std::make_unique<RawOutput>(path);
    case FileKind::kY4m:
      break;
  }
  return std::make_unique<VideoOutput>(path);
}

void check_outputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                   bool force) {
  for (size_t i = 0; i < outputs.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (outputs[i] == outputs[j] || is_same_file(outputs[i], outputs[j])) {
        throw usage_error(outputs[i] + ": two results cannot go to one file");
      }
    }
    for (const std::string& input : inputs) {
      if (!force && is_same_file(outputs[i], input)) {
        throw usage_error(outputs[i] + ": is the input; choose another name or say --force");
      }
    }
  }
}

}  // namespace tool
