// What JPEG files carry besides the picture, in their markers.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "tools/pictures/jpeg_codec.h"

namespace tool {
namespace {

using namespace std::string_view_literals;

constexpr size_t kMaxMarkerBytes = 65533;
constexpr int kApp1 = JPEG_APP0 + 1;
constexpr int kApp2 = JPEG_APP0 + 2;
constexpr int kApp13 = JPEG_APP0 + 13;
constexpr int kApp14 = JPEG_APP0 + 14;

// What the data of a marker start with.
constexpr std::string_view kExif = "Exif\0\0"sv;
constexpr std::string_view kXmp = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kPhotoshop = "Photoshop 3.0\0"sv;  // IPTC lies in its resources
constexpr std::string_view kFurtherPictures = "MPF\0"sv;
constexpr std::string_view kJfif = "JF"sv;  // JFIF and JFXX

constexpr double kInchesPerMetre = 1 / 0.0254;

bool starts(const jpeg_marker_struct& marker, int code, std::string_view prefix) {
  return marker.marker == code && marker.data_length >= prefix.size() &&
         std::memcmp(marker.data, prefix.data(), prefix.size()) == 0;
}

template <typename Bytes>
void append(const jpeg_marker_struct& marker, size_t from, Bytes& bytes) {
  bytes.insert(bytes.end(), marker.data + from, marker.data + marker.data_length);
}

// Markers that libjpeg writes itself, and one that tells places in the old file.
bool is_made_anew(const jpeg_marker_struct& marker) {
  return starts(marker, JPEG_APP0, kJfif) || marker.marker == kApp14 ||
         starts(marker, kApp2, kFurtherPictures);
}

void add_marker(std::vector<std::vector<uint8_t>>& markers, std::string_view prefix,
                const std::vector<uint8_t>& data) {
  if (data.empty() || prefix.size() + data.size() > kMaxMarkerBytes) return;
  std::vector<uint8_t>& marker = markers.emplace_back(prefix.begin(), prefix.end());
  marker.insert(marker.end(), data.begin(), data.end());
}

}  // namespace

void save_markers(jpeg_decompress_struct& codec) {
  for (int i = 0; i < 16; ++i) jpeg_save_markers(&codec, JPEG_APP0 + i, 0xFFFF);
  jpeg_save_markers(&codec, JPEG_COM, 0xFFFF);
}

Metadata read_markers(jpeg_decompress_struct& codec) {
  Metadata metadata;
  for (const jpeg_marker_struct* marker = codec.marker_list; marker != nullptr;
       marker = marker->next) {
    if (starts(*marker, kApp1, kExif) && metadata.exif.empty()) {
      append(*marker, kExif.size(), metadata.exif);
    } else if (starts(*marker, kApp1, kXmp) && metadata.xmp.empty()) {
      append(*marker, kXmp.size(), metadata.xmp);
    } else if (starts(*marker, kApp13, kPhotoshop)) {
      append(*marker, kPhotoshop.size(), metadata.iptc);
    } else if (marker->marker == JPEG_COM) {
      append(*marker, 0, metadata.texts.emplace_back(MetadataText{"Comment", {}}).text);
    }
  }
  JOCTET* profile = nullptr;
  unsigned length = 0;
  if (jpeg_read_icc_profile(&codec, &profile, &length)) {
    metadata.icc.assign(profile, profile + length);
    std::free(profile);
  }
  if (codec.saw_JFIF_marker && codec.density_unit != 0) {
    const double per_metre = codec.density_unit == 1 ? kInchesPerMetre : 100;
    metadata.density = {{codec.X_density * per_metre, codec.Y_density * per_metre}};
  }
  return metadata;
}

bool has_further_pictures(const jpeg_decompress_struct& codec) {
  for (const jpeg_marker_struct* marker = codec.marker_list; marker != nullptr;
       marker = marker->next) {
    if (starts(*marker, kApp2, kFurtherPictures)) return true;
  }
  return false;
}

std::vector<std::vector<uint8_t>> app1_markers(const Metadata& metadata) {
  std::vector<std::vector<uint8_t>> markers;
  add_marker(markers, kExif, metadata.exif);
  add_marker(markers, kXmp, metadata.xmp);
  return markers;
}

void set_density(jpeg_compress_struct& codec, const Metadata& metadata) {
  if (!metadata.density) return;
  codec.density_unit = 1;
  const auto inch = [](double per_metre) {
    return static_cast<UINT16>(std::clamp(per_metre / kInchesPerMetre + 0.5, 1.0, 65535.0));
  };
  codec.X_density = inch(metadata.density->x_per_metre);
  codec.Y_density = inch(metadata.density->y_per_metre);
}

void write_markers(jpeg_compress_struct& codec, const std::vector<std::vector<uint8_t>>& app1,
                   const Metadata& metadata) {
  const auto write = [&](int code, const void* data, size_t count) {
    jpeg_write_marker(&codec, code, static_cast<const JOCTET*>(data), static_cast<unsigned>(count));
  };
  for (const std::vector<uint8_t>& marker : app1) write(kApp1, marker.data(), marker.size());
  if (!metadata.icc.empty()) {
    jpeg_write_icc_profile(&codec, metadata.icc.data(), static_cast<unsigned>(metadata.icc.size()));
  }
  // Long resources are cut anywhere; readers put the parts together.
  constexpr size_t kPart = kMaxMarkerBytes - kPhotoshop.size();
  for (size_t first = 0; first < metadata.iptc.size(); first += kPart) {
    const size_t count = std::min(kPart, metadata.iptc.size() - first);
    jpeg_write_m_header(&codec, kApp13, static_cast<unsigned>(kPhotoshop.size() + count));
    for (const char c : kPhotoshop) jpeg_write_m_byte(&codec, c);
    for (size_t i = first; i < first + count; ++i) jpeg_write_m_byte(&codec, metadata.iptc[i]);
  }
  for (const MetadataText& text : metadata.texts) {
    const std::string_view prefix = text.key == "Comment" ? "" : std::string_view(text.key);
    const size_t between = prefix.empty() ? 0 : 2;
    const size_t count = std::min(prefix.size() + between + text.text.size(), kMaxMarkerBytes);
    jpeg_write_m_header(&codec, JPEG_COM, static_cast<unsigned>(count));
    for (size_t i = 0; i < count; ++i) {
      const size_t at = i - prefix.size() - between;
      jpeg_write_m_byte(&codec, i < prefix.size()             ? prefix[i]
                                : i < prefix.size() + between ? ": "[i - prefix.size()]
                                                              : text.text[at]);
    }
  }
}

void copy_markers(const jpeg_decompress_struct& from, jpeg_compress_struct& to) {
  for (const jpeg_marker_struct* marker = from.marker_list; marker != nullptr;
       marker = marker->next) {
    if (is_made_anew(*marker)) continue;
    jpeg_write_marker(&to, marker->marker, marker->data, marker->data_length);
  }
}

}  // namespace tool
