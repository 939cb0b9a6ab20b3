// `vorel noise`: makes a clean picture noisy.
#ifndef VOREL_TOOLS_VERBS_NOISE_H_
#define VOREL_TOOLS_VERBS_NOISE_H_

#include <cstdint>
#include <optional>
#include <string>

#include "tools/pictures/picture_io.h"

namespace tool {

struct NoiseOptions {
  std::string input;
  std::string output;
  int gain = 16;
  uint64_t seed = 1;
  ReadOptions read;
  std::optional<int> quality;
  bool force = false;
};

// Prints the noise index that suits the result.
void run_noise(const NoiseOptions& options);

}  // namespace tool

#endif  // VOREL_TOOLS_VERBS_NOISE_H_
