// Configuration of the wavelet levels: one process-wide record and the type of the copies that
// objects keep.
#ifndef VOREL_WAVELET_CONFIG_H_
#define VOREL_WAVELET_CONFIG_H_

#include <cstdint>

#include "vorel/export.h"

/// Nine words: a value per decomposition level 0..2, then each level's subband range.
/// A level with value 2 has the range {4, 8}, any other value {0, 7}; the end is exclusive.
struct wavelet_config {
  uint32_t level[3];
  uint32_t range[3][2];
};

/// Sets the values of the three levels and the ranges that follow from them.
inline void fill_wavelet_config(wavelet_config* config, int l0, int l1, int l2) {
  const int values[3] = {l0, l1, l2};
  for (int i = 0; i < 3; ++i) {
    config->level[i] = static_cast<uint32_t>(values[i]);
    config->range[i][0] = values[i] == 2 ? 4 : 0;
    config->range[i][1] = values[i] == 2 ? 8 : 7;
  }
}

/// Selects one end of a subband range.
enum wtSubbandRange { WT_SUBBAND_FIRST = 0, WT_SUBBAND_LAST = 1 };

struct waveletLevelConfig;  // opaque
struct sigmaScaleConfig;    // opaque

/// Callers: the process-wide record, zero until it is set. No lock: set it while no other thread
/// reads it.
/// The transforms read their own copies.
VOREL_EXPORT extern wavelet_config g_waveletCfg;

/// Callers: sets the values of the three levels, and with them their ranges.
VOREL_EXPORT void setWtCfg(int l0, int l1, int l2);

/// Callers: value of level 0..2; the index is not checked.
VOREL_EXPORT uint32_t getWtCfg(unsigned int level);

/// Callers: first or last subband of level 0..2; the indices are not checked.
VOREL_EXPORT uint32_t getWtRange(unsigned int level, wtSubbandRange end);

/// Callers: sets the record to its default (2, 4, 4). Both arguments are ignored.
VOREL_EXPORT void initLlsMerge(unsigned long, unsigned long);

/// Callers: does nothing.
VOREL_EXPORT void reconfigureMerge(waveletLevelConfig*, sigmaScaleConfig*);
/// Callers: do nothing.
VOREL_EXPORT void allocate_memory();
VOREL_EXPORT void deallocate_memory();

#endif  // VOREL_WAVELET_CONFIG_H_
