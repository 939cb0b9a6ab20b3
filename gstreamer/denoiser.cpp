#include "gstreamer/denoiser.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "gstreamer/sample_tuning.h"
#include "tools/measure/partial_removal.h"

namespace {

// A tuning that sets nothing leaves every built-in value in force.
constexpr char kNoTuning[] = "[{}]";

bool has_firmware_directory() {
  const char* directory = std::getenv("VOREL_FIRMWARE_DIR");
  return directory != nullptr && directory[0] != '\0';
}

// The text of the chosen tuning; empty when the library finds the sensor's file itself.
std::string tuning_text(const Settings& settings) {
  if (settings.tuning == "none") return kNoTuning;
  if (settings.tuning) {
    std::ifstream file(*settings.tuning, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  return has_firmware_directory() ? "" : kSampleTuning;
}

tool::FrameView view_of(const vorel_frame& frame) {
  return {frame.luma,   static_cast<size_t>(frame.luma_stride),
          frame.chroma, static_cast<size_t>(frame.chroma_stride),
          frame.width,  frame.height};
}

tool::Rows luma_rows(const vorel_frame& frame) {
  return {frame.luma, static_cast<size_t>(frame.luma_stride), static_cast<size_t>(frame.width),
          static_cast<size_t>(frame.height)};
}

tool::Rows chroma_rows(const vorel_frame& frame) {
  return {frame.chroma, static_cast<size_t>(frame.chroma_stride),
          (static_cast<size_t>(frame.width) + 1) / 2 * 2,
          (static_cast<size_t>(frame.height) + 1) / 2};
}

// Without the gaps between rows, into memory that is kept.
void copy_dense(const tool::Rows& rows, std::vector<uint8_t>* copy) {
  copy->resize(rows.bytes * rows.count);
  for (size_t y = 0; y < rows.count; ++y) {
    std::memcpy(copy->data() + y * rows.bytes, rows.data + y * rows.stride, rows.bytes);
  }
}

}  // namespace

std::unique_ptr<Denoiser> Denoiser::open(const Settings& settings, int width, int height,
                                         std::string* reason) {
  vorel_options options = vorel_default_options(width, height);
  options.sensor_id = settings.sensor;
  options.disable_spatial = settings.spatial ? 0 : 1;
  options.disable_wavelet = settings.wavelet ? 0 : 1;
  const std::string text = tuning_text(settings);
  if (settings.tuning || !text.empty()) {
    options.tuning_text = text.data();
    options.tuning_text_bytes = text.size();
  }
  vorel_status status = VOREL_DONE;
  vorel* handle = vorel_open(&options, &status);
  if (handle == nullptr) {
    *reason = vorel_status_text(status);
    if (settings.tuning) *reason = *settings.tuning + ": " + *reason;
    return nullptr;
  }
  return std::unique_ptr<Denoiser>(
      new Denoiser(handle, tool::calibration_of(text).value_or(tool::sample_calibration())));
}

Denoiser::~Denoiser() { vorel_deinit(handle_); }

tool::Strength Denoiser::strength_for(const vorel_frame& frame, const Settings& settings) {
  if (settings.noise_index) return {*settings.noise_index};
  const auto found =
      tracker_.next(view_of(frame), [&](int tried) { return try_index(frame, tried); });
  return found.value_or(tool::Strength{});
}

vorel_status Denoiser::process(vorel_frame frame, const Settings& settings,
                               vorel_frame_info* info) {
  tool::Strength strength = strength_for(frame, settings);
  if (settings.amount > 0) strength.percent = settings.amount;
  frame.noise_index = strength.noise_index;
  info->size = sizeof(*info);
  if (strength.percent == 100) return vorel_denoise_frame(handle_, &frame, info);
  const tool::Rows rows = chroma_rows(frame);
  copy_dense(rows, &chroma_before_);
  const vorel_status status = vorel_denoise_frame(handle_, &frame, info);
  tool::keep_part_of_change(chroma_before_.data(), rows.bytes, strength.percent, rows);
  return status;
}

std::optional<tool::Removal> Denoiser::try_index(vorel_frame frame, int32_t noise_index) {
  const vorel_frame original = frame;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
  copy_dense(luma_rows(frame), &luma);
  copy_dense(chroma_rows(frame), &chroma);
  frame.luma = luma.data();
  frame.luma_stride = frame.width;
  frame.chroma = chroma.data();
  frame.chroma_stride = (frame.width + 1) / 2 * 2;
  frame.noise_index = noise_index;
  const vorel_status status = vorel_denoise_frame(handle_, &frame, nullptr);
  if (status != VOREL_DONE && status != VOREL_BELOW_GATE) return std::nullopt;
  return tool::measure_removal(view_of(original), view_of(frame));
}
