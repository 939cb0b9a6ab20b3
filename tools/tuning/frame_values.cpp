#include "tools/tuning/frame_values.h"

#include <algorithm>
#include <charconv>

#include "tools/tuning/check_levels.h"

namespace tool {

LoadedTuning::LoadedTuning(const std::string& text) : text_(text) {
  set_default_tuning(&tuning_);
  const Located used = text_.used();
  if (!used) return;
  view_.emplace(used);
  json_t* root = const_cast<json_t*>(text_.root().json);  // decodeJson drops only bad roots
  decodeJson(root, &tuning_);
  char version[kTuningVersionSize] = {};
  if (view_->has(known_keys().front())) getTuningVersions(root, version);
  date_ = version;
}

double LoadedTuning::stored(const KnownKey& known, size_t index) const {
  cnr_tuning tuning = tuning_;
  return known.is_real() ? static_cast<double>(real_field(&tuning, known.key.field)[index])
                         : static_cast<double>(int_field(&tuning, known.key.field)[index]);
}

bool LoadedTuning::is_from_file(const KnownKey& known, size_t index) const {
  return view_ && static_cast<bool>(view_->value(known, index));
}

double LoadedTuning::for_frame(const KnownKey& known, int noise_index) const {
  cnr_tuning tuning = tuning_;
  select_tuning(&tuning, noise_index);
  return known.is_real() ? static_cast<double>(*real_field(&tuning, known.key.current))
                         : static_cast<double>(*int_field(&tuning, known.key.current));
}

size_t LoadedTuning::levels() const {
  return static_cast<size_t>(std::clamp(tuning_.NILevelNum, 1, kNoiseLevels));
}

std::vector<size_t> LoadedTuning::unreachable() const {
  const std::vector<double> all(tuning_.NILevel, tuning_.NILevel + levels());
  return unreachable_levels(all, tuning_.enableNoiseIndex);
}

LevelPair levels_around(const LoadedTuning& loaded, int noise_index) {
  const uint64_t pair =
      get_indices(noise_index, loaded.tuning().NILevel, static_cast<int>(loaded.levels()));
  return {pair & 0xFFFFFFFF, pair >> 32};
}

std::string stored_text(const KnownKey& known, double value) {
  if (!known.is_real()) return number_text(known, value);
  char text[32];
  const auto [end, error] = std::to_chars(text, text + sizeof(text), static_cast<float>(value));
  const std::string shown(text, end);
  return shown.find_first_of(".ein") != std::string::npos ? shown : shown + ".0";
}

}  // namespace tool
