// Which tuning the library reads.
#ifndef VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_
#define VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_

#include <memory>
#include <optional>
#include <string>

#include "tools/files/temporary_directory.h"

namespace tool {

struct TuningRequest {
  // A file of any name, a directory laid out like a phone's, or "none" for the library's built-in
  // values. Not given: the directory VOREL_FIRMWARE_DIR, else the sample tuning in this program.
  std::optional<std::string> name;
  unsigned sensor = 0;
  bool no_spatial = false;  // switch a path off
  bool no_wavelet = false;
};

// Puts the tuning where the library looks for it, which the environment variable
// VOREL_FIRMWARE_DIR says while the object lives. The user's files are only read: what must be
// changed is changed in a private copy. What the checker finds in the file is shown as warnings.
class TuningChoice {
 public:
  // Throws an input error when a named file cannot be read or is of no use to the library.
  explicit TuningChoice(const TuningRequest& request);
  ~TuningChoice();
  TuningChoice(const TuningChoice&) = delete;
  TuningChoice& operator=(const TuningChoice&) = delete;

  // What was chosen, for the user.
  [[nodiscard]] const std::string& description() const { return description_; }
  // Model name of the sensor; empty when the library does not know it.
  [[nodiscard]] const std::string& model() const { return model_; }

 private:
  std::optional<std::string> find_text(const TuningRequest& request);
  void point_library_at(const std::string& directory);

  std::string description_;
  std::string model_;
  std::string directory_;  // that has no file for the sensor
  std::optional<std::string> saved_variable_;
  std::unique_ptr<TemporaryDirectory> copy_;
};

// The sample tuning that the program carries.
extern const char kSampleTuning[];

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_TUNING_CHOICE_H_
