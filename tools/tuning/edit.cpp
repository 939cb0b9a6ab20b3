#include "tools/tuning/edit.h"

#include <jansson.h>

#include <cstdlib>
#include <memory>

#include "tools/files/failure.h"

namespace tool {
namespace {

struct JsonRelease {
  void operator()(json_t* json) const { json_decref(json); }
};
using Json = std::unique_ptr<json_t, JsonRelease>;

struct TextRelease {
  void operator()(char* text) const { std::free(text); }
};

}  // namespace

std::string with_paths_off(const std::string& path, const std::string& text, bool spatial_off,
                           bool wavelet_off) {
  json_error_t error;
  const Json root(json_loadb(text.data(), text.size(), JSON_DISABLE_EOF_CHECK, &error));
  if (!root) {
    throw input_error(path, "line " + std::to_string(error.line) + ": " + error.text);
  }
  json_t* last = json_array_get(root.get(), json_array_size(root.get()) - 1);
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
  const std::unique_ptr<char, TextRelease> edited(json_dumps(root.get(), JSON_INDENT(2)));
  if (!edited) throw input_error(path, "cannot be edited");
  return edited.get();
}

}  // namespace tool
