#include "tools/pictures/jpeg_file.h"

#include <libyuv.h>

#include <cstring>
#include <utility>

#include "tools/files/failure.h"
#include "tools/pictures/jpeg_codec.h"
#include "tools/pictures/jpeg_planes.h"

namespace tool {
namespace {

// Lives outside the functions that libjpeg leaves by longjmp.
struct Reading {
  JpegState state;
  JpegPlane planes[kMaxJpegComponents];
  RgbImage image{0, 0};
  Metadata metadata;
  JpegSampling sampling;
  bool has_planes = false;
  Size size{};
};

void read_rgb(jpeg_decompress_struct& codec, Reading& reading) {
  codec.out_color_space = JCS_RGB;
  jpeg_start_decompress(&codec);
  reading.image =
      RgbImage(static_cast<int>(codec.output_width), static_cast<int>(codec.output_height));
  while (codec.output_scanline < codec.output_height) {
    JSAMPROW row = reading.image.row(static_cast<int>(codec.output_scanline));
    jpeg_read_scanlines(&codec, &row, 1);
  }
}

// False with the state's error set when the file is no good.
bool read_all(jpeg_decompress_struct& codec, Reading& reading, const std::vector<uint8_t>& bytes) {
  JpegState& state = reading.state;
  if (setjmp(state.escape) != 0) return false;
  jpeg_create_decompress(&codec);
  save_markers(codec);
  jpeg_mem_src(&codec, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&codec, TRUE);
  reading.size = {static_cast<int>(codec.image_width), static_cast<int>(codec.image_height)};
  if (!is_legal_size(reading.size.width, reading.size.height)) {
    state.error = size_problem(reading.size.width, reading.size.height);
    return false;
  }
  if (codec.num_components > kMaxJpegComponents) {
    state.error = "CMYK pictures are not supported";
    return false;
  }
  reading.metadata = read_markers(codec);
  reading.has_planes = read_sampling(codec, reading.sampling);
  if (reading.has_planes) {
    read_planes(codec, reading.planes);
  } else {
    read_rgb(codec, reading);
  }
  jpeg_finish_decompress(&codec);
  return true;
}

void fill_planes(JpegPlane* planes, const Nv21Frame& padded) {
  const auto width = static_cast<size_t>(padded.width);
  const auto height = static_cast<size_t>(padded.height);
  planes[0].resize(width, height);
  std::memcpy(planes[0].samples.data(), padded.y(), padded.luma_bytes());
  for (int i = 1; i < 3; ++i) planes[i].resize(width / 2, height / 2);
  const int half = padded.width / 2;
  libyuv::SplitUVPlane(padded.vu(), padded.width, planes[2].samples.data(), half,
                       planes[1].samples.data(), half, half, padded.height / 2);
}

struct Writing {
  JpegState state;
  JpegPlane planes[kMaxJpegComponents];
  std::vector<std::vector<uint8_t>> app1;
};

bool write_all(jpeg_compress_struct& codec, Writing& writing, Size size, int quality,
               const Metadata& metadata) {
  if (setjmp(writing.state.escape) != 0) return false;
  jpeg_create_compress(&codec);
  jpeg_mem_dest(&codec, &writing.state.output, &writing.state.output_bytes);
  codec.image_width = static_cast<JDIMENSION>(size.width);
  codec.image_height = static_cast<JDIMENSION>(size.height);
  codec.input_components = 3;
  codec.in_color_space = JCS_YCbCr;
  jpeg_set_defaults(&codec);  // 4:2:0
  jpeg_set_quality(&codec, quality, TRUE);
  set_density(codec, metadata);
  codec.raw_data_in = TRUE;
  jpeg_start_compress(&codec, TRUE);
  write_markers(codec, writing.app1, metadata);
  write_planes(codec, writing.planes);
  jpeg_finish_compress(&codec);
  return true;
}

}  // namespace

bool is_jpeg(const std::vector<uint8_t>& bytes) {
  return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

Picture decode_jpeg(const std::string& path, std::vector<uint8_t> bytes) {
  Reading reading;
  jpeg_decompress_struct codec{};
  reading.state.attach(codec);
  const bool read = read_all(codec, reading, bytes);
  jpeg_destroy_decompress(&codec);
  const JpegState& state = reading.state;
  if (!read) throw input_error(path, "no readable JPEG picture: " + state.error);
  if (state.cut_short) throw input_error(path, "no readable JPEG picture: the file is cut short");
  for (const std::string& warning : state.warnings) warn(path + ": " + warning);
  const auto origin = std::make_shared<Origin>();
  origin->kind = FileKind::kJpeg;
  origin->bytes = std::move(bytes);
  if (!reading.has_planes) {
    return {std::move(reading.image), std::move(reading.metadata), origin};
  }
  return {join_jpeg_planes(reading.planes, reading.sampling, reading.size),
          std::move(reading.metadata), origin};
}

std::vector<uint8_t> encode_jpeg(const Nv21Frame& frame, int quality, const Metadata& metadata) {
  Writing writing;
  fill_planes(writing.planes,
              with_size(frame, {(frame.width + 15) / 16 * 16, (frame.height + 15) / 16 * 16}));
  writing.app1 = app1_markers(metadata);
  jpeg_compress_struct codec{};
  writing.state.attach(codec);
  const bool written = write_all(codec, writing, {frame.width, frame.height}, quality, metadata);
  jpeg_destroy_compress(&codec);
  if (!written) throw Failure(kFailed, "JPEG encoder: " + writing.state.error);
  return {writing.state.output, writing.state.output + writing.state.output_bytes};
}

}  // namespace tool
