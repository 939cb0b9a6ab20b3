// Raw frames under any name, with any size, stride, layout and number of frames asked for; and the
// names of batches and captures.
#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

#include "fuzz/picture_check.h"
#include "tools/pictures/picture_name.h"
#include "tools/tune/manifest.h"
#include "tools/verbs/batch_names.h"

namespace {

constexpr size_t kLongestName = 60;

// As a command line can give one: it ends at a zero.
std::string any_name(FuzzedDataProvider& input, const char* ending) {
  return input.ConsumeRandomLengthString(kLongestName).c_str() + std::string(ending);
}

tool::ReadOptions any_options(FuzzedDataProvider& input) {
  tool::ReadOptions options;
  if (input.ConsumeBool()) {
    options.size =
        tool::Size{input.ConsumeIntegralInRange(1, 70), input.ConsumeIntegralInRange(1, 70)};
  }
  if (input.ConsumeBool()) options.stride = input.ConsumeIntegralInRange(0, 100);
  if (input.ConsumeBool()) options.frames = input.ConsumeIntegralInRange(0, 3);
  if (input.ConsumeBool())
    options.layout = static_cast<tool::Layout>(input.ConsumeIntegralInRange(0, 3));
  return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const tool::ReadOptions options = any_options(input);
  constexpr const char* kEndings[] = {".nv21", ".nm21", ".nv21_m", ".nv12", ".i420",
                                      ".yv12", ".raw",  ".yuv",    ""};
  const char* ending = input.PickValueInArray(kEndings);
  const std::string name = any_name(input, ending);
  const std::string other = any_name(input, "");
  for (const tool::Size found : tool::sizes_in_name(name)) {
    if (!tool::is_legal_size(found.width, found.height)) std::abort();
  }
  may_refuse([&] { static_cast<void>(tool::sources_by_name({name, other})); });
  may_refuse([&] { static_cast<void>(tool::plan_batch({name, other}, "out/" + other)); });
  const std::vector<uint8_t> bytes = input.ConsumeRemainingBytes<uint8_t>();
  read_pictures(write_input("a" + name, bytes.data(), bytes.size()), options);
  return 0;
}
