// `vorel measure`: says how noisy pictures are.
#ifndef VOREL_TOOLS_VERBS_MEASURE_H_
#define VOREL_TOOLS_VERBS_MEASURE_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/library/tuning_choice.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/side_by_side.h"

namespace tool {

struct MeasureOptions {
  std::vector<std::string> inputs;
  std::optional<Crop> patch;  // of one colour, pixels
  ReadOptions read;
  TuningRequest tuning;
  bool json = false;
};

// Of a video the first frame is measured.
void run_measure(const MeasureOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_MEASURE_H_
