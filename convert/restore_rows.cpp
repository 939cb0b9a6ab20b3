#include "convert/restore_rows.h"

#include <algorithm>

#include "platform/vectorize.h"

namespace {

void set_divisor(MeanDivisor& by, int32_t total) {
  const uint32_t divisor = static_cast<uint32_t>(total);
  const uint32_t scale = 128u >> std::bit_width(divisor - 1);
  const uint32_t scaled = divisor * scale;
  by.total = static_cast<uint8_t>(divisor);
  by.half = static_cast<uint8_t>(divisor / 2);
  by.scale = static_cast<uint16_t>(scale);
  const uint32_t multiplier = ((1u << 22) + scaled - 1) / scaled;
  std::fill_n(by.multiplier, kRestoreBlock, static_cast<uint16_t>(multiplier));
}

bool is_narrow_total(int32_t total) { return total >= 1 && total <= kMaxNarrowTotal; }

// Bytes of one block: the mean of `bytes` and `filtered`.
void mean_block(uint8_t* __restrict bytes, const uint8_t* __restrict filtered,
                const uint8_t* __restrict weights, size_t count, const MeanDivisor& by) {
  uint16_t sums[kRestoreBlock];
  const uint8_t total = by.total;
  const uint8_t half = by.half;
  const uint16_t scale = by.scale;
  VOREL_VECTORIZE
  for (size_t i = 0; i < count; ++i) {
    sums[i] = scaled_sum(weights[i], bytes[i], filtered[i], total, half, scale);
  }
  VOREL_VECTORIZE
  for (size_t i = 0; i < count; ++i) sums[i] = upper_half(sums[i], by.multiplier[i]);
  VOREL_VECTORIZE
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(sums[i] >> 6);
}

void restore_luma_block(uint8_t* __restrict luma, const uint8_t* __restrict low,
                        const uint8_t* __restrict high, size_t count, const RestorePlan& plan) {
  uint8_t rebuilt[kRestoreBlock];
  uint8_t weights[kRestoreBlock];
  const uint8_t upper = plan.luma.total;
  const uint8_t lower = plan.luma_lower;
  VOREL_VECTORIZE
  for (size_t x = 0; x < count; ++x) {
    rebuilt[x] = rebuild_luma(low[x], high[x]);
    weights[x] = luma_weight(luma[x], rebuilt[x], upper, lower);
  }
  mean_block(luma, rebuilt, weights, count, plan.luma);
}

void restore_chroma_block(uint8_t* __restrict pairs, const uint8_t* __restrict u,
                          const uint8_t* __restrict v, size_t count, const RestorePlan& plan) {
  uint8_t filtered[kRestoreBlock];
  uint8_t saturations[kRestoreBlock];
  uint8_t distances[kRestoreBlock];
  uint8_t weights[kRestoreBlock];
  VOREL_VECTORIZE
  for (size_t k = 0; k < count; ++k) {
    store_pair(filtered, k, static_cast<uint16_t>(u[k] | v[k] << 8));
  }
  VOREL_VECTORIZE
  for (size_t i = 0; i < 2 * count; ++i) {
    saturations[i] = absolute_difference(pairs[i], 128);
    distances[i] = absolute_difference(pairs[i], filtered[i]);
  }
  const int32_t cs_lower = plan.tuning.cs_lower_thresh;
  const int32_t cs_upper = plan.tuning.cs_upper_thresh;
  const float total = static_cast<float>(plan.chroma.total);
  VOREL_VECTORIZE
  for (size_t k = 0; k < count; ++k) {
    const uint16_t saturation = load_pair(saturations, k);
    const uint16_t distance = load_pair(distances, k);
    const int32_t weight =
        chroma_weight((saturation & 0xFF) + (saturation >> 8), (distance & 0xFF) + (distance >> 8),
                      cs_lower, cs_upper, total);
    store_pair(weights, k, static_cast<uint16_t>(weight | weight << 8));
  }
  mean_block(pairs, filtered, weights, 2 * count, plan.chroma);
}

void restore_luma_row_wide(uint8_t* __restrict luma, const uint8_t* __restrict low,
                           const uint8_t* __restrict high, size_t width,
                           const interleaving_tuning& tuning) {
  const int32_t upper = tuning.d_Y_upper_thresh;
  const int32_t lower = tuning.d_Y_lower_thresh;
  VOREL_VECTORIZE
  for (size_t x = 0; x < width; ++x) {
    luma[x] = restore_luma_wide(luma[x], low[x], high[x], upper, lower);
  }
}

void restore_chroma_row_wide(uint8_t* __restrict pairs, const uint8_t* __restrict u,
                             const uint8_t* __restrict v, size_t count,
                             const interleaving_tuning& tuning) {
  const int32_t total = tuning.d_UV_thresh;
  const int32_t cs_lower = tuning.cs_lower_thresh;
  const int32_t cs_upper = tuning.cs_upper_thresh;
  // Weights end at the total, also at a negative one: the weight of an input that stays.
  if (total < 0) return;
  VOREL_VECTORIZE
  for (size_t k = 0; k < count; ++k) {
    const uint16_t pair = load_pair(pairs, k);
    const uint8_t first = static_cast<uint8_t>(pair);
    const uint8_t second = static_cast<uint8_t>(pair >> 8);
    const int32_t weight =
        chroma_weight(absolute_difference(first, 128) + absolute_difference(second, 128),
                      absolute_difference(first, u[k]) + absolute_difference(second, v[k]),
                      cs_lower, cs_upper, static_cast<float>(total));
    const uint8_t new_first = restore_chroma_wide(weight, first, u[k], total);
    const uint8_t new_second = restore_chroma_wide(weight, second, v[k], total);
    store_pair(pairs, k, static_cast<uint16_t>(new_first | new_second << 8));
  }
}

}  // namespace

RestorePlan::RestorePlan(const interleaving_tuning& thresholds) : tuning(thresholds) {
  // With a distance of 0 the two means agree, so a negative lower threshold acts like 0.
  luma_lower = static_cast<uint8_t>(std::clamp(thresholds.d_Y_lower_thresh, 0, 255));
  narrow_luma = is_narrow_total(thresholds.d_Y_upper_thresh);
  if (narrow_luma) set_divisor(luma, thresholds.d_Y_upper_thresh);
  narrow_chroma = is_narrow_total(thresholds.d_UV_thresh);
  if (narrow_chroma) set_divisor(chroma, thresholds.d_UV_thresh);
}

void restore_luma_row(uint8_t* luma, const uint8_t* low, const uint8_t* high, size_t width,
                      const RestorePlan& plan) {
  if (!plan.narrow_luma) return restore_luma_row_wide(luma, low, high, width, plan.tuning);
  for (size_t x = 0; x < width; x += kRestoreBlock) {
    restore_luma_block(luma + x, low + x, high + x, std::min(width - x, kRestoreBlock), plan);
  }
}

void restore_chroma_row(uint8_t* pairs, const uint8_t* u, const uint8_t* v, size_t count,
                        const RestorePlan& plan) {
  if (!plan.narrow_chroma) return restore_chroma_row_wide(pairs, u, v, count, plan.tuning);
  constexpr size_t kBlock = kRestoreBlock / 2;
  for (size_t k = 0; k < count; k += kBlock) {
    restore_chroma_block(pairs + 2 * k, u + k, v + k, std::min(count - k, kBlock), plan);
  }
}
