// How far a picture is from another.
#ifndef VOREL_TOOLS_MEASURE_METRICS_H_
#define VOREL_TOOLS_MEASURE_METRICS_H_

#include <cstdint>

#include "tools/pictures/picture.h"

namespace tool {

// Squared differences of one plane, collected over any number of frames.
struct PlaneError {
  double squares = 0.0;
  double samples = 0.0;

  // Peak signal to noise ratio in dB; infinite for equal planes.
  [[nodiscard]] double psnr() const;
};

// Distance of a picture (or video) from its reference.
class PictureDistance {
 public:
  // Adds a frame. Both in the same YUV; the RGB forms serve the colour difference.
  void add(const Nv21Frame& frame, const RgbImage& image, const Nv21Frame& reference,
           const RgbImage& reference_image);

  [[nodiscard]] double psnr_y() const { return y_.psnr(); }
  [[nodiscard]] double psnr_u() const { return u_.psnr(); }
  [[nodiscard]] double psnr_v() const { return v_.psnr(); }
  [[nodiscard]] double mean_ciede2000() const;

 private:
  PlaneError y_;
  PlaneError u_;
  PlaneError v_;
  double difference_sum_ = 0.0;
  double pixels_ = 0.0;
};

// Mean CIEDE2000 times the number of pixels.
[[nodiscard]] double ciede2000_sum(const RgbImage& a, const RgbImage& b);

// Denoising the sample picture at any index moves a plane's mean by less than one step.
inline constexpr double kMostChromaShift = 4.0;

// What processing changed, collected over the frames of a video.
class ChangeCount {
 public:
  void add(const Nv21Frame& before, const Nv21Frame& after);

  struct Plane {
    double changed = 0.0;  // samples that differ
    double total = 0.0;    // samples
    double sum = 0.0;      // of absolute differences
    [[nodiscard]] double share_percent() const { return total > 0 ? 100.0 * changed / total : 0; }
    [[nodiscard]] double mean() const { return total > 0 ? sum / total : 0; }
  };
  // How far the mean of each chroma plane moved.
  struct Shift {
    double u = 0.0;
    double v = 0.0;
  };
  [[nodiscard]] Shift chroma_shift() const;

  [[nodiscard]] const Plane& luma() const { return luma_; }
  [[nodiscard]] const Plane& chroma() const { return chroma_; }

 private:
  Plane luma_;
  Plane chroma_;
  Shift shift_sum_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_METRICS_H_
