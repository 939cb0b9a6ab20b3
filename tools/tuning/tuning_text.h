// A tuning file's text as the library reads it, with the places of its values.
#ifndef VOREL_TOOLS_TUNING_TUNING_TEXT_H_
#define VOREL_TOOLS_TUNING_TUNING_TEXT_H_

#include <string>

#include "tools/tuning/json.h"
#include "tools/tuning/json_places.h"
#include "tools/tuning/located.h"

namespace tool {

class TuningText {
 public:
  explicit TuningText(const std::string& text);

  // Null when the text is no JSON; `fault` says why.
  [[nodiscard]] Located root() const { return {root_.get(), &places_.root}; }
  [[nodiscard]] const JsonFault& fault() const { return fault_; }
  // The object that counts; null when the library takes nothing from the file.
  [[nodiscard]] Located used() const;
  // First character behind the root that is no blank; the text's size when there is none.
  [[nodiscard]] size_t leftover() const { return leftover_; }

 private:
  JsonPlaces places_;
  Json root_;
  JsonFault fault_;
  size_t leftover_ = 0;
};

}  // namespace tool

#endif  // VOREL_TOOLS_TUNING_TUNING_TEXT_H_
