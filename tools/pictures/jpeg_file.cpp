#include "tools/pictures/jpeg_file.h"

// jpeglib.h needs FILE and size_t.
#include <cstddef>
#include <cstdio>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on
#include <libyuv.h>

#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tools/files/failure.h"

namespace tool {
namespace {

constexpr char kExifHeader[] = "Exif\0";  // and the terminator: six bytes
constexpr size_t kExifHeaderBytes = sizeof(kExifHeader);
constexpr size_t kMaxMarkerBytes = 65533;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr int kMaxComponents = 3;

// One colour plane as libjpeg delivers or takes it: rows of whole 8 x 8 blocks.
struct Plane {
  void resize(size_t stride_, size_t row_count) {
    stride = stride_;
    samples.resize(stride * row_count);
    rows.resize(row_count);
    for (size_t i = 0; i < row_count; ++i) rows[i] = samples.data() + i * stride;
  }

  size_t stride = 0;
  std::vector<uint8_t> samples;
  std::vector<JSAMPROW> rows;
};

// libjpeg leaves on errors by longjmp, which runs no destructors. So everything that needs one
// lives here, outside the functions that libjpeg leaves.
struct JpegState {
  jpeg_error_mgr errors;
  std::jmp_buf escape;
  std::string error;
  std::string warning;
  bool cut_short = false;

  Plane planes[kMaxComponents];
  RgbImage image{0, 0};
  Metadata metadata;

  unsigned char* output = nullptr;
  unsigned long output_bytes = 0;
};

JpegState& state_of(j_common_ptr codec) { return *static_cast<JpegState*>(codec->client_data); }

std::string message_of(j_common_ptr codec) {
  char text[JMSG_LENGTH_MAX];
  codec->err->format_message(codec, text);
  return text;
}

void on_error(j_common_ptr codec) {
  JpegState& state = state_of(codec);
  state.error = message_of(codec);
  longjmp(state.escape, 1);
}

// Negative levels are damage that libjpeg can go on after.
void on_message(j_common_ptr codec, int level) {
  if (level >= 0) return;
  JpegState& state = state_of(codec);
  state.warning = message_of(codec);
  const int code = codec->err->msg_code;
  if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER) state.cut_short = true;
}

void set_up_errors(JpegState& state) {
  jpeg_std_error(&state.errors);
  state.errors.error_exit = on_error;
  state.errors.emit_message = on_message;
}

void read_metadata(jpeg_decompress_struct& codec, JpegState& state) {
  for (const jpeg_marker_struct* marker = codec.marker_list; marker != nullptr;
       marker = marker->next) {
    if (marker->marker == kExifMarker && marker->data_length > kExifHeaderBytes &&
        std::memcmp(marker->data, kExifHeader, kExifHeaderBytes) == 0) {
      state.metadata.exif.assign(marker->data + kExifHeaderBytes,
                                 marker->data + marker->data_length);
    }
  }
  JOCTET* profile = nullptr;
  unsigned length = 0;
  if (jpeg_read_icc_profile(&codec, &profile, &length)) {
    state.metadata.icc.assign(profile, profile + length);
    std::free(profile);
  }
}

enum class Sampling { kGrey, k444, k422, k420, kOther };

Sampling sampling_of(const jpeg_decompress_struct& codec) {
  if (codec.jpeg_color_space == JCS_GRAYSCALE) return Sampling::kGrey;
  if (codec.jpeg_color_space != JCS_YCbCr || codec.num_components != 3) return Sampling::kOther;
  const jpeg_component_info* info = codec.comp_info;
  for (int i = 1; i < 3; ++i) {
    if (info[i].h_samp_factor != 1 || info[i].v_samp_factor != 1) return Sampling::kOther;
  }
  const int across = info[0].h_samp_factor;
  const int down = info[0].v_samp_factor;
  if (across == 1 && down == 1) return Sampling::k444;
  if (across == 2 && down == 1) return Sampling::k422;
  if (across == 2 && down == 2) return Sampling::k420;
  return Sampling::kOther;
}

void read_planes(jpeg_decompress_struct& codec, JpegState& state) {
  codec.raw_data_out = TRUE;
  jpeg_start_decompress(&codec);
  for (int i = 0; i < codec.num_components; ++i) {
    const jpeg_component_info& info = codec.comp_info[i];
    state.planes[i].resize(size_t{info.width_in_blocks} * DCTSIZE,
                           size_t{codec.total_iMCU_rows} * info.v_samp_factor * DCTSIZE);
  }
  const JDIMENSION step = static_cast<JDIMENSION>(codec.max_v_samp_factor) * DCTSIZE;
  for (size_t band = 0; codec.output_scanline < codec.output_height; ++band) {
    JSAMPARRAY rows[kMaxComponents] = {};
    for (int i = 0; i < codec.num_components; ++i) {
      rows[i] = state.planes[i].rows.data() + band * codec.comp_info[i].v_samp_factor * DCTSIZE;
    }
    jpeg_read_raw_data(&codec, rows, step);
  }
}

void read_rgb(jpeg_decompress_struct& codec, JpegState& state) {
  codec.out_color_space = JCS_RGB;
  jpeg_start_decompress(&codec);
  state.image =
      RgbImage(static_cast<int>(codec.output_width), static_cast<int>(codec.output_height));
  while (codec.output_scanline < codec.output_height) {
    JSAMPROW row = state.image.row(static_cast<int>(codec.output_scanline));
    jpeg_read_scanlines(&codec, &row, 1);
  }
}

// False with `state.error` set when the file is no good.
bool read_all(jpeg_decompress_struct& codec, JpegState& state, Sampling& sampling, Size& size,
              const std::vector<uint8_t>& bytes) {
  if (setjmp(state.escape) != 0) return false;
  jpeg_create_decompress(&codec);
  jpeg_save_markers(&codec, kExifMarker, 0xFFFF);
  jpeg_save_markers(&codec, kIccMarker, 0xFFFF);
  jpeg_mem_src(&codec, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&codec, TRUE);
  size = {static_cast<int>(codec.image_width), static_cast<int>(codec.image_height)};
  if (!is_legal_size(size.width, size.height)) {
    state.error = size_problem(size.width, size.height);
    return false;
  }
  if (codec.num_components > kMaxComponents) {
    state.error = "CMYK pictures are not supported";
    return false;
  }
  read_metadata(codec, state);
  sampling = sampling_of(codec);
  if (sampling == Sampling::kOther) {
    read_rgb(codec, state);
  } else {
    read_planes(codec, state);
  }
  jpeg_finish_decompress(&codec);
  return true;
}

Nv21Frame join_planes(const Plane* planes, Sampling sampling, Size size) {
  Nv21Frame frame(size.width, size.height);
  const auto stride = [&](int i) { return static_cast<int>(planes[i].stride); };
  const uint8_t* y = planes[0].samples.data();
  if (sampling == Sampling::kGrey) {
    libyuv::I400ToNV21(y, stride(0), frame.y(), frame.width, frame.vu(), frame.chroma_stride(),
                       size.width, size.height);
    return frame;
  }
  const auto convert = sampling == Sampling::k444   ? libyuv::I444ToNV21
                       : sampling == Sampling::k422 ? libyuv::I422ToNV21
                                                    : libyuv::I420ToNV21;
  convert(y, stride(0), planes[1].samples.data(), stride(1), planes[2].samples.data(), stride(2),
          frame.y(), frame.width, frame.vu(), frame.chroma_stride(), size.width, size.height);
  return frame;
}

void fill_planes(JpegState& state, const Nv21Frame& padded) {
  const auto width = static_cast<size_t>(padded.width);
  const auto height = static_cast<size_t>(padded.height);
  state.planes[0].resize(width, height);
  std::memcpy(state.planes[0].samples.data(), padded.y(), padded.luma_bytes());
  for (int i = 1; i < 3; ++i) state.planes[i].resize(width / 2, height / 2);
  const int half = padded.width / 2;
  libyuv::SplitUVPlane(padded.vu(), padded.width, state.planes[2].samples.data(), half,
                       state.planes[1].samples.data(), half, half, padded.height / 2);
}

void write_metadata(jpeg_compress_struct& codec, const Metadata& metadata,
                    const std::vector<uint8_t>& exif_marker) {
  if (!exif_marker.empty()) {
    jpeg_write_marker(&codec, kExifMarker, exif_marker.data(),
                      static_cast<unsigned>(exif_marker.size()));
  }
  if (!metadata.icc.empty()) {
    jpeg_write_icc_profile(&codec, metadata.icc.data(), static_cast<unsigned>(metadata.icc.size()));
  }
}

bool write_all(jpeg_compress_struct& codec, JpegState& state, Size size, int quality,
               const Metadata& metadata, const std::vector<uint8_t>& exif_marker) {
  if (setjmp(state.escape) != 0) return false;
  jpeg_create_compress(&codec);
  jpeg_mem_dest(&codec, &state.output, &state.output_bytes);
  codec.image_width = static_cast<JDIMENSION>(size.width);
  codec.image_height = static_cast<JDIMENSION>(size.height);
  codec.input_components = 3;
  codec.in_color_space = JCS_YCbCr;
  jpeg_set_defaults(&codec);  // 4:2:0
  jpeg_set_quality(&codec, quality, TRUE);
  codec.raw_data_in = TRUE;
  jpeg_start_compress(&codec, TRUE);
  write_metadata(codec, metadata, exif_marker);
  constexpr JDIMENSION kStep = 2 * DCTSIZE;
  for (size_t band = 0; codec.next_scanline < codec.image_height; ++band) {
    JSAMPARRAY rows[kMaxComponents] = {state.planes[0].rows.data() + band * kStep,
                                       state.planes[1].rows.data() + band * DCTSIZE,
                                       state.planes[2].rows.data() + band * DCTSIZE};
    jpeg_write_raw_data(&codec, rows, kStep);
  }
  jpeg_finish_compress(&codec);
  return true;
}

}  // namespace

bool is_jpeg(const std::vector<uint8_t>& bytes) {
  return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

Picture decode_jpeg(const std::string& path, std::vector<uint8_t> bytes) {
  JpegState state;
  jpeg_decompress_struct codec{};
  set_up_errors(state);
  codec.err = &state.errors;
  codec.client_data = &state;
  Sampling sampling = Sampling::kOther;
  Size size{};
  const bool read = read_all(codec, state, sampling, size, bytes);
  jpeg_destroy_decompress(&codec);
  if (!read) throw input_error(path, "no readable JPEG picture: " + state.error);
  if (state.cut_short) throw input_error(path, "no readable JPEG picture: the file is cut short");
  if (!state.warning.empty()) warn(path + ": " + state.warning);
  const auto origin = std::make_shared<Origin>();
  origin->kind = FileKind::kJpeg;
  origin->bytes = std::move(bytes);
  if (sampling == Sampling::kOther) {
    return {std::move(state.image), std::move(state.metadata), origin};
  }
  return {join_planes(state.planes, sampling, size), std::move(state.metadata), origin};
}

std::vector<uint8_t> encode_jpeg(const Nv21Frame& frame, int quality, const Metadata& metadata) {
  JpegState state;
  fill_planes(state,
              with_size(frame, {(frame.width + 15) / 16 * 16, (frame.height + 15) / 16 * 16}));
  std::vector<uint8_t> exif_marker;
  if (!metadata.exif.empty() && metadata.exif.size() <= kMaxMarkerBytes - kExifHeaderBytes) {
    exif_marker.assign(kExifHeader, kExifHeader + kExifHeaderBytes);
    exif_marker.insert(exif_marker.end(), metadata.exif.begin(), metadata.exif.end());
  }
  jpeg_compress_struct codec{};
  set_up_errors(state);
  codec.err = &state.errors;
  codec.client_data = &state;
  const bool written =
      write_all(codec, state, {frame.width, frame.height}, quality, metadata, exif_marker);
  jpeg_destroy_compress(&codec);
  const std::vector<uint8_t> bytes(state.output, state.output + (written ? state.output_bytes : 0));
  std::free(state.output);
  if (!written) throw Failure(kFailed, "JPEG encoder: " + state.error);
  return bytes;
}

}  // namespace tool
