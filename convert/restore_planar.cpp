#include <algorithm>
#include <cstddef>
#include <cstring>

#include "convert/restore_rows.h"
#include "convert/restore_strip.h"
#include "convert/upsample.h"
#include "platform/vectorize.h"

namespace {

// A piece of a strip is one row of blocks high and at most this wide: what is filtered for it stays
// in the cache, and rows are still long enough to be read in memory order.
constexpr size_t kPieceRows = 16;
constexpr size_t kPieceCols = kUpsampleCols;

// Luma samples of a strip; chroma is half of everything.
struct strip_piece {
  size_t row;
  size_t rows;
  size_t col;
  size_t cols;
};

// A filtered plane's rows at a piece: those of the plane, or made one by one from its blocks.
struct filtered_rows {
  const uint8_t* plane;
  size_t pitch;
  size_t weight_step;  // sixteenths from a row to the next
  upsample_sums sums;
  uint8_t samples[kUpsampleCols];

  const uint8_t* row(size_t index) {
    if (plane != nullptr) return plane + index * pitch;
    blend_sums(sums, index * weight_step, samples);
    return samples;
  }
};

// Scratch of a strip (60 KB).
struct strip_room {
  filtered_rows y;
  filtered_rows u;
  filtered_rows v;
};

void widen_piece(const filtered_blocks& blocks, const strip_piece& piece, strip_room* room) {
  const auto widen = [&](const uint8_t* plane, Upsampling factor, filtered_rows* rows) {
    rows->plane = nullptr;
    rows->weight_step = factor == Upsampling::k16x16 ? 1 : 2;
    widen_run({plane, static_cast<size_t>(blocks.cols), static_cast<size_t>(blocks.rows),
               static_cast<size_t>(blocks.row) + piece.row / kPieceRows, piece.col / 16,
               (piece.col + piece.cols) / 16},
              factor, &rows->sums);
  };
  widen(blocks.y, Upsampling::k16x16, &room->y);
  widen(blocks.u, Upsampling::k8x8, &room->u);
  widen(blocks.v, Upsampling::k8x8, &room->v);
}

void place_piece(const interleave_job& strip, const strip_piece& piece, strip_room* room) {
  const size_t width = static_cast<size_t>(strip.width);
  const size_t chroma = piece.row / 2 * (width / 2) + piece.col / 2;
  room->u.pitch = room->v.pitch = width / 2;
  room->u.plane = strip.upsampled_u + chroma;
  room->v.plane = strip.upsampled_v + chroma;
  room->y.pitch = width;
  if (strip.y_out != nullptr) room->y.plane = strip.y_low + piece.row * width + piece.col;
}

// The rows work in place; a separate output starts as a copy of the input.
uint8_t* row_to_restore(const uint8_t* in, uint8_t* out, size_t at, size_t bytes) {
  if (out != in) std::memcpy(out + at, in + at, bytes);
  return out + at;
}

void restore_luma(const interleave_job& strip, const strip_piece& piece, const restore_plan& plan,
                  strip_room* room) {
  for (size_t row = 0; row < piece.rows; ++row) {
    const size_t at = (piece.row + row) * static_cast<size_t>(strip.width) + piece.col;
    restore_luma_row(row_to_restore(strip.y_in, strip.y_out, at, piece.cols), room->y.row(row),
                     strip.y_high + at, piece.cols, plan);
  }
}

void split_to_half(const uint8_t* __restrict pairs, _Float16* __restrict u, _Float16* __restrict v,
                   size_t count) {
  VOREL_VECTORIZE
  for (size_t k = 0; k < count; ++k) {
    const uint16_t pair = load_pair(pairs, k);
    u[k] = static_cast<_Float16>(static_cast<uint16_t>(pair & 0xFF));
    v[k] = static_cast<_Float16>(static_cast<uint16_t>(pair >> 8));
  }
}

void restore_chroma(const interleave_job& strip, const strip_piece& piece, const restore_plan& plan,
                    strip_room* room) {
  uint8_t block[kPieceCols];
  for (size_t row = 0; row < piece.rows / 2; ++row) {
    const size_t chroma_row = piece.row / 2 + row;
    const size_t at = chroma_row * static_cast<size_t>(strip.width) + piece.col;
    const uint8_t* u = room->u.row(row);
    const uint8_t* v = room->v.row(row);
    if (strip.uv_out != nullptr) {
      restore_chroma_row(row_to_restore(strip.uv_in, strip.uv_out, at, piece.cols), u, v,
                         piece.cols / 2, plan);
      continue;
    }
    const size_t half = chroma_row * static_cast<size_t>(strip.mfd_width) + piece.col / 2;
    std::memcpy(block, strip.uv_in + at, piece.cols);
    restore_chroma_row(block, u, v, piece.cols / 2, plan);
    split_to_half(block, strip.mfd_u + half, strip.mfd_v + half, piece.cols / 2);
  }
}

}  // namespace

void restore_planar_strip(const interleave_job& strip) {
  restore_strip with_planes{strip, {}};
  restore_planar_strip(with_planes);
}

void restore_planar_strip(const restore_strip& strip) {
  const bool with_luma = strip.y_out != nullptr;
  if (with_luma && strip.tuning->d_Y_upper_thresh == 0) return;
  if (strip.tuning->d_UV_thresh == 0 || strip.width < 1 || strip.rows < 1) return;
  const restore_plan plan(*strip.tuning);
  const size_t rows = static_cast<size_t>(strip.rows);
  const size_t cols = static_cast<size_t>(strip.width);
  strip_room room;
  for (size_t row = 0; row < rows; row += kPieceRows) {
    for (size_t col = 0; col < cols; col += kPieceCols) {
      const strip_piece piece{row, std::min(rows - row, kPieceRows), col,
                              std::min(cols - col, kPieceCols)};
      if (strip.blocks.y != nullptr) {
        widen_piece(strip.blocks, piece, &room);
      } else {
        place_piece(strip, piece, &room);
      }
      if (with_luma) restore_luma(strip, piece, plan, &room);
      restore_chroma(strip, piece, plan, &room);
    }
  }
}
