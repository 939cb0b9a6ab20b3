#include "tools/pictures/exif_iso.h"

#include <libexif/exif-data.h>

#include <climits>
#include <memory>

namespace tool {
namespace {

// Stands in the old 16-bit field for sensitivities that it cannot hold.
constexpr ExifLong kTooLarge = 65535;

struct DataRelease {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};

std::optional<ExifLong> number(ExifData* data, ExifTag tag) {
  const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_EXIF], tag);
  if (entry == nullptr || entry->components == 0) return std::nullopt;
  const ExifByteOrder order = exif_data_get_byte_order(data);
  if (entry->format == EXIF_FORMAT_SHORT && entry->size >= 2) {
    return exif_get_short(entry->data, order);
  }
  if (entry->format == EXIF_FORMAT_LONG && entry->size >= 4) {
    return exif_get_long(entry->data, order);
  }
  return std::nullopt;
}

}  // namespace

std::optional<int> exif_iso(const std::vector<uint8_t>& exif) {
  // libexif wants the header that JPEG files have before the structure.
  std::vector<uint8_t> bytes{'E', 'x', 'i', 'f', 0, 0};
  bytes.insert(bytes.end(), exif.begin(), exif.end());
  const std::unique_ptr<ExifData, DataRelease> data(
      exif_data_new_from_data(bytes.data(), static_cast<unsigned>(bytes.size())));
  if (!data) return std::nullopt;
  std::optional<ExifLong> iso = number(data.get(), EXIF_TAG_ISO_SPEED_RATINGS);
  if (iso == kTooLarge) {
    iso = number(data.get(), EXIF_TAG_RECOMMENDED_EXPOSURE_INDEX);
    if (!iso) iso = number(data.get(), EXIF_TAG_STANDARD_OUTPUT_SENSITIVITY);
  }
  if (!iso || *iso == 0 || *iso > INT_MAX) return std::nullopt;
  return static_cast<int>(*iso);
}

}  // namespace tool
