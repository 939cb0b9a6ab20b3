// Many noisy frames of one still scene: their mean is the truth.
#ifndef VOREL_TOOLS_TUNE_BURST_H_
#define VOREL_TOOLS_TUNE_BURST_H_

#include <string>
#include <vector>

#include "tools/tune/capture.h"

namespace tool {

struct BurstTruth {
  Nv21Frame rounded;
  ChromaImage chroma;
};

class Burst {
 public:
  // All frames have one size.
  void add(const std::string& name, Nv21Frame frame);

  [[nodiscard]] bool empty() const { return frames_.empty(); }
  [[nodiscard]] size_t size() const { return frames_.size(); }
  [[nodiscard]] const Nv21Frame& frame(size_t index) const { return frames_[index]; }
  [[nodiscard]] const std::string& first_name() const { return names_.front(); }

  // Throws an input error when there are too few frames, when one of them shows something else
  // than the others (it names the frame), or when much of the scene is clipped: the mean of
  // clipped samples is no truth.
  void check() const;

  // The mean of all frames but one. The one left out has no part in its own truth.
  [[nodiscard]] BurstTruth mean_without(size_t index) const;

 private:
  std::vector<std::string> names_;
  std::vector<Nv21Frame> frames_;
  std::vector<uint32_t> sums_;  // per byte of a frame
};

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_BURST_H_
