// One pixel's way through the library, from the dumps of its frame.
#ifndef VOREL_TOOLS_LIBRARY_DUMP_TRACE_H_
#define VOREL_TOOLS_LIBRARY_DUMP_TRACE_H_

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tools/library/dump_names.h"

namespace tool {

struct DumpPixel {
  int x;
  int y;
};

// A value of luma and of the chroma planes, by their byte in a pair; some steps have not all.
using PixelValues = std::array<std::optional<double>, 3>;

struct TraceStep {
  std::string name;
  PixelValues values;  // wavelet low bands on the plane's scale, others as in the dump
};

struct TraceChange {
  std::string stage;
  PixelValues change;
};

struct LargestChange {
  std::string stage;
  DumpComponent component;
  double change;
};

struct DumpTrace {
  DumpPixel pixel;
  Size frame;
  std::vector<TraceStep> steps;      // in processing order
  std::vector<TraceChange> changes;  // by each stage that is known, of samples of the frame itself
  std::optional<LargestChange> largest;  // nothing when no stage changed the pixel
};

// Of the newest frame in a folder of dumps. Planes of fewer samples give the sample that holds the
// pixel. Throws an input error without a frame's dump, a usage error for a pixel outside the frame.
[[nodiscard]] DumpTrace trace_pixel(const std::string& directory,
                                    const std::vector<DumpFile>& files, DumpPixel pixel);

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_DUMP_TRACE_H_
