// Shrinkage of wavelet coefficients and the saturation step back to 8 bits.
#ifndef VOREL_WAVELET_DENOISE_H_
#define VOREL_WAVELET_DENOISE_H_

#include <cstdint>

#include "vorel/export.h"
#include "vorel/thread_pool.h"
#include "vorel/wavelet/buffer.h"

/// Callers, every member: arithmetic of the wavelet chroma path that is no transform. Every
/// operation rounds to half precision. `A` and `B` are slope and cap of the radial noise model; A =
/// 0 switches it off.
class VOREL_EXPORT Denoise {
 public:
  Denoise();

  void setup(int width, int height, int paddedWidth, int paddedHeight);
  void setup(int width, int height, int paddedWidth, int paddedHeight, int debug, char* path,
             ThreadPool* pool);
  void deallocate();

  /// Denoises subbands[0..6] of one plane in place. `thr` holds 16 thresholds, one per subband;
  /// thr[0] is replaced by its magnitude. `scratch` may be null; else it names a plane that lends
  /// memory to the Haar step. `pool` is not used.
  void denoiseChroma1And2HaarRun(buffer* subbands, buffer* scratch, _Float16* thr, _Float16 A,
                                 _Float16 B, ThreadPool* pool);

  /// Denoises the low band `band` in place through an undecimated Haar decomposition.
  /// `scratch` and `pool` as above. Returns without a change when memory is short (logged).
  void haarL2Denoise(buffer* band, buffer* scratch, _Float16 thr, _Float16 A, _Float16 B,
                     ThreadPool* pool);

  /// Shrinks a dense subband of `rows` x `cols` coefficients in place: with u = v / S the new value
  /// is (S u) (u^2 / (thr / S^2 * m + u^2)), m being the noise multiplier of the position. `step`
  /// is the spacing of coefficients in frame pixels.
  void shrinkage1(_Float16* data, _Float16 thr, _Float16 A, _Float16 B, int rows, int cols,
                  int step, int unused, _Float16 S);

  /// Stores the noise multiplier at (x, y), measured from the centre, for a centre at (cx, cy).
  void radialNoiseEStimateChroma1(int x, int y, _Float16* out, _Float16 A, _Float16 B, int cx,
                                  int cy);

  /// Turns the inner areas of two half-precision planes into the interleaved 8-bit plane `out`
  /// as four jobs on the pool given to `setup` (on the calling thread without one). `staging` is
  /// not used and may be null. Parameters are percentages (CSatParam) and distances from neutral
  /// (CSatThr). A sample that is not a number becomes 0 and does not count for its pair's gain,
  /// which the other sample sets alone. Returns 0.
  int applySaturation(buffer* first, buffer* second, buffer* out, buffer* staging,
                      _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                      _Float16 CSatThr2);

  /// The same for the output rows [rowBegin, rowEnd) on the calling thread.
  int applySaturation(buffer* first, buffer* second, buffer* out, buffer* staging,
                      _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                      _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd);

  void applySaturationRegion(buffer* first, buffer* second, buffer* out, buffer* staging,
                             _Float16 CSatParam1, _Float16 CSatParam2, _Float16 CSatThr1,
                             _Float16 CSatThr2, unsigned rowBegin, unsigned rowEnd);

  /// Adds 0.5 to the samples of the rows [rowBegin, rowEnd) of both planes.
  void AddPoint5(buffer* first, buffer* second, unsigned rowBegin, unsigned rowEnd);

 private:
  int32_t debug_;
  ThreadPool* pool_;
};

/// Job record of `shrkFunc`.
struct shrinkage_job {
  Denoise* denoise;
  _Float16* data;
  _Float16 thr;
  _Float16 A;
  _Float16 B;
  int32_t rows;
  int32_t cols;
  int32_t step;
  int32_t unused;
  _Float16 S;
};

/// Job record of `applySaturationRegionFunc`.
struct saturation_job {
  Denoise* denoise;
  buffer* first;
  buffer* second;
  buffer* out;
  buffer* staging;
  _Float16 CSatParam1;
  _Float16 CSatParam2;
  _Float16 CSatThr1;
  _Float16 CSatThr2;
  uint32_t rowBegin;
  uint32_t rowEnd;
};

/// Callers: pool jobs. Return null.
VOREL_EXPORT void* shrkFunc(void* job);
VOREL_EXPORT void* applySaturationRegionFunc(void* job);

#endif  // VOREL_WAVELET_DENOISE_H_
