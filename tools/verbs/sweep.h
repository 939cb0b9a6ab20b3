// `vorel sweep`: one picture under several values of a tuning key.
#ifndef VOREL_TOOLS_VERBS_SWEEP_H_
#define VOREL_TOOLS_VERBS_SWEEP_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/library/tuning_choice.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/side_by_side.h"
#include "tools/verbs/noise_index_choice.h"

namespace tool {

struct SweepOptions {
  std::string picture;
  std::string key;
  std::vector<std::string> values;
  NoiseIndexRequest noise_index;
  TuningRequest tuning;
  std::optional<std::string> truth;
  std::optional<std::string> sheet;  // contact sheet
  std::optional<Crop> crop;          // of the contact sheet and of the page
  int zoom = 1;                      // of the contact sheet
  std::optional<std::string> csv;    // "-" instead of the table
  std::optional<std::string> page;
  ReadOptions read;
  bool quiet = false;
  bool force = false;
};

void run_sweep(const SweepOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_SWEEP_H_
