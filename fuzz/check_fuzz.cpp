// Any bytes as a tuning file for the checker, and for switching paths off in it, which gives a
// tuning file again.
#include "fuzz/picture_check.h"
#include "tools/tuning/check.h"
#include "tools/tuning/edit.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  static_cast<void>(tool::check_tuning_text(text));
  may_refuse([&] {
    const std::string edited = tool::with_paths_off("in.json", text, true, true);
    static_cast<void>(tool::check_tuning_text(edited));
    static_cast<void>(tool::with_paths_off("edited", edited, true, false));
  });
  return 0;
}
