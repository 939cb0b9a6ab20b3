// Dumps under any name and with any content, as pictures.
#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

#include "fuzz/picture_check.h"
#include "tools/library/dump_names.h"
#include "tools/library/dump_picture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const std::string name = input.ConsumeRandomLengthString(100);
  const std::vector<uint8_t> bytes = input.ConsumeRemainingBytes<uint8_t>();
  std::optional<tool::DumpFile> dump = tool::parse_dump_name(name, bytes.size());
  if (!dump) return 0;
  static_cast<void>(tool::layout_text(*dump));
  if (dump->layout == tool::DumpLayout::kDamaged) return 0;
  if (!tool::is_legal_size(dump->size.width, dump->size.height)) std::abort();
  dump->path = write_input(name, bytes.data(), bytes.size());
  may_refuse([&] { static_cast<void>(tool::dump_png(*dump)); });
  if (dump->content != tool::DumpContent::kFrame) return 0;
  may_refuse([&] { static_cast<void>(tool::read_dump_frame(*dump)); });
  return 0;
}
