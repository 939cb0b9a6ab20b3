#include "tools/library/tuning_choice.h"

#include <stdlib.h>
#include <sys/stat.h>

#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/picture_name.h"
#include "tools/tuning/edit.h"
#include "tools/tuning/findings.h"
#include "tuning/sensors.h"

namespace tool {
namespace {

constexpr char kFirmwareVariable[] = "VOREL_FIRMWARE_DIR";
// A file that sets nothing leaves every built-in value in force.
constexpr char kNoTuning[] = R"([{"CNRTuningSetfile": {"Date": "built-in values"}}])";

std::string model_of(unsigned id) {
  for (const sensor& row : known_sensors()) {
    if (static_cast<unsigned>(row.id) == id) return row.model;
  }
  return "";
}

std::string known_ids() {
  std::string list;
  for (const sensor& row : known_sensors()) {
    list += (list.empty() ? "" : ", ") + std::to_string(row.id);
  }
  return list;
}

bool exists(const std::string& path, bool& is_directory) {
  struct stat status{};
  if (stat(path.c_str(), &status) != 0) return false;
  is_directory = S_ISDIR(status.st_mode);
  return true;
}

// Shows what the checker finds. A file that the user named must be of use.
void show_findings(const std::string& path, const std::string& text, bool must_be_usable) {
  for (const Finding& finding : check_tuning_text(text)) {
    if (finding.is_whole_file && must_be_usable) {
      throw input_error(path, finding.text + " (--tuning none uses the built-in values)");
    }
    warn(path + ": " + finding.text);
  }
}

}  // namespace

TuningChoice::TuningChoice(const TuningRequest& request) : model_(model_of(request.sensor)) {
  if (const char* variable = getenv(kFirmwareVariable)) saved_variable_ = variable;
  if (model_.empty()) {
    warn("sensor " + std::to_string(request.sensor) +
         " is not known to the library, which uses "
         "its built-in values; known are " +
         known_ids());
    if (request.no_spatial || request.no_wavelet) {
      throw usage_error("--no-spatial and --no-wavelet need a sensor that the library knows");
    }
    description_ = "built-in values (unknown sensor)";
    return;
  }
  std::optional<std::string> text = find_text(request);
  if (!text && (request.no_spatial || request.no_wavelet)) text = kNoTuning;
  if (!text) {
    point_library_at(directory_);
    return;
  }
  if (request.no_spatial || request.no_wavelet) {
    text = with_paths_off(description_, *text, request.no_spatial, request.no_wavelet);
  }
  copy_ = std::make_unique<TemporaryDirectory>();
  copy_->add("vorel_" + model_ + ".json", *text);
  point_library_at(copy_->path());
}

TuningChoice::~TuningChoice() {
  if (saved_variable_) {
    setenv(kFirmwareVariable, saved_variable_->c_str(), 1);
  } else {
    unsetenv(kFirmwareVariable);
  }
}

void TuningChoice::point_library_at(const std::string& directory) {
  setenv(kFirmwareVariable, directory.c_str(), 1);
}

// The text of the tuning; nothing when the directory has none for this sensor. Sets the
// description.
std::optional<std::string> TuningChoice::find_text(const TuningRequest& request) {
  if (!request.name && (!saved_variable_ || saved_variable_->empty())) {
    description_ = "the sample tuning of this program";
    return kSampleTuning;
  }
  const std::string name = request.name.value_or(saved_variable_.value_or(""));
  if (request.name == "none") {
    description_ = "the library's built-in values";
    return kNoTuning;
  }
  bool is_directory = false;
  if (!exists(name, is_directory)) {
    throw input_error(name, request.name ? "no such tuning file or directory"
                                         : "no such directory; VOREL_FIRMWARE_DIR names it");
  }
  if (!is_directory) {
    std::string text = read_text_file(name);
    show_findings(name, text, true);
    description_ = name;
    return text;
  }
  const std::string path = name + "/vorel_" + model_ + ".json";
  bool unused = false;
  if (!exists(path, unused)) {
    directory_ = name;
    description_ = "the library's built-in values (" + name + " has no vorel_" + model_ + ".json)";
    return std::nullopt;
  }
  std::string text = read_text_file(path);
  show_findings(path, text, false);
  description_ = path;
  return text;
}

}  // namespace tool
