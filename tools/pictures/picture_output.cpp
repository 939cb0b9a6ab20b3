#include "tools/files/atomic_file.h"
#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/files/input_file.h"
#include "tools/pictures/colour.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/raw_layout.h"
#include "tools/pictures/y4m_file.h"

namespace tool {
namespace {

// RGB pictures go into raw and y4m files as full-range BT.601; who wants another YUV converts them
// before.
Nv21Frame frame_of(const Picture& picture) {
  if (const auto* frame = std::get_if<Nv21Frame>(&picture.pixels)) return *frame;
  return as_nv21(picture, {});
}

// A file of one picture.
class StillOutput : public PictureOutput {
 public:
  StillOutput(const std::string& path, FileKind kind) : path_(path), kind_(kind), file_(path) {}
  void write(const Picture& picture) final {
    warn_of_losses(path_, picture);
    write_bytes(encode(picture));
  }
  void finish() final { file_.commit(); }

 protected:
  virtual std::vector<uint8_t> encode(const Picture& picture) = 0;
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool takes_bytes_of(const Origin& origin) const override {
    return origin.kind == kind_;
  }

 private:
  void write_bytes(const std::vector<uint8_t>& bytes) final {
    if (written_) {
      throw usage_error(path_ + ": holds one picture, but the input has more frames; write a .y4m");
    }
    file_.write(bytes);
    written_ = true;
  }

  std::string path_;
  FileKind kind_;
  AtomicFile file_;
  bool written_ = false;
};

class PngOutput : public StillOutput {
 public:
  explicit PngOutput(const std::string& path) : StillOutput(path, FileKind::kPng) {}

 private:
  std::vector<uint8_t> encode(const Picture& picture) override {
    return encode_png(as_rgb(picture), picture.metadata);
  }
};

class JpegOutput : public StillOutput {
 public:
  JpegOutput(const std::string& path, std::optional<int> quality)
      : StillOutput(path, FileKind::kJpeg), quality_(quality) {}

 private:
  bool takes_bytes_of(const Origin& origin) const override {
    return !quality_ && StillOutput::takes_bytes_of(origin);
  }
  std::vector<uint8_t> encode(const Picture& picture) override {
    const Nv21Frame frame = as_nv21(picture, {});
    const bool from_jpeg = picture.origin && picture.origin->kind == FileKind::kJpeg;
    if (from_jpeg && !quality_) {
      if (const auto rewrite = rewrite_jpeg(picture.origin->bytes, frame)) {
        for (const std::string& loss : rewrite->losses) warn(path() + ": " + loss);
        return rewrite->bytes;
      }
      warn(path() + ": written as 4:2:0 YUV of quality " + std::to_string(kDefaultJpegQuality) +
           ", which the input is not");
    }
    return encode_jpeg(frame, quality_.value_or(kDefaultJpegQuality), picture.metadata);
  }
  std::optional<int> quality_;
};

class RawOutput : public PictureOutput {
 public:
  RawOutput(const std::string& path, Layout layout) : file_(path), layout_(layout) {}
  void write(const Picture& picture) override { file_.write(pack_raw(frame_of(picture), layout_)); }
  void finish() override { file_.commit(); }

 private:
  bool takes_bytes_of(const Origin& origin) const override {
    return origin.kind == FileKind::kRaw && origin.layout == layout_ && origin.dense;
  }
  void write_bytes(const std::vector<uint8_t>& bytes) override { file_.write(bytes); }

  AtomicFile file_;
  Layout layout_;
};

class VideoOutput : public PictureOutput {
 public:
  explicit VideoOutput(const std::string& path) : writer_(path) {}
  void write(const Picture& picture) override {
    writer_.write(frame_of(picture), picture.metadata);
  }
  void finish() override { writer_.finish(); }

 private:
  // Frames and their lines are written as they came anyway.
  bool takes_bytes_of(const Origin&) const override { return false; }
  void write_bytes(const std::vector<uint8_t>&) override {}

  Y4mWriter writer_;
};

FileKind kind_of_output(const std::string& path, const WriteOptions& options) {
  if (path == kStandardStream) return options.stream_kind;
  const std::optional<FileKind> kind = kind_of_name(path);
  if (!kind) {
    throw usage_error(path + ": unknown extension; pictures are written as " + known_extensions());
  }
  return *kind;
}

Layout layout_of_output(const std::string& path, const WriteOptions& options) {
  if (const std::optional<Layout> named = layout_of_name(path)) return *named;
  return options.layout.value_or(extension_of(path) == "yuv" ? Layout::kI420 : Layout::kNv21);
}

}  // namespace

void PictureOutput::write_unchanged(const Picture& picture) {
  const bool serves = picture.origin && !picture.origin->bytes.empty();
  if (serves && takes_bytes_of(*picture.origin)) {
    write_bytes(picture.origin->bytes);
  } else {
    write(picture);
  }
}

std::unique_ptr<PictureOutput> PictureOutput::open(const std::string& path,
                                                   const WriteOptions& options) {
  switch (kind_of_output(path, options)) {
    case FileKind::kPng:
      return std::make_unique<PngOutput>(path);
    case FileKind::kJpeg:
      return std::make_unique<JpegOutput>(path, options.quality);
    case FileKind::kRaw:
      return std::make_unique<RawOutput>(path, layout_of_output(path, options));
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
    if (outputs[i] == kStandardStream) continue;
    for (const std::string& input : inputs) {
      if (!force && is_same_file(outputs[i], input)) {
        throw usage_error(outputs[i] + ": is the input; choose another name or say --force");
      }
    }
  }
}

}  // namespace tool
