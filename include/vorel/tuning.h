// Tuning records: what a tuning file holds, and the values in force for the current frame.
#ifndef VOREL_TUNING_H_
#define VOREL_TUNING_H_

#include <cstdint>

/// Number of noise levels that every per-level table has room for.
inline constexpr int kNoiseLevels = 12;

/// Column box filter.
struct boxfiltering_tuning {
  int32_t tab_bit;  // log2 of the number of taps, 0..7; always 4 unless changed in memory
};

/// Bilateral filter of the 1/16 planes.
struct bilateralfiltering_tuning {
  int32_t span_Y_row;  // half spans of the window, in samples of the 1/16 plane
  int32_t span_Y_col;
  int32_t span_UV_row;
  int32_t span_UV_col;
  int32_t val_delta_th;            // largest value difference with a weight of its own
  int32_t val_weight_coef[5];      // c0..c4 of the weight polynomial in the value difference
  int32_t val_weight_denom_shift;  // right shift of the polynomial's value
  int32_t val_weight[16];          // derived: weight per absolute difference, 0..255
};

/// Restore and interleave: thresholds of the current frame, then their values per noise level.
struct interleaving_tuning {
  int32_t d_Y_upper_thresh;
  int32_t d_Y_lower_thresh;
  int32_t d_UV_thresh;
  int32_t cs_upper_thresh;
  int32_t cs_lower_thresh;
  int32_t d_Y_upper_thresh_table[kNoiseLevels];
  int32_t d_Y_lower_thresh_table[kNoiseLevels];
  int32_t d_UV_thresh_table[kNoiseLevels];
  int32_t cs_upper_thresh_table[kNoiseLevels];
  int32_t cs_lower_thresh_table[kNoiseLevels];
};

/// Wavelet stage: values of the current frame, then their values per noise level.
struct mfd_uv_tuning {
  int32_t enable;  // 0 or 1
  float radialMode;
  float denoiseThrChroma[5];
  float CSatParam1;
  float CSatParam2;
  float CSatThr1;
  float CSatThr2;
  float radialModeTable[kNoiseLevels];
  float denoiseThrChroma0Table[kNoiseLevels];
  float denoiseThrChroma1Table[kNoiseLevels];
  float denoiseThrChroma2Table[kNoiseLevels];
  float denoiseThrChroma3Table[kNoiseLevels];
  float denoiseThrChroma4Table[kNoiseLevels];
  float CSatParam1Table[kNoiseLevels];
  float CSatParam2Table[kNoiseLevels];
  float CSatThr1Table[kNoiseLevels];
  float CSatThr2Table[kNoiseLevels];
};

/// The whole tuning of a handle.
struct cnr_tuning {
  int32_t enable;                 // 0 or 1: the spatial path
  int32_t NILevelNum;             // valid entries of NILevel
  int32_t NILevel[kNoiseLevels];  // noise index of each level, ascending
  int32_t enableNoiseIndex;       // frames with a lower noise index are not processed
  struct boxfiltering_tuning boxfiltering_tuning;
  struct bilateralfiltering_tuning bilateralfiltering_tuning;
  struct interleaving_tuning interleaving_tuning;
  struct mfd_uv_tuning mfd_uv_tuning;
};

#endif  // VOREL_TUNING_H_
