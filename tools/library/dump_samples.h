// Samples of dump files, and figures of them.
#ifndef VOREL_TOOLS_LIBRARY_DUMP_SAMPLES_H_
#define VOREL_TOOLS_LIBRARY_DUMP_SAMPLES_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/library/dump_names.h"

namespace tool {

struct DumpPlane {
  DumpComponent component;
  Size size;
  std::vector<float> samples;  // as in the dump
};

// The planes of a dump that is not damaged: of a frame luma and both chroma planes, of pairs both
// chroma planes, else one.
[[nodiscard]] std::vector<DumpPlane> read_dump_planes(const DumpFile& file);

struct SampleFigures {
  float least;  // of samples that are numbers; 0 when there are none
  float most;
  double mean;       // of finite samples
  double deviation;  // standard deviation of finite samples
  size_t not_numbers;
};

[[nodiscard]] SampleFigures figures_of(const std::vector<float>& samples);

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_DUMP_SAMPLES_H_
