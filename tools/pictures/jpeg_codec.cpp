#include "tools/pictures/jpeg_codec.h"

#include <algorithm>
#include <cstdlib>

namespace tool {
namespace {

constexpr size_t kMaxWarnings = 4;

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
  std::string text = message_of(codec);
  const bool is_new =
      std::find(state.warnings.begin(), state.warnings.end(), text) == state.warnings.end();
  if (is_new && state.warnings.size() < kMaxWarnings) state.warnings.push_back(std::move(text));
  const int code = codec->err->msg_code;
  if (code == JWRN_JPEG_EOF) state.cut_short = true;
}

}  // namespace

void JpegPlane::resize(size_t stride_, size_t row_count) {
  stride = stride_;
  samples.resize(stride * row_count);
  rows.resize(row_count);
  for (size_t i = 0; i < row_count; ++i) rows[i] = samples.data() + i * stride;
}

void JpegPlane::copy(const JpegPlane& other) {
  resize(other.stride, other.rows.size());
  samples = other.samples;
  resize(stride, rows.size());  // rows point into the samples
}

JpegState::JpegState() {
  jpeg_std_error(&errors);
  errors.error_exit = on_error;
  errors.emit_message = on_message;
}

JpegState::~JpegState() { std::free(output); }

bool read_sampling(const jpeg_decompress_struct& codec, JpegSampling& sampling) {
  sampling.components = codec.num_components;
  if (codec.jpeg_color_space == JCS_GRAYSCALE) return true;
  if (codec.jpeg_color_space != JCS_YCbCr || codec.num_components != 3) return false;
  const jpeg_component_info* info = codec.comp_info;
  for (int i = 1; i < 3; ++i) {
    if (info[i].h_samp_factor != 1 || info[i].v_samp_factor != 1) return false;
  }
  sampling.across = info[0].h_samp_factor;
  sampling.down = info[0].v_samp_factor;
  return sampling.across != 3 && sampling.down != 3;
}

std::string sampling_name(JpegSampling sampling) {
  const auto [components, across, down] = sampling;
  if (components == 1) return "4:0:0";
  const std::string chroma = std::to_string(4 / across);
  return "4:" + chroma + ":" + (down == 1 ? chroma : "0");
}

void read_planes(jpeg_decompress_struct& codec, JpegPlane* planes) {
  codec.raw_data_out = TRUE;
  jpeg_start_decompress(&codec);
  for (int i = 0; i < codec.num_components; ++i) {
    const jpeg_component_info& info = codec.comp_info[i];
    planes[i].resize(size_t{info.width_in_blocks} * DCTSIZE,
                     size_t{codec.total_iMCU_rows} * info.v_samp_factor * DCTSIZE);
  }
  const JDIMENSION step = static_cast<JDIMENSION>(codec.max_v_samp_factor) * DCTSIZE;
  for (size_t band = 0; codec.output_scanline < codec.output_height; ++band) {
    JSAMPARRAY rows[kMaxJpegComponents] = {};
    for (int i = 0; i < codec.num_components; ++i) {
      rows[i] = planes[i].rows.data() + band * codec.comp_info[i].v_samp_factor * DCTSIZE;
    }
    jpeg_read_raw_data(&codec, rows, step);
  }
}

void write_planes(jpeg_compress_struct& codec, JpegPlane* planes) {
  const JDIMENSION step = static_cast<JDIMENSION>(codec.max_v_samp_factor) * DCTSIZE;
  for (size_t band = 0; codec.next_scanline < codec.image_height; ++band) {
    JSAMPARRAY rows[kMaxJpegComponents] = {};
    for (int i = 0; i < codec.num_components; ++i) {
      rows[i] = planes[i].rows.data() + band * codec.comp_info[i].v_samp_factor * DCTSIZE;
    }
    jpeg_write_raw_data(&codec, rows, step);
  }
}

}  // namespace tool
