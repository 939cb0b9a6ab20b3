#include "wavelet/kernels/saturation_rows.h"

#include "wavelet/kernels/half.h"

namespace {

constexpr half_lane kNeutral = 128;

// Pairs for which it is decided at once whether the curve has to be evaluated: most of a picture
// lies near neutral, and the curve is two thirds of the work.
constexpr int kBlockPairs = 128;

// The curve in lanes, with what does not change along a frame.
struct gain_curve {
  half_lane param1;
  half_lane param2;
  half_lane thr1;
  half_lane thr2;
  half_lane span;
};

gain_curve make_gain_curve(const saturation_curve& curve) {
  const half_lane thr1 = static_cast<half_lane>(curve.thr1);
  const half_lane thr2 = static_cast<half_lane>(curve.thr2);
  return {static_cast<half_lane>(curve.param1), static_cast<half_lane>(curve.param2), thr1, thr2,
          round_half(thr2 - thr1)};
}

// The greater of two magnitudes; one that is not a number does not count.
half_lane greater_of(half_lane a, half_lane b) {
  const half_lane number = a >= kSmallestHalf ? a : 0;
  return b > number ? b : number;
}

// Percentage for the distance from neutral. The order of the tests decides when the thresholds
// stand the other way round.
half_lane saturation_percentage(const gain_curve& curve, half_lane distance) {
  const half_lane rise = round_half(curve.param1 * round_half(curve.thr2 - distance));
  const half_lane fall = round_half(curve.param2 * round_half(distance - curve.thr1));
  const half_lane ramp = round_half(round_half(rise + fall) / curve.span);
  const half_lane below = distance > curve.thr2 ? ramp : curve.param2;
  return distance > curve.thr1 ? curve.param1 : below;
}

// 1 + percentage / 100. The product with the single-precision 1/100 rounds to the same half as the
// quotient for every percentage.
half_lane gain_of(half_lane percentage) {
  const float hundredth = static_cast<float>(percentage) * 0.01f;
  return round_half(1 + static_cast<half_lane>(static_cast<_Float16>(hundredth)));
}

uint8_t saturated_byte(half_lane offset, half_lane gain) {
  const half_lane centred = round_half(round_half(offset * gain) + kNeutral);
  const half_lane rounded = round_half(centred + static_cast<half_lane>(0.5f));
  const half_lane positive = rounded > 0 ? rounded : 0;  // not-a-number becomes 0 here
  const half_lane bounded = positive < 255 ? positive : 255;
  return static_cast<uint8_t>(static_cast<int16_t>(bounded));
}

// Whether the gain is 1 for every sample: no percentage, and thresholds whose distances from a
// sample between them stay finite (0 times infinity would be no number).
bool has_unit_gain(const saturation_curve& curve) {
  const _Float16 limit = static_cast<_Float16>(30000);
  return curve.param1 == 0 && curve.param2 == 0 && curve.thr1 <= limit && curve.thr1 >= -limit &&
         curve.thr2 <= limit && curve.thr2 >= -limit;
}

// Whether no sample lies beyond a threshold, so that all gains come from param2. Unrounded
// differences will do: thresholds are halves, so that rounding moves none across.
bool is_near_neutral(const gain_curve& curve, const _Float16* first, const _Float16* second,
                     int count) {
  uint16_t beyond = 0;
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    const half_lane u = magnitude(static_cast<half_lane>(first[x]) - kNeutral);
    const half_lane v = magnitude(static_cast<half_lane>(second[x]) - kNeutral);
    const bool u_beyond = (u > curve.thr1) | (u > curve.thr2);
    const bool v_beyond = (v > curve.thr1) | (v > curve.thr2);
    beyond |= static_cast<uint16_t>(u_beyond | v_beyond);
  }
  return beyond == 0;
}

enum class Gain { kOne, kNeutral, kCurve };

template <Gain kGain>
void saturate_block(const gain_curve& curve, const _Float16* first, const _Float16* second,
                    uint8_t* __restrict pairs, int count) {
  const half_lane neutral_gain = gain_of(curve.param2);
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    const half_lane u = round_half(static_cast<half_lane>(first[x]) - kNeutral);
    const half_lane v = round_half(static_cast<half_lane>(second[x]) - kNeutral);
    half_lane gain = kGain == Gain::kOne ? 1 : neutral_gain;
    if constexpr (kGain == Gain::kCurve) {
      const half_lane distance = greater_of(magnitude(u), magnitude(v));
      gain = gain_of(saturation_percentage(curve, distance));
    }
    pairs[2 * x] = saturated_byte(u, gain);
    pairs[2 * x + 1] = saturated_byte(v, gain);
  }
}

}  // namespace

void saturate_row(const saturation_curve& curve, const _Float16* first, const _Float16* second,
                  uint8_t* pairs, int width) {
  const gain_curve lanes = make_gain_curve(curve);
  const bool unit_gain = has_unit_gain(curve);
  for (int x = 0; x < width; x += kBlockPairs) {
    const int count = width - x < kBlockPairs ? width - x : kBlockPairs;
    if (unit_gain) {
      saturate_block<Gain::kOne>(lanes, first + x, second + x, pairs + 2 * x, count);
    } else if (is_near_neutral(lanes, first + x, second + x, count)) {
      saturate_block<Gain::kNeutral>(lanes, first + x, second + x, pairs + 2 * x, count);
    } else {
      saturate_block<Gain::kCurve>(lanes, first + x, second + x, pairs + 2 * x, count);
    }
  }
}

void add_half_row(_Float16* samples, int count) {
  VOREL_VECTORIZE_HALF
  for (int x = 0; x < count; ++x) {
    samples[x] =
        static_cast<_Float16>(static_cast<half_lane>(samples[x]) + static_cast<half_lane>(0.5f));
  }
}
