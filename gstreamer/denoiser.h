// The library as the element uses it: a handle for frames of one size.
#ifndef VOREL_GSTREAMER_DENOISER_H_
#define VOREL_GSTREAMER_DENOISER_H_

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gstreamer/settings.h"
#include "tools/measure/noise_index.h"
#include "tools/measure/removal.h"
#include "vorel/frame.h"

class Denoiser {
 public:
  // Null when the library refuses; `reason` then says why.
  static std::unique_ptr<Denoiser> open(const Settings& settings, int width, int height,
                                        std::string* reason);
  ~Denoiser();
  Denoiser(const Denoiser&) = delete;
  Denoiser& operator=(const Denoiser&) = delete;

  // In place, with noise index and amount of the settings. Without a noise index it is estimated; a
  // frame whose noise cannot be seen is left as it is.
  vorel_status process(vorel_frame frame, const Settings& settings, vorel_frame_info* info);

  // The next frame is of another scene.
  void forget_estimate() { tracker_ = tool::NoiseIndexTracker(calibration_); }

 private:
  tool::Strength strength_for(const vorel_frame& frame, const Settings& settings);

  // What denoising a copy of the frame with another noise index would remove.
  std::optional<tool::Removal> try_index(vorel_frame frame, int32_t noise_index);

  Denoiser(vorel* handle, tool::NoiseCalibration calibration)
      : handle_(handle), calibration_(std::move(calibration)), tracker_(calibration_) {}

  vorel* handle_;
  tool::NoiseCalibration calibration_;
  tool::NoiseIndexTracker tracker_;
  std::vector<uint8_t> chroma_before_;  // of a frame of whose change a part is kept
};

#endif  // VOREL_GSTREAMER_DENOISER_H_
