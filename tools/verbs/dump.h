// `vorel dump`: lists the planes that the library dumped and converts them.
#ifndef VOREL_TOOLS_VERBS_DUMP_H_
#define VOREL_TOOLS_VERBS_DUMP_H_

#include <optional>
#include <string>

#include "tools/library/dump_trace.h"

namespace tool {

struct DumpOptions {
  std::string directory;
  std::optional<std::string> output;  // directory for results
  bool png = false;
  bool y4m = false;                    // frames only
  bool rename = false;                 // copies under names with 1920x1080
  std::optional<std::string> montage;  // picture of all planes
  std::optional<DumpPixel> trace;
  bool json = false;
};

void run_dump(const DumpOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_DUMP_H_
