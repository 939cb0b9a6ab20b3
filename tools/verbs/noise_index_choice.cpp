#include "tools/verbs/noise_index_choice.h"

#include <algorithm>

#include "tools/files/failure.h"
#include "tools/measure/frame_view.h"
#include "tools/pictures/exif_iso.h"
#include "tools/verbs/trial_run.h"

namespace tool {
namespace {

std::string range_text(int least, int most) {
  const std::string text = std::to_string(least);
  return least == most ? text : text + " to " + std::to_string(most);
}

}  // namespace

NoiseCalibration calibration_for(const std::string& tuning_text) {
  return calibration_of(tuning_text).value_or(sample_calibration());
}

Strength NoiseIndexChoice::next(const Picture& picture, const Nv21Frame& frame) {
  if (frames_ == 0) iso_ = exif_iso(picture.metadata.exif);
  Strength strength = choose(frame);
  if (strength.noise_index > 0) strength.percent = request_.percent.value_or(strength.percent);
  if (frames_ == 0) least_ = most_ = strength;
  least_ = {std::min(least_.noise_index, strength.noise_index),
            std::min(least_.percent, strength.percent)};
  most_ = {std::max(most_.noise_index, strength.noise_index),
           std::max(most_.percent, strength.percent)};
  ++frames_;
  return strength;
}

Strength NoiseIndexChoice::choose(const Nv21Frame& frame) {
  switch (request_.source) {
    case NoiseIndexRequest::Source::kNumber:
      return {request_.number};
    case NoiseIndexRequest::Source::kExif:
      if (iso_) return {*iso_};
      throw input_error(path_,
                        "has no ISO sensitivity in its Exif data; give --noise-index a number "
                        "or auto");
    case NoiseIndexRequest::Source::kEstimate:
      break;
  }
  const std::optional<Strength> found = tracker_.next(
      view_of(frame), [&](int tried) { return try_noise_index(frame, tried, settings_, calls_); });
  estimated_ = estimated_ || found;
  return found.value_or(Strength{});
}

std::string NoiseIndexChoice::text() const {
  std::string text = range_text(least_.noise_index, most_.noise_index);
  if (least_.percent < 100) text += " at " + range_text(least_.percent, most_.percent) + " %";
  switch (request_.source) {
    case NoiseIndexRequest::Source::kNumber:
      return text;
    case NoiseIndexRequest::Source::kExif:
      return text + " (Exif's ISO sensitivity)";
    case NoiseIndexRequest::Source::kEstimate:
      break;
  }
  text += !estimated_   ? " (too little to estimate it from; give --noise-index a number"
          : frames_ > 1 ? " (estimated for each frame"
                        : " (estimated";
  if (frames_ == 1 && tracker_.refused()) {
    text += "; " + std::to_string(*tracker_.refused()) + " could remove texture";
  }
  if (iso_) text += "; Exif says ISO " + std::to_string(*iso_);
  return text + ")";
}

}  // namespace tool
