#include "tools/library/tuning_choice.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <optional>

#include "tools/files/failure.h"
#include "tools/files/file_bytes.h"
#include "tools/pictures/picture_name.h"
#include "tools/tuning/check.h"
#include "tools/tuning/edit.h"
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

// Shows what the checker finds; gives the finding that the library reads nothing of the text.
std::optional<Finding> show_findings(const std::string& path, const std::string& text) {
  std::optional<Finding> useless;
  for (const Finding& finding : check_tuning_text(text)) {
    if (finding.is_whole_file) {
      useless = finding;
    } else {
      warn(finding.where(path) + ": " + finding.text());
    }
  }
  return useless;
}

TuningChoice built_in(const std::string& why) {
  return {kNoTuning, "the library's built-in values" + (why.empty() ? "" : " (" + why + ")"), "",
          true};
}

TuningChoice from_file(const std::string& path) {
  const std::string text = read_text_file(path);
  if (const std::optional<Finding> useless = show_findings(path, text)) {
    throw input_error(useless->where(path),
                      useless->text() + " (--tuning none uses the built-in values)");
  }
  return {text, path, "", false};
}

TuningChoice from_directory(const std::string& directory, unsigned sensor) {
  const std::string model = model_of(sensor);
  if (model.empty()) return built_in("unknown sensor");
  const std::string path = directory + "/vorel_" + model + ".json";
  bool unused = false;
  if (!exists(path, unused)) {
    const std::string why = directory + " has no vorel_" + model + ".json";
    warn(why + "; the library's built-in values are used");
    return built_in(why);
  }
  const std::string text = read_text_file(path);
  if (const std::optional<Finding> useless = show_findings(path, text)) {
    warn(useless->where(path) + ": " + useless->text() +
         "; the library's built-in values are used");
    return built_in(path + " is of no use");
  }
  return {text, path, "", false};
}

TuningChoice find_tuning(const TuningRequest& request) {
  const char* variable = getenv(kFirmwareVariable);
  const bool has_variable = variable != nullptr && *variable != '\0';
  if (request.name == "none") return built_in("");
  if (!request.name && !has_variable) {
    if (model_of(request.sensor).empty()) return built_in("unknown sensor");
    return {kSampleTuning, "the sample tuning of this program", "", false};
  }
  const std::string name = request.name ? *request.name : variable;
  bool is_directory = false;
  if (!exists(name, is_directory)) {
    throw input_error(name, request.name ? "no such tuning file or directory"
                                         : "no such directory; VOREL_FIRMWARE_DIR names it");
  }
  return is_directory ? from_directory(name, request.sensor) : from_file(name);
}

}  // namespace

TuningChoice choose_tuning(const TuningRequest& request) {
  TuningChoice choice = find_tuning(request);
  choice.model = model_of(request.sensor);
  if (choice.model.empty()) {
    warn("sensor " + std::to_string(request.sensor) + " is not known to the library; known are " +
         known_ids());
  }
  if (request.no_spatial || request.no_wavelet) {
    choice.text =
        with_paths_off(choice.description, choice.text, request.no_spatial, request.no_wavelet);
  }
  return choice;
}

}  // namespace tool
