// What tuning files say about their levels' chroma noise.
#include <jansson.h>

#include <algorithm>
#include <memory>

#include "tools/measure/noise_index.h"
#include "tuning/used_object.h"

namespace tool {
namespace {

struct JsonRelease {
  void operator()(json_t* json) const { json_decref(json); }
};

bool rises(const NoiseCalibration& levels) {
  for (size_t i = 0; i < levels.size(); ++i) {
    const NoiseLevel before = i > 0 ? levels[i - 1] : NoiseLevel{0, 0};
    if (levels[i].noise_index <= before.noise_index) return false;
    if (levels[i].chroma_noise <= before.chroma_noise) return false;
  }
  return true;
}

}  // namespace

std::optional<NoiseCalibration> calibration_of(const std::string& tuning_text) {
  json_error_t error;
  const std::unique_ptr<json_t, JsonRelease> root(
      json_loadb(tuning_text.data(), tuning_text.size(), JSON_DISABLE_EOF_CHECK, &error));
  const json_t* used = used_object(root.get());
  const json_t* indices = json_object_get(used, "noiseIndex_values");
  const json_t* noise = json_object_get(used, "chromaNoise_values");
  NoiseCalibration levels;
  for (size_t i = 0; i < std::min(json_array_size(indices), json_array_size(noise)); ++i) {
    levels.push_back({static_cast<int>(json_integer_value(json_array_get(indices, i))),
                      json_real_value(json_array_get(noise, i))});
  }
  if (levels.empty() || !rises(levels)) return std::nullopt;
  return levels;
}

}  // namespace tool
