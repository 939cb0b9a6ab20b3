#include <algorithm>

#include "platform/log.h"
#include "tuning/tuning.h"

namespace {

int32_t valid_levels(const cnr_tuning* tuning) {
  return std::clamp(tuning->NILevelNum, 0, kNoiseLevels);
}

// Kept: the spelling of "bilteralfilter"; scripts that read the log look for it.
void log_bilateral(const bilateralfiltering_tuning& t) {
  VOREL_LOGI("bilteralfilter, span_Y_row %d, span_Y_col %d, span_UV_row %d, span_UV_col %d",
             t.span_Y_row, t.span_Y_col, t.span_UV_row, t.span_UV_col);
  VOREL_LOGI(
      "bilteralfilter, val_delta_th %d, val_weight_coef %d, %d, %d, %d, %d, "
      "val_weight_denom_shift %d",
      t.val_delta_th, t.val_weight_coef[0], t.val_weight_coef[1], t.val_weight_coef[2],
      t.val_weight_coef[3], t.val_weight_coef[4], t.val_weight_denom_shift);
  for (int i = 0; i < 16; ++i) VOREL_LOGI("bilteralfilter, val_weight[%d] %d", i, t.val_weight[i]);
}

void log_interleave_level(const interleaving_tuning& t, int32_t level) {
  VOREL_LOGI(
      "interleave, NILevel %d, d_Y_upper_thresh_table %d, d_Y_lower_thresh_table %d, "
      "d_UV_thresh_table %d, cs_upper_thresh_table %d cs_lower_thresh_table %d",
      level, t.d_Y_upper_thresh_table[level], t.d_Y_lower_thresh_table[level],
      t.d_UV_thresh_table[level], t.cs_upper_thresh_table[level], t.cs_lower_thresh_table[level]);
}

void log_wavelet_level(const mfd_uv_tuning& t, int32_t level) {
  VOREL_LOGI(
      "MFD_UV, NILevel %d, radialModeTable %.1f, denoiseThrChromaTable %.1f, %.1f, %.1f, %.1f, "
      "%.1f, CSatParam1Table %.1f, CSatParam2Table %.1f, CSatThr1Table %.1f, CSatThr2Table %.1f",
      level, t.radialModeTable[level], t.denoiseThrChroma0Table[level],
      t.denoiseThrChroma1Table[level], t.denoiseThrChroma2Table[level],
      t.denoiseThrChroma3Table[level], t.denoiseThrChroma4Table[level], t.CSatParam1Table[level],
      t.CSatParam2Table[level], t.CSatThr1Table[level], t.CSatThr2Table[level]);
}

}  // namespace

void log_tuning(const cnr_tuning* tuning) {
  const int32_t levels = valid_levels(tuning);
  VOREL_LOGI("enable %d", tuning->enable);
  VOREL_LOGI("NILevelNum %d", tuning->NILevelNum);
  for (int32_t i = 0; i < levels; ++i) VOREL_LOGI("NILevel[%d] %d", i, tuning->NILevel[i]);
  VOREL_LOGI("enableNoiseIndex %d", tuning->enableNoiseIndex);
  VOREL_LOGI("boxfilter, tab_bit %d", tuning->boxfiltering_tuning.tab_bit);
  log_bilateral(tuning->bilateralfiltering_tuning);
  for (int32_t i = 0; i < levels; ++i) log_interleave_level(tuning->interleaving_tuning, i);
  VOREL_LOGI("MFD_UV, enable %d", tuning->mfd_uv_tuning.enable);
  for (int32_t i = 0; i < kNoiseLevels; ++i) log_wavelet_level(tuning->mfd_uv_tuning, i);
}

void log_current_tuning(const cnr_tuning* tuning) {
  const bilateralfiltering_tuning& bilateral = tuning->bilateralfiltering_tuning;
  const interleaving_tuning& interleave = tuning->interleaving_tuning;
  const mfd_uv_tuning& wavelet = tuning->mfd_uv_tuning;
  VOREL_LOGI("vorel, enable %d", tuning->enable);
  VOREL_LOGI("vorel, tab_bit %d", tuning->boxfiltering_tuning.tab_bit);
  VOREL_LOGI(
      "vorel, span_row %d, span_col %d, val_delta_th %d, val_weight_coef %d, %d, %d, %d, %d, "
      "val_weight_denom_shift %d",
      bilateral.span_Y_row, bilateral.span_Y_col, bilateral.val_delta_th,
      bilateral.val_weight_coef[0], bilateral.val_weight_coef[1], bilateral.val_weight_coef[2],
      bilateral.val_weight_coef[3], bilateral.val_weight_coef[4], bilateral.val_weight_denom_shift);
  VOREL_LOGI(
      "vorel, d_Y_upper_thresh %d, d_Y_lower_thresh %d, d_UV_thresh %d, cs_upper_thresh %d, "
      "cs_lower_thresh %d",
      interleave.d_Y_upper_thresh, interleave.d_Y_lower_thresh, interleave.d_UV_thresh,
      interleave.cs_upper_thresh, interleave.cs_lower_thresh);
  VOREL_LOGI(
      "MFD_UV, enable %d, radialMode %.1f, denoiseThrChroma %.1f, %.1f, %.1f, %.1f, %.1f, "
      "CSatParam1 %.1f, CSatParam2 %.1f, CSatThr1 %.1f, CSatThr2 %.1f",
      wavelet.enable, wavelet.radialMode, wavelet.denoiseThrChroma[0], wavelet.denoiseThrChroma[1],
      wavelet.denoiseThrChroma[2], wavelet.denoiseThrChroma[3], wavelet.denoiseThrChroma[4],
      wavelet.CSatParam1, wavelet.CSatParam2, wavelet.CSatThr1, wavelet.CSatThr2);
}
