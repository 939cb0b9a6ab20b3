#include <sys/stat.h>

#include "tools/files/failure.h"
#include "tools/files/input_file.h"
#include "tools/pictures/foreign_kind.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/png_file.h"
#include "tools/pictures/raw_file.h"
#include "tools/pictures/y4m_file.h"

namespace tool {
namespace {

constexpr size_t kMaxCodedBytes = size_t{1} << 30;
constexpr size_t kMagicBytes = 16;

class StillInput : public PictureInput {
 public:
  StillInput(Picture picture, Colour colour) : picture_(std::move(picture)), colour_(colour) {
    kind_ = picture_->origin->kind;
  }
  std::optional<Picture> next() override {
    std::optional<Picture> result;
    picture_.swap(result);
    return result;
  }
  Colour colour() const override { return colour_; }
  std::optional<int> expected_frames() const override { return 1; }
  FileKind kind() const override { return kind_; }

 private:
  std::optional<Picture> picture_;
  Colour colour_;
  FileKind kind_;
};

class VideoInput : public PictureInput {
 public:
  VideoInput(InputFile file, const ReadOptions& options)
      : reader_(std::move(file), options.colour(), options.range.has_value()) {}
  std::optional<Picture> next() override { return reader_.next(); }
  Colour colour() const override { return reader_.colour(); }
  std::optional<int> expected_frames() const override { return reader_.expected_frames(); }
  FileKind kind() const override { return FileKind::kY4m; }

 private:
  Y4mReader reader_;
};

class RawInput : public PictureInput {
 public:
  RawInput(InputFile file, const std::string& path, const ReadOptions& options)
      : reader_(std::move(file), path, options), colour_(options.colour()) {}
  std::optional<Picture> next() override { return reader_.next(); }
  Colour colour() const override { return colour_; }
  std::optional<int> expected_frames() const override { return reader_.expected_frames(); }
  FileKind kind() const override { return FileKind::kRaw; }
  std::optional<Layout> layout() const override { return reader_.layout(); }

 private:
  RawReader reader_;
  Colour colour_;
};

Picture read_coded(InputFile file) {
  std::vector<uint8_t> bytes = file.read_all(kMaxCodedBytes);
  if (is_png(bytes)) return decode_png(file.name(), std::move(bytes));
  if (is_jpeg(bytes)) return decode_jpeg(file.name(), std::move(bytes));
  if (bytes.empty()) throw input_error(file.name(), "is empty");
  const std::string foreign = foreign_kind(file.name(), bytes);
  throw input_error(file.name(), "is neither a PNG nor a JPEG picture" +
                                     (foreign.empty() ? "" : " but " + foreign));
}

FileKind kind_of_contents(InputFile& file, const ReadOptions& options) {
  const std::vector<uint8_t>& bytes = file.peek(kMagicBytes);
  if (bytes.empty()) throw input_error(file.name(), "is empty");
  if (is_png(bytes)) return FileKind::kPng;
  if (is_jpeg(bytes)) return FileKind::kJpeg;
  if (is_y4m(bytes)) return FileKind::kY4m;
  if (options.size) return FileKind::kRaw;
  const std::string foreign = foreign_kind(file.name(), bytes);
  throw input_error(file.name(), foreign.empty()
                                     ? "is no PNG, JPEG or y4m; a raw frame needs --size WxH"
                                     : "is " + foreign);
}

FileKind kind_of_input(InputFile& file, const std::string& path, const ReadOptions& options) {
  const std::optional<FileKind> kind = kind_of_name(path);
  return kind ? *kind : kind_of_contents(file, options);
}

// Standard input, and pipes such as those of <(command).
bool is_stream(const std::string& path) {
  struct stat status{};
  return path == kStandardStream ||
         (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode));
}

void check_extension(const std::string& path) {
  if (kind_of_name(path) || is_stream(path)) return;
  const std::string foreign = foreign_kind(path);
  throw input_error(
      path, "unknown extension" + (foreign.empty()
                                       ? std::string("; pictures end in ") + known_extensions()
                                       : ": is " + foreign));
}

}  // namespace

std::unique_ptr<PictureInput> PictureInput::open(const std::string& path,
                                                 const ReadOptions& options) {
  check_extension(path);
  InputFile file(path);
  switch (kind_of_input(file, path, options)) {
    case FileKind::kRaw:
      return std::make_unique<RawInput>(std::move(file), path, options);
    case FileKind::kY4m:
      return std::make_unique<VideoInput>(std::move(file), options);
    case FileKind::kPng:
    case FileKind::kJpeg:
      break;
  }
  return std::make_unique<StillInput>(read_coded(std::move(file)), options.colour());
}

Picture read_picture(const std::string& path, const ReadOptions& options) {
  std::optional<Picture> picture = PictureInput::open(path, options)->next();
  if (!picture) throw input_error(path, "holds no frame");
  return std::move(*picture);
}

void warn_of_losses(const std::string& path, const Picture& picture) {
  if (!picture.origin) return;
  for (const std::string& loss : picture.origin->losses) warn(path + ": " + loss);
}

}  // namespace tool
