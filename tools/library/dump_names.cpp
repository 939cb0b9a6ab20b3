#include "tools/library/dump_names.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "tools/files/failure.h"
#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

struct DumpKind {
  std::string_view prefix;  // '?' stands for U or V, '#' for a digit
  DumpContent content;
  const char* text;
  int scale;
  int border = 0;
  DumpStage stage = DumpStage::kBetween;
};

// In processing order. U is the first byte of each chroma pair and V the second, which for NV21 are
// V and U in colour terms.
constexpr DumpKind kKinds[] = {
    {"input_", DumpContent::kFrame, "the frame as it came in", 1, 0, DumpStage::kInput},
    {"d_?_", DumpContent::kPlane, "chroma, one sample per 16 x 16 pixels", 16},
    {"Y_", DumpContent::kPlane, "luma as it came in", 1},
    {"d_Y_low_", DumpContent::kPlane, "smooth luma, one sample per 16 x 16 pixels", 16},
    {"Y_high_", DumpContent::kPlane, "luma detail: luma less its smooth part, plus 128", 1},
    {"f_Y_low_", DumpContent::kPlane, "smooth luma after the bilateral filter", 16},
    {"f_?_", DumpContent::kPlane, "chroma after the bilateral filter", 16},
    {"u_Y_low_", DumpContent::kPlane, "filtered smooth luma, back at full size", 1},
    {"u_?_", DumpContent::kPlane, "filtered chroma, back at chroma size", 2},
    {"VOREL_UV_", DumpContent::kPairs, "interleaved chroma as the wavelet stage reads it", 2},
    {"p_?_", DumpContent::kPlane, "chroma with its border, before the wavelet transform", 2, 32,
     DumpStage::kSpatial},
    {"fW_0_?_", DumpContent::kLow, "wavelet low band of level 2", 8, 8},
    {"fW_1_?_", DumpContent::kDetail, "wavelet detail of level 2 along rows", 8, 8},
    {"fW_2_?_", DumpContent::kDetail, "wavelet detail of level 2 along columns", 8, 8},
    {"fW_3_?_", DumpContent::kDetail, "wavelet detail of level 2 along both", 8, 8},
    {"fW_4_?_", DumpContent::kDetail, "wavelet detail of level 1 along columns", 4, 16},
    {"fW_5_?_", DumpContent::kDetail, "wavelet detail of level 1 along rows", 4, 16},
    {"fW_6_?_", DumpContent::kDetail, "wavelet detail of level 1 along both", 4, 16},
    {"dH_?_", DumpContent::kLow, "wavelet low band of level 2 after denoising", 8, 8},
    {"dS_?_", DumpContent::kPlane, "chroma after the wavelet path, before saturation", 2, 32,
     DumpStage::kWavelet},
    {"MFD_UV_", DumpContent::kPairs, "interleaved chroma after the wavelet stage", 2, 0,
     DumpStage::kSaturation},
    {"output_", DumpContent::kFrame, "the frame as it went out", 1, 0, DumpStage::kOutput},
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Whether the name starts with the prefix and a size follows. `plane` receives the letter of '?'.
bool has_prefix(std::string_view name, std::string_view prefix, char& plane) {
  if (name.size() <= prefix.size() || !is_digit(name[prefix.size()])) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (prefix[i] == '?') {
      if (name[i] != 'U' && name[i] != 'V') return false;
      plane = name[i];
    } else if (name[i] != prefix[i]) {
      return false;
    }
  }
  return true;
}

const DumpKind* kind_of(const std::string& name, char& plane) {
  for (const DumpKind& kind : kKinds) {
    if (has_prefix(name, kind.prefix, plane)) return &kind;
  }
  return nullptr;
}

DumpLayout layout_of(const std::string& extension, Size size, uint64_t bytes) {
  const auto width = static_cast<uint64_t>(size.width);
  const auto height = static_cast<uint64_t>(size.height);
  if (extension == ".nv21" || extension == ".nv21_m") {
    const bool fits = bytes == height * (width / 2) * 3;
    return fits ? DumpLayout::kNv21 : DumpLayout::kDamaged;
  }
  if (extension == ".yuyv") {
    return bytes == 2 * width * height ? DumpLayout::kYuyv : DumpLayout::kDamaged;
  }
  if (bytes == width * height) return DumpLayout::kBytes;
  return bytes == 2 * width * height ? DumpLayout::kHalfFloats : DumpLayout::kDamaged;
}

// "sensor 0, noise index 640" from "_0_640".
std::string explain_suffix(const std::string& suffix) {
  int sensor = 0;
  int noise_index = 0;
  if (std::sscanf(suffix.c_str(), "_%d_%d", &sensor, &noise_index) != 2) return "";
  return " (sensor " + std::to_string(sensor) + ", noise index " + std::to_string(noise_index) +
         ")";
}

}  // namespace

std::optional<DumpFile> parse_dump_name(const std::string& name, uint64_t bytes) {
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return std::nullopt;
  const std::string extension = name.substr(dot);
  if (extension != ".raw" && extension != ".nv21" && extension != ".nv21_m" &&
      extension != ".yuyv") {
    return std::nullopt;
  }
  char plane = 0;
  const DumpKind* kind = kind_of(name, plane);
  if (kind == nullptr) return std::nullopt;
  // Planes are raw, frames are not.
  if ((extension == ".raw") == (kind->content == DumpContent::kFrame)) return std::nullopt;

  const size_t start = kind->prefix.size();
  int width = 0;
  int height = 0;
  int length = 0;
  const std::string rest = name.substr(start, dot - start);
  if (std::sscanf(rest.c_str(), "%9d_%9d%n", &width, &height, &length) != 2) return std::nullopt;
  if (!is_legal_size(width, height)) return std::nullopt;
  std::string suffix = rest.substr(static_cast<size_t>(length));
  constexpr std::string_view kCropMark = "_crop";
  const bool cropped = suffix.starts_with(kCropMark);

  DumpFile file{};
  file.name = name;
  file.order = static_cast<int>(kind - kKinds);
  file.content = kind->content;
  file.stage = kind->stage;
  const bool has_luma = kind->content == DumpContent::kPlane;
  file.component = plane == 'U'   ? DumpComponent::kFirst
                   : plane == 'V' ? DumpComponent::kSecond
                   : has_luma     ? DumpComponent::kLuma
                                  : DumpComponent::kAll;
  file.scale = kind->scale;
  file.border = cropped ? 0 : kind->border;
  file.size = {width, height};
  file.bytes = bytes;
  file.cropped = cropped;
  file.layout = layout_of(extension, file.size, bytes);
  file.step = kind->text;
  file.explanation = kind->text;
  if (plane != 0) {
    file.explanation += plane == 'U' ? ", first of each pair" : ", second of each pair";
  }
  if (cropped) file.explanation += ", without its border";
  file.explanation += explain_suffix(cropped ? suffix.substr(kCropMark.size()) : suffix);
  file.viewer_name = name.substr(0, start) + std::to_string(width) + "x" + std::to_string(height) +
                     suffix + extension;
  return file;
}

std::vector<DumpFile> list_dumps(const std::string& directory) {
  std::error_code error;
  std::filesystem::directory_iterator entries(directory, error);
  if (error) throw input_error(directory, error.message());
  std::vector<DumpFile> files;
  for (const std::filesystem::directory_entry& entry : entries) {
    if (!entry.is_regular_file(error)) continue;
    std::optional<DumpFile> file =
        parse_dump_name(entry.path().filename().string(), entry.file_size(error));
    if (!file) continue;
    file->path = entry.path().string();
    files.push_back(std::move(*file));
  }
  std::sort(files.begin(), files.end(), [](const DumpFile& a, const DumpFile& b) {
    return a.order != b.order ? a.order < b.order : a.name < b.name;
  });
  return files;
}

const char* layout_text(const DumpFile& file) {
  switch (file.layout) {
    case DumpLayout::kNv21:
      return "NV21";
    case DumpLayout::kYuyv:
      return "YUYV";
    case DumpLayout::kBytes:
      return "8 bit";
    case DumpLayout::kHalfFloats:
      return "half float";
    case DumpLayout::kDamaged:
      break;
  }
  return file.bytes == 0 ? "empty" : "damaged";
}

}  // namespace tool
