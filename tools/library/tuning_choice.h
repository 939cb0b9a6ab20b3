// Which tuning the library gets.
#ifndef VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_
#define VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_

#include <optional>
#include <string>

namespace tool {

struct TuningRequest {
  // A file of any name, a directory laid out like a phone's, or "none" for the library's built-in
  // values. Not given: the directory VOREL_FIRMWARE_DIR, else the sample tuning in this program.
  std::optional<std::string> name;
  unsigned sensor = 0;
  bool no_spatial = false;  // switch a path off
  bool no_wavelet = false;
};

struct TuningChoice {
  std::string text;         // for the library; sets nothing for the built-in values
  std::string description;  // what was chosen, for the user
  std::string model;        // name of the sensor; empty when the library does not know it
  bool is_built_in = false;
};

// Reads what was asked for; the user's files are never changed. What the checker finds in a file is
// shown as warnings. A directory without a usable file for the sensor means the built-in values, as
// on the phone, and a warning. Throws an input error when a file that was named itself cannot be
// read or is of no use to the library.
[[nodiscard]] TuningChoice choose_tuning(const TuningRequest& request);

// The sample tuning that the program carries.
extern const char kSampleTuning[];

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_
