// The library's dump files: what a name says about the plane in the file.
#ifndef VOREL_TOOLS_LIBRARY_DUMP_NAMES_H_
#define VOREL_TOOLS_LIBRARY_DUMP_NAMES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/pictures/picture.h"

namespace tool {

// How the samples of a dump are to be shown.
enum class DumpContent {
  kFrame,   // a picture
  kPlane,   // samples from 0 to 255
  kPairs,   // interleaved chroma bytes, as wide as the frame
  kLow,     // wavelet low band: 4 times the plane's scale
  kDetail,  // wavelet detail around 0
};

enum class DumpLayout { kNv21, kYuyv, kBytes, kHalfFloats, kDamaged };

// What a plane's samples are of; the chroma planes by their byte in a pair, V and U in NV21.
enum class DumpComponent { kLuma, kFirst, kSecond, kAll };

// What made the samples of the frame what they are, in order. Other dumps are steps between.
enum class DumpStage { kInput, kSpatial, kWavelet, kSaturation, kOutput, kBetween };

struct DumpFile {
  std::string path;
  std::string name;
  int order;  // place in the frame's way through the library
  DumpContent content;
  DumpStage stage;
  DumpComponent component;
  DumpLayout layout;
  Size size;
  int scale;   // frame pixels to a sample, in each direction
  int border;  // samples before the first that is of the frame
  bool cropped;
  uint64_t bytes;
  std::string step;         // what the library had done
  std::string explanation;  // the same, and of which plane and frame

  // The name with its size spelled 1920x1080, which viewers of raw pictures understand.
  std::string viewer_name;
};

// Nothing when the name is not one that the library gives.
[[nodiscard]] std::optional<DumpFile> parse_dump_name(const std::string& name, uint64_t bytes);

// The dumps of a directory in processing order; other files are left out. Throws an input error
// when the directory cannot be read.
[[nodiscard]] std::vector<DumpFile> list_dumps(const std::string& directory);

// "NV21", "8 bit", …
[[nodiscard]] const char* layout_text(const DumpFile& file);

}  // namespace tool

#endif  // VOREL_TOOLS_LIBRARY_DUMP_NAMES_H_
