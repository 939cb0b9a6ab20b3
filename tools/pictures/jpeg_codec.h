// What the JPEG reader, writer and rewriter share: libjpeg's errors, planes and markers.
#ifndef VOREL_TOOLS_PICTURES_JPEG_CODEC_H_
#define VOREL_TOOLS_PICTURES_JPEG_CODEC_H_

// jpeglib.h needs FILE and size_t.
#include <cstddef>
#include <cstdio>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

#include <csetjmp>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

inline constexpr int kMaxJpegComponents = 3;

// One colour plane as libjpeg delivers or takes it: rows of whole 8 x 8 blocks.
struct JpegPlane {
  void resize(size_t stride_, size_t row_count);
  void copy(const JpegPlane& other);

  size_t stride = 0;
  std::vector<uint8_t> samples;
  std::vector<JSAMPROW> rows;
};

// libjpeg leaves on errors by longjmp, which runs no destructors. So everything that needs one
// lives here, outside the functions that libjpeg leaves.
struct JpegState {
  JpegState();
  ~JpegState();
  JpegState(const JpegState&) = delete;
  JpegState& operator=(const JpegState&) = delete;

  // Makes a codec report to this object. Before jpeg_create_*.
  template <typename Codec>
  void attach(Codec& codec) {
    codec.err = &errors;
    codec.client_data = this;
  }

  jpeg_error_mgr errors;
  std::jmp_buf escape;
  std::string error;
  std::vector<std::string> warnings;  // each once
  bool cut_short = false;
  unsigned char* output = nullptr;
  unsigned long output_bytes = 0;
};

// Luma samples for one chroma sample, across and down; grey pictures have one component.
struct JpegSampling {
  int components = 0;
  int across = 1;
  int down = 1;
  bool operator==(const JpegSampling&) const = default;
};

// False for pictures whose samples are not YUV planes with equal chroma planes.
[[nodiscard]] bool read_sampling(const jpeg_decompress_struct& codec, JpegSampling& sampling);
// "4:4:4"
[[nodiscard]] std::string sampling_name(JpegSampling sampling);

// Keeps application markers and comments for what follows. Before jpeg_read_header.
void save_markers(jpeg_decompress_struct& codec);
[[nodiscard]] Metadata read_markers(jpeg_decompress_struct& codec);
[[nodiscard]] bool has_further_pictures(const jpeg_decompress_struct& codec);
// Into a new file, and from file to file as they stand. After jpeg_start_compress or
// jpeg_write_coefficients.
void set_density(jpeg_compress_struct& codec, const Metadata& metadata);
void write_markers(jpeg_compress_struct& codec, const std::vector<std::vector<uint8_t>>& app1,
                   const Metadata& metadata);
[[nodiscard]] std::vector<std::vector<uint8_t>> app1_markers(const Metadata& metadata);
void copy_markers(const jpeg_decompress_struct& from, jpeg_compress_struct& to);

// All planes of a picture; the codec has read the header. Leaves by longjmp on errors.
void read_planes(jpeg_decompress_struct& codec, JpegPlane* planes);
void write_planes(jpeg_compress_struct& codec, JpegPlane* planes);

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_JPEG_CODEC_H_
