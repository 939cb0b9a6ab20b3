// Pictures in memory.
#ifndef VOREL_TOOLS_PICTURES_PICTURE_H_
#define VOREL_TOOLS_PICTURES_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tool {

struct Size {
  int width;
  int height;
  bool operator==(const Size&) const = default;
};

// "1920 x 1080"
[[nodiscard]] std::string size_text(Size size);

// Larger pictures are refused before any memory is asked for. The library counts plane bytes in 32
// bits, which this stays well below.
inline constexpr int kMaxSide = 65535;
inline constexpr size_t kMaxPixels = size_t{1} << 28;
[[nodiscard]] bool is_legal_size(int64_t width, int64_t height);
// "65536 x 10 pixels are too many; …", for a size that is not legal.
[[nodiscard]] std::string size_problem(int64_t width, int64_t height);

// Bytes of a 4:2:0 frame with dense rows, at most kMaxFrameBytes for a legal size. Odd sizes have a
// chroma sample for their last column and row too.
[[nodiscard]] size_t frame_bytes(Size size);
inline constexpr size_t kMaxFrameBytes = 2 * kMaxPixels;

// How YUV samples relate to RGB.
enum class Range { kFull, kLimited };
enum class Matrix { kBt601, kBt709 };
struct Colour {
  Range range = Range::kFull;
  Matrix matrix = Matrix::kBt601;
  bool operator==(const Colour&) const = default;
};

// Dense rows of R, G, B bytes.
struct RgbImage {
  RgbImage(int width_, int height_);

  [[nodiscard]] size_t stride() const { return 3 * static_cast<size_t>(width); }
  [[nodiscard]] uint8_t* row(int y) { return pixels.data() + static_cast<size_t>(y) * stride(); }
  [[nodiscard]] const uint8_t* row(int y) const {
    return pixels.data() + static_cast<size_t>(y) * stride();
  }

  int width;
  int height;
  std::vector<uint8_t> pixels;
};

// 4:2:0 picture: dense Y plane, then dense V/U pairs. Odd sizes have a chroma sample for their last
// column and row too.
struct Nv21Frame {
  Nv21Frame(int width_, int height_, Colour colour_ = {});

  [[nodiscard]] int chroma_width() const { return (width + 1) / 2; }
  [[nodiscard]] int chroma_height() const { return (height + 1) / 2; }
  [[nodiscard]] int chroma_stride() const { return 2 * chroma_width(); }
  [[nodiscard]] size_t luma_bytes() const { return static_cast<size_t>(width) * height; }
  [[nodiscard]] size_t chroma_bytes() const {
    return static_cast<size_t>(chroma_stride()) * chroma_height();
  }
  [[nodiscard]] uint8_t* y() { return data.data(); }
  [[nodiscard]] const uint8_t* y() const { return data.data(); }
  [[nodiscard]] uint8_t* vu() { return data.data() + luma_bytes(); }
  [[nodiscard]] const uint8_t* vu() const { return data.data() + luma_bytes(); }

  int width;
  int height;
  Colour colour;
  std::vector<uint8_t> data;
};

enum class FileKind { kPng, kJpeg, kRaw, kY4m };

// Order of the chroma samples in a raw frame: V/U pairs, U/V pairs, a U and a V plane, V and U.
enum class Layout { kNv21, kNv12, kI420, kYv12 };
[[nodiscard]] constexpr bool is_planar(Layout layout) {
  return layout == Layout::kI420 || layout == Layout::kYv12;
}

// The file, or the frame of a file, that a picture was read from.
struct Origin {
  FileKind kind{};
  std::vector<uint8_t> bytes;  // as they came; empty when they do not serve as a file
  Layout layout{};             // of raw frames
  bool dense = true;           // raw rows without a gap
  // What of the file is lost when the picture is written anew, each the end of a sentence.
  std::vector<std::string> losses;
};

// A comment, or another text under a name of its own.
struct MetadataText {
  std::string key;  // "Comment" for those of JPEG files
  std::string text;
};

// Pixels per metre.
struct Density {
  double x_per_metre;
  double y_per_metre;
};

// What files carry besides the picture, handed on to files of a kind that can hold it.
struct Metadata {
  std::vector<uint8_t> exif = {};  // TIFF structure, without JPEG's "Exif" header
  std::vector<uint8_t> icc = {};   // colour profile
  std::vector<uint8_t> xmp = {};
  std::vector<uint8_t> iptc = {};  // Photoshop resources, which hold it
  std::vector<MetadataText> texts = {};
  std::optional<Density> density = {};
  std::string y4m_tags = {};        // stream parameters in their order, the size among them
  std::string y4m_frame_tags = {};  // of the frame, from the blank on
};

struct Picture {
  std::variant<RgbImage, Nv21Frame> pixels;
  Metadata metadata;
  std::shared_ptr<const Origin> origin = {};  // null for pictures that come from no file

  [[nodiscard]] Size size() const;
};

// The top left `size` of a frame; beyond the frame its last column and row repeat.
[[nodiscard]] Nv21Frame with_size(const Nv21Frame& frame, Size size);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_PICTURE_H_
