#include "tools/tuning/edit.h"

#include "tools/files/failure.h"
#include "tools/tuning/json.h"
#include "tuning/used_object.h"

namespace tool {

std::string with_paths_off(const std::string& path, const std::string& text, bool spatial_off,
                           bool wavelet_off) {
  json_error_t error;
  const Json root(json_loadb(text.data(), text.size(), JSON_DISABLE_EOF_CHECK, &error));
  if (!root) {
    throw input_error(path, "line " + std::to_string(error.line) + ": " + error.text);
  }
  json_t* last = used_object(root.get());
  if (!json_is_object(last)) throw input_error(path, "is no array of tuning objects");
  if (spatial_off) json_object_set_new(last, "enable", json_integer(0));
  if (wavelet_off) {
    json_t* wavelet = json_object_get(last, "MFD_UV_tuning");
    if (!json_is_object(wavelet)) {
      wavelet = json_object();
      json_object_set_new(last, "MFD_UV_tuning", wavelet);
    }
    json_object_set_new(wavelet, "enable", json_integer(0));
  }
  const std::string edited = json_text(root.get(), JSON_INDENT(2));
  if (edited.empty()) throw input_error(path, "cannot be edited");
  return edited;
}

}  // namespace tool
