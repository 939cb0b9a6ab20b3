// `vorel compare`: how far pictures are from each other.
#ifndef VOREL_TOOLS_VERBS_COMPARE_H_
#define VOREL_TOOLS_VERBS_COMPARE_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture_io.h"
#include "tools/pictures/side_by_side.h"

namespace tool {

struct CompareOptions {
  std::vector<std::string> pictures;  // without a truth the first is the reference
  std::optional<std::string> truth;
  bool chart = false;                 // the truth is the chart of `vorel chart`
  std::vector<Crop> patches;          // fields of one colour
  std::vector<Crop> edges;            // two colours that meet in the middle
  std::optional<std::string> output;  // side by side, the truth last
  std::optional<Crop> crop;           // of the side-by-side picture and of the page
  int zoom = 1;
  std::optional<std::string> page;  // of the first frames
  bool json = false;
  ReadOptions read;
  bool force = false;
};

void run_compare(const CompareOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_COMPARE_H_
