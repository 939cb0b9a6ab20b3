#include "wavelet/pass_times.h"

#include <span>

#include "platform/log.h"

namespace {

struct timing_line {
  const char* name;
  Pass first;
  Pass last;
};

constexpr timing_line kForwardLines[] = {
    {"Sym4Transform::fwt", kForwardRows, kForwardRows},
    {"Sym4Transform::fwtVert", kForwardLow, kForwardLow},
    {"Sym4Transform::fwtVert", kForwardLowLow, kForwardLowLow},
    {"Sym4Transform::fwt", kForwardRowsLow, kForwardRowsLow},
    {"Sym4Transform::fwt", kForwardRowsHigh, kForwardRowsHigh},
    {"Sym4Transform::fwtVert", kForwardHigh, kForwardHigh},
    {"Sym4Transform::forwardWtRun", kForwardRows, kForwardHigh},
};

constexpr timing_line kHaarForwardLines[] = {
    {"HaarTransform::fwt", kHaarRows, kHaarRows},
    {"HaarTransform::fwtVert", kHaarLow, kHaarLow},
    {"HaarTransform::fwtVert", kHaarHigh, kHaarHigh},
    {"HaarTransform::fwtL2Dir", kHaarDirectionalRows, kHaarDirectionalRows},
    {"HaarTransform::fwtL2VertDir", kHaarDirectionalLow, kHaarDirectionalLow},
    {"HaarTransform::fwtL2VertDir", kHaarDirectionalHigh, kHaarDirectionalHigh},
    {"HaarTransform::forwardUnHaarRun", kHaarRows, kHaarDirectionalHigh},
};

constexpr timing_line kHaarInverseLines[] = {
    {"HaarTransform::iwtL2VertDir", kJoinDirectionalLow, kJoinDirectionalLow},
    {"HaarTransform::iwtL2VertDir", kJoinDirectionalHigh, kJoinDirectionalHigh},
    {"HaarTransform::iwtL2Dir", kJoinDirectionalRows, kJoinDirectionalRows},
    {"HaarTransform::iwtVertDirSingle", kJoinHighOnly, kJoinHighOnly},
    {"HaarTransform::iwtVertDir", kJoinDetails, kJoinDetails},
    {"HaarTransform::iwtDir", kJoinRows, kJoinRows},
    {"HaarTransform::SubbandsSum2SubBands", kJoinSum, kJoinSum},
    {"HaarTransform::inverseUnHaarRunAllSubbands", kJoinDirectionalLow, kJoinSum},
};

constexpr timing_line kDenoiseLine = {"Denoise::denoiseChroma1And2HaarRun", kHaarRows,
                                      kShrinkDetails};

constexpr timing_line kInverseLines[] = {
    {"Sym4Transform::iwt", kInverseRowsLow, kInverseRowsLow},
    {"Sym4Transform::iwt", kInverseRowsHigh, kInverseRowsHigh},
    {"Sym4Transform::iwtVert", kInverseMiddle, kInverseMiddle},
    {"Sym4Transform::iwtVert", kInverseLow, kInverseLow},
    {"Sym4Transform::iwtVert", kInverseHigh, kInverseHigh},
    {"Sym4Transform::iwt", kInverseRows, kInverseRows},
    {"Sym4Transform::inverseWtDifferentSband0Run", kInverseRowsLow, kInverseRows},
};

constexpr timing_line kPlaneLine = {"ChromaPostProcess::denoiseSpatial", kForwardRows,
                                    kInverseRows};

constexpr timing_line kSaturationLine = {"Denoise::applySaturation", kSaturation, kSaturation};

void log_line(const PassTimes& times, const timing_line& line) {
  VOREL_LOGI("%s: elapsed time %lld", line.name,
             static_cast<long long>(times.usec(line.first, line.last)));
}

void log_lines(const PassTimes& times, std::span<const timing_line> lines) {
  for (const timing_line& line : lines) log_line(times, line);
}

bool is_second_level(Pass pass) {
  return (pass >= kForwardLowLow && pass <= kForwardRowsHigh) ||
         (pass >= kInverseRowsLow && pass <= kInverseMiddle);
}

}  // namespace

int64_t PassTimes::usec(Pass first, Pass last) const {
  int64_t sum = 0;
  for (int pass = first; pass <= last; ++pass) sum += usec_[pass];
  return sum;
}

void log_forward_times(const PassTimes& times, bool second_level) {
  if (!times.enabled()) return;
  for (const timing_line& line : kForwardLines) {
    if (second_level || !is_second_level(line.last)) log_line(times, line);
  }
}

void log_inverse_times(const PassTimes& times, bool second_level, int pitch_difference) {
  for (const timing_line& line : kInverseLines) {
    if (!second_level && is_second_level(line.last)) continue;
    if (line.last == kInverseLow && pitch_difference != 0) {
      VOREL_LOGI("iwtVertPitch: %d", pitch_difference);
    } else if (times.enabled()) {
      log_line(times, line);
    }
  }
}

void log_haar_times(const PassTimes& times) {
  if (!times.enabled()) return;
  log_lines(times, kHaarForwardLines);
  log_lines(times, kHaarInverseLines);
}

void log_denoise_times(const PassTimes& times) {
  log_haar_times(times);
  if (times.enabled()) log_line(times, kDenoiseLine);
}

void log_plane_times(const PassTimes& times, int pitch_difference) {
  log_forward_times(times, true);
  log_denoise_times(times);
  log_inverse_times(times, true, pitch_difference);
  if (times.enabled()) log_line(times, kPlaneLine);
}

void log_saturation_times(const PassTimes& times) {
  if (times.enabled()) log_line(times, kSaturationLine);
}
