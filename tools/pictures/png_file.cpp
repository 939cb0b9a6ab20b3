#include "tools/pictures/png_file.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <new>
#include <utility>

#include "tools/files/failure.h"
#include "tools/pictures/png_metadata.h"

namespace tool {
namespace {

constexpr size_t kSignatureBytes = 8;
// Fast; photographs with noise hardly get smaller at higher levels.
constexpr int kCompressionLevel = 3;

// libpng leaves on errors by longjmp, which runs no destructors. So everything that needs one
// lives here, outside the functions that libpng leaves.
struct PngState {
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::string error;

  const std::vector<uint8_t>* input = nullptr;
  size_t position = 0;
  std::vector<uint8_t> output;

  std::vector<png_bytep> rows;
  RgbImage image{0, 0};
  Metadata metadata;
  std::vector<PngText> texts;
  bool had_alpha = false;
  bool had_16_bits = false;
};

void on_error(png_structp png, png_const_charp text) {
  static_cast<PngState*>(png_get_error_ptr(png))->error = text;
  longjmp(png_jmpbuf(png), 1);
}

void on_warning(png_structp, png_const_charp) {}

void on_read(png_structp png, png_bytep data, size_t count) {
  auto* state = static_cast<PngState*>(png_get_io_ptr(png));
  if (count > state->input->size() - state->position) png_error(png, "the file is cut short");
  std::memcpy(data, state->input->data() + state->position, count);
  state->position += count;
}

void on_write(png_structp png, png_bytep data, size_t count) {
  auto* state = static_cast<PngState*>(png_get_io_ptr(png));
  bool stored = true;
  try {
    state->output.insert(state->output.end(), data, data + count);
  } catch (const std::bad_alloc&) {
    stored = false;  // an exception must not pass through libpng
  }
  if (!stored) png_error(png, "out of memory");
}

void on_flush(png_structp) {}

// Everything comes out as 8-bit RGB.
void request_rgb(PngState& state) {
  const int colour = png_get_color_type(state.png, state.info);
  const bool transparent_colour = png_get_valid(state.png, state.info, PNG_INFO_tRNS) != 0;
  state.had_alpha = (colour & PNG_COLOR_MASK_ALPHA) != 0 || transparent_colour;
  state.had_16_bits = png_get_bit_depth(state.png, state.info) == 16;
  png_set_expand(state.png);
  png_set_scale_16(state.png);
  if ((colour & PNG_COLOR_MASK_COLOR) == 0) png_set_gray_to_rgb(state.png);
  if (state.had_alpha) png_set_strip_alpha(state.png);
  png_set_interlace_handling(state.png);
  png_read_update_info(state.png, state.info);
}

// False with `state.error` set when the file is no good.
bool read_all(PngState& state) {
  if (setjmp(png_jmpbuf(state.png)) != 0) return false;
  // The limits of this program come right after the header, with a clearer message.
  png_set_user_limits(state.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_read_fn(state.png, &state, on_read);
  png_read_info(state.png, state.info);
  const png_uint_32 width = png_get_image_width(state.png, state.info);
  const png_uint_32 height = png_get_image_height(state.png, state.info);
  if (!is_legal_size(width, height)) {
    state.error = size_problem(width, height);
    return false;
  }
  request_rgb(state);
  state.image = RgbImage(static_cast<int>(width), static_cast<int>(height));
  if (png_get_rowbytes(state.png, state.info) != state.image.stride()) {
    png_error(state.png, "unexpected sample layout");
  }
  for (png_uint_32 y = 0; y < height; ++y) {
    state.rows.push_back(state.image.row(static_cast<int>(y)));
  }
  png_read_image(state.png, state.rows.data());
  png_read_end(state.png, state.info);
  state.metadata = read_png_metadata(state.png, state.info);  // texts may come last
  return true;
}

bool write_all(PngState& state, const std::vector<uint8_t>& samples, Size size, int colour,
               const Metadata& metadata) {
  if (setjmp(png_jmpbuf(state.png)) != 0) return false;
  // A profile that libpng does not like is left out; the picture matters more.
  png_set_benign_errors(state.png, 1);
  png_set_write_fn(state.png, &state, on_write, on_flush);
  png_set_compression_level(state.png, kCompressionLevel);
  png_set_IHDR(state.png, state.info, static_cast<png_uint_32>(size.width),
               static_cast<png_uint_32>(size.height), 8, colour, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  set_png_metadata(state.png, state.info, metadata, state.texts);
  png_write_info(state.png, state.info);
  const size_t stride = samples.size() / static_cast<size_t>(size.height);
  for (int y = 0; y < size.height; ++y) {
    png_write_row(state.png, samples.data() + static_cast<size_t>(y) * stride);
  }
  png_write_end(state.png, state.info);
  return true;
}

std::vector<uint8_t> encode(const std::vector<uint8_t>& samples, Size size, int colour,
                            const Metadata& metadata) {
  PngState state;
  state.texts = png_texts(metadata);
  state.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &state, on_error, on_warning);
  if (state.png != nullptr) state.info = png_create_info_struct(state.png);
  const bool written = state.info != nullptr && write_all(state, samples, size, colour, metadata);
  png_destroy_write_struct(&state.png, &state.info);
  if (!written) throw Failure(kFailed, "PNG encoder: " + state.error);
  return std::move(state.output);
}

}  // namespace

bool is_png(const std::vector<uint8_t>& bytes) {
  return bytes.size() >= kSignatureBytes && png_sig_cmp(bytes.data(), 0, kSignatureBytes) == 0;
}

Picture decode_png(const std::string& path, std::vector<uint8_t> bytes) {
  PngState state;
  state.input = &bytes;
  state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, on_error, on_warning);
  if (state.png != nullptr) state.info = png_create_info_struct(state.png);
  const bool read = state.info != nullptr && read_all(state);
  png_destroy_read_struct(&state.png, &state.info, nullptr);
  if (!read) throw input_error(path, "no readable PNG picture: " + state.error);
  const auto origin = std::make_shared<Origin>();
  origin->kind = FileKind::kPng;
  origin->bytes = std::move(bytes);
  if (state.had_alpha) origin->losses.emplace_back("transparency is dropped");
  if (state.had_16_bits) origin->losses.emplace_back("of 16 bits a sample 8 remain");
  return {std::move(state.image), std::move(state.metadata), origin};
}

std::vector<uint8_t> encode_png(const RgbImage& image, const Metadata& metadata) {
  return encode(image.pixels, {image.width, image.height}, PNG_COLOR_TYPE_RGB, metadata);
}

std::vector<uint8_t> encode_grey_png(const std::vector<uint8_t>& samples, Size size) {
  return encode(samples, size, PNG_COLOR_TYPE_GRAY, {});
}

}  // namespace tool
