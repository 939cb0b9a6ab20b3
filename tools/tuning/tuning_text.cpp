#include "tools/tuning/tuning_text.h"

#include <algorithm>

#include "tools/tuning/text_encoding.h"
#include "tuning/used_object.h"

namespace tool {
namespace {

// Why jansson refuses the text. Bytes of another encoding come before what they do to the syntax.
JsonFault why_refused(const std::string& text, const JsonPlaces& places,
                      const json_error_t& error) {
  const size_t seen = places.fault ? places.fault->at + 1 : places.root.end;
  if (const auto encoding = encoding_fault(text, seen)) return *encoding;
  if (places.fault) return *places.fault;
  // A number or text that is too much for jansson, which tells where it ends.
  const size_t end = std::min(static_cast<size_t>(std::max(error.position, 0)), text.size());
  const size_t before = text.find_last_of(" \t\r\n,:[{", end > 0 ? end - 1 : 0);
  return {before == std::string::npos ? 0 : before + 1, error.text};
}

}  // namespace

TuningText::TuningText(const std::string& text) : places_(find_places(text)) {
  json_error_t error;
  // As the library reads it: what follows the first value does not matter, a zero byte ends it.
  root_.reset(json_loads(text.c_str(), JSON_DISABLE_EOF_CHECK, &error));
  if (!root_) fault_ = why_refused(text, places_, error);
  leftover_ = std::min(text.find_first_not_of(" \t\r\n", places_.root.end), text.size());
}

Located TuningText::used() const {
  if (first_non_object(root_.get()) < json_array_size(root_.get())) return {};
  return element(root(), used_position(root_.get()));
}

}  // namespace tool
