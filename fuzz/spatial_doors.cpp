#include "fuzz/doors.h"
#include "fuzz/frame_input.h"
#include "tests/kernels/plain_bilateral.h"
#include "tests/kernels/plain_box_filter.h"
#include "tests/kernels/plain_restore.h"
#include "tests/kernels/plain_upsample.h"
#include "vorel/convert.h"
#include "vorel/filters.h"

namespace {

size_t area(int rows, int cols) { return static_cast<size_t>(rows) * static_cast<size_t>(cols); }

void filter_columns(FuzzedDataProvider& input) {
  const int width = input.ConsumeIntegralInRange(1, 40);
  const int height = input.ConsumeIntegralInRange(1, 24);
  boxfiltering_tuning tuning{input.ConsumeIntegralInRange(-1, 8)};
  const int first = input.ConsumeIntegralInRange(-3, height);
  const int end = input.ConsumeIntegralInRange(first, height + 3);
  std::vector<uint8_t> src = any_bytes(input, area(height, width));
  std::vector<uint8_t> low(src.size(), 7), high(src.size(), 7), plain_low = low, plain_high = high;
  box_filter_col_neon(src.data(), low.data(), high.data(), width, height, 0, height, first, end,
                      &tuning);
  PlainBoxFilter{
      src.data(),           width, height, std::clamp(tuning.tab_bit, 0, 7), std::max(first, 0),
      std::min(end, height)}
      .filter(plain_low.data(), plain_high.data(), 1);
  for (size_t i = 0; i < src.size(); ++i) {
    const bool covered = static_cast<int>(i) % width < width / 8 * 8;
    if (low[i] != (covered ? plain_low[i] : 7))
      differ("box_filter_col_neon", i, low[i], plain_low[i]);
    if (high[i] != (covered ? plain_high[i] : 7)) differ("detail", i, high[i], plain_high[i]);
  }
}

bilateralfiltering_tuning any_bilateral(FuzzedDataProvider& input) {
  bilateralfiltering_tuning tuning{};
  tuning.val_delta_th = any_int(input, -1, 20);
  tuning.val_weight_denom_shift = any_int(input, 0, 31);
  for (int32_t& coefficient : tuning.val_weight_coef) coefficient = any_int(input, -9999, 9999);
  for (int32_t& weight : tuning.val_weight) weight = any_int(input, 0, 255);
  return tuning;
}

// A part of the interior, with weights of either kind.
void filter_part(FuzzedDataProvider& input) {
  bilateralfiltering_tuning tuning = any_bilateral(input);
  // With a negative one the window is empty and the part becomes 0.
  const int span_row = input.ConsumeIntegralInRange(-1, 4);
  const int span_col = input.ConsumeIntegralInRange(-1, 4);
  const bool windowed = span_row >= 0 && span_col >= 0;
  const int height = input.ConsumeIntegralInRange(1, 16);
  const int width = input.ConsumeIntegralInRange(1, 30);
  const bool stored = input.ConsumeBool();
  const int inner = std::max(0, width - 2 * std::max(span_col, 0)) / 8 * 8;
  const int left = (width - inner) / 2 + input.ConsumeIntegralInRange(0, inner);
  const int right = width - inner - (width - inner) / 2;
  const int bottom = std::max(span_row, 0);
  const int top = bottom + input.ConsumeIntegralInRange(0, 3);
  std::vector<uint8_t> src = any_bytes(input, area(height, width));
  std::vector<uint8_t> dst(src.size(), 7), interior = dst;
  const auto filter = stored ? bilateral_filter_opt_center_neon : bilateral_filter_center_neon;
  filter(src.data(), dst.data(), height, width, top, bottom, left, right, span_row, span_col,
         &tuning);
  const PlainBilateral plain{src.data(), interior.data(), height, width, span_row, span_col};
  if (windowed) {
    plain.filter(tuning, stored ? plain_stored_weight : plain_polynomial_weight, true);
  }
  for (size_t i = 0; i < src.size(); ++i) {
    const int y = static_cast<int>(i) / width;
    const int x = static_cast<int>(i) % width;
    const bool inside = y >= top && y < height - bottom && x >= left && x < width - right;
    const uint8_t expected = !inside ? 7 : windowed ? interior[i] : 0;
    if (dst[i] != expected) differ("bilateral, a part", i, dst[i], expected);
  }
}

void filter_whole(FuzzedDataProvider& input) {
  bilateralfiltering_tuning tuning = any_bilateral(input);
  const bool opt = input.ConsumeBool();
  if (input.ConsumeBool()) {
    const bilateralfiltering_tuning before = tuning;
    update_bilateral_filter_tuning(&tuning);
    for (int i = 0; i < 16; ++i) {
      const int expected = before.val_delta_th >= 16
                               ? before.val_weight[i]
                               : std::clamp(plain_polynomial_weight(before, i), 0, 255);
      if (tuning.val_weight[i] != expected) {
        differ("val_weight", static_cast<size_t>(i), tuning.val_weight[i], expected);
      }
    }
  }
  const int height = input.ConsumeIntegralInRange(1, 12);
  const int width = input.ConsumeIntegralInRange(1, 30);
  const int spans[] = {input.ConsumeIntegralInRange(-1, 4), input.ConsumeIntegralInRange(-1, 4)};
  std::vector<uint8_t> src = any_bytes(input, area(height, width));
  std::vector<uint8_t> dst(src.size(), 7), expected(src.size(), 0);
  const auto filter = opt ? bilateral_filter_opt : bilateral_filter;
  filter(src.data(), dst.data(), height, width, spans[0], spans[1], &tuning);
  const PlainBilateral plain{src.data(), expected.data(), height, width, spans[0], spans[1]};
  const bool stored = opt || tuning.val_delta_th >= 16;
  if (spans[0] >= 0 && spans[1] >= 0) {
    plain.filter(tuning, stored ? plain_stored_weight : plain_polynomial_weight, false);
  }
  require_same("bilateral", dst, expected);
}

void upsample(FuzzedDataProvider& input) {
  const int form = input.ConsumeIntegralInRange(0, 7);
  const int cols = input.ConsumeIntegralInRange(1, 20);
  const int rows = input.ConsumeIntegralInRange(1, 5);
  const bool luma = form == 0 || form == 1 || form == 5;
  const bool halved = form == 2 || form == 6;
  const int across = luma ? 16 : 8;
  const int down = halved ? 8 : 16;
  const bool in_part = form == 2 || form == 3;
  const int covered = in_part ? input.ConsumeIntegralInRange(-1, cols + 2) : cols;
  std::vector<uint8_t> src = any_bytes(input, area(rows, cols));
  std::vector<uint8_t> dst(src.size() * area(across, down), 7), expected = dst;
  upsample_job job{cols, rows, src.data(), dst.data()};
  switch (form) {
    case 0:
      upsample_y_neon(dst.data(), src.data(), cols, rows);
      break;
    case 1:
      y_upsample(dst.data(), src.data(), rows, cols);
      break;
    case 2:
      upsample_uv420_neon(dst.data(), src.data(), cols, rows, covered);
      break;
    case 3:
      upsample_uv_neon(dst.data(), src.data(), cols, rows, covered);
      break;
    case 4:
      uv_upsample(src.data(), dst.data(), rows, cols);
      break;
    case 5:
      upsample_y(&job);
      break;
    case 6:
      upsample_uv420(&job);
      break;
    default:
      upsample_uv422(&job);
  }
  const PlainUpsampling plain{src.data(), cols, rows, across, down};
  const int width = cols * across;
  for (int i = 0; i < width * rows * down; ++i) {
    if (i % width < covered * across)
      expected[static_cast<size_t>(i)] = plain.at(i / width, i % width);
  }
  require_same("upsampling", dst, expected);
}

// Whole blocks: the first pair of each, and the luma of packed frames.
void take_blocks(FuzzedDataProvider& input) {
  const int form = input.ConsumeIntegralInRange(0, 2);
  const int cols = 16 * input.ConsumeIntegralInRange(0, 3);
  const int rows = 16 * input.ConsumeIntegralInRange(0, 2);
  const int width = cols + input.ConsumeIntegralInRange(0, 20);
  const bool packed = form != 1;
  const int pitch = packed ? 2 * width : width / 2 * 2;
  std::vector<uint8_t> src = any_bytes(input, area(packed ? rows : rows / 2, pitch));
  std::vector<uint8_t> y(area(rows, width), 7), u(area(rows / 16, width / 16), 7), v = u;
  std::vector<uint8_t> plain_y = y, plain_u = u, plain_v = v;
  if (form == 0) {
    deinterleave_yuv422_uv_downsample_neon(y.data(), u.data(), v.data(), src.data(), width, rows,
                                           cols);
  } else if (form == 1) {
    deinterleave_yuv420_uv_downsample_neon(u.data(), v.data(), src.data(), cols, rows, width);
  } else {
    deinterleave_uv422_uv_downsample_neon(nullptr, u.data(), v.data(), src.data(), width, rows,
                                          cols);
  }
  for (int row = 0; row < rows; ++row) {
    for (int x = 0; x < cols; ++x) {
      const uint8_t* luma = src.data() + row * pitch + 2 * x;
      if (form == 0) plain_y[area(row, width) + static_cast<size_t>(x)] = *luma;
      if (row % 16 != 0 || x % 16 != 0) continue;
      const size_t block = area(row / 16, width / 16) + static_cast<size_t>(x / 16);
      const uint8_t* pair = packed ? luma + 1 : src.data() + row / 2 * pitch + x;
      plain_u[block] = pair[0];
      plain_v[block] = pair[packed ? 2 : 1];
    }
  }
  require_same("luma of blocks", y, plain_y);
  require_same("first chroma of blocks", u, plain_u);
  require_same("second chroma of blocks", v, plain_v);
}

interleaving_tuning any_thresholds(FuzzedDataProvider& input) {
  interleaving_tuning tuning{};
  for (int32_t* threshold :
       {&tuning.d_Y_upper_thresh, &tuning.d_Y_lower_thresh, &tuning.d_UV_thresh,
        &tuning.cs_upper_thresh, &tuning.cs_lower_thresh}) {
    *threshold = any_int(input, 0, 255);
  }
  return tuning;
}

struct RestorePlanes {
  RestorePlanes(FuzzedDataProvider& input, bool packed_)
      : packed(packed_),
        width(16 * input.ConsumeIntegralInRange(1, 3)),
        rows(input.ConsumeIntegralInRange(0, 6)),
        chroma_rows(packed ? rows : rows / 2),
        low(any_bytes(input, area(rows, width))),
        high(any_bytes(input, area(rows, width))),
        u(any_bytes(input, area(chroma_rows, width / 2))),
        v(any_bytes(input, area(chroma_rows, width / 2))),
        y(any_bytes(input, area(rows, packed ? 2 * width : width))),
        uv(any_bytes(input, area(packed ? 0 : chroma_rows, width))) {}

  PlainPair chroma(size_t pair, const interleaving_tuning& tuning) const {
    const size_t group = 4 * pair;  // of a packed plane
    const PlainPair given =
        packed ? PlainPair{y[group + 1], y[group + 3]} : PlainPair{uv[2 * pair], uv[2 * pair + 1]};
    return plain_chroma(given, {u[pair], v[pair]}, tuning);
  }

  bool packed;
  int width;
  int rows;
  int chroma_rows;
  std::vector<uint8_t> low, high, u, v, y, uv;
};

void restore_packed(FuzzedDataProvider& input) {
  const interleaving_tuning given = any_thresholds(input);
  interleaving_tuning tuning = given;
  const int form = input.ConsumeIntegralInRange(0, 2);
  RestorePlanes p(input, true);
  std::vector<uint8_t> out = p.y, expected = p.y;
  interleave_job job{};
  job.width = p.width;
  job.rows = p.rows;
  job.y_low = p.low.data();
  job.y_high = p.high.data();
  job.upsampled_u = p.u.data();
  job.upsampled_v = p.v.data();
  job.packed = out.data();
  job.tuning = &tuning;
  if (form == 0) restore_interleave_yuv422(&job);
  if (form == 1) {
    restore_interleave_yuv422_neon(out.data(), p.low.data(), p.high.data(), p.u.data(), p.v.data(),
                                   p.width, p.rows, &tuning);
  }
  if (form == 2) {
    restore_interleave_uv422_neon(out.data(), nullptr, nullptr, p.u.data(), p.v.data(), p.width,
                                  p.rows, &tuning);
  }
  const bool off = (form != 2 && given.d_Y_upper_thresh == 0) || given.d_UV_thresh == 0;
  for (size_t i = 0; !off && i < p.low.size(); ++i) {
    if (form != 2) expected[2 * i] = plain_luma(p.y[2 * i], p.low[i], p.high[i], given);
    if (i % 2 != 0) continue;
    const PlainPair pair = p.chroma(i / 2, given);
    expected[2 * i + 1] = pair.first;
    expected[2 * i + 3] = pair.second;
  }
  require_same("packed frame", out, expected);
}

void restore_planar(FuzzedDataProvider& input) {
  const interleaving_tuning given = any_thresholds(input);
  interleaving_tuning tuning = given;
  const int form = input.ConsumeIntegralInRange(0, 2);
  RestorePlanes p(input, false);
  std::vector<uint8_t> y_out(p.y.size(), 7), uv_out(p.uv.size(), 7);
  std::vector<uint8_t> plain_y = y_out, plain_uv = uv_out;
  const int pitch = p.width / 2 + input.ConsumeIntegralInRange(0, 3);
  std::vector<_Float16> half_u(area(p.chroma_rows, pitch), 7), half_v = half_u;
  std::vector<_Float16> plain_u = half_u, plain_v = half_v;
  if (form == 0) {
    restore_interleave_yuv420_neon(p.y.data(), p.uv.data(), p.low.data(), p.high.data(), p.u.data(),
                                   p.v.data(), p.width, p.rows, y_out.data(), uv_out.data(),
                                   &tuning);
  } else if (form == 1) {
    restore_interleave_yuv420_mfd_uv_neon(p.y.data(), p.uv.data(), p.low.data(), p.high.data(),
                                          p.u.data(), p.v.data(), p.width, p.rows, y_out.data(),
                                          half_u.data(), half_v.data(), pitch, &tuning);
  } else {
    restore_interleave_uv420_neon(nullptr, p.uv.data(), nullptr, nullptr, p.u.data(), p.v.data(),
                                  p.width, p.rows, uv_out.data(), &tuning);
  }
  const bool off = (form != 2 && given.d_Y_upper_thresh == 0) || given.d_UV_thresh == 0;
  for (size_t i = 0; !off && form != 2 && i < p.y.size(); ++i) {
    plain_y[i] = plain_luma(p.y[i], p.low[i], p.high[i], given);
  }
  for (size_t i = 0; !off && i < p.u.size(); ++i) {
    const PlainPair pair = p.chroma(i, given);
    const size_t pairs = static_cast<size_t>(p.width / 2);
    const size_t at = i / pairs * static_cast<size_t>(pitch) + i % pairs;
    if (form == 1) {
      plain_u[at] = pair.first;
      plain_v[at] = pair.second;
    } else {
      plain_uv[2 * i] = pair.first;
      plain_uv[2 * i + 1] = pair.second;
    }
  }
  require_same("restored luma", y_out, plain_y);
  require_same("restored chroma", uv_out, plain_uv);
  require_same("first restored plane", half_u, plain_u);
  require_same("second restored plane", half_v, plain_v);
}

}  // namespace

void try_spatial_doors(FuzzedDataProvider& input) {
  constexpr decltype(&upsample) kDoors[] = {filter_columns, filter_part,    filter_whole,  upsample,
                                            take_blocks,    restore_packed, restore_planar};
  input.PickValueInArray(kDoors)(input);
}
