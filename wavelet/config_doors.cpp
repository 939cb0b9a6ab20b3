#include "vorel/wavelet/config.h"

wavelet_config g_waveletCfg;

void setWtCfg(int l0, int l1, int l2) { fill_wavelet_config(&g_waveletCfg, l0, l1, l2); }

uint32_t getWtCfg(unsigned int level) { return g_waveletCfg.level[level]; }

uint32_t getWtRange(unsigned int level, wtSubbandRange end) {
  return g_waveletCfg.range[level][end];
}

void initLlsMerge(unsigned long, unsigned long) { setWtCfg(2, 4, 4); }

void reconfigureMerge(waveletLevelConfig*, sigmaScaleConfig*) {}

void allocate_memory() {}

void deallocate_memory() {}
