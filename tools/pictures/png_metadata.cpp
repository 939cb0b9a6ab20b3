#include "tools/pictures/png_metadata.h"

#include <cstdio>
#include <string_view>

namespace tool {
namespace {

// PNG has no place of its own for these; readers know these texts.
constexpr char kXmpKey[] = "XML:com.adobe.xmp";
constexpr char kIptcKey[] = "Raw profile type iptc";
constexpr size_t kBytesPerLine = 36;

// A profile as text: its name, its length, then lines of hexadecimal digits.
std::string profile_text(const std::vector<uint8_t>& bytes) {
  char head[32];
  std::snprintf(head, sizeof(head), "\niptc\n%8zu", bytes.size());
  std::string text = head;
  for (size_t i = 0; i < bytes.size(); ++i) {
    char digits[4];
    std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned>(bytes[i]));
    text += (i % kBytesPerLine == 0 ? "\n" : "") + std::string(digits);
  }
  return text + "\n";
}

int digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Empty when the text is no such profile.
std::vector<uint8_t> profile_bytes(const std::string& text) {
  size_t length = 0;
  int start = 0;
  if (std::sscanf(text.c_str(), " %*63s %8zu%n", &length, &start) != 1) return {};
  std::vector<uint8_t> bytes;
  int high = -1;
  for (const char c : std::string_view(text).substr(static_cast<size_t>(start))) {
    const int value = digit(c);
    if (value < 0) continue;
    if (high >= 0) bytes.push_back(static_cast<uint8_t>(high << 4 | value));
    high = high >= 0 ? -1 : value;
  }
  return bytes.size() == length ? bytes : std::vector<uint8_t>();
}

void read_texts(png_structp png, png_infop info, Metadata& metadata) {
  png_textp texts = nullptr;
  int count = 0;
  png_get_text(png, info, &texts, &count);
  for (int i = 0; i < count; ++i) {
    const size_t length = texts[i].compression >= PNG_ITXT_COMPRESSION_NONE ? texts[i].itxt_length
                                                                            : texts[i].text_length;
    const std::string text(texts[i].text, length);
    const std::string_view key = texts[i].key;
    if (key == kXmpKey) {
      metadata.xmp.assign(text.begin(), text.end());
    } else if (key == kIptcKey) {
      metadata.iptc = profile_bytes(text);
    } else {
      metadata.texts.push_back({std::string(key), text});
    }
  }
}

// Whether the older kind of text, which is Latin-1, means the same as UTF-8.
bool is_ascii(const std::string& text) {
  for (const char c : text) {
    if (static_cast<uint8_t>(c) >= 0x80) return false;
  }
  return true;
}

void set_text(png_structp png, png_infop info, PngText& text) {
  static char nothing[] = "";
  png_text entry{};
  entry.compression = text.compression;
  entry.key = text.key.data();
  entry.text = text.text.data();
  entry.lang = nothing;
  entry.lang_key = nothing;
  const bool is_utf8 = text.compression >= PNG_ITXT_COMPRESSION_NONE;
  (is_utf8 ? entry.itxt_length : entry.text_length) = text.text.size();
  png_set_text(png, info, &entry, 1);
}

}  // namespace

Metadata read_png_metadata(png_structp png, png_infop info) {
  Metadata metadata;
  png_charp name = nullptr;
  png_bytep data = nullptr;
  png_uint_32 length = 0;
  int compression = 0;
  if (png_get_iCCP(png, info, &name, &compression, &data, &length) != 0) {
    metadata.icc.assign(data, data + length);
  }
  if (png_get_eXIf_1(png, info, &length, &data) != 0) metadata.exif.assign(data, data + length);
  png_uint_32 across = 0;
  png_uint_32 down = 0;
  int unit = 0;
  if (png_get_pHYs(png, info, &across, &down, &unit) != 0 && unit == PNG_RESOLUTION_METER) {
    metadata.density = {{static_cast<double>(across), static_cast<double>(down)}};
  }
  read_texts(png, info, metadata);
  return metadata;
}

std::vector<PngText> png_texts(const Metadata& metadata) {
  std::vector<PngText> texts;
  if (!metadata.xmp.empty()) {
    texts.push_back(
        {kXmpKey, {metadata.xmp.begin(), metadata.xmp.end()}, PNG_ITXT_COMPRESSION_NONE});
  }
  if (!metadata.iptc.empty()) {
    texts.push_back({kIptcKey, profile_text(metadata.iptc), PNG_TEXT_COMPRESSION_zTXt});
  }
  for (const MetadataText& text : metadata.texts) {
    texts.push_back({text.key, text.text,
                     is_ascii(text.text) ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE});
  }
  return texts;
}

void set_png_metadata(png_structp png, png_infop info, const Metadata& metadata,
                      std::vector<PngText>& texts) {
  if (!metadata.icc.empty()) {
    png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_DEFAULT, metadata.icc.data(),
                 static_cast<png_uint_32>(metadata.icc.size()));
  }
  if (!metadata.exif.empty()) {
    // libpng keeps its own copy but asks for a pointer to non-const.
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(metadata.exif.size()),
                   const_cast<png_bytep>(metadata.exif.data()));
  }
  if (metadata.density) {
    png_set_pHYs(png, info, static_cast<png_uint_32>(metadata.density->x_per_metre + 0.5),
                 static_cast<png_uint_32>(metadata.density->y_per_metre + 0.5),
                 PNG_RESOLUTION_METER);
  }
  for (PngText& text : texts) set_text(png, info, text);
}

}  // namespace tool
