#include "convert/restore_rows.h"

#include <algorithm>

#include "platform/byte_lanes.h"
#include "platform/vectorize.h"

namespace {

void set_divisor(mean_divisor& by, int32_t total) {
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
                const uint8_t* __restrict weights, size_t count, const mean_divisor& by) {
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
                        const uint8_t* __restrict high, size_t count, const restore_plan& plan) {
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

ByteLanes stepped(ByteLanes luma, ByteLanes low, ByteLanes high, ByteTable up, ByteTable down) {
  using SignedLanes = int8_t __attribute__((vector_size(kLanes)));
  const ByteLanes offset = ByteLanes{} + 0x80;
  const SignedLanes sum = __builtin_elementwise_add_sat(
      reinterpret_cast<SignedLanes>(low ^ offset), reinterpret_cast<SignedLanes>(high ^ offset));
  const ByteLanes rebuilt = reinterpret_cast<ByteLanes>(sum) ^ offset;
  // One of the two is 0, and so is the step for a difference of 0.
  return luma + look_up(up, __builtin_elementwise_sub_sat(rebuilt, luma)) +
         look_up(down, __builtin_elementwise_sub_sat(luma, rebuilt));
}

void restore_luma_row_stepped(uint8_t* luma, const uint8_t* low, const uint8_t* high, size_t width,
                              const luma_steps& steps) {
  const ByteTable up = load_table(steps.up);
  const ByteTable down = load_table(steps.down);
  size_t x = 0;
  for (; x + kLanes <= width; x += kLanes) {
    store_lanes(stepped(load_lanes(luma + x), load_lanes(low + x), load_lanes(high + x), up, down),
                luma + x);
  }
  if (x == width) return;
  ByteLanes rest[3] = {};
  uint8_t* bytes[3] = {reinterpret_cast<uint8_t*>(&rest[0]), reinterpret_cast<uint8_t*>(&rest[1]),
                       reinterpret_cast<uint8_t*>(&rest[2])};
  std::copy_n(luma + x, width - x, bytes[0]);
  std::copy_n(low + x, width - x, bytes[1]);
  std::copy_n(high + x, width - x, bytes[2]);
  rest[0] = stepped(rest[0], rest[1], rest[2], up, down);
  std::copy_n(bytes[0], width - x, luma + x);
}

// What each difference below the upper threshold makes of a sample; zeros keep it.
void set_steps(luma_steps& steps, int32_t upper, int32_t lower) {
  for (int32_t distance = 0; distance < luma_steps::kSteps; ++distance) {
    const bool moves = distance < upper && distance > lower;
    const uint8_t far = static_cast<uint8_t>(distance);
    // A sample and one that is `distance` above it, then below it.
    const int32_t up = wide_mean(distance, 0, far, upper);
    const int32_t down = wide_mean(distance, far, 0, upper) - distance;
    steps.up[distance] = static_cast<uint8_t>(moves ? up : 0);
    steps.down[distance] = static_cast<uint8_t>(moves ? down : 0);
  }
}

PairLanes sum_of_bytes(ByteLanes bytes) {
  const PairLanes pairs = reinterpret_cast<PairLanes>(bytes);
  return (pairs & 0xFF) + (pairs >> 8);
}

// What does not change along a row of chroma.
struct chroma_lanes {
  explicit chroma_lanes(const restore_plan& plan)
      : low(load_table(plan.divisors.low)),
        high(load_table(plan.divisors.high)),
        shift(plan.divisors.shift),
        first(plan.divisors.first),
        lower(PairLanes{} + plan.saturation_lower),
        upper(PairLanes{} + plan.saturation_upper),
        total(PairLanes{} + plan.chroma.total),
        unit(plan.chroma.scale),
        multiplier(PairLanes{} + plan.chroma.multiplier[0]) {}

  PairLanes weights(PairLanes saturation, PairLanes distance) const {
    const PairLanes bounded =
        __builtin_elementwise_min(__builtin_elementwise_max(saturation, lower), upper);
    const ByteLanes index = reinterpret_cast<ByteLanes>(bounded - first);
    const PairLanes factor = (reinterpret_cast<PairLanes>(look_up(low, index)) & 0xFF) |
                             (reinterpret_cast<PairLanes>(look_up(high, index)) << 8);
    const PairLanes quotient =
        shift_right(multiply_high(64 * distance + (bounded >> 1), factor), shift);
    return __builtin_elementwise_min(quotient, total);
  }

  PairLanes mean(PairLanes weight, PairLanes input, PairLanes filtered) const {
    const PairLanes sum = weight * input + (total - weight) * filtered + (total >> 1);
    return multiply_high(sum * unit, multiplier) >> 6;
  }

  ByteTable low;
  ByteTable high;
  int shift;
  uint16_t first;
  PairLanes lower;
  PairLanes upper;
  PairLanes total;
  uint16_t unit;
  PairLanes multiplier;
};

constexpr size_t kLanePairs = kLanes / 2;

void restore_chroma_lanes(uint8_t* pairs, const uint8_t* u, const uint8_t* v,
                          const chroma_lanes& by) {
  using NarrowLanes = uint8_t __attribute__((vector_size(kLanePairs)));
  NarrowLanes narrow_u;
  NarrowLanes narrow_v;
  __builtin_memcpy(&narrow_u, u, sizeof narrow_u);
  __builtin_memcpy(&narrow_v, v, sizeof narrow_v);
  const PairLanes first = __builtin_convertvector(narrow_u, PairLanes);
  const PairLanes second = __builtin_convertvector(narrow_v, PairLanes);
  const ByteLanes input = load_lanes(pairs);
  const ByteLanes filtered = reinterpret_cast<ByteLanes>(first | second << 8);
  const PairLanes weight = by.weights(sum_of_bytes(absolute_difference(input, ByteLanes{} + 128)),
                                      sum_of_bytes(absolute_difference(input, filtered)));
  const PairLanes samples = reinterpret_cast<PairLanes>(input);
  store_lanes(reinterpret_cast<ByteLanes>(by.mean(weight, samples & 0xFF, first) |
                                          by.mean(weight, samples >> 8, second) << 8),
              pairs);
}

void restore_chroma_row_narrow(uint8_t* pairs, const uint8_t* u, const uint8_t* v, size_t count,
                               const restore_plan& plan) {
  const chroma_lanes by(plan);
  size_t k = 0;
  for (; k + kLanePairs <= count; k += kLanePairs) {
    restore_chroma_lanes(pairs + 2 * k, u + k, v + k, by);
  }
  if (k == count) return;
  uint8_t last_pairs[kLanes] = {};
  uint8_t last_u[kLanePairs] = {};
  uint8_t last_v[kLanePairs] = {};
  std::copy_n(pairs + 2 * k, 2 * (count - k), last_pairs);
  std::copy_n(u + k, count - k, last_u);
  std::copy_n(v + k, count - k, last_v);
  restore_chroma_lanes(last_pairs, last_u, last_v, by);
  std::copy_n(last_pairs, 2 * (count - k), pairs + 2 * k);
}

// False where the bounded saturation takes too many values, or such as the factors do not fit.
bool set_divisors(saturation_divisors& divisors, int32_t first, int32_t last) {
  using Divisors = saturation_divisors;
  if (first < Divisors::kLeast || last > Divisors::kMost || last - first >= Divisors::kValues) {
    return false;
  }
  const uint32_t shift =
      static_cast<uint32_t>(std::bit_width(static_cast<uint32_t>(first - 1)) - 1);
  divisors.first = static_cast<uint16_t>(first);
  divisors.shift = static_cast<uint8_t>(shift);
  for (int32_t i = 0; i < Divisors::kValues; ++i) {
    const uint32_t saturation = static_cast<uint32_t>(first + i);
    const uint32_t factor = ((1u << (16 + shift)) + saturation - 1) / saturation;
    divisors.low[i] = static_cast<uint8_t>(factor);
    divisors.high[i] = static_cast<uint8_t>(factor >> 8);
  }
  return true;
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

restore_plan::restore_plan(const interleaving_tuning& thresholds) : tuning(thresholds) {
  // With a distance of 0 the two means agree, so a negative lower threshold acts like 0.
  luma_lower = static_cast<uint8_t>(std::clamp(thresholds.d_Y_lower_thresh, 0, 255));
  stepped_luma =
      thresholds.d_Y_upper_thresh >= 1 && thresholds.d_Y_upper_thresh <= luma_steps::kSteps;
  if (stepped_luma) set_steps(steps, thresholds.d_Y_upper_thresh, luma_lower);
  narrow_luma = is_narrow_total(thresholds.d_Y_upper_thresh);
  if (narrow_luma) set_divisor(luma, thresholds.d_Y_upper_thresh);
  const int32_t first =
      std::min(std::max(thresholds.cs_lower_thresh, 0), thresholds.cs_upper_thresh);
  const int32_t last = std::min(std::max(thresholds.cs_lower_thresh, saturation_divisors::kMost),
                                thresholds.cs_upper_thresh);
  narrow_chroma = is_narrow_total(thresholds.d_UV_thresh) && set_divisors(divisors, first, last);
  if (!narrow_chroma) return;
  set_divisor(chroma, thresholds.d_UV_thresh);
  saturation_lower = static_cast<uint16_t>(first);
  saturation_upper = static_cast<uint16_t>(last);
}

void restore_luma_row(uint8_t* luma, const uint8_t* low, const uint8_t* high, size_t width,
                      const restore_plan& plan) {
  if (plan.stepped_luma) return restore_luma_row_stepped(luma, low, high, width, plan.steps);
  if (!plan.narrow_luma) return restore_luma_row_wide(luma, low, high, width, plan.tuning);
  for (size_t x = 0; x < width; x += kRestoreBlock) {
    restore_luma_block(luma + x, low + x, high + x, std::min(width - x, kRestoreBlock), plan);
  }
}

void restore_chroma_row(uint8_t* pairs, const uint8_t* u, const uint8_t* v, size_t count,
                        const restore_plan& plan) {
  if (plan.narrow_chroma) return restore_chroma_row_narrow(pairs, u, v, count, plan);
  restore_chroma_row_wide(pairs, u, v, count, plan.tuning);
}
