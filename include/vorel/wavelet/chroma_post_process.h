// Wavelet denoising of both chroma planes of one frame.
#ifndef VOREL_WAVELET_CHROMA_POST_PROCESS_H_
#define VOREL_WAVELET_CHROMA_POST_PROCESS_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"
#include "vorel/wavelet/config.h"

struct chroma_process;  // internal

/// Callers, every member: lives for one frame, `setup`, `chromaPostProcess`, `deallocate`. Frames
/// go the same way without it.
class VOREL_EXPORT ChromaPostProcess {
 public:
  static constexpr int kSubbands = 7;
  static constexpr int kThresholds = 16;

  ChromaPostProcess();

  /// Sizes, threshold tables and planes for a frame of `width` x `height` luma pixels. `thr` holds
  /// five thresholds. `borrow` holds four planes whose rows x columns bytes may be used as storage
  /// until `deallocate`; what does not fit comes from the heap. Jobs run on `pool1`; the other two
  /// are not used. `dumpPath` is used at debug level 5 and above.
  /// Returns false (logged) when memory is short; then only `deallocate` may follow.
  bool setup(int width, int height, _Float16* thr, _Float16 radialMode, _Float16 CSatParam1,
             _Float16 CSatParam2, _Float16 CSatThr1, _Float16 CSatThr2, int debugLevel,
             char* dumpPath, ThreadPool* pool1, ThreadPool* pool2, ThreadPool* pool3,
             buffer* borrow);

  /// `in`: one VOREL_PLANE_PAIRS plane, or two bordered half-precision planes (kinds FIRST and
  /// SECOND), whose borders are filled and which dumps use as working planes. `out`:
  /// VOREL_PLANE_PAIRS; may be `in`. Returns 0, or -1 (logged) when memory was short and `out` was
  /// left as it was.
  int chromaPostProcess(buffer* in, buffer* out);

  /// Denoises one bordered plane in place; `plane` is 1 or 2. The two planes may run at once.
  void denoiseSpatial(unsigned plane, buffer* io, ThreadPool* pool);

  void deallocate();

  void setWtCfg(int c0, int c1, int c2);
  uint32_t getWtRange(unsigned int level, wtSubbandRange which);

 private:
  chroma_process* process_;
  wavelet_config config_;
};

/// Job record of `runCopyAndPadFunc`.
struct copy_and_pad_job {
  buffer* in;
  buffer* first;
  buffer* second;
  uint32_t rowBegin;
  uint32_t rowEnd;
};

/// Job record of `denoiseSpatialFunc`.
struct denoise_spatial_job {
  ChromaPostProcess* process;
  uint32_t plane;
  buffer* io;
  ThreadPool* pool;
};

/// Callers: pool jobs. Return null.
VOREL_EXPORT void* runCopyAndPadFunc(void* job);
VOREL_EXPORT void* denoiseSpatialFunc(void* job);

#endif  // VOREL_WAVELET_CHROMA_POST_PROCESS_H_
