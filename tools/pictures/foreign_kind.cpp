#include "tools/pictures/foreign_kind.h"

#include <algorithm>
#include <string_view>

#include "tools/pictures/picture_name.h"

namespace tool {
namespace {

struct ForeignKind {
  std::string_view extensions;  // with a space around each
  const char* name;
  const char* before;  // command up to the input's name, and from there to the output's
  const char* between;
  const char* ending;  // of the output
};

constexpr ForeignKind kKinds[] = {
    {" heic heif hif ", "HEIC", "heif-convert ", " ", ".png"},
    {" avif ", "AVIF", "avifdec ", " ", ".png"},
    {" webp ", "WebP", "dwebp ", " -o ", ".png"},
    {" tif tiff ", "TIFF", "convert ", " ", ".png"},
    {" dng cr2 cr3 nef arw orf raf rw2 pef ", "a camera's raw file", "darktable-cli ", " ", ".png"},
    {" gif bmp ppm pnm tga jp2 ", "a picture of another kind", "convert ", " ", ".png"},
    {" jxl ", "JPEG XL", "djxl ", " ", ".png"},
    {" mp4 mov mkv webm avi m4v mts 3gp ", "video of another kind", "ffmpeg -i ",
     " -pix_fmt yuv420p ", ".y4m"},
};

std::string hint(const std::string& path, std::string_view extension) {
  for (const ForeignKind& kind : kKinds) {
    const std::string wanted = " " + std::string(extension) + " ";
    if (kind.extensions.find(wanted) == std::string_view::npos) continue;
    const std::string name = base_name(path);
    const std::string stem = path.substr(0, path.size() - name.size()) + stem_of(path);
    return std::string(kind.name) + "; convert it first: " + kind.before + path + kind.between +
           stem + kind.ending;
  }
  return "";
}

}  // namespace

std::string foreign_kind(const std::string& path) { return hint(path, extension_of(path)); }

std::string foreign_kind(const std::string& path, const std::vector<uint8_t>& bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                              std::min<size_t>(bytes.size(), 16));
  const auto has = [&](size_t at, std::string_view magic) {
    return text.size() >= at + magic.size() && text.substr(at, magic.size()) == magic;
  };
  using namespace std::string_view_literals;
  if (has(4, "ftypavif")) return hint(path, "avif");
  if (has(4, "ftyphei") || has(4, "ftypmif1") || has(4, "ftyphev")) return hint(path, "heic");
  if (has(4, "ftyp")) return hint(path, "mp4");
  if (has(0, "RIFF") && has(8, "WEBP")) return hint(path, "webp");
  if (has(0, "II*\0"sv) || has(0, "MM\0*"sv)) {
    return hint(path, extension_of(path) == "dng" ? "dng" : "tif");
  }
  if (has(0, "GIF8") || has(0, "BM")) return hint(path, "gif");
  return "";
}

}  // namespace tool
