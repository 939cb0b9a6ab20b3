#include "tools/verbs/dump_montage.h"

#include <cstdio>
#include <memory>

#include "tools/library/dump_picture.h"
#include "tools/library/dump_samples.h"
#include "tools/pictures/picture_io.h"
#include "tools/pictures/scaled.h"
#include "tools/report/contact_sheet.h"

namespace tool {
namespace {

constexpr int kTileSide = 420;
constexpr uint8_t kDamagedGrey = 64;

const char* component_text(DumpComponent component) {
  switch (component) {
    case DumpComponent::kLuma:
      return "Y: ";
    case DumpComponent::kFirst:
      return "first: ";
    case DumpComponent::kSecond:
      return "second: ";
    case DumpComponent::kAll:
      break;
  }
  return "";
}

// Bytes are always numbers.
std::string figures_text(const DumpPlane& plane, bool is_half_float) {
  const SampleFigures figures = figures_of(plane.samples);
  char text[160];
  const int used = std::snprintf(text, sizeof(text), "%.6g to %.6g\nmean %.2f, deviation %.2f",
                                 figures.least, figures.most, figures.mean, figures.deviation);
  if (is_half_float) {
    std::snprintf(text + used, sizeof(text) - static_cast<size_t>(used), "\n%zu not a number",
                  figures.not_numbers);
  }
  return text;
}

Tile tile_of(const DumpFile& file) {
  std::string caption =
      file.name + "\n" + size_text(file.size) + ", " + layout_text(file) + "\n" + file.explanation;
  if (file.layout == DumpLayout::kDamaged) {
    RgbImage blank(kTileSide, kTileSide / 2);
    blank.pixels.assign(blank.pixels.size(), kDamagedGrey);
    return {std::move(blank), caption};
  }
  const std::vector<DumpPlane> planes = read_dump_planes(file);
  for (const DumpPlane& plane : planes) {
    caption += "\n";
    if (planes.size() > 1) caption += component_text(plane.component);
    caption += figures_text(plane, file.layout == DumpLayout::kHalfFloats);
  }
  return {scaled_to(dump_image(file), kTileSide), caption};
}

}  // namespace

void write_montage(const std::string& path, const std::string& directory,
                   const std::vector<DumpFile>& files) {
  const std::unique_ptr<PictureOutput> output = PictureOutput::open(path);
  std::vector<Tile> tiles;
  for (const DumpFile& file : files) tiles.push_back(tile_of(file));
  output->write({contact_sheet(tiles, {.title = directory, .text_scale = 2}), {}});
  output->finish();
}

}  // namespace tool
