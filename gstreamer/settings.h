// The element's properties.
#ifndef VOREL_GSTREAMER_SETTINGS_H_
#define VOREL_GSTREAMER_SETTINGS_H_

#include <cstdint>
#include <optional>
#include <string>

// What a change of a property asks of the handle.
struct Settings {
  std::optional<int32_t> noise_index;  // nothing: estimated from the frames
  int amount = 0;                     // percent of the change that is kept; 0: as estimated, or all
  std::optional<std::string> tuning;  // a file, or "none"; nothing: the sample tuning
  uint32_t sensor = 0;
  bool spatial = true;
  bool wavelet = true;

  // Whether one handle can serve both: everything but the strength is the same.
  [[nodiscard]] bool same_handle(const Settings& other) const {
    return tuning == other.tuning && sensor == other.sensor && spatial == other.spatial &&
           wavelet == other.wavelet;
  }
};

// "auto" gives nothing; false for a text that is neither that nor a number from 0.
[[nodiscard]] bool parse_noise_index(const char* text, std::optional<int32_t>* index);

#endif  // VOREL_GSTREAMER_SETTINGS_H_
