// A JPEG file with other pixels: blocks whose samples are as they were keep their coefficients, the
// others are compressed with the file's own tables and sampling.
#include <cstdlib>
#include <cstring>

#include "tools/files/failure.h"
#include "tools/pictures/jpeg_codec.h"
#include "tools/pictures/jpeg_file.h"
#include "tools/pictures/jpeg_planes.h"

namespace tool {
namespace {

struct Reader {
  jpeg_decompress_struct codec{};
  jvirt_barray_ptr* coefficients = nullptr;
};

struct Rewriter {
  explicit Rewriter(const std::vector<uint8_t>& bytes) : original(bytes) {}
  ~Rewriter() {
    jpeg_destroy_decompress(&old_file.codec);
    jpeg_destroy_decompress(&new_file.codec);
    jpeg_destroy_compress(&writer);
    std::free(pixels);
  }
  Rewriter(const Rewriter&) = delete;
  Rewriter& operator=(const Rewriter&) = delete;

  const std::vector<uint8_t>& original;
  JpegState state;
  Reader old_file;
  Reader new_file;
  jpeg_compress_struct writer{};
  JpegSampling sampling;
  JpegPlane before[kMaxJpegComponents];
  JpegPlane after[kMaxJpegComponents];
  unsigned char* pixels = nullptr;  // the new planes as a file
  unsigned long pixel_bytes = 0;
  size_t luma_blocks = 0;
  size_t changed_luma_blocks = 0;
};

void start_reading(Rewriter& work, Reader& reader, const unsigned char* bytes, size_t count) {
  work.state.attach(reader.codec);
  jpeg_create_decompress(&reader.codec);
  save_markers(reader.codec);
  jpeg_mem_src(&reader.codec, bytes, static_cast<unsigned long>(count));
  jpeg_read_header(&reader.codec, TRUE);
}

void start_writing(Rewriter& work, unsigned char*& bytes, unsigned long& count) {
  work.state.attach(work.writer);
  jpeg_create_compress(&work.writer);
  jpeg_mem_dest(&work.writer, &bytes, &count);
  jpeg_copy_critical_parameters(&work.old_file.codec, &work.writer);
}

// The encoder divides by what the tables hold; some broken files have zeros there.
bool has_whole_tables(const jpeg_decompress_struct& codec) {
  for (const JQUANT_TBL* table : codec.quant_tbl_ptrs) {
    if (table == nullptr) continue;
    for (const UINT16 step : table->quantval) {
      if (step == 0) return false;
    }
  }
  return true;
}

bool read_old_planes(Rewriter& work) {
  if (setjmp(work.state.escape) != 0) return false;
  start_reading(work, work.old_file, work.original.data(), work.original.size());
  if (!read_sampling(work.old_file.codec, work.sampling)) return false;
  if (!has_whole_tables(work.old_file.codec)) return false;
  read_planes(work.old_file.codec, work.before);
  jpeg_destroy_decompress(&work.old_file.codec);
  return true;
}

bool compress_new_planes(Rewriter& work) {
  if (setjmp(work.state.escape) != 0) return false;
  start_reading(work, work.old_file, work.original.data(), work.original.size());
  start_writing(work, work.pixels, work.pixel_bytes);
  work.writer.raw_data_in = TRUE;
  jpeg_start_compress(&work.writer, TRUE);
  write_planes(work.writer, work.after);
  jpeg_finish_compress(&work.writer);
  jpeg_destroy_compress(&work.writer);
  return true;
}

bool is_block_equal(const JpegPlane& a, const JpegPlane& b, size_t column, size_t row) {
  for (size_t y = row * DCTSIZE; y < (row + 1) * DCTSIZE; ++y) {
    const size_t at = y * a.stride + column * DCTSIZE;
    if (std::memcmp(a.samples.data() + at, b.samples.data() + at, DCTSIZE) != 0) return false;
  }
  return true;
}

// Takes the changed blocks of a component over into the old file's coefficients.
void take_changed_blocks(Rewriter& work, int component) {
  jpeg_decompress_struct& old_codec = work.old_file.codec;
  jpeg_decompress_struct& new_codec = work.new_file.codec;
  const jpeg_component_info& info = old_codec.comp_info[component];
  for (JDIMENSION y = 0; y < info.height_in_blocks; ++y) {
    JBLOCKARRAY to =
        old_codec.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&old_codec),
                                          work.old_file.coefficients[component], y, 1, TRUE);
    JBLOCKARRAY from =
        new_codec.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&new_codec),
                                          work.new_file.coefficients[component], y, 1, FALSE);
    for (JDIMENSION x = 0; x < info.width_in_blocks; ++x) {
      if (component == 0) ++work.luma_blocks;
      if (is_block_equal(work.before[component], work.after[component], x, y)) continue;
      if (component == 0) ++work.changed_luma_blocks;
      std::memcpy(to[0][x], from[0][x], sizeof(JBLOCK));
    }
  }
}

bool write_file(Rewriter& work) {
  if (setjmp(work.state.escape) != 0) return false;
  work.old_file.coefficients = jpeg_read_coefficients(&work.old_file.codec);
  start_reading(work, work.new_file, work.pixels, work.pixel_bytes);
  work.new_file.coefficients = jpeg_read_coefficients(&work.new_file.codec);
  for (int i = 0; i < work.sampling.components; ++i) take_changed_blocks(work, i);
  start_writing(work, work.state.output, work.state.output_bytes);
  work.writer.optimize_coding = TRUE;
  if (work.old_file.codec.progressive_mode != FALSE) jpeg_simple_progression(&work.writer);
  jpeg_write_coefficients(&work.writer, work.old_file.coefficients);
  copy_markers(work.old_file.codec, work.writer);
  jpeg_finish_compress(&work.writer);
  return true;
}

}  // namespace

std::optional<JpegRewrite> rewrite_jpeg(const std::vector<uint8_t>& original,
                                        const Nv21Frame& frame) {
  Rewriter work(original);
  if (!read_old_planes(work)) return std::nullopt;
  for (int i = 0; i < work.sampling.components; ++i) work.after[i].copy(work.before[i]);
  const Nv21Frame before =
      join_jpeg_planes(work.before, work.sampling, {frame.width, frame.height});
  put_into_jpeg_planes(before, frame, work.sampling, work.after);
  if (!compress_new_planes(work) || !write_file(work)) {
    throw Failure(kFailed, "JPEG encoder: " + work.state.error);
  }
  JpegRewrite result;
  result.bytes.assign(work.state.output, work.state.output + work.state.output_bytes);
  if (work.changed_luma_blocks > 0) {
    const size_t percent =
        (100 * work.changed_luma_blocks + work.luma_blocks - 1) / work.luma_blocks;
    result.losses.push_back("luma changed in " + std::to_string(percent) +
                            " % of its blocks, which were compressed once more");
  }
  if (work.sampling.components == 3 && (work.sampling.across != 2 || work.sampling.down != 2)) {
    result.losses.push_back("its " + sampling_name(work.sampling) +
                            " chroma was denoised as 4:2:0; finer colour detail is lost");
  }
  if (has_further_pictures(work.old_file.codec)) {
    result.losses.emplace_back("further pictures in the file (MPF) are dropped");
  }
  return result;
}

}  // namespace tool
