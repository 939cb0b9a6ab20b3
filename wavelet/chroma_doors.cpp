// The exported wavelet path of a frame. Nothing inside calls it.
#include <new>

#include "platform/cpu.h"
#include "vorel/wavelet/chroma_post_process.h"
#include "wavelet/border.h"
#include "wavelet/chroma_process.h"

ChromaPostProcess::ChromaPostProcess() : process_(nullptr), config_{} {}

bool ChromaPostProcess::setup(int width, int height, _Float16* thr, _Float16 radialMode,
                              _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                              _Float16 CSatThr2, int debugLevel, char* dumpPath, ThreadPool* pool1,
                              ThreadPool*, ThreadPool*, buffer* borrow) {
  setWtCfg(2, 4, 4);
  if (process_ == nullptr) process_ = new (std::nothrow) chroma_process();
  return set_up_chroma(process_, {width,
                                  height,
                                  thr,
                                  radialMode,
                                  {CSatParam1, CSatParam2, CSatThr1, CSatThr2},
                                  {debugLevel, dumpPath},
                                  pool1,
                                  usable_cpus(),
                                  borrow});
}

int ChromaPostProcess::chromaPostProcess(buffer* in, buffer* out) {
  return run_chroma(process_, in, out);
}

void ChromaPostProcess::denoiseSpatial(unsigned plane, buffer* io, ThreadPool*) {
  static_cast<void>(denoise_chroma_plane(process_, plane, *io));
}

void ChromaPostProcess::deallocate() {
  if (process_ != nullptr) release_chroma(process_);
  delete process_;
  process_ = nullptr;
}

void ChromaPostProcess::setWtCfg(int c0, int c1, int c2) {
  fill_wavelet_config(&config_, c0, c1, c2);
}

uint32_t ChromaPostProcess::getWtRange(unsigned int level, wtSubbandRange which) {
  return config_.range[level][which];
}

void* runCopyAndPadFunc(void* argument) {
  const auto* job = static_cast<copy_and_pad_job*>(argument);
  pad_pairs_rows(*job->in, *job->first, *job->second, job->rowBegin, job->rowEnd);
  return nullptr;
}

void* denoiseSpatialFunc(void* argument) {
  const auto* job = static_cast<denoise_spatial_job*>(argument);
  job->process->denoiseSpatial(job->plane, job->io, job->pool);
  return nullptr;
}
