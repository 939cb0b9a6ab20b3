// Any bytes as a manifest of captures, as either kind.
#include "fuzz/picture_check.h"
#include "tools/tune/manifest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string name = size > 0 && (data[0] == '[' || data[0] == '{') ? "in.json" : "in.csv";
  const std::string path = write_input(name, data, size);
  may_refuse([&] {
    for (const tool::CaptureSource& source : tool::read_manifest(path)) {
      if (source.noise_index < 1 || (source.noisy.empty() && source.clean.empty())) std::abort();
    }
  });
  return 0;
}
